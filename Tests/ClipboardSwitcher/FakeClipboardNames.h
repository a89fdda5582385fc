// A store of named clipboards in memory, which is the current one while it lives.
#pragma once

#include "ClipboardSwitcher/ClipboardReference.h"

#include <map>

class FakeClipboardNames final : public ClipboardNames
{
public:
    FakeClipboardNames( std::initializer_list<std::pair<const Text, Text>> inNamesByUID = {} )
        : mNamesByUID( inNamesByUID )
    {
        SetCurrent( this );
    }
    ~FakeClipboardNames() override { SetCurrent( nullptr ); }

    [[nodiscard]] std::optional<Text> StrictGetClipboardNameByUID( TextView inUID ) const override
    {
        const auto found = mNamesByUID.find( Text( inUID ) );
        return found == mNamesByUID.end() ? std::nullopt : std::optional( found->second );
    }
    [[nodiscard]] std::optional<Text> GetClipboardUIDByName( TextView inName ) const override
    {
        for ( const auto& [uid, name] : mNamesByUID )
        {
            if ( name == inName )
                return uid;
        }
        return {};
    }
    [[nodiscard]] Text GetOrCreateClipboard( TextView inName, TextView inUID ) override
    {
        mUIDWasInUse = ClipboardReference::ClipboardUIDInUse( inUID );
        if ( const auto uid = GetClipboardUIDByName( inName ) )
            return *uid;
        const Text uid = inUID.empty() ? u"Made-" + std::u16string( inName ) : Text( inUID );
        mNamesByUID[uid] = inName;
        return uid;
    }

    std::map<Text, Text> mNamesByUID;
    bool mUIDWasInUse = false; // when last asked to make one
};

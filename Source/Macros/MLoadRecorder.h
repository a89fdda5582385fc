// Keeps what a load does to its source, for MLoadCheck to explain differences with. Elements are told apart by
// the identity of their values, which the caller keeps alive. Main thread.
#pragma once

#include "CFMethods/PropertyListReadObserver.h"
#include "Macros/MLoadObserver.h"

#include <deque>
#include <map>
#include <unordered_map>
#include <unordered_set>

class MLoadRecorder final : public MLoadObserver, public XPlistReadObserver
{
public:
    struct UIDs
    {
        XText mFile, mObject;
    };
    /// A key of one dictionary. Keys are told apart by their hash: a file has a thousand of them at most.
    struct KeyID
    {
        const XPlistDictionary* mDictionary;
        std::uint32_t mHash;

        KeyID( const XPlistDictionary& inDictionary, const XKey& inKey )
            : mDictionary( &inDictionary ),
              mHash( inKey.Hash() )
        {}
        KeyID( const XPlistDictionary& inDictionary, const XPlistString& inKey )
            : mDictionary( &inDictionary ),
              mHash( inKey.KeyHash() )
        {}
        friend bool operator==( const KeyID&, const KeyID& ) = default;
    };

    void DidDrop( const XPlistArray& inList, std::size_t inIndex, TextView inReason ) override;
    void DidReadOlderKey( const XPlistDictionary& inSource, const XKey& inOlder, const XKey& inCurrent ) override;
    void DidUpgradeType( const XPlistDictionary& inSource, TextView inOlder, TextView inCurrent ) override;
    void DidUpgradeValue( const XPlistDictionary& inSource, const XKey& inKey, TextView inReason ) override;
    void DidRepair( const XPlistDictionary& inSource, const XKey& inKey, TextView inReason ) override;
    void DidReadUID( const XPlistDictionary& inSource, const XText& inFileUID, const XText& inUID ) override;
    void DidRead( const XPlistDictionary& inDictionary, const XKey& inKey ) override;
    void DidMisread( const XPlistDictionary& inDictionary, const XKey& inKey ) override;
    void DidTake( const XPlistDictionary& inDictionary, const XKey& inKey ) override;

    /// What was left out of a list, by index; empty when nothing was.
    [[nodiscard]] const std::map<std::size_t, Text>& DroppedFrom( const XPlistArray& inList ) const;
    [[nodiscard]] bool WasRead( const KeyID& inKey ) const { return mRead.contains( inKey ); }
    /// Read, but never with the type that was asked for.
    [[nodiscard]] bool WasOnlyMisread( const KeyID& inKey ) const
    {
        return mMisread.contains( inKey ) and not mTaken.contains( inKey );
    }
    // Each is null when nothing was told of the key.
    [[nodiscard]] const Text* RepairOf( const KeyID& inKey ) const { return Find( mRepairs, inKey ); }
    [[nodiscard]] const Text* UpgradeOf( const KeyID& inKey ) const { return Find( mUpgrades, inKey ); }
    /// The UIDs of the object that was made of this value; of several, each once, in order of loading.
    [[nodiscard]] UIDs TakeUIDs( const XPlistDictionary& inSource );

private:
    struct Hash
    {
        std::size_t operator()( const KeyID& inKey ) const
        {
            return std::hash<const void*>()( inKey.mDictionary ) * 31 + inKey.mHash;
        }
    };
    using Texts = std::unordered_map<KeyID, Text, Hash>;

    static const Text* Find( const Texts& inTexts, const KeyID& inKey );

    std::unordered_map<const XPlistArray*, std::map<std::size_t, Text>> mDropped;
    std::unordered_map<const XPlistDictionary*, std::deque<UIDs>> mUIDs;
    std::unordered_set<KeyID, Hash> mRead, mMisread, mTaken;
    Texts mRepairs, mUpgrades;
};

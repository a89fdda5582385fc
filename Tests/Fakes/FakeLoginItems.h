// A list of login items in memory.
#pragma once

#include "Platform/LoginItems.h"

#include <algorithm>

class FakeLoginItems final : public XLoginItems
{
public:
    [[nodiscard]] std::vector<XLoginItem> GetLoginItems() const override { return mItems; }
    bool AddLoginItem( TextView inName, const std::filesystem::path& inTarget ) override
    {
        if ( mIsStuck )
            return false;
        Put( inName, inTarget );
        return true;
    }
    bool DeleteLoginItem( const XLoginItem& inItem ) override
    {
        if ( mIsStuck )
            return false;
        return std::erase_if(
                   mItems, [&]( const XLoginItem& inOther ) { return inOther.mIdentifier == inItem.mIdentifier; } ) > 0;
    }
    void SetObserver( std::function<void()> inObserver ) override { mObserver = std::move( inObserver ); }

    /// What somebody else adds.
    void Put( TextView inName, const std::filesystem::path& inTarget )
    {
        mItems.push_back( { Text( inName ), inTarget, Text( 1, char16_t( u'a' + mNext++ ) ) } );
    }

    std::vector<XLoginItem> mItems;
    std::function<void()> mObserver;
    bool mIsStuck = false; ///< nothing can be changed

private:
    int mNext = 0;
};

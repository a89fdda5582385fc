#include "XCAF/KVNotifications.h"

#include "CFMethods/PropertyListWalk.h"
#include "Utility/Text/Format.h"

#include <algorithm>

namespace
{
using namespace KVNotifications;

constexpr Row kRows[] = {
#define KV_NOTIFICATION( inWord, inDirection, inTrust, inForm )                                                        \
    Row{ k##inWord, Direction::k##inDirection, Trust::k##inTrust, Form::k##inForm },
#include "XCAF/KVNotifications.def"
#undef KV_NOTIFICATION
};

// Sums up what a payload takes. Once it is too much nothing more is entered: values may be shared, and a few of them
// can stand for more than there is memory.
struct PayloadMeter
{
    void Leaf( const __SafeCFPropertyList& inValue, const XPlistPlace& inPlace )
    {
        Add( inPlace );
        if ( const XPlistString* const string = inValue.AsString() )
            Add( *string );
        else if ( const XPlistData* const data = inValue.AsData() )
            mBytes += data->GetBytes().size();
    }
    bool Enter( const XPlistContainer&, const XPlistPlace& inPlace )
    {
        Add( inPlace );
        mDepth = std::max( mDepth, inPlace.mDepth + 1 );
        return mBytes <= kMaxPayloadBytes and mDepth <= kMaxPayloadDepth;
    }
    void Leave( const XPlistContainer&, const XPlistPlace& ) {}

    std::size_t mBytes = 0, mDepth = 0;

private:
    void Add( const XPlistPlace& inPlace )
    {
        constexpr std::size_t kEachValue = 8;
        mBytes += kEachValue;
        if ( inPlace.mKey )
            Add( *inPlace.mKey );
    }
    void Add( const XPlistString& inString ) { mBytes += inString.GetLength() * ( inString.IsASCII() ? 1 : 2 ); }
};
} // namespace

std::span<const Row> KVNotifications::AllNotifications()
{
    return kRows;
}

const Row* KVNotifications::Find( TextView inName )
{
    const auto found =
        std::find_if( std::begin( kRows ), std::end( kRows ), [&]( const Row& row ) { return row.mName == inName; } );
    return found == std::end( kRows ) ? nullptr : &*found;
}

bool KVNotifications::IsEngineOnly( TextView inName )
{
    const Row* const row = Find( inName );
    return row and row->mTrust == Trust::kEngineOnly;
}

std::optional<Text> KVNotifications::CheckPayload( TextView inName, const CFContainer<XPlistDictionary>& inPayload )
{
    PayloadMeter meter;
    WalkPropertyList( __SafeCFPropertyList( inPayload ), meter );
    const Row* const row = Find( inName );
    if ( meter.mBytes > kMaxPayloadBytes )
        return kvr_format( "its payload is larger than %zu bytes", kMaxPayloadBytes );
    if ( meter.mDepth > kMaxPayloadDepth )
        return kvr_format( "its payload is nested more deeply than %zu levels", kMaxPayloadDepth );
    if ( meter.mDepth > 1 and not( row and row->mForm == Form::kNested ) )
        return u"its payload isn't flat";
    return {};
}

std::optional<Text> KVNotifications::CheckReceived(
    TextView inName, const CFContainer<XPlistDictionary>& inPayload, bool inFromEngine )
{
    const Row* const row = Find( inName );
    if ( row and row->mDirection == Direction::kInternal )
        return u"it never comes from another process";
    if ( row and row->mTrust == Trust::kEngineOnly and not inFromEngine )
        return u"it doesn't come from the engine";
    return CheckPayload( inName, inPayload );
}

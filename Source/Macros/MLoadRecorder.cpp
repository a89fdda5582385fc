#include "Macros/MLoadRecorder.h"

#include "Utility/Text/Format.h"

namespace
{
// Where a key stands in its dictionary; the number of its keys when it doesn't.
std::size_t PlaceOf( const MLoadRecorder::KeyID& inKey )
{
    const auto entries = inKey.mDictionary->GetEntries();
    std::size_t at = 0;
    while ( at < entries.size() and entries[at].mKey->KeyHash() != inKey.mHash )
        ++at;
    return at;
}
} // namespace

void MLoadRecorder::DidDrop( const XPlistArray& inList, std::size_t inIndex, TextView inReason )
{
    mDropped[&inList].insert_or_assign( inIndex, Text( inReason ) );
}

void MLoadRecorder::DidReadOlderKey( const XPlistDictionary& inSource, const XKey& inOlder, const XKey& inCurrent )
{
    mUpgrades.insert_or_assign( KeyID( inSource, inOlder ),
        Told{ MLoadRule::kOlderKey, kvr_format( u"an older key; “%@” is written", inCurrent.Name() ) } );
    mOrigins.insert_or_assign( KeyID( inSource, inCurrent ),
        Told{ MLoadRule::kOlderKey, kvr_format( u"from the older key “%@”", inOlder.Name() ) } );
}

void MLoadRecorder::DidUpgradeType( const XPlistDictionary& inSource, TextView inOlder, TextView inCurrent )
{
    const Told told{ MLoadRule::kOlderType, kvr_format( u"the older type “%@” is now “%@”", inOlder, inCurrent ) };
    for ( const XKey& key :
        { XKey( CFSTR( "MacroActionType" ) ), XKey( CFSTR( "MacroTriggerType" ) ), XKey( CFSTR( "CollectionType" ) ) } )
        mUpgrades.insert_or_assign( KeyID( inSource, key ), told );
}

void MLoadRecorder::DidUpgradeValue( const XPlistDictionary& inSource, const XKey& inKey, TextView inReason )
{
    mUpgrades.insert_or_assign( KeyID( inSource, inKey ), Told{ MLoadRule::kOlderValue, Text( inReason ) } );
}

void MLoadRecorder::DidRepair(
    const XPlistDictionary& inSource, const XKey& inKey, MLoadRule inRule, TextView inReason )
{
    mRepairs.insert_or_assign( KeyID( inSource, inKey ), Told{ inRule, Text( inReason ) } );
}

void MLoadRecorder::DidReadUID( const XPlistDictionary& inSource, const XText& inFileUID, const XText& inUID )
{
    mUIDs[&inSource].mUIDs.push_back( { inFileUID, inUID } );
}

void MLoadRecorder::DidRead( const XPlistDictionary& inDictionary, const XKey& inKey )
{
    Record( { inDictionary, inKey }, kRead );
}

void MLoadRecorder::DidMisread( const XPlistDictionary& inDictionary, const XKey& inKey )
{
    Record( { inDictionary, inKey }, kMisread );
}

void MLoadRecorder::DidTake( const XPlistDictionary& inDictionary, const XKey& inKey )
{
    Record( { inDictionary, inKey }, kTaken );
}

void MLoadRecorder::Record( const KeyID& inKey, Way inWay )
{
    const std::size_t count = inKey.mDictionary->GetCount();
    if ( count > Reads::kMostKeys )
    {
        mReadsOfLongOnes[inWay].insert( inKey );
        return;
    }
    if ( inKey.mDictionary != mLastDictionary )
    {
        mLastReads = &mReads[inKey.mDictionary];
        mLastDictionary = inKey.mDictionary;
        mLastAt = PlaceOf( inKey );
    }
    else if ( inKey.mHash != mLastHash )
        mLastAt = PlaceOf( inKey );
    mLastHash = inKey.mHash;
    if ( mLastAt < count )
        mLastReads->mKeys[inWay] |= std::uint64_t( 1 ) << mLastAt;
}

bool MLoadRecorder::Has( const KeyID& inKey, Way inWay ) const
{
    const std::size_t count = inKey.mDictionary->GetCount();
    if ( count > Reads::kMostKeys )
        return mReadsOfLongOnes[inWay].contains( inKey );
    const auto reads = mReads.find( inKey.mDictionary );
    const std::size_t at = PlaceOf( inKey );
    return reads != mReads.end() and at < count and ( reads->second.mKeys[inWay] >> at & 1 ) != 0;
}

const std::map<std::size_t, Text>& MLoadRecorder::DroppedFrom( const XPlistArray& inList ) const
{
    static const std::map<std::size_t, Text> gNone;
    const auto entry = mDropped.find( &inList );
    return entry == mDropped.end() ? gNone : entry->second;
}

const MLoadRecorder::Told* MLoadRecorder::Find( const Tellings& inTellings, const KeyID& inKey )
{
    const auto entry = inTellings.find( inKey );
    return entry == inTellings.end() ? nullptr : &entry->second;
}

MLoadRecorder::UIDs MLoadRecorder::TakeUIDs( const XPlistDictionary& inSource )
{
    const auto entry = mUIDs.find( &inSource );
    if ( entry == mUIDs.end() or entry->second.mNext == entry->second.mUIDs.size() )
        return {};
    return std::move( entry->second.mUIDs[entry->second.mNext++] );
}

#include "Macros/MLoadRecorder.h"

#include "Utility/Text/Format.h"

void MLoadRecorder::DidDrop( const XPlistArray& inList, std::size_t inIndex, TextView inReason )
{
    mDropped[&inList].insert_or_assign( inIndex, Text( inReason ) );
}

void MLoadRecorder::DidReadOlderKey( const XPlistDictionary& inSource, const XKey& inOlder, const XKey& inCurrent )
{
    mUpgrades.insert_or_assign(
        KeyID( inSource, inOlder ), kvr_format( u"an older key; “%@” is written", inCurrent.Name() ) );
}

void MLoadRecorder::DidUpgradeType( const XPlistDictionary& inSource, TextView inOlder, TextView inCurrent )
{
    const Text reason = kvr_format( u"the older type “%@” is now “%@”", inOlder, inCurrent );
    mUpgrades.insert_or_assign( { inSource, CFSTR( "MacroActionType" ) }, reason );
    mUpgrades.insert_or_assign( { inSource, CFSTR( "MacroTriggerType" ) }, reason );
}

void MLoadRecorder::DidUpgradeValue( const XPlistDictionary& inSource, const XKey& inKey, TextView inReason )
{
    mUpgrades.insert_or_assign( KeyID( inSource, inKey ), Text( inReason ) );
}

void MLoadRecorder::DidRepair( const XPlistDictionary& inSource, const XKey& inKey, TextView inReason )
{
    mRepairs.insert_or_assign( KeyID( inSource, inKey ), Text( inReason ) );
}

void MLoadRecorder::DidReadUID( const XPlistDictionary& inSource, const XText& inFileUID, const XText& inUID )
{
    mUIDs[&inSource].push_back( { inFileUID, inUID } );
}

void MLoadRecorder::DidRead( const XPlistDictionary& inDictionary, const XKey& inKey )
{
    mRead.insert( KeyID( inDictionary, inKey ) );
}

void MLoadRecorder::DidMisread( const XPlistDictionary& inDictionary, const XKey& inKey )
{
    mMisread.insert( KeyID( inDictionary, inKey ) );
}

void MLoadRecorder::DidTake( const XPlistDictionary& inDictionary, const XKey& inKey )
{
    mTaken.insert( KeyID( inDictionary, inKey ) );
}

const std::map<std::size_t, Text>& MLoadRecorder::DroppedFrom( const XPlistArray& inList ) const
{
    static const std::map<std::size_t, Text> gNone;
    const auto entry = mDropped.find( &inList );
    return entry == mDropped.end() ? gNone : entry->second;
}

const Text* MLoadRecorder::Find( const Texts& inTexts, const KeyID& inKey )
{
    const auto entry = inTexts.find( inKey );
    return entry == inTexts.end() ? nullptr : &entry->second;
}

MLoadRecorder::UIDs MLoadRecorder::TakeUIDs( const XPlistDictionary& inSource )
{
    const auto entry = mUIDs.find( &inSource );
    if ( entry == mUIDs.end() or entry->second.empty() )
        return {};
    UIDs uids = std::move( entry->second.front() );
    entry->second.pop_front();
    return uids;
}

#include "Triggers/TBaseTrigger.h"

#include "Actions/HFieldVisitors.h"
#include "CFMethods/PropertyListCodec.h"
#include "Macros/MLoadObserver.h"
#include "Triggers/TTriggerFactory.h"
#include "Utility/Search/StringSearchee.h"
#include "Utility/Search/StringSearcher.h"
#include "Utility/Text/Localization.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XException.h"
#include "XCAF/XIcon.h"

#include <algorithm>

namespace
{
const XKey kTypeKey = CFSTR( "MacroTriggerType" );
}

std::optional<TriggerType> TriggerTypeFromName( const XText& inName, bool& outOlder )
{
    outOlder = false;
    if ( inName.IsNull() or not inName.GetString()->IsASCII() )
        return {};
    const std::string_view name = inName.GetString()->ASCII();
    if ( const auto at = std::ranges::find( kTriggerTypeNames, name ); at != std::end( kTriggerTypeNames ) )
        return TriggerType( at - std::begin( kTriggerTypeNames ) );
    const auto at = std::ranges::find( kTriggerTypeNamesAlternate, name );
    outOlder = at != kTriggerTypeNamesAlternate.end();
    if ( not outOlder )
        return {};
    return TriggerType( at - kTriggerTypeNamesAlternate.begin() );
}

void TBaseTrigger::SaveSubclassToDictionary( XMutableDictionary& ioDictionary ) const
{
    HSavingVisitor visitor( ioDictionary );
    const_cast<TBaseTrigger*>( this )->DescribeFields( visitor ); // writes to no member
}

void TBaseTrigger::LoadSubclassFromDictionary( const XPlistDictionary& inDictionary )
{
    HReadingVisitor visitor( inDictionary );
    DescribeFields( visitor );
}

int TBaseTrigger::CompareWithSame( const TBaseTrigger& inOther ) const
{
    return HComparingVisitor::Compare( *this, inOther );
}

const TTriggerFactory& TBaseTrigger::GetTriggerFactory() const
{
    return TTriggerFactory::GetTriggerFactory( GetTriggerType() );
}

bool TBaseTrigger::MatchesHotKey( unsigned, unsigned ) const
{
    return false;
}

Text TBaseTrigger::GetTriggerTypeDescription() const
{
    return kvr_localized(
        u"t" + TextFromASCII( kTriggerTypeNames[std::size_t( GetTriggerType() )] ) + u"TriggerTitle" );
}

XIcon TBaseTrigger::GetXIcon() const
{
    return GetTriggerFactory().GetTriggerIcon();
}

void TBaseTrigger::AddMatchStrings( StringSearchee& ioSearchee ) const
{
    ioSearchee.AddTrigger( GetTriggerTypeDescription() );
    ioSearchee.AddTrigger( GetDescription() );
    ioSearchee.AddTrigger( GetShortDescription() );
}

bool TBaseTrigger::MatchesTextSearch( StringSearcher& ioSearcher ) const
{
    if ( ioSearcher.Useless() )
        return true;
    StringSearchee searchee;
    AddMatchStrings( searchee );
    return ioSearcher.Matches( searchee );
}

std::unique_ptr<TBaseTrigger> TBaseTrigger::CreateFromPropertyList( const __SafeCFPropertyList& inValue )
{
    const XPlistDictionary* const dictionary = inValue.AsDictionary();
    XThrowIfNot( dictionary && dictionary->IsCorrectTypeID() );
    XText name;
    (void)dictionary->Get( kTypeKey, name );
    bool isOlder = false;
    const std::optional<TriggerType> type = TriggerTypeFromName( name, isOlder );
    XThrowIfNotText( type, "false" );
    if ( MLoadObserver* const observer = MLoadObserver::Current(); observer and isOlder )
        observer->DidUpgradeType(
            *dictionary, name.GetText(), TextFromASCII( kTriggerTypeNames[std::size_t( *type )] ) );

    std::unique_ptr<TBaseTrigger> trigger = TTriggerFactory::GetTriggerFactory( *type ).CreateTrigger();
    trigger->LoadSubclassFromDictionary( *dictionary );
    return trigger;
}

__SafeCFPropertyList TBaseTrigger::CopyToPropertyList() const
{
    XMutableDictionary dictionary;
    SaveSubclassToDictionary( dictionary );
    dictionary.Set( kTypeKey, XPlistString::InternASCII( kTriggerTypeNames[std::size_t( GetTriggerType() )] ) );
    return dictionary.Seal();
}

std::optional<Text> TBaseTrigger::GetTriggerXML() const
{
    return kvr_toXMLString( CopyToPropertyList() );
}

std::unique_ptr<TBaseTrigger> TBaseTrigger::CreateFromTriggerXML( TextView inText )
{
    const __SafeCFPropertyList value = kvr_fromXMLString( inText );
    return value ? CreateFromPropertyList( value ) : nullptr;
}

int TBaseTrigger::CompareWith( const TBaseTrigger& inOther ) const
{
    if ( GetTriggerType() != inOther.GetTriggerType() )
        return GetTriggerType() < inOther.GetTriggerType() ? -1 : 1;
    return CompareWithSame( inOther );
}

void TTriggerList::InsertValueAtIndex( std::size_t inIndex, ClonePtr<TBaseTrigger> inTrigger )
{
    const std::size_t index = std::min( inIndex, mTriggers.size() );
    mTriggers.insert( mTriggers.begin() + std::ptrdiff_t( index ), std::move( inTrigger ) );
}

void TTriggerList::RemoveValueAtIndex( std::size_t inIndex )
{
    XAssert( inIndex < GetCount() );
    if ( inIndex < GetCount() )
        mTriggers.erase( mTriggers.begin() + std::ptrdiff_t( inIndex ) );
}

#include "Triggers/TBaseTrigger.h"

#include "CFMethods/PropertyListCodec.h"
#include "Macros/MLoadObserver.h"
#include "Triggers/TStoredTrigger.h"
#include "Utility/Search/StringSearchee.h"
#include "Utility/Text/Localization.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XException.h"

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
    std::string_view name = inName.GetString()->ASCII();
    if ( const auto at = std::ranges::find( kTriggerTypeNames, name ); at != std::end( kTriggerTypeNames ) )
        return TriggerType( at - std::begin( kTriggerTypeNames ) );
    outOlder = true;
    if ( name == "FloatingPalette" )
        return TriggerType::kMacroPalette;
    if ( name == "MenuBar" )
        return TriggerType::kStatusMenu;
    outOlder = false;
    return {};
}

void TBaseTrigger::AddMatchStrings( StringSearchee& ioSearchee ) const
{
    ioSearchee.AddTrigger( GetTriggerTypeDescription() );
    ioSearchee.AddTrigger( GetDescription() );
    ioSearchee.AddTrigger( GetShortDescription() );
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

    auto trigger = std::make_unique<TStoredTrigger>( *type );
    trigger->LoadSubclassFromDictionary( *dictionary );
    return trigger;
}

__SafeCFPropertyList TBaseTrigger::CopyToPropertyList() const
{
    XMutableDictionary dictionary;
    SaveSubclassToDictionary( dictionary );
    dictionary.Set( kTypeKey, XPlistString::MakeASCII( kTriggerTypeNames[std::size_t( GetTriggerType() )] ) );
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

void TStoredTrigger::SaveSubclassToDictionary( XMutableDictionary& ioDictionary ) const
{
    if ( mKeys )
        ioDictionary.SetAll( *mKeys );
}

void TStoredTrigger::LoadSubclassFromDictionary( const XPlistDictionary& inDictionary )
{
    XMutableDictionary keys;
    keys.SetAll( inDictionary );
    keys.Set( kTypeKey, nullptr );
    mKeys = keys.Seal();
}

// There is no order among contents that aren't understood, so their bytes give one.
int TStoredTrigger::CompareWithSame( const TBaseTrigger& inOther ) const
{
    const auto& other = static_cast<const TStoredTrigger&>( inOther );
    const __SafeCFPropertyList a( mKeys ), b( other.mKeys );
    if ( a == b )
        return 0;
    if ( not a or not b )
        return a ? 1 : -1;
    const XBytes x = WriteBinaryPropertyList( a ), y = WriteBinaryPropertyList( b );
    return x.View() < y.View() ? -1 : 1;
}

std::unique_ptr<TBaseTrigger> TStoredTrigger::Clone() const
{
    auto clone = std::make_unique<TStoredTrigger>( mType );
    clone->mKeys = mKeys;
    return clone;
}

Text TStoredTrigger::GetTriggerTypeDescription() const
{
    return kvr_localized( u"t" + TextFromASCII( kTriggerTypeNames[std::size_t( mType )] ) + u"TriggerTitle" );
}

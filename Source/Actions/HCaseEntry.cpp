#include "Actions/HCaseEntry.h"

#include "Actions/ActionLimits.h"
#include "Actions/AppleScriptUIDMap.h"
#include "Actions/HFieldVisitors.h"
#include "CFMethods/PropertyListCodec.h"
#include "Macros/MLoadObserver.h"
#include "Utility/Search/StringSearchee.h"
#include "Utility/Text/Localization.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XException.h"

namespace
{
AppleScriptUIDMap<HCaseEntry>& gAppleScriptUIDtoCaseEntryMap()
{
    static AppleScriptUIDMap<HCaseEntry> gMap( "HCaseEntry" );
    return gMap;
}
} // namespace

HCaseEntry::HCaseEntry( const HCaseEntry& inOther )
    : mType( inOther.mType ),
      mTestValue( inOther.mTestValue ),
      mActions( inOther.mActions )
{}

HCaseEntry::~HCaseEntry()
{
    if ( mAppleScriptUID != 0 )
        gAppleScriptUIDtoCaseEntryMap().Remove( mAppleScriptUID, this );
}

HCaseEntry& HCaseEntry::operator=( HCaseEntry&& ioOther ) noexcept
{
    mType = ioOther.mType;
    mTestValue = std::move( ioOther.mTestValue );
    std::swap( mActions, ioOther.mActions );
    return *this;
}

std::unique_ptr<HCaseEntry> HCaseEntry::Clone() const
{
    return std::unique_ptr<HCaseEntry>( new HCaseEntry( *this ) );
}

void HCaseEntry::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "TestValue", mTestValue );
    inVisitor.Name( "ConditionType", mType ); // an operator's name, under the key of a condition's type
    inVisitor.Actions( "Actions", "ActionListDisclosed", mActions );
}

void HCaseEntry::LoadFromPropertyList( const __SafeCFPropertyList& inValue )
{
    const XPlistDictionary* dictionary = inValue.AsDictionary();
    XThrowIfNotText( dictionary, "dictionary && dictionary->IsCorrectTypeID()" );
    mType = GenericConditionType::kContains;
    mTestValue = SharedText<u"">();
    mActions = HActions();
    HReadingVisitor visitor( *dictionary );
    DescribeFields( visitor );
}

CFContainer<XPlistDictionary> HCaseEntry::CopyToPropertyList() const
{
    XMutableDictionary dictionary;
    HSavingVisitor visitor( dictionary );
    const_cast<HCaseEntry*>( this )->DescribeFields( visitor ); // a saving visitor writes to no member
    return dictionary.Seal();
}

std::optional<Text> HCaseEntry::GetCaseEntryXML() const
{
    return kvr_toXMLString( CopyToPropertyList() );
}

std::unique_ptr<HCaseEntry> HCaseEntry::CreateFromCaseEntryXML( TextView inText )
{
    try
    {
        if ( const __SafeCFPropertyList value =
                 inText.empty() ? nullptr : kvr_fromXMLString( inText, kActionsPlistLimits ) )
            return std::make_unique<HCaseEntry>( value );
    }
    catch ( const std::exception& )
    {
        // An entry never fails to appear.
    }
    return std::make_unique<HCaseEntry>();
}

Text HCaseEntry::GetDescription() const
{
    if ( mType == GenericConditionType::kOtherwise )
        return kvr_localized( u"kvSwitchOtherwiseDescription" );
    return kvr_localizedFormat( u"kvSwitchDescriptionFormat",
        TextView( GenericCondition( mType ).GetDescription( mTestValue, 0, GenericConditionAddText::kNothing ) ) );
}

void HCaseEntry::AddMatchStringsForConditions( StringSearchee& ioSearchee ) const
{
    ioSearchee.Add( GetDescription() );
}

void HCaseEntry::AddMatchStringsForActions( StringSearchee& ioSearchee ) const
{
    mActions.GetList().AddMatchStrings( ioSearchee );
}

std::uint64_t HCaseEntry::GetAppleScriptUID() const
{
    if ( mAppleScriptUID == 0 )
    {
        mAppleScriptUID = gAppleScriptUIDtoCaseEntryMap().GetNewUID();
        gAppleScriptUIDtoCaseEntryMap().Set( mAppleScriptUID, const_cast<HCaseEntry*>( this ) );
    }
    return mAppleScriptUID;
}

HCaseEntry* HCaseEntry::GetCaseEntryForAppleScriptUID( std::uint64_t inUID )
{
    return gAppleScriptUIDtoCaseEntryMap().Find( inUID );
}

// The list

std::unique_ptr<HCaseEntryList> HCaseEntryList::Clone() const
{
    auto clone = std::make_unique<HCaseEntryList>();
    for ( const auto& entry : mCaseEntries )
        clone->AppendEntry( entry->Clone() );
    return clone;
}

void HCaseEntryList::AppendEntry( std::unique_ptr<HCaseEntry> inEntry )
{
    XAssert( inEntry );
    if ( inEntry )
        mCaseEntries.push_back( std::move( inEntry ) );
}

void HCaseEntryList::LoadFromPropertyList( const __SafeCFPropertyList& inValue )
{
    mCaseEntries.clear();
    const XPlistArray* entries = inValue.AsArray();
    for ( std::size_t i = 0; entries and i < entries->GetCount(); ++i )
    {
        try
        {
            mCaseEntries.push_back( std::make_unique<HCaseEntry>( entries->GetValueAt( i ) ) );
        }
        catch ( const XException& error )
        {
            if ( MLoadObserver* observer = MLoadObserver::Current() )
                observer->DidDrop( *entries, i, error.GetMessage() );
        }
    }
}

CFContainer<XPlistArray> HCaseEntryList::CopyToPropertyList() const
{
    XMutableArray array;
    for ( const auto& entry : mCaseEntries )
        array.Append( entry->CopyToPropertyList() );
    return array.Seal();
}

bool HCaseEntryList::IsIndex( Index inIndex ) const
{
    XAssert( inIndex >= 0 );
    XAssertText( inIndex < GetCount(), "inIndex < CFIndex(mCaseEntryList.size())" );
    return inIndex >= 0 and inIndex < GetCount();
}

HCaseEntry* HCaseEntryList::GetCaseEntry( Index inIndex ) const
{
    return IsIndex( inIndex ) ? mCaseEntries[std::size_t( inIndex )].get() : nullptr;
}

void HCaseEntryList::InsertEntryAt( Index inIndex, std::unique_ptr<HCaseEntry> inEntry )
{
    XAssert( inEntry );
    if ( inEntry and ( inIndex == GetCount() or IsIndex( inIndex ) ) )
        mCaseEntries.insert( mCaseEntries.begin() + inIndex, std::move( inEntry ) );
}

void HCaseEntryList::ReplaceEntryAtIndex( Index inIndex, std::unique_ptr<HCaseEntry> inEntry )
{
    XAssert( inEntry );
    if ( inEntry and IsIndex( inIndex ) )
        mCaseEntries[std::size_t( inIndex )] = std::move( inEntry );
}

void HCaseEntryList::RemoveEntryAtIndex( Index inIndex )
{
    if ( IsIndex( inIndex ) )
        mCaseEntries.erase( mCaseEntries.begin() + inIndex );
}

void HCaseEntryList::AddMatchStringsForConditions( StringSearchee& ioSearchee ) const
{
    for ( const auto& entry : mCaseEntries )
        entry->AddMatchStringsForConditions( ioSearchee );
}

void HCaseEntryList::AddMatchStringsForActions( StringSearchee& ioSearchee ) const
{
    for ( const auto& entry : mCaseEntries )
        entry->AddMatchStringsForActions( ioSearchee );
}

#include "Conditions/CConditionList.h"

#include "Actions/HFieldVisitors.h"
#include "Macros/MLoadObserver.h"
#include "Utility/Search/StringSearchee.h"
#include "Utility/Text/Localization.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XException.h"

namespace
{
__SafeCFPropertyList DisplayContent( const CBaseCondition& inCondition )
{
    XMutableDictionary content;
    content.SetText( CFSTR( "description" ), inCondition.GetDescription() );
    content.Set( CFSTR( "icon" ), inCondition.GetXIcon().GetSavedData() );
    if ( const XImage extra = inCondition.GetDescriptionExtraImage(); extra.Defined() )
        content.Set( CFSTR( "extraicon" ), XIcon( extra ).GetSavedData() );
    return content.Seal();
}
} // namespace

void CConditionList::DescribeIn( HFieldVisitor& inVisitor )
{
    constexpr HFieldKey kConditions = "Conditions";
    if ( StringSearchee* searchee = inVisitor.Searchee() )
    {
        AddMatchStrings( *searchee );
        return;
    }
    __SafeCFPropertyList value = inVisitor.IsReading() ? nullptr : __SafeCFPropertyList( CopyToPropertyList() );
    inVisitor.Value( kConditions, value, { .mRequiredAs = "conditions" } );
    if ( not inVisitor.IsReading() )
        return;
    LoadFromPropertyList( value );
    if ( not value.AsDictionary() )
        inVisitor.NoteRepair( kConditions, u"isn't a dictionary; no conditions stand", MLoadRule::kWrongTypeDefaulted );
}

void CConditionList::LoadFromPropertyList( const __SafeCFPropertyList& inValue )
{
    mConditions.clear();
    mMatch = ConditionListMatch::kAll;
    const XPlistDictionary* const dictionary = inValue.AsDictionary();
    if ( not dictionary )
        return;
    HReadingVisitor visitor( *dictionary );
    visitor.Name( "ConditionListMatch", mMatch );
    __SafeCFPropertyList conditions;
    visitor.Value( "ConditionList", conditions, {} );
    if ( const XPlistArray* array = conditions.AsArray() )
        LoadConditions( *array );
    else if ( conditions )
        visitor.NoteRepair( "ConditionList", u"isn't an array; no conditions stand", MLoadRule::kWrongTypeDefaulted );
}

void CConditionList::LoadConditions( const XPlistArray& inConditions )
{
    mConditions.reserve( inConditions.GetCount() );
    for ( std::size_t i = 0; i < inConditions.GetCount(); ++i )
    {
        try
        {
            mConditions.emplace_back( CBaseCondition::CreateFromPropertyList( inConditions.GetValueAt( i ) ) );
        }
        catch ( const XException& error )
        {
            if ( MLoadObserver* observer = MLoadObserver::Current() )
                observer->DidDrop( inConditions, i, error.GetMessage() );
        }
    }
}

CFContainer<XPlistDictionary> CConditionList::CopyToPropertyList() const
{
    XMutableArray conditions;
    for ( const auto& condition : mConditions )
        conditions.Append( condition->CopyToPropertyList() );
    XMutableDictionary list;
    list.SetText( CFSTR( "ConditionListMatch" ), StoredName( mMatch ) );
    list.Set( CFSTR( "ConditionList" ), conditions.Seal() );
    return list.Seal();
}

// The conditions

bool CConditionList::IsIndex( std::size_t inIndex ) const
{
    XAssert( inIndex < mConditions.size() );
    return inIndex < mConditions.size();
}

CBaseCondition* CConditionList::GetConditionAtIndex( std::size_t inIndex ) const
{
    return IsIndex( inIndex ) ? mConditions[inIndex].Get() : nullptr;
}

void CConditionList::SetConditionAtIndex( std::size_t inIndex, std::unique_ptr<CBaseCondition> inCondition )
{
    XAssert( inCondition );
    if ( inCondition and IsIndex( inIndex ) )
        mConditions[inIndex] = std::move( inCondition );
}

void CConditionList::AppendCondition( std::unique_ptr<CBaseCondition> inCondition )
{
    XAssert( inCondition );
    if ( inCondition )
        mConditions.emplace_back( std::move( inCondition ) );
}

void CConditionList::RemoveConditionAtIndex( std::size_t inIndex )
{
    if ( IsIndex( inIndex ) )
        mConditions.erase( mConditions.begin() + std::ptrdiff_t( inIndex ) );
}

void CConditionList::UpdateToDefaultValues( bool inForce )
{
    for ( const auto& condition : mConditions )
        condition->UpdateToDefaultValues( inForce );
}

void CConditionList::UpdateForPasteOrAdd()
{
    for ( const auto& condition : mConditions )
        condition->UpdateForPasteOrAdd();
}

void CConditionList::AddMatchStrings( StringSearchee& ioSearchee ) const
{
    for ( const auto& condition : mConditions )
        condition->AddMatchStrings( ioSearchee );
}

// Words

Text CConditionList::GetConditionDisplayText() const
{
    return kvr_localized( kvr_format( "cConditionList%@Title", StoredName( mMatch ) ) );
}

CFContainer<XPlistArray> CConditionList::GetConditionDisplayContent() const
{
    XMutableArray content;
    for ( const auto& condition : mConditions )
        content.Append( DisplayContent( *condition ) );
    return content.Seal();
}

Text CConditionList::GetDescription() const
{
    if ( Empty() )
        return {};
    const bool mustHold = mMatch == ConditionListMatch::kAny or mMatch == ConditionListMatch::kAll;
    if ( GetCount() == 1 and mustHold )
        return mConditions[0]->GetDescription();
    Text conditions;
    for ( const auto& condition : mConditions )
        conditions +=
            ( conditions.empty() ? Text() : kvr_localized( u"cConditionListSeparator" ) ) + condition->GetDescription();
    return kvr_localizedFormat( u"cConditionListFormat",
        TextView( GetCount() == 1 ? kvr_localized( u"cConditionListNotTitle" ) : GetConditionDisplayText() ),
        TextView( conditions ) );
}

std::vector<Text> CConditionList::GetClauses() const
{
    std::vector<Text> clauses;
    if ( GetCount() > 1 )
    {
        for ( const auto& condition : mConditions )
            clauses.push_back( condition->GetDescription() );
    }
    return clauses;
}

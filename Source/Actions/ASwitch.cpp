#include "Actions/ASwitch.h"

#include "Utility/Search/StringSearchee.h"
#include "Utility/Text/Localization.h"

ASwitch::ASwitch() : mCaseEntries( std::make_shared<HCaseEntryList>() )
{
    mCaseEntries->AppendEntry( std::make_unique<HCaseEntry>() );
}

ASwitch::ASwitch( const ASwitch& inOther )
    : HActionOf( inOther ),
      mSource( inOther.mSource ),
      mCaseEntries( inOther.mCaseEntries->Clone() )
{}

void ASwitch::DescribeFields( HFieldVisitor& inVisitor )
{
    mSource.DescribeFields( inVisitor );
    inVisitor.Converted( "CaseEntries", *mCaseEntries );
    if ( inVisitor.IsReading() and mCaseEntries->GetCount() == 0 ) // none of them could be understood
        mCaseEntries->AppendEntry( std::make_unique<HCaseEntry>() );
}

bool ASwitch::IsEmptyOfActions() const
{
    return mCaseEntries->GetCount() == 0 or
        ( mCaseEntries->GetCount() == 1 and mCaseEntries->GetCaseEntry( 0 )->GetActionList().Empty() );
}

void ASwitch::DoForEverySubActionList( const HActionList::ListBlock& inBlock ) const
{
    for ( HCaseEntryList::Index i = 0; i < mCaseEntries->GetCount(); ++i )
    {
        const HCaseEntry& entry = *mCaseEntries->GetCaseEntry( i );
        inBlock( [&entry] { return entry.GetDescription(); }, entry.GetActionList() );
    }
}

void ASwitch::AddMatchStrings( StringSearchee& ioSearchee ) const
{
    HBaseAction::AddMatchStrings( ioSearchee );
    mCaseEntries->AddMatchStringsForConditions( ioSearchee );
}

std::vector<Text> ASwitch::ActionCouldBeRegExStrings() const
{
    std::vector<Text> texts;
    for ( HCaseEntryList::Index i = 0; i < mCaseEntries->GetCount(); ++i )
    {
        const HCaseEntry& entry = *mCaseEntries->GetCaseEntry( i );
        for ( Text& text :
            GenericCondition( entry.GetConditionType() ).CouldBeIntendedRegExStrings( entry.GetTestValue() ) )
            texts.push_back( std::move( text ) );
    }
    return texts;
}

Text ASwitch::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat( u"kvSwitchActionName", TextView( mSource.GetActionDescriptionString() ) );
}

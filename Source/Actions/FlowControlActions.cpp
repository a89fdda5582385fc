#include "Actions/FlowControlActions.h"

#include "Actions/DescriptionText.h"
#include "Actions/HFieldVisitors.h"
#include "Actions/RecordedNumbers.h"
#include "Utility/Text/Localization.h"

#include <algorithm>
#include <optional>

namespace
{
// The length of a pause that is no calculation.
std::optional<double> PlainTime( const XText& inText )
{
    const std::optional<double> number = kvr_plainNumber( inText );
    return number and *number >= 0 ? number : std::nullopt;
}

// What an action does without conditions, or a format with the conditions in words.
Text ConditionalDescription( const Text& inConditions, TextView inEmptyKey, TextView inFormatKey )
{
    return inConditions.empty() ? kvr_localized( inEmptyKey ) : kvr_localizedFormat( inFormatKey, inConditions );
}
} // namespace

// If Then Else

void AIfThenElse::DescribeFields( HFieldVisitor& inVisitor )
{
    mConditions.DescribeIn( inVisitor );
    inVisitor.Actions( "ThenActions", "ThenActionListDisclosed", mThenActions );
    inVisitor.Actions( "ElseActions", "ElseActionListDisclosed", mElseActions );
}

bool AIfThenElse::IsEmptyOfActions() const
{
    return mThenActions.GetList().Empty() and mElseActions.GetList().Empty();
}

void AIfThenElse::DoForEverySubActionList( const HActionList::ListBlock& inBlock ) const
{
    inBlock( [] { return kvr_localized( u"kvIfThenElseThen" ); }, mThenActions.GetList() );
    inBlock( [] { return kvr_localized( u"kvIfThenElseElse" ); }, mElseActions.GetList() );
}

Text AIfThenElse::DescriptionWith( const Text& inConditions ) const
{
    return ConditionalDescription( inConditions, u"kvIfThenElseNoConditionsTitle", u"kvIfThenElseTitle" );
}

// Loops

void AWhile::DescribeFields( HFieldVisitor& inVisitor )
{
    mConditions.DescribeIn( inVisitor );
    DescribeActions( inVisitor );
}

Text AWhile::DescriptionWith( const Text& inConditions ) const
{
    return ConditionalDescription( inConditions, u"kvWhileNoConditionsTitle", u"kvWhileTitle" );
}

void AUntil::DescribeFields( HFieldVisitor& inVisitor )
{
    mConditions.DescribeIn( inVisitor );
    DescribeActions( inVisitor );
}

Text AUntil::DescriptionWith( const Text& inConditions ) const
{
    if ( inConditions.empty() )
        return kvr_localized( IsEmptyOfActions() ? u"kvUntilNothingTitle" : u"kvUntilNoConditionsTitle" );
    return kvr_format( "%@ %@", TextView( kvr_localized( u"kvUntilTitle" ) ), TextView( inConditions ) );
}

void ARepeat::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Calculation( "CountExpression", mCountExpression, { .mOlderKey = "Count" } );
    DescribeActions( inVisitor );
}

Text ARepeat::InternalGetActionDescriptionString() const
{
    if ( IsEmptyOfActions() )
        return kvr_localized( u"kvRepeatNoActionsTitle" );
    return kvr_localizedFormat( u"kvRepeatTitleFormat", TextView( mCountExpression.GetText() ) );
}

void AFor::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Variable( "Variable", mVariable );
    mCollections.DescribeIn( inVisitor );
    DescribeActions( inVisitor );
}

Text AFor::InternalGetActionDescriptionString() const
{
    if ( mCollections.Empty() )
        return InternalGetActionHTMLDescriptionString();
    return kvr_localizedFormat(
        u"kvForTitle", TextView( mVariable.GetText() ), TextView( mCollections.GetDescription() ) );
}

Text AFor::GetDescriptionBeforeClauses() const
{
    return kvr_localizedFormat(
        u"kvForTitle", TextView( mVariable.GetText() ), TextView( kvr_localized( u"clCollectionListTitle" ) ) );
}

// One text for no collection, one for one, one for more.
Text AFor::InternalGetActionHTMLDescriptionString() const
{
    const Text key = kvr_format( "kvForHTMLTitle%d", int( std::min<std::size_t>( mCollections.GetCount(), 2 ) ) );
    return kvr_localizedFormat( key, TextView( mVariable.GetText() ) );
}

// Group

void AGroup::DescribeFields( HFieldVisitor& inVisitor )
{
    DescribeActions( inVisitor );
}

Text AGroup::InternalGetActionDescriptionString() const
{
    return kvr_localized( IsEmptyOfActions() ? u"kvGroupNoActionsTitle" : u"kvGroupTitle" );
}

// Waiting and checking

void AAssert::DescribeFields( HFieldVisitor& inVisitor )
{
    mConditions.DescribeIn( inVisitor );
}

Text AAssert::DescriptionWith( const Text& inConditions ) const
{
    return ConditionalDescription( inConditions, u"kvAssertNoConditionsTitle", u"hkAssertTitle" );
}

void APauseUntil::DescribeFields( HFieldVisitor& inVisitor )
{
    mConditions.DescribeIn( inVisitor );
}

Text APauseUntil::DescriptionWith( const Text& inConditions ) const
{
    return ConditionalDescription( inConditions, u"kvPauseUntilNoConditionsTitle", u"hkPauseUntilTitle" );
}

void ACancel::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "Action", mAction );
    inVisitor.Text( "Instance", mInstance );
}

std::vector<Text> ACancel::GetAddActionByNameExtraSearchString() const
{
    if ( mAction >= CancelAction::kRetryThisLoop )
        return { u"exit", u"break", u"loop" };
    return { u"exit", u"break" };
}

Text ACancel::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat( kvr_format( "Cancel%@Title", StoredName( mAction ) ), TextView( mInstance.GetText() ) );
}

void APause::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Calculation( "Time", mTime, { .mOlderKey = "Seconds" } );
    inVisitor.Name( "Unit", mUnit );
}

std::unique_ptr<HBaseAction> APause::Merge( const HBaseAction& inNext ) const
{
    const auto* next = dynamic_cast<const APause*>( &inNext );
    if ( not next or next->mUnit != mUnit )
        return nullptr;
    const std::optional<double> first = PlainTime( mTime ), second = PlainTime( next->mTime );
    if ( not first or not second )
        return nullptr;
    auto merged = std::make_unique<APause>( *this );
    merged->mTime = XText( kvr_shortestNumber( *first + *second ) );
    return merged;
}

std::vector<Text> APause::GetAddActionByNameExtraSearchString() const
{
    return { u"Wait", u"Delay" };
}

Text APause::InternalGetActionDescriptionString() const
{
    if ( mTime.IsEmpty() )
        return GetActionTitle();
    const TextView number = mTime.Equals( TextView( u"1" ) ) ? u"Singular" : u"Plural";
    const Text& unit = kvr_localized( kvr_format( "PauseUnit%@%@", StoredName( mUnit ), number ) );
    return kvr_localizedFormat( u"hkPauseTitleFormat", TextView( kvr_excerpt( mTime ) ), TextView( unit ) );
}

void ASemaphore::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "SemaphoreAction", mAction );
    // A new semaphore has a name; one read without the key has none.
    inVisitor.Text( "SemaphoreName", mName, { .mWhenMissing = u"" } );
}

Text ASemaphore::GetActionTitle() const
{
    return kvr_localized( kvr_format( "hkSemaphore%@Title", StoredName( mAction ) ) );
}

Text ASemaphore::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat(
        kvr_format( "hkSemaphore%@_DescriptionFormat", StoredName( mAction ) ), TextView( mName.GetText() ) );
}

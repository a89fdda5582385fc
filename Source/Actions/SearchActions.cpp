#include "Actions/SearchActions.h"

#include "Actions/DescriptionText.h"
#include "Actions/LegacyUpgrade.h"
#include "Utility/Text/Localization.h"

void SearchRegExFields::DescribeAction( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "Action", mAction );
}

void SearchRegExFields::DescribeSearch( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Search", mSearch );
    inVisitor.Value( "Captures", mCaptures, { .mIsSearched = true } );
}

void SearchReplaceFields::DescribeAction( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "Action", mAction );
}

void SearchReplaceFields::DescribeSearch( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Search", mSearch );
    inVisitor.Text( "Replace", mReplace );
}

// Search Using Regular Expression

void ASearchRegEx::DescribeFields( HFieldVisitor& inVisitor )
{
    mSource.DescribeFields( inVisitor );
    mFields.DescribeAction( inVisitor );
    mFields.DescribeSearch( inVisitor );
}

void ASearchRegEx::UpdateToDefaultValues( bool inFlag )
{
    mSource.UpdateToDefaultValues( inFlag );
}

std::vector<Text> ASearchRegEx::ActionCouldBeRegExStrings() const
{
    return { mFields.mSearch.GetText() };
}

Text ASearchRegEx::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat( kvr_format( "kvSearchRegEx%@DescriptionFormat", StoredName( mFields.mAction ) ),
        TextView( mSource.GetActionDescriptionString() ), TextView( kvr_excerpt( mFields.mSearch ) ) );
}

// Search and Replace

void ASearchReplace::DescribeFields( HFieldVisitor& inVisitor )
{
    mSource.DescribeFields( inVisitor );
    mDestination.DescribeFields( inVisitor );
    mFields.DescribeAction( inVisitor );
    mFields.DescribeSearch( inVisitor );
}

void ASearchReplace::UpdateToDefaultValues( bool inFlag )
{
    mSource.UpdateToDefaultValues( inFlag );
    mDestination.UpdateToDefaultValues( inFlag );
}

std::vector<Text> ASearchReplace::ActionCouldBeRegExStrings() const
{
    const bool isRegEx = mFields.mAction == SearchReplaceAction::kCaseSensitiveRegEx or
        mFields.mAction == SearchReplaceAction::kIgnoreCaseRegEx;
    return isRegEx ? std::vector<Text>{ mFields.mSearch.GetText() } : std::vector<Text>();
}

Text ASearchReplace::InternalGetActionDescriptionString() const
{
    const Text key = kvr_format( "kvSearchReplace%@%@DescriptionFormat", StoredName( mFields.mAction ),
        TextView( mFields.mReplace.IsEmpty() ? u"Delete" : u"" ) );
    const Text description = kvr_localizedFormat( key, TextView( mSource.GetActionDescriptionString() ),
        TextView( kvr_excerpt( mFields.mSearch ) ), TextView( kvr_excerpt( mFields.mReplace ) ) );
    return kvr_withDestination( description, mDestination );
}

// Older types

void ASearchVariable::DescribeFields( HFieldVisitor& inVisitor )
{
    mFields.DescribeAction( inVisitor );
    inVisitor.Variable( "Variable", mVariable );
    mFields.DescribeSearch( inVisitor );
}

std::unique_ptr<HBaseAction> ASearchVariable::CleanActionAfterInitialization( const XPlistDictionary& inDictionary )
{
    auto search = MakeModernForm<ASearchRegEx>( *this, inDictionary );
    search->GetSource().InitializeFromVariable( mVariable );
    search->SetFields( mFields );
    return search;
}

void ASearchClipboard::DescribeFields( HFieldVisitor& inVisitor )
{
    mFields.DescribeAction( inVisitor );
    inVisitor.Part( "Target", mTarget );
    mFields.DescribeSearch( inVisitor );
}

std::unique_ptr<HBaseAction> ASearchClipboard::CleanActionAfterInitialization( const XPlistDictionary& inDictionary )
{
    auto search = MakeModernForm<ASearchRegEx>( *this, inDictionary );
    search->GetSource().InitializeFromClipboardTarget( mTarget );
    search->SetFields( mFields );
    return search;
}

void ASearchReplaceVariable::DescribeFields( HFieldVisitor& inVisitor )
{
    mFields.DescribeAction( inVisitor );
    inVisitor.Variable( "Variable", mVariable );
    mFields.DescribeSearch( inVisitor );
}

std::unique_ptr<HBaseAction> ASearchReplaceVariable::CleanActionAfterInitialization(
    const XPlistDictionary& inDictionary )
{
    auto replace = MakeModernForm<ASearchReplace>( *this, inDictionary );
    replace->GetSource().InitializeFromVariable( mVariable );
    replace->SetFields( mFields );
    return replace;
}

void ASearchReplaceClipboard::DescribeFields( HFieldVisitor& inVisitor )
{
    mFields.DescribeAction( inVisitor );
    mFields.DescribeSearch( inVisitor );
    inVisitor.Part( "Target", mTarget );
}

std::unique_ptr<HBaseAction> ASearchReplaceClipboard::CleanActionAfterInitialization(
    const XPlistDictionary& inDictionary )
{
    auto replace = MakeModernForm<ASearchReplace>( *this, inDictionary );
    replace->GetSource().InitializeFromClipboardTarget( mTarget );
    replace->SetFields( mFields );
    return replace;
}

#include "Actions/TextActions.h"

#include "Actions/DescriptionText.h"
#include "Actions/KeyboardActions.h"
#include "Utility/Search/StringSearchee.h"
#include "Utility/Text/Localization.h"
#include "Utility/Text/StringHelpers.h"
#include "Utility/Text/StyledText.h"

// Comment

void AComment::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Title", mTitle );
    inVisitor.Data( "StyledText", mStyledText );
    if ( not mStyledText )
        inVisitor.Text( "Text", mText, { .mWrite = XWrite::kWhenSet } );
    else if ( StringSearchee* searchee = inVisitor.Searchee() )
        searchee->Add( GetPlainText() );
}

Text AComment::GetPlainText() const
{
    if ( not mStyledText )
        return mText.GetText();
    return kvr_plainTextFromRTF( mStyledText->GetBytes() ).value_or( Text() );
}

Text AComment::InternalGetActionDescriptionString() const
{
    const Text shown =
        mTitle.IsEmpty() ? kvr_excerpt( XText( kvr_stringByTrimmingWhitespace( GetPlainText() ) ) ) : mTitle.GetText();
    return shown.empty() ? GetActionTitle() : kvr_localizedFormat( u"kvCommentDescriptionFormat", TextView( shown ) );
}

// Insert Text

void AInsertText::DescribeFields( HFieldVisitor& inVisitor )
{
    mText.DescribeFields( inVisitor, "Text", "StyledText" );
    if ( inVisitor.IsReading() )
        ReadOlderAction( inVisitor );
    inVisitor.Name( "Action", mAction );
    mTarget.DescribeFields( inVisitor, "TargetingType", "TargetApplication" );
}

// Older files have two flags for what is a name now; what they say stands where the name isn't there.
void AInsertText::ReadOlderAction( HFieldVisitor& inVisitor )
{
    if ( inVisitor.HasKey( "Action" ) )
        return;
    bool justDisplay = false, paste = false;
    inVisitor.Boolean( "JustDisplay", justDisplay );
    inVisitor.Boolean( "Paste", paste );
    if ( justDisplay )
        mAction = InsertTextAction::kDisplayWindow;
    else if ( paste )
        mAction = InsertTextAction::kByPasting;
    if ( inVisitor.HasKey( "JustDisplay" ) )
        inVisitor.NoteOlderKey( "JustDisplay", "Action" );
    if ( inVisitor.HasKey( "Paste" ) )
        inVisitor.NoteOlderKey( "Paste", "Action" );
}

std::unique_ptr<AInsertText> AInsertText::MakeTyped( const XText& inText, const ApplicationTarget& inTarget )
{
    auto action = std::make_unique<AInsertText>();
    action->SetText( inText );
    action->mTarget = inTarget;
    return action;
}

bool AInsertText::IsPlainTypedInto( const ApplicationTarget& inTarget ) const
{
    return mAction == InsertTextAction::kByTyping and not mText.GetStyledText() and mTarget.IsSameAs( inTarget );
}

std::unique_ptr<HBaseAction> AInsertText::WithText( const Text& inText ) const
{
    auto action = std::make_unique<AInsertText>( *this );
    action->SetText( XText( inText ) );
    return action;
}

std::unique_ptr<HBaseAction> AInsertText::Merge( const HBaseAction& inNext ) const
{
    if ( const auto* key = dynamic_cast<const ASimulateKeystroke*>( &inNext ) )
    {
        const char16_t character = key->GetTypedCharacter();
        if ( character == 0 or not IsPlainTypedInto( key->GetTarget() ) )
            return nullptr;
        return WithText( kvr_format( "%@%C", mText.GetText(), character ) );
    }
    const auto* next = dynamic_cast<const AInsertText*>( &inNext );
    if ( not next or not IsPlainTypedInto( next->mTarget ) or not next->IsPlainTypedInto( mTarget ) )
        return nullptr;
    return WithText( mText.GetText().GetText() + next->mText.GetText().GetText() );
}

std::unique_ptr<HBaseAction> AInsertText::MergedAfter( char16_t inCharacter, const ApplicationTarget& inTarget ) const
{
    if ( not IsPlainTypedInto( inTarget ) )
        return nullptr;
    return WithText( kvr_format( "%C%@", inCharacter, mText.GetText() ) );
}

Text AInsertText::InternalGetActionDescriptionString() const
{
    const Text description =
        kvr_localizedFormat( kvr_format( "kvInsertText%@DescriptionFormat", StoredName( mAction ) ),
            TextView( kvr_excerpt( mText.GetText() ) ) );
    // A text that is only shown goes to no application.
    return mAction < InsertTextAction::kDisplayWindow ? kvr_withApplication( description, mTarget ) : description;
}

// Set Variable to Text

void ASetVariableToText::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Variable( "Variable", mVariable );
    inVisitor.Text( "Text", mText );
    inVisitor.Name( "Where", mWhere );
}

XText ASetVariableToText::GetTransformationResult( CalculateError*, float*, bool ) const
{
    return mWhere == TextPlacement::kSet ? mText : XText();
}

Text ASetVariableToText::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat( kvr_format( "kvSetVariableToText%@DescriptionFormat", StoredName( mWhere ) ),
        TextView( mVariable.GetText() ), TextView( kvr_excerpt( mText ) ) );
}

#include "Actions/TextActions.h"

#include "Utility/Search/StringSearchee.h"
#include "Utility/Text/Localization.h"

namespace
{
// A description shows the beginning of a text, on one line.
constexpr std::size_t kDescribedLength = 60;

Text Excerpt( const XText& inText )
{
    Text text = inText.GetText();
    for ( char16_t& unit : text )
    {
        if ( unit == u'\n' or unit == u'\r' or unit == u'\t' )
            unit = u' ';
    }
    if ( text.size() > kDescribedLength )
    {
        text.resize( IsHighSurrogate( text[kDescribedLength - 1] ) ? kDescribedLength - 1 : kDescribedLength );
        text += u'…';
    }
    return text;
}
} // namespace

// Comment

void AComment::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Title", mTitle );
    inVisitor.Data( "StyledText", mStyledText );
    if ( not mStyledText )
        inVisitor.Text( "Text", mText, { .mWrite = XWrite::kWhenSet } );
}

void AComment::AddMatchStrings( StringSearchee& ioSearchee ) const
{
    HBaseAction::AddMatchStrings( ioSearchee );
    ioSearchee.Add( mTitle );
    ioSearchee.Add( mText );
}

Text AComment::InternalGetActionDescriptionString() const
{
    if ( mTitle.IsEmpty() )
        return GetActionTitle();
    return kvr_localizedFormat( u"kvCommentDescriptionFormat", TextView( mTitle.GetText() ) );
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

std::unique_ptr<HBaseAction> AInsertText::Merge( const HBaseAction& inNext ) const
{
    const auto* next = dynamic_cast<const AInsertText*>( &inNext );
    if ( not next or mAction != InsertTextAction::kByTyping or next->mAction != mAction or
        not mTarget.IsSameAs( next->mTarget ) or mText.GetStyledText() or next->mText.GetStyledText() )
        return nullptr;
    auto merged = std::make_unique<AInsertText>( *this );
    merged->SetText( XText( mText.GetText().GetText() + next->mText.GetText().GetText() ) );
    return merged;
}

void AInsertText::AddMatchStrings( StringSearchee& ioSearchee ) const
{
    HBaseAction::AddMatchStrings( ioSearchee );
    ioSearchee.Add( mText.GetText() );
    mTarget.AddMatchStrings( ioSearchee );
}

Text AInsertText::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat( kvr_format( "kvInsertText%@DescriptionFormat", StoredName( mAction ) ),
        TextView( Excerpt( mText.GetText() ) ) );
}

// Set Variable to Text

void ASetVariableToText::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Variable( "Variable", mVariable );
    inVisitor.Text( "Text", mText );
    inVisitor.Name( "Where", mWhere );
}

void ASetVariableToText::AddMatchStrings( StringSearchee& ioSearchee ) const
{
    HBaseAction::AddMatchStrings( ioSearchee );
    ioSearchee.Add( mVariable );
    ioSearchee.Add( mText );
}

XText ASetVariableToText::GetTransformationResult( CalculateError*, float*, bool ) const
{
    return mWhere == TextPlacement::kSet ? mText : XText();
}

Text ASetVariableToText::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat( kvr_format( "kvSetVariableToText%@DescriptionFormat", StoredName( mWhere ) ),
        TextView( mVariable.GetText() ), TextView( Excerpt( mText ) ) );
}

#include "Actions/ClipboardActions.h"

#include "Actions/DescriptionText.h"
#include "Actions/LegacyUpgrade.h"
#include "Utility/Text/Localization.h"

// Cut, Copy or Paste

void ACutCopyPaste::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "Action", mAction );
}

Text ACutCopyPaste::InternalGetActionDescriptionString() const
{
    return kvr_localized( kvr_format( "kvCutCopyPaste%@Description", StoredName( mAction ) ) );
}

void AClipboardSwitcherMacroAction::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "Action", mAction );
    DescribeClipboard( inVisitor, "Name", "RedundandDisplayName", mClipboard ); // as stored
}

void AClipboardSwitcherMacroAction::UpdateToDefaultValues( bool inFlag )
{
    mClipboard.UpdateClipboardReference( inFlag );
}

Text AClipboardSwitcherMacroAction::InternalGetActionDescriptionString() const
{
    return kvr_commandDescription(
        u"kvClipboardSwitcherMacroAction", StoredName( mAction ), mClipboard.GetClipboardName() );
}

// Setting a clipboard

void ASetClipboardToText::DescribeFields( HFieldVisitor& inVisitor )
{
    mText.DescribeFields( inVisitor, "Text", "StyledText" );
    inVisitor.Boolean( "JustDisplay", mJustDisplay );
    inVisitor.Part( "Target", mTarget );
}

void ASetClipboardToText::UpdateToDefaultValues( bool inFlag )
{
    mTarget.UpdateToDefaultValues( inFlag );
}

Text ASetClipboardToText::InternalGetActionDescriptionString() const
{
    const Text text = kvr_excerpt( mText.GetText() );
    if ( mJustDisplay )
        return kvr_localizedFormat( u"kvSetClipboardToTextJustDisplayDescriptionFormat", TextView( text ) );
    return kvr_localizedFormat( mText.GetStyledText() ? u"kvSetClipboardToTextStyledDescriptionFormat"
                                                      : u"kvSetClipboardToTextPlainDescriptionFormat",
        TextView( mTarget.GetDisplayName() ), TextView( text ) );
}

void ASetClipboardToPastClipboard::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Calculation( "PastExpression", mPastExpression, { .mOlderKey = "Past" } );
    inVisitor.Part( "Target", mTarget );
}

void ASetClipboardToPastClipboard::UpdateToDefaultValues( bool inFlag )
{
    mTarget.UpdateToDefaultValues( inFlag );
}

Text ASetClipboardToPastClipboard::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat( u"kvSetClipboardToPastClipboardDescriptionFormat", TextView( mTarget.GetDisplayName() ),
        TextView( kvr_excerpt( mPastExpression ) ) );
}

void ADeletePastClipboard::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Calculation( "PastExpression", mPastExpression, { .mOlderKey = "Past" } );
}

Text ADeletePastClipboard::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat( u"kvDeletePastClipboardDescriptionFormat", TextView( kvr_excerpt( mPastExpression ) ) );
}

void ASetClipboardToFileReference::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Path", mPath );
    inVisitor.Part( "Target", mTarget );
}

void ASetClipboardToFileReference::UpdateToDefaultValues( bool inFlag )
{
    mTarget.UpdateToDefaultValues( inFlag );
}

Text ASetClipboardToFileReference::InternalGetActionDescriptionString() const
{
    if ( mPath.IsEmpty() )
        return GetActionTitle();
    return kvr_localizedFormat( u"kvSetClipboardToFileReferenceDescriptionFormat", TextView( mTarget.GetDisplayName() ),
        TextView( kvr_excerpt( mPath ) ) );
}

// Copying a clipboard

void ACopyClipboard::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Part( "Source", mSource );
    inVisitor.Part( "Target", mTarget );
}

void ACopyClipboard::UpdateToDefaultValues( bool inFlag )
{
    mSource.UpdateToDefaultValues( inFlag );
    mTarget.UpdateToDefaultValues( inFlag );
}

Text ACopyClipboard::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat( u"kvCopyClipboardDescriptionFormat", TextView( mSource.GetDisplayName() ),
        TextView( mTarget.GetDisplayName() ) );
}

// The reference stands even when no store of this machine knows it: were it left out, a file that is opened on
// another machine would copy the system clipboard from then on.

void ASetClipboardToNamedClipboard::DescribeFields( HFieldVisitor& inVisitor )
{
    DescribeClipboard( inVisitor, "Name", "RedundandDisplayName", mClipboard ); // as stored
}

std::unique_ptr<HBaseAction> ASetClipboardToNamedClipboard::CleanActionAfterInitialization(
    const XPlistDictionary& inDictionary )
{
    auto copy = MakeModernForm<ACopyClipboard>( *this, inDictionary );
    if ( not mClipboard.IsEmpty() )
        copy->SetSource( ClipboardTarget( mClipboard ) );
    return copy;
}

void ASaveClipboardToNamedClipboard::DescribeFields( HFieldVisitor& inVisitor )
{
    DescribeClipboard( inVisitor, "Name", "RedundandDisplayName", mClipboard ); // as stored
}

std::unique_ptr<HBaseAction> ASaveClipboardToNamedClipboard::CleanActionAfterInitialization(
    const XPlistDictionary& inDictionary )
{
    auto copy = MakeModernForm<ACopyClipboard>( *this, inDictionary );
    if ( not mClipboard.IsEmpty() )
        copy->SetTarget( ClipboardTarget( mClipboard ) );
    return copy;
}

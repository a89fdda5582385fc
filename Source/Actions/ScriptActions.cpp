#include "Actions/ScriptActions.h"

#include "Actions/DescriptionText.h"
#include "Utility/Text/Localization.h"

namespace
{
// The script as the page shows it, or the whole path of its file.
Text ScriptExtraHTML( bool inUsesText, const XText& inText, const XText& inPath )
{
    return inUsesText ? kvr_extraHTMLLine( u"kvScriptTextExtraHTMLFormat", kvr_excerpt( inText ) )
                      : kvr_extraHTMLLine( u"kvFileExtraHTMLFormat", inPath.GetText() );
}
} // namespace

Text AExecuteRootScript::DescribeExecution( const XText& inPath, const Text& inResult ) const
{
    if ( inPath.IsEmpty() )
        return GetActionTitle() + inResult;
    return kvr_localizedFormat(
               u"kvExecuteFileDescriptionFormat", TextView( GetActionTitle() ), TextView( kvr_fileName( inPath ) ) ) +
        inResult;
}

// Scripts

void AExecuteBaseScript::DescribeFields( HFieldVisitor& inVisitor )
{
    DescribePath( inVisitor, mPath );
    inVisitor.Text( "Text", mText );
    inVisitor.Boolean( "UseText", mUseText );
    mInput.DescribeFields( inVisitor );
    mResult.DescribeFields( inVisitor );
    inVisitor.Boolean( "TrimResultsNew", mTrimResults, { .mOlderKey = "TrimResults" } );
    inVisitor.Boolean( "IncludeStdErr", mIncludeStdErr );
    inVisitor.Boolean( "HonourFailureSettings", mHonourFailureSettings );
}

void AExecuteBaseScript::UpdateToDefaultValues( bool inForce )
{
    mInput.UpdateToDefaultValues( inForce );
    mResult.UpdateToDefaultValues( inForce );
}

void AExecuteBaseScript::SetPath( const XText& inPath )
{
    mPath = inPath;
    mUseText = false;
}

void AExecuteBaseScript::SetText( const XText& inText )
{
    mText = inText;
    mUseText = true;
}

Text AExecuteBaseScript::InternalGetActionDescriptionString() const
{
    return DescribeExecution( mUseText ? XText() : mPath, mResult.GetDescription() );
}

Text AExecuteBaseScript::GetActionExtraHTML() const
{
    return ScriptExtraHTML( mUseText, mText, mPath );
}

// Scripts in a custom prompt

void AExecuteJavaScriptForCustomPrompt::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Path", mPath );
    inVisitor.Text( "WindowID", mWindowID );
    inVisitor.Text( "Text", mText );
    inVisitor.Boolean( "UseText", mUseText );
    mResult.DescribeFields( inVisitor );
}

void AExecuteJavaScriptForCustomPrompt::UpdateToDefaultValues( bool inForce )
{
    mResult.UpdateToDefaultValues( inForce );
}

Text AExecuteJavaScriptForCustomPrompt::InternalGetActionDescriptionString() const
{
    const Text window = mWindowID.IsEmpty()
        ? GetActionTitle()
        : kvr_localizedFormat( u"kvExecuteJavaScriptInWindowDescriptionFormat", TextView( mWindowID.GetText() ) );
    return window + mResult.GetDescription();
}

Text AExecuteJavaScriptForCustomPrompt::GetActionExtraHTML() const
{
    return ScriptExtraHTML( mUseText, mText, mPath );
}

// Workflows

void AExecuteWorkflow::DescribeFields( HFieldVisitor& inVisitor )
{
    DescribePath( inVisitor, mPath );
}

Text AExecuteWorkflow::InternalGetActionDescriptionString() const
{
    return DescribeExecution( mPath, {} );
}

Text AExecuteWorkflow::GetActionExtraHTML() const
{
    return kvr_extraHTMLLine( u"kvFileExtraHTMLFormat", mPath.GetText() );
}

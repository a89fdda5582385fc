#include "Actions/WebActions.h"

#include "Actions/DescriptionText.h"
#include "Utility/Text/Localization.h"

// Search

void ASearch::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Title", mTitle );
    inVisitor.Text( "URL", mURL );
    inVisitor.Text( "Default", mDefault );
}

Text ASearch::InternalGetActionDescriptionString() const
{
    const XText& shown = mTitle.IsEmpty() ? mURL : mTitle;
    if ( shown.IsEmpty() )
        return GetActionTitle();
    return kvr_localizedFormat( u"kvSearchDescriptionFormat", TextView( kvr_excerpt( shown ) ) );
}

Text ASearch::GetActionExtraHTML() const
{
    return kvr_extraHTMLLine( u"kvURLExtraHTMLFormat", mURL.GetText() ) +
        kvr_extraHTMLLine( u"kvSearchDefaultExtraHTMLFormat", kvr_excerpt( mDefault ) );
}

// Get

void AGetURL::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "RemoteTrigger", mRemoteTrigger );
    inVisitor.Text( "URL", mURL );
    inVisitor.Text( "Parameter", mParameter );
    inVisitor.Name( "ParameterProcessing", mParameterProcessing );
    mResult.DescribeFields( inVisitor );
    inVisitor.Boolean( "TrimResults", mTrimResults );
}

void AGetURL::UpdateToDefaultValues( bool inForce )
{
    mResult.UpdateToDefaultValues( inForce );
}

Text AGetURL::InternalGetActionDescriptionString() const
{
    Text got = GetActionTitle();
    if ( not mURL.IsEmpty() )
        got = kvr_localizedFormat( u"kvGetURLDescriptionFormat", TextView( mURL.GetText() ) );
    else if ( not mRemoteTrigger.IsEmpty() )
        got = kvr_localizedFormat( u"kvGetURLRemoteTriggerDescriptionFormat", TextView( mRemoteTrigger.GetText() ) );
    return got + mResult.GetDescription();
}

Text AGetURL::GetActionExtraHTML() const
{
    return kvr_extraHTMLLine( u"kvGetURLParameterExtraHTMLFormat", kvr_excerpt( mParameter ) );
}

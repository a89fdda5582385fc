#include "Actions/OpenActions.h"

#include "Actions/DescriptionText.h"
#include "Utility/Search/StringSearchee.h"
#include "Utility/Text/Localization.h"
#include "Utility/Text/PathHelpers.h"

// The application

void OpeningApplication::DescribeFields( HFieldVisitor& inVisitor )
{
    if ( inVisitor.Searchee() and mIsDefault )
        return; // what is kept beside the default one isn't seen, and so isn't found
    // The application first: whether there is one decides what a missing flag means.
    DescribeApplication( inVisitor, "Application", mApplication );
    inVisitor.Boolean( "IsDefaultApplication", mIsDefault, { .mWhenMissing = not mApplication } );
}

void OpeningApplication::SetSpecific( XApplicationIdentifier inApplication )
{
    mIsDefault = false;
    mApplication = std::move( inApplication );
}

Text OpeningApplication::GetName() const
{
    return mIsDefault or not mApplication ? Text() : mApplication->GetDisplayName();
}

// URL

AOpenURL::AOpenURL()
{
    static const XText gDefaultURL( kvr_localized( u"kvDefaultOpenURLValue" ) );
    mURL = gDefaultURL;
}

void AOpenURL::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "URL", mURL );
    mApplication.DescribeFields( inVisitor );
    inVisitor.Boolean( "OpenInBackground", mOpenInBackground );
}

Text AOpenURL::InternalGetActionDescriptionString() const
{
    if ( mURL.IsEmpty() )
        return GetActionTitle();
    const Text application = mApplication.GetName();
    if ( application.empty() )
        return kvr_localizedFormat( u"kvOpenURLDescriptionFormat", TextView( mURL.GetText() ) );
    return kvr_localizedFormat(
        u"kvOpenURLWithApplicationDescriptionFormat", TextView( mURL.GetText() ), TextView( application ) );
}

// File

void AOpen1File::DescribeFields( HFieldVisitor& inVisitor )
{
    DescribePath( inVisitor, mPath );
    mApplication.DescribeFields( inVisitor );
}

Text AOpen1File::InternalGetActionDescriptionString() const
{
    if ( mPath.IsEmpty() )
        return GetActionTitle();
    const Text application = mApplication.GetName();
    return kvr_localizedFormat(
        application.empty() ? u"kvOpen1FileDescriptionFormat" : u"kvOpen1FileWithApplicationDescriptionFormat",
        TextView( kvr_fileName( mPath ) ), TextView( application ) );
}

Text AOpen1File::GetActionExtraHTML() const
{
    return kvr_extraHTMLLine( u"kvFileExtraHTMLFormat", mPath.GetText() );
}

// Selection

void AOpenFinderSelection::DescribeFields( HFieldVisitor& inVisitor )
{
    if ( inVisitor.IsReading() and not inVisitor.HasKey( "TargetingType" ) and
        not inVisitor.HasKey( "TargetApplication" ) )
        ReadOlderTarget( inVisitor );
    else
        mTarget.DescribeFields( inVisitor, "TargetingType", "TargetApplication" );
}

void AOpenFinderSelection::ReadOlderTarget( HFieldVisitor& inVisitor )
{
    bool isCurrent = false;
    inVisitor.Boolean( "IsCurrentApplication", isCurrent );
    std::optional<XApplicationIdentifier> application;
    DescribeApplication( inVisitor, "Application", application );
    if ( application )
        mTarget.SetSpecific( std::move( *application ) );
    if ( isCurrent )
        mTarget.SetFront(); // the other one stays beside it, for whoever chooses it again
    if ( inVisitor.HasKey( "IsCurrentApplication" ) )
        inVisitor.NoteOlderKey( "IsCurrentApplication", "TargetingType" );
    if ( inVisitor.HasKey( "Application" ) )
        inVisitor.NoteOlderKey( "Application", "TargetApplication" );
}

Text AOpenFinderSelection::InternalGetActionDescriptionString() const
{
    const Text name = mTarget.GetTargetingType() == ApplicationTargetingType::kFront
        ? kvr_localized( u"kvFrontApplication" )
        : mTarget.GetApplicationName();
    if ( name.empty() )
        return GetActionTitle();
    return kvr_localizedFormat( u"kvOpenFinderSelectionDescriptionFormat", TextView( name ) );
}

// Preferences

void AOpenPrefPane::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "NewFile", mFile );
}

Text AOpenPrefPane::InternalGetActionDescriptionString() const
{
    if ( mFile.IsEmpty() )
        return GetActionTitle();
    return kvr_localizedFormat(
        u"kvOpenPrefPaneDescriptionFormat", TextView( stringByDeletingPathExtension( kvr_fileName( mFile ) ) ) );
}

// Password

void AOpen1Password::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "BookmarkUID", mBookmarkUID );
    inVisitor.Text( "OpenURL", mOpenURL );
}

Text AOpen1Password::InternalGetActionDescriptionString() const
{
    if ( mOpenURL.IsEmpty() )
        return GetActionTitle();
    return kvr_localizedFormat( u"kvOpen1PasswordDescriptionFormat", TextView( mOpenURL.GetText() ) );
}

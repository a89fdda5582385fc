#include "Actions/NotificationActions.h"

#include "Actions/DescriptionText.h"
#include "Actions/LegacyUpgrade.h"
#include "Utility/Text/Localization.h"

namespace
{
struct NotificationDefaults
{
    XText mTitle{ kvr_localized( u"kNotificationDefaultTitle" ) };
    XText mSubtitle{ kvr_localized( u"kNotificationDefaultSubtitle" ) };
    XText mText{ kvr_localized( u"kNotificationDefaultText" ) };
};
} // namespace

// Alert

void AAlert::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Title", mTitle );
    inVisitor.Text( "Text", mText );
    inVisitor.Text( "SoundPath", mSoundPath );
}

// The text is the description where there is no title.
Text AAlert::GetActionExtraHTML() const
{
    return mTitle.IsEmpty() ? Text() : kvr_extraHTMLLine( u"kvAlertTextExtraHTMLFormat", kvr_excerpt( mText ) );
}

Text AAlert::InternalGetActionDescriptionString() const
{
    const XText& shown = mTitle.IsEmpty() ? mText : mTitle;
    if ( shown.IsEmpty() )
        return GetActionTitle();
    return kvr_localizedFormat( u"kvAlertDescriptionFormat", TextView( kvr_excerpt( shown ) ) );
}

// Log

void ALog::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Text", mText );
}

Text ALog::InternalGetActionDescriptionString() const
{
    if ( mText.IsEmpty() )
        return GetActionTitle();
    return kvr_localizedFormat( u"kvLogDescriptionFormat", TextView( kvr_excerpt( mText ) ) );
}

// Notification

ANotification::ANotification()
{
    static const NotificationDefaults gDefaults;
    mTitle = gDefaults.mTitle;
    mSubtitle = gDefaults.mSubtitle;
    mText = gDefaults.mText;
}

void ANotification::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Title", mTitle );
    inVisitor.Text( "Subtitle", mSubtitle );
    inVisitor.Text( "Text", mText );
    inVisitor.Text( "SoundName", mSoundName );
}

Text ANotification::GetActionExtraHTML() const
{
    const Text subtitle = kvr_extraHTMLLine( u"kvNotificationSubtitleExtraHTMLFormat", kvr_excerpt( mSubtitle ) );
    if ( mTitle.IsEmpty() )
        return subtitle;
    return subtitle + kvr_extraHTMLLine( u"kvNotificationTextExtraHTMLFormat", kvr_excerpt( mText ) );
}

Text ANotification::InternalGetActionDescriptionString() const
{
    const XText& shown = mTitle.IsEmpty() ? mText : mTitle;
    if ( shown.IsEmpty() )
        return GetActionTitle();
    return kvr_localizedFormat( u"kvNotificationDescriptionFormat", TextView( kvr_excerpt( shown ) ) );
}

void AGrowl::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Title", mTitle );
    inVisitor.Text( "Text", mText );
}

std::unique_ptr<HBaseAction> AGrowl::CleanActionAfterInitialization( const XPlistDictionary& inDictionary )
{
    auto notification = MakeModernForm<ANotification>( *this, inDictionary );
    notification->SetTitle( mTitle );
    notification->SetText( mText );
    return notification;
}

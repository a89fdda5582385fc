#include "XCAF/ErrorAlert.h"

#include "Platform/Platform.h"
#include "Utility/Text/Localization.h"
#include "Utility/Work/Work.h"

namespace
{
void OnMainThread( XBlock inBlock )
{
    if ( XIsMainThread() )
        inBlock();
    else
        XWork::Current().MainQueue()->Async( std::move( inBlock ) );
}
} // namespace

void ErrorAlert::ShowText( XAlertStyle inStyle, XPlatformWindow* inWindow, Text inTitle, Text inText )
{
    XAlert alert{ inStyle, std::move( inTitle ), std::move( inText ), { kvr_localized( u"kvOKButton" ) }, inWindow };
    OnMainThread( [alert = std::move( alert )] { Platform::Current().Alerts().ShowAlert( alert, {} ); } );
}

void ErrorAlert::Error( XPlatformWindow* inWindow, TextView inTitle, TextView inText )
{
    ShowText( XAlertStyle::kWarning, inWindow, kvr_localized( inTitle ), kvr_localized( inText ) );
}

void ErrorAlert::Critical( XPlatformWindow* inWindow, TextView inTitle, TextView inText )
{
    ShowText( XAlertStyle::kCritical, inWindow, kvr_localized( inTitle ), kvr_localized( inText ) );
}

void ErrorAlert::Message( XPlatformWindow* inWindow, TextView inTitle, TextView inText, bool inNotifyInstead )
{
    if ( inNotifyInstead )
        Notify( inTitle, inText );
    else
        ShowText( XAlertStyle::kInformational, inWindow, kvr_localized( inTitle ), kvr_localized( inText ) );
}

void ErrorAlert::Notify( TextView inTitle, TextView inText )
{
    OnMainThread( [title = kvr_localized( inTitle ), text = kvr_localized( inText )] {
        Platform::Current().Alerts().Notify( title, text );
    } );
}

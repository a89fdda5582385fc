#include "App/KVAppTranslocate.h"

#include "Defines/KVPreferences.h"
#include "Macros/MMacroApplication.h"
#include "Platform/Alerts.h"
#include "Platform/Platform.h"
#include "Platform/RunningApplications.h"
#include "Platform/Workspace.h"
#include "Utility/Text/Localization.h"
#include "XCAF/KVNotifications.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XNotificationCenter.h"

bool KVAppTranslocate::IsProbablyTranslocatedPath( TextView inPath )
{
    if ( inPath.find( u"Translocation" ) != TextView::npos )
        return true;
    for ( const TextView prefix : { u"/tmp/", u"/private/", u"/var/" } )
    {
        if ( inPath.starts_with( prefix ) )
            return true;
    }
    return false;
}

bool KVAppTranslocate::IsProbablyTranslocated()
{
    const auto own = Platform::Current().RunningApplications().OwnExecutable();
    if ( not IsProbablyTranslocatedPath( TextFromUTF8( own.native() ) ) )
        return false;
    XErrorHandler::PrivateMaybeLogFormat( "always", "AppTranslocation Security is active, this will cause problems" );
    return true;
}

bool KVAppTranslocate::EitherIsProbablyTranslocated()
{
    XNotificationCenter::PostNotification( u"KV_CheckTranslocated", nullptr, true );
    return IsProbablyTranslocated() or KVPreferences::GetBoolean( KVPreferences::kEngineIsTranslocatedID, false );
}

void KVAppTranslocate::ShowTranslocationWarningSheet()
{
    const XAlert alert{ XAlertStyle::kWarning, kvr_localized( u"TranslocationWarningTitle" ),
        kvr_localized( u"TranslocationWarningMessage" ),
        { kvr_localized( u"TranslocationWarningDefaultButton" ), kvr_localized( u"TranslocationWarningQuitButton" ),
            kvr_localized( u"TranslocationWarningHelpButton" ) } };
    Platform::Current().Alerts().ShowAlert( alert, []( std::optional<std::size_t> inButton ) {
        if ( inButton == 1u )
            MMacroApplication::Current().terminate();
        else if ( inButton == 2u )
            (void)Platform::Current().Workspace().OpenURL( kvr_localized( u"TranslocationWarningHelpURL" ) );
    } );
}

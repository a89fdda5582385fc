#include "App/AssistiveDevices.h"

#include "Defines/KVPreferences.h"
#include "Platform/Alerts.h"
#include "Platform/Platform.h"
#include "Platform/Workspace.h"
#include "Utility/Text/Localization.h"
#include "XCAF/ErrorAlert.h"
#include "XCAF/KVNotifications.h"
#include "XCAF/XNotificationCenter.h"

namespace
{
constexpr std::size_t kDefault = 0, kOther = 2;

bool EnabledAsk( bool inAsk )
{
    return Platform::Current().Workspace().IsTrustedForAccessibility( inAsk );
}

/// The keys of an alert's texts.
struct Warning
{
    TextView mTitle, mMessage, mDefaultButton, mIgnoreButton, mOtherButton;
};
constexpr Warning kWarnAccessibility{ u"WarnAccessibilityTitle", u"WarnAccessibilityMessage",
    u"WarnAccessibilityDefaultButton", u"WarnAccessibilityIgnoreButton", u"WarnAccessibilityNotAgainButton" };
constexpr Warning kUniversalAccessWarning{ u"UniversalAccessWarningTitle", u"UniversalAccessWarningMessage",
    u"UniversalAccessWarningDefaultButton", u"UniversalAccessWarningIgnoreButton", u"WarnAccessibilityHelpButton" };

/// The first button leads to the settings, the second does nothing.
void Show( const Warning& inWarning, XPlatformWindow* inWindow, void ( *inOther )() )
{
    const XAlert alert{ XAlertStyle::kWarning, kvr_localized( inWarning.mTitle ), kvr_localized( inWarning.mMessage ),
        { kvr_localized( inWarning.mDefaultButton ), kvr_localized( inWarning.mIgnoreButton ),
            kvr_localized( inWarning.mOtherButton ) },
        inWindow };
    Platform::Current().Alerts().ShowAlert( alert, [inOther]( std::optional<std::size_t> inButton ) {
        if ( inButton == kDefault )
            AssistiveDevices::OpenPreferencePane();
        else if ( inButton == kOther )
            inOther();
    } );
}
} // namespace

bool AssistiveDevices::Enabled()
{
    return EnabledAsk( false );
}

bool AssistiveDevices::EnabledForBoth()
{
    XNotificationCenter::PostNotification( KVNotifications::kCheckAssistiveDevicesEnabled, nullptr, true );
    const bool needsPermission = Platform::Current().Workspace().NeedsAccessibilityPermission();
    return Enabled() and KVPreferences::GetBoolean( KVPreferences::kEngineHasAssistiveDevicesID, not needsPermission );
}

void AssistiveDevices::ForceSystemToNoticeUs()
{
    if ( not EnabledAsk( true ) )
        Platform::Current().Workspace().MakeAccessibilityRequest();
    if ( EnabledForBoth() )
        KVPreferences::SetBoolean( KVPreferences::kWarnIfAccessibilityOffID, true );
}

void AssistiveDevices::OpenPreferencePane()
{
    Platform::Current().Workspace().OpenAccessibilityPane();
}

void AssistiveDevices::WarnAccessibilitIsRequiredForOperation()
{
    if ( not KVPreferences::GetBoolean( KVPreferences::kWarnIfAccessibilityOffID, true ) or EnabledForBoth() )
        return;
    Show( kWarnAccessibility, nullptr,
        [] { KVPreferences::SetBoolean( KVPreferences::kWarnIfAccessibilityOffID, false ); } );
}

void AssistiveDevices::AccessibilitIsRequiredGenerallyAlert( XPlatformWindow* inWindow )
{
    Show( kUniversalAccessWarning, inWindow,
        [] { ErrorAlert::Message( nullptr, u"WarnAccessibilityHelpTitle", u"WarnAccessibilityHelpMessage" ); } );
}

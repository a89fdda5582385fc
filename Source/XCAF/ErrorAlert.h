// Shows errors and messages to the user, with one button. Called on the main thread; from another
// the alert waits for the main queue, so that no message is lost.
#pragma once

#include "CFMethods/Text.h"
#include "Platform/Alerts.h"

namespace ErrorAlert
{
// Title and text are keys of localised texts. With a window the alert is a sheet of it, and the call
// returns at once; without one it is modal. The window must live until then.
void Error( XPlatformWindow* inWindow, TextView inTitle, TextView inText );
void Critical( XPlatformWindow* inWindow, TextView inTitle, TextView inText );
/// With inNotifyInstead it is a user notification, not an alert.
void Message( XPlatformWindow* inWindow, TextView inTitle, TextView inText, bool inNotifyInstead = false );

/// Posts a user notification; keys as above.
void Notify( TextView inTitle, TextView inText );

/// Shows texts as they stand.
void ShowText( XAlertStyle inStyle, XPlatformWindow* inWindow, Text inTitle, Text inText );
} // namespace ErrorAlert

// The permission to control other applications, which this program and its engine both need where the system asks for
// it. Main thread.
#pragma once

struct XPlatformWindow;

namespace AssistiveDevices
{
/// Is this program permitted to? Doesn't ask the user.
[[nodiscard]] bool Enabled();
/// Are this program and the engine? The engine's answer is its last one; this asks it for a newer one, for the next time.
[[nodiscard]] bool EnabledForBoth();

/// At start-up: has the system list this program among those that want the permission, and, when both have it, the
/// warning come again should it be taken away.
void ForceSystemToNoticeUs();
/// Shows where the permission is given.
void OpenPreferencePane();

/// After start-up: warns that macros won't work without the permission, unless the user doesn't want that again.
void WarnAccessibilitIsRequiredForOperation();
/// The same for something that the user has just asked for; with a window as its sheet.
void AccessibilitIsRequiredGenerallyAlert( XPlatformWindow* inWindow = nullptr );
} // namespace AssistiveDevices

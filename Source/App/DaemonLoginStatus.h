// Whether the engine starts when the user logs in: the login items that name it, of which exactly one should lead to the
// engine of this program, or none should be there. Main thread.
#pragma once

#include <cstddef>

namespace DaemonLoginStatus
{
/// Hears that the login items have changed.
class Delegate
{
public:
    virtual ~Delegate() = default;
    virtual void daemonLoginStatusChanged() = 0;
};

/// Is there exactly one item for an engine, and is it for ours?
[[nodiscard]] bool GetDaemonLoginStatus();
/// Takes away every item for an engine and, to switch on, makes one for ours. Nothing changes when there is to be
/// one and this program has no engine.
void SetDaemonLoginStatus( bool inOn );
/// Mends items for another engine or more than one, as another installation leaves them. No item at all is the user's
/// wish, and stays.
void EnsureCorrectDaemonLoginStatus();

/// Has the delegate called after each change until the matching Stop; the last to start stops first. The delegate
/// isn't owned.
void StartGeneralPreferences( Delegate& inDelegate );
void StopGeneralPreferences();
} // namespace DaemonLoginStatus

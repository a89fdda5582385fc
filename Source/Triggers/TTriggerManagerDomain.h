// The trigger managers, which act on triggers while the editor runs. Whoever has them installs them; the store
// only says when they begin and end. Main thread.
#pragma once

#include <functional>

namespace TTriggerManagerDomain
{
void Install( std::function<void()> inCreate, std::function<void()> inTerminate );
/// Once, at start-up.
void CreateTriggerManagers();
void Terminate();
} // namespace TTriggerManagerDomain

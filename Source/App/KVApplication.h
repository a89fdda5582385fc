// The engine as a process: finding it, starting it, and seeing to it that the one that runs is ours. Main thread.
#pragma once

#include "CFMethods/Text.h"

namespace KVApplication
{
inline constexpr TextView kEngineBundleIdentifier = u"com.tessarine.korvalen.engine";
inline constexpr TextView kEngineName = u"Korvalen Engine";

[[nodiscard]] bool isEngineRunning();
/// Asks the engine to quit, and doesn't wait.
void quitEngine();

/// Starts our engine, and doesn't wait.
void LaunchEngine();

/// Quits each running engine but ours in our version, which leaves outAlreadyRunning true; with inAlways that one as
/// well. The setting "LeaveEngineAlone" stops it, unless inAlways, and counts as already running. An engine has two
/// seconds to quit in good order, and this waits for it. Nothing is sent to a process that isn't known to be
/// the engine still.
void KillEngines( bool inAlways, bool& outAlreadyRunning );
void KillEngines( bool inAlways );
} // namespace KVApplication

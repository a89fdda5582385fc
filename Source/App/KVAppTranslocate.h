// Is the program run from a quarantined copy? Then it and its engine don't find each other. Main thread.
#pragma once

#include "CFMethods/Text.h"

namespace KVAppTranslocate
{
[[nodiscard]] bool IsProbablyTranslocatedPath( TextView inPath );
/// Of this program; logged when it is.
[[nodiscard]] bool IsProbablyTranslocated();
/// This program or, as it told the last time, the engine, which is asked to say it again.
[[nodiscard]] bool EitherIsProbablyTranslocated();
/// Tells the user, who may quit or read more.
void ShowTranslocationWarningSheet();
} // namespace KVAppTranslocate

// The statistics store: how often each macro ran, when it did last, and how much time it saved. The engine counts and
// keeps the file "Korvalen Macro Stats.plist"; this reads it once and then takes what the engine tells. From Start to
// Stop it is HMacroStats::Current(). Main thread.
#pragma once

#include "Macros/HMacroStats.h"

#include <functional>

namespace HTimeSaved
{
/// Reads the file, and asks the engine for everything. The function is called after each change, so that windows that
/// are sorted by use sort again.
void Start( std::function<void()> inDoResortForMacroStatsChanged = {} );
void Stop();

// 0 for a macro that never ran, and while the store isn't started.
[[nodiscard]] double GetAll(); ///< seconds that all macros together have saved
[[nodiscard]] XAbsoluteTime GetLastExecuted( const XText& inUID );
[[nodiscard]] double GetTimeSaved( const XText& inUID ); ///< seconds
[[nodiscard]] std::uint64_t GetExecutedCount( const XText& inUID );

/// On how many of the last seven days, each ending at this time of day, some macro ran, as far as the last runs tell.
[[nodiscard]] int DaysOfUse7();
/// Seconds saved without those of before version 7, which a setting of that time holds.
[[nodiscard]] double GetV7();
} // namespace HTimeSaved

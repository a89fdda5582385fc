// The calendar arithmetic behind date tokens. Times are seconds since 2001-01-01 00:00:00 UTC. Any thread.
#pragma once

#include "Utility/Cron/XTimeZone.h"

namespace DateCalculations
{
/// The zones of the two calendars that dates are worked out on. The local one is that of the moment of the call.
[[nodiscard]] XTimeZone GregorianGMT();
[[nodiscard]] XTimeZone GregorianLocal();

// Fixed lengths; clocks that are put forward or back don't count.
[[nodiscard]] XAbsoluteTime AddSeconds( XAbsoluteTime inTime, double inCount );
[[nodiscard]] XAbsoluteTime AddMinutes( XAbsoluteTime inTime, double inCount );
[[nodiscard]] XAbsoluteTime AddHours( XAbsoluteTime inTime, double inCount );
[[nodiscard]] XAbsoluteTime AddDays( XAbsoluteTime inTime, double inCount );
[[nodiscard]] XAbsoluteTime AddWeeks( XAbsoluteTime inTime, double inCount );

// On the GMT calendar. A day that the month hasn't becomes its last one. A count that leads out of the years that
// a calendar can hold is an assertion, and the time itself comes back.
[[nodiscard]] XAbsoluteTime AddMonths( XAbsoluteTime inTime, std::int64_t inCount );
[[nodiscard]] XAbsoluteTime AddYears( XAbsoluteTime inTime, std::int64_t inCount );

/// The next (direction 1 or more) or previous (below 1) such weekday, 1 being Sunday, on the local calendar; then
/// count - 1 weeks on, or count + 1. A count of 0 takes the value of the direction, and leaves a time on that weekday
/// alone; with another count the next or previous one is seven days away.
[[nodiscard]] XAbsoluteTime AddDOW( XAbsoluteTime inTime, int inWeekday, int inDirection, int inCount );

/// On the local calendar.
[[nodiscard]] XCivilTime GetComponents( XAbsoluteTime inTime );
} // namespace DateCalculations

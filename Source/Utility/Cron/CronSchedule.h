// When a cron expression comes true next. Any thread.
#pragma once

#include "Utility/Cron/CronParser.h"
#include "Utility/Cron/XTimeZone.h"

namespace CronSchedule
{
/// The first time after the given one, a whole minute of the zone's clocks; absent when there is none until the end
/// of 2099. A time that the clocks skip when they are put forward is skipped; one that they show twice when they are put
/// back counts once, the first time.
[[nodiscard]] std::optional<XAbsoluteTime> NextTime(
    const CronParser::Entry& inEntry, XAbsoluteTime inAfter, const XTimeZone& inZone );
} // namespace CronSchedule

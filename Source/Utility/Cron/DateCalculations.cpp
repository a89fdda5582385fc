#include "Utility/Cron/DateCalculations.h"

#include "XCAF/XErrorHandler.h"

#include <algorithm>
#include <cmath>

namespace
{
constexpr double kSecondsInADay = 86400.0;
constexpr std::int64_t kLastYear = 5'000'000; // what calendars count to; no date that a person means lies there

XAbsoluteTime AddMonthsOnGMT( XAbsoluteTime inTime, std::int64_t inMonths )
{
    XCivilTime civil = XTimeZone::GMT().CivilTime( inTime );
    const std::int64_t month = civil.mYear * INT64_C( 12 ) + civil.mMonth - 1 + inMonths;
    const std::int64_t year = ( month >= 0 ? month : month - 11 ) / 12;
    const bool result = year >= -kLastYear and year <= kLastYear;
    XAssertText( result, "result" );
    if ( not result )
        return inTime;
    civil.mYear = int( year );
    civil.mMonth = int( month - year * 12 ) + 1;
    civil.mDay = std::min( civil.mDay, kvr_daysInMonth( civil.mYear, civil.mMonth ) );
    return XTimeZone::GMT().AbsoluteTime( civil ).value_or( inTime );
}
} // namespace

XTimeZone DateCalculations::GregorianGMT()
{
    return XTimeZone::GMT();
}

XTimeZone DateCalculations::GregorianLocal()
{
    return XTimeZone::Local();
}

XAbsoluteTime DateCalculations::AddSeconds( XAbsoluteTime inTime, double inCount )
{
    return inTime + inCount;
}

XAbsoluteTime DateCalculations::AddMinutes( XAbsoluteTime inTime, double inCount )
{
    return inTime + inCount * 60.0;
}

XAbsoluteTime DateCalculations::AddHours( XAbsoluteTime inTime, double inCount )
{
    return inTime + inCount * 3600.0;
}

XAbsoluteTime DateCalculations::AddDays( XAbsoluteTime inTime, double inCount )
{
    return inTime + inCount * kSecondsInADay;
}

XAbsoluteTime DateCalculations::AddWeeks( XAbsoluteTime inTime, double inCount )
{
    return inTime + inCount * 7 * kSecondsInADay;
}

XAbsoluteTime DateCalculations::AddMonths( XAbsoluteTime inTime, std::int64_t inCount )
{
    constexpr std::int64_t kBound = kLastYear * 24;
    return AddMonthsOnGMT( inTime, std::clamp( inCount, -kBound, kBound ) );
}

XAbsoluteTime DateCalculations::AddYears( XAbsoluteTime inTime, std::int64_t inCount )
{
    return AddMonthsOnGMT( inTime, std::clamp( inCount, -kLastYear * 2, kLastYear * 2 ) * 12 );
}

XAbsoluteTime DateCalculations::AddDOW( XAbsoluteTime inTime, int inWeekday, int inDirection, int inCount )
{
    const int today = GetComponents( inTime ).mWeekday;
    int count = inCount;
    if ( count == 0 )
    {
        if ( today == inWeekday )
            return inTime;
        count = inDirection;
    }
    const int ahead = ( ( inWeekday - today ) % 7 + 7 ) % 7;
    if ( inDirection >= 1 )
        return AddDays( inTime, ( ahead == 0 ? 7 : ahead ) + 7.0 * ( count - 1.0 ) );
    return AddDays( inTime, ahead - 7 + 7.0 * ( count + 1.0 ) );
}

XCivilTime DateCalculations::GetComponents( XAbsoluteTime inTime )
{
    return XTimeZone::Local().CivilTime( inTime );
}

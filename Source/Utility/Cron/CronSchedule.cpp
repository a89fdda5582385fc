#include "Utility/Cron/CronSchedule.h"

namespace
{
// Walks the dates that match, from a date on.
class MatchingDates
{
public:
    MatchingDates( const CronParser::Entry& inEntry, int inYear, int inMonth, int inDay )
        : mEntry( inEntry ),
          mYear( inYear ),
          mMonth( inMonth ),
          mDay( inDay )
    {
        if ( mYear < CronParser::kFirstYear )
        {
            mYear = CronParser::kFirstYear;
            mMonth = mDay = 1;
        }
    }

    /// Stands on the next date that matches, this one included; false when there is none.
    bool Find()
    {
        for ( ; mYear <= CronParser::kLastYear; ++mYear, mMonth = 1 )
        {
            if ( not mEntry.mYears[std::size_t( mYear - CronParser::kFirstYear )] )
            {
                mDay = 1;
                continue;
            }
            for ( ; mMonth <= 12; ++mMonth, mDay = 1 )
            {
                if ( mEntry.mMonths[std::size_t( mMonth - 1 )] and FindInMonth() )
                    return true;
            }
        }
        return false;
    }
    void Advance() { ++mDay; }

    [[nodiscard]] XCivilTime Midnight() const { return { .mYear = mYear, .mMonth = mMonth, .mDay = mDay }; }

private:
    bool FindInMonth()
    {
        for ( const int last = kvr_daysInMonth( mYear, mMonth ); mDay <= last; ++mDay )
        {
            if ( CronSchedule::MatchesDate( mEntry, mYear, mMonth, mDay ) )
                return true;
        }
        return false;
    }

    const CronParser::Entry& mEntry;
    int mYear, mMonth, mDay;
};

// The first minute of the day that matches and lies behind the given time.
std::optional<XAbsoluteTime> NextTimeOfDay( const CronParser::Entry& inEntry, const XCivilTime& inMidnight,
    int inFromMinute, XAbsoluteTime inAfter, const XTimeZone& inZone )
{
    for ( int minute = inFromMinute; minute < 24 * 60; ++minute )
    {
        if ( not inEntry.mHours[std::size_t( minute / 60 )] )
        {
            minute += 59 - minute % 60;
            continue;
        }
        if ( not inEntry.mMinutes[std::size_t( minute % 60 )] )
            continue;
        XCivilTime civil = inMidnight;
        civil.mHour = minute / 60;
        civil.mMinute = minute % 60;
        const std::optional<XAbsoluteTime> time = inZone.AbsoluteTime( civil );
        if ( time and *time > inAfter )
            return time;
    }
    return {};
}
} // namespace

bool CronSchedule::MatchesDate( const CronParser::Entry& inEntry, int inYear, int inMonth, int inDay )
{
    const int day = inEntry.mFromEndOfMonth ? kvr_daysInMonth( inYear, inMonth ) - inDay : inDay - 1;
    const bool byDay = inEntry.mDays[std::size_t( day )];
    const std::int64_t number = kvr_dayNumber( inYear, inMonth, inDay ); // 0 was a Monday
    const bool byDOW = inEntry.mDOWs[std::size_t( ( number % 7 + 8 ) % 7 )];
    return inEntry.mDayOrDOW ? byDay or byDOW : byDay and byDOW;
}

std::optional<XAbsoluteTime> CronSchedule::NextTime(
    const CronParser::Entry& inEntry, XAbsoluteTime inAfter, const XTimeZone& inZone )
{
    // Clocks that are put back show earlier minutes again, but those have had their turn.
    const XCivilTime now = inZone.CivilTime( inAfter );
    if ( now.mYear > CronParser::kLastYear )
        return {};
    MatchingDates dates( inEntry, now.mYear, now.mMonth, now.mDay );
    while ( dates.Find() )
    {
        const XCivilTime midnight = dates.Midnight();
        const bool today = midnight.mYear == now.mYear and midnight.mMonth == now.mMonth and midnight.mDay == now.mDay;
        const int from = today ? now.mHour * 60 + now.mMinute + 1 : 0;
        if ( const auto time = NextTimeOfDay( inEntry, midnight, from, inAfter, inZone ) )
            return time;
        dates.Advance();
    }
    return {};
}

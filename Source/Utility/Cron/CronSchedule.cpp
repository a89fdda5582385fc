#include "Utility/Cron/CronSchedule.h"

#include <bit>

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
          mDay( inDay ),
          mDays( std::uint32_t( inEntry.mDays.to_ulong() ) )
    {
        for ( int day = 0; day < kMostDays; ++day )
            mDaysFromEnd |= ( mDays >> day & 1 ) << ( kMostDays - 1 - day );
        for ( int week = 0; week < 6; ++week )
            mWeeks |= std::uint64_t( inEntry.mDOWs.to_ulong() & 0x7F ) << 7 * week;
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
    // All days of a month are looked at in one go: an expression that never comes true asks for a century of them.
    bool FindInMonth()
    {
        const int last = kvr_daysInMonth( mYear, mMonth );
        const std::int64_t first = kvr_dayNumber( mYear, mMonth, 1 ); // 0 was a Monday
        const std::uint32_t byDay = mEntry.mFromEndOfMonth ? mDaysFromEnd >> ( kMostDays - last ) : mDays;
        const auto byDOW = std::uint32_t( mWeeks >> ( first % 7 + 8 ) % 7 );
        const std::uint32_t matching = mEntry.mDayOrDOW ? byDay | byDOW : byDay & byDOW;
        const std::uint32_t left = matching & DaysBelow( last + 1 ) & ~DaysBelow( mDay );
        if ( left == 0 )
            return false;
        mDay = std::countr_zero( left ) + 1;
        return true;
    }

    static constexpr int kMostDays = 31;
    static std::uint32_t DaysBelow( int inDay ) { return ( UINT32_C( 1 ) << ( inDay - 1 ) ) - 1; }

    const CronParser::Entry& mEntry;
    int mYear, mMonth, mDay;
    // Sets of days, the lowest bit being the first of a month: that of the longest, where they count from the end.
    std::uint32_t mDays, mDaysFromEnd = 0;
    std::uint64_t mWeeks = 0; // six weeks of the weekdays, the lowest bit being a Sunday
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

#include "Utility/Cron/DateCalculations.h"

#include "Tests/Support/LogCapture.h"
#include "Utility/Work/Random.h"

#include <gtest/gtest.h>
#include <unicode/gregocal.h>

#include <cmath>

using namespace DateCalculations;

namespace
{
constexpr double kDay = 86400.0;

XAbsoluteTime Day( int inYear, int inMonth, int inDay )
{
    return double( kvr_dayNumber( inYear, inMonth, inDay ) ) * kDay + 3600;
}
} // namespace

TEST( DateCalculations, ShortMonthsEndOnTheirLastDay )
{
    EXPECT_EQ( AddMonths( Day( 2026, 1, 31 ), 1 ), Day( 2026, 2, 28 ) );
    EXPECT_EQ( AddMonths( Day( 2027, 12, 31 ), 2 ), Day( 2028, 2, 29 ) );
    EXPECT_EQ( AddMonths( Day( 2026, 3, 31 ), -13 ), Day( 2025, 2, 28 ) );
    EXPECT_EQ( AddMonths( Day( 2026, 1, 30 ), -1 ), Day( 2025, 12, 30 ) );
    EXPECT_EQ( AddYears( Day( 2024, 2, 29 ), 1 ), Day( 2025, 2, 28 ) );
    EXPECT_EQ( AddYears( Day( 2024, 2, 29 ), -4 ), Day( 2020, 2, 29 ) );
    EXPECT_EQ( AddWeeks( 0, 2 ) + AddDays( 0, 1 ) + AddHours( 0, 1 ) + AddMinutes( 0, 1 ) + AddSeconds( 0, 1 ),
        15 * kDay + 3661 );
}

TEST( DateCalculations, ACountBeyondAllYearsLeavesTheTime )
{
    LogCapture log;
    EXPECT_EQ( AddYears( 1234, INT64_MAX ), 1234 );
    EXPECT_EQ( AddMonths( 1234, INT64_MIN ), 1234 );
    EXPECT_EQ( log.CountAssertions( "result" ), 2 );
}

TEST( DateCalculations, WeekdaysForthAndBack )
{
    const XTimeZone::Substitute zone( XTimeZone::GMT() );
    const XAbsoluteTime saturday = Day( 2026, 11, 21 );
    ASSERT_EQ( GetComponents( saturday ).mWeekday, 7 );
    const struct
    {
        int mWeekday, mDirection, mCount, mDays;
    } kCases[] = {
        { 7, 1, 0, 0 },
        { 7, -1, 0, 0 },
        { 7, 1, 1, 7 },
        { 7, -1, -1, -7 }, // 0 stays on the very day
        { 1, 1, 0, 1 },
        { 1, 1, 3, 15 },
        { 6, 1, 1, 6 },
        { 6, 2, 0, 13 }, // a direction of 2 is a count as well
        { 1, -1, 0, -6 },
        { 6, -1, -1, -1 },
        { 6, -1, -3, -15 },
        { 7, -1, -2, -14 },
    };
    for ( const auto& wanted : kCases )
        EXPECT_EQ(
            AddDOW( saturday, wanted.mWeekday, wanted.mDirection, wanted.mCount ), saturday + wanted.mDays * kDay )
            << wanted.mWeekday << " " << wanted.mDirection << " " << wanted.mCount;
}

TEST( DateCalculations, TheLocalCalendarIsThatOfTheMoment )
{
    const XAbsoluteTime newYear = 0; // 2001-01-01 00:00 GMT
    {
        const XTimeZone::Substitute zone( *XTimeZone::FromName( u"America/New_York" ) );
        EXPECT_EQ( GetComponents( newYear ).mYear, 2000 );
        EXPECT_EQ( GetComponents( newYear ).mHour, 19 );
    }
    const XTimeZone::Substitute zone( *XTimeZone::FromName( u"Asia/Kolkata" ) );
    EXPECT_EQ( GetComponents( newYear ).mMinute, 30 );
}

TEST( XTimeZone, TheMomentsNextToMidnightAreOfSomeDay )
{
    for ( const double midnight : { 0.0, kDay, 8000 * kDay, -8000 * kDay } )
    {
        for ( const double time : { midnight, std::nextafter( midnight, -1e18 ), std::nextafter( midnight, 1e18 ) } )
        {
            const XCivilTime civil = XTimeZone::GMT().CivilTime( time );
            EXPECT_LT( civil.mHour, 24 ) << time - midnight;
            EXPECT_GE( civil.mSecond, 0 ) << time - midnight;
            EXPECT_LT( civil.mSecond, 60 ) << time - midnight;
        }
    }
}

TEST( XTimeZone, OnlyNamesOfZonesGiveOne )
{
    for ( const TextView name : { u"Asia/Kolkata", u"UTC", u"GMT-0:30" } )
        EXPECT_TRUE( XTimeZone::FromName( name ) ) << UTF8FromText( name );
    for ( const TextView name : { u"", u"Nowhere/Town", u"Etc/Unknown", u"GMT+99" } )
        EXPECT_FALSE( XTimeZone::FromName( name ) ) << UTF8FromText( name );
}

// Against the calendar of another library, over the years that it counts as we do.
TEST( DateCalculations, DatesAgreeWithAnotherCalendar )
{
    XSeededRandom random( 4711 );
    UErrorCode status = U_ZERO_ERROR;
    for ( const TextView name : { u"Europe/Berlin", u"Australia/Lord_Howe", u"America/St_Johns", u"GMT" } )
    {
        const auto zone = XTimeZone::FromName( name );
        ASSERT_TRUE( zone );
        icu::GregorianCalendar calendar(
            icu::TimeZone::createTimeZone( icu::UnicodeString( name.data(), std::int32_t( name.size() ) ) ), status );
        for ( int round = 0; round < 3000; ++round )
        {
            const double time = std::floor( ( double( random.Next() >> 11 ) * 0x1p-53 - 0.5 ) * 2.5e10 );
            calendar.setTime( ( time + 978307200.0 ) * 1000, status );
            const XCivilTime civil = zone->CivilTime( time );
            ASSERT_EQ( civil.mYear, calendar.get( UCAL_EXTENDED_YEAR, status ) ) << time;
            ASSERT_EQ( civil.mMonth, calendar.get( UCAL_MONTH, status ) + 1 ) << time;
            ASSERT_EQ( civil.mDay, calendar.get( UCAL_DATE, status ) ) << time;
            ASSERT_EQ( civil.mHour, calendar.get( UCAL_HOUR_OF_DAY, status ) ) << time;
            ASSERT_EQ( civil.mMinute, calendar.get( UCAL_MINUTE, status ) ) << time;
            ASSERT_EQ( civil.mSecond, calendar.get( UCAL_SECOND, status ) ) << time;
            ASSERT_EQ( civil.mWeekday, calendar.get( UCAL_DAY_OF_WEEK, status ) ) << time;
            const auto back = zone->AbsoluteTime( civil );
            ASSERT_TRUE( back and *back <= time and zone->CivilTime( *back ) == civil ) << time;
        }
    }
}

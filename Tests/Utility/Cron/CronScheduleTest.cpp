#include "Utility/Cron/CronSchedule.h"

#include "Utility/Work/Random.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <unicode/gregocal.h>

namespace
{
std::string Shown( std::optional<XAbsoluteTime> inTime, const XTimeZone& inZone )
{
    if ( not inTime )
        return "never";
    const XCivilTime civil = inZone.CivilTime( *inTime );
    return fmt::format( "{}-{:02}-{:02} {:02}:{:02}:{:02} {:+}", civil.mYear, civil.mMonth, civil.mDay, civil.mHour,
        civil.mMinute, civil.mSecond, inZone.OffsetAt( *inTime ) / 3600 );
}

XAbsoluteTime At( const XTimeZone& inZone, int inYear, int inMonth, int inDay, int inHour, int inMinute = 0 )
{
    const auto time = inZone.AbsoluteTime(
        { .mYear = inYear, .mMonth = inMonth, .mDay = inDay, .mHour = inHour, .mMinute = inMinute } );
    EXPECT_TRUE( time );
    return time.value_or( 0 );
}

CronParser::Entry Parsed( TextView inText )
{
    CronParser::Entry entry;
    EXPECT_EQ( CronParser::ParseString( inText, entry ), std::nullopt ) << UTF8FromText( inText );
    return entry;
}

std::vector<std::string> Next( TextView inText, XAbsoluteTime inAfter, const XTimeZone& inZone, int inCount )
{
    std::vector<std::string> times;
    std::optional<XAbsoluteTime> time = inAfter;
    for ( int i = 0; i < inCount and time; ++i )
    {
        time = CronSchedule::NextTime( Parsed( inText ), *time, inZone );
        times.push_back( Shown( time, inZone ) );
    }
    return times;
}

using Times = std::vector<std::string>;
} // namespace

TEST( CronSchedule, CountsDaysFromBothEndsAndWeekdays )
{
    const XTimeZone gmt = XTimeZone::GMT();
    const XAbsoluteTime start = At( gmt, 2026, 11, 21, 12 ); // a Saturday
    const struct
    {
        TextView mText;
        Times mTimes;
    } kCases[] = {
        { u"0 0 -1 * *",
            { "2026-11-30 00:00:00 +0", "2026-12-31 00:00:00 +0", "2027-01-31 00:00:00 +0",
                "2027-02-28 00:00:00 +0" } },
        { u"0 0 29 2 *", { "2028-02-29 00:00:00 +0", "2032-02-29 00:00:00 +0" } },
        { u"30 4 1 * MON", { "2026-11-23 04:30:00 +0", "2026-11-30 04:30:00 +0", "2026-12-01 04:30:00 +0" } },
        { u"30 4 1 * +MON", { "2027-02-01 04:30:00 +0", "2027-03-01 04:30:00 +0", "2027-11-01 04:30:00 +0" } },
        { u"0 0 * * 7", { "2026-11-22 00:00:00 +0", "2026-11-29 00:00:00 +0" } },
        { u"0 12 21 11 *", { "2027-11-21 12:00:00 +0" } }, // the very moment has gone by
        { u"*/20 23 31 DEC * 2099",
            { "2099-12-31 23:00:00 +0", "2099-12-31 23:20:00 +0", "2099-12-31 23:40:00 +0", "never" } },
        { u"0 0 31 FEB *", { "never" } },
        { u"0 0 -31 4 *", { "never" } },
        { u"0 0 1 1 * 2020", { "never" } },
    };
    for ( const auto& wanted : kCases )
        EXPECT_EQ( Next( wanted.mText, start, gmt, int( wanted.mTimes.size() ) ), wanted.mTimes )
            << UTF8FromText( wanted.mText );
    EXPECT_EQ( Next( u"0 0 * * *", At( gmt, 1990, 6, 1, 0 ), gmt, 1 ), Times{ "2000-01-01 00:00:00 +0" } );
}

TEST( CronSchedule, SkipsWhatTheClocksSkipAndFiresOnceWhatTheyRepeat )
{
    const auto zone = XTimeZone::FromName( u"Europe/Berlin" );
    ASSERT_TRUE( zone );
    // 2026-03-29 02:00 becomes 03:00; 2026-10-25 03:00 becomes 02:00.
    EXPECT_EQ( Next( u"30 2 * * *", At( *zone, 2026, 3, 28, 0 ), *zone, 2 ),
        ( Times{ "2026-03-28 02:30:00 +1", "2026-03-30 02:30:00 +2" } ) );
    EXPECT_EQ( Next( u"*/30 * * * *", At( *zone, 2026, 3, 29, 1, 29 ), *zone, 2 ),
        ( Times{ "2026-03-29 01:30:00 +1", "2026-03-29 03:00:00 +2" } ) );
    EXPECT_EQ( Next( u"30 2 * * *", At( *zone, 2026, 10, 25, 0 ), *zone, 2 ),
        ( Times{ "2026-10-25 02:30:00 +2", "2026-10-26 02:30:00 +1" } ) );
    EXPECT_EQ( Next( u"*/30 * * * *", At( *zone, 2026, 10, 25, 1, 59 ), *zone, 3 ),
        ( Times{ "2026-10-25 02:00:00 +2", "2026-10-25 02:30:00 +2", "2026-10-25 03:00:00 +1" } ) );
    // Asked in the second of the two hours.
    EXPECT_EQ(
        Next( u"*/30 * * * *", At( *zone, 2026, 10, 25, 2, 10 ) + 3600, *zone, 1 ), Times{ "2026-10-25 03:00:00 +1" } );
    // A day that an island group left out, and clocks that move by half an hour.
    const auto apia = XTimeZone::FromName( u"Pacific/Apia" );
    ASSERT_TRUE( apia );
    EXPECT_EQ( Next( u"0 12 30 12 * 2011", At( *apia, 2011, 12, 29, 0 ), *apia, 1 ), Times{ "never" } );
    const auto howe = XTimeZone::FromName( u"Australia/Lord_Howe" );
    ASSERT_TRUE( howe );
    EXPECT_EQ( Next( u"45 1 * * *", At( *howe, 2026, 4, 5, 0 ), *howe, 2 ),
        ( Times{ "2026-04-05 01:45:00 +11", "2026-04-06 01:45:00 +10.5" } ) );
}

namespace
{
// What a calendar of another library says of a moment: all that the slow models below know of time.
class OtherCalendar
{
public:
    explicit OtherCalendar( TextView inZone )
        : mCalendar(
              icu::TimeZone::createTimeZone( icu::UnicodeString( inZone.data(), int( inZone.size() ) ) ), mStatus )
    {}

    void Set( XAbsoluteTime inTime ) { mCalendar.setTime( ( inTime + 978307200.0 ) * 1000, mStatus ); }
    int Get( UCalendarDateFields inField ) { return mCalendar.get( inField, mStatus ); }

    bool MatchesDate( const CronParser::Entry& inEntry )
    {
        const int day = Get( UCAL_DATE );
        const int counted = inEntry.mFromEndOfMonth ? mCalendar.getActualMaximum( UCAL_DATE, mStatus ) + 1 - day : day;
        const bool byDay = inEntry.mDays.test( std::size_t( counted - 1 ) );
        const bool byDOW = inEntry.mDOWs.test( std::size_t( Get( UCAL_DAY_OF_WEEK ) - UCAL_SUNDAY ) );
        return inEntry.mYears.test( std::size_t( Get( UCAL_YEAR ) - 2000 ) ) and
            inEntry.mMonths.test( std::size_t( Get( UCAL_MONTH ) ) ) and
            ( inEntry.mDayOrDOW ? byDay or byDOW : byDay and byDOW );
    }

    // Grows as the clocks go on; only clocks that are put back show it again.
    std::int64_t ShownMinute()
    {
        const std::int64_t day = ( Get( UCAL_YEAR ) * INT64_C( 12 ) + Get( UCAL_MONTH ) ) * 31 + Get( UCAL_DATE );
        return ( day * 24 + Get( UCAL_HOUR_OF_DAY ) ) * 60 + Get( UCAL_MINUTE );
    }

private:
    UErrorCode mStatus = U_ZERO_ERROR;
    icu::GregorianCalendar mCalendar;
};

class RandomNumbers
{
public:
    explicit RandomNumbers( std::uint64_t inSeed ) : mRandom( inSeed ) {}
    int operator()( int inLow, int inHigh )
    {
        return inLow + int( mRandom.Next() % std::uint64_t( inHigh - inLow + 1 ) );
    }
    template<std::size_t kCount>
    const char* OneOf( const char* const ( &inChoices )[kCount] )
    {
        return inChoices[( *this )( 0, kCount - 1 )];
    }

private:
    XSeededRandom mRandom;
};

// Days, months, weekdays and years of all forms.
std::string RandomDates( RandomNumbers& ioNumber )
{
    std::string days = ioNumber.OneOf( { "*", "*/3", "", "", "" } ), weekdays = ioNumber.OneOf( { "*", "*", "", "" } );
    if ( days.empty() )
        days = fmt::format( "{}{},{}", ioNumber.OneOf( { "-", "" } ), ioNumber( 1, 31 ), ioNumber( 1, 31 ) );
    if ( weekdays.empty() )
        weekdays = fmt::format( "{}{}", ioNumber.OneOf( { "+", "" } ), ioNumber( 0, 7 ) );
    return days + " " + ioNumber.OneOf( { "*", "*", "2-4,10", "3-11/2" } ) + " " + weekdays;
}
} // namespace

// Minute by minute over the days on which clocks are put forward and back: by an hour and by half of one, at night and
// at midnight itself, and by a whole day.
TEST( CronSchedule, AgreesWithAWalkThroughEveryMinute )
{
    constexpr struct
    {
        TextView mZone;
        int mYear, mMonth, mDay; // some days before the clocks jump
    } kJumps[] = {
        { u"America/New_York", 2026, 3, 5 },
        { u"America/New_York", 2026, 10, 28 },
        { u"Australia/Lord_Howe", 2026, 4, 2 },
        { u"Australia/Lord_Howe", 2026, 10, 1 },
        { u"America/Sao_Paulo", 2018, 2, 14 },
        { u"America/Sao_Paulo", 2018, 11, 1 },
        { u"America/St_Johns", 2009, 10, 29 },
        { u"Pacific/Apia", 2011, 12, 27 },
        { u"Asia/Kathmandu", 2028, 2, 26 },
    };
    constexpr double kSpan = 6 * 86400.0;
    RandomNumbers number( 20261121 );
    for ( int round = 0; round < 90; ++round )
    {
        const auto& jump = kJumps[std::size_t( round ) % std::size( kJumps )];
        const auto zone = XTimeZone::FromName( jump.mZone );
        ASSERT_TRUE( zone );
        const Text text =
            TextFromUTF8( fmt::format( "{} {} {}", number( 0, 2 ) ? fmt::format( "{}", number( 0, 59 ) ) : "*/10",
                number( 0, 2 ) ? fmt::format( "{},23", number( 0, 4 ) ) : "*", RandomDates( number ) ) );
        const CronParser::Entry entry = Parsed( text );
        const XAbsoluteTime start = At( *zone, jump.mYear, jump.mMonth, jump.mDay, number( 0, 23 ), 17 ) + 20;
        OtherCalendar calendar( jump.mZone );
        std::vector<std::string> walked, found;
        std::int64_t latest = 0;
        for ( XAbsoluteTime time = start + 40; time < start + kSpan; time += 60 )
        {
            calendar.Set( time );
            const std::int64_t minute = calendar.ShownMinute();
            if ( minute <= latest )
                continue; // shown again
            latest = minute;
            if ( entry.mMinutes.test( std::size_t( calendar.Get( UCAL_MINUTE ) ) ) and
                entry.mHours.test( std::size_t( calendar.Get( UCAL_HOUR_OF_DAY ) ) ) and calendar.MatchesDate( entry ) )
                walked.push_back( Shown( time, *zone ) );
        }
        for ( auto time = CronSchedule::NextTime( entry, start, *zone ); time and *time < start + kSpan;
              time = CronSchedule::NextTime( entry, *time, *zone ) )
            found.push_back( Shown( *time, *zone ) );
        EXPECT_EQ( found, walked ) << UTF8FromText( text ) << " in " << UTF8FromText( jump.mZone );
    }
}

// Day by day through the years that an expression can name.
TEST( CronSchedule, AgreesWithAWalkThroughEveryDay )
{
    const XTimeZone gmt = XTimeZone::GMT();
    RandomNumbers number( 20261122 );
    OtherCalendar calendar( u"GMT" );
    for ( int round = 0; round < 40; ++round )
    {
        const int year = number( 2000, 2098 );
        const Text text = TextFromUTF8( fmt::format( "0 12 {} {},{}-2099/7", RandomDates( number ), year, year + 1 ) );
        const CronParser::Entry entry = Parsed( text );
        const XAbsoluteTime end = At( gmt, 2099, 12, 31, 23 );
        XAbsoluteTime start = At( gmt, number( 1998, 2099 ), number( 1, 12 ), number( 1, 28 ), 12 );
        for ( int step = 0; step < 5; ++step )
        {
            std::optional<XAbsoluteTime> walked;
            for ( XAbsoluteTime time = start + 86400; time < end and not walked; time += 86400 )
            {
                calendar.Set( time );
                if ( calendar.Get( UCAL_YEAR ) >= 2000 and calendar.MatchesDate( entry ) )
                    walked = time;
            }
            ASSERT_EQ( Shown( CronSchedule::NextTime( entry, start, gmt ), gmt ), Shown( walked, gmt ) )
                << UTF8FromText( text ) << " after " << Shown( start, gmt );
            if ( not walked )
                break;
            start = *walked;
        }
    }
}

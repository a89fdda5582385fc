#include "Utility/Cron/CronSchedule.h"

#include "Utility/Work/Random.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

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

// Minute by minute through the year, asking the zone alone what the clocks show.
TEST( CronSchedule, AgreesWithAWalkThroughEveryMinute )
{
    const auto zone = XTimeZone::FromName( u"America/New_York" );
    ASSERT_TRUE( zone );
    XSeededRandom random( 20261121 );
    const auto number = [&random]( int inLow, int inHigh ) {
        return inLow + int( random.Next() % std::uint64_t( inHigh - inLow + 1 ) );
    };
    for ( int round = 0; round < 40; ++round )
    {
        const Text text =
            TextFromUTF8( fmt::format( "{} {} {}{} {} {}{}", number( 0, 59 ), number( 0, 4 ), number( 0, 1 ) ? "-" : "",
                number( 1, 31 ), number( 0, 1 ) ? "*" : "3,11", number( 0, 1 ) ? "+" : "", number( 0, 7 ) ) );
        const CronParser::Entry entry = Parsed( text );
        const XAbsoluteTime start = At( *zone, 2026, number( 2, 11 ), number( 1, 28 ), number( 0, 23 ), 17 ) + 20;
        std::optional<XAbsoluteTime> walked;
        for ( XAbsoluteTime time = start + 40; time < start + 20 * 86400.0 and not walked; time += 60 )
        {
            const XCivilTime civil = zone->CivilTime( time );
            const bool firstOfTwo = zone->AbsoluteTime( civil ) == time;
            if ( firstOfTwo and entry.mMinutes[std::size_t( civil.mMinute )] and
                entry.mHours[std::size_t( civil.mHour )] and entry.mMonths[std::size_t( civil.mMonth - 1 )] and
                CronSchedule::MatchesDate( entry, civil.mYear, civil.mMonth, civil.mDay ) )
                walked = time;
        }
        const auto found = CronSchedule::NextTime( entry, start, *zone );
        if ( walked )
            EXPECT_EQ( Shown( found, *zone ), Shown( walked, *zone ) ) << UTF8FromText( text );
        else
            EXPECT_TRUE( not found or *found >= start + 20 * 86400.0 ) << UTF8FromText( text );
    }
}

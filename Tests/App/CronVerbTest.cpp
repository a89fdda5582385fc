#include "Tests/App/KorvalenRun.h"
#include "Utility/Cron/XTimeZone.h"

#include <gmock/gmock.h>

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace
{
struct CronVerbs : testing::Test
{
    static XAbsoluteTime At( int inYear, int inMonth, int inDay )
    {
        return *XTimeZone::GMT().AbsoluteTime( { .mYear = inYear, .mMonth = inMonth, .mDay = inDay } );
    }
    static KorvalenResult Cron( std::vector<std::string> inRest )
    {
        inRest.insert( inRest.begin(), "cron" );
        return RunKorvalenWith( inRest );
    }

    XManualClock mClock{ At( 2026, 11, 21 ) }; // a Saturday
    const XClock::Substitute mSubstitute{ mClock };
};
} // namespace

TEST_F( CronVerbs, AGoodExpressionIsToldAsASentenceWithTheNextTimesOfTheZone )
{
    const struct
    {
        std::vector<std::string> mArguments;
        const char* mOutput;
    } kCases[] = {
        { { "5 4 1 * MON" }, "At 4:05 on Mon or day 1 in every month\n" },
        { { "5 4 1 * MON", "--next", "0" }, "At 4:05 on Mon or day 1 in every month\n" },
        { { "@Noon", "--next", "2", "--zone", "Asia/Kolkata" },
            "At 12:00 every day in every month\n2026-11-21 12:00 +05:30\n2026-11-22 12:00 +05:30\n" },
        { { "--zone", "America/St_Johns", "--next=1", "30 23 -1 * *" },
            "At 23:30 on day 1 from end of month in every month\n2026-11-30 23:30 -03:30\n" },
        { { "0 0 1 1 *", "--next", "1", "--zone", "GMT-0:30" }, "At 0:00 on day 1 in Jan\n2027-01-01 00:00 -00:30\n" },
        { { "0 0 31 FEB *", "--next", "3", "--zone", "UTC" }, "At 0:00 on day 31 in Feb\nnever\n" },
        { { "0 0 1 1 * 2098-2099", "--next", "3", "--zone", "UTC" },
            "At 0:00 on day 1 in Jan in 2098-2099\n2098-01-01 00:00 +00:00\n2099-01-01 00:00 +00:00\n"
            "no more until the end of 2099\n" },
        { { "@weekly trailing" }, "" },
    };
    for ( const auto& [arguments, output] : kCases )
    {
        const KorvalenResult result = Cron( arguments );
        EXPECT_EQ( result.mOutput, output ) << arguments.front();
        EXPECT_EQ( result.mStatus, *output ? 0 : 1 ) << arguments.front();
        EXPECT_EQ( result.mErrors.empty(), *output != '\0' ) << result.mErrors;
    }
    const KorvalenResult most = Cron( { "* * * * *", "--next", "1000" } );
    EXPECT_EQ( std::count( most.mOutput.begin(), most.mOutput.end(), '\n' ), 1001 );
}

TEST_F( CronVerbs, TimesStartAfterTheMomentAndPassOverWhatTheClocksDo )
{
    mClock.SetNow( At( 2026, 3, 28 ) );
    EXPECT_THAT( Cron( { "30 2 * * *", "--next", "2", "--zone", "Europe/Berlin" } ).mOutput,
        HasSubstr( "\n2026-03-28 02:30 +01:00\n2026-03-30 02:30 +02:00\n" ) );
    mClock.SetNow( At( 2026, 10, 25 ) );
    EXPECT_THAT( Cron( { "30 2 * * *", "--next", "2", "--zone", "Europe/Berlin" } ).mOutput,
        HasSubstr( "\n2026-10-25 02:30 +02:00\n2026-10-26 02:30 +01:00\n" ) );
}

TEST_F( CronVerbs, ABadExpressionIsToldExactly )
{
    const std::pair<const char*, const char*> kCases[] = {
        { "60 * * * *", "korvalen: Value 60 is out of range (0-59) in 60 in field minutes (60)\n" },
        { "", "korvalen: Not enough fields (5-6 required)\n" },
        { "5", "korvalen: Not enough fields (5-6 required)\n" },
        { "-5 * * * *", "korvalen: Unreconizable number  in field minutes (-5)\n" },
        { "@often", "korvalen: Unknown @ special name @often\n" },
        { "1 * * m\xC3\xA4r *", "korvalen: Unreconizable number m\xC3\xA4r in field months (m\xC3\xA4r)\n" },
    };
    for ( const auto& [expression, message] : kCases )
    {
        const KorvalenResult result = Cron( { expression, "--json", "--next", "1" } );
        EXPECT_EQ( result.mStatus, 1 ) << expression;
        EXPECT_EQ( result.mOutput, "" ) << expression;
        EXPECT_EQ( result.mErrors, message ) << expression;
    }
}

TEST_F( CronVerbs, MissingQuotesAreExplained )
{
    const std::vector<std::string> kCases[] = {
        { "5", "4", "1", "*", "MON" },
        { "README.md", "Source", "README.md", "Source", "--next", "2" },
        { "0", "0", "-1", "1", "+1" },
    };
    for ( const auto& arguments : kCases )
    {
        const KorvalenResult result = Cron( arguments );
        EXPECT_EQ( result.mStatus, 2 ) << arguments[0];
        EXPECT_EQ( result.mOutput, "" ) << arguments[0];
        EXPECT_THAT(
            result.mErrors, AllOf( HasSubstr( "one pair of quotes" ), HasSubstr( "“" + arguments[0] + "”" ) ) );
    }
}

TEST_F( CronVerbs, ArgumentsThatMakeNoSenseAreWrongUsage )
{
    const std::pair<std::vector<std::string>, const char*> kCases[] = {
        { {}, "EXPRESSION is required" },
        { { "@daily", "--next" }, "--next" },
        { { "@daily", "--next", "-1" }, "not in range 0 to 1000" },
        { { "@daily", "--next", "1001" }, "not in range 0 to 1000" },
        { { "@daily", "--next", "99999999999999999999" }, "not in range 0 to 1000" },
        { { "@daily", "--next", "soon" }, "not in range 0 to 1000" },
        { { "@daily", "--zone", "Nowhere/Town" }, "there is no time zone “Nowhere/Town”" },
        { { "@daily", "--zone", "Etc/Unknown" }, "there is no time zone “Etc/Unknown”" },
        { { "@daily", "--zone", "" }, "there is no time zone “”" },
    };
    for ( const auto& [arguments, message] : kCases )
    {
        const KorvalenResult result = Cron( arguments );
        EXPECT_EQ( result.mStatus, 2 ) << message;
        EXPECT_EQ( result.mOutput, "" ) << message;
        EXPECT_THAT( result.mErrors, HasSubstr( message ) );
    }
}

TEST_F( CronVerbs, JSONHasTheSentenceTheBitsOfEachFieldAndTheTimes )
{
    std::string json = Cron( { "*/30 6 -1,3 FEB +SUN 2032,2060", "--next", "2", "--zone", "UTC", "--json" } ).mOutput;
    json.erase(
        std::remove_if( json.begin(), json.end(), []( char c ) { return c == '\n' or c == ' '; } ), json.end() );
    EXPECT_EQ( json,
        "{\"dayOrWeekday\":false,\"days\":[1,3],\"fromEndOfMonth\":true,\"hours\":[6],\"minutes\":[0,30],"
        "\"months\":[2],\"next\":[\"2032-02-29T06:00+00:00\",\"2032-02-29T06:30+00:00\"],"
        "\"sentence\":\"At6:00,30onSunwhichisalsoday1,3fromendofmonthinFebin2032,2060\","
        "\"weekdays\":[0,7],\"years\":[2032,2060],\"zone\":\"UTC\"}" );
    EXPECT_THAT( Cron( { "0 0 31 2 *", "--next", "5", "--json" } ).mOutput,
        AllOf( HasSubstr( "\"next\": []" ), HasSubstr( "\"dayOrWeekday\": false" ) ) );
}

TEST_F( CronVerbs, TheHelpTellsWhatTheClocksDoAndStandsWithTheOtherVerbs )
{
    const std::string help = Cron( { "--help" } ).mOutput;
    EXPECT_THAT( help,
        AllOf(
            HasSubstr( "is skipped; one that occurs twice" ), HasSubstr( "end of the month, 1 being its last day" ) ) );
    EXPECT_THAT( RunKorvalenWith( { "--help" } ).mOutput, Not( HasSubstr( "Subcommands" ) ) );
}

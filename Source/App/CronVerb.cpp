#include "App/Verb.h"
#include "Utility/Cron/CronParser.h"
#include "Utility/Cron/CronSchedule.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <cmath>

namespace
{
constexpr int kMostTimes = 1000;

// "2026-11-23 04:05 +01:00"
std::string TimeText( XAbsoluteTime inTime, const XTimeZone& inZone, const char* inBetween )
{
    const XCivilTime civil = inZone.CivilTime( inTime );
    const auto offset = int( std::lround( inZone.OffsetAt( inTime ) / 60 ) );
    const int minutes = std::abs( offset );
    return fmt::format( "{:04}-{:02}-{:02}{}{:02}:{:02}{}{}{:02}:{:02}", civil.mYear, civil.mMonth, civil.mDay,
        inBetween, civil.mHour, civil.mMinute, *inBetween == ' ' ? " " : "", offset < 0 ? '-' : '+', minutes / 60,
        minutes % 60 );
}

template<std::size_t kCount>
__SafeCFPropertyList Numbers( const std::bitset<kCount>& inBits, int inFirst )
{
    XMutableArray numbers;
    for ( std::size_t i = 0; i < kCount; ++i )
    {
        if ( inBits[i] )
            numbers.Append( __SafeCFPropertyList::Integer( inFirst + std::int64_t( i ) ) );
    }
    return numbers.Seal();
}

class CronVerb final : public Verb
{
public:
    explicit CronVerb( CLI::App& ioCommand ) : Verb( ioCommand )
    {
        ioCommand
            .add_option( "EXPRESSION", mWords, "Five or six fields in one pair of quotes, or a name such as @daily" )
            ->required()
            ->type_name( "" );
        ioCommand
            .add_option( "--next", mCount, fmt::format( "Also the next N times from now, at most {}", kMostTimes ) )
            ->type_name( "N" )
            ->check( CLI::Range( 0, kMostTimes ) );
        ioCommand.add_option( "--zone", mZone, "The time zone, such as Europe/Berlin, instead of this machine's" )
            ->type_name( "ZONE" );
        ioCommand.add_flag( "--json", mJSON, "Print the sentence, the values of each field and the times as JSON" );
        ioCommand.footer(
            "Tells a cron expression as a sentence, or what is wrong with it. The fields are minutes (0-59),\n"
            "hours (0-23), days (1-31), months (1-12 or JAN-DEC), weekdays (0-7 or SUN-SAT, 0 and 7 being Sunday)\n"
            "and perhaps years (2000-2099); each “*”, or numbers, ranges (1-5) and steps (*/15) with commas between.\n"
            "Days that begin with “-” count from the end of the month, 1 being its last day. With days and weekdays\n"
            "both given a date has to match one of them; with “+” before the weekdays it has to match both.\n"
            "A time that doesn't exist, as clocks are put forward over it, is skipped; one that occurs twice, as they\n"
            "are put back, fires once, the first time.\n"
            "Status 0: a good expression; 1: a bad one; 2: wrong usage.\n"
            "Example: korvalen cron \"5 4 1 * MON\" --next 3 --zone Europe/Berlin" );
    }

    ExitStatus Run( VerbContext& ioContext ) override
    {
        Output& output = ioContext.mOutput;
        if ( mWords.size() != 1 )
        {
            // The words may be file names by now, so they aren't put together: the sentence would tell another time.
            output.Complain(
                fmt::format( "the expression came as {} words, “{}” first; put it in one pair of quotes, so "
                             "that the shell leaves it whole and puts no file names in place of “*”, as in: "
                             "korvalen cron \"5 4 1 * MON\"",
                    mWords.size(), mWords.front() ) );
            return ExitStatus::kWrongUsage;
        }
        const std::optional<XTimeZone> zone =
            mZone ? XTimeZone::FromName( TextFromUTF8( *mZone ) ) : XTimeZone::Local();
        if ( not zone )
        {
            output.Complain( fmt::format(
                "there is no time zone “{}”; zones have names such as Europe/Berlin or America/New_York", *mZone ) );
            return ExitStatus::kWrongUsage;
        }
        CronParser::Entry entry;
        if ( const std::optional<Text> failure = CronParser::ParseString( TextFromUTF8( mWords.front() ), entry ) )
        {
            output.Complain( UTF8FromText( *failure ) );
            return ExitStatus::kFailed;
        }
        const std::vector<XAbsoluteTime> times = NextTimes( entry, *zone );
        if ( mJSON )
            output.JSON( Facts( entry, times, *zone ) );
        else
            Print( entry, times, *zone, output );
        return ExitStatus::kDone;
    }

private:
    [[nodiscard]] std::vector<XAbsoluteTime> NextTimes(
        const CronParser::Entry& inEntry, const XTimeZone& inZone ) const
    {
        std::vector<XAbsoluteTime> times;
        XAbsoluteTime after = XClock::Current().Now();
        while ( int( times.size() ) < mCount )
        {
            const auto time = CronSchedule::NextTime( inEntry, after, inZone );
            if ( not time )
                break;
            times.push_back( after = *time );
        }
        return times;
    }

    void Print( const CronParser::Entry& inEntry, const std::vector<XAbsoluteTime>& inTimes, const XTimeZone& inZone,
        Output& ioOutput ) const
    {
        ioOutput.Line( UTF8FromText( CronParser::DisplayEntryValue( inEntry ) ) );
        for ( const XAbsoluteTime time : inTimes )
            ioOutput.Line( TimeText( time, inZone, " " ) );
        if ( int( inTimes.size() ) < mCount )
            ioOutput.Line(
                inTimes.empty() ? "never" : fmt::format( "no more until the end of {}", CronParser::kLastYear ) );
    }

    static __SafeCFPropertyList Facts(
        const CronParser::Entry& inEntry, const std::vector<XAbsoluteTime>& inTimes, const XTimeZone& inZone )
    {
        XMutableDictionary facts;
        facts.SetText( CFSTR( "sentence" ), TextView( CronParser::DisplayEntryValue( inEntry ) ) );
        facts.Set( CFSTR( "minutes" ), Numbers( inEntry.mMinutes, 0 ) );
        facts.Set( CFSTR( "hours" ), Numbers( inEntry.mHours, 0 ) );
        facts.Set( CFSTR( "days" ), Numbers( inEntry.mDays, 1 ) );
        facts.Set( CFSTR( "months" ), Numbers( inEntry.mMonths, 1 ) );
        facts.Set( CFSTR( "weekdays" ), Numbers( inEntry.mDOWs, 0 ) );
        facts.Set( CFSTR( "years" ), Numbers( inEntry.mYears, CronParser::kFirstYear ) );
        facts.SetBoolean( CFSTR( "fromEndOfMonth" ), inEntry.mFromEndOfMonth );
        facts.SetBoolean( CFSTR( "dayOrWeekday" ), inEntry.mDayOrDOW );
        facts.SetText( CFSTR( "zone" ), TextView( inZone.GetName() ) );
        XMutableArray next;
        for ( const XAbsoluteTime time : inTimes )
            next.Append( __SafeCFPropertyList::String( TextFromUTF8( TimeText( time, inZone, "T" ) ) ) );
        facts.Set( CFSTR( "next" ), next.Seal() );
        return facts.Seal();
    }

    std::vector<std::string> mWords; // one, unless the quotes are missing
    std::optional<std::string> mZone;
    int mCount = 0;
    bool mJSON = false;
};
} // namespace

void AddCronVerb( CLI::App& ioProgram, VerbList& ioVerbs )
{
    CLI::App* const command =
        ioProgram.add_subcommand( "cron", "Tell a cron expression in words, and when it fires next" )->group( "Verbs" );
    ioVerbs.push_back( std::make_unique<CronVerb>( *command ) );
}

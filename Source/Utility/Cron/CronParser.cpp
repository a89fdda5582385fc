#include "Utility/Cron/CronParser.h"

#include "Utility/Text/Format.h"
#include "XCAF/XErrorHandler.h"

#include <array>
#include <span>
#include <vector>

namespace
{
constexpr const char* kLogTag = "CronParser";

constexpr TextView kMonthNames[] = { u"JAN", u"FEB", u"MAR", u"APR", u"MAY", u"JUN", u"JUL", u"AUG", u"SEP", u"OCT",
    u"NOV", u"DEC" };
// Sunday stands at both ends; the first index counts, so that by name it is always 0.
constexpr TextView kDOWNames[] = { u"SUN", u"MON", u"TUE", u"WED", u"THU", u"FRI", u"SAT", u"SUN" };

constexpr TextView kMonthDisplayNames[] = { u"Jan", u"Feb", u"Mar", u"Apr", u"May", u"Jun", u"Jul", u"Aug", u"Sep",
    u"Oct", u"Nov", u"Dec" };
constexpr TextView kDOWDisplayNames[] = { u"Sun", u"Mon", u"Tue", u"Wed", u"Thu", u"Fri", u"Sat" };

struct FieldRow
{
    TextView mName; // in messages
    int mLow, mHigh;
    std::span<const TextView> mNames;
    int mStepHigh;
};

constexpr FieldRow kMinutes = { u"minutes", 0, 59, {}, 59 };
constexpr FieldRow kHours = { u"hours", 0, 23, {}, 23 };
constexpr FieldRow kDays = { u"days", 1, 31, {}, 31 };
constexpr FieldRow kMonths = { u"months", 1, 12, kMonthNames, 12 };
constexpr FieldRow kDOWs = { u"DOWs", 0, 7, kDOWNames, 7 };
constexpr FieldRow kYears = { u"years", CronParser::kFirstYear, CronParser::kLastYear, {}, CronParser::kLastYear };

using Failure = std::optional<Text>;

// An element of a field: every mStep-th value from mFirst to mLast.
struct Run
{
    int mFirst = 0, mLast = 0, mStep = 1;
};

bool IsBlank( char16_t inUnit )
{
    return inUnit == u' ' or inUnit == u'\t';
}

TextView Trimmed( TextView inText )
{
    constexpr TextView kWhite = u" \t\r\n";
    const std::size_t begin = inText.find_first_not_of( kWhite );
    if ( begin == TextView::npos )
        return {};
    return inText.substr( begin, inText.find_last_not_of( kWhite ) - begin + 1 );
}

// Up to six parts; what lies behind them is ignored.
std::vector<TextView> SplitAtBlanks( TextView inText )
{
    std::vector<TextView> parts;
    parts.reserve( 6 );
    for ( std::size_t at = 0; at < inText.size() and parts.size() < 6; )
    {
        std::size_t end = at;
        while ( end < inText.size() and not IsBlank( inText[end] ) )
            ++end;
        if ( end > at )
            parts.push_back( inText.substr( at, end - at ) );
        at = end + 1;
    }
    return parts;
}

// One or two parts; nothing for more.
struct Halves
{
    TextView mFirst, mSecond;
    bool mHasSecond = false;
};

std::optional<Halves> Halve( TextView inText, char16_t inAt )
{
    const std::size_t first = inText.find( inAt );
    if ( first == TextView::npos )
        return Halves{ inText, {}, false };
    if ( inText.find( inAt, first + 1 ) != TextView::npos )
        return {};
    return Halves{ inText.substr( 0, first ), inText.substr( first + 1 ), true };
}

bool IsAllDigits( TextView inText )
{
    for ( const char16_t unit : inText )
    {
        if ( unit < u'0' or unit > u'9' )
            return false;
    }
    return not inText.empty();
}

char16_t ASCIIUpper( char16_t inUnit )
{
    return inUnit >= u'a' and inUnit <= u'z' ? char16_t( inUnit - u'a' + u'A' ) : inUnit;
}

bool EqualsIgnoringCase( TextView inText, TextView inUpper )
{
    if ( inText.size() != inUpper.size() )
        return false;
    for ( std::size_t i = 0; i < inText.size(); ++i )
    {
        if ( ASCIIUpper( inText[i] ) != inUpper[i] )
            return false;
    }
    return true;
}

bool IsNameLike( TextView inText )
{
    if ( inText.size() != 3 )
        return false;
    for ( const char16_t unit : inText )
    {
        if ( ASCIIUpper( unit ) < u'A' or ASCIIUpper( unit ) > u'Z' )
            return false;
    }
    return true;
}

// Parses the elements of one field; its text goes into messages.
class FieldParser
{
public:
    FieldParser( const FieldRow& inRow, TextView inFieldText ) : mRow( inRow ), mFieldText( inFieldText ) {}

    template<std::size_t kCount>
    Failure Parse( std::bitset<kCount>& ioBits ) const
    {
        for ( std::size_t at = 0; at <= mFieldText.size(); )
        {
            const std::size_t comma = std::min( mFieldText.find( u',', at ), mFieldText.size() );
            const TextView element = mFieldText.substr( at, comma - at );
            at = comma + 1;
            if ( element == u"*" )
            {
                ioBits.set();
                continue;
            }
            Run run;
            Failure failure = ParseElement( element, run );
            Log( element, run, failure );
            if ( failure )
                return failure;
            for ( int value = run.mFirst; value <= run.mLast; value += run.mStep )
                ioBits.set( std::size_t( value - mRow.mLow ) );
        }
        return {};
    }

private:
    Failure ParseElement( TextView inElement, Run& outRun ) const
    {
        const std::optional<Halves> bySlash = Halve( inElement, u'/' );
        if ( not bySlash )
            return Message( "Too many slashes in %@ in field %@ (%@)", inElement );
        if ( Failure failure = ParseRange( inElement, bySlash->mFirst, outRun ) )
            return failure;
        if ( bySlash->mHasSecond )
        {
            if ( Failure failure = ParseNumber( bySlash->mSecond, {}, 0, outRun.mStep ) )
                return failure;
        }
        return Check( inElement, outRun );
    }

    Failure ParseRange( TextView inElement, TextView inRange, Run& outRun ) const
    {
        if ( inRange == u"*" )
        {
            outRun.mFirst = mRow.mLow;
            outRun.mLast = mRow.mHigh;
            return {};
        }
        const std::optional<Halves> byDash = Halve( inRange, u'-' );
        if ( not byDash )
            return Message( "Too many dashes in %@ in field %@ (%@)", inElement );
        if ( Failure failure = ParseNumber( byDash->mFirst, mRow.mNames, mRow.mLow, outRun.mFirst ) )
            return failure;
        outRun.mLast = outRun.mFirst;
        return byDash->mHasSecond ? ParseNumber( byDash->mSecond, mRow.mNames, mRow.mLow, outRun.mLast ) : Failure();
    }

    Failure ParseNumber( TextView inText, std::span<const TextView> inNames, int inLow, int& outNumber ) const
    {
        if ( IsAllDigits( inText ) )
        {
            std::int64_t number = 0;
            for ( const char16_t digit : inText )
                number = std::min<std::int64_t>( number * 10 + ( digit - u'0' ), INT64_C( 1 ) << 32 );
            outNumber = int( number );
            if ( number <= INT32_MAX )
                return {};
        }
        else if ( not inNames.empty() and IsNameLike( inText ) )
        {
            for ( std::size_t i = 0; i < inNames.size(); ++i )
            {
                if ( EqualsIgnoringCase( inText, inNames[i] ) )
                {
                    outNumber = int( i ) + inLow;
                    return {};
                }
            }
            return Message( "Unknown index name %@ in field %@ (%@)", inText );
        }
        return Message( "Unreconizable number %@ in field %@ (%@)", inText ); // so spelt
    }

    Failure Check( TextView inElement, const Run& inRun ) const
    {
        for ( const int value : { inRun.mFirst, inRun.mLast } )
        {
            if ( value < mRow.mLow or value > mRow.mHigh )
                return kvr_format( "Value %d is out of range (%d-%d) in %@ in field %@ (%@)", value, mRow.mLow,
                    mRow.mHigh, inElement, mRow.mName, mFieldText );
        }
        if ( inRun.mStep < 1 or inRun.mStep > mRow.mStepHigh )
            return kvr_format( "Step %d is out of range (%d-%d) in %@ in field %@ (%@)", inRun.mStep, 1, mRow.mStepHigh,
                inElement, mRow.mName, mFieldText );
        if ( inRun.mFirst > inRun.mLast )
            return kvr_format( "Low value %d is greater than high value %d in %@ in field %@ (%@)", inRun.mFirst,
                inRun.mLast, inElement, mRow.mName, mFieldText );
        return {};
    }

    Text Message( const char* inFormat, TextView inWhat ) const
    {
        return kvr_format( inFormat, inWhat, mRow.mName, mFieldText );
    }

    void Log( TextView inElement, const Run& inRun, const Failure& inFailure ) const
    {
        if ( not XErrorHandler::MaybeShouldLog( kLogTag ) )
            return;
        if ( inFailure )
            XErrorHandler::PrivateMaybeLogFormat( kLogTag, "%@ %@ ➤ %@", mRow.mName, inElement, *inFailure );
        else
            XErrorHandler::PrivateMaybeLogFormat(
                kLogTag, "%@ %@ ➤ %d-%d by %d", mRow.mName, inElement, inRun.mFirst, inRun.mLast, inRun.mStep );
    }

    const FieldRow& mRow;
    TextView mFieldText;
};

Failure ParseSpecialName( TextView inName, CronParser::Entry& outEntry )
{
    const auto is = [inName]( TextView inUpper ) { return EqualsIgnoringCase( inName, inUpper ); };
    const bool yearly = is( u"YEARLY" ) or is( u"ANNUALLY" );
    const bool monthly = is( u"MONTHLY" ), weekly = is( u"WEEKLY" ), hourly = is( u"HOURLY" ), noon = is( u"NOON" );
    if ( not( yearly or monthly or weekly or hourly or noon or is( u"DAILY" ) or is( u"MIDNIGHT" ) ) )
        return kvr_format( "Unknown @ special name @%@", inName );

    outEntry.mDayOrDOW = false;
    outEntry.mMinutes.set( 0 );
    outEntry.mDays.set();
    outEntry.mMonths.set();
    outEntry.mDOWs.set();
    outEntry.mYears.set();
    if ( hourly )
        outEntry.mHours.set();
    else
        outEntry.mHours.set( noon ? 12 : 0 );
    if ( yearly or monthly )
        outEntry.mDays = 1;
    if ( yearly )
        outEntry.mMonths = 1;
    if ( weekly )
        outEntry.mDOWs = 1;
    return {};
}

Failure ParseFields( TextView inText, CronParser::Entry& outEntry )
{
    std::vector<TextView> fields = SplitAtBlanks( inText );
    if ( fields.size() < 5 )
        return Text( u"Not enough fields (5-6 required)" );
    TextView &days = fields[2], &dows = fields[4];
    if ( days == u"*" or dows == u"*" )
        outEntry.mDayOrDOW = false;
    if ( days.front() == u'-' )
    {
        outEntry.mFromEndOfMonth = true;
        days.remove_prefix( 1 );
    }
    if ( dows.front() == u'+' )
    {
        outEntry.mDayOrDOW = false;
        dows.remove_prefix( 1 );
    }
    Failure failure = FieldParser( kMinutes, fields[0] ).Parse( outEntry.mMinutes );
    if ( not failure )
        failure = FieldParser( kHours, fields[1] ).Parse( outEntry.mHours );
    if ( not failure )
        failure = FieldParser( kDays, days ).Parse( outEntry.mDays );
    if ( not failure )
        failure = FieldParser( kMonths, fields[3] ).Parse( outEntry.mMonths );
    if ( not failure )
        failure = FieldParser( kDOWs, dows ).Parse( outEntry.mDOWs );
    const bool isSunday = outEntry.mDOWs[0] or outEntry.mDOWs[7];
    outEntry.mDOWs[0] = isSunday;
    outEntry.mDOWs[7] = isSunday;
    if ( not failure )
        failure = FieldParser( kYears, fields.size() > 5 ? fields[5] : TextView( u"*" ) ).Parse( outEntry.mYears );
    return failure;
}
} // namespace

std::optional<Text> CronParser::ParseString( TextView inText, Entry& outEntry )
{
    outEntry = Entry();
    const TextView text = Trimmed( inText );
    Failure failure = not text.empty() and text.front() == u'@' ? ParseSpecialName( text.substr( 1 ), outEntry )
                                                                : ParseFields( text, outEntry );
    if ( failure )
        outEntry = Entry();
    return failure;
}

// The sentence

namespace
{
void AppendNumber( Text& ioText, int inNumber, bool inPad )
{
    if ( inPad and inNumber < 10 )
        ioText += u'0';
    char16_t digits[4];
    std::size_t count = 0;
    do
        digits[count++] = char16_t( u'0' + inNumber % 10 );
    while ( ( inNumber /= 10 ) > 0 );
    while ( count > 0 )
        ioText += digits[--count];
}

// The values whose bits are set, runs of them as "2-5".
template<std::size_t N>
Text Field( int inLow, const std::bitset<N>& inBits, bool inPad, std::span<const TextView> inNames )
{
    if ( inBits.all() )
        return u"*";
    Text text;
    const auto append = [&]( std::size_t inBit ) {
        if ( inNames.empty() )
            AppendNumber( text, inLow + int( inBit ), inPad );
        else
            text += inNames[inBit];
    };
    for ( std::size_t i = 0; i < N; ++i )
    {
        if ( not inBits[i] )
            continue;
        const std::size_t first = i;
        while ( i + 1 < N and inBits[i + 1] )
            ++i;
        if ( not text.empty() )
            text += u',';
        append( first );
        if ( i > first )
        {
            text += u'-';
            append( i );
        }
    }
    XAssertText( not text.empty(), "false" );
    return text.empty() ? Text( u"-" ) : text;
}

template<std::size_t N>
int FirstBit( const std::bitset<N>& inBits )
{
    std::size_t i = 0;
    while ( i < N and not inBits[i] )
        ++i;
    return int( i );
}

Text TimeText( const CronParser::Entry& inEntry )
{
    if ( inEntry.mMinutes.all() and inEntry.mHours.all() )
        return u"Every minute";
    if ( inEntry.mMinutes.all() and inEntry.mHours.count() == 1 )
        return kvr_format( u"Every minute of “%d:xx”", FirstBit( inEntry.mHours ) );
    if ( inEntry.mMinutes.count() == 1 and inEntry.mHours.all() )
        return kvr_format( u"Every hour at “x:%02d”", FirstBit( inEntry.mMinutes ) );
    return u"At " + Field( 0, inEntry.mHours, false, {} ) + u":" + Field( 0, inEntry.mMinutes, true, {} );
}

Text DaysText( const CronParser::Entry& inEntry )
{
    const std::bitset<7> week( inEntry.mDOWs.to_ulong() & 0x7F );
    if ( inEntry.mDays.all() )
        return week.all() ? Text( u" every day" ) : u" on " + Field( 0, week, false, kDOWDisplayNames );

    const Text days = Field( 1, inEntry.mDays, false, {} );
    Text text;
    if ( week.all() )
        text = u" on day " + days;
    else
        text = u" on " + Field( 0, week, false, kDOWDisplayNames ) +
            ( inEntry.mDayOrDOW ? u" or day " : u" which is also day " ) + days;
    if ( inEntry.mFromEndOfMonth )
        text += u" from end of month";
    return text;
}
} // namespace

Text CronParser::DisplayEntryValue( const Entry& inEntry )
{
    Text text = TimeText( inEntry ) + DaysText( inEntry );
    if ( inEntry.mMonths.all() )
        text += u" in every month";
    else
        text += u" in " + Field( 1, inEntry.mMonths, false, kMonthDisplayNames );
    if ( not inEntry.mYears.all() )
        text += u" in " + Field( kFirstYear, inEntry.mYears, false, {} );
    return text;
}

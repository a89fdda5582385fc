#include "Utility/Cron/CronParser.h"

#include <gtest/gtest.h>

namespace
{
std::string Error( TextView inText )
{
    CronParser::Entry entry;
    entry.mMinutes.set();
    const std::optional<Text> error = CronParser::ParseString( inText, entry );
    EXPECT_TRUE( not error or entry == CronParser::Entry() ) << UTF8FromText( inText ); // nothing is left of it
    return error ? UTF8FromText( *error ) : "";
}

CronParser::Entry Parsed( TextView inText )
{
    CronParser::Entry entry;
    EXPECT_EQ( CronParser::ParseString( inText, entry ), std::nullopt ) << UTF8FromText( inText );
    return entry;
}

std::string Sentence( TextView inText )
{
    return UTF8FromText( CronParser::DisplayEntryValue( Parsed( inText ) ) );
}

// Values of the set bits, as a list.
template<std::size_t kCount>
std::string Values( const std::bitset<kCount>& inBits, int inFirst = 0 )
{
    if ( inBits.all() )
        return "all";
    std::string values;
    for ( std::size_t i = 0; i < kCount; ++i )
        values += inBits[i] ? std::to_string( inFirst + int( i ) ) + " " : "";
    return values;
}
} // namespace

TEST( CronParser, SetsTheBitsOfEachField )
{
    struct Case
    {
        TextView mText;
        const char *mMinutes, *mHours, *mDays, *mMonths, *mDOWs, *mYears;
        bool mFromEnd, mDayOrDOW;
    };
    const Case kCases[] = {
        { u"*/15 * * * *", "0 15 30 45 ", "all", "all", "all", "all", "all", false, false },
        { u"5 4 1 * MON", "5 ", "4 ", "1 ", "all", "1 ", "all", false, true },
        { u"5 4 1 * +mon", "5 ", "4 ", "1 ", "all", "1 ", "all", false, false },
        { u"0 0 -1 * *", "0 ", "0 ", "1 ", "all", "all", "all", true, false },
        { u"0 0 -1,3 * 5", "0 ", "0 ", "1 3 ", "all", "5 ", "all", true, true },
        { u"0 0 -* * 5", "0 ", "0 ", "all", "all", "5 ", "all", true, true },
        { u"0 0 * * 7", "0 ", "0 ", "all", "all", "0 7 ", "all", false, false },
        { u"0 0 1 * SUN-TUE", "0 ", "0 ", "1 ", "all", "0 1 2 7 ", "all", false, true },
        { u"0 0 31 FEB *", "0 ", "0 ", "31 ", "2 ", "all", "all", false, false },
        { u" 1-10/4,58-59\t5/10 2-4,*/10 jan,MAR-may * 2026,2098-2099 nonsense ", "1 5 9 58 59 ", "5 ",
            "1 2 3 4 11 21 31 ", "1 3 4 5 ", "all", "2026 2098 2099 ", false, false },
        { u"0,*,5 0 1 1 1", "all", "0 ", "1 ", "1 ", "1 ", "all", false, true },
        { u"@YEARLY", "0 ", "0 ", "1 ", "1 ", "all", "all", false, false },
        { u"@annually", "0 ", "0 ", "1 ", "1 ", "all", "all", false, false },
        { u"@monthly", "0 ", "0 ", "1 ", "all", "all", "all", false, false },
        { u"@weekly", "0 ", "0 ", "all", "all", "0 ", "all", false, false },
        { u"@daily", "0 ", "0 ", "all", "all", "all", "all", false, false },
        { u"@Midnight", "0 ", "0 ", "all", "all", "all", "all", false, false },
        { u"@noon", "0 ", "12 ", "all", "all", "all", "all", false, false },
        { u"@hourly", "0 ", "all", "all", "all", "all", "all", false, false },
    };
    for ( const Case& wanted : kCases )
    {
        SCOPED_TRACE( UTF8FromText( wanted.mText ) );
        const CronParser::Entry entry = Parsed( wanted.mText );
        EXPECT_EQ( Values( entry.mMinutes ), wanted.mMinutes );
        EXPECT_EQ( Values( entry.mHours ), wanted.mHours );
        EXPECT_EQ( Values( entry.mDays, 1 ), wanted.mDays );
        EXPECT_EQ( Values( entry.mMonths, 1 ), wanted.mMonths );
        EXPECT_EQ( Values( entry.mDOWs ), wanted.mDOWs );
        EXPECT_EQ( Values( entry.mYears, 2000 ), wanted.mYears );
        EXPECT_EQ( entry.mFromEndOfMonth, wanted.mFromEnd );
        EXPECT_EQ( entry.mDayOrDOW, wanted.mDayOrDOW );
    }
}

TEST( CronParser, SaysExactlyWhatIsWrong )
{
    const struct
    {
        TextView mText;
        const char* mError;
    } kCases[] = {
        { u"", "Not enough fields (5-6 required)" },
        { u"60 * * *", "Not enough fields (5-6 required)" },
        { u"@often", "Unknown @ special name @often" },
        { u"@", "Unknown @ special name @" },
        { u"60 * * * *", "Value 60 is out of range (0-59) in 60 in field minutes (60)" },
        { u"* * 0 * *", "Value 0 is out of range (1-31) in 0 in field days (0)" },
        { u"* * -32 * *", "Value 32 is out of range (1-31) in 32 in field days (32)" },
        { u"* * * * * 1999-2000", "Value 1999 is out of range (2000-2099) in 1999-2000 in field years (1999-2000)" },
        { u"0 0 * * FRI-SUN", "Low value 5 is greater than high value 0 in FRI-SUN in field DOWs (FRI-SUN)" },
        { u"1-2-3 * * * *", "Too many dashes in 1-2-3 in field minutes (1-2-3)" },
        { u"1-2-3/4 * * * *", "Too many dashes in 1-2-3/4 in field minutes (1-2-3/4)" },
        { u"* 7,1/2/3 * * *", "Too many slashes in 1/2/3 in field hours (7,1/2/3)" },
        { u"*/0 * * * *", "Step 0 is out of range (1-59) in */0 in field minutes (*/0)" },
        { u"* * * */13 *", "Step 13 is out of range (1-12) in */13 in field months (*/13)" },
        { u"* * * foo *", "Unknown index name foo in field months (foo)" },
        { u"* * * 1/JAN *", "Unreconizable number JAN in field months (1/JAN)" },
        { u"MON * * * *", "Unreconizable number MON in field minutes (MON)" },
        { u"1,,2 * * * *", "Unreconizable number  in field minutes (1,,2)" },
        { u"* * - * *", "Unreconizable number  in field days ()" },
        { u"\u0661 * * * *", "Unreconizable number \u0661 in field minutes (\u0661)" },
        { u"99999999999 * * * *", "Unreconizable number 99999999999 in field minutes (99999999999)" },
        { u"1 * * January *", "Unreconizable number January in field months (January)" },
        { u"5-1/99 * * * *", "Step 99 is out of range (1-59) in 5-1/99 in field minutes (5-1/99)" },
        { u"70 99 * * *", "Value 70 is out of range (0-59) in 70 in field minutes (70)" },
    };
    for ( const auto& wanted : kCases )
        EXPECT_EQ( Error( wanted.mText ), wanted.mError ) << UTF8FromText( wanted.mText );
}

TEST( CronParser, TellsTheSentence )
{
    const struct
    {
        TextView mText;
        const char* mSentence;
    } kCases[] = {
        { u"* * * * *", "Every minute every day in every month" },
        { u"* 4 * * *", "Every minute of “4:xx” every day in every month" },
        { u"* 4,5 * * *", "At 4-5:* every day in every month" },
        { u"7 * * * *", "Every hour at “x:07” every day in every month" },
        { u"5 4 * * *", "At 4:05 every day in every month" },
        { u"5,6,9 4,10-12 * * *", "At 4,10-12:05-06,09 every day in every month" },
        { u"5 4 1 * MON", "At 4:05 on Mon or day 1 in every month" },
        { u"5 4 1 * +MON", "At 4:05 on Mon which is also day 1 in every month" },
        { u"5 4 -1,2 * *", "At 4:05 on day 1-2 from end of month in every month" },
        { u"5 4 -1 * FRI", "At 4:05 on Fri or day 1 from end of month in every month" },
        { u"0 12 * JAN,JUN-AUG SUN,MON,WED", "At 12:00 on Sun-Mon,Wed in Jan,Jun-Aug" },
        { u"@weekly", "At 0:00 on Sun in every month" },
        { u"0 0 -1 1 +1 2017", "At 0:00 on Mon which is also day 1 from end of month in Jan in 2017" },
        { u"0 0 1 * 0-6 2017-2019,2030", "At 0:00 on day 1 in every month in 2017-2019,2030" },
    };
    for ( const auto& wanted : kCases )
        EXPECT_EQ( Sentence( wanted.mText ), wanted.mSentence ) << UTF8FromText( wanted.mText );
}

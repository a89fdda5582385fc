#include "Utility/Text/NSStringRegularExpressions.h"

#include "Judge.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XErrorHandlerTesting.h"

#include <gtest/gtest.h>
#include <thread>
#include <unicode/regex.h>

namespace
{
using Texts = std::vector<Text>;

// The log lines of a scope in which the tag "RegEx" is on.
class RegExLog
{
public:
    RegExLog()
    {
        XErrorHandler::ResetForTesting();
        XErrorHandler::SetPreferenceSource( { []( TextView ) { return std::optional<Text>( u"RegEx" ); },
            []( TextView ) { return std::optional<bool>(); } } );
        XErrorHandler::SetSinkForTesting(
            [this]( bool, TextView inMessage ) { mLines.push_back( UTF8FromText( inMessage ) ); } );
    }
    ~RegExLog()
    {
        XErrorHandler::SetSinkForTesting( {} );
        XErrorHandler::SetPreferenceSource( {} );
        XErrorHandler::ResetForTesting();
    }

    std::ptrdiff_t CountLinesWith( std::string_view inPart ) const
    {
        return std::count_if( mLines.begin(), mLines.end(),
            [&]( const std::string& inLine ) { return inLine.find( inPart ) != std::string::npos; } );
    }

private:
    std::vector<std::string> mLines;
};

Text Repeated( TextView inText, int inCount )
{
    Text result;
    for ( int i = 0; i < inCount; ++i )
        result += inText;
    return result;
}
} // namespace

TEST( RegularExpressions, ReplacingKeepsThePromisesOfTheLayer )
{
    constexpr struct
    {
        const char16_t *mText, *mPattern, *mTemplate, *mResult;
    } kCases[] = {
        { u"line 1\nline 2\nline 3\n", u"(.*?)", u"x$1x",
            u"xxlxxixxnxxexx xx1xx\nxxlxxixxnxxexx xx2xx\nxxlxxixxnxxexx xx3xx\nxx" },
        { u"one\ntwo\nthree\n", u"^(.+?)\\n", u"", u"two\nthree\n" },
        { u"20171002-151202-29122-1-fail.txt", u"-(fail|working)", u"-mail", u"20171002-151202-29122-1-mail.txt" },
        { u"$1,234.56", u"^\\$", u"", u"1,234.56" },
        { u"15.00000000", u"0+$", u"", u"15." },
        { u"15.", u"\\.$", u"", u"15" },
        // templates
        { u"ab", u"(a)(b)", u"$2$1", u"ba" },
        { u"ab", u"(a)(b)", u"$12", u"a2" },
        { u"ab", u"(a)(b)", u"[$3][$9]", u"[][]" },
        { u"ab", u"(a)|(b)", u"<$1$2>", u"<a><b>" },
        { u"ab", u"(?<first>a)(?<second>b)", u"${second}${first}${third}", u"ba${third}" },
        { u"ab", u"a", u"\\$1\\\\\\n$0\\", u"$1\\nab" },
        { u"ab", u"a", u"\\u263A\\U0001F600\\uZ", u"\u263A\U0001F600uZb" },
        { u"ab", u"a", u"\\uD83D\\uDE00", u"\U0001F600b" }, // a pair by its halves
        { u"cost", u"cost", u"5$ or $x", u"5$ or $x" },
        { u"cost", u"cost", u"${a${b} ${ }${", u"${a${b} ${ }${" },
    };
    for ( const auto& [text, pattern, replacement, result] : kCases )
        EXPECT_EQ( stringByReplacingOccurrencesOfRegex( text, pattern, replacement ), result )
            << UTF8FromText( pattern ) << " by " << UTF8FromText( replacement );
}

TEST( RegularExpressions, ValidTemplatesAreReplacedAsICUReplacesThem )
{
    const Text patterns[] = { u"(a)(b)?", u"a*", u"(?<n>[ab])|(c)", u"^|$", u"\\b", u"((((((((((a))))))))))" };
    const Text pieces[] = { u"$0", u"$1", u"\\$", u"\\\\", u"x", u"0", u"2", u" ", u"\\n", u"\\u0041", u"${n}" };
    std::mt19937 random( 71 );
    int compared = 0;
    for ( int round = 0; round < 20000; ++round )
    {
        const Text& pattern = patterns[random() % std::size( patterns )];
        Text text, replacement;
        for ( unsigned i = 0, n = random() % 8; i < n; ++i )
            text += u"aabbc \n"[random() % 7];
        for ( unsigned i = 0, n = random() % 4; i < n; ++i )
            replacement += pieces[random() % std::size( pieces )];

        UErrorCode status = U_ZERO_ERROR;
        const icu::UnicodeString input( text.data(), int( text.size() ) );
        icu::RegexMatcher matcher( icu::UnicodeString( pattern.data(), int( pattern.size() ) ), input, 0, status );
        const icu::UnicodeString expected =
            matcher.replaceAll( icu::UnicodeString( replacement.data(), int( replacement.size() ) ), status );
        if ( U_FAILURE( status ) ) // a capture that doesn't exist, which ICU refuses
            continue;
        ++compared;
        ASSERT_EQ( stringByReplacingOccurrencesOfRegex( text, pattern, replacement ),
            Text( expected.getBuffer(), std::size_t( expected.length() ) ) )
            << "seed 71: " << UTF8FromText( text ) << ", " << UTF8FromText( pattern ) << ", "
            << UTF8FromText( replacement );
    }
    EXPECT_GT( compared, 5000 );
}

// Looking for the end of each name would take minutes.
TEST( RegularExpressions, ATemplateOfManyOpenNamesIsReadInOnePass )
{
    Text replacement;
    for ( int i = 0; i < 500'000; ++i )
        replacement += u"${";
    EXPECT_EQ( stringByReplacingOccurrencesOfRegex( u"a", u"(?<n>a)", replacement ), replacement );
    replacement += u'}';
    EXPECT_EQ( stringByReplacingOccurrencesOfRegex( u"a", u"(?<n>a)", replacement ), replacement );
    EXPECT_EQ( stringByReplacingOccurrencesOfRegex( u"a", u"(?<n>a)", replacement + u"${n}" ), replacement + u"a" );
}

TEST( RegularExpressions, MatchesCapturesAndPieces )
{
    EXPECT_TRUE( isMatchedByRegex( u"Hello", u"l+" ) );
    EXPECT_FALSE( isMatchedByRegex( u"Hello", u"hello" ) );
    EXPECT_TRUE( isMatchedByRegex( u"Hello", u"hello", RegexOptions::kCaseInsensitive ) );
    EXPECT_TRUE( isMatchedByRegex( u"", u"^$" ) );
    EXPECT_TRUE( isMatchedByRegex( TextView(), u"^$" ) );
    EXPECT_EQ( rangeOfRegex( u"a12b", u"[0-9]+" ), ( TextRange{ 1, 2 } ) );
    EXPECT_EQ( rangeOfRegex( u"\U0001F600x", u"x" ), ( TextRange{ 2, 1 } ) );
    EXPECT_EQ( rangeOfRegex( u"a12b", u"([0-9])([0-9])", RegexOptions::kNone, {}, 2 ), ( TextRange{ 2, 1 } ) );
    EXPECT_EQ( rangeOfRegex( u"abab", u"^b", RegexOptions::kNone, TextRange{ 3, 1 } ), ( TextRange{ 3, 1 } ) );
    EXPECT_FALSE( rangeOfRegex( u"abab", u"a", RegexOptions::kNone, TextRange{ 99, 99 } ) );
    EXPECT_FALSE( rangeOfRegex( u"a", u"(a)|(b)", RegexOptions::kNone, {}, 2 ) );
    EXPECT_FALSE( rangeOfRegex( u"a", u"a", RegexOptions::kNone, {}, 5 ) );
    EXPECT_EQ( stringByMatching( u"key=value", u"(\\w+)=(\\w+)", RegexOptions::kNone, 2 ), u"value" );
    EXPECT_EQ( stringByMatching( u"key", u"=" ), std::nullopt );
    EXPECT_EQ( stringsMatchedByRegex( u"a1b22", u"[0-9]+" ), ( Texts{ u"1", u"22" } ) );
    EXPECT_EQ( captureComponentsMatchedByRegex( u"xa", u"(a)|(b)" ), ( Texts{ u"a", u"a", u"" } ) );
    EXPECT_EQ( captureComponentsMatchedByRegex( u"x", u"(a)" ), Texts() );
    EXPECT_EQ( componentsSeparatedByRegex( u",a,,b,", u"," ), ( Texts{ u"", u"a", u"", u"b", u"" } ) );
    EXPECT_EQ( componentsSeparatedByRegex( u"a1b", u"[0-9]*" ), ( Texts{ u"a", u"b" } ) );
    EXPECT_EQ( componentsSeparatedByRegex( u"abc", u"" ), Texts{ u"abc" } );
    EXPECT_EQ( componentsSeparatedByRegex( u"", u"," ), Texts{ u"" } );
}

TEST( RegularExpressions, OptionsReachTheEngine )
{
    using enum RegexOptions;
    EXPECT_EQ( stringsMatchedByRegex( u"a\nb", u"^.", kAnchorsMatchLines ), ( Texts{ u"a", u"b" } ) );
    EXPECT_TRUE( isMatchedByRegex( u"a\nb", u"a.b", kDotMatchesLineSeparators ) );
    EXPECT_FALSE( isMatchedByRegex( u"a\nb", u"a.b" ) );
    EXPECT_TRUE( isMatchedByRegex( u"a.c", u"A.C", kIgnoreMetacharacters | kCaseInsensitive ) );
    EXPECT_FALSE( isMatchedByRegex( u"abc", u"a.c", kIgnoreMetacharacters ) );
    EXPECT_TRUE( isMatchedByRegex( u"ab", u"a b # comment", kAllowComments ) );
    EXPECT_TRUE( isMatchedByRegex( u"a\rb", u"a.b", kUseUnixLineSeparators ) );
    EXPECT_EQ( stringsMatchedByRegex( u"don't", u"\\b\\w", kUseUnicodeWordBoundaries ), Texts{ u"d" } );
}

TEST( RegularExpressions, BlocksMakeReplacementsInARange )
{
    const auto doubled = []( const RegexMatch& inMatch ) -> std::optional<Text> {
        if ( inMatch.GetText( 1 ) == u"2" )
            return {};
        return Text( inMatch.GetText() ) + Text( inMatch.GetText() );
    };
    EXPECT_EQ( kvr_stringByReplacingOccurrencesOfRegex( u"1 2 3", u"([0-9])", doubled ), u"11 2 33" );
    Text text = u"1 2 3";
    EXPECT_EQ(
        kvr_slow_replaceOccurrencesOfRegex( text, u"([0-9])", doubled, RegexOptions::kNone, TextRange{ 2, 3 } ), 1u );
    EXPECT_EQ( text, u"1 2 33" );
    EXPECT_EQ(
        kvr_slow_replaceOccurrencesOfRegex( text, u"[0-9]", u"<$0>", RegexOptions::kNone, TextRange{ 0, 3 } ), 2u );
    EXPECT_EQ( text, u"<1> <2> 33" );
    EXPECT_EQ( kvr_slow_replaceOccurrencesOfRegex( text, u"(", u"" ), 0u );
    EXPECT_EQ( text, u"<1> <2> 33" );
}

TEST( RegularExpressions, TheCacheIsEmptiedBeforeItHoldsMore )
{
    using NSStringRegularExpressions::RegularExpressionWithPattern;
    EXPECT_EQ( RegularExpressionWithPattern( u"" ), nullptr );
    EXPECT_EQ( RegularExpressionWithPattern( u"(" ), nullptr );
    EXPECT_EQ( RegularExpressionWithPattern( u"(" ), nullptr );
    EXPECT_NE( RegularExpressionWithPattern( u"(", RegexOptions::kIgnoreMetacharacters ), nullptr );
    // At most 101 entries: among any 102 other patterns the cache is emptied at least once.
    const auto first = RegularExpressionWithPattern( u"first" );
    EXPECT_EQ( RegularExpressionWithPattern( u"first" ), first );
    EXPECT_NE( RegularExpressionWithPattern( u"first", RegexOptions::kCaseInsensitive ), first );
    for ( int i = 0; i < 102; ++i )
        EXPECT_NE( RegularExpressionWithPattern( Repeated( u"x", i + 1 ) ), nullptr );
    EXPECT_NE( RegularExpressionWithPattern( u"first" ), first );
    EXPECT_NE( first, nullptr ); // who holds one may go on using it
}

TEST( RegularExpressions, ACatastropheIsStoppedAndCountsAsNoMatch )
{
    const Text a30 = Repeated( u"a", 30 ), a100K = Repeated( u"a", 100000 );
    const struct
    {
        Text mPattern, mText;
    } kCases[] = {
        { u"(a+)+b|a", a30 },
        { u"(a+)+b", a100K }, // the stack
        { u"(a|aa)+b|a", Repeated( u"a", 60 ) },
        { u"(x+x+)+y|x", Repeated( u"x", 60 ) },
        { u"a*a*a*b|a", a100K },
        { u".*.*=.*|a", a100K },
        { u"(?>a+)b|(?=.*z)", a100K },
        { u"((a{1,100}){1,100}){1,100}b|a", a100K },
        { u"(?<=a{1,1000}b)c", Repeated( u"c", 100000 ) },
    };
    for ( const auto& [pattern, text] : kCases )
        EXPECT_EQ( stringByReplacingOccurrencesOfRegex( text, pattern, u"!" ), text ) << UTF8FromText( pattern );
    // Matches found before the stop are void too: no half of a replacement.
    const Text mixed = u"b" + a30 + u"c";
    EXPECT_TRUE( isMatchedByRegex( mixed, u"b|(a+)+d" ) );
    EXPECT_EQ( stringByReplacingOccurrencesOfRegex( mixed, u"b|(a+)+d", u"!" ), mixed );
    EXPECT_EQ( componentsSeparatedByRegex( mixed, u"b|(a+)+d" ), Texts{ mixed } );
    EXPECT_EQ( stringsMatchedByRegex( mixed, u"b|(a+)+d" ), Texts() );
}

TEST( RegularExpressions, OversizedPatternsAreInvalid )
{
    using NSStringRegularExpressions::RegularExpressionWithPattern;
    EXPECT_NE( RegularExpressionWithPattern( Repeated( u"a", 65536 ) ), nullptr );
    EXPECT_EQ( RegularExpressionWithPattern( Repeated( u"a", 65537 ) ), nullptr );
    EXPECT_EQ( RegularExpressionWithPattern( Repeated( u"(", 65000 ) ), nullptr );
    EXPECT_NE( RegularExpressionWithPattern( Repeated( u"[b]", 2000 ) ), nullptr );
    EXPECT_EQ( RegularExpressionWithPattern( Repeated( u"\\p{L}", 2001 ) ), nullptr );
    EXPECT_EQ( RegularExpressionWithPattern( u"(?x-i)(?si)" + Repeated( u"[[^a]]", 5000 ) ), nullptr );
    EXPECT_NE( RegularExpressionWithPattern( Repeated( u"[", 5000 ), RegexOptions::kIgnoreMetacharacters ), nullptr );
}

TEST( RegularExpressions, ThreadsShareThePatterns )
{
    std::vector<std::thread> threads;
    for ( int i = 0; i < 4; ++i )
        threads.emplace_back( [] {
            for ( int j = 0; j < 2000; ++j )
            {
                const Text pattern = Repeated( u"b", j % 150 + 1 );
                EXPECT_EQ( rangeOfRegex( u"a" + pattern, pattern ), ( TextRange{ 1, pattern.size() } ) );
            }
        } );
    for ( std::thread& thread : threads )
        thread.join();
}

TEST( RegularExpressions, FailuresStopsAndCallsAreLoggedButNeverTheText )
{
    const RegExLog log;
    EXPECT_FALSE( isMatchedByRegex( u"secret", u"(unclosed" ) );
    EXPECT_FALSE( isMatchedByRegex( u"secret", u"(unclosed" ) );
    EXPECT_EQ( log.CountLinesWith( "Invalid regular expression (unclosed (error: " ), 1 );
    EXPECT_EQ( log.CountLinesWith( "isMatchedByRegex (unclosed" ), 2 );
    EXPECT_FALSE( isMatchedByRegex( u"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa", u"(a+)+b" ) );
    EXPECT_EQ( log.CountLinesWith( "Stopped regular expression (a+)+b" ), 1 );
    EXPECT_EQ( log.CountLinesWith( "TIME_OUT" ), 1 );
    EXPECT_FALSE( isMatchedByRegex( Repeated( u"a", 1000000 ), u"(a+)+b" ) );
    EXPECT_EQ( log.CountLinesWith( "STACK_OVERFLOW" ), 1 );
    EXPECT_EQ( log.CountLinesWith( "secret" ), 0 );
}

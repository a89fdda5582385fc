#include "Utility/Text/StringHelpers.h"

#include "Judge.h"

#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <unicode/regex.h>
#include <unicode/uchar.h>

TEST( StringHelpers, CleanNameDeletesWhatTheLineBreakPatternMatches )
{
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::RegexPattern> pattern( icu::RegexPattern::compile( u"\\R", 0, status ) );
    TextFuzzer fuzzer( 61, u"\r\n\v\f\u0085\u2028\u2029ab \t" );
    for ( int round = 0; round < 20000; ++round )
    {
        const Text text = fuzzer.Next( 12, true );
        const icu::UnicodeString input( text.data(), int( text.size() ) );
        const std::unique_ptr<icu::RegexMatcher> matcher( pattern->matcher( input, status ) );
        const icu::UnicodeString expected = matcher->replaceAll( icu::UnicodeString(), status );
        ASSERT_EQ( kvr_cleanName( text ), Text( expected.getBuffer(), std::size_t( expected.length() ) ) );
    }
}

TEST( StringHelpers, WhitespaceIsUnicodesProperty )
{
    for ( unsigned unit = 0; unit < 0x10000; ++unit )
        ASSERT_EQ( kvr_isWhitespace( char16_t( unit ) ), bool( u_isUWhiteSpace( UChar32( unit ) ) ) ) << unit;
    EXPECT_EQ( kvr_stringByTrimmingWhitespace( u"\t\u00A0 a b\r\n\u3000" ), u"a b" );
    EXPECT_EQ( kvr_stringByTrimmingWhitespace( u" \n " ), u"" );
}

TEST( StringHelpers, PrefixesSuffixesAndRepeats )
{
    EXPECT_EQ( stringByRemovingPrefix( u"foobar", u"foo" ), u"bar" );
    EXPECT_EQ( stringByRemovingPrefix( u"foobar", u"Foo" ), u"foobar" );
    EXPECT_EQ( stringByRemovingSuffix( u"foobar", u"bar" ), u"foo" );
    EXPECT_EQ( stringByRemovingSuffix( u"bar", u"foobar" ), u"bar" );
    EXPECT_EQ( stringByRepeating( u"ab", 3 ), u"ababab" );
    EXPECT_EQ( stringByRepeating( u"ab", 0 ), u"" );
    EXPECT_EQ( stringByRepeating( u"ab", -1 ), u"" );
    EXPECT_EQ( stringByRepeating( u"", std::int64_t( 1 ) << 62 ), u"" );
    EXPECT_EQ( stringByRepeating( u"abc", std::int64_t( 1 ) << 62 ).size(), ( std::size_t( 1 ) << 26 ) / 3 * 3 );
    EXPECT_EQ( stringWithLongInt( INT64_MIN ), u"-9223372036854775808" );
}

TEST( StringHelpers, CharactersOfAllPlanesAreTakenAndAppended )
{
    Text text;
    for ( const char32_t character : { U'a', U'\u00E9', U'\U0001F600', char32_t( 0xD800 ), char32_t( 0x110000 ) } )
        kvr_appendCharacter( text, character );
    std::vector<char32_t> characters;
    for ( std::size_t at = 0; at < text.size(); )
        characters.push_back( kvr_nextCharacter( text, at ) );
    EXPECT_EQ( characters, ( std::vector<char32_t>{ U'a', U'\u00E9', U'\U0001F600', 0xD800, 0xFFFD } ) );
}

TEST( StringHelpers, ReversingKeepsWhatPeopleSeeAsCharacters )
{
    constexpr struct
    {
        const char16_t *mText, *mResult;
    } kCases[] = {
        { u"", u"" },
        { u"abc", u"cba" },
        { u"a\r\nb", u"b\r\na" },
        { u"e\u0301a", u"ae\u0301" },
        { u"x\U0001F468\u200D\U0001F469y", u"y\U0001F468\u200D\U0001F469x" },
    };
    for ( const auto& [text, result] : kCases )
    {
        EXPECT_EQ( kvr_stringByReversingCharacters( text ), result );
        EXPECT_EQ( kvr_stringByReversingCharacters( result ), text );
    }
}

TEST( StringHelpers, ReversingTakesARunOfFlagsInOnePass )
{
    Text text, reversed;
    for ( int i = 0; i < 100'000; ++i )
    {
        text += u"\U0001F1E9\U0001F1EA";
        reversed += u"\U0001F1E9\U0001F1EA";
    }
    EXPECT_EQ( kvr_stringByReversingCharacters( text + u'x' ), u'x' + reversed );
}

TEST( StringHelpers, APartIsFoundExactlyWhereTheLibraryFindsIt )
{
    std::mt19937 random( 67 );
    int found = 0;
    for ( int round = 0; round < 20'000; ++round )
    {
        // Parts that begin like themselves, with or without one unit that differs.
        Text text, part;
        for ( unsigned i = 0, n = random() % 200; i < n; ++i )
            text += random() % 16 ? u'a' : u'b';
        if ( const std::size_t start = text.empty() ? 0 : random() % text.size(); random() % 2 )
            part = text.substr( start, random() % 80 );
        else
            part = Text( random() % 60, u'a' ) + u'b' + Text( random() % 20, u'a' );
        const bool expected = text.find( part ) != Text::npos;
        found += expected;
        ASSERT_EQ( kvr_containsString( text, part ), expected )
            << "seed 67: " << UTF8FromText( part ) << " in " << UTF8FromText( text );
    }
    EXPECT_GT( found, 5'000 );

    const Text half( 500'000, u'a' );
    EXPECT_FALSE( kvr_containsString( half + half, half + u'b' ) );
    EXPECT_TRUE( kvr_containsString( half + half + u'b', half + u'b' ) );
}

TEST( StringHelpers, CaseChangesReportTheirNewLength )
{
    Text text = u"die stra\u00DFe hier";
    TextRange updated;
    kvr_uppercaseRange( text, { 4, 6 }, updated );
    EXPECT_EQ( text, u"die STRASSE hier" );
    EXPECT_EQ( updated, ( TextRange{ 4, 7 } ) );
    kvr_lowercaseRange( text, updated, updated );
    EXPECT_EQ( text, u"die strasse hier" );
    kvr_lowercaseRange( text, { 99, 5 }, updated );
    EXPECT_EQ( updated, ( TextRange{ text.size(), 0 } ) );
    text = u"TITLE \u0130";
    kvr_lowercaseRange( text, { 0, 99 }, updated );
    EXPECT_EQ( text, u"title i\u0307" ); // no locale turns I into a dotless one
    EXPECT_EQ( updated, ( TextRange{ 0, 8 } ) );

    EXPECT_EQ( kvr_capitalizeFirstString( u"hello World" ), u"Hello World" );
    EXPECT_EQ( kvr_capitalizeFirstString( u"\u01C6x" ), u"\u01C5x" );
    EXPECT_EQ( kvr_capitalizeFirstString( u"\U00010428" ), u"\U00010400" );
    EXPECT_EQ( kvr_capitalizeFirstString( u"" ), u"" );
}

TEST( StringHelpers, SummariesAreOneLineAndAtMostAsLong )
{
    EXPECT_EQ( kvr_summaryText( u"  two\r\n\twords ", 20 ), u"two words" );
    EXPECT_EQ( kvr_summaryText( u"twelve units", 12 ), u"twelve units" );
    EXPECT_EQ( kvr_summaryText( u"twelve units", 11 ), u"twelve uni\u2026" );
    EXPECT_EQ( kvr_summaryText( u"twelve units", 8 ), u"twelve\u2026" );
    EXPECT_EQ( kvr_summaryText( u"a\U0001F600b", 3 ), u"a\u2026" );
    EXPECT_EQ( kvr_summaryText( u"ab", 1 ), u"\u2026" );
    EXPECT_EQ( kvr_summaryText( u"ab", 0 ), u"" );
    EXPECT_EQ( kvr_summaryText( u"ab", std::size_t( -1 ) ), u"ab" );
    TextFuzzer fuzzer( 62, u"ab  \n" );
    for ( int round = 0; round < 5000; ++round )
    {
        const Text text = fuzzer.Next( 30 );
        const std::size_t maximum = fuzzer.mRandom() % 30;
        const Text summary = kvr_summaryText( text, maximum );
        ASSERT_LE( summary.size(), maximum );
        ASSERT_FALSE( FindLoneSurrogate( summary ) );
        ASSERT_EQ( kvr_summaryText( summary, maximum ), summary );
    }
}

TEST( StringHelpers, ConcealingShowsTwoCharactersAndTheLength )
{
    EXPECT_EQ( concealPassword( u"ab" ), u"ab" );
    EXPECT_EQ( concealPassword( u"abc" ), u"ab\u25CF" );
    EXPECT_EQ( concealPassword( u"secret" ), u"se\u25CF\u25CF\u25CF\u25CF" );
    EXPECT_EQ( concealPassword( u"a\U0001F600b" ), u"a\u25CF\u25CF\u25CF" ); // no half of a pair is left
}

TEST( StringHelpers, ModifierGlyphsStandInTheOrderOfMenusInEachRun )
{
    EXPECT_EQ( canonicalOrderMenuGlyphs( u"\u2318\u21E7\u2325\u2303A" ), u"\u2303\u2325\u21E7\u2318A" );
    EXPECT_EQ( canonicalOrderMenuGlyphs( u"\u2318\u2303A \u21E7\u2325B" ), u"\u2303\u2318A \u2325\u21E7B" );
    EXPECT_EQ( canonicalOrderMenuGlyphs( u"\u2318\u2303\u2318" ), u"\u2303\u2318\u2318" );
    EXPECT_EQ( canonicalOrderMenuGlyphs( u"plain" ), u"plain" );
}

TEST( StringHelpers, DotsAndEllipsisAreAlike )
{
    EXPECT_EQ( stringBySimplifyingDotDotDot( u"Open... now...." ), u"Open\u2026 now\u2026." );
    EXPECT_TRUE( equalToStringIgnoringDotDotDot( u"Save As...", u"Save As\u2026" ) );
    EXPECT_TRUE( equalToStringIgnoringDotDotDot( u"Save As...", u"Save As" ) );
    EXPECT_FALSE( equalToStringIgnoringDotDotDot( u"Save As..", u"Save As" ) );
    EXPECT_TRUE( containsStringIgnoringDotDotDot( u"File: Save As\u2026", u"Save As..." ) );
    EXPECT_FALSE( containsStringIgnoringDotDotDot( u"Save", u"Save As" ) );
}

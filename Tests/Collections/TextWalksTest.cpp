#include "Collections/LinesIn.h"
#include "Collections/SubstringsIn.h"
#include "Tests/Support/LogCapture.h"
#include "Utility/Text/Format.h"
#include "Utility/Text/NSStringRegularExpressions.h"
#include "Utility/Work/Random.h"

#include <gtest/gtest.h>
#include <unicode/uchar.h>
#include <unicode/ustring.h>

namespace
{
using Match = SubstringsInMatchType;
using Result = SubstringsInResultType;
using Texts = std::vector<Text>;

Texts Lines( TextView inText, bool inBlank )
{
    LinesIn walk{ XText( inText ) };
    walk.setIncludeBlank( inBlank );
    Texts lines;
    while ( auto line = walk.nextObject() )
        lines.push_back( *line );
    return lines;
}

Texts Found( TextView inText, TextView inSearch, Match inMatch, Result inResult )
{
    SubstringsIn walk( XText( inText ), XText( inSearch ), inMatch, inResult );
    Texts found;
    while ( auto object = walk.nextObject() )
        found.push_back( *object );
    return found;
}

Text RandomText( XRandom& ioRandom, TextView inUnits, std::size_t inLength )
{
    Text text;
    for ( std::size_t length = ioRandom.Next() % ( inLength + 1 ); length > 0; --length )
        text += inUnits[ioRandom.Next() % inUnits.size()];
    return text;
}

bool EqualIgnoringCase( TextView inText, TextView inOther )
{
    UErrorCode status = U_ZERO_ERROR;
    return u_strCaseCompare( inText.data(), std::int32_t( inText.size() ), inOther.data(),
               std::int32_t( inOther.size() ), U_FOLD_CASE_DEFAULT, &status ) == 0;
}

// The rule by trying every range; for the case-insensitive kind on whole characters.
Texts SlowlyFound( TextView inText, TextView inSearch, bool inIgnoreCase )
{
    const auto isBoundary = [&]( std::size_t at ) {
        return not inIgnoreCase or at == 0 or at == inText.size() or
            not( IsHighSurrogate( inText[at - 1] ) and IsLowSurrogate( inText[at] ) );
    };
    Texts ranges;
    for ( std::size_t start = 0; start < inText.size(); )
    {
        std::size_t end = start;
        for ( std::size_t i = start + 1; end == start and i <= inText.size(); ++i )
        {
            const TextView part = inText.substr( start, i - start );
            if ( isBoundary( start ) and isBoundary( i ) and
                ( inIgnoreCase ? EqualIgnoringCase( part, inSearch ) : part == inSearch ) )
                end = i;
        }
        if ( end > start )
            ranges.push_back( kvr_format( "%zu,%zu", start + 1, end - start ) );
        start = std::max( end, start + 1 );
    }
    return ranges;
}
} // namespace

TEST( LinesIn, EndAtCRLFCROrLFAndALastBreakBeginsNone )
{
    const struct
    {
        TextView mText;
        Texts mAll, mFilled;
    } kCases[] = {
        { u"a\r\nb\rc\n", { u"a", u"b", u"c" }, { u"a", u"b", u"c" } },
        { u"a\n\nb", { u"a", u"", u"b" }, { u"a", u"b" } },
        { u"", {}, {} },
        { u"\n", { u"" }, {} },
        { u"\r\r\n\n", { u"", u"", u"" }, {} },
        { u"\n\r", { u"", u"" }, {} },
        { u" \n\tx", { u" ", u"\tx" }, { u" ", u"\tx" } }, // white space isn't empty
        { u"a\u2028b\u0085c\fd", { u"a\u2028b\u0085c\fd" }, { u"a\u2028b\u0085c\fd" } },
    };
    for ( const auto& [text, all, filled] : kCases )
    {
        EXPECT_EQ( Lines( text, true ), all );
        EXPECT_EQ( Lines( text, false ), filled );
    }
}

TEST( LinesIn, AreWhatTheRegularExpressionSeparates )
{
    XSeededRandom random( 11 );
    for ( int i = 0; i < 20'000; ++i )
    {
        const Text text = RandomText( random, u"ab\r\n\r\n", 12 );
        Texts expected = componentsSeparatedByRegex( text, u"\\r\\n|\\r|\\n" );
        if ( expected.back().empty() )
            expected.pop_back();
        ASSERT_EQ( Lines( text, true ), expected ) << i;
        std::erase( expected, Text() );
        ASSERT_EQ( Lines( text, false ), expected ) << i;
    }
}

TEST( LinesIn, OfNoTextAssertsAndHasNone )
{
    LogCapture log;
    LinesIn walk{ XText() };
    EXPECT_EQ( walk.nextLine(), std::nullopt );
    EXPECT_EQ( log.CountAssertions( "false" ), 1u );
}

TEST( SubstringsIn, FindsPlacesFromLeftToRightThatDontOverlap )
{
    const struct
    {
        TextView mText, mSearch;
        Match mMatch;
        Result mResult;
        Texts mFound;
    } kCases[] = {
        { u"abc", u"b", Match::kCaseSensitive, Result::kRange, { u"2,1" } },
        { u"abc", u"b", Match::kCaseSensitive, Result::kPosition, { u"2" } },
        { u"aaaa", u"aa", Match::kCaseSensitive, Result::kPosition, { u"1", u"3" } },
        { u"aBAb", u"ab", Match::kCaseSensitive, Result::kString, {} },
        { u"aBAb", u"ab", Match::kCaseInsensitive, Result::kString, { u"aB", u"Ab" } },
        { u"", u"a", Match::kCaseSensitive, Result::kString, {} },
        { u"abc", u"", Match::kCaseSensitive, Result::kString, {} },
        { u"abc", u"", Match::kCaseInsensitive, Result::kString, {} },
        { u"abc", u"", Match::kMatch, Result::kString, {} },
        // indexes are those of the text, not of its folded form
        { u"xßSS", u"ss", Match::kCaseInsensitive, Result::kRange, { u"2,1", u"3,2" } },
        { u"Straße", u"STRASSE", Match::kCaseInsensitive, Result::kString, { u"Straße" } },
        { u"ß", u"s", Match::kCaseInsensitive, Result::kRange, {} }, // not half a character
        { u"sß", u"ss", Match::kCaseInsensitive, Result::kRange, { u"2,1" } },
        { u"ΣΊΣ", u"σ", Match::kCaseInsensitive, Result::kPosition, { u"1", u"3" } },
        { u"x𐐀𐐨", u"𐐨", Match::kCaseInsensitive, Result::kRange, { u"2,2", u"4,2" } },
        { u"abab", u"[ab]", Match::kMatch, Result::kString, { u"a", u"b", u"a", u"b" } },
        { u"abc", u"x*", Match::kMatch, Result::kRange, { u"1,0", u"2,0", u"3,0" } },
        { u"abc", u"^.", Match::kMatch, Result::kString, { u"a", u"b", u"c" } }, // the range is anchored
        { u"abc", u"c$", Match::kMatch, Result::kPosition, { u"3" } },
        { u"ab", u"(?<=a)b", Match::kMatch, Result::kString, { u"b" } },
        { u"ab", u"(", Match::kMatch, Result::kString, {} },
        { u"ab", u"a", Match( 3 ), Result::kString, {} },
        { u"ab", u"a", Match::kMatch, Result( 3 ), {} },
    };
    for ( const auto& row : kCases )
        EXPECT_EQ( Found( row.mText, row.mSearch, row.mMatch, row.mResult ), row.mFound )
            << UTF8FromText( row.mText ) << " / " << UTF8FromText( row.mSearch );
}

TEST( SubstringsIn, FindsWhatTryingEveryRangeFinds )
{
    XSeededRandom random( 5 );
    for ( int i = 0; i < 20'000; ++i )
    {
        const TextView units = i % 2 ? TextView( u"abAB" ) : TextView( u"sSßẞſaİiK\u212A\xD801\xDC00\xDC28ŉʼn" );
        const Text text = RandomText( random, units, 10 ), search = RandomText( random, units, 4 );
        for ( const bool ignoreCase : { false, true } )
        {
            ASSERT_EQ(
                Found( text, search, ignoreCase ? Match::kCaseInsensitive : Match::kCaseSensitive, Result::kRange ),
                SlowlyFound( text, search, ignoreCase ) )
                << i << ": " << UTF8FromText( text ) << " / " << UTF8FromText( search );
        }
    }
}

TEST( SubstringsIn, ARegularExpressionIsSearchedAnewFromEachPosition )
{
    constexpr TextView kPatterns[] = { u"a", u"ab?", u"(a|b)*", u"^a", u"b$", u"\\b", u"(?<!a)b", u"a(?=b)", u"\\Gb" };
    XSeededRandom random( 3 );
    for ( int i = 0; i < 5'000; ++i )
    {
        const Text text = RandomText( random, u"ab \n", 10 );
        const TextView pattern = kPatterns[random.Next() % std::size( kPatterns )];
        Texts expected;
        for ( std::size_t at = 0; at < text.size(); )
        {
            const auto range = rangeOfRegex( text.substr( at ), pattern ); // no lookbehind across the position
            if ( not range )
                break;
            expected.push_back( kvr_format( "%zu,%zu", at + range->mLocation + 1, range->mLength ) );
            at += range->mLocation + std::max<std::size_t>( range->mLength, 1 );
        }
        ASSERT_EQ( Found( text, pattern, Match::kMatch, Result::kRange ), expected )
            << i << ": " << UTF8FromText( text ) << " / " << UTF8FromText( pattern );
    }
}

// A product of the two lengths would be a million million steps here, and never end.
TEST( SubstringsIn, SearchingRepetitiveTextsIsLinear )
{
    const Text text( 2'000'000, u'a' );
    Text search( 1'000'000, u'a' );
    search.back() = u'b';
    for ( const Match match : { Match::kCaseSensitive, Match::kCaseInsensitive } )
    {
        EXPECT_TRUE( Found( text, search, match, Result::kPosition ).empty() );
        search.front() = u'b';
        EXPECT_TRUE( Found( text, search, match, Result::kPosition ).empty() );
        search.front() = u'a';
        EXPECT_EQ( Found( text, text.substr( 0, 1000 ), match, Result::kPosition ).size(), 2000u );
    }
    EXPECT_EQ( Found( text.substr( 0, 200'000 ), u"a", Match::kMatch, Result::kString ).size(), 200'000u );
}

TEST( SubstringsIn, NullTextsAreAssertedAndEmpty )
{
    LogCapture log;
    SubstringsIn walk( XText(), XText(), Match::kCaseSensitive, Result::kString );
    EXPECT_EQ( log.CountContaining( "Assertion Failed" ), 2u );
    EXPECT_EQ( walk.nextObject(), std::nullopt );
}

#include "Utility/Text/TextCompare.h"

#include "Judge.h"

#include <gtest/gtest.h>
#include <memory>
#include <unicode/coll.h>
#include <unicode/unistr.h>

namespace
{
icu::UnicodeString ForICU( const Text& inText )
{
    return { inText.data(), int( inText.size() ) };
}
} // namespace

TEST( TextCompare, CaseIsFoldedFully )
{
    constexpr struct
    {
        const char16_t *mText, *mOther;
        int mOrder;
    } kCases[] = {
        { u"Hello", u"hELLO", 0 },
        { u"stra\u00DFe", u"STRASSE", 0 },
        { u"\u03A3\u03C3\u03C2", u"\u03C3\u03C3\u03C3", 0 },
        { u"K", u"\u212A", 0 },
        { u"a", u"B", -1 },
        { u"_", u"A", -1 },
        { u"abc", u"AB", 1 },
        { u"", u"a", -1 },
        { u"", u"", 0 },
        { u"\u00C9t\u00E9", u"\u00E9T\u00C9", 0 },
        { u"e", u"\u00E9", -1 },
    };
    for ( const auto& [text, other, order] : kCases )
    {
        EXPECT_EQ( caseInsensitiveCompare( text, other ), order ) << UTF8FromText( text );
        EXPECT_EQ( caseInsensitiveCompare( other, text ), -order ) << UTF8FromText( text );
        EXPECT_EQ( kvr_caseInsensitiveIsEqualToString( text, other ), order == 0 );
    }
    EXPECT_TRUE( kvr_caseInsensitiveContainsString( u"Die Stra\u00DFe", u"STRASS" ) );
    EXPECT_TRUE( kvr_caseInsensitiveHasPrefix( u"\u00C9t\u00E9", u"\u00E9T" ) );
    EXPECT_TRUE( kvr_caseInsensitiveHasSuffix( u"Finder.APP", u".app" ) );
    EXPECT_FALSE( kvr_caseInsensitiveHasSuffix( u"app", u".app" ) );
}

TEST( TextCompare, CaseInsensitiveOrderIsICUs )
{
    TextFuzzer fuzzer( 51, u"abAB\u00DFsS\u00E9\u00C9_1 " );
    for ( int round = 0; round < 50000; ++round )
    {
        const Text text = fuzzer.Next( 6 ), other = fuzzer.Next( 6 );
        ASSERT_EQ( caseInsensitiveCompare( text, other ), ForICU( text ).caseCompare( ForICU( other ), 0 ) )
            << "seed 51: " << UTF8FromText( text ) << " and " << UTF8FromText( other );
    }
}

// The table for ASCII must never disagree with the collation itself.
TEST( TextCompare, StandardOrderIsTheCollationsWhateverTheAlphabet )
{
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::Collator> collator( icu::Collator::createInstance( icu::Locale( "en" ), status ) );
    collator->setAttribute( UCOL_STRENGTH, UCOL_IDENTICAL, status );
    collator->setAttribute( UCOL_NUMERIC_COLLATION, UCOL_ON, status );
    ASSERT_TRUE( U_SUCCESS( status ) );

    Text printable;
    for ( char16_t unit = u' '; unit <= u'~'; ++unit )
        printable += unit;
    for ( const Text& alphabet : { printable, Text( u"0012" ), Text( u"aAbB01 -" ), Text( u"a0\u00E9\t." ) } )
    {
        std::mt19937 random( 52 );
        const auto next = [&] {
            Text text;
            for ( unsigned i = 0, n = random() % 8; i < n; ++i )
                text += alphabet[random() % alphabet.size()];
            return text;
        };
        for ( int round = 0; round < 50000; ++round )
        {
            const Text text = next(), other = random() % 8 ? next() : text;
            ASSERT_EQ( localizedStandardCompare( text, other ), collator->compare( ForICU( text ), ForICU( other ) ) )
                << "seed 52: '" << UTF8FromText( text ) << "' and '" << UTF8FromText( other ) << "'";
        }
    }
    const Text nines( 300, u'9' ), more( 301, u'1' );
    EXPECT_EQ( localizedStandardCompare( nines, more ), collator->compare( ForICU( nines ), ForICU( more ) ) );
}

TEST( TextCompare, NamesSortAsPeopleExpect )
{
    const Text sorted[] = { u"", u"1", u"2", u"10", u"10 b", u"a", u"A", u"\u00E1", u"ab", u"File 2", u"file 10" };
    for ( std::size_t i = 0; i < std::size( sorted ); ++i )
    {
        for ( std::size_t j = 0; j < std::size( sorted ); ++j )
            EXPECT_EQ( localizedStandardCompare( sorted[i], sorted[j] ), i < j ? -1 : i > j ? 1 : 0 ) << i << ' ' << j;
    }
    EXPECT_EQ( localizedCaseInsensitiveCompare( u"Zebra", u"zEBRA" ), 0 );
    EXPECT_EQ( localizedCaseInsensitiveCompare( u"\u00E9clair", u"Zebra" ), -1 );
    EXPECT_EQ( localizedCaseInsensitiveCompare( u"10", u"9" ), -1 );
}

TEST( TextCompare, VagueEqualityIgnoresCaseAccentsBlanksAndPunctuation )
{
    EXPECT_TRUE( vaguelyEqualToString( u"Caf\u00E9-Bar!", u"cafe bar" ) );
    EXPECT_FALSE( vaguelyEqualToString( u"cafe bar", u"cafe car" ) );
    EXPECT_FALSE( vaguelyEqualToString( u"!!!", u"???" ) );
    EXPECT_TRUE( vaguelyEqualToString( u"?", u"?" ) );
    EXPECT_FALSE( vaguelyEqualToString( u"", u"a" ) );
}

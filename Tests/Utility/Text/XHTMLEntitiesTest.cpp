#include "Utility/Text/XHTMLEntities.h"

#include "Judge.h"

#include <gtest/gtest.h>

namespace
{
const Text kLikely = u"&&&&;;;#xX0123456789abcdefamplquotgt<>\"' \r\n\u00E9\u20AC";
} // namespace

TEST( XHTMLEntities, TheTableIsPythonsTableOfHTML4AndApos )
{
    const std::string table = OutputOf( "python3 -c '\n"
                                        "from html.entities import name2codepoint as n\n"
                                        "for k, v in n.items(): print(k, v)'",
        "" );
    std::istringstream lines( table );
    std::string name;
    unsigned code = 0;
    std::size_t count = 0;
    for ( ; lines >> name >> code; ++count )
    {
        EXPECT_EQ( XHTMLEntities::GetCharacter( name ), char32_t( code ) ) << name;
        EXPECT_EQ( XHTMLEntities::GetName( code ), name );
    }
    EXPECT_EQ( count, 252u );
    EXPECT_EQ( XHTMLEntities::GetCharacter( "apos" ), U'\'' );
}

TEST( XHTMLEntities, DecodingFollowsTheRuleForReferences )
{
    constexpr struct
    {
        const char16_t *mText, *mResult;
    } kCases[] = {
        { u"&lt;p&gt; &amp;amp;", u"<p> &amp;" },
        { u"&#65;&#x42;&#X43;&#x1F600;", u"ABC\U0001F600" },
        { u"&eacute;&Eacute;&EACUTE;", u"\u00E9\u00C9&EACUTE;" },
        { u"&nosuch; & &; &#; &#x; &#xG; &#12a; &amp", u"&nosuch; & &; &#; &#x; &#xG; &#12a; &amp" },
        { u"&&amp;&a&lt;", u"&&&a<" },
        { u"&#0;&#xD800;&#x110000;&#99999999999999999999;", u"&#0;&#xD800;&#x110000;&#99999999999999999999;" },
        { u"&a#b; &#6#5;", u"&a#b; &#6#5;" },
    };
    for ( const auto& [text, result] : kCases )
        EXPECT_EQ( XHTMLEntities::GetDecoded( text ), result ) << UTF8FromText( text );
}

TEST( XHTMLEntities, DecodingUndoesEveryEncoding )
{
    TextFuzzer fuzzer( 41, kLikely );
    for ( int round = 0; round < 10000; ++round )
    {
        const Text text = fuzzer.Next( 30 );
        ASSERT_EQ( XHTMLEntities::GetDecoded( XHTMLEntities::GetEncoded( text ) ), text );
        ASSERT_EQ( XHTMLEntities::GetDecoded( encodeHTML( text ) ), text );
    }
    EXPECT_EQ( XHTMLEntities::GetNonASCIIEncoded( u"<b>\u00E9\u2318</b>" ), u"<b>&eacute;\u2318</b>" );
    EXPECT_EQ( XHTMLEntities::GetEncoded( u"<\u00E9\u2318'>" ), u"&lt;&eacute;\u2318&apos;&gt;" );
}

TEST( XHTMLEntities, EncodedTextsReadBackInAPageAndHoldNoMarkup )
{
    TextFuzzer fuzzer( 42, kLikely );
    std::string input, expected;
    for ( int round = 0; round < 5000; ++round )
    {
        Text text = fuzzer.Next( 30 );
        // A page has no C1 controls and no noncharacters: its reader replaces them.
        std::erase_if( text, []( char16_t c ) {
            return c < 0x20 or ( c >= 0x7F and c < 0xA0 ) or ( c >= 0xFDD0 and c < 0xFDF0 ) or ( c | 1 ) == 0xFFFF or
                ( c & 0xF800 ) == 0xD800;
        } );
        const Text encoded = encodeHTML( text );
        EXPECT_EQ( encoded.find_first_of( u"<>\"' =`/" ), Text::npos );
        input += UTF8FromText( encoded ) + "\n";
        expected += UTF8FromText( text ) + "\n";
    }
    EXPECT_EQ( OutputOf( "python3 -c '\n"
                         "import sys, html\n"
                         "sys.stdout.buffer.write(html.unescape(sys.stdin.buffer.read().decode()).encode())'",
                   input ),
        expected )
        << "seed 42";
}

TEST( XHTMLEntities, LineEndsBecomeBreaksOnlyWhenAsked )
{
    EXPECT_EQ( encodeHTML( u"a\r\nb\rc\n\nd", true ), u"a<br />b<br />c<br /><br />d" );
    EXPECT_EQ( encodeHTML( u"a\nb c" ), u"a&#10;b&#32;c" );
    EXPECT_EQ( encodeHTML( u"az-AZ+09.\U0001F600" ), u"az-AZ+09.&#128512;" );
    const char16_t lone[] = { 0xDC00, 0 };
    EXPECT_EQ( encodeHTML( TextView( lone, 2 ) ), u"&#65533;&#65533;" );
    EXPECT_EQ( HTMLString( u"a < b\r\nc" ), u"a &lt; b<br />c" );
}

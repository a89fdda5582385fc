#include "Utility/Text/Quoting.h"

#include "Judge.h"
#include "Utility/Text/URLFields.h"

#include <gtest/gtest.h>

namespace
{
const Text kAwkward = u"'\"\\$`!*?[]{}()<>|&;~#%+=/ \t\n\r\v\f\b\x1B\x7F\u00E9\u2028ab01-";

// One line for each case: our literal and the text itself, as percent-encoded UTF-8.
template<class Quote>
std::string Lines( unsigned inSeed, bool inNUL, const Quote& inQuote )
{
    TextFuzzer fuzzer( inSeed, kAwkward );
    std::string lines;
    for ( int round = 0; round < 5000; ++round )
    {
        const Text text = fuzzer.Next( 20, inNUL );
        lines += UTF8FromText( kvr_stringByAddingPercentEncoding( inQuote( text ) ) + u' ' +
                     kvr_stringByAddingPercentEncoding( text ) ) +
            "\n";
    }
    return lines;
}

// Python reads the literals; it prints the lines that it reads differently, and the count of all.
std::string ByPython( const std::string& inRead, const std::string& inLines )
{
    return OutputOf( "python3 -c '\n"
                     "import sys, re, ast\n"
                     "from urllib.parse import unquote\n"
                     "n = 0\n"
                     "for line in sys.stdin:\n"
                     "    literal, text = map(unquote, line.rstrip(\"\\n\").split(\" \"))\n"
                     "    n += 1\n"
                     "    value = (" +
            inRead +
            ")(literal)\n"
            "    value = value.encode(\"utf-16\", \"surrogatepass\").decode(\"utf-16\")\n"
            "    if value != text: print(line)\n"
            "print(n)'",
        inLines );
}
} // namespace

TEST( Quoting, AShellReadsItsArgumentsBackUnchanged )
{
    TextFuzzer fuzzer( 21, kAwkward );
    std::string script = "printf '%s\\0'", expected;
    for ( int round = 0; round < 3000; ++round )
    {
        const Text text = fuzzer.Next( 20 );
        script += " " + UTF8FromText( shellQuotedArgument( text ).value() );
        expected += UTF8FromText( text ) + '\0';
    }
    EXPECT_EQ( OutputOf( "/bin/sh", script + "\n" ), expected ) << "seed 21";
    EXPECT_EQ( shellQuotedArgument( u"it's" ), u"'it'\"'\"'s'" );
    EXPECT_EQ( shellQuotedArgument( u"" ), u"''" );
}

TEST( Quoting, NULIsRefusedByTheShellNotCut )
{
    EXPECT_FALSE( shellQuotedArgument( TextView( u"safe\0; rm", 9 ) ) );
}

TEST( Quoting, JavaScriptLiteralsReadBackAndAreASCII )
{
    // Python reads the escapes \b \t \n \v \f \r \uXXXX \" \\ as JavaScript does.
    const std::string lines = Lines( 22, true, []( const Text& inText ) {
        const Text quoted = kvr_javaScriptQuotedArgument( inText );
        for ( const char16_t unit : quoted )
            EXPECT_TRUE( unit >= 0x20 and unit < 0x7F );
        EXPECT_LE( quoted.size(), inText.size() * 6 + 2 );
        return quoted;
    } );
    EXPECT_EQ( ByPython( "ast.literal_eval", lines ), "5000\n" ) << "seed 22";
    EXPECT_EQ( kvr_javaScriptQuotedArgument( u"a\"\\\n\u00E9\x01" ), u"\"a\\\"\\\\\\n\\u00E9\\u0001\"" );
}

TEST( Quoting, SwiftAndAppleScriptLiteralsReadBack )
{
    EXPECT_EQ( ByPython( "lambda s: re.sub(r\"\\\\u\\{([0-9A-F]+)\\}\", lambda m: chr(int(m[1], 16)), s[1:-1])",
                   Lines( 23, true, swiftQuotedString ) ),
        "5000\n" )
        << "seed 23";
    EXPECT_EQ( ByPython( "lambda s: re.sub(r\"\\\\(.)\", r\"\\1\", s[1:-1])",
                   Lines( 24, true, kvr_appleScriptQuotedArgument ) ),
        "5000\n" )
        << "seed 24";
    EXPECT_EQ( swiftQuotedString( u"\"\\'\n\u00E9" ), u"\"\\u{22}\\u{5C}\\u{27}\\u{0A}\u00E9\"" );
    EXPECT_EQ( kvr_appleScriptQuotedArgument( u"a\"b\\c" ), u"\"a\\\"b\\\\c\"" );
}

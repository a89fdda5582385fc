#include "Utility/Text/Format.h"

#include <climits>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace
{
// The C library is the judge, called with formats made here; hence the one place where they aren't literals.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
template<class Value>
std::string ByC( const std::string& inFormat, Value inValue )
{
    std::string result( 8192, '\0' );
    result.resize( std::size_t( std::snprintf( result.data(), result.size(), inFormat.c_str(), inValue ) ) );
    return result;
}
#pragma GCC diagnostic pop

template<class... Arguments>
std::string Formatted( std::string_view inFormat, const Arguments&... inArguments )
{
    return UTF8FromText( kvr_format( TextView( TextFromUTF8( inFormat ) ), inArguments... ) );
}

class FormatFuzzer
{
public:
    explicit FormatFuzzer( unsigned inSeed ) : mRandom( inSeed ) {}

    std::string Prefix( std::string_view inFlags )
    {
        std::string prefix = "%";
        for ( const char flag : inFlags )
        {
            if ( mRandom() % 3 == 0 )
                prefix += flag;
        }
        if ( mRandom() % 2 )
            prefix += std::to_string( 1 + mRandom() % 30 );
        if ( mRandom() % 2 )
            prefix += "." + ( mRandom() % 5 ? std::to_string( mRandom() % 25 ) : std::string() );
        return prefix;
    }

    std::int64_t Integer()
    {
        const std::int64_t edges[] = { 0, 1, -1, 127, 128, 255, 256, -128, 32767, 65535, INT_MAX, INT_MIN, UINT_MAX,
            LLONG_MAX, LLONG_MIN };
        if ( mRandom() % 2 )
            return edges[mRandom() % std::size( edges )];
        return std::int64_t( mRandom() ) >> ( mRandom() % 64 );
    }

    double Real()
    {
        const double edges[] = { 0.0, -0.0, 0.5, 1.5, 2.5, 9.5, 0.05, 999999.5, 9999995, 1e5, 1e6, 1e-4, 1e-5, 0.1,
            1e22, 1e23, HUGE_VAL, -HUGE_VAL, std::nan( "" ), 5e-324, 1.7976931348623157e308, 123456789.125 };
        switch ( mRandom() % 3 )
        {
        case 0:
            return edges[mRandom() % std::size( edges )];
        case 1:
            return std::bit_cast<double>( mRandom() );
        default:
            return double( std::int64_t( mRandom() ) >> 40 ) / double( 1 + mRandom() % 1000 );
        }
    }

    std::mt19937_64 mRandom;
};
} // namespace

TEST( Format, IntegersAreFormattedAsTheCLibraryFormatsThem )
{
    FormatFuzzer fuzzer( 7 );
    for ( int round = 0; round < 100000; ++round )
    {
        const std::int64_t value = fuzzer.Integer();
        const char kind = "diuxXo"[fuzzer.mRandom() % 6];
        const bool isSigned = kind == 'd' or kind == 'i';
        std::string format = fuzzer.Prefix( isSigned ? "-+ 0" : kind == 'u' ? "-0" : "-0#" );
        const auto check = [&]( const char* inLength, auto inValue ) {
            const std::string whole = format + inLength + kind;
            ASSERT_EQ( Formatted( whole, inValue ), ByC( whole, inValue ) ) << "seed 7, " << whole << " of " << inValue;
        };
        const auto both = [&]( const char* inLength, auto inSigned, auto inUnsigned ) {
            isSigned ? check( inLength, inSigned ) : check( inLength, inUnsigned );
        };
        switch ( fuzzer.mRandom() % 7 )
        {
        case 0:
            both( "", int( value ), unsigned( value ) );
            break;
        case 1:
            both( "l", long( value ), static_cast<unsigned long>( value ) );
            break;
        case 2:
            both( "ll", static_cast<long long>( value ), static_cast<unsigned long long>( value ) );
            break;
        case 3:
            both( "q", static_cast<long long>( value ), static_cast<unsigned long long>( value ) );
            break;
        case 4:
            both( "z", ssize_t( value ), std::size_t( value ) );
            break;
        case 5:
            both( "h", short( value ), static_cast<unsigned short>( value ) );
            break;
        case 6:
            both( "hh", static_cast<signed char>( value ), static_cast<unsigned char>( value ) );
            break;
        }
        // An int that is shown as bits has the width of an int.
        if ( kind == 'x' or kind == 'X' or kind == 'o' )
            check( "", int( value ) );
    }
}

TEST( Format, FloatsAreFormattedAsTheCLibraryFormatsThem )
{
    FormatFuzzer fuzzer( 8 );
    for ( int round = 0; round < 100000; ++round )
    {
        const std::string format = fuzzer.Prefix( "-+ 0#" ) + "fegFEG"[fuzzer.mRandom() % 6];
        const double value = fuzzer.Real();
        // This judge drops the zeros of %#g when rounding carries into a new digit: "1.e+06" for 999999.5.
        const std::string expected = ByC( format, value );
        if ( expected.find( "1.e" ) != std::string::npos or expected.find( "1.E" ) != std::string::npos )
            continue;
        ASSERT_EQ( Formatted( format, value ), expected ) << "seed 8, " << format << " of " << value;
    }
}

TEST( Format, CharactersAndCStringsAreFormattedAsTheCLibraryFormatsThem )
{
    FormatFuzzer fuzzer( 9 );
    for ( int round = 0; round < 5000; ++round )
    {
        std::string format = fuzzer.Prefix( "-" );
        const std::string text( fuzzer.mRandom() % 40, char( 'a' + fuzzer.mRandom() % 26 ) );
        ASSERT_EQ( Formatted( format + "s", text.c_str() ), ByC( format + "s", text.c_str() ) ) << format;
        format = format.substr( 0, format.find( '.' ) ) + "c";
        const char character = char( '!' + fuzzer.mRandom() % 90 );
        ASSERT_EQ( Formatted( format, character ), ByC( format, character ) ) << format;
    }
}

TEST( Format, TextsPositionsAndPercentSigns )
{
    const Text hello = u"h\u00E9llo";
    EXPECT_EQ( Formatted( "%@", hello ), "h\u00E9llo" );
    EXPECT_EQ( Formatted( "[%7@|%-7@|%.2@]", hello, hello, hello ), "[  h\u00E9llo|h\u00E9llo  |h\u00E9llo]" );
    EXPECT_EQ( Formatted( "%2$@ before %1$@", u"one", "two" ), "two before one" );
    EXPECT_EQ( Formatted( "%2$*1$d|%1$d", 5, 42 ), "   42|5" );
    EXPECT_EQ( Formatted( "%*d|%-*d|%.*f", 4, 7, 4, 7, 2, 1.0 / 3 ), "   7|7   |0.33" );
    EXPECT_EQ( Formatted( "%*d|%.*d", -4, 7, -1, 7 ), "7   |7" );
    EXPECT_EQ( Formatted( "100%%, %d%%", 5 ), "100%, 5%" );
    EXPECT_EQ( Formatted( "%C%C%C", u'x', 0x2318, 0x1F600 ), "x\u2318\U0001F600" );
    EXPECT_EQ( Formatted( "%@", XText() ), "(null)" );
    EXPECT_EQ( Formatted( "%#g|%#.3g", 999999.5, 1e-5 ), "1.00000e+06|1.00e-05" );
    EXPECT_EQ( Formatted( "%.3s", u"ab\U0001F600" ), "ab" );
}

TEST( Format, AWrongFormatIsSafe )
{
    EXPECT_EQ( Formatted( "%@ and %@", u"one" ), "one and " );
    EXPECT_EQ( Formatted( "%9$@ %*d", 1 ), " " );
    EXPECT_EQ( Formatted( "%d %s", u"text", 12 ), "text 12" );
    EXPECT_EQ( Formatted( "%d %x %@", 2.5, 0.1, 1e20 ), "2.5 0.1 1e+20" );
    EXPECT_EQ( Formatted( "%.2f", 3 ), "3.00" );
    EXPECT_EQ( Formatted( "%d", std::int64_t( 1 ) << 40 ), "1099511627776" );
    EXPECT_EQ( Formatted( "%u", -1 ), "-1" );
    EXPECT_EQ( Formatted( "%C", -5 ), "-5" );
    EXPECT_EQ( Formatted( "50%, %n and %y", 1 ), "50%, %n and %y" );
    EXPECT_EQ( Formatted( "%", 1 ), "%" );
    EXPECT_EQ( Formatted( "%-0", 1 ), "%-0" );
    EXPECT_EQ( Formatted( "%99999999999d", 1 ).size(), 4096u );
    EXPECT_EQ( Formatted( "%.*d", std::int64_t( 1 ) << 62, 1 ).size(), 4096u );
}

TEST( Format, AnArgumentIsNeverReadAsAFormat )
{
    EXPECT_EQ( Formatted( "%@%s", u"%d%@%n", "%s%1$@" ), "%d%@%n%s%1$@" );
}

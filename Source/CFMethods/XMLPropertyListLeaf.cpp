#include "CFMethods/XMLPropertyListLeaf.h"

#include "CFMethods/PropertyListMaker.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <fmt/format.h>
#include <limits>
#include <memory>

namespace
{
constexpr std::int64_t kSecondsInDay = 86400;
constexpr std::int64_t kDaysBefore2001 = 730791; // from 0000-03-01, where a year that ends with a leap day begins

std::string_view Trim( std::string_view inText )
{
    while ( not inText.empty() and XMLPlistLeaf::IsSpace( inText.front() ) )
        inText.remove_prefix( 1 );
    while ( not inText.empty() and XMLPlistLeaf::IsSpace( inText.back() ) )
        inText.remove_suffix( 1 );
    return inText;
}

bool EqualsInAnyCase( std::string_view inText, std::string_view inLower )
{
    const auto same = []( char a, char b ) { return ( a >= 'A' and a <= 'Z' ? char( a | 0x20 ) : a ) == b; };
    return inText.size() == inLower.size() and std::equal( inText.begin(), inText.end(), inLower.begin(), same );
}

bool TakeSign( std::string_view& ioText )
{
    const bool isNegative = ioText.starts_with( '-' );
    if ( isNegative or ioText.starts_with( '+' ) )
        ioText.remove_prefix( 1 );
    return isNegative;
}

// The text is a position's worth: the fault points at its first character that isn't blank.
[[noreturn]] void RefuseWhole( std::string inMessage, std::string_view inText )
{
    const std::size_t first = inText.find_first_not_of( " \t\r\n" );
    throw XMLPlistRefusal{ std::move( inMessage ), first == inText.npos ? 0 : first };
}

std::int64_t FloorDivide( std::int64_t inValue, std::int64_t inBy )
{
    return inValue / inBy - ( inValue % inBy < 0 ? 1 : 0 );
}

// Days since 2001-01-01 in the Gregorian calendar, which is extended to all years.
std::int64_t DaysOf( std::int64_t inYear, unsigned inMonth, unsigned inDay )
{
    const std::int64_t year = inMonth <= 2 ? inYear - 1 : inYear;
    const std::int64_t era = FloorDivide( year, 400 ), ofEra = year - era * 400;
    const unsigned ofYear = ( 153 * ( inMonth > 2 ? inMonth - 3 : inMonth + 9 ) + 2 ) / 5 + inDay - 1;
    return era * 146097 + ofEra * 365 + ofEra / 4 - ofEra / 100 + ofYear - kDaysBefore2001;
}

unsigned DaysInMonth( std::int64_t inYear, unsigned inMonth )
{
    constexpr unsigned kDays[] = { 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31 };
    const bool isLeap = inYear % 4 == 0 and ( inYear % 100 != 0 or inYear % 400 == 0 );
    return kDays[inMonth - 1] + ( inMonth == 2 and isLeap ? 1 : 0 );
}

// Digits of a fraction become those of one minus the fraction; no trailing zeros may be there.
void Complement( char* ioDigits, std::size_t inCount )
{
    for ( std::size_t i = 0; i < inCount; ++i )
        ioDigits[i] = char( '0' + ( i + 1 < inCount ? 9 : 10 ) - ( ioDigits[i] - '0' ) );
}

// The parts of a date's text, each null until it was there.
class DateScanner
{
public:
    explicit DateScanner( std::string_view inText ) : mText( inText ) {}

    bool Take( char inByte )
    {
        if ( not mText.starts_with( inByte ) )
            return false;
        mText.remove_prefix( 1 );
        return true;
    }
    std::string_view TakeDigits()
    {
        const std::size_t count = std::min( mText.find_first_not_of( "0123456789" ), mText.size() );
        const std::string_view digits = mText.substr( 0, count );
        mText.remove_prefix( count );
        return digits;
    }
    bool TakeNumber( std::int64_t& outValue, std::size_t inLeastDigits, std::size_t inMostDigits )
    {
        const std::string_view digits = TakeDigits();
        if ( digits.size() < inLeastDigits or digits.size() > inMostDigits )
            return false;
        std::from_chars( digits.data(), digits.data() + digits.size(), outValue );
        return true;
    }
    [[nodiscard]] bool IsAtEnd() const { return mText.empty(); }

private:
    std::string_view mText;
};

// Whole seconds since 2001 and the digits of the fraction; false when the text is no date.
bool ScanDate( std::string_view inText, std::int64_t& outWhole, std::string_view& outFraction )
{
    constexpr std::size_t kMostYearDigits = 11; // what the seconds of 64 bits hold
    DateScanner scanner( inText );
    const bool isNegative = scanner.Take( '-' );
    if ( not isNegative )
        scanner.Take( '+' );
    std::int64_t year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    // Others write early years without leading zeros.
    if ( not( scanner.TakeNumber( year, 1, kMostYearDigits ) and scanner.Take( '-' ) and
             scanner.TakeNumber( month, 2, 2 ) and scanner.Take( '-' ) and scanner.TakeNumber( day, 2, 2 ) and
             scanner.Take( 'T' ) and scanner.TakeNumber( hour, 2, 2 ) and scanner.Take( ':' ) and
             scanner.TakeNumber( minute, 2, 2 ) and scanner.Take( ':' ) and scanner.TakeNumber( second, 2, 2 ) ) )
        return false;
    if ( scanner.Take( '.' ) )
    {
        outFraction = scanner.TakeDigits();
        if ( outFraction.empty() )
            return false;
        outFraction = outFraction.substr( 0, outFraction.find_last_not_of( '0' ) + 1 );
    }
    if ( isNegative )
        year = -year;
    // Second 60 is a leap second, and counts as the first of the next minute.
    if ( not scanner.Take( 'Z' ) or not scanner.IsAtEnd() or month < 1 or month > 12 or day < 1 or
        day > DaysInMonth( year, unsigned( month ) ) or hour > 23 or minute > 59 or second > 60 )
        return false;
    outWhole = DaysOf( year, unsigned( month ), unsigned( day ) ) * kSecondsInDay + hour * 3600 + minute * 60 + second;
    return true;
}

// Decoding values of base64's characters, and what else may stand there.
constexpr std::uint8_t kSkip = 64, kPad = 65, kBad = 255;
constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::array<std::uint8_t, 256> kDecoded = [] {
    std::array<std::uint8_t, 256> table{};
    table.fill( kBad );
    for ( std::uint8_t i = 0; i < 64; ++i )
        table[static_cast<unsigned char>( kAlphabet[i] )] = i;
    for ( const unsigned char blank : { ' ', '\t', '\r', '\n' } )
        table[blank] = kSkip;
    table['='] = kPad;
    return table;
}();

// Sextets become bytes. What is left over at the end, fewer than eight bits, is padding.
std::size_t DecodeBase64( std::string_view inText, std::uint8_t* outBytes )
{
    std::uint8_t* out = outBytes;
    std::uint32_t bits = 0;
    unsigned sextets = 0;
    bool isPadded = false;
    for ( std::size_t i = 0; i < inText.size(); ++i )
    {
        const auto at = [&]( std::size_t inAhead ) {
            return kDecoded[static_cast<unsigned char>( inText[i + inAhead] )];
        };
        if ( sextets == 0 and not isPadded and i + 4 <= inText.size() )
        {
            const std::uint8_t a = at( 0 ), b = at( 1 ), c = at( 2 ), d = at( 3 );
            if ( ( a | b | c | d ) < 64 )
            {
                *out++ = std::uint8_t( a << 2 | b >> 4 );
                *out++ = std::uint8_t( b << 4 | c >> 2 );
                *out++ = std::uint8_t( c << 6 | d );
                i += 3;
                continue;
            }
        }
        const std::uint8_t value = at( 0 );
        if ( value == kSkip )
            continue;
        if ( value == kBad or ( isPadded and value != kPad ) )
            throw XMLPlistRefusal{ value == kBad
                    ? fmt::format( "{} isn't base64", XMLPlistLeaf::Quoted( inText.substr( i, 1 ) ) )
                    : "base64 goes on behind its padding",
                i };
        isPadded |= value == kPad;
        if ( value == kPad )
            continue;
        bits = bits << 6 | value;
        if ( ++sextets == 4 )
        {
            *out++ = std::uint8_t( bits >> 16 );
            *out++ = std::uint8_t( bits >> 8 );
            *out++ = std::uint8_t( bits );
            sextets = 0;
        }
    }
    if ( sextets == 1 )
        RefuseWhole( "base64 ends within a byte", inText );
    if ( sextets >= 2 )
        *out++ = std::uint8_t( sextets == 2 ? bits >> 4 : bits >> 10 );
    if ( sextets == 3 )
        *out++ = std::uint8_t( bits >> 2 );
    return std::size_t( out - outBytes );
}
} // namespace

std::string XMLPlistLeaf::Quoted( std::string_view inUTF8 )
{
    constexpr std::size_t kMost = 40;
    const auto isContinuation = []( char inByte ) { return ( static_cast<unsigned char>( inByte ) & 0xC0 ) == 0x80; };
    std::string result = "\"";
    std::size_t i = 0;
    for ( ; i < inUTF8.size() and ( i < kMost or isContinuation( inUTF8[i] ) ); ++i )
    {
        const auto byte = static_cast<unsigned char>( inUTF8[i] );
        if ( byte < 0x20 or byte == 0x7F )
            result += fmt::format( "\\x{:02X}", byte );
        else
            result += inUTF8[i];
    }
    // A single byte out of a longer character isn't text.
    if ( inUTF8.size() == 1 and static_cast<unsigned char>( inUTF8[0] ) >= 0x80 )
        result = fmt::format( "\"\\x{:02X}", static_cast<unsigned char>( inUTF8[0] ) );
    return result + ( i < inUTF8.size() ? "...\"" : "\"" );
}

const XPlistNode* XMLPlistLeaf::MakeInteger( std::string_view inText )
{
    std::string_view digits = Trim( inText );
    const bool isNegative = TakeSign( digits );
    const bool isHex = digits.starts_with( "0x" ) or digits.starts_with( "0X" );
    if ( isHex )
        digits.remove_prefix( 2 );
    std::uint64_t magnitude = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars( digits.data(), end, magnitude, isHex ? 16 : 10 );
    if ( error == std::errc::invalid_argument or stop != end )
        RefuseWhole( fmt::format( "{} isn't an integer", Quoted( Trim( inText ) ) ), inText );
    constexpr std::uint64_t kMostNegative = std::uint64_t( 1 ) << 63;
    if ( error != std::errc() or ( isNegative and magnitude > kMostNegative ) )
        RefuseWhole( fmt::format( "the integer {} is beyond the range of 64 bits", Quoted( Trim( inText ) ) ), inText );
    if ( isNegative )
        return XPlistNumber::Make( std::int64_t( 0 - magnitude ) ).Release();
    if ( magnitude >= kMostNegative )
        return XPlistMaker::NewUnsigned( magnitude );
    return XPlistNumber::Make( std::int64_t( magnitude ) ).Release();
}

const XPlistNode* XMLPlistLeaf::MakeReal( std::string_view inText )
{
    std::string_view digits = Trim( inText );
    const bool isNegative = TakeSign( digits );
    double value = 0;
    if ( EqualsInAnyCase( digits, "nan" ) )
        value = std::numeric_limits<double>::quiet_NaN();
    else if ( EqualsInAnyCase( digits, "inf" ) or EqualsInAnyCase( digits, "infinity" ) )
        value = std::numeric_limits<double>::infinity();
    else
    {
        // The conversion itself would take a second sign, and other spellings of NaN.
        const bool beginsAsNumber =
            not digits.empty() and ( digits[0] == '.' or ( digits[0] >= '0' and digits[0] <= '9' ) );
        const char* const end = digits.data() + digits.size();
        const auto [stop, error] = std::from_chars( digits.data(), end, value );
        if ( not beginsAsNumber or error == std::errc::invalid_argument or stop != end )
            RefuseWhole( fmt::format( "{} isn't a real number", Quoted( Trim( inText ) ) ), inText );
        if ( error != std::errc() )
            RefuseWhole(
                fmt::format( "the real number {} is beyond the range of a 64-bit float", Quoted( Trim( inText ) ) ),
                inText );
    }
    return XPlistMaker::NewReal( isNegative ? -value : value );
}

// The fraction joins the whole seconds as decimal digits, so that one conversion rounds once
// and every date that FormatDate writes comes back to the bit.
const XPlistNode* XMLPlistLeaf::MakeDate( std::string_view inText )
{
    std::int64_t whole = 0;
    std::string_view fraction;
    if ( not ScanDate( Trim( inText ), whole, fraction ) )
        RefuseWhole( fmt::format( "{} isn't a date such as 2024-01-31T09:30:00Z", Quoted( Trim( inText ) ) ), inText );
    if ( fraction.empty() )
        return XPlistMaker::NewDate( double( whole ) );

    std::string decimal = whole < 0 ? fmt::format( "-{}.", -( whole + 1 ) ) : fmt::format( "{}.", whole );
    const std::size_t before = decimal.size();
    decimal += fraction;
    if ( whole < 0 )
        Complement( decimal.data() + before, fraction.size() );
    double seconds = 0;
    // A fraction below the least float leaves the target as it is, which is 0.
    std::from_chars( decimal.data(), decimal.data() + decimal.size(), seconds );
    return XPlistMaker::NewDate( seconds );
}

const XPlistNode* XMLPlistLeaf::MakeData( std::string_view inText )
{
    const auto bytes = std::make_unique_for_overwrite<std::uint8_t[]>( inText.size() / 4 * 3 + 3 );
    const std::size_t size = DecodeBase64( inText, bytes.get() );
    XPlistData* const data = XPlistMaker::NewData( size );
    std::memcpy( XPlistMaker::DataBuffer( data ), bytes.get(), size );
    return data;
}

char* XMLPlistLeaf::FormatReal( char* outText, double inValue )
{
    const auto put = [&outText](
                         std::string_view inText ) { return std::copy( inText.begin(), inText.end(), outText ); };
    if ( std::isnan( inValue ) )
        return put( "nan" );
    if ( std::isinf( inValue ) )
        return put( inValue > 0 ? "+infinity" : "-infinity" );
    // Left to itself the conversion takes the exponent whenever that is a character shorter (7e+08).
    const double magnitude = std::abs( inValue );
    const bool isPlain = magnitude == 0 or ( magnitude >= 1e-4 and magnitude < 1e16 );
    char* const end = std::to_chars( outText, outText + kMostNumberLength - 2, inValue,
        isPlain ? std::chars_format::fixed : std::chars_format::scientific )
                          .ptr;
    if ( not isPlain or std::find( outText, end, '.' ) != end )
        return end;
    outText = end;
    return put( ".0" );
}

char* XMLPlistLeaf::FormatDate( char* outText, double inSeconds )
{
    char decimal[kMostDateLength];
    char* const end = std::to_chars( decimal, decimal + sizeof( decimal ), inSeconds, std::chars_format::fixed ).ptr;
    char* const point = std::find( decimal, end, '.' );
    char* const fraction = point == end ? end : point + 1;
    std::int64_t whole = 0;
    std::from_chars( decimal, point, whole );
    if ( decimal[0] == '-' and fraction != end )
    {
        --whole; // the seconds count forward from the whole one before
        Complement( fraction, std::size_t( end - fraction ) );
    }

    const std::int64_t days = FloorDivide( whole, kSecondsInDay ), ofDay = whole - days * kSecondsInDay;
    const std::int64_t shifted = days + kDaysBefore2001, era = FloorDivide( shifted, 146097 );
    const std::int64_t dayOfEra = shifted - era * 146097;
    const std::int64_t yearOfEra = ( dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096 ) / 365;
    const std::int64_t dayOfYear = dayOfEra - ( 365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100 );
    const std::int64_t monthFromMarch = ( 5 * dayOfYear + 2 ) / 153;
    const std::int64_t day = dayOfYear - ( 153 * monthFromMarch + 2 ) / 5 + 1;
    const std::int64_t month = monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9;
    const std::int64_t year = era * 400 + yearOfEra + ( month <= 2 ? 1 : 0 );

    outText = fmt::format_to( outText, "{}{:04}-{:02}-{:02}T{:02}:{:02}:{:02}", year < 0 ? "-" : "", std::abs( year ),
        month, day, ofDay / 3600, ofDay / 60 % 60, ofDay % 60 );
    if ( fraction != end )
    {
        *outText++ = '.';
        outText = std::copy( fraction, end, outText );
    }
    *outText++ = 'Z';
    return outText;
}

void XMLPlistLeaf::EncodeTriple( char* outText, const std::uint8_t* inBytes, std::size_t inCount )
{
    const unsigned bits =
        unsigned( inBytes[0] ) << 16 | ( inCount > 1 ? inBytes[1] << 8 : 0 ) | ( inCount > 2 ? inBytes[2] : 0 );
    outText[0] = kAlphabet[bits >> 18];
    outText[1] = kAlphabet[bits >> 12 & 63];
    outText[2] = inCount > 1 ? kAlphabet[bits >> 6 & 63] : '=';
    outText[3] = inCount > 2 ? kAlphabet[bits & 63] : '=';
}

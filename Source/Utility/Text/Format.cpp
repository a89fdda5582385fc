#include "Utility/Text/Format.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

// C's printf is the model, but never its engine: its decimal point follows the C locale, which
// a toolkit may set behind our back, and it trusts the format about the types of arguments.
namespace
{
// Widths and precisions can come out of arguments; beyond this they are cut.
constexpr int kMaxFieldSize = 4096;

// The size that a length modifier claims; it only matters where a negative number is shown as bits and where C
// cuts a number to a narrow type.
enum class Length { kInt, kChar, kShort, kLong };

struct Conversion
{
    bool mLeft = false, mPlus = false, mBlank = false, mZero = false, mAlternate = false;
    int mWidth = 0;
    std::optional<int> mPrecision;
    Length mLength = Length::kInt;
    char16_t mKind = 0;
    std::optional<std::size_t> mPosition; // from 0
};

bool IsOneOf( char16_t inUnit, TextView inUnits )
{
    return inUnits.find( inUnit ) != TextView::npos;
}

class Formatter
{
public:
    Formatter( TextView inFormat, std::span<const XFormatArgument> inArguments )
        : mFormat( inFormat ),
          mArguments( inArguments )
    {}

    Text Run()
    {
        std::size_t texts = 16;
        for ( const XFormatArgument& argument : mArguments )
        {
            if ( const auto* view = std::get_if<TextView>( &argument ) )
                texts += view->size();
        }
        mResult.reserve( mFormat.size() + texts );
        while ( mAt < mFormat.size() )
        {
            const std::size_t percent = std::min( mFormat.find( u'%', mAt ), mFormat.size() );
            mResult += mFormat.substr( mAt, percent - mAt );
            mAt = percent;
            if ( mAt < mFormat.size() )
                OneConversion();
        }
        return std::move( mResult );
    }

private:
    // One after another, as C reads it: position, flags, width, precision, length, kind.
    void OneConversion()
    {
        const std::size_t start = mAt++;
        Conversion conversion;
        if ( mAt < mFormat.size() and mFormat[mAt] == u'@' ) // as nearly all are
        {
            ++mAt;
            conversion.mKind = u'@';
            if ( const auto* argument = Argument( {} ) )
                AppendArgument( conversion, *argument );
            return;
        }
        conversion.mPosition = ReadPosition();
        ReadFlags( conversion );
        ReadWidthAndPrecision( conversion );
        conversion.mLength = ReadLength();
        conversion.mKind = mAt < mFormat.size() ? mFormat[mAt++] : u'\0';
        if ( conversion.mKind == u'%' )
            mResult += u'%';
        else if ( IsOneOf( conversion.mKind, u"@sdiuxXocCfFeEgG" ) )
        {
            if ( const auto* argument = Argument( conversion.mPosition ) )
                AppendArgument( conversion, *argument );
        }
        else // no conversion of ours: it shows itself, so that the mistake is seen
            mResult += mFormat.substr( start, mAt - start );
    }

    std::optional<int> ReadNumber()
    {
        if ( not IsDigit() )
            return {};
        int number = 0;
        for ( ; IsDigit(); ++mAt )
            number = std::min( number * 10 + ( mFormat[mAt] - u'0' ), kMaxFieldSize );
        return number;
    }

    std::optional<std::size_t> ReadPosition()
    {
        const std::size_t start = mAt;
        const auto number = ReadNumber();
        if ( number and *number > 0 and mAt < mFormat.size() and mFormat[mAt] == u'$' )
        {
            ++mAt;
            return std::size_t( *number ) - 1;
        }
        mAt = start; // it was a width, or the flag 0
        return {};
    }

    void ReadFlags( Conversion& ioConversion )
    {
        for ( ; mAt < mFormat.size(); ++mAt )
        {
            switch ( mFormat[mAt] )
            {
            case u'-':
                ioConversion.mLeft = true;
                break;
            case u'+':
                ioConversion.mPlus = true;
                break;
            case u' ':
                ioConversion.mBlank = true;
                break;
            case u'0':
                ioConversion.mZero = true;
                break;
            case u'#':
                ioConversion.mAlternate = true;
                break;
            default:
                return;
            }
        }
    }

    void ReadWidthAndPrecision( Conversion& ioConversion )
    {
        const int width = ReadFieldSize().value_or( 0 );
        ioConversion.mLeft = ioConversion.mLeft or width < 0;
        ioConversion.mWidth = std::abs( width );
        if ( mAt >= mFormat.size() or mFormat[mAt] != u'.' )
            return;
        ++mAt;
        const bool star = mAt < mFormat.size() and mFormat[mAt] == u'*';
        const int precision = ReadFieldSize().value_or( star ? -1 : 0 );
        if ( precision >= 0 ) // a negative one counts as none
            ioConversion.mPrecision = precision;
    }

    // A number, or "*" or "*2$" for an argument's value.
    std::optional<int> ReadFieldSize()
    {
        if ( mAt >= mFormat.size() or mFormat[mAt] != u'*' )
            return ReadNumber();
        ++mAt;
        const XFormatArgument* argument = Argument( ReadPosition() );
        if ( not argument )
            return {};
        if ( const auto* number = std::get_if<std::int64_t>( argument ) )
            return int( std::clamp<std::int64_t>( *number, -kMaxFieldSize, kMaxFieldSize ) );
        if ( const auto* number = std::get_if<std::uint64_t>( argument ) )
            return int( std::min<std::uint64_t>( *number, kMaxFieldSize ) );
        return {};
    }

    Length ReadLength()
    {
        Length length = Length::kInt;
        for ( ; mAt < mFormat.size(); ++mAt )
        {
            switch ( mFormat[mAt] )
            {
            case u'h':
                length = length == Length::kShort ? Length::kChar : Length::kShort;
                break;
            case u'l':
            case u'q':
            case u'z':
            case u'j':
            case u't':
            case u'L':
                length = Length::kLong;
                break;
            default:
                return length;
            }
        }
        return length;
    }

    const XFormatArgument* Argument( std::optional<std::size_t> inPosition )
    {
        const std::size_t index = inPosition ? *inPosition : mNextArgument++;
        return index < mArguments.size() ? &mArguments[index] : nullptr;
    }

    bool IsDigit() const { return mAt < mFormat.size() and mFormat[mAt] >= u'0' and mFormat[mAt] <= u'9'; }

    void AppendArgument( const Conversion& inConversion, const XFormatArgument& inArgument )
    {
        if ( const auto* number = std::get_if<std::int64_t>( &inArgument ) )
            AppendInteger( inConversion, *number < 0, std::uint64_t( *number ) );
        else if ( const auto* natural = std::get_if<std::uint64_t>( &inArgument ) )
            AppendInteger( inConversion, false, *natural );
        else if ( const auto* real = std::get_if<double>( &inArgument ) )
            AppendReal( inConversion, *real );
        else if ( const auto* view = std::get_if<TextView>( &inArgument ) )
            AppendText( inConversion, *view );
        else if ( const auto* bytes = std::get_if<std::string_view>( &inArgument ) )
            AppendText( inConversion, TextFromUTF8( *bytes ) );
        else
            AppendText( inConversion, std::get<Text>( inArgument ) );
    }

    // inBits is the two's complement of a negative number.
    void AppendInteger( const Conversion& inConversion, bool inNegative, std::uint64_t inBits )
    {
        switch ( inConversion.mKind )
        {
        case u'f':
        case u'F':
        case u'e':
        case u'E':
        case u'g':
        case u'G':
            return AppendReal( inConversion, inNegative ? double( std::int64_t( inBits ) ) : double( inBits ) );
        case u'c':
        case u'C':
            if ( not inNegative and inBits < 0x110000 )
                return AppendCharacter( inConversion, char32_t( inBits ) );
            return AppendDecimal( inConversion, inNegative, inBits );
        case u'd':
        case u'i':
            return AppendNarrowedDecimal( inConversion, inNegative, inBits );
        case u'x':
        case u'X':
            return AppendBits( inConversion, Narrowed( inConversion, inNegative, inBits ), 16 );
        case u'o':
            return AppendBits( inConversion, Narrowed( inConversion, inNegative, inBits ), 8 );
        case u'u':
            if ( not inNegative )
                return AppendBits( inConversion, Narrowed( inConversion, inNegative, inBits ), 10 );
            return AppendDecimal( inConversion, inNegative, inBits );
        default:
            return AppendDecimal( inConversion, inNegative, inBits );
        }
    }

    // What an unsigned conversion sees of a number: -1 as %X is FFFFFFFF and not sixteen F. A number that is wider
    // than the format says is shown whole, unless the format cuts it on purpose with h or hh.
    static std::uint64_t Narrowed( const Conversion& inConversion, bool inNegative, std::uint64_t inBits )
    {
        switch ( inConversion.mLength )
        {
        case Length::kChar:
            return inBits & 0xFF;
        case Length::kShort:
            return inBits & 0xFFFF;
        case Length::kInt:
            if ( inNegative and std::int64_t( inBits ) >= std::numeric_limits<std::int32_t>::min() )
                return inBits & 0xFFFFFFFF;
            return inBits;
        case Length::kLong:
            break;
        }
        return inBits;
    }

    void AppendNarrowedDecimal( const Conversion& inConversion, bool inNegative, std::uint64_t inBits )
    {
        if ( inConversion.mLength == Length::kChar or inConversion.mLength == Length::kShort )
        {
            const std::int64_t cut = inConversion.mLength == Length::kChar ? std::int64_t( std::int8_t( inBits ) )
                                                                           : std::int64_t( std::int16_t( inBits ) );
            return AppendDecimal( inConversion, cut < 0, std::uint64_t( cut ) );
        }
        AppendDecimal( inConversion, inNegative, inBits );
    }

    void AppendDecimal( const Conversion& inConversion, bool inNegative, std::uint64_t inBits )
    {
        const std::uint64_t magnitude = inNegative ? 0 - inBits : inBits;
        AppendDigits( inConversion, SignOf( inConversion, inNegative ), Digits( magnitude, 10 ) );
    }

    void AppendBits( const Conversion& inConversion, std::uint64_t inBits, int inBase )
    {
        std::string digits = Digits( inBits, inBase );
        std::string prefix;
        if ( inConversion.mKind == u'X' )
            std::transform( digits.begin(), digits.end(), digits.begin(),
                []( char c ) { return c >= 'a' ? char( c - 'a' + 'A' ) : c; } );
        if ( inConversion.mAlternate and inBase == 16 and inBits != 0 )
            prefix = inConversion.mKind == u'X' ? "0X" : "0x";
        // C's alternate octal raises the precision until a zero leads; the zero itself has one already,
        // unless the precision takes it away.
        Conversion conversion = inConversion;
        if ( inConversion.mAlternate and inBase == 8 and
            ( inBits != 0 ? int( digits.size() ) >= conversion.mPrecision.value_or( 0 ) : conversion.mPrecision == 0 ) )
        {
            if ( inBits == 0 )
                conversion.mPrecision = 1;
            else
                digits.insert( 0, 1, '0' );
        }
        AppendDigits( conversion, prefix, std::move( digits ) );
    }

    static std::string Digits( std::uint64_t inMagnitude, int inBase )
    {
        std::array<char, 64> buffer;
        const auto end = std::to_chars( buffer.data(), buffer.data() + buffer.size(), inMagnitude, inBase );
        return { buffer.data(), end.ptr };
    }

    static std::string SignOf( const Conversion& inConversion, bool inNegative )
    {
        return inNegative ? "-" : inConversion.mPlus ? "+" : inConversion.mBlank ? " " : "";
    }

    void AppendDigits( const Conversion& inConversion, const std::string& inPrefix, std::string inDigits )
    {
        if ( inConversion.mPrecision )
        {
            if ( *inConversion.mPrecision == 0 and inDigits == "0" )
                inDigits.clear();
            const auto wanted = std::size_t( *inConversion.mPrecision );
            if ( inDigits.size() < wanted )
                inDigits.insert( 0, wanted - inDigits.size(), '0' );
        }
        AppendNumber( inConversion, inPrefix, inDigits, inConversion.mZero and not inConversion.mPrecision );
    }

    // Zeros of the width go between the sign or prefix and the digits.
    void AppendNumber( const Conversion& inConversion, const std::string& inPrefix, std::string inDigits, bool inZeros )
    {
        const std::size_t size = inPrefix.size() + inDigits.size();
        if ( inZeros and not inConversion.mLeft and size < std::size_t( inConversion.mWidth ) )
            inDigits.insert( 0, std::size_t( inConversion.mWidth ) - size, '0' );
        Pad( inConversion, TextFromASCII( inPrefix + inDigits ) );
    }

    void AppendReal( const Conversion& inConversion, double inValue )
    {
        const bool negative = std::signbit( inValue );
        const double magnitude = std::fabs( inValue );
        const bool upper = IsOneOf( inConversion.mKind, u"FEG" );
        std::string digits;
        switch ( inConversion.mKind )
        {
        case u'f':
        case u'F':
            digits = Fixed( inConversion, magnitude, inConversion.mPrecision.value_or( 6 ) );
            break;
        case u'e':
        case u'E':
            digits = Scientific( inConversion, magnitude, inConversion.mPrecision.value_or( 6 ) );
            break;
        case u'g':
        case u'G':
            digits = General( inConversion, magnitude );
            break;
        default:
            digits = Shortest( magnitude );
            break;
        }
        if ( upper )
            std::transform( digits.begin(), digits.end(), digits.begin(),
                []( char c ) { return c >= 'a' and c <= 'z' ? char( c - 'a' + 'A' ) : c; } );
        AppendNumber(
            inConversion, SignOf( inConversion, negative ), digits, inConversion.mZero and std::isfinite( inValue ) );
    }

    // The largest double has 309 digits before the point.
    static constexpr std::size_t kRealSize = kMaxFieldSize + 320;

    static std::string Rendered( double inMagnitude, std::chars_format inForm, int inPrecision )
    {
        std::string buffer( kRealSize, '\0' );
        const auto end =
            std::to_chars( buffer.data(), buffer.data() + buffer.size(), inMagnitude, inForm, inPrecision );
        buffer.resize( std::size_t( end.ptr - buffer.data() ) );
        return buffer;
    }

    static std::string Shortest( double inMagnitude )
    {
        std::array<char, 64> buffer;
        const auto end = std::to_chars( buffer.data(), buffer.data() + buffer.size(), inMagnitude );
        return { buffer.data(), end.ptr };
    }

    static std::string Fixed( const Conversion& inConversion, double inMagnitude, int inPrecision )
    {
        std::string digits = Rendered( inMagnitude, std::chars_format::fixed, inPrecision );
        if ( inConversion.mAlternate and inPrecision == 0 and std::isfinite( inMagnitude ) )
            digits += '.';
        return digits;
    }

    static std::string Scientific( const Conversion& inConversion, double inMagnitude, int inPrecision )
    {
        std::string digits = Rendered( inMagnitude, std::chars_format::scientific, inPrecision );
        if ( inConversion.mAlternate and inPrecision == 0 and std::isfinite( inMagnitude ) )
            digits.insert( 1, 1, '.' );
        return digits;
    }

    static std::string General( const Conversion& inConversion, double inMagnitude )
    {
        const int precision = std::max( inConversion.mPrecision.value_or( 6 ), 1 );
        if ( not inConversion.mAlternate or not std::isfinite( inMagnitude ) )
            return Rendered( inMagnitude, std::chars_format::general, precision );
        // The alternate form keeps trailing zeros, which no form of to_chars does: choose as C says, by the
        // exponent after rounding.
        const std::string scientific = Rendered( inMagnitude, std::chars_format::scientific, precision - 1 );
        const int exponent = std::stoi( scientific.substr( scientific.find( 'e' ) + 1 ) );
        if ( exponent < -4 or exponent >= precision )
            return Scientific( inConversion, inMagnitude, precision - 1 );
        return Fixed( inConversion, inMagnitude, precision - 1 - exponent );
    }

    void AppendCharacter( const Conversion& inConversion, char32_t inCharacter )
    {
        if ( inCharacter < 0x10000 )
            return Pad( inConversion, Text( 1, char16_t( inCharacter ) ) );
        const char16_t pair[] = { char16_t( 0xD7C0 + ( inCharacter >> 10 ) ),
            char16_t( 0xDC00 + ( inCharacter & 0x3FF ) ) };
        Pad( inConversion, TextView( pair, 2 ) );
    }

    // A precision cuts %s, in UTF-16 units, but never through a surrogate pair.
    void AppendText( const Conversion& inConversion, TextView inText )
    {
        if ( inConversion.mKind == u's' and inConversion.mPrecision and
            std::size_t( *inConversion.mPrecision ) < inText.size() )
        {
            auto length = std::size_t( *inConversion.mPrecision );
            if ( length > 0 and IsHighSurrogate( inText[length - 1] ) and IsLowSurrogate( inText[length] ) )
                --length;
            inText = inText.substr( 0, length );
        }
        Pad( inConversion, inText );
    }

    void Pad( const Conversion& inConversion, TextView inText )
    {
        const auto width = std::size_t( inConversion.mWidth );
        const std::size_t blanks = inText.size() < width ? width - inText.size() : 0;
        if ( not inConversion.mLeft )
            mResult.append( blanks, u' ' );
        mResult += inText;
        if ( inConversion.mLeft )
            mResult.append( blanks, u' ' );
    }

    TextView mFormat;
    std::span<const XFormatArgument> mArguments;
    std::size_t mAt = 0;
    std::size_t mNextArgument = 0;
    Text mResult;
};
} // namespace

Text kvr_formatArguments( TextView inFormat, std::span<const XFormatArgument> inArguments )
{
    return Formatter( inFormat, inArguments ).Run();
}

#include "Utility/Text/URLFields.h"

#include "Utility/Text/StringHelpers.h"

namespace
{
constexpr std::string_view kUnreserved = "-._~";

bool IsLetterOrDigit( unsigned char inByte )
{
    return ( inByte >= '0' and inByte <= '9' ) or ( inByte >= 'A' and inByte <= 'Z' ) or
        ( inByte >= 'a' and inByte <= 'z' );
}

struct Decoding
{
    Text mText;
    bool mWellFormed = true;
};

// The bytes of one run of percent sequences belong together: a character may take several.
Decoding Decode( TextView inText, bool inPlusIsBlank )
{
    Decoding result;
    std::string bytes;
    const auto flush = [&] {
        result.mWellFormed = result.mWellFormed and ( bytes.empty() or TextFromStrictUTF8( bytes ) );
        result.mText += TextFromUTF8( bytes );
        bytes.clear();
    };
    for ( std::size_t i = 0; i < inText.size(); ++i )
    {
        const char16_t unit = inText[i];
        if ( unit == u'%' and i + 2 < inText.size() and kvr_hexValue( inText[i + 1] ) >= 0 and
            kvr_hexValue( inText[i + 2] ) >= 0 )
        {
            bytes += char( kvr_hexValue( inText[i + 1] ) * 16 + kvr_hexValue( inText[i + 2] ) );
            i += 2;
            continue;
        }
        flush();
        result.mWellFormed = result.mWellFormed and unit != u'%';
        result.mText += inPlusIsBlank and unit == u'+' ? u' ' : unit;
    }
    flush();
    return result;
}
} // namespace

Text kvr_percentEncodeExcept( TextView inText, std::string_view inKept )
{
    Text result;
    for ( const char character : UTF8FromText( inText ) )
    {
        const auto byte = static_cast<unsigned char>( character );
        if ( IsLetterOrDigit( byte ) or inKept.find( character ) != std::string_view::npos )
            result += char16_t( byte );
        else
        {
            result += u'%';
            result += u"0123456789ABCDEF"[byte >> 4];
            result += u"0123456789ABCDEF"[byte & 15];
        }
    }
    return result;
}

Text encodeURLField( TextView inText )
{
    Text result = kvr_percentEncodeExcept( inText, "-._~ " );
    for ( char16_t& unit : result )
    {
        if ( unit == u' ' )
            unit = u'+';
    }
    return result;
}

Text decodeURLField( TextView inText )
{
    return Decode( inText, true ).mText;
}

Text decodePercentEncodedUTF8Field( TextView inText )
{
    return Decode( inText, false ).mText;
}

Text kvr_stringByAddingPercentEncoding( TextView inText )
{
    return kvr_percentEncodeExcept( inText, kUnreserved );
}

std::optional<Text> stringByRemovingPercentEncoding( TextView inText )
{
    Decoding result = Decode( inText, false );
    if ( not result.mWellFormed )
        return {};
    return std::move( result.mText );
}

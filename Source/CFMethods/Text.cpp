#include "CFMethods/Text.h"

#include <algorithm>

namespace
{
struct Decoded
{
    char32_t mScalar;
    std::size_t mLength;
    bool mWellFormed;
};

// One step of UTF-8. An ill-formed sequence consumes its maximal well-formed prefix, so that each
// gives one replacement character.
Decoded DecodeOne( std::string_view inUTF8, std::size_t inAt )
{
    const auto byte = [&]( std::size_t inOffset ) -> unsigned {
        return inAt + inOffset < inUTF8.size() ? static_cast<unsigned char>( inUTF8[inAt + inOffset] ) : 0u;
    };
    const unsigned lead = byte( 0 );
    if ( lead < 0x80 )
        return { lead, 1, true };

    unsigned count = 0, low = 0x80, high = 0xBF;
    char32_t scalar = 0;
    if ( lead >= 0xC2 and lead <= 0xDF )
        count = 1, scalar = lead & 0x1F;
    else if ( lead >= 0xE0 and lead <= 0xEF )
    {
        count = 2, scalar = lead & 0x0F;
        low = lead == 0xE0 ? 0xA0 : 0x80;  // overlong forms
        high = lead == 0xED ? 0x9F : 0xBF; // surrogates
    }
    else if ( lead >= 0xF0 and lead <= 0xF4 )
    {
        count = 3, scalar = lead & 0x07;
        low = lead == 0xF0 ? 0x90 : 0x80;
        high = lead == 0xF4 ? 0x8F : 0xBF;
    }
    else
        return { 0xFFFD, 1, false };

    for ( unsigned i = 1; i <= count; ++i )
    {
        const unsigned next = byte( i );
        if ( next < low or next > high )
            return { 0xFFFD, i, false };
        scalar = ( scalar << 6 ) | ( next & 0x3F );
        low = 0x80, high = 0xBF;
    }
    return { scalar, count + 1, true };
}

void Append( Text& ioText, char32_t inScalar )
{
    if ( inScalar < 0x10000 )
        ioText += char16_t( inScalar );
    else
    {
        ioText += char16_t( 0xD7C0 + ( inScalar >> 10 ) );
        ioText += char16_t( 0xDC00 + ( inScalar & 0x3FF ) );
    }
}
} // namespace

Text TextFromUTF8( std::string_view inUTF8 )
{
    Text result;
    // All that stands before the first character beyond ASCII, which mostly is all.
    const auto wide = std::ranges::find_if( inUTF8, []( char unit ) { return ( unit & 0x80 ) != 0; } );
    result.reserve( inUTF8.size() );
    result.assign( inUTF8.begin(), wide );
    for ( auto at = std::size_t( wide - inUTF8.begin() ); at < inUTF8.size(); )
    {
        const auto [scalar, length, wellFormed] = DecodeOne( inUTF8, at );
        Append( result, scalar );
        at += length;
    }
    return result;
}

std::optional<Text> TextFromStrictUTF8( std::string_view inUTF8 )
{
    Text result;
    result.reserve( inUTF8.size() );
    for ( std::size_t at = 0; at < inUTF8.size(); )
    {
        const auto [scalar, length, wellFormed] = DecodeOne( inUTF8, at );
        if ( not wellFormed )
            return {};
        Append( result, scalar );
        at += length;
    }
    return result;
}

std::string UTF8FromText( TextView inText )
{
    std::string result;
    result.reserve( inText.size() + inText.size() / 8 );
    for ( std::size_t i = 0; i < inText.size(); ++i )
    {
        char32_t scalar = inText[i];
        if ( IsHighSurrogate( inText[i] ) and i + 1 < inText.size() and IsLowSurrogate( inText[i + 1] ) )
            scalar = 0x10000 + ( ( scalar - 0xD800 ) << 10 ) + ( inText[++i] - 0xDC00u );
        else if ( IsHighSurrogate( inText[i] ) or IsLowSurrogate( inText[i] ) )
            scalar = 0xFFFD;

        if ( scalar < 0x80 )
            result += char( scalar );
        else if ( scalar < 0x800 )
        {
            result += char( 0xC0 | ( scalar >> 6 ) );
            result += char( 0x80 | ( scalar & 0x3F ) );
        }
        else if ( scalar < 0x10000 )
        {
            result += char( 0xE0 | ( scalar >> 12 ) );
            result += char( 0x80 | ( ( scalar >> 6 ) & 0x3F ) );
            result += char( 0x80 | ( scalar & 0x3F ) );
        }
        else
        {
            result += char( 0xF0 | ( scalar >> 18 ) );
            result += char( 0x80 | ( ( scalar >> 12 ) & 0x3F ) );
            result += char( 0x80 | ( ( scalar >> 6 ) & 0x3F ) );
            result += char( 0x80 | ( scalar & 0x3F ) );
        }
    }
    return result;
}

std::optional<std::size_t> FindLoneSurrogate( TextView inText )
{
    for ( std::size_t i = 0; i < inText.size(); ++i )
    {
        if ( IsHighSurrogate( inText[i] ) and i + 1 < inText.size() and IsLowSurrogate( inText[i + 1] ) )
            ++i;
        else if ( IsHighSurrogate( inText[i] ) or IsLowSurrogate( inText[i] ) )
            return i;
    }
    return {};
}

Text TextFromASCII( std::string_view inASCII )
{
    Text result( inASCII.size(), u'\0' );
    char16_t* const units = result.data(); // so that the compiler widens many at once
    for ( std::size_t i = 0; i < inASCII.size(); ++i )
        units[i] = static_cast<unsigned char>( inASCII[i] );
    return result;
}

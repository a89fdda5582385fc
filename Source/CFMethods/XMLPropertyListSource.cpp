#include "CFMethods/XMLPropertyListSource.h"

#include <algorithm>
#include <cstring>
#include <fmt/format.h>
#include <vector>

namespace
{
// Characters that old files hold and XML forbids. U+FFFE and U+FFFF are looked for apart.
constexpr bool IsForbiddenControl( char32_t inScalar )
{
    return inScalar < 0x20 and inScalar != '\t' and inScalar != '\n' and inScalar != '\r';
}

constexpr bool IsForbidden( char32_t inScalar )
{
    return IsForbiddenControl( inScalar ) or inScalar == 0xFFFE or inScalar == 0xFFFF;
}

// U+FFFE or U+FFFF at the start of well-formed UTF-8.
bool BeginsWithNoncharacter( std::string_view inUTF8 )
{
    return inUTF8.size() >= 3 and inUTF8[0] == '\xEF' and inUTF8[1] == '\xBF' and
        ( inUTF8[2] == '\xBE' or inUTF8[2] == '\xBF' );
}

// The length of the well-formed sequence at the start; 0 if there is none.
std::size_t WellFormedLength( std::string_view inUTF8 )
{
    const auto byte = [&]( std::size_t inIndex ) -> unsigned {
        return inIndex < inUTF8.size() ? static_cast<unsigned char>( inUTF8[inIndex] ) : 0u;
    };
    const auto continues = [&]( std::size_t inIndex ) { return ( byte( inIndex ) & 0xC0 ) == 0x80; };
    const unsigned lead = byte( 0 ), second = byte( 1 );
    if ( lead < 0x80 )
        return 1;
    if ( lead >= 0xC2 and lead <= 0xDF )
        return continues( 1 ) ? 2 : 0;
    if ( lead >= 0xE0 and lead <= 0xEF )
    {
        const bool isShortest = lead != 0xE0 or second >= 0xA0, isSurrogate = lead == 0xED and second >= 0xA0;
        return continues( 1 ) and continues( 2 ) and isShortest and not isSurrogate ? 3 : 0;
    }
    if ( lead >= 0xF0 and lead <= 0xF4 )
    {
        const bool isInRange = ( lead != 0xF0 or second >= 0x90 ) and ( lead != 0xF4 or second < 0x90 );
        return continues( 1 ) and continues( 2 ) and continues( 3 ) and isInRange ? 4 : 0;
    }
    return 0;
}

char16_t LoadUnit( const std::uint8_t* inBytes, bool inLittleEndian )
{
    const unsigned first = inBytes[0], second = inBytes[1];
    return char16_t( inLittleEndian ? first | second << 8 : first << 8 | second );
}
} // namespace

XMLCharacterReference ParseCharacterReference( std::string_view inText )
{
    if ( not inText.starts_with( "&#" ) )
        return {};
    const bool isHex = inText.size() > 2 and inText[2] == 'x';
    std::size_t at = isHex ? 3 : 2;
    const std::size_t first = at;
    char32_t scalar = 0;
    for ( ; at < inText.size() and inText[at] != ';'; ++at )
    {
        const char byte = inText[at], letter = char( byte | 0x20 );
        const bool isDigit = byte >= '0' and byte <= '9', isHexDigit = isHex and letter >= 'a' and letter <= 'f';
        if ( not isDigit and not isHexDigit )
            return {};
        scalar = scalar * ( isHex ? 16 : 10 ) + char32_t( isDigit ? byte - '0' : letter - 'a' + 10 );
        if ( scalar > 0x10FFFF )
            return {};
    }
    const bool isSurrogate = scalar >= 0xD800 and scalar < 0xE000;
    if ( at == first or at == inText.size() or isSurrogate )
        return {};
    return { scalar, at + 1 };
}

std::size_t EncodeUTF8( char32_t inScalar, char ( &outBytes )[4] )
{
    if ( inScalar < 0x80 )
    {
        outBytes[0] = char( inScalar );
        return 1;
    }
    const std::size_t count = inScalar < 0x800 ? 2 : inScalar < 0x10000 ? 3 : 4;
    for ( std::size_t i = count - 1; i > 0; --i, inScalar >>= 6 )
        outBytes[i] = char( 0x80 | ( inScalar & 0x3F ) );
    outBytes[0] = char( ( 0xF00 >> count & 0xFF ) | inScalar );
    return count;
}

XMLPlistSource::XMLPlistSource( std::span<const std::uint8_t> inBytes )
    : mBytes( inBytes ),
      mForm( DetectForm( inBytes ) )
{
    if ( mForm.mEncoding == Encoding::kUTF32 )
        throw XPlistFault{ "the text is UTF-32; UTF-8 and UTF-16 are read", 0, {}, 0, 0 };
    if ( mForm.mEncoding == Encoding::kUTF8 )
        mUTF8 = std::string_view( reinterpret_cast<const char*>( mBytes.data() ), mBytes.size() ).substr( mForm.mMark );
    else
        Transcode();
}

XMLPlistSource::Form XMLPlistSource::DetectForm( std::span<const std::uint8_t> inBytes )
{
    const auto beginsWith = [inBytes]( std::initializer_list<std::uint8_t> inStart ) {
        return inBytes.size() >= inStart.size() and std::equal( inStart.begin(), inStart.end(), inBytes.begin() );
    };
    // Before UTF-16, whose mark is the first half of theirs.
    if ( beginsWith( { 0xFF, 0xFE, 0, 0 } ) or beginsWith( { 0, 0, 0xFE, 0xFF } ) or beginsWith( { '<', 0, 0, 0 } ) or
        beginsWith( { 0, 0, 0, '<' } ) )
        return { Encoding::kUTF32, 0 };
    if ( beginsWith( { 0xEF, 0xBB, 0xBF } ) )
        return { Encoding::kUTF8, 3 };
    if ( beginsWith( { 0xFF, 0xFE } ) )
        return { Encoding::kUTF16LE, 2 };
    if ( beginsWith( { 0xFE, 0xFF } ) )
        return { Encoding::kUTF16BE, 2 };
    // Without a mark: a document begins with markup or white space, so its first character is ASCII.
    if ( inBytes.size() >= 2 and inBytes[0] != 0 and inBytes[0] < 0x80 and inBytes[1] == 0 )
        return { Encoding::kUTF16LE, 0 };
    if ( inBytes.size() >= 2 and inBytes[0] == 0 and inBytes[1] != 0 and inBytes[1] < 0x80 )
        return { Encoding::kUTF16BE, 0 };
    return {};
}

void XMLPlistSource::Transcode()
{
    const auto unitAt = [this]( std::size_t inByte ) {
        return LoadUnit( mBytes.data() + inByte, mForm.mEncoding == Encoding::kUTF16LE );
    };
    mTranscoded.reserve( mBytes.size() / 2 + mBytes.size() / 8 );
    std::size_t at = mForm.mMark;
    for ( ; at + 2 <= mBytes.size(); at += 2 )
    {
        const char16_t unit = unitAt( at );
        if ( unit < 0x80 )
        {
            mTranscoded += char( unit );
            continue;
        }
        char32_t scalar = unit;
        if ( IsHighSurrogate( unit ) and at + 4 <= mBytes.size() and IsLowSurrogate( unitAt( at + 2 ) ) )
        {
            at += 2;
            scalar = 0x10000 + ( ( scalar - 0xD800 ) << 10 ) + ( unitAt( at ) - 0xDC00u );
        }
        else if ( IsHighSurrogate( unit ) or IsLowSurrogate( unit ) )
            throw XPlistFault{ fmt::format( "the lone surrogate U+{:04X}", unsigned( unit ) ), at, {}, 0, 0 };
        char bytes[4];
        mTranscoded.append( bytes, EncodeUTF8( scalar, bytes ) );
    }
    if ( at != mBytes.size() )
        throw XPlistFault{ "the UTF-16 text ends within a unit", at, {}, 0, 0 };
    mUTF8 = mTranscoded;
}

// True when something needs an escape.
bool XMLPlistSource::CheckUTF8() const
{
    bool needsEscapes = false;
    for ( std::size_t at = 0; at < mUTF8.size(); )
    {
        const auto byte = static_cast<unsigned char>( mUTF8[at] );
        if ( byte < 0x80 )
        {
            needsEscapes |= IsForbiddenControl( byte ) or byte == '\r';
            needsEscapes |= byte == '&' and not needsEscapes and [this, at] {
                const auto [scalar, length] = ParseCharacterReference( mUTF8.substr( at ) );
                return length > 0 and IsForbidden( scalar );
            }();
            ++at;
            continue;
        }
        const std::size_t length = WellFormedLength( mUTF8.substr( at, 4 ) );
        if ( length == 0 )
            throw XPlistFault{ fmt::format( "ill-formed UTF-8, byte 0x{:02X}", byte ), at + mForm.mMark, {}, 0, 0 };
        needsEscapes |= BeginsWithNoncharacter( mUTF8.substr( at, 3 ) );
        at += length;
    }
    return needsEscapes;
}

namespace
{
// Knows where the text of strings and keys is: XML turns a CR into LF, but there it has to stand. Elsewhere it
// is white space, which tags and the lines around the root can't do without. Follows markup only as far
// as a document is well-formed; in others the parser finds the fault, whatever has become of their CRs.
class TextFinder
{
public:
    explicit TextFinder( std::string_view inUTF8 ) : mUTF8( inUTF8 ) {}

    /// At each '<', in their order.
    void Meet( std::size_t inAt )
    {
        if ( inAt < mMarkupEnd )
            return;
        const std::string_view rest = mUTF8.substr( inAt );
        if ( rest.starts_with( "<!--" ) )
            mMarkupEnd = EndOf( "-->", inAt + 4 );
        else if ( rest.starts_with( "<![CDATA[" ) )
            mMarkupEnd = EndOf( "]]>", inAt );
        else if ( rest.starts_with( "<?" ) )
            mMarkupEnd = EndOf( "?>", inAt );
        else
            MeetTag( inAt );
    }
    [[nodiscard]] bool IsText( std::size_t inAt ) const { return inAt >= mTextStart; }

private:
    [[nodiscard]] std::size_t EndOf( std::string_view inMark, std::size_t inFrom ) const
    {
        const std::size_t found = mUTF8.find( inMark, inFrom );
        return found == mUTF8.npos ? mUTF8.size() : found + inMark.size();
    }
    void MeetTag( std::size_t inAt )
    {
        std::size_t end = inAt;
        char quote = 0;
        for ( ; end < mUTF8.size() and ( quote or mUTF8[end] != '>' ); ++end )
        {
            const char byte = mUTF8[end];
            if ( quote ? byte == quote : byte == '"' or byte == '\'' )
                quote = quote ? 0 : byte;
        }
        const std::string_view tag = mUTF8.substr( inAt, end - inAt );
        const std::string_view name = tag.substr( 0, tag.find_first_of( " \t\r\n" ) );
        const bool holdsText = ( name == "<string" or name == "<key" ) and not tag.ends_with( '/' );
        mMarkupEnd = std::min( end + 1, mUTF8.size() );
        mTextStart = holdsText ? mMarkupEnd : mUTF8.npos;
    }

    std::string_view mUTF8;
    std::size_t mMarkupEnd = 0;
    std::size_t mTextStart = std::string_view::npos;
};
} // namespace

// Visits (what is copied before it, length of what is replaced, replacement), and the rest at the end.
template<class Visit>
void XMLPlistSource::WalkEscapes( std::string_view inUTF8, const Visit& inVisit )
{
    std::size_t copied = 0;
    const auto replace = [&]( std::size_t inAt, std::size_t inLength, char inCode ) {
        const char replacement[] = { kEscape, inCode };
        inVisit( inUTF8.substr( copied, inAt - copied ), inLength, std::string_view( replacement, 2 ) );
        copied = inAt + inLength;
    };
    TextFinder text( inUTF8 );
    for ( std::size_t at = 0; at < inUTF8.size(); ++at )
    {
        const char byte = inUTF8[at];
        if ( byte == '<' )
            text.Meet( at );
        else if ( IsForbiddenControl( static_cast<unsigned char>( byte ) ) or ( byte == '\r' and text.IsText( at ) ) )
            replace( at, 1, char( kControl + byte ) );
        else if ( byte == kEscape )
            replace( at, 1, kItself );
        else if ( byte == '\xEF' and BeginsWithNoncharacter( inUTF8.substr( at, 3 ) ) )
            replace( at, 3, inUTF8[at + 2] == '\xBE' ? kFFFE : kFFFF );
        else if ( byte == '&' )
        {
            const auto [scalar, length] = ParseCharacterReference( inUTF8.substr( at ) );
            if ( length > 0 and IsForbidden( scalar ) )
                replace( at, 1, kAmpersand );
        }
    }
    inVisit( inUTF8.substr( copied ), 0, std::string_view() );
}

std::string_view XMLPlistSource::ForParser()
{
    mIsEscaped = CheckUTF8();
    if ( not mIsEscaped )
        return mUTF8;
    mEscaped.reserve( mUTF8.size() + mUTF8.size() / 16 );
    WalkEscapes( mUTF8, [this]( std::string_view inRun, std::size_t, std::string_view inReplacement ) {
        mEscaped += inRun;
        mEscaped += inReplacement;
    } );
    return mEscaped;
}

std::string_view XMLPlistSource::DecodeEscape(
    std::string_view inAfter, bool inCDATA, char ( &outBytes )[4], std::size_t& outLength )
{
    const char code = inAfter.empty() ? kItself : inAfter[0];
    outLength = inAfter.empty() ? 0 : 1;
    if ( code != kAmpersand )
    {
        const char32_t scalar = code == kItself ? U'\x7F'
            : code == kFFFE                     ? 0xFFFE
            : code == kFFFF                     ? 0xFFFF
                                                : char32_t( code - kControl );
        return { outBytes, EncodeUTF8( scalar, outBytes ) };
    }
    outBytes[0] = '&';
    if ( inCDATA )
        return { outBytes, 1 };
    std::string reference = "&";
    reference += inAfter.substr( 1, inAfter.find( ';' ) );
    const auto [scalar, length] = ParseCharacterReference( reference );
    outLength = std::max<std::size_t>( length, 1 );
    return { outBytes, EncodeUTF8( scalar, outBytes ) };
}

void XMLPlistSource::MapToInput( std::span<std::uint64_t* const> ioOffsets, bool inForParser ) const
{
    std::vector<std::uint64_t*> waiting( ioOffsets.begin(), ioOffsets.end() );
    std::sort( waiting.begin(), waiting.end(), []( const auto* a, const auto* b ) { return *a < *b; } );
    if ( inForParser and mIsEscaped )
    {
        std::uint64_t source = 0, parsed = 0;
        auto next = waiting.begin();
        WalkEscapes( mUTF8, [&]( std::string_view inRun, std::size_t inLength, std::string_view inReplacement ) {
            const std::uint64_t end = parsed + inRun.size() + inReplacement.size();
            for ( ; next != waiting.end() and ( **next < end or inReplacement.empty() ); ++next )
                **next = source + std::min<std::uint64_t>( **next - parsed, inRun.size() );
            parsed = end;
            source += inRun.size() + inLength;
        } );
    }
    if ( mForm.mEncoding != Encoding::kUTF8 )
    {
        std::uint64_t source = 0, parsed = 0;
        auto next = waiting.begin();
        for ( const char byte : mUTF8 )
        {
            for ( ; next != waiting.end() and **next <= parsed; ++next )
                **next = source;
            // A lead byte stands for one unit, and that of four bytes for two.
            const auto value = static_cast<unsigned char>( byte );
            source += ( value & 0xC0 ) == 0x80 ? 0 : value >= 0xF0 ? 4 : 2;
            ++parsed;
        }
        for ( ; next != waiting.end(); ++next )
            **next = source;
    }
    for ( std::uint64_t* const offset : waiting )
        *offset += mForm.mMark;
}

void XMLPlistSource::FindLine( XPlistFault& ioFault, std::span<const std::uint8_t> inBytes )
{
    const auto [encoding, mark] = DetectForm( inBytes );
    const bool isWide = encoding == Encoding::kUTF16LE or encoding == Encoding::kUTF16BE;
    const std::size_t step = isWide ? 2 : 1, end = std::min<std::size_t>( ioFault.mOffset, inBytes.size() );
    ioFault.mLine = ioFault.mColumn = 1;
    char16_t previous = 0;
    for ( std::size_t at = mark; at + step <= end; at += step )
    {
        const char16_t unit =
            isWide ? LoadUnit( inBytes.data() + at, encoding == Encoding::kUTF16LE ) : char16_t( inBytes[at] );
        const bool goesOn = isWide ? IsLowSurrogate( unit ) : ( unit & 0xC0 ) == 0x80;
        if ( unit == '\r' or ( unit == '\n' and previous != '\r' ) )
        {
            ++ioFault.mLine;
            ioFault.mColumn = 1;
        }
        else if ( unit != '\n' and not goesOn )
            ++ioFault.mColumn;
        previous = unit;
    }
}

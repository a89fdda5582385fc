// The bytes of an XML document, as the UTF-8 that is parsed, and the way back from positions in
// that to positions in the input. Private to the XML codec.
#pragma once

#include "CFMethods/PropertyListCodec.h"

#include <span>
#include <string>
#include <string_view>

class XMLPlistSource
{
public:
    /// Finds the encoding by the mark or the first characters. UTF-16 is transcoded here; a lone surrogate
    /// or half a unit is refused by throwing an XPlistFault. The bytes must outlive the source.
    explicit XMLPlistSource( std::span<const std::uint8_t> inBytes );

    /// The document without its mark. UTF-8 that came from outside isn't checked yet.
    [[nodiscard]] std::string_view UTF8() const { return mUTF8; }

    /// The document as an XML parser takes it: well-formed UTF-8, with an escape (see Unescape) wherever
    /// XML forbids a character, raw or as a reference. Throws an XPlistFault when the UTF-8 is ill-formed.
    [[nodiscard]] std::string_view ForParser();

    /// Undoes the escapes in character data, and hands over run after run with its position in
    /// inPiece. In a CDATA section a reference is no reference, and comes back as it was typed.
    template<class TakeRun>
    void Unescape( std::string_view inPiece, bool inCDATA, const TakeRun& inTakeRun ) const;

    /// Positions become those in the input, in one walk; the positions in the parser's text, if
    /// inForParser, or in UTF8().
    void MapToInput( std::span<std::uint64_t* const> ioOffsets, bool inForParser ) const;

    /// Sets line and column by the offset, which is one into the input; columns count characters.
    static void FindLine( XPlistFault& ioFault, std::span<const std::uint8_t> inBytes );

private:
    enum class Encoding : std::uint8_t { kUTF8, kUTF16LE, kUTF16BE, kUTF32 };
    struct Form
    {
        Encoding mEncoding = Encoding::kUTF8;
        std::size_t mMark = 0; // its length
    };

    // DEL begins an escape: XML allows it, markup has no use for it, and it is one byte, so that
    // the escaped text has at most twice the size. What follows it:
    static constexpr char kEscape = '\x7F';
    static constexpr char kControl = '@';   // and more: a control character, by its number
    static constexpr char kItself = 'd';    // DEL
    static constexpr char kFFFE = 'e';      // U+FFFE
    static constexpr char kFFFF = 'f';      // U+FFFF
    static constexpr char kAmpersand = 'a'; // the & of a reference that XML forbids; the rest follows

    [[nodiscard]] static Form DetectForm( std::span<const std::uint8_t> inBytes );
    void Transcode();
    [[nodiscard]] bool CheckUTF8() const;
    // Walks the document escape by escape: copies runs, and tells how much input stands behind how much output.
    template<class Visit>
    static void WalkEscapes( std::string_view inUTF8, const Visit& inVisit );
    static std::string_view DecodeEscape(
        std::string_view inAfter, bool inCDATA, char ( &outBytes )[4], std::size_t& outLength );

    std::span<const std::uint8_t> mBytes;
    Form mForm;
    std::string mTranscoded, mEscaped;
    std::string_view mUTF8;
    bool mIsEscaped = false;
};

template<class TakeRun>
void XMLPlistSource::Unescape( std::string_view inPiece, bool inCDATA, const TakeRun& inTakeRun ) const
{
    std::size_t at = 0;
    while ( mIsEscaped )
    {
        const std::size_t escape = inPiece.find( kEscape, at );
        if ( escape == inPiece.npos )
            break;
        if ( escape > at )
            inTakeRun( inPiece.substr( at, escape - at ), at );
        char bytes[4];
        std::size_t length = 0;
        inTakeRun( DecodeEscape( inPiece.substr( escape + 1 ), inCDATA, bytes, length ), escape );
        at = escape + 1 + length;
    }
    if ( at < inPiece.size() )
        inTakeRun( inPiece.substr( at ), at );
}

/// A character reference ("&#65;", "&#x41;") at the start of the text: its value and length; length 0 when
/// it is none, or its value no scalar.
struct XMLCharacterReference
{
    char32_t mScalar = 0;
    std::size_t mLength = 0;
};
[[nodiscard]] XMLCharacterReference ParseCharacterReference( std::string_view inText );

/// The UTF-8 of a scalar; gives the number of bytes.
std::size_t EncodeUTF8( char32_t inScalar, char ( &outBytes )[4] );

// Writing the XML form: laid out as Python's plistlib does it, so that files of either compare line by
// line. The bytes gather in memory, and are given out only when the whole value has turned out to have an
// XML form.
//
// Characters that XML forbids (control characters but tab and LF, U+FFFE, U+FFFF) are written as
// references. The lenient readers take them raw or as references, and the strict ones neither; but
// a reference survives editors, pasteboards and version control as text. NUL decides it: readers built on
// C strings cut a raw one off with all that follows and say nothing, but refuse the reference.
#include "CFMethods/PropertyListCodec.h"
#include "CFMethods/XMLPropertyListLeaf.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <fmt/format.h>
#include <string>
#include <vector>

namespace
{
constexpr std::string_view kHeader =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";
constexpr std::string_view kFooter = "</plist>\n";

// Deeper lines begin no further right: with a tab for each level the size would go with the square of the depth.
constexpr std::size_t kMostTabs = 100;

constexpr bool NeedsReference( char16_t inUnit )
{
    return ( inUnit < 0x20 and inUnit != '\t' and inUnit != '\n' ) or inUnit == '<' or inUnit == '>' or inUnit == '&' or
        inUnit >= 0xFFFE;
}

constexpr std::array<bool, 256> kNeedsReference = [] {
    std::array<bool, 256> table{};
    for ( unsigned i = 0; i < 256; ++i )
        table[i] = NeedsReference( char16_t( i ) );
    return table;
}();

// May any of these eight bytes be one that needs a reference? Tabs and line ends say yes as well.
constexpr bool IsSuspect( std::uint64_t inWord )
{
    constexpr std::uint64_t kEach = 0x0101010101010101u;
    const auto zeros = []( std::uint64_t inBytes ) { return ( inBytes - kEach ) & ~inBytes; };
    const std::uint64_t controls = ( inWord - kEach * 0x20 ) & ~inWord;
    const std::uint64_t angles = zeros( ( inWord | ( kEach * 2 ) ) ^ ( kEach * '>' ) ); // '<' is '>' less bit 1
    return ( ( controls | angles | zeros( inWord ^ ( kEach * '&' ) ) ) & ( kEach * 0x80 ) ) != 0;
}

std::size_t FindNeedsReference( std::string_view inText, std::size_t inFrom )
{
    const auto needs = [inText](
                           std::size_t inAt ) { return kNeedsReference[static_cast<unsigned char>( inText[inAt] )]; };
    std::size_t at = inFrom;
    for ( ; at + 8 <= inText.size(); at += 8 )
    {
        std::uint64_t word = 0;
        std::memcpy( &word, inText.data() + at, 8 );
        if ( not IsSuspect( word ) )
            continue;
        for ( std::size_t i = at; i < at + 8; ++i )
        {
            if ( needs( i ) )
                return i;
        }
    }
    while ( at < inText.size() and not needs( at ) )
        ++at;
    return at;
}

constexpr std::size_t kMostReferenceLength = 8;

char* PutReference( char* outText, char16_t inUnit )
{
    const std::string_view name = inUnit == '<' ? "&lt;" : inUnit == '>' ? "&gt;" : inUnit == '&' ? "&amp;" : "";
    if ( not name.empty() )
        return std::copy( name.begin(), name.end(), outText );
    *outText++ = '&';
    *outText++ = '#';
    outText = std::to_chars( outText, outText + 5, unsigned( inUnit ) ).ptr;
    *outText++ = ';';
    return outText;
}

// The unit, or the pair that begins with it; surrogates come in pairs here.
inline char* PutUnit( char* outText, TextView inText, std::size_t& ioAt )
{
    char32_t scalar = inText[ioAt++];
    if ( NeedsReference( char16_t( scalar ) ) )
        return PutReference( outText, char16_t( scalar ) );
    if ( scalar < 0x80 )
    {
        *outText++ = char( scalar );
        return outText;
    }
    if ( scalar < 0x800 )
        *outText++ = char( 0xC0 | scalar >> 6 );
    else
    {
        if ( IsHighSurrogate( char16_t( scalar ) ) )
        {
            scalar = 0x10000 + ( ( scalar - 0xD800 ) << 10 ) + ( inText[ioAt++] - 0xDC00u );
            *outText++ = char( 0xF0 | scalar >> 18 );
            *outText++ = char( 0x80 | ( scalar >> 12 & 0x3F ) );
        }
        else
            *outText++ = char( 0xE0 | scalar >> 12 );
        *outText++ = char( 0x80 | ( scalar >> 6 & 0x3F ) );
    }
    *outText++ = char( 0x80 | ( scalar & 0x3F ) );
    return outText;
}

// The bytes so far, in a block that doubles when it is full.
class Output
{
public:
    void Put( std::string_view inText )
    {
        char* const at = Reserve( inText.size() );
        std::memcpy( at, inText.data(), inText.size() );
        mAt = at + inText.size();
    }
    void PutTabs( std::size_t inCount )
    {
        char* const at = Reserve( inCount );
        std::memset( at, '\t', inCount );
        mAt = at + inCount;
    }
    /// Room for so many bytes; Advance says how many it took.
    char* Reserve( std::size_t inCount )
    {
        if ( std::size_t( mEnd - mAt ) < inCount ) [[unlikely]]
            Grow( inCount );
        return mAt;
    }
    void Advance( const char* inEnd ) { mAt += inEnd - mAt; }

    [[nodiscard]] XBytes Take()
    {
        mBytes.Resize( Size() );
        return std::move( mBytes );
    }

private:
    [[nodiscard]] std::size_t Size() const { return mAt ? std::size_t( mAt - Start() ) : 0; }
    [[nodiscard]] char* Start() const { return reinterpret_cast<char*>( const_cast<std::uint8_t*>( mBytes.data() ) ); }
    void Grow( std::size_t inCount )
    {
        const std::size_t size = Size();
        mBytes.Resize( 2 * size + inCount + 4096 );
        mAt = Start() + size;
        mEnd = Start() + mBytes.size();
    }

    XBytes mBytes;
    char* mAt = nullptr;
    char* mEnd = nullptr;
};

// A container that is being written, and how far.
struct Frame
{
    const XPlistNode* mNode;
    std::size_t mNext = 0;

    [[nodiscard]] bool IsDictionary() const { return mNode->GetType() == XPlistType::kDictionary; }
    [[nodiscard]] auto Entries() const { return static_cast<const XPlistDictionary*>( mNode )->GetEntries(); }
    [[nodiscard]] auto Nodes() const { return static_cast<const XPlistArray*>( mNode )->Nodes(); }
};

// "MacroGroups[0].Macros[3].Name": where the walk is.
std::string PathOf( const std::vector<Frame>& inFrames )
{
    constexpr std::size_t kMost = 400;
    std::string path;
    for ( const Frame& frame : inFrames )
    {
        if ( frame.IsDictionary() )
            path += ( path.empty() ? "" : "." ) + frame.Entries()[frame.mNext - 1].mKey->GetUTF8();
        else
            path += fmt::format( "[{}]", frame.mNext - 1 );
    }
    if ( path.size() <= kMost )
        return path.empty() ? "the value" : path;
    std::size_t from = path.size() - kMost;
    while ( ( static_cast<unsigned char>( path[from] ) & 0xC0 ) == 0x80 )
        ++from;
    return "..." + path.substr( from );
}

struct Unwritable
{
    std::string mFault;
};

class Writer
{
public:
    [[nodiscard]] XBytes Write( const XPlistNode* inRoot )
    {
        mOutput.Put( kHeader );
        WriteValue( inRoot );
        while ( not mFrames.empty() )
            GoOn( mFrames.back() );
        mOutput.Put( kFooter );
        return mOutput.Take();
    }

private:
    [[nodiscard]] std::size_t Tabs() const { return std::min( mFrames.size(), kMostTabs ); }

    void GoOn( Frame& ioFrame )
    {
        if ( ioFrame.IsDictionary() and ioFrame.mNext < ioFrame.Entries().size() )
        {
            const XPlistDictionary::Entry entry = ioFrame.Entries()[ioFrame.mNext++];
            mOutput.PutTabs( Tabs() );
            mOutput.Put( "<key>" );
            WriteText( *entry.mKey );
            mOutput.Put( "</key>\n" );
            WriteValue( entry.mValue );
        }
        else if ( not ioFrame.IsDictionary() and ioFrame.mNext < ioFrame.Nodes().size() )
            WriteValue( ioFrame.Nodes()[ioFrame.mNext++] );
        else
        {
            const std::string_view end = ioFrame.IsDictionary() ? "</dict>\n" : "</array>\n";
            mFrames.pop_back();
            mOutput.PutTabs( Tabs() );
            mOutput.Put( end );
        }
    }

    void WriteContainer( const XPlistNode* inNode )
    {
        const Frame frame{ inNode };
        const bool isEmpty = static_cast<const XPlistContainer*>( inNode )->GetCount() == 0;
        if ( isEmpty )
            mOutput.Put( frame.IsDictionary() ? "<dict/>\n" : "<array/>\n" );
        else
        {
            mOutput.Put( frame.IsDictionary() ? "<dict>\n" : "<array>\n" );
            mFrames.push_back( frame );
        }
    }

    void WriteValue( const XPlistNode* inNode )
    {
        mOutput.PutTabs( Tabs() );
        switch ( inNode->GetType() )
        {
        case XPlistType::kString:
            mOutput.Put( "<string>" );
            WriteText( *static_cast<const XPlistString*>( inNode ) );
            mOutput.Put( "</string>\n" );
            break;
        case XPlistType::kNumber:
            WriteNumber( *static_cast<const XPlistNumber*>( inNode ) );
            break;
        case XPlistType::kBoolean:
            mOutput.Put( static_cast<const XPlistBoolean*>( inNode )->GetValue() ? "<true/>\n" : "<false/>\n" );
            break;
        case XPlistType::kDate:
            WriteDate( static_cast<const XPlistDate*>( inNode )->GetSeconds() );
            break;
        case XPlistType::kData:
            WriteData( static_cast<const XPlistData*>( inNode )->GetBytes() );
            break;
        case XPlistType::kArray:
        case XPlistType::kDictionary:
            WriteContainer( inNode );
            break;
        }
    }

    void WriteNumber( const XPlistNumber& inNumber )
    {
        char text[XMLPlistLeaf::kMostNumberLength];
        const auto put = [&]( std::string_view inStart, const char* inEnd, std::string_view inAfter ) {
            mOutput.Put( inStart );
            mOutput.Put( { text, std::size_t( inEnd - text ) } );
            mOutput.Put( inAfter );
        };
        if ( inNumber.IsReal() )
            put( "<real>", XMLPlistLeaf::FormatReal( text, inNumber.RealValue() ), "</real>\n" );
        else if ( inNumber.IsUnsigned() )
            put( "<integer>", std::to_chars( text, std::end( text ), inNumber.UnsignedValue() ).ptr, "</integer>\n" );
        else
            put( "<integer>", std::to_chars( text, std::end( text ), inNumber.SignedValue() ).ptr, "</integer>\n" );
    }

    void WriteDate( double inSeconds )
    {
        if ( not std::isfinite( inSeconds ) )
            throw Unwritable{ PathOf( mFrames ) + " is a date that isn't finite, which XML can't hold" };
        if ( std::abs( inSeconds ) > XMLPlistLeaf::kMostDateSeconds )
            throw Unwritable{ PathOf( mFrames ) +
                " is a date more than 30,000 million years off, which has no XML form" };
        char text[XMLPlistLeaf::kMostDateLength];
        const char* const end = XMLPlistLeaf::FormatDate( text, inSeconds );
        mOutput.Put( "<date>" );
        mOutput.Put( { text, std::size_t( end - text ) } );
        mOutput.Put( "</date>\n" );
    }

    // Lines end at 76 columns where a tab counts eight, but have 16 characters at least.
    void WriteData( std::span<const std::uint8_t> inBytes )
    {
        const std::size_t tabs = Tabs();
        const std::size_t bytesInLine = tabs * 8 + 16 < 76 ? ( 76 - tabs * 8 ) / 4 * 3 : 12;
        mOutput.Put( "<data>\n" );
        while ( not inBytes.empty() )
        {
            const auto line = inBytes.first( std::min( inBytes.size(), bytesInLine ) );
            mOutput.PutTabs( tabs );
            char* text = mOutput.Reserve( ( line.size() + 2 ) / 3 * 4 );
            for ( std::size_t at = 0; at < line.size(); at += 3, text += 4 )
                XMLPlistLeaf::EncodeTriple( text, line.data() + at, std::min<std::size_t>( line.size() - at, 3 ) );
            mOutput.Advance( text );
            mOutput.Put( "\n" );
            inBytes = inBytes.subspan( line.size() );
        }
        mOutput.PutTabs( tabs );
        mOutput.Put( "</data>\n" );
    }

    void WriteText( const XPlistString& inString )
    {
        if ( inString.IsASCII() )
            WriteASCII( inString.ASCII() );
        else
            WriteWide( inString.Wide() );
    }

    void WriteASCII( std::string_view inText )
    {
        for ( std::size_t at = 0; at < inText.size(); )
        {
            const std::size_t end = FindNeedsReference( inText, at );
            mOutput.Put( inText.substr( at, end - at ) );
            if ( end == inText.size() )
                break;
            mOutput.Advance(
                PutReference( mOutput.Reserve( kMostReferenceLength ), static_cast<unsigned char>( inText[end] ) ) );
            at = end + 1;
        }
    }

    void WriteWide( TextView inText )
    {
        if ( const auto lone = FindLoneSurrogate( inText ) )
            throw Unwritable{ fmt::format( "{} holds the lone surrogate U+{:04X}, which XML can't hold",
                PathOf( mFrames ), unsigned( inText[*lone] ) ) };
        constexpr std::size_t kPiece = 1024;
        for ( std::size_t at = 0; at < inText.size(); )
        {
            const std::size_t end = std::min( inText.size(), at + kPiece );
            char* text = mOutput.Reserve( ( kPiece + 1 ) * kMostReferenceLength );
            while ( at < end )
                text = PutUnit( text, inText, at );
            mOutput.Advance( text );
        }
    }

    Output mOutput;
    std::vector<Frame> mFrames;
};
} // namespace

XPlistWriteResult WriteXMLPropertyList( const __SafeCFPropertyList& inValue )
{
    XPlistWriteResult result;
    if ( not inValue )
    {
        result.mFault = "there is no value to write";
        return result;
    }
    try
    {
        result.mBytes = Writer().Write( inValue.GetNode() );
    }
    catch ( Unwritable& unwritable )
    {
        result.mFault = std::move( unwritable.mFault );
    }
    return result;
}

std::optional<Text> kvr_toXMLString( const __SafeCFPropertyList& inValue )
{
    const XPlistWriteResult result = WriteXMLPropertyList( inValue );
    if ( result.mFault )
        return {};
    return TextFromUTF8( result.mBytes.View() );
}

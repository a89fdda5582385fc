// Only documents that are beyond doubt are read here, so that faults are found, named and placed
// by one reader alone, which knows all of XML. In doubt: false.
#include "CFMethods/XMLPropertyListPlainReader.h"

#include "CFMethods/XMLPropertyListSource.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace
{
constexpr std::string_view kDeclaration = R"(<?xml version="1.0" encoding="UTF-8"?>)";
constexpr std::string_view kDocumentTypes[] = {
    R"(<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">)",
    R"(<!DOCTYPE plist PUBLIC "-//Apple Computer//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">)",
};

constexpr struct
{
    std::string_view mName;
    char mCharacter;
} kEntities[] = { { "&lt;", '<' }, { "&gt;", '>' }, { "&amp;", '&' }, { "&quot;", '"' }, { "&apos;", '\'' } };

constexpr std::uint64_t kEach = 0x0101010101010101u;

// Bit 7 of each byte that is 0; bytes above a zero byte may be marked as well.
constexpr std::uint64_t ZeroBytes( std::uint64_t inWord )
{
    return ( inWord - kEach ) & ~inWord & ( kEach * 0x80 );
}

struct Contents
{
    bool mHasReference = false; // an ampersand
    bool mIsDoubtful = false;   // a raw '>', which may end "]]>"
};

Contents Classify( std::string_view inText )
{
    std::uint64_t ampersands = 0, doubts = 0;
    const auto add = [&]( std::uint64_t inWord ) {
        ampersands |= ZeroBytes( inWord ^ ( kEach * '&' ) );
        doubts |= ZeroBytes( inWord ^ ( kEach * '>' ) );
    };
    std::size_t i = 0;
    std::uint64_t word = 0;
    for ( ; i + 8 <= inText.size(); i += 8 )
    {
        std::memcpy( &word, inText.data() + i, 8 );
        add( word );
    }
    word = 0;
    std::memcpy( &word, inText.data() + i, inText.size() - i );
    add( word );
    return { ampersands != 0, doubts != 0 };
}

class PlainReader
{
public:
    PlainReader( std::string_view inUTF8, XMLPlistBuilder& ioBuilder )
        : mStart( inUTF8.data() ),
          mAt( inUTF8.data() ),
          mEnd( inUTF8.data() + inUTF8.size() ),
          mBuilder( ioBuilder )
    {}

    bool Read();

private:
    [[nodiscard]] std::string_view Rest() const { return { mAt, std::size_t( mEnd - mAt ) }; }
    [[nodiscard]] bool IsAtEnd() const { return mAt == mEnd; }
    void SkipSpace()
    {
        while ( mAt != mEnd and XMLPlistLeaf::IsSpace( *mAt ) )
            ++mAt;
    }
    bool Take( std::string_view inText )
    {
        if ( std::size_t( mEnd - mAt ) < inText.size() or std::memcmp( mAt, inText.data(), inText.size() ) != 0 )
            return false;
        mAt += inText.size();
        return true;
    }

    void ReadProlog();
    bool ReadTag();
    bool ReadElement( XMLPlistElement inElement, const char* inTag );
    bool ReadText( std::string_view& outText );
    bool ReplaceReferences( std::string_view& ioText );

    const char* mStart;
    const char* mAt;
    const char* mEnd;
    XMLPlistBuilder& mBuilder;
    std::string mText;
    std::vector<XMLPlistElement> mOpen;
};

void PlainReader::ReadProlog()
{
    if ( Take( kDeclaration ) )
        SkipSpace();
    for ( const std::string_view type : kDocumentTypes )
    {
        if ( Take( type ) )
            break;
    }
    SkipSpace();
    if ( Take( "<plist version=\"1.0\">" ) )
    {
        mBuilder.Open( XMLPlistElement::kPlist, 0 );
        mOpen.push_back( XMLPlistElement::kPlist );
    }
}

bool PlainReader::ReplaceReferences( std::string_view& ioText )
{
    mText.clear();
    for ( std::size_t at = 0; at < ioText.size(); )
    {
        const std::size_t ampersand = std::min( ioText.find( '&', at ), ioText.size() );
        mText += ioText.substr( at, ampersand - at );
        at = ampersand;
        if ( at == ioText.size() )
            break;
        const std::string_view rest = ioText.substr( at );
        if ( const auto [scalar, length] = ParseCharacterReference( rest ); length > 0 )
        {
            char bytes[4];
            mText.append( bytes, EncodeUTF8( scalar, bytes ) );
            at += length;
            continue;
        }
        const auto* const entity = std::find_if( std::begin( kEntities ), std::end( kEntities ),
            [rest]( const auto& known ) { return rest.starts_with( known.mName ); } );
        if ( entity == std::end( kEntities ) )
            return false;
        mText += entity->mCharacter;
        at += entity->mName.size();
    }
    ioText = mText;
    return true;
}

// Up to the next tag.
bool PlainReader::ReadText( std::string_view& outText )
{
    const auto* const end = static_cast<const char*>( std::memchr( mAt, '<', std::size_t( mEnd - mAt ) ) );
    if ( not end )
        return false;
    outText = { mAt, std::size_t( end - mAt ) };
    mAt = end;
    const Contents contents = Classify( outText );
    return not contents.mIsDoubtful and ( not contents.mHasReference or ReplaceReferences( outText ) );
}

// Behind the element's name.
inline bool PlainReader::ReadElement( XMLPlistElement inElement, const char* inTag )
{
    mBuilder.Expect( inElement );
    const bool isEmpty = mAt != mEnd and *mAt == '/';
    mAt += isEmpty ? 1 : 0;
    if ( not Take( ">" ) )
        return false;
    if ( HoldsElements( inElement ) )
    {
        mBuilder.Open( inElement, std::uint64_t( inTag - mStart ) );
        if ( isEmpty )
            mBuilder.Close();
        else
            mOpen.push_back( inElement );
        return true;
    }
    std::string_view text = ""; // never null, which memcpy mustn't be given
    if ( not isEmpty and not ReadText( text ) )
        return false;
    mBuilder.AddLeaf( inElement, text );
    return isEmpty or ( Take( "</" ) and Take( kXMLPlistElementNames[std::size_t( inElement )] ) and Take( ">" ) );
}

bool PlainReader::ReadTag()
{
    const char* const tag = mAt;
    if ( not Take( "<" ) or IsAtEnd() )
        return false;
    if ( *mAt == '/' )
    {
        ++mAt;
        if ( mOpen.empty() or not Take( kXMLPlistElementNames[std::size_t( mOpen.back() )] ) or not Take( ">" ) )
            return false;
        mOpen.pop_back();
        mBuilder.Close();
        return true;
    }
    using enum XMLPlistElement;
    switch ( *mAt )
    {
    case 'k':
        return Take( "key" ) and ReadElement( kKey, tag );
    case 's':
        return Take( "string" ) and ReadElement( kString, tag );
    case 'i':
        return Take( "integer" ) and ReadElement( kInteger, tag );
    case 'r':
        return Take( "real" ) and ReadElement( kReal, tag );
    case 't':
        return Take( "true" ) and ReadElement( kTrue, tag );
    case 'f':
        return Take( "false" ) and ReadElement( kFalse, tag );
    case 'a':
        return Take( "array" ) and ReadElement( kArray, tag );
    case 'd':
        if ( Take( "dict" ) )
            return ReadElement( kDict, tag );
        return Take( "date" ) ? ReadElement( kDate, tag ) : Take( "data" ) and ReadElement( kData, tag );
    default:
        return false;
    }
}

bool PlainReader::Read()
{
    ReadProlog();
    do
    {
        SkipSpace();
        if ( not ReadTag() )
            return false;
    } while ( not mOpen.empty() );
    SkipSpace();
    return IsAtEnd();
}
} // namespace

bool ReadPlainXMLPropertyList( std::string_view inUTF8, XMLPlistBuilder& ioBuilder )
{
    try
    {
        return PlainReader( inUTF8, ioBuilder ).Read();
    }
    catch ( const XMLPlistRefusal& )
    {
        return false;
    }
}

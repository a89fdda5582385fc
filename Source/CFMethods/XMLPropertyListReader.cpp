// Reading the XML form. Documents as programs write them go the short way
// (XMLPropertyListPlainReader.h); all others, and all that have a fault, go through expat, which this
// file drives: it never sees an entity, a file or the network, because whatever would define one
// stops it first.
//
// Expat gets the whole document at once. In pieces it would begin a long token again with each piece, and
// a comment of some megabytes would take minutes.
#include "CFMethods/PropertyListCodec.h"
#include "CFMethods/XMLPropertyListBuilder.h"
#include "CFMethods/XMLPropertyListPlainReader.h"
#include "CFMethods/XMLPropertyListSource.h"

#include <algorithm>
#include <exception>
#include <expat.h>
#include <fmt/format.h>
#include <limits>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace
{
// Expat counts bytes in an int, and an escape may take two bytes for one.
constexpr std::size_t kMostBytes = std::numeric_limits<int>::max() / 2;

struct FreeParser
{
    void operator()( XML_Parser inParser ) const { XML_ParserFree( inParser ); }
};
using ParserOwner = std::unique_ptr<std::remove_pointer_t<XML_Parser>, FreeParser>;

std::optional<XMLPlistElement> ElementOf( std::string_view inName )
{
    const auto* const found =
        std::find( std::begin( kXMLPlistElementNames ), std::end( kXMLPlistElementNames ), inName );
    if ( found == std::end( kXMLPlistElementNames ) )
        return {};
    return XMLPlistElement( found - std::begin( kXMLPlistElementNames ) );
}

bool EqualsInAnyCase( std::string_view a, std::string_view b )
{
    const auto upper = []( char inByte ) { return inByte >= 'a' and inByte <= 'z' ? char( inByte - 32 ) : inByte; };
    return std::equal(
        a.begin(), a.end(), b.begin(), b.end(), [upper]( char x, char y ) { return upper( x ) == upper( y ); } );
}

// The bytes say which of the encodings it is: a document that went through an editor or a
// pasteboard often keeps the declaration it had before.
bool IsEncodingRead( std::string_view inName )
{
    constexpr std::string_view kNames[] = { "UTF-8", "UTF8", "US-ASCII", "ASCII", "UTF-16", "UTF-16LE", "UTF-16BE" };
    return std::any_of( std::begin( kNames ), std::end( kNames ),
        [inName]( std::string_view name ) { return EqualsInAnyCase( name, inName ); } );
}

class Parser
{
public:
    Parser( XMLPlistSource& ioSource, XMLPlistBuilder& ioBuilder );

    /// Throws an XPlistFault, with the offset in the parser's text.
    void Parse();

private:
    // What expat calls: nothing may be thrown through its frames, so a failure waits until
    // it has returned.
    template<auto Method, class... Arguments>
    static void Call( void* inSelf, Arguments... inArguments )
    {
        Parser& self = *static_cast<Parser*>( inSelf );
        if ( self.mFailure )
            return;
        try
        {
            ( self.*Method )( inArguments... );
        }
        catch ( const XMLPlistRefusal& refusal )
        {
            // Placed at once: expat knows where it is only while it calls.
            self.Fail( std::make_exception_ptr( XPlistFault{ refusal.mMessage, self.OffsetOf( refusal ), {}, 0, 0 } ) );
        }
        catch ( ... )
        {
            self.Fail( std::current_exception() );
        }
    }

    void Fail( std::exception_ptr inFailure )
    {
        mFailure = std::move( inFailure );
        XML_StopParser( mParser.get(), XML_FALSE );
    }

    void Declaration( const XML_Char* inVersion, const XML_Char* inEncoding, int inStandalone );
    void DocumentType(
        const XML_Char* inName, const XML_Char* inSystemID, const XML_Char* inPublicID, int inHasInternalSubset );
    void Entity( const XML_Char* inName, int inIsParameter, const XML_Char* inValue, int inLength,
        const XML_Char* inBase, const XML_Char* inSystemID, const XML_Char* inPublicID, const XML_Char* inNotation );
    void SkippedEntity( const XML_Char* inName, int inIsParameter );
    void StartElement( const XML_Char* inName, const XML_Char** inAttributes );
    void EndElement( const XML_Char* inName );
    void Characters( const XML_Char* inText, int inLength );
    void StartCDATA() { mIsInCDATA = true; }
    void EndCDATA() { mIsInCDATA = false; }

    void TakeText( std::string_view inRun, std::uint64_t inOffset );
    [[nodiscard]] std::uint64_t Offset() const;
    [[nodiscard]] std::uint64_t OffsetOf( const XMLPlistRefusal& inRefusal ) const;
    [[noreturn]] void RefuseParserError() const;
    [[noreturn]] static void Refuse( std::string inMessage, std::uint64_t inOffset )
    {
        throw XPlistFault{ std::move( inMessage ), inOffset, {}, 0, 0 };
    }

    XMLPlistSource& mSource;
    XMLPlistBuilder& mBuilder;
    std::string_view mInput;
    ParserOwner mParser;
    std::exception_ptr mFailure;

    // The element whose text is being gathered, and where each stretch of that text stood.
    std::optional<XMLPlistElement> mLeaf;
    std::uint64_t mLeafOffset = 0; // of its tag
    std::string mText;
    std::vector<std::pair<std::size_t, std::uint64_t>> mStretches;
    bool mIsInCDATA = false;
};

Parser::Parser( XMLPlistSource& ioSource, XMLPlistBuilder& ioBuilder )
    : mSource( ioSource ),
      mBuilder( ioBuilder ),
      mInput( ioSource.ForParser() ),
      mParser( XML_ParserCreate( "UTF-8" ) ) // whatever is declared
{
    XML_Parser const parser = mParser.get();
    if ( not parser )
        throw std::bad_alloc();
    XML_SetUserData( parser, this );
    XML_SetXmlDeclHandler( parser, Call<&Parser::Declaration> );
    XML_SetStartDoctypeDeclHandler( parser, Call<&Parser::DocumentType> );
    XML_SetEntityDeclHandler( parser, Call<&Parser::Entity> );
    XML_SetSkippedEntityHandler( parser, Call<&Parser::SkippedEntity> );
    XML_SetElementHandler( parser, Call<&Parser::StartElement>, Call<&Parser::EndElement> );
    XML_SetCharacterDataHandler( parser, Call<&Parser::Characters> );
    XML_SetCdataSectionHandler( parser, Call<&Parser::StartCDATA>, Call<&Parser::EndCDATA> );
}

std::uint64_t Parser::Offset() const
{
    return std::uint64_t( XML_GetCurrentByteIndex( mParser.get() ) );
}

void Parser::Declaration( const XML_Char*, const XML_Char* inEncoding, int )
{
    if ( inEncoding and not IsEncodingRead( inEncoding ) )
        Refuse(
            fmt::format( "the encoding {} is declared; UTF-8 and UTF-16 are read", XMLPlistLeaf::Quoted( inEncoding ) ),
            Offset() );
}

void Parser::DocumentType( const XML_Char*, const XML_Char*, const XML_Char*, int inHasInternalSubset )
{
    if ( inHasInternalSubset )
        Refuse( "the document type has an internal subset, which isn't read", Offset() );
}

// Can't be reached, as declarations stand in internal subsets or other files; but if they ever could,
// a few of them would expand to gigabytes.
void Parser::Entity(
    const XML_Char*, int, const XML_Char*, int, const XML_Char*, const XML_Char*, const XML_Char*, const XML_Char* )
{
    Refuse( "an entity declaration, which isn't read", Offset() );
}

void Parser::SkippedEntity( const XML_Char* inName, int )
{
    Refuse( fmt::format( "the entity {} isn't defined", XMLPlistLeaf::Quoted( inName ) ), Offset() );
}

void Parser::StartElement( const XML_Char* inName, const XML_Char** )
{
    if ( mLeaf )
        Refuse( fmt::format( "an element, {}, within <{}>, which holds text", XMLPlistLeaf::Quoted( inName ),
                    kXMLPlistElementNames[std::size_t( *mLeaf )] ),
            Offset() );
    const std::optional<XMLPlistElement> element = ElementOf( inName );
    if ( not element )
        Refuse( fmt::format( "the element {} is none of a property list", XMLPlistLeaf::Quoted( inName ) ), Offset() );
    mBuilder.Expect( *element );
    if ( HoldsElements( *element ) )
        mBuilder.Open( *element, Offset() );
    else
    {
        mLeaf = element;
        mLeafOffset = Offset();
    }
}

void Parser::EndElement( const XML_Char* )
{
    if ( not mLeaf )
    {
        mBuilder.Close();
        return;
    }
    mBuilder.AddLeaf( *mLeaf, mText );
    mLeaf.reset();
    mText.clear();
    mStretches.clear();
}

void Parser::Characters( const XML_Char* inText, int inLength )
{
    const std::uint64_t offset = Offset();
    mSource.Unescape( { inText, std::size_t( inLength ) }, mIsInCDATA,
        [this, offset]( std::string_view inRun, std::size_t inAt ) { TakeText( inRun, offset + inAt ); } );
}

void Parser::TakeText( std::string_view inRun, std::uint64_t inOffset )
{
    if ( mLeaf )
    {
        const bool goesOn =
            not mStretches.empty() and inOffset - mStretches.back().second == mText.size() - mStretches.back().first;
        if ( not goesOn )
            mStretches.emplace_back( mText.size(), inOffset );
        mText += inRun;
        return;
    }
    const std::size_t first = inRun.find_first_not_of( " \t\r\n" );
    if ( first != inRun.npos )
        Refuse( fmt::format( "text where an element is expected: {}", XMLPlistLeaf::Quoted( inRun.substr( first ) ) ),
            inOffset + first );
}

// Where in the document a refusal points: into the text of the element, or at the current tag.
std::uint64_t Parser::OffsetOf( const XMLPlistRefusal& inRefusal ) const
{
    if ( not inRefusal.mTextOffset )
        return Offset();
    if ( mStretches.empty() )
        return mLeafOffset;
    const auto after = std::upper_bound( mStretches.begin(), mStretches.end(), *inRefusal.mTextOffset,
        []( std::size_t inAt, const auto& stretch ) { return inAt < stretch.first; } );
    const auto& [at, offset] = *std::prev( after );
    return offset + ( *inRefusal.mTextOffset - at );
}

void Parser::RefuseParserError() const
{
    const XML_Error error = XML_GetErrorCode( mParser.get() );
    const std::uint64_t offset = std::min<std::uint64_t>( Offset(), mInput.size() );
    const std::string_view rest = mInput.substr( offset );
    switch ( error )
    {
    case XML_ERROR_NO_MEMORY:
        throw std::bad_alloc();
    case XML_ERROR_NO_ELEMENTS:
    case XML_ERROR_UNCLOSED_TOKEN:
    case XML_ERROR_PARTIAL_CHAR:
    case XML_ERROR_UNCLOSED_CDATA_SECTION:
        Refuse( "the document ends early", mInput.size() );
    case XML_ERROR_TAG_MISMATCH:
        Refuse( fmt::format( "the end tag {} isn't that of the open element",
                    XMLPlistLeaf::Quoted( rest.substr( 0, rest.find( '>' ) ) ) ),
            offset ); // of the name
    case XML_ERROR_UNDEFINED_ENTITY:
        Refuse( fmt::format( "the entity {} isn't defined",
                    XMLPlistLeaf::Quoted( rest.substr( 1, rest.substr( 1 ).find( ';' ) ) ) ),
            offset );
    case XML_ERROR_BAD_CHAR_REF:
        Refuse( fmt::format( "the reference {} names no character",
                    XMLPlistLeaf::Quoted( rest.substr( 0, rest.find( ';' ) + 1 ) ) ),
            offset );
    default:
        Refuse( fmt::format( "this isn't XML: {}", XML_ErrorString( error ) ), offset );
    }
}

void Parser::Parse()
{
    const XML_Status status = XML_Parse( mParser.get(), mInput.data(), int( mInput.size() ), XML_TRUE );
    if ( mFailure )
        std::rethrow_exception( mFailure );
    if ( status != XML_STATUS_OK )
        RefuseParserError();
}

void CheckSize( std::size_t inSize, const XPlistLimits& inLimits )
{
    const std::size_t most = std::min( inLimits.mMaxBytes, kMostBytes );
    if ( inSize == 0 )
        throw XPlistFault{ "there are no bytes", 0, {}, 0, 0 };
    if ( inSize > most )
        throw XPlistFault{ fmt::format( "the file has {} bytes, which exceeds the limit of {}", inSize, most ), most,
            {}, 0, 0 };
}

void ReadByParser( XMLPlistSource& ioSource, const XPlistLimits& inLimits, XPlistReadResult& outResult )
{
    XMLPlistBuilder builder( inLimits );
    std::optional<Parser> parser;
    parser.emplace( ioSource, builder ); // throws faults that are placed in the input already
    std::vector<std::uint64_t*> offsets;
    try
    {
        parser->Parse();
    }
    catch ( XPlistFault& fault )
    {
        offsets.push_back( &fault.mOffset );
        ioSource.MapToInput( offsets, true );
        throw;
    }
    outResult.mNotes = std::move( builder.Notes() );
    for ( XPlistNote& note : outResult.mNotes )
        offsets.push_back( &note.mOffset );
    ioSource.MapToInput( offsets, true );
    outResult.mValue = builder.TakeRoot();
}

bool ReadPlainly( const XMLPlistSource& inSource, const XPlistLimits& inLimits, XPlistReadResult& outResult )
{
    XMLPlistBuilder builder( inLimits );
    if ( not ReadPlainXMLPropertyList( inSource.UTF8(), builder ) )
        return false;
    outResult.mNotes = std::move( builder.Notes() );
    std::vector<std::uint64_t*> offsets;
    for ( XPlistNote& note : outResult.mNotes )
        offsets.push_back( &note.mOffset );
    inSource.MapToInput( offsets, false );
    outResult.mValue = builder.TakeRoot();
    return true;
}

void ReadSource( std::span<const std::uint8_t> inBytes, const XPlistLimits& inLimits, XPlistReadResult& outResult )
{
    XMLPlistSource source( inBytes );
    if ( source.UTF8().find_first_not_of( " \t\r\n" ) == std::string_view::npos )
        throw XPlistFault{ "there is nothing but white space", 0, {}, 0, 0 };
    if ( not ReadPlainly( source, inLimits, outResult ) )
        ReadByParser( source, inLimits, outResult );
}
} // namespace

XPlistReadResult ReadXMLPropertyList( std::span<const std::uint8_t> inBytes, const XPlistLimits& inLimits )
{
    XPlistReadResult result;
    result.mFormat = XPlistFormat::kXML;
    try
    {
        CheckSize( inBytes.size(), inLimits );
        ReadSource( inBytes, inLimits, result );
    }
    catch ( XPlistFault& fault )
    {
        XMLPlistSource::FindLine( fault, inBytes );
        result.mFault = std::move( fault );
    }
    return result;
}

__SafeCFPropertyList kvr_fromXMLString( TextView inText, const XPlistLimits& inLimits )
{
    if ( FindLoneSurrogate( inText ) )
        return {};
    const std::string bytes = UTF8FromText( inText );
    return ReadXMLPropertyList( { reinterpret_cast<const std::uint8_t*>( bytes.data() ), bytes.size() }, inLimits )
        .mValue;
}

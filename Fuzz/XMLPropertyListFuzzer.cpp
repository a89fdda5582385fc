// What the XML reader accepts is written and read again, and must be the same value; and both of the
// reader's ways, the short one and the parser's, must agree.
#include "CFMethods/PropertyListCodec.h"

#include <cstdio>
#include <cstdlib>

namespace
{
void Require( bool inCondition, const char* inWhat )
{
    if ( inCondition )
        return;
    std::fprintf( stderr, "%s\n", inWhat );
    std::abort();
}

XPlistReadResult Read( std::string_view inBytes )
{
    return ReadXMLPropertyList( { reinterpret_cast<const std::uint8_t*>( inBytes.data() ), inBytes.size() } );
}

// NaN keeps no payload in text, and a date no sign of zero, so what was written once is compared.
void RequireSameWhenWrittenAgain( const __SafeCFPropertyList& inValue )
{
    const XPlistWriteResult first = WriteXMLPropertyList( inValue );
    if ( first.mFault )
        return;
    const XPlistReadResult back = Read( first.mBytes.View() );
    Require( not back.mFault, "what was written can't be read" );
    Require( back.mNotes.empty(), "what was written has notes" );
    Require( back.mValue == inValue, "what was written reads as another value" );
    Require( WriteXMLPropertyList( back.mValue ).mBytes.View() == first.mBytes.View(), "equal values, other bytes" );
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput( const std::uint8_t* inData, std::size_t inSize )
{
    const std::string document( reinterpret_cast<const char*>( inData ), inSize );
    const XPlistReadResult result = Read( document );
    Require( bool( result.mValue ) != result.mFault.has_value(), "a value and a fault, or neither" );
    if ( result.mFault )
    {
        Require( result.mFault->mOffset <= inSize and result.mFault->mLine > 0, "a fault outside the document" );
        Require( TextFromStrictUTF8( result.mFault->Describe() ).has_value(), "a fault's sentence isn't UTF-8" );
        return 0;
    }
    for ( const XPlistNote& note : result.mNotes )
        Require( note.mOffset < inSize, "a note outside the document" );
    RequireSameWhenWrittenAgain( result.mValue );

    // A comment at the end takes the document off the short way.
    const XPlistReadResult parsed = Read( document + "<!---->" );
    const bool isUTF16 =
        document.find( '\0' ) < 2 or document.starts_with( "\xFF\xFE" ) or document.starts_with( "\xFE\xFF" );
    Require( isUTF16 or parsed.mValue == result.mValue, "the parser reads another value" );
    return 0;
}

#include "App/Output.h"

#include "App/PropertyListJSON.h"
#include "CFMethods/PropertyListText.h"

#include <iterator>
#include <ostream>

void Output::Text( std::string_view inUTF8, Colour inColour )
{
    if ( inColour == Colour::kNone )
        mOutput << ShownText( inUTF8 );
    else
        mOutput << Sequence( inColour ) << ShownText( inUTF8 ) << Sequence( Colour::kNone );
}

void Output::EndLine()
{
    mOutput << '\n';
}

void Output::Line( std::string_view inUTF8, Colour inColour )
{
    Text( inUTF8, inColour );
    EndLine();
}

void Output::Bytes( std::string_view inBytes )
{
    mOutput.write( inBytes.data(), std::streamsize( inBytes.size() ) );
}

void Output::ErrorBytes( std::string_view inBytes )
{
    mErrors.write( inBytes.data(), std::streamsize( inBytes.size() ) );
}

void Output::Flush()
{
    mOutput.flush();
    mErrors.flush();
}

void Output::JSON( const __SafeCFPropertyList& inFacts )
{
    mOutput << WritePropertyListJSON( inFacts );
}

void Output::Complain( std::string_view inSentence )
{
    mErrors << "korvalen: " << ShownText( inSentence ) << '\n';
}

std::string_view Output::Sequence( Colour inColour ) const
{
    constexpr std::string_view kSequences[] = { "\x1B[0m", "\x1B[31m", "\x1B[32m", "\x1B[33m", "\x1B[36m", "\x1B[1m" };
    static_assert( std::size( kSequences ) == std::size_t( Colour::kBold ) + 1 );
    return mTerminals.mColours ? kSequences[std::size_t( inColour )] : std::string_view();
}

bool WantsColours( bool inIsTerminal, const char* inNoColor, const char* inTerm )
{
    const bool isRefused = inNoColor and *inNoColor;
    return inIsTerminal and not isRefused and inTerm and *inTerm and std::string_view( inTerm ) != "dumb";
}

std::string QuotedPath( std::string_view inPath )
{
    return inPath == "-" ? std::string( "standard input" ) : "“" + std::string( inPath ) + "”";
}

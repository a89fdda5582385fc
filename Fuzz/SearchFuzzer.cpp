// Any search string, up to a line feed, asks the text behind it; asking everything twice gives the same answer.
#include "Utility/Search/StringSearchee.h"
#include "Utility/Search/StringSearcher.h"
#include "XCAF/XErrorHandlerTesting.h"

#include <algorithm>
#include <cstdlib>

extern "C" int LLVMFuzzerInitialize( int*, char*** )
{
    XErrorHandler::SetSinkForTesting( []( bool, TextView ) {} );
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput( const std::uint8_t* inBytes, std::size_t inSize )
{
    const Text input = TextFromUTF8( { reinterpret_cast<const char*>( inBytes ), inSize } );
    const std::size_t end = std::min( input.find( u'\n' ), input.size() );
    StringSearchee searchee;
    searchee.AddName( input.substr( end ) );
    searchee.AddTrigger( input.substr( end ) );
    searchee.AddUID( TextView( u"8C1F2A60-0000-4000-8000-00000000ABCD" ) );
    searchee.AddEnabled( inSize % 2 == 0 );
    searchee.AddCreated( 1000, double( inSize ) );

    const Text query = input.substr( 0, end );
    StringSearcher searcher{ TextView( query ) };
    const bool matches = searcher.Matches( searchee );
    if ( query.find( u'"' ) != Text::npos ) // whose partner would be another one
        return 0;
    StringSearcher twice{ TextView( query + u" " + query ) };
    if ( twice.GetTerms().size() == 2 * searcher.GetTerms().size() and twice.Matches( searchee ) != matches )
        std::abort();
    return 0;
}

#include "Defines/KVVariables.h"

#include "Utility/Text/StringHelpers.h"

#include <unicode/uchar.h>

bool KVVariables::StrictValidVariable( TextView inName )
{
    std::size_t at = 0;
    if ( inName.empty() or not u_hasBinaryProperty( UChar32( kvr_nextCharacter( inName, at ) ), UCHAR_ALPHABETIC ) )
        return false;
    while ( at < inName.size() )
    {
        const char32_t character = kvr_nextCharacter( inName, at );
        const bool isMark = character == U' ' or character == U'_';
        if ( not isMark and not u_hasBinaryProperty( UChar32( character ), UCHAR_POSIX_ALNUM ) )
            return false;
    }
    return true;
}

std::optional<Text> KVVariables::ValidVariable( TextView inName )
{
    const TextView name = kvr_viewByTrimmingWhitespace( inName );
    if ( not StrictValidVariable( name ) )
        return {};
    return Text( name );
}

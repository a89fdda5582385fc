// Hashing of texts by content, for tables that are keyed by UID.
#pragma once

#include "CFMethods/PropertyList.h"

#include <functional>

struct XTextHash
{
    std::size_t operator()( const XText& inText ) const
    {
        if ( inText.IsNull() )
            return 0;
        const XPlistString& string = *inText.GetString();
        return string.IsASCII() ? std::hash<std::string_view>()( string.ASCII() )
                                : std::hash<std::u16string_view>()( string.Wide() );
    }
};

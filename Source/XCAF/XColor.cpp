#include "XCAF/XColor.h"

#include <charconv>
#include <cmath>

namespace
{
constexpr std::string_view kPrefix = "KVCOLOR:";
}

XColor::XColor( const Components& inComponents )
{
    std::string text( kPrefix );
    for ( const double component : inComponents )
    {
        char digits[32];
        const auto end = std::to_chars( std::begin( digits ), std::end( digits ), component ).ptr;
        if ( text.size() > kPrefix.size() )
            text += ',';
        text.append( digits, end );
    }
    mText = XPlistString::MakeASCII( text );
}

XColor XColor::FromText( TextView inText )
{
    XColor result;
    result.mText = XText( inText );
    return result;
}

std::optional<XColor::Components> XColor::GetComponents() const
{
    const std::string text = mText.GetUTF8();
    if ( not text.starts_with( kPrefix ) )
        return std::nullopt;
    Components result;
    const char* next = text.data() + kPrefix.size();
    const char* const end = text.data() + text.size();
    for ( double& component : result )
    {
        if ( &component != &result.front() and ( next == end or *next++ != ',' ) )
            return std::nullopt;
        const auto [stop, error] = std::from_chars( next, end, component );
        if ( error != std::errc() or not std::isfinite( component ) )
            return std::nullopt;
        next = stop;
    }
    return next == end ? std::optional( result ) : std::nullopt;
}

#include "Actions/RecordedNumbers.h"

#include "Actions/HFieldVisitors.h"

#include <charconv>
#include <cmath>

namespace
{
// Beyond it the sum of two numbers would no longer be exact to the digits that are written.
constexpr double kLargest = 1e12;
} // namespace

std::optional<double> kvr_plainNumber( const XText& inText )
{
    const std::string text = inText.IsNull() ? std::string() : inText.GetUTF8();
    double number = 0;
    const auto [end, error] = std::from_chars( text.data(), text.data() + text.size(), number );
    if ( error != std::errc() or end != text.data() + text.size() or not( std::abs( number ) < kLargest ) )
        return {};
    return number;
}

std::optional<XText> kvr_plainSum( const XText& inFirst, const XText& inSecond )
{
    const std::optional<double> first = kvr_plainNumber( inFirst ), second = kvr_plainNumber( inSecond );
    if ( not first or not second )
        return {};
    return XText( kvr_shortestNumber( *first + *second ) );
}

// The one formatter for log lines and localised texts: printf-like conversions plus %@ for
// texts. It is typed and bounds-safe: every argument carries its type, a conversion that
// doesn't fit its argument prints the argument in its natural form, and a missing argument prints
// nothing. Any thread.
//
// Conversions: %@ %s %d %i %u %ld %lu %lld %llu %qd %zu %x %X %02X %c %C %f %.2f %g %e %%, flags
// "-+ 0#", width and precision, and positions as in %2$@. On %@ a precision is ignored.
#pragma once

#include "CFMethods/PropertyList.h"
#include "CFMethods/Text.h"

#include <filesystem>
#include <span>
#include <string>
#include <type_traits>
#include <variant>

/// One argument of a format; lives only for the call.
using XFormatArgument = std::variant<std::int64_t, std::uint64_t, double, TextView, std::string_view, Text>;

[[nodiscard]] Text kvr_formatArguments( TextView inFormat, std::span<const XFormatArgument> inArguments );

template<class Value>
[[nodiscard]] XFormatArgument MakeFormatArgument( const Value& inValue )
{
    if constexpr ( std::is_same_v<Value, bool> )
        return std::int64_t( inValue );
    else if constexpr ( std::is_enum_v<Value> )
        return std::int64_t( inValue );
    else if constexpr ( std::is_floating_point_v<Value> )
        return double( inValue );
    else if constexpr ( std::is_integral_v<Value> and std::is_signed_v<Value> )
        return std::int64_t( inValue );
    else if constexpr ( std::is_integral_v<Value> )
        return std::uint64_t( inValue );
    else if constexpr ( std::is_same_v<Value, XText> )
        return inValue.IsNull() ? XFormatArgument( TextView( u"(null)" ) ) : XFormatArgument( inValue.GetText() );
    else if constexpr ( std::is_same_v<Value, std::filesystem::path> )
        return TextFromUTF8( inValue.native() );
    else if constexpr ( std::is_convertible_v<const Value&, TextView> )
        return TextView( inValue );
    else
        return std::string_view( inValue ); // UTF-8
}

/// Formats; the format is a literal or a localised text, never a stranger's text.
template<class... Arguments>
[[nodiscard]] Text kvr_format( TextView inFormat, const Arguments&... inArguments )
{
    // The trailing null argument only keeps the array from being empty.
    const XFormatArgument arguments[] = { MakeFormatArgument( inArguments )..., std::int64_t( 0 ) };
    return kvr_formatArguments( inFormat, std::span( arguments, sizeof...( inArguments ) ) );
}

template<class... Arguments>
[[nodiscard]] Text kvr_format( const char* inFormat, const Arguments&... inArguments )
{
    return kvr_format( TextView( TextFromUTF8( inFormat ) ), inArguments... ); // some formats have curly quotes
}

// Text as the system holds it: sequences of UTF-16 units, in which every index, range and
// length is counted. UTF-8 exists only at the edges (files, logs, the terminal), and this
// header holds the conversions between the two. All of it may be called from any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

using Text = std::u16string;
using TextView = std::u16string_view;

/// UTF-8 to UTF-16. Each ill-formed sequence becomes one U+FFFD, as the Unicode Standard recommends.
[[nodiscard]] Text TextFromUTF8( std::string_view inUTF8 );

/// UTF-8 to UTF-16; absent when the bytes aren't well-formed (surrogates and overlong forms included).
[[nodiscard]] std::optional<Text> TextFromStrictUTF8( std::string_view inUTF8 );

/// UTF-16 to UTF-8. A lone surrogate becomes U+FFFD.
[[nodiscard]] std::string UTF8FromText( TextView inText );

/// The index of the first lone surrogate, or absent when there is none.
[[nodiscard]] std::optional<std::size_t> FindLoneSurrogate( TextView inText );

/// ASCII bytes to text, unit for unit. Bytes above 127 are the caller's mistake and come out as Latin-1.
[[nodiscard]] Text TextFromASCII( std::string_view inASCII );

[[nodiscard]] constexpr bool IsHighSurrogate( char16_t inUnit )
{
    return ( inUnit & 0xFC00 ) == 0xD800;
}

[[nodiscard]] constexpr bool IsLowSurrogate( char16_t inUnit )
{
    return ( inUnit & 0xFC00 ) == 0xDC00;
}

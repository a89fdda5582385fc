// Percent encoding. Encoding goes through UTF-8; a lone surrogate is encoded as U+FFFD. Decoding
// never fails: a percent sign without two hexadecimal digits stays, what isn't encoded passes
// unchanged. Linear; any thread.
#pragma once

#include "CFMethods/Text.h"

#include <optional>

/// A value of a web form or query: a blank becomes `+`; letters, digits and `-._~` stay; the rest becomes `%XX`.
[[nodiscard]] Text encodeURLField( TextView inText );

/// The reverse: `+` becomes a blank. Encoded bytes that aren't UTF-8 become U+FFFD.
[[nodiscard]] Text decodeURLField( TextView inText );

/// Percent sequences as UTF-8, and nothing else: `+` stays. Bytes that aren't UTF-8 become U+FFFD.
[[nodiscard]] Text decodePercentEncodedUTF8Field( TextView inText );

/// A part of a URL: letters, digits and `-._~` stay, the rest, slashes and blanks included, becomes `%XX`.
[[nodiscard]] Text kvr_stringByAddingPercentEncoding( TextView inText );

/// As decodePercentEncodedUTF8Field, but absent when a percent sequence is malformed or isn't UTF-8.
[[nodiscard]] std::optional<Text> stringByRemovingPercentEncoding( TextView inText );

/// Percent encodes all but letters, digits and the given ASCII characters.
[[nodiscard]] Text kvr_percentEncodeExcept( TextView inText, std::string_view inKept );

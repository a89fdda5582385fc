// Character references of HTML: the 253 named ones of XHTML 1.0, encoded and decoded, and texts
// made safe for pages. Linear; any thread.
#pragma once

#include "CFMethods/Text.h"

#include <optional>

class XHTMLEntities
{
public:
    /// Each character that has a name becomes "&name;", the others stay.
    [[nodiscard]] static Text GetEncoded( TextView inText );
    /// The same, only for characters above ASCII: markup stays markup.
    [[nodiscard]] static Text GetNonASCIIEncoded( TextView inText );
    /// Named, decimal and hexadecimal references become their characters. Unknown names and numbers that are no
    /// character (0, surrogates, beyond U+10FFFF) stay as they were.
    [[nodiscard]] static Text GetDecoded( TextView inText );

    /// The name of a character, empty if it has none.
    [[nodiscard]] static std::string_view GetName( char32_t inCharacter );
    /// The character of a name, which is case-sensitive.
    [[nodiscard]] static std::optional<char32_t> GetCharacter( std::string_view inName );
};

/// Safe anywhere in a page, attributes with and without quotes included: all but ASCII letters, digits, `+`, `-` and
/// `.` become references, by name where there is one. A lone surrogate and NUL, which no page can hold, become U+FFFD.
[[nodiscard]] Text encodeHTML( TextView inText );
/// With line breaks, LF, CR and CR LF become "<br />".
[[nodiscard]] Text encodeHTML( TextView inText, bool inLineBreaks );

/// The text as a piece of a page that people can read in its source too: only what has a named reference is
/// encoded, and line ends become "<br />".
[[nodiscard]] Text HTMLString( TextView inText );

// Small operations on texts that the languages and the model share. What they call a character
// is a UTF-16 unit unless they say otherwise, but none of them cuts a surrogate pair in two. All
// are linear, none fails. Any thread.
#pragma once

#include "CFMethods/Text.h"
#include "Utility/Text/TextRange.h"

#include <cstdint>

/// The character at the index, which moves behind it; the index must be inside. A lone surrogate is
/// given as it is.
[[nodiscard]] char32_t kvr_nextCharacter( TextView inText, std::size_t& ioAt );
/// Appends a character of any plane. What isn't a character (beyond U+10FFFF) becomes U+FFFD.
void kvr_appendCharacter( Text& ioText, char32_t inCharacter );

/// The value of a hexadecimal digit in either case; -1 for another unit.
[[nodiscard]] constexpr int kvr_hexValue( char16_t inUnit )
{
    if ( inUnit >= u'0' and inUnit <= u'9' )
        return inUnit - u'0';
    if ( inUnit >= u'A' and inUnit <= u'F' )
        return inUnit - u'A' + 10;
    return inUnit >= u'a' and inUnit <= u'f' ? inUnit - u'a' + 10 : -1;
}

/// The text without the prefix or suffix, compared exactly; unchanged if it isn't there.
[[nodiscard]] Text stringByRemovingPrefix( TextView inText, TextView inPrefix );
[[nodiscard]] Text stringByRemovingSuffix( TextView inText, TextView inSuffix );

/// Does the part stand in the text? Compared exactly, and linear whatever the two hold.
[[nodiscard]] bool kvr_containsString( TextView inText, TextView inPart );

/// The text that many times over; none for a count below 1. The result is kept below 64 Mi units: further
/// repeats are left out.
[[nodiscard]] Text stringByRepeating( TextView inText, std::int64_t inCount );

/// White space by Unicode's property, line ends included.
[[nodiscard]] bool kvr_isWhitespace( char16_t inUnit );
/// Without the white space at both ends.
[[nodiscard]] Text kvr_stringByTrimmingWhitespace( TextView inText );
/// The same as a view into the text, which must outlive it.
[[nodiscard]] TextView kvr_viewByTrimmingWhitespace( TextView inText );

/// The number in decimal digits.
[[nodiscard]] Text stringWithLongInt( std::int64_t inValue );

/// The first character in title case, the rest unchanged.
[[nodiscard]] Text kvr_capitalizeFirstString( TextView inText );

/// What people see as characters in reverse order: letters keep their accents, emoji stay whole, and CR LF
/// stays one line end.
[[nodiscard]] Text kvr_stringByReversingCharacters( TextView inText );

/// A name on one line: every line break is deleted (CR LF, LF, VT, FF, CR, U+0085, U+2028, U+2029).
[[nodiscard]] Text kvr_cleanName( TextView inText );

/// A text for a list row: on one line, each run of white space one blank, none at the ends; when longer than the
/// given units, cut and ended with "…", which counts.
[[nodiscard]] Text kvr_summaryText( TextView inText, std::size_t inMaximumLength );

/// From three characters on, all behind the first two become U+25CF, so the length still shows. Shorter texts stay.
[[nodiscard]] Text concealPassword( TextView inText );

/// Changes the case of a range (clipped to the text) by Unicode's rules without a locale. The length may
/// change: the updated range is where the result lies.
void kvr_uppercaseRange( Text& ioText, TextRange inRange, TextRange& outUpdatedRange );
void kvr_lowercaseRange( Text& ioText, TextRange inRange, TextRange& outUpdatedRange );

/// In each run of modifier glyphs, the order of menus: Control, Option, Shift, Command (⌃⌥⇧⌘).
[[nodiscard]] Text canonicalOrderMenuGlyphs( TextView inText );

/// Each "..." becomes "…", from the left.
[[nodiscard]] Text stringBySimplifyingDotDotDot( TextView inText );
/// Equal when every "..." and "…" is left out, so that "Save As" is the menu item "Save As…".
[[nodiscard]] bool equalToStringIgnoringDotDotDot( TextView inText, TextView inOther );
[[nodiscard]] bool containsStringIgnoringDotDotDot( TextView inText, TextView inPart );

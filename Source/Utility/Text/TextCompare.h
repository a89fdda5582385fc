// Comparing texts: without regard to case, and in the order in which people expect names to be
// sorted. Case is folded fully by Unicode's rules ("straße" equals "STRASSE") and never by
// locale, so that a stored file reads alike on every machine. Any thread.
#pragma once

#include "CFMethods/Text.h"

/// Equal when case is ignored.
[[nodiscard]] bool kvr_caseInsensitiveIsEqualToString( TextView inText, TextView inOther );
/// An empty text is contained in every text, and is a prefix and suffix of it.
[[nodiscard]] bool kvr_caseInsensitiveContainsString( TextView inText, TextView inPart );
[[nodiscard]] bool kvr_caseInsensitiveHasPrefix( TextView inText, TextView inPrefix );
[[nodiscard]] bool kvr_caseInsensitiveHasSuffix( TextView inText, TextView inSuffix );

/// -1, 0 or 1 by the UTF-16 units of the folded texts. It is an order for stores, cheap and the same for good.
[[nodiscard]] int caseInsensitiveCompare( TextView inText, TextView inOther );

/// -1, 0 or 1 as a file list is sorted: digits by their value ("2" before "10"), then letters, then accents, then
/// case with small letters first. Only texts that Unicode calls equivalent compare as 0.
[[nodiscard]] int localizedStandardCompare( TextView inText, TextView inOther );

/// -1, 0 or 1 in the order of a dictionary, case ignored; digits are characters like others.
[[nodiscard]] int localizedCaseInsensitiveCompare( TextView inText, TextView inOther );

/// The same to somebody who looks briefly: case, accents, blanks and punctuation are ignored. Texts that have
/// nothing else are compared as they stand.
[[nodiscard]] bool vaguelyEqualToString( TextView inText, TextView inOther );

// Where the pages of the help lie.
#pragma once

#include "CFMethods/Text.h"

namespace HHelpLinks
{
/// A name as one field of a URL: everything but letters, digits, "-", ".", "_" and "~" of ASCII is
/// percent-encoded, by its UTF-8 bytes. A lone surrogate becomes U+FFFD.
[[nodiscard]] Text EncodedField( TextView inName );

/// The link to the page of a kind ("action", "condition", "collection", "trigger"): the localised format
/// "kvHelpLinkFormat" with kind and encoded name.
[[nodiscard]] Text Link( TextView inKind, TextView inName );
} // namespace HHelpLinks

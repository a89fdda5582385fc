// Full case folding by Unicode's rules, without a locale: what "ignoring case" means in a search. Any thread.
#pragma once

#include "CFMethods/Text.h"

#include <cstdint>
#include <vector>

[[nodiscard]] bool IsASCII( TextView inText );

[[nodiscard]] Text FoldedCase( TextView inText );

/// Appends the folded text. Where a character folds to several, the places between them are reported, as
/// indexes into the output: no match may begin or end there.
void AppendFoldedCase( TextView inText, Text& ioFolded, std::vector<std::uint32_t>& ioInnerPlaces );

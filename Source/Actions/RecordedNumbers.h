// The numbers of recorded actions, which merging adds up. A text that is a calculation has no number.
#pragma once

#include "CFMethods/PropertyList.h"

#include <optional>

/// The number that a text is; absent when it is anything more than that.
[[nodiscard]] std::optional<double> kvr_plainNumber( const XText& inText );
/// The shortest text of the sum; absent unless both are plain numbers.
[[nodiscard]] std::optional<XText> kvr_plainSum( const XText& inFirst, const XText& inSecond );

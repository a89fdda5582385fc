// The arrows of the display: localised characters, one for each style. Any thread.
#pragma once

#include "CFMethods/Text.h"

namespace ArrowString
{
enum class Style { Width, Height, Right, RightToCenter, Down, DownToCenter, Left, Up };

/// The localised character; lives for good.
[[nodiscard]] const Text& String( Style inStyle );
} // namespace ArrowString

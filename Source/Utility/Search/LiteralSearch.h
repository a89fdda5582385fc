// Finding a literal in units of one or two bytes: most text is passed at the speed of memory, and the worst
// case is linear. Any thread.
#pragma once

#include "CFMethods/Text.h"

/// Where the needle first stands, at or behind a place; npos if it doesn't. The needle isn't empty.
[[nodiscard]] std::size_t FindLiteral( std::string_view inText, std::string_view inNeedle, std::size_t inFrom = 0 );
[[nodiscard]] std::size_t FindLiteral( TextView inText, TextView inNeedle, std::size_t inFrom = 0 );

// Version strings: up to three numbers and perhaps a letter with a number, as "1.2", "1.2.3b4". The letters rise from d by a
// and b to f, which is a release; "1" is "1.0.0f0". Any thread.
#pragma once

#include "CFMethods/Text.h"

#include <compare>

namespace KVVersion
{
/// Numbers count by value, so "1.30" comes after "1.19", and that after "1.3". A string of another form is asserted, and
/// compared as it stands.
[[nodiscard]] std::weak_ordering Compare( TextView inA, TextView inB );
} // namespace KVVersion

// The rule for the names of variables, which dictionaries and the parameters of plug-ins follow too. Any
// thread.
#pragma once

#include "CFMethods/Text.h"

namespace KVVariables
{
/// A letter, then letters, digits, blanks and underscores, by Unicode's properties.
[[nodiscard]] bool StrictValidVariable( TextView inName );
/// The name without white space at its ends, or absent when that isn't valid: a name with padding is the same
/// variable.
[[nodiscard]] std::optional<Text> ValidVariable( TextView inName );
} // namespace KVVariables

// How deep actions may be nested, and what that asks of the files that hold them.
#pragma once

#include "CFMethods/PropertyListCodec.h"

/// Containers within containers. Reading recurses by them, so that they have a limit; what lies
/// deeper is left out with a line in the log.
inline constexpr int kMostNestedActions = 1000;

/// For reading files and texts of macros and actions: a switch takes four containers of a file for each level,
/// and there are a few around the outermost action and in the innermost.
inline constexpr XPlistLimits kActionsPlistLimits = { .mMaxDepth = 4 * kMostNestedActions + 100 };

// A text as a literal of another language: a shell, AppleScript, JavaScript, Swift. What comes
// out reads back as the very text. Linear; any thread.
#pragma once

#include "CFMethods/Text.h"

#include <optional>

/// One word of a POSIX shell in single quotes. Absent when the text holds a NUL, which no shell can carry: cut
/// short, it would be another argument.
[[nodiscard]] std::optional<Text> shellQuotedArgument( TextView inText );

/// An AppleScript string in double quotes; only `\` and `"` are escaped.
[[nodiscard]] Text kvr_appleScriptQuotedArgument( TextView inText );

/// A JavaScript string in double quotes, all ASCII: controls as `\n` and its like, others and all that isn't
/// ASCII as `\uXXXX`, unit by unit.
[[nodiscard]] Text kvr_javaScriptQuotedArgument( TextView inText );

/// A Swift string in double quotes: `\`, both quotes and control characters as `\u{XX}`.
[[nodiscard]] Text swiftQuotedString( TextView inText );

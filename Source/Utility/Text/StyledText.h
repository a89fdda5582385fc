// The plain text of styled texts as other programs and this one's editors store them. Any thread.
#pragma once

#include "CFMethods/Text.h"

#include <cstdint>
#include <optional>
#include <span>

/// The text of RTF data without its styles, tables of fonts and pictures; absent when the data isn't RTF. What is cut
/// off or damaged gives the text up to there. Takes time in proportion to the data.
[[nodiscard]] std::optional<Text> kvr_plainTextFromRTF( std::span<const std::uint8_t> inData );

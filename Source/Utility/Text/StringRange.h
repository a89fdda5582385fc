// The substring selector of the Substring and ApplyStyle actions: a kind of range and up to two
// calculations give a stretch of a text. Any thread, if the calculator may be called there.
#pragma once

#include "CFMethods/Text.h"
#include "Utility/Text/TextRange.h"

#include <functional>
#include <iterator>
#include <optional>
#include <span>

enum class StringRangeType { kAll, kTo, kFrom, kLast, kRange, kFromTo };
inline constexpr std::u16string_view kStringRangeTypeNames[] = { u"All", u"To", u"From", u"Last", u"Range", u"FromTo" };
static_assert( std::size( kStringRangeTypeNames ) == std::size_t( StringRangeType::kFromTo ) + 1 );
constexpr auto NamesOf( StringRangeType )
{
    return std::span( kStringRangeTypeNames );
}

/// How many calculations a type reads: 0, 1 or 2.
[[nodiscard]] int CountTypeValues( StringRangeType inType );

namespace StringRange
{
/// Works out a calculation in a context where LENGTH has the given value; absent when it fails. Calculations
/// are a higher row's, which hands in its own.
using Calculator = std::function<std::optional<double>( TextView inCalculation, double inLENGTH )>;

/// The range that the type and its calculations select in the text, always inside of it: an empty one beyond the end
/// is at the end, one before the start is at 0. False when a calculation that the type needs is
/// missing or fails; the range is untouched then.
[[nodiscard]] bool FindMatch( TextRange& outRange, StringRangeType inType, TextView inText,
    std::optional<TextView> first, std::optional<TextView> second, const Calculator& inCalculator );
} // namespace StringRange

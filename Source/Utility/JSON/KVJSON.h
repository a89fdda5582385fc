// How JSON is written.
#pragma once

#include "CFMethods/Text.h"

#include <cstdint>
#include <iterator>
#include <span>

namespace KVJSON
{
/// Two bits: 1 is strict, 2 is pretty. Stored by name; the first one isn't stored.
enum class OutputFormat : std::int32_t { kCompact, kCompactStrict, kPretty, kPrettyStrict };
inline constexpr TextView kKVJSONOutputFormatTypeNames[] = { u"Compact", u"CompactStrict", u"Pretty", u"PrettyStrict" };
static_assert( std::size( kKVJSONOutputFormatTypeNames ) == std::size_t( OutputFormat::kPrettyStrict ) + 1 );
constexpr auto NamesOf( OutputFormat )
{
    return std::span( kKVJSONOutputFormatTypeNames );
}
} // namespace KVJSON

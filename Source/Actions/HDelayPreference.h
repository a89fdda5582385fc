// The tunable delays of the engine, in seconds.
#pragma once

#include "CFMethods/Text.h"

#include <cstdint>
#include <iterator>
#include <span>

namespace HDelayPreference
{
enum class Delay : std::int32_t {
    kClipboard,
    kSimulateKeystrokeNormalKey,
    kSimulateKeystrokeCommandKey,
    kSimulateKeystrokeModifiersKey,
    kSimulateKeystrokeDeadKey,
    kInterAction,
    kDrag,
    kLargeTextDisplay,
};
inline constexpr TextView kNames[] = { u"Clipboard", u"SimulateKeystrokeNormalKey", u"SimulateKeystrokeCommandKey",
    u"SimulateKeystrokeModifiersKey", u"SimulateKeystrokeDeadKey", u"InterAction", u"Drag", u"LargeTextDisplay" };
static_assert( std::size( kNames ) == std::size_t( Delay::kLargeTextDisplay ) + 1 );
constexpr auto NamesOf( Delay )
{
    return std::span( kNames );
}

[[nodiscard]] TextView GetDisplayName( Delay inDelay );
/// The default of Drag comes after the system's double-click interval, which the caller gives in seconds.
[[nodiscard]] double GetDefault( Delay inDelay, double inDoubleClickInterval );
} // namespace HDelayPreference

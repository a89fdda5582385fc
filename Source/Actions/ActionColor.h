// The colour tags of actions. An action's colour is stored by name, and None by no key at all.
#pragma once

#include "CFMethods/Text.h"

#include <cstdint>
#include <iterator>
#include <span>

namespace ActionColor
{
enum class Type : std::int32_t {
    kNone,
    kRed,
    kOrange,
    kYellow,
    kGreen,
    kAqua,
    kTeal,
    kMagenta,
    kPurple,
    kSearch, ///< marks an action that a search found; never a user's choice
};
inline constexpr TextView kNames[] = { u"None", u"Red", u"Orange", u"Yellow", u"Green", u"Aqua", u"Teal", u"Magenta",
    u"Purple", u"Search" };
static_assert( std::size( kNames ) == std::size_t( Type::kSearch ) + 1 );
constexpr auto NamesOf( Type )
{
    return std::span( kNames );
}

/// The lower-cased name.
[[nodiscard]] Text ToAppleScriptString( Type inType );
/// Case doesn't matter; no name, and Search, which isn't for scripts, give None.
[[nodiscard]] Type FromAppleScriptString( TextView inText );

/// Red, green, blue and opacity from 0 to 255.
struct Color
{
    std::uint8_t mRed = 0, mGreen = 0, mBlue = 0, mAlpha = 0;
    friend constexpr bool operator==( const Color&, const Color& ) = default;
};

/// How a surface is to be filled: plainly with the first colour, or in stripes of both.
struct Fill
{
    Color mColor, mStripe;
    bool mStriped = false;
    friend constexpr bool operator==( const Fill&, const Fill& ) = default;
};

enum class Disabled : bool { kNo, kYes };
enum class Striped : bool { kNo, kYes };
/// What the platform says of its windows; part of what every result depends on.
enum class Appearance : std::uint8_t { kLight, kDark };

// Each result is worked out once for its arguments and appearance and lives for good. Main thread.

/// The square beside the colour's menu item.
[[nodiscard]] const Fill& MenuSwatch( Type inType, Disabled inDisabled, Appearance inAppearance );
/// The background of an action in the macro display.
[[nodiscard]] const Fill& ForFill( Type inType, Disabled inDisabled, Appearance inAppearance );
/// The background of an action that a search found.
[[nodiscard]] const Fill& ForSearchFill( Striped inStriped, Disabled inDisabled, Appearance inAppearance );
/// The frame of an action, stronger for a selected one.
[[nodiscard]] const Color& Stroke( bool inSelected, Appearance inAppearance );
} // namespace ActionColor

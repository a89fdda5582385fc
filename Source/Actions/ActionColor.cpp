#include "Actions/ActionColor.h"

#include <algorithm>
#include <map>
#include <tuple>

namespace ActionColor
{
namespace
{
char16_t LowerASCII( char16_t inUnit )
{
    return inUnit >= u'A' and inUnit <= u'Z' ? char16_t( inUnit + 0x20 ) : inUnit;
}

Text Lowered( TextView inText )
{
    Text lowered( inText );
    std::transform( lowered.begin(), lowered.end(), lowered.begin(), LowerASCII );
    return lowered;
}

// The pure colours of the tags; surfaces are tints of them.
constexpr Color kColors[] = {
    { 142, 142, 147, 255 }, // None: neutral
    { 232, 72, 64, 255 },   // Red
    { 240, 148, 40, 255 },  // Orange
    { 236, 200, 40, 255 },  // Yellow
    { 84, 184, 72, 255 },   // Green
    { 60, 184, 216, 255 },  // Aqua
    { 40, 152, 148, 255 },  // Teal
    { 212, 76, 168, 255 },  // Magenta
    { 136, 92, 208, 255 },  // Purple
    { 255, 221, 51, 255 },  // Search
};
static_assert( std::size( kColors ) == std::size( kNames ) );

// So many parts of a hundred of the colour on a background.
constexpr Color Tint( Color inColor, std::uint8_t inBackground, int inPercent )
{
    const auto mix = [&]( std::uint8_t part ) {
        return std::uint8_t( ( part * inPercent + inBackground * ( 100 - inPercent ) ) / 100 );
    };
    return { mix( inColor.mRed ), mix( inColor.mGreen ), mix( inColor.mBlue ), 255 };
}

// What is disabled shows half as strong.
Color Surface( Type inType, Disabled inDisabled, Appearance inAppearance )
{
    if ( inType == Type::kNone )
        return {}; // nothing is filled: the window shows through
    const std::uint8_t background = inAppearance == Appearance::kDark ? 40 : 255;
    const int percent = inAppearance == Appearance::kDark ? 40 : 30;
    return Tint( kColors[std::size_t( inType )], background, inDisabled == Disabled::kYes ? percent / 2 : percent );
}

const Fill& ForFillStriped( Type inType, Striped inStriped, Disabled inDisabled, Appearance inAppearance )
{
    static std::map<std::tuple<Type, Striped, Disabled, Appearance>, Fill> gFills;
    const auto [found, isNew] = gFills.try_emplace( { inType, inStriped, inDisabled, inAppearance } );
    if ( isNew )
    {
        const Color color = Surface( inType, inDisabled, inAppearance );
        const bool striped = inStriped == Striped::kYes;
        found->second = { color, striped ? Surface( inType, Disabled::kYes, inAppearance ) : color, striped };
    }
    return found->second;
}
} // namespace

Text ToAppleScriptString( Type inType )
{
    return Lowered( kNames[std::size_t( inType )] );
}

Type FromAppleScriptString( TextView inText )
{
    const Text lowered = Lowered( inText );
    for ( std::size_t i = 0; i < std::size( kNames ); ++i )
    {
        if ( Type( i ) != Type::kSearch and lowered == Lowered( kNames[i] ) )
            return Type( i );
    }
    return Type::kNone;
}

const Fill& MenuSwatch( Type inType, Disabled inDisabled, Appearance inAppearance )
{
    static std::map<std::tuple<Type, Disabled, Appearance>, Fill> gSwatches;
    const auto [found, isNew] = gSwatches.try_emplace( { inType, inDisabled, inAppearance } );
    if ( isNew )
    {
        Color color = kColors[std::size_t( inType )];
        if ( inDisabled == Disabled::kYes )
            color.mAlpha = 128;
        found->second = { color, color, false };
    }
    return found->second;
}

const Fill& ForFill( Type inType, Disabled inDisabled, Appearance inAppearance )
{
    return ForFillStriped( inType, Striped::kNo, inDisabled, inAppearance );
}

const Fill& ForSearchFill( Striped inStriped, Disabled inDisabled, Appearance inAppearance )
{
    return ForFillStriped( Type::kSearch, inStriped, inDisabled, inAppearance );
}

const Color& Stroke( bool inSelected, Appearance inAppearance )
{
    static std::map<std::tuple<bool, Appearance>, Color> gStrokes;
    const auto [found, isNew] = gStrokes.try_emplace( { inSelected, inAppearance } );
    if ( isNew )
    {
        const std::uint8_t gray = inAppearance == Appearance::kDark ? 255 : 0;
        found->second = { gray, gray, gray, std::uint8_t( inSelected ? 153 : 51 ) };
    }
    return found->second;
}
} // namespace ActionColor

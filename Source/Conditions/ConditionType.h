// The types of condition, by the names that files hold.
#pragma once

#include "CFMethods/Text.h"

#include <cstdint>
#include <iterator>
#include <span>

enum class ConditionType : std::int32_t {
    kApplication,
    kFrontWindow,
    kButton,
    kMenu,
    kModifiers,
    kKey,
    kTypedString,
    kDisk,
    kPath,
    kClipboard,
    kVariable,
    kText,
    kCalculation,
    kMacro,
    kEnvironmentVariable,
    kActionResult,
    kScreenImage,
    kPixel,
    kLocation,
    kUSBDevice,
    kWirelessNetwork,
    kScript,
    kOCR,
    kAnyWindow,
    kMouseButton,
};
inline constexpr TextView kConditionTypeNames[] = { u"Application", u"FrontWindow", u"Button", u"Menu", u"Modifiers",
    u"Key", u"TypedString", u"Disk", u"Path", u"Clipboard", u"Variable", u"Text", u"Calculation", u"Macro",
    u"EnvironmentVariable", u"ActionResult", u"ScreenImage", u"Pixel", u"Location", u"USBDevice", u"WirelessNetwork",
    u"Script", u"OCR", u"AnyWindow", u"MouseButton" };
static_assert( std::size( kConditionTypeNames ) == std::size_t( ConditionType::kMouseButton ) + 1 );
constexpr auto NamesOf( ConditionType )
{
    return std::span( kConditionTypeNames );
}

// The 25 kinds of trigger and the names under which files hold them.
#pragma once

#include "CFMethods/PropertyList.h"

#include <array>
#include <optional>
#include <span>
#include <string_view>

enum class TriggerType {
    kHotKey,
    kApplication,
    kTime,
    kWake,
    kSleep,
    kMacroPalette,
    kStatusMenu,
    kPublicWeb,
    kTypedString,
    kMIDI,
    kVolume,
    kUSBDevice,
    kWirelessNetwork,
    kHID,
    kClipboard,
    kFocussedWindow,
    kFolder,
    kClipboardFilter,
    kGesture,
    kRemote,
    kAudioOutputDevice,
    kIdle,
    kCron,
    kDraggedFile,
    kDisplay,
};

inline constexpr std::string_view kTriggerTypeNames[] = {
    "HotKey",
    "Application",
    "Time",
    "Wake",
    "Sleep",
    "MacroPalette",
    "StatusMenu",
    "PublicWeb",
    "TypedString",
    "MIDI",
    "Volume",
    "USBDevice",
    "WirelessNetwork",
    "HID",
    "Clipboard",
    "FocussedWindow", // as stored
    "Folder",
    "ClipboardFilter",
    "Gesture",
    "Remote",
    "AudioOutputDevice",
    "Idle",
    "Cron",
    "DraggedFile",
    "Display",
};
static_assert( std::size( kTriggerTypeNames ) == std::size_t( TriggerType::kDisplay ) + 1 );

/// The names of earlier versions, of which two are others. Read where today's don't match, never written.
inline constexpr auto kTriggerTypeNamesAlternate = [] {
    auto names = std::to_array( kTriggerTypeNames );
    names[std::size_t( TriggerType::kMacroPalette )] = "FloatingPalette";
    names[std::size_t( TriggerType::kStatusMenu )] = "MenuBar";
    return names;
}();

/// The kind of a stored name, older names included. Absent for an unknown name. outOlder says that an older name was
/// used.
[[nodiscard]] std::optional<TriggerType> TriggerTypeFromName( const XText& inName, bool& outOlder );

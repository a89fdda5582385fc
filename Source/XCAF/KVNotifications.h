// The names of all notifications of the suite, and what may pass under each: KVNotifications.def has the table.
// XNotificationCenter keeps to it, in both directions. Any thread.
#pragma once

#include "CFMethods/PropertyList.h"
#include "CFMethods/Text.h"

#include <cstdint>
#include <optional>
#include <span>

namespace KVNotifications
{
// A constant for each: kLoadMacroFiles is u"KV_LoadMacroFiles".
#define KV_NOTIFICATION( inWord, inDirection, inTrust, inForm ) inline constexpr TextView k##inWord = u"KV_" #inWord;
#include "XCAF/KVNotifications.def"
#undef KV_NOTIFICATION

enum class Direction : std::uint8_t { kOut, kIn, kBoth, kInternal };
enum class Trust : std::uint8_t { kAnybody, kEngineOnly };
enum class Form : std::uint8_t { kFlat, kNested };

struct Row
{
    TextView mName;
    Direction mDirection;
    Trust mTrust;
    Form mForm;
};

/// By name.
[[nodiscard]] std::span<const Row> AllNotifications();
/// The row of a name, or null. A name without one is trusted to nobody in particular and has a flat payload.
[[nodiscard]] const Row* Find( TextView inName );

/// Is it posted to the engine alone, and taken from it alone?
[[nodiscard]] bool IsEngineOnly( TextView inName );

/// What all values of a payload together may take, and how deeply they may nest.
inline constexpr std::size_t kMaxPayloadBytes = std::size_t( 16 ) << 20;
inline constexpr std::size_t kMaxPayloadDepth = 1000;

/// Absent when the payload, or null for none, may pass under the name; else why not, as a clause in English.
[[nodiscard]] std::optional<Text> CheckPayload( TextView inName, const CFContainer<XPlistDictionary>& inPayload );
/// The same for something that another process has posted, with regard to who did.
[[nodiscard]] std::optional<Text> CheckReceived(
    TextView inName, const CFContainer<XPlistDictionary>& inPayload, bool inFromEngine );
} // namespace KVNotifications

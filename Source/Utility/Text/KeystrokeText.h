// Keystrokes as people read them: "⌃⌥⇧⌘A". A keystroke is a virtual key code, named as the ANSI layout has its keys,
// and a mask of modifiers. The glyphs stand in the one order in which searches look for them. Any thread.
#pragma once

#include "CFMethods/Text.h"

#include <cstdint>

// The bits of a modifier mask, as files hold them.
inline constexpr std::int32_t kModifierCommand = 256;
inline constexpr std::int32_t kModifierShift = 512;
inline constexpr std::int32_t kModifierOption = 2048;
inline constexpr std::int32_t kModifierControl = 4096;
/// All that a hot key tells apart; other bits (caps lock, left or right) mean nothing to it.
inline constexpr std::int32_t kModifiersMask = kModifierCommand | kModifierShift | kModifierOption | kModifierControl;

/// The key code that stands for no key.
inline constexpr std::int32_t kNoKeyCode = 32767;

/// The glyphs of a mask, in the order control, option, shift, command; "" for none. Other bits don't show.
[[nodiscard]] Text kvr_modifierGlyphs( std::int32_t inModifiers );
/// The name of a key: a character ("A", "5"), a word ("Return", "Keypad 5"), "No Key" for kNoKeyCode, and the number
/// for a code that no keyboard has.
[[nodiscard]] Text kvr_keyName( std::int32_t inKeyCode );
/// The glyphs and the key's name: "⇧⌘A", "⌥Space".
[[nodiscard]] Text kvr_keystrokeText( std::int32_t inKeyCode, std::int32_t inModifiers );

#include "Utility/Text/KeystrokeText.h"

#include "Utility/Text/Localization.h"

#include <algorithm>

namespace
{
enum class Kind : std::uint8_t {
    kCharacter, // stands as it is
    kWord,      // the key of a localised word
    kKeypad     // a character of the numeric keypad
};

struct KeyRow
{
    std::int32_t mKeyCode;
    Kind mKind;
    TextView mText;
};

// The numbers go by place on the keyboard, not by letter; the gaps are codes that no keyboard sends.
constexpr KeyRow kKeys[] = {
    { 0, Kind::kCharacter, u"A" },
    { 1, Kind::kCharacter, u"S" },
    { 2, Kind::kCharacter, u"D" },
    { 3, Kind::kCharacter, u"F" },
    { 4, Kind::kCharacter, u"H" },
    { 5, Kind::kCharacter, u"G" },
    { 6, Kind::kCharacter, u"Z" },
    { 7, Kind::kCharacter, u"X" },
    { 8, Kind::kCharacter, u"C" },
    { 9, Kind::kCharacter, u"V" },
    { 10, Kind::kCharacter, u"§" },
    { 11, Kind::kCharacter, u"B" },
    { 12, Kind::kCharacter, u"Q" },
    { 13, Kind::kCharacter, u"W" },
    { 14, Kind::kCharacter, u"E" },
    { 15, Kind::kCharacter, u"R" },
    { 16, Kind::kCharacter, u"Y" },
    { 17, Kind::kCharacter, u"T" },
    { 18, Kind::kCharacter, u"1" },
    { 19, Kind::kCharacter, u"2" },
    { 20, Kind::kCharacter, u"3" },
    { 21, Kind::kCharacter, u"4" },
    { 22, Kind::kCharacter, u"6" },
    { 23, Kind::kCharacter, u"5" },
    { 24, Kind::kCharacter, u"=" },
    { 25, Kind::kCharacter, u"9" },
    { 26, Kind::kCharacter, u"7" },
    { 27, Kind::kCharacter, u"-" },
    { 28, Kind::kCharacter, u"8" },
    { 29, Kind::kCharacter, u"0" },
    { 30, Kind::kCharacter, u"]" },
    { 31, Kind::kCharacter, u"O" },
    { 32, Kind::kCharacter, u"U" },
    { 33, Kind::kCharacter, u"[" },
    { 34, Kind::kCharacter, u"I" },
    { 35, Kind::kCharacter, u"P" },
    { 36, Kind::kWord, u"kvKeyNameReturn" },
    { 37, Kind::kCharacter, u"L" },
    { 38, Kind::kCharacter, u"J" },
    { 39, Kind::kCharacter, u"'" },
    { 40, Kind::kCharacter, u"K" },
    { 41, Kind::kCharacter, u";" },
    { 42, Kind::kCharacter, u"\\" },
    { 43, Kind::kCharacter, u"," },
    { 44, Kind::kCharacter, u"/" },
    { 45, Kind::kCharacter, u"N" },
    { 46, Kind::kCharacter, u"M" },
    { 47, Kind::kCharacter, u"." },
    { 48, Kind::kWord, u"kvKeyNameTab" },
    { 49, Kind::kWord, u"kvKeyNameSpace" },
    { 50, Kind::kCharacter, u"`" },
    { 51, Kind::kWord, u"kvKeyNameDelete" },
    { 52, Kind::kWord, u"kvKeyNameEnter" },
    { 53, Kind::kWord, u"kvKeyNameEscape" },
    { 54, Kind::kWord, u"kvKeyNameRightCommand" },
    { 55, Kind::kWord, u"kvKeyNameCommand" },
    { 56, Kind::kWord, u"kvKeyNameShift" },
    { 57, Kind::kWord, u"kvKeyNameCapsLock" },
    { 58, Kind::kWord, u"kvKeyNameOption" },
    { 59, Kind::kWord, u"kvKeyNameControl" },
    { 60, Kind::kWord, u"kvKeyNameRightShift" },
    { 61, Kind::kWord, u"kvKeyNameRightOption" },
    { 62, Kind::kWord, u"kvKeyNameRightControl" },
    { 63, Kind::kWord, u"kvKeyNameFunction" },
    { 64, Kind::kCharacter, u"F17" },
    { 65, Kind::kKeypad, u"." },
    { 67, Kind::kKeypad, u"*" },
    { 69, Kind::kKeypad, u"+" },
    { 71, Kind::kWord, u"kvKeyNameClear" },
    { 72, Kind::kWord, u"kvKeyNameVolumeUp" },
    { 73, Kind::kWord, u"kvKeyNameVolumeDown" },
    { 74, Kind::kWord, u"kvKeyNameMute" },
    { 75, Kind::kKeypad, u"/" },
    { 76, Kind::kWord, u"kvKeyNameEnter" },
    { 78, Kind::kKeypad, u"-" },
    { 79, Kind::kCharacter, u"F18" },
    { 80, Kind::kCharacter, u"F19" },
    { 81, Kind::kKeypad, u"=" },
    { 82, Kind::kKeypad, u"0" },
    { 83, Kind::kKeypad, u"1" },
    { 84, Kind::kKeypad, u"2" },
    { 85, Kind::kKeypad, u"3" },
    { 86, Kind::kKeypad, u"4" },
    { 87, Kind::kKeypad, u"5" },
    { 88, Kind::kKeypad, u"6" },
    { 89, Kind::kKeypad, u"7" },
    { 90, Kind::kCharacter, u"F20" },
    { 91, Kind::kKeypad, u"8" },
    { 92, Kind::kKeypad, u"9" },
    { 93, Kind::kCharacter, u"¥" },
    { 94, Kind::kCharacter, u"_" },
    { 95, Kind::kKeypad, u"," },
    { 96, Kind::kCharacter, u"F5" },
    { 97, Kind::kCharacter, u"F6" },
    { 98, Kind::kCharacter, u"F7" },
    { 99, Kind::kCharacter, u"F3" },
    { 100, Kind::kCharacter, u"F8" },
    { 101, Kind::kCharacter, u"F9" },
    { 102, Kind::kWord, u"kvKeyNameEisu" },
    { 103, Kind::kCharacter, u"F11" },
    { 104, Kind::kWord, u"kvKeyNameKana" },
    { 105, Kind::kCharacter, u"F13" },
    { 106, Kind::kCharacter, u"F16" },
    { 107, Kind::kCharacter, u"F14" },
    { 109, Kind::kCharacter, u"F10" },
    { 110, Kind::kWord, u"kvKeyNameMenu" },
    { 111, Kind::kCharacter, u"F12" },
    { 113, Kind::kCharacter, u"F15" },
    { 114, Kind::kWord, u"kvKeyNameHelp" },
    { 115, Kind::kWord, u"kvKeyNameHome" },
    { 116, Kind::kWord, u"kvKeyNamePageUp" },
    { 117, Kind::kWord, u"kvKeyNameForwardDelete" },
    { 118, Kind::kCharacter, u"F4" },
    { 119, Kind::kWord, u"kvKeyNameEnd" },
    { 120, Kind::kCharacter, u"F2" },
    { 121, Kind::kWord, u"kvKeyNamePageDown" },
    { 122, Kind::kCharacter, u"F1" },
    { 123, Kind::kWord, u"kvKeyNameLeftArrow" },
    { 124, Kind::kWord, u"kvKeyNameRightArrow" },
    { 125, Kind::kWord, u"kvKeyNameDownArrow" },
    { 126, Kind::kWord, u"kvKeyNameUpArrow" },
};
static_assert( std::ranges::is_sorted( kKeys, std::ranges::less_equal(), &KeyRow::mKeyCode ), "by key code" );

constexpr struct
{
    std::int32_t mBit;
    char16_t mGlyph;
} kGlyphs[] = {
    { kModifierControl, u'\u2303' },
    { kModifierOption, u'\u2325' },
    { kModifierShift, u'\u21E7' },
    { kModifierCommand, u'\u2318' },
};
} // namespace

Text kvr_modifierGlyphs( std::int32_t inModifiers )
{
    Text glyphs;
    for ( const auto& [bit, glyph] : kGlyphs )
    {
        if ( inModifiers & bit )
            glyphs += glyph;
    }
    return glyphs;
}

Text kvr_keyName( std::int32_t inKeyCode )
{
    if ( inKeyCode == kNoKeyCode )
        return kvr_localized( u"kvKeyNameNone" );
    const auto* const row = std::ranges::lower_bound( kKeys, inKeyCode, {}, &KeyRow::mKeyCode );
    if ( row == std::end( kKeys ) or row->mKeyCode != inKeyCode )
        return kvr_localizedFormat( u"kvKeyNameUnknownFormat", inKeyCode );
    switch ( row->mKind )
    {
    case Kind::kWord:
        return kvr_localized( row->mText );
    case Kind::kKeypad:
        return kvr_localizedFormat( u"kvKeyNameKeypadFormat", row->mText );
    case Kind::kCharacter:
        break;
    }
    return Text( row->mText );
}

Text kvr_keystrokeText( std::int32_t inKeyCode, std::int32_t inModifiers )
{
    return kvr_modifierGlyphs( inModifiers ) + kvr_keyName( inKeyCode );
}

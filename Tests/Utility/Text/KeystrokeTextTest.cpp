#include "Utility/Text/KeystrokeText.h"

#include <gtest/gtest.h>
#include <set>

TEST( KeystrokeText, GlyphsStandInTheOrderThatSearchesLookFor )
{
    constexpr struct
    {
        std::int32_t mModifiers;
        TextView mGlyphs;
    } kCases[] = { { 0, u"" }, { 256, u"⌘" }, { 512, u"⇧" }, { 2048, u"⌥" }, { 4096, u"⌃" }, { 6912, u"⌃⌥⇧⌘" },
        { 256 + 4096, u"⌃⌘" }, { 1024, u"" }, { -1, u"⌃⌥⇧⌘" } };
    for ( const auto& [modifiers, glyphs] : kCases )
        EXPECT_EQ( kvr_modifierGlyphs( modifiers ), glyphs ) << modifiers;
}

TEST( KeystrokeText, KeysAreNamedByTheirPlaceOnTheKeyboard )
{
    constexpr struct
    {
        std::int32_t mKeyCode;
        TextView mName;
    } kCases[] = { { 0, u"A" }, { 6, u"Z" }, { 22, u"6" }, { 23, u"5" }, { 27, u"-" }, { 42, u"\\" }, { 36, u"Return" },
        { 49, u"Space" }, { 51, u"Delete" }, { 117, u"Forward Delete" }, { 53, u"Escape" }, { 76, u"Enter" },
        { 82, u"Keypad 0" }, { 92, u"Keypad 9" }, { 122, u"F1" }, { 111, u"F12" }, { 126, u"Up Arrow" },
        { 32767, u"No Key" }, { 68, u"Key 68" }, { -1, u"Key -1" }, { 40000, u"Key 40000" } };
    for ( const auto& [code, name] : kCases )
        EXPECT_EQ( kvr_keyName( code ), name ) << code;
    EXPECT_EQ( kvr_keystrokeText( 0, 256 + 512 ), u"⇧⌘A" );
}

// A slip in the table would most likely name two places alike.
TEST( KeystrokeText, NoTwoKeysOfAKeyboardHaveOneNameButTheTwoEnters )
{
    std::multiset<Text> names;
    for ( std::int32_t code = 0; code < 128; ++code )
        names.insert( kvr_keyName( code ) );
    for ( const Text& name : names )
        EXPECT_EQ( names.count( name ), name == u"Enter" ? 2u : 1u ) << UTF8FromText( name );
}

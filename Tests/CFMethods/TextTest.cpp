#include "CFMethods/Text.h"

#include <gtest/gtest.h>
#include <random>
#include <unicode/unistr.h>

namespace
{
// ICU is the judge: it replaces ill-formed sequences by the same rule.
Text ByICU( std::string_view inUTF8 )
{
    const auto text = icu::UnicodeString::fromUTF8( { inUTF8.data(), int( inUTF8.size() ) } );
    return Text( reinterpret_cast<const char16_t*>( text.getBuffer() ), std::size_t( text.length() ) );
}
} // namespace

TEST( Text, RandomBytesDecodeAsICUDecodesThem )
{
    std::mt19937 random( 1 );
    const char kLikely[] = "\xED\xA0\x80\xF0\x9F\x98\x80\xC3\xA9\xE2\x82\xAC\xF4\x90 a";
    for ( int round = 0; round < 20000; ++round )
    {
        std::string bytes;
        for ( unsigned i = 0, n = random() % 12; i < n; ++i )
            bytes += random() % 2 ? char( random() ) : kLikely[random() % ( sizeof( kLikely ) - 1 )];
        const Text expected = ByICU( bytes );
        EXPECT_EQ( TextFromUTF8( bytes ), expected );
        const auto strict = TextFromStrictUTF8( bytes );
        EXPECT_EQ( strict.has_value(), UTF8FromText( expected ) == bytes );
    }
}

TEST( Text, EveryScalarSurvivesUTF8AndLoneSurrogatesAreFound )
{
    for ( char32_t scalar = 0; scalar < 0x110000; ++scalar )
    {
        if ( scalar >= 0xD800 and scalar < 0xE000 )
            continue;
        Text text;
        if ( scalar < 0x10000 )
            text = char16_t( scalar );
        else
            text = { char16_t( 0xD7C0 + ( scalar >> 10 ) ), char16_t( 0xDC00 + ( scalar & 0x3FF ) ) };
        ASSERT_EQ( TextFromStrictUTF8( UTF8FromText( text ) ), text ) << std::hex << std::uint32_t( scalar );
        ASSERT_FALSE( FindLoneSurrogate( text ) );
    }
    EXPECT_EQ( FindLoneSurrogate( Text{ u'a', char16_t( 0xD800 ), u'b' } ), 1u );
    EXPECT_EQ( FindLoneSurrogate( Text{ char16_t( 0xDC00 ) } ), 0u );
    EXPECT_EQ( UTF8FromText( Text{ char16_t( 0xDC00 ) } ), "\xEF\xBF\xBD" );
}

#include "Utility/Search/TypeAhead.h"

#include "Utility/Work/Clock.h"

#include <gtest/gtest.h>
#include <vector>

namespace
{
struct Typing : testing::Test
{
    std::string Best( std::vector<Text> inItems ) const
    {
        const auto best = mTypeAhead.bestMatch( inItems.size(), [&]( std::size_t index ) { return inItems[index]; } );
        return best ? UTF8FromText( inItems[*best] ) : "none";
    }
    void Type( TextView inText )
    {
        for ( const char16_t unit : inText )
            mTypeAhead.addCharacterIgnoringModifiers( TextView( &unit, 1 ) );
    }

    XManualClock mClock;
    XClock::Substitute mClockInUse{ mClock };
    TypeAhead mTypeAhead{ 1.0 };
};
} // namespace

TEST_F( Typing, CharactersAreCollectedWhileTheyComeQuickly )
{
    Type( u"  a" );
    mClock.Advance( 1.0 );
    Type( u"b c" );
    EXPECT_EQ( mTypeAhead.GetText(), u"ab c" );
    mClock.Advance( 1.1 );
    Type( u"d" );
    EXPECT_EQ( mTypeAhead.GetText(), u"d" );
    for ( const char16_t key : { 0x1B, 0x7F, 0xF700, 0xF8FF } )
    {
        Type( u"e" );
        Type( Text( 1, key ) );
        EXPECT_EQ( mTypeAhead.GetText(), u"" ) << int( key );
    }
    Type( u"f" );
    mTypeAhead.checkClearModifiers( 512 ); // Shift is typing
    EXPECT_EQ( mTypeAhead.GetText(), u"f" );
    mTypeAhead.checkClearModifiers( TypeAhead::kCommand | 512 );
    EXPECT_EQ( mTypeAhead.GetText(), u"" );
}

TEST_F( Typing, WithoutABlankTheOrderDecides )
{
    EXPECT_EQ( Best( {} ), "none" );
    EXPECT_EQ( Best( { u"b", u"A", u"c" } ), "A" );
    Type( u"m" );
    EXPECT_EQ( Best( { u"zoo", u"Moon", u"map", u"apple" } ), "map" );
    EXPECT_EQ( Best( { u"zoo", u"nut", u"apple" } ), "nut" );
    EXPECT_EQ( Best( { u"apple", u"Box", u"box 0" } ), "box 0" ) << "all come before it, so the last";
}

TEST_F( Typing, ABlankStandsForTheRestOfAWordOrHump )
{
    const struct
    {
        const char16_t* mTyped;
        std::vector<Text> mItems;
        const char* mBest;
    } kCases[] = {
        { u"ab c", { u"About Card", u"Above", u"Zebra" }, "About Card" },
        { u"ab c", { u"abZ", u"aboutCard" }, "aboutCard" },
        { u"ab c", { u"About Card", u"Ab Cz" }, "Ab Cz" }, // the smallest of those that match
        { u"ab c", { u"abacus", u"abd" }, "abacus" },      // a hump begins with a capital, so only the order is left
        { u"a\\E c", { u"a\\Eb card", u"zz" }, "a\\Eb card" },
        { u"a( c", { u"a(b card", u"zz" }, "a(b card" },
    };
    for ( const auto& [typed, items, best] : kCases )
    {
        mTypeAhead.Clear();
        Type( typed );
        EXPECT_EQ( Best( items ), best ) << UTF8FromText( typed );
    }
}

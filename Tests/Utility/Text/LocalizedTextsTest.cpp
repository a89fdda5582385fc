#include "Utility/Text/ArrowString.h"
#include "Utility/Text/DisplayStrings.h"
#include "Utility/Text/Localization.h"

#include <cmath>
#include <fstream>
#include <gtest/gtest.h>
#include <thread>

TEST( Localization, TextsComeByKeyAndAMissingKeyShowsItself )
{
    EXPECT_EQ( kvr_localized( u"kvUntitledMacro" ), u"Untitled Macro" );
    EXPECT_EQ( kvr_localizedFormat( u"kvUntitledMacroGroupFormat", 2 ), u"Untitled Macro Group 2" );
    EXPECT_TRUE( kvr_hasLocalized( u"kvUntitledMacro" ) );
    EXPECT_FALSE( kvr_hasLocalized( u"kvNoSuchKey" ) );
    const Text& missing = kvr_localized( u"kvNoSuchKey" );
    EXPECT_EQ( missing, u"kvNoSuchKey" );
    // References stay good while others are added, from any thread.
    std::vector<std::thread> threads;
    for ( int i = 0; i < 4; ++i )
        threads.emplace_back( [i] {
            for ( int j = 0; j < 100; ++j )
                static_cast<void>( kvr_localizedFormat( u"kvNoSuchKey%d", i * j ) );
            EXPECT_EQ( kvr_localized( u"kvAnotherMissingKey" ), u"kvAnotherMissingKey" );
        } );
    for ( std::thread& thread : threads )
        thread.join();
    EXPECT_EQ( &kvr_localized( u"kvNoSuchKey" ), &missing );
}

TEST( Localization, EachArrowHasACharacterOfItsOwn )
{
    using enum ArrowString::Style;
    std::vector<Text> seen;
    for ( const auto style : { Width, Height, Right, RightToCenter, Down, DownToCenter, Left, Up } )
    {
        const Text& arrow = ArrowString::String( style );
        EXPECT_EQ( arrow.size(), 1u ) << UTF8FromText( arrow );
        EXPECT_EQ( std::count( seen.begin(), seen.end(), arrow ), 0 );
        seen.push_back( arrow );
    }
}

TEST( DisplayStrings, TimesShowTheirLargestUnits )
{
    constexpr struct
    {
        double mSeconds;
        const char16_t *mTime, *mSaved;
    } kCases[] = {
        { 0, u"0 seconds", u"0 seconds" },
        { -5, u"0 seconds", u"0 seconds" },
        { 1, u"1 second", u"1 second" },
        { 59.6, u"1 minute", u"59 seconds" },
        { 65, u"1 minute 5 seconds", u"1 minute" },
        { 7380, u"2 hours 3 minutes", u"2 hours" },
        { 7205, u"2 hours", u"2 hours" },
        { 90000, u"1 day 1 hour", u"1 day" },
        { 400 * 86400.0, u"1 year 35 days", u"1 year" },
        { 2e9, u"63 years 153 days", u"63 years" },
        { HUGE_VAL, u"31709791 years 359 days", u"31709791 years" },
    };
    for ( const auto& [seconds, time, saved] : kCases )
    {
        EXPECT_EQ( stringWithTimeInSeconds( seconds ), time ) << seconds;
        EXPECT_EQ( stringWithTimeSaved( seconds ), saved ) << seconds;
    }
    EXPECT_EQ( stringWithTimeInSeconds( std::nan( "" ) ), u"0 seconds" );
}

TEST( DisplayStrings, RatingsCountTwentyForAStar )
{
    EXPECT_EQ( stringWithRatingStars( 60, true ), u"\u2605\u2605\u2605\u2606\u2606" );
    EXPECT_EQ( stringWithRatingStars( 60, false ), u"\u2605\u2605\u2605" );
    EXPECT_EQ( stringWithRatingStars( 50, true ), u"\u2605\u2605\u00BD\u2606\u2606" );
    EXPECT_EQ( stringWithRatingStars( 0, false ), u"" );
    EXPECT_EQ( stringWithRatingStars( 1000, true ), u"\u2605\u2605\u2605\u2605\u2605" );
    EXPECT_EQ( stringWithRatingStars( std::nan( "" ), true ), u"\u2606\u2606\u2606\u2606\u2606" );
}

#include "Macros/RevisionDates.h"

#include "Utility/Text/Localization.h"
#include "Utility/Work/Clock.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <gtest/gtest.h>

namespace
{
// Local time of a zone that needs no data files.
class Zone
{
public:
    explicit Zone( const char* inZone )
    {
        if ( const char* const old = std::getenv( "TZ" ) )
            mOld = old;
        Set( inZone );
    }
    ~Zone() { Set( mOld.empty() ? nullptr : mOld.c_str() ); }

private:
    static void Set( const char* inZone )
    {
        inZone ? ::setenv( "TZ", inZone, 1 ) : ::unsetenv( "TZ" );
        ::tzset();
    }
    std::string mOld;
};
} // namespace

TEST( RevisionDates, TodayIsADayOfTheLocalClock )
{
    // 730944000 is 2024-03-01 00:00:00 UTC.
    const struct
    {
        const char* mZone;
        double mNow;
        const char16_t* mDay;
    } kCases[] = {
        { "UTC0", 730944000, u"2024_03_01" },
        { "UTC0", 730944000 - 0.5, u"2024_02_29" },
        { "UTC0", 730944000 + 86399.9, u"2024_03_01" },
        { "AAA-2", 730944000 - 7200, u"2024_03_01" },
        { "BBB5", 730944000, u"2024_02_29" },
        { "UTC0", -0.25, u"2000_12_31" },
    };
    for ( const auto& [zone, now, day] : kCases )
    {
        const Zone local( zone );
        const XManualClock clock( now );
        const XClock::Substitute use( clock );
        EXPECT_EQ( RevisionDates::GetCurrentSaveDate(), day ) << zone << now;
    }
}

TEST( RevisionDates, ReservedDatesSortAtTheEndsInTheirOrder )
{
    const std::vector<Text> dates = { RevisionDates::kNoSaveDate, RevisionDates::BeforeCurrentVersionSaveDate(),
        u"2024_03_01", RevisionDates::GetThisLaunchSaveDate(), RevisionDates::GetBeforeRevertSaveDate(),
        RevisionDates::GetBeforeSharingSyncSaveDate() };
    EXPECT_TRUE( std::ranges::is_sorted( dates ) );
    EXPECT_EQ( RevisionDates::GetBeforeSharingSyncSaveDate(), u"9999_01_03" );
    EXPECT_TRUE( RevisionDates::IsBeforeVersionSaveDate( u"0000_01_02" ) );
    EXPECT_FALSE( RevisionDates::IsBeforeVersionSaveDate( u"2000_01_02" ) );

    const XManualClock clock( 730944000 + 43200 );
    const XClock::Substitute use( clock );
    const Zone utc( "UTC0" );
    std::vector<Text> left = dates;
    left.push_back( u"2024_02_29" );
    RevisionDates::RemoveAnyUncullableRevisions( left );
    EXPECT_EQ( left, std::vector<Text>{ u"2024_02_29" } );
}

TEST( RevisionDates, ADayShowsAsALongDateAndAReservedOneByItsWords )
{
    const Text shown = RevisionDates::DisplayNameForRevision( u"2024_03_01" );
    EXPECT_NE( shown.find( u"2024" ), Text::npos );
    EXPECT_EQ( shown.find( u'_' ), Text::npos );
    for ( const TextView none : { u"2024_13_45", u"2023_02_29", u"2024_00_10", u"2024_04_31" } )
        EXPECT_EQ( RevisionDates::DisplayNameForRevision( none ), u"" ) << UTF8FromText( none );
    EXPECT_NE( RevisionDates::DisplayNameForRevision( u"2024_02_29" ), u"" );
    EXPECT_EQ( RevisionDates::DisplayNameForRevision( u"0000_01_02" ), kvr_localized( u"kRevisions0000_01_02" ) );
    EXPECT_EQ( RevisionDates::DisplayNameForRevision( u"9999_01_03" ), kvr_localized( u"kRevisions9999_01_03" ) );
}

#include "App/DaemonLoginStatus.h"

#include "Tests/App/EngineWorld.h"

namespace
{
namespace fs = std::filesystem;

struct LoginStatus : EngineWorld
{
    struct Listener final : DaemonLoginStatus::Delegate
    {
        void daemonLoginStatusChanged() override { ++mChanges; }
        int mChanges = 0;
    };

    /// An item for each: 'g' our engine, 'o' another engine, 'x' something else.
    void Put( const std::string& inItems )
    {
        mLoginItems.mItems.clear();
        for ( const char item : inItems )
        {
            mLoginItems.Put( item == 'x' ? u"Mail"
                    : item == 'g'        ? u"Korvalen Engine"
                                         : u"Old Korvalen Engine 2",
                item == 'g' ? mFolder / "engine" : fs::path( "/elsewhere" ) );
        }
    }
    [[nodiscard]] std::string Items() const
    {
        std::string items;
        for ( const XLoginItem& item : mLoginItems.mItems )
            items += item.mTarget == mFolder / "engine"               ? 'g'
                : item.mName.find( u"Korvalen Engine" ) == Text::npos ? 'x'
                                                                      : 'o';
        return items;
    }
};
} // namespace

TEST_F( LoginStatus, ExactlyOneItemForOurEngineIsRight )
{
    const struct
    {
        const char *mItems, *mOn, *mOff, *mEnsured;
        bool mStatus;
    } kCases[] = {
        { "", "g", "", "", false },
        { "x", "xg", "x", "x", false },
        { "g", "g", "", "g", true },
        { "xg", "xg", "x", "xg", true },
        { "o", "g", "", "g", false },
        { "og", "g", "", "g", false },
        { "gxg", "xg", "x", "xg", false },
        { "oxo", "xg", "x", "xg", false },
    };
    for ( const auto& [items, on, off, ensured, status] : kCases )
    {
        Put( items );
        EXPECT_EQ( DaemonLoginStatus::GetDaemonLoginStatus(), status ) << items;
        (void)mWorld.mLog.Take();
        DaemonLoginStatus::EnsureCorrectDaemonLoginStatus();
        EXPECT_EQ( Items(), ensured ) << items;
        EXPECT_EQ( mWorld.mLog.CountContaining( "Corrected Korvalen Engine Login Item entry after any" ),
            std::string( items ) != ensured );
        Put( items );
        DaemonLoginStatus::SetDaemonLoginStatus( true );
        EXPECT_EQ( Items(), on ) << items;
        Put( items );
        DaemonLoginStatus::SetDaemonLoginStatus( false );
        EXPECT_EQ( Items(), off ) << items;
    }
}

TEST_F( LoginStatus, WhatIsDoneIsLogged )
{
    Put( "og" );
    DaemonLoginStatus::EnsureCorrectDaemonLoginStatus();
    const std::string engine = ( mFolder / "engine" ).native();
    EXPECT_EQ( mWorld.mLog.Take(),
        ( std::vector<std::string>{ "DaemonLoginStatus: Count gives any 2 good 1",
            "DaemonLoginStatus: Delete DaemonLoginStatus entry for /elsewhere",
            "DaemonLoginStatus: Delete DaemonLoginStatus entry for " + engine,
            "DaemonLoginStatus: Add login item " + engine,
            "Corrected Korvalen Engine Login Item entry after any 2 good 1" } ) );
}

TEST_F( LoginStatus, WithoutAnEngineOfOursTheUsersItemsStay )
{
    mApplications.mEngine.reset();
    Put( "oo" );
    DaemonLoginStatus::EnsureCorrectDaemonLoginStatus();
    DaemonLoginStatus::SetDaemonLoginStatus( true );
    EXPECT_EQ( Items(), "oo" );
    DaemonLoginStatus::SetDaemonLoginStatus( false );
    EXPECT_EQ( Items(), "" );
}

TEST_F( LoginStatus, AnItemMayLeadToTheEngineByAnotherPath )
{
    fs::create_symlink( mFolder / "engine", mFolder / "link" );
    mLoginItems.Put( u"Korvalen Engine", mFolder / "link" );
    EXPECT_TRUE( DaemonLoginStatus::GetDaemonLoginStatus() );
}

TEST_F( LoginStatus, TheListIsObservedWhileSomebodyIsInterested )
{
    Listener first, second;
    EXPECT_FALSE( mLoginItems.mObserver );
    DaemonLoginStatus::StartGeneralPreferences( first );
    DaemonLoginStatus::StartGeneralPreferences( second );
    mLoginItems.mObserver();
    DaemonLoginStatus::StopGeneralPreferences();
    mLoginItems.mObserver();
    EXPECT_EQ( first.mChanges, 2 );
    EXPECT_EQ( second.mChanges, 1 );
    DaemonLoginStatus::StopGeneralPreferences();
    EXPECT_FALSE( mLoginItems.mObserver );
    EXPECT_TRUE( mWorld.mLog.Take().empty() );
    DaemonLoginStatus::StopGeneralPreferences(); // one too many
    EXPECT_EQ( mWorld.mLog.CountAssertions( "gInterestedParties > 0" ), 1u );
}

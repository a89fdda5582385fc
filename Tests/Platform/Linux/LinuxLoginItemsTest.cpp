#include "Platform/Linux/LinuxLoginItems.h"

#include "Platform/Linux/DesktopEntry.h"
#include "Platform/Linux/GLibMainLoop.h"
#include "Tests/Support/ScratchFolder.h"

#include <gtest/gtest.h>

namespace
{
class LoginItems : public testing::Test
{
protected:
    std::vector<std::pair<std::string, std::string>> NamesAndTargets() const
    {
        std::vector<std::pair<std::string, std::string>> result;
        for ( const XLoginItem& item : mItems.GetLoginItems() )
            result.emplace_back( UTF8FromText( item.mName ), item.mTarget.native() );
        return result;
    }

    ScratchFolder mScratch;
    std::filesystem::path mFolder = mScratch / "autostart";
    LinuxLoginItems mItems{ mFolder, XWork::Current() };
};
using List = std::vector<std::pair<std::string, std::string>>;
} // namespace

TEST_F( LoginItems, WhatIsAddedIsListedAndCanBeDeleted )
{
    EXPECT_TRUE( mItems.GetLoginItems().empty() );
    EXPECT_TRUE( mItems.AddLoginItem( u"Korvalen Engine", "/opt/a b/engine" ) );
    EXPECT_TRUE( mItems.AddLoginItem( u"Ärger", "/b" ) );
    EXPECT_EQ( NamesAndTargets(), ( List{ { "Korvalen Engine", "/opt/a b/engine" }, { "Ärger", "/b" } } ) );
    EXPECT_TRUE( mItems.DeleteLoginItem( mItems.GetLoginItems().front() ) );
    EXPECT_EQ( NamesAndTargets(), ( List{ { "Ärger", "/b" } } ) );
}

TEST_F( LoginItems, TwoOfOneNameStandBesideEachOther )
{
    EXPECT_TRUE( mItems.AddLoginItem( u"Engine", "/a" ) );
    EXPECT_TRUE( mItems.AddLoginItem( u"Engine", "/b" ) );
    EXPECT_EQ( NamesAndTargets(), ( List{ { "Engine", "/b" }, { "Engine", "/a" } } ) ); // "engine-2" sorts first
}

TEST_F( LoginItems, NothingOutsideTheFolderIsDeletedAndNothingOddIsAdded )
{
    mScratch.Write( "kept.desktop", "x" );
    EXPECT_TRUE( mItems.AddLoginItem( u"Engine", "/a" ) );
    for ( const char16_t* const identifier : { u"../kept.desktop", u"engine", u"", u"missing.desktop", u"." } )
        EXPECT_FALSE( mItems.DeleteLoginItem( { u"Engine", "/a", identifier } ) );
    EXPECT_TRUE( std::filesystem::exists( mScratch / "kept.desktop" ) );
    EXPECT_FALSE( mItems.AddLoginItem( u"Engine", "relative" ) );
    EXPECT_FALSE( mItems.AddLoginItem( u"Engine", "/two\nlines" ) );
    EXPECT_EQ( NamesAndTargets(), ( List{ { "Engine", "/a" } } ) );
}

TEST_F( LoginItems, TheObserverHearsOfAChangeOnTheMainThreadUntilItIsTakenAway )
{
    GLibMainLoop loop;
    int calls = 0;
    mItems.SetObserver( [&] {
        EXPECT_TRUE( XIsMainThread() );
        ++calls;
        loop.Stop();
    } );
    EXPECT_TRUE( mItems.AddLoginItem( u"Engine", "/a" ) );
    loop.Run();
    EXPECT_GE( calls, 1 );
    const int before = calls;
    mItems.SetObserver( {} );
    EXPECT_TRUE( mItems.AddLoginItem( u"Other", "/b" ) );
    for ( int i = 0; i < 10; ++i )
        loop.RunOnce();
    EXPECT_EQ( calls, before );
}

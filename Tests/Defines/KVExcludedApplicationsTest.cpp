#include "Defines/KVExcludedApplications.h"

#include "Defines/KVPreferences.h"
#include "Platform/Platform.h"
#include "Tests/Fakes/FakeProcessNotifier.h"
#include "Tests/Fakes/ManualWorld.h"
#include "Tests/Support/ScratchFolder.h"
#include "XCAF/XNotificationCenter.h"

#include <gtest/gtest.h>

namespace
{
using namespace KVExcludedApplications;

struct ExcludedApplications : testing::Test
{
    ExcludedApplications()
    {
        mPlatform.SetProcessNotifier( mNotifier );
        KVPreferences::UseFolder( mFolder.Path() );
        XNotificationCenter::ListenToOtherProcesses();
    }
    ~ExcludedApplications() override { KVPreferences::UseFolder( {} ); }

    ManualWorld mWorld;
    ScratchFolder mFolder;
    FakeProcessNotifier mNotifier;
    Platform mPlatform;
    Platform::Substitute mInUse{ mPlatform };
};

XApplicationList Applications( std::initializer_list<const char16_t*> inNames )
{
    XApplicationList list;
    for ( const char16_t* const name : inNames )
        list.Append( XApplicationIdentifier( name, {} ) );
    return list;
}
} // namespace

TEST_F( ExcludedApplications, EachListIsKeptInItsSettingAndTheEngineIsTold )
{
    const struct
    {
        const char* mKey;
        XApplicationList ( *mGet )();
        void ( *mSet )( const XApplicationList& );
    } kLists[] = { { "ExcludedApplications", GetAlwaysVisible, SetAlwaysVisible },
        { "ExcludedApplicationsPalette", GetApplicationsPalette, SetApplicationsPalette },
        { "ExcludedClipboardHistoryApplications", GetNoClipboard, SetNoClipboard } };
    for ( const auto& [key, get, set] : kLists )
    {
        EXPECT_TRUE( get().IsEmpty() ) << key;
        const auto list = Applications( { u"Notes", TextFromASCII( key ).c_str() } );
        set( list );
        EXPECT_EQ( get().CompareWithSame( list ), 0 ) << key;
        EXPECT_EQ( KVPreferences::GetPropertyList( { KVPreferences::kEngineDomain, key } ), list.CopyToPropertyList() );
        EXPECT_EQ( mNotifier.mPosts.back().first, u"KV_ExcludedApplicationsChanged" );
    }
    EXPECT_EQ( mNotifier.mPosts.size(), 3u );
}

TEST_F( ExcludedApplications, WhatTheEngineChangesIsReadWhenItSaysSo )
{
    EXPECT_TRUE( GetApplicationsPalette().IsEmpty() );
    int reloads = 0;
    const BlockNotificationObserver observer( XNotificationCenter::Reach::kInternal,
        u"KV_kExcludedApplicationsReloadPreferences", [&]( const auto& ) { ++reloads; } );
    const auto list = Applications( { u"Mail" } );
    KVPreferences::Set( KVPreferences::kExcludedApplicationsPaletteID, list.CopyToPropertyList() );
    EXPECT_TRUE( GetApplicationsPalette().IsEmpty() );
    mNotifier.mReceiver( u"KV_ExcludedApplicationsPaletteChangedByEngine", nullptr, true );
    EXPECT_EQ( reloads, 1 );
    EXPECT_EQ( GetApplicationsPalette().CompareWithSame( list ), 0 );
}

TEST_F( ExcludedApplications, ASettingThatIsNoListReadsAsEmptyAndStays )
{
    KVPreferences::Set( KVPreferences::kExcludedApplicationsID, u"no list" );
    EXPECT_TRUE( GetAlwaysVisible().IsEmpty() );
    EXPECT_EQ( mWorld.mLog.CountContaining( "ExcludedApplications isn't a list of applications" ), 1u );
    EXPECT_EQ( KVPreferences::Get( KVPreferences::kExcludedApplicationsID, u"" ), TextView( u"no list" ) );
}

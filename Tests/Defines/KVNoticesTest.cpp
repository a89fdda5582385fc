#include "Defines/KVNotices.h"

#include "Defines/KVPreferences.h"
#include "Defines/SetAside.h"
#include "Platform/Platform.h"
#include "Tests/Fakes/FakeAlerts.h"
#include "Tests/Fakes/ManualSleep.h"
#include "Tests/Fakes/ManualWorld.h"
#include "Tests/Support/HoldingChild.h"
#include "Tests/Support/ScratchFolder.h"
#include "XCAF/XKernelLock.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace
{
constexpr char kFile[] = "Korvalen Notices.plist";

struct Notices : testing::Test
{
    Notices()
    {
        KVPreferences::UseFolder( mFolder.Path() );
        mPlatform.SetAlerts( mAlerts );
    }
    ~Notices() override { KVPreferences::UseFolder( {} ); }

    static void Post( TextView inIdentifier, TextView inText, const char* inPath = "" )
    {
        KVNotices::Post( { Text( inIdentifier ), u"Title", Text( inText ), inPath } );
    }
    /// The texts that stand, the oldest first.
    [[nodiscard]] static std::string Standing()
    {
        std::string texts;
        for ( const auto& notice : KVNotices::Unanswered() )
            texts += UTF8FromText( notice.mText ) + ";";
        return texts;
    }
    [[nodiscard]] std::size_t CountShown()
    {
        mWorld.mWork.RunAll();
        return mAlerts.mNotifications.size();
    }

    ScratchFolder mFolder;
    ManualWorld mWorld;
    ManualSleep mSleep{ mWorld.mClock };
    FakeAlerts mAlerts;
    Platform mPlatform;
    Platform::Substitute mInUse{ mPlatform };
};
} // namespace

TEST_F( Notices, StandUntilTheyAreAnswered )
{
    Post( u"A", u"1" );
    Post( u"B", u"2", "/a/b" );
    {
        ManualWorld nextRun;
        EXPECT_EQ( Standing(), "1;2;" );
    }
    const auto notices = KVNotices::Unanswered();
    EXPECT_EQ( notices[1].mIdentifier, u"B" );
    EXPECT_EQ( notices[1].mTitle, u"Title" );
    EXPECT_EQ( notices[1].mPath, "/a/b" );
    EXPECT_EQ( notices[1].mTime, mWorld.mClock.Now() );
    EXPECT_TRUE( KVNotices::IsUnanswered( u"A" ) );
    KVNotices::Answer( u"A" );
    EXPECT_FALSE( KVNotices::IsUnanswered( u"A" ) );
    EXPECT_EQ( Standing(), "2;" );
    Post( u"C", u"3" );
    KVNotices::AnswerAll();
    EXPECT_EQ( Standing(), "" );
}

TEST_F( Notices, OneOfEachIdentifierAndPathIsShownAgainOnlyWithAnotherText )
{
    Post( u"A", u"1", "/a" );
    Post( u"A", u"2", "/b" );
    EXPECT_EQ( CountShown(), 2u );
    Post( u"A", u"1", "/a" );
    EXPECT_EQ( CountShown(), 2u );
    EXPECT_EQ( Standing(), "2;1;" );
    Post( u"A", u"3", "/a" );
    EXPECT_EQ( CountShown(), 3u );
    EXPECT_EQ( Standing(), "2;3;" );
}

TEST_F( Notices, TheOldestGoBeyondAHundred )
{
    for ( int i = 0; i <= 100; ++i )
        Post( TextFromUTF8( std::to_string( i ) ), u"x" );
    EXPECT_EQ( KVNotices::Unanswered().size(), 100u );
    EXPECT_FALSE( KVNotices::IsUnanswered( u"0" ) );
    EXPECT_TRUE( KVNotices::IsUnanswered( u"100" ) );
}

TEST_F( Notices, WhatCantBeWrittenStandsInMemoryUntilItCan )
{
    struct FullDisk final : XFileCalls
    {
        std::ptrdiff_t Write( int, std::span<const std::uint8_t> ) override
        {
            errno = ENOSPC;
            return -1;
        }
    };
    Post( u"A", u"1" );
    {
        FullDisk disk;
        const XFileCalls::Substitute inUse( disk );
        Post( u"B", u"2" );
        EXPECT_EQ( Standing(), "1;2;" );
        EXPECT_EQ( CountShown(), 2u );
    }
    {
        ManualWorld nextRun;
        EXPECT_EQ( Standing(), "1;" ) << "it isn't on disk";
    }
    Post( u"C", u"3" );
    ManualWorld nextRun;
    EXPECT_EQ( Standing(), "1;2;3;" );
}

TEST_F( Notices, AFileThatIsntUnderstoodIsSetAsideBeforeItIsReplaced )
{
    mFolder.Write( kFile, "garbage" );
    EXPECT_EQ( Standing(), "" );
    KVNotices::AnswerAll();
    EXPECT_EQ( mFolder.Read( kFile ), "garbage" ) << "nothing to answer";
    Post( u"A", u"1" );
    EXPECT_EQ( Standing(), "1;" );
    const auto aside = SetAside::List( SetAside::Kind::kOther );
    ASSERT_EQ( aside.size(), 1u );
    EXPECT_EQ( aside[0].mSize, 7u );
}

TEST_F( Notices, AnotherProcessThatWritesThemIsWaitedForButNotForEver )
{
    HoldingChild child( [this] {
        XKernelLock lock;
        return lock.TryTake( mFolder / ".Korvalen Notices Lock" ) == XKernelLock::Result::kTaken and
            ( new XKernelLock( std::move( lock ) ) )->IsHeld(); // until it is killed
    } );
    ASSERT_TRUE( child.HasIt() );
    Post( u"A", u"1" );
    EXPECT_EQ( Standing(), "1;" );
    const int tries = std::exchange( mSleep.mCount, 0 );
    EXPECT_GT( tries, 100 );
    mSleep.mMeanwhile = [&] { child.Kill(); };
    Post( u"B", u"2" );
    EXPECT_EQ( mSleep.mCount, 1 );
    EXPECT_EQ( Standing(), "1;2;" );
}

#include "XCAF/XNotificationCenter.h"

#include "Platform/Platform.h"
#include "Tests/Fakes/FakeAlerts.h"
#include "Tests/Fakes/FakeProcessNotifier.h"
#include "Tests/Fakes/ManualWorld.h"

#include <gtest/gtest.h>

namespace
{
using namespace XNotificationCenter;

struct Center : testing::Test
{
    Center()
    {
        mPlatform.SetProcessNotifier( mNotifier );
        mPlatform.SetAlerts( mAlerts );
    }
    Block Note( const char* inName )
    {
        return [this, inName]( const Notification& ) { mHeard += inName; };
    }

    ManualWorld mWorld;
    FakeProcessNotifier mNotifier;
    FakeAlerts mAlerts;
    Platform mPlatform;
    Platform::Substitute mInUse{ mPlatform };
    std::string mHeard;
    int mTarget = 0, mOther = 0;
};
} // namespace

TEST_F( Center, ADistributedNotificationGoesOutOnceAndComesToOurOwnObserversLater )
{
    ListenToOtherProcesses();
    AddCocoaObserver( &mTarget, u"KV_A", Note( "1" ) );
    const BlockNotificationObserver block( Reach::kDistributed, u"KV_A", Note( "2" ) );
    const BlockNotificationObserver internal( Reach::kInternal, u"KV_A", Note( "i" ) );
    PostNotification( u"KV_A", nullptr, true );
    EXPECT_EQ( mHeard, "" );
    EXPECT_EQ( mNotifier.mPosts.size(), 1u );
    mWorld.mWork.RunAll();
    EXPECT_EQ( mHeard, "12" );
    mNotifier.mReceiver( u"KV_A", nullptr, false ); // another process
    EXPECT_EQ( mHeard, "1212" );
    EXPECT_EQ( mNotifier.mPosts.size(), 1u );
}

TEST_F( Center, AnInternalNotificationStaysHereAndCarriesItsObject )
{
    const void* object = nullptr;
    const BlockNotificationObserver observer(
        Reach::kInternal, u"Changed", [&]( const Notification& inNotification ) { object = inNotification.mObject; } );
    AddCocoaObserver( &mTarget, u"Changed", Note( "d" ) );
    PostApplicationInternalNotification( u"Changed", &mTarget, nullptr );
    EXPECT_EQ( object, &mTarget );
    mWorld.mWork.RunAll();
    EXPECT_EQ( mHeard, "" );
    EXPECT_TRUE( mNotifier.mPosts.empty() );
}

TEST_F( Center, ASecondRegistrationIsLoggedAndStillMade )
{
    AddCocoaObserver( &mTarget, u"KV_A", Note( "1" ) );
    AddCocoaObserver( &mTarget, u"KV_A", Note( "2" ) );
    AddCocoaObserver( &mOther, u"KV_A", Note( "3" ) );
    AddCocoaObserver( &mOther, u"", Note( "4" ) );
    EXPECT_EQ( mWorld.mLog.CountContaining( "Duplicate AddCocoaObserver for KV_A" ), 1u );
    EXPECT_EQ( mWorld.mLog.CountAssertions( "!IsEmpty( name )" ), 1u );
    PostNotification( u"KV_A", nullptr, true );
    mWorld.mWork.RunAll();
    EXPECT_EQ( mHeard, "123" );
    RemoveCocoaObserver( &mTarget, u"KV_A" );
    RemoveCocoaObserver( &mTarget, u"KV_A" );
    RemoveCocoaObserver( &mOther, u"KV_B" );
    EXPECT_EQ( mWorld.mLog.CountContaining( "No Target for RemoveCocoaObserver for 0x" ), 1u );
    EXPECT_EQ( mWorld.mLog.CountContaining( "Missing Name for RemoveCocoaObserver for KV_B" ), 1u );
    RemoveEveryCocoaObserver( &mOther );
    PostNotification( u"KV_A", nullptr, true );
    mWorld.mWork.RunAll();
    EXPECT_EQ( mHeard, "123" );
}

TEST_F( Center, ObserversMayComeAndGoWhileANotificationIsDelivered )
{
    std::unique_ptr<BlockNotificationObserver> second, late;
    std::unique_ptr<BlockNotificationObserver> first =
        std::make_unique<BlockNotificationObserver>( Reach::kInternal, u"N", [&]( const Notification& ) {
            mHeard += "1";
            second.reset();
            late = std::make_unique<BlockNotificationObserver>( Reach::kInternal, u"N", Note( "L" ) );
            first.reset(); // itself
        } );
    second = std::make_unique<BlockNotificationObserver>( Reach::kInternal, u"N", Note( "2" ) );
    const BlockNotificationObserver third( Reach::kInternal, u"N", Note( "3" ) );
    PostApplicationInternalNotification( u"N", nullptr, nullptr );
    EXPECT_EQ( mHeard, "13" );
    PostApplicationInternalNotification( u"N", nullptr, nullptr );
    EXPECT_EQ( mHeard, "133L" );
}

TEST_F( Center, PostingFromAnotherThreadIsReportedAndDoneOnTheMainOne )
{
    bool wasMain = false;
    const BlockNotificationObserver observer(
        Reach::kInternal, u"N", [&]( const Notification& ) { wasMain = XIsMainThread(); } );
    mWorld.mWork.MakeSerialQueue( u"q" )->Sync( [] {
        PostNotification( u"KV_A", nullptr, true );
        PostApplicationInternalNotification( u"N", nullptr, nullptr );
    } );
    mWorld.mWork.RunAll();
    EXPECT_TRUE( wasMain );
    EXPECT_EQ( mNotifier.mPosts.size(), 1u );
    EXPECT_EQ( mWorld.mLog.CountAssertions( "[NSThread isMainThread]" ), 2u );
    const std::vector<Text>& log = mAlerts.mSystemLog;
    EXPECT_EQ( std::count( log.begin(), log.end(), u"Distributed Notification KV_A sent from non-main thread" ), 1 );
    EXPECT_EQ( std::count( log.begin(), log.end(), u"Notification N sent fromt non-main thread" ), 1 );
}

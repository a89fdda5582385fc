#include "Utility/Work/PerformCoalesced.h"

#include "Tests/Fakes/ManualWorld.h"
#include "Utility/Work/DeferredJobs.h"
#include "Utility/Work/MainLoop.h"
#include "Utility/Work/ThreadedWork.h"
#include "XCAF/XErrorHandler.h"

#include <gtest/gtest.h>
#include <map>
#include <random>
#include <thread>

namespace
{
struct Coalesced : testing::Test
{
    PerformCoalesced::Block Note( const char* inName )
    {
        return [this, inName]( const std::shared_ptr<void>& inTarget ) {
            EXPECT_TRUE( inTarget );
            EXPECT_TRUE( XIsMainThread() );
            mRan += inName;
        };
    }

    ManualWorld mWorld;
    std::shared_ptr<int> mTarget = std::make_shared<int>();
    std::string mRan;
};

struct Jobs : testing::Test
{
    XBlock Note( const char* inName )
    {
        return [this, inName] { mRan += inName; };
    }

    ManualWorld mWorld;
    std::string mRan;
};
} // namespace

TEST_F( Coalesced, ARequestRunsOnceItsKeyHasBeenQuiet )
{
    for ( int i = 0; i < 5; ++i )
    {
        PerformCoalesced::Perform( mTarget, u"save", 1.0, Note( "s" ) );
        mWorld.mWork.Advance( 0.9 );
    }
    EXPECT_EQ( mRan, "" );
    mWorld.mWork.Advance( 0.1 );
    EXPECT_EQ( mRan, "s" );
    mWorld.mWork.Advance( 10 );
    EXPECT_EQ( mRan, "s" );
}

TEST_F( Coalesced, ARepeatWithAShorterDelayBringsItForward )
{
    PerformCoalesced::Perform( mTarget, u"k", 5, Note( "late" ) );
    PerformCoalesced::Perform( mTarget, u"other", 2, Note( "o" ) );
    PerformCoalesced::Perform( mTarget, u"k", 1, Note( "k" ) );
    mWorld.mWork.Advance( 1 );
    EXPECT_EQ( mRan, "k" );
    mWorld.mWork.Advance( 9 );
    EXPECT_EQ( mRan, "ko" );
}

TEST_F( Coalesced, ATargetThatHasGoneNeverRunsAndItsBlockDiesOnTheMainThread )
{
    struct Witness
    {
        ~Witness() { mWasMain = XIsMainThread(); }
        bool& mWasMain;
    };
    bool wasMain = false;
    auto other = std::make_shared<int>();
    PerformCoalesced::Perform( mTarget, u"k", 1,
        [this, witness = std::shared_ptr<Witness>( new Witness{ wasMain } )]( const auto& ) { mRan += "k"; } );
    PerformCoalesced::Perform( other, u"k", 1, Note( "o" ) );
    mTarget.reset();
    mWorld.mWork.Advance( 2 );
    EXPECT_EQ( mRan, "o" );
    EXPECT_TRUE( wasMain );
}

TEST_F( Coalesced, WhatIsDueButHasNotRunCanStillBeCancelledOrPushedBack )
{
    PerformCoalesced::Perform( mTarget, u"a", 1, Note( "a" ) );
    PerformCoalesced::Perform( mTarget, u"b", 1, Note( "b" ) );
    PerformCoalesced::Perform( mTarget, u"c", 1, Note( "c" ) );
    mWorld.mWork.AdvanceToNextWakeUp();
    mWorld.mWork.RunOne(); // the timer's handler: all three are on the main queue now
    ASSERT_EQ( mWorld.mWork.Runnable(), std::vector<Text>{ u"main" } );
    PerformCoalesced::Cancel( mTarget, u"a" );
    PerformCoalesced::Perform( mTarget, u"b", 1, Note( "B" ) );
    mWorld.mWork.RunAll();
    EXPECT_EQ( mRan, "c" );
    mWorld.mWork.Advance( 1 );
    EXPECT_EQ( mRan, "cB" );
}

TEST_F( Coalesced, MisuseIsAnAssertionAndTheRequestIsDropped )
{
    PerformCoalesced::Perform( std::shared_ptr<int>(), u"k", 0, Note( "1" ) );
    PerformCoalesced::Perform( mTarget, u"", 0, Note( "2" ) );
    PerformCoalesced::Perform( mTarget, u"k", 0, {} );
    PerformCoalesced::Perform( mTarget, u"k", -0.1, Note( "3" ) );
    PerformCoalesced::Perform( mTarget, u"k", std::nan( "" ), Note( "4" ) );
    mWorld.mWork.MakeSerialQueue( u"q" )->Sync( [&] { PerformCoalesced::Perform( mTarget, u"k", 0, Note( "5" ) ); } );
    PerformCoalesced::Perform( mTarget, u"last", 1, Note( "6" ) );
    PerformCoalesced::Perform( mTarget, u"due", 0, Note( "7" ) );
    PerformCoalesced::Finish();
    PerformCoalesced::Perform( mTarget, u"k", 0, Note( "8" ) );
    mWorld.mWork.Advance( 10 );
    EXPECT_EQ( mRan, "" );
    const std::pair<const char*, std::size_t> kAssertions[] = { { "weakTarget", 1 }, { "key", 1 }, { "block", 1 },
        { "afterDelay >= 0", 2 }, { "[NSThread isMainThread]", 1 }, { "!gStopped", 1 } };
    for ( const auto& [text, count] : kAssertions )
        EXPECT_EQ( mWorld.mLog.CountAssertions( text ), count ) << text;
}

TEST_F( Coalesced, TheLogNamesTargetsByLabelOrType )
{
    XErrorHandler::ResetForTesting();
    XErrorHandler::SetPreferenceSource( { []( TextView ) { return Text( u"PerformCoalesced" ); }, {} } );
    PerformCoalesced::Perform( { mTarget, u"Window 1" }, u"k", 0.5, Note( "k" ) );
    PerformCoalesced::Perform( mTarget, u"l", 1, Note( "l" ) );
    mWorld.mWork.Advance( 1 );
    XErrorHandler::ResetForTesting();
    for ( const char* line : { "PerformCoalesced::Perform Window 1 key k afterDelay 0.500000",
              "PerformCoalesced::Perform add entry", "PerformCoalesced::Perform int key l afterDelay 1.000000",
              "CoalescedTimer Run block Window 1 key k", "CoalescedTimer Run block int key l" } )
        EXPECT_GE( mWorld.mLog.CountContaining( line ), 1u ) << line;
}

TEST_F( Coalesced, AnObjectCanBeItsOwnTargetAndACopyIsAnother )
{
    struct Window : XCoalescedPerformer
    {};
    auto window = std::make_unique<Window>();
    auto copy = std::make_unique<Window>( *window );
    window->performCoalesced( u"k", 1, [&] { mRan += "w"; } );
    copy->performCoalesced( u"k", 1, [&] { mRan += "c"; } );
    copy->performCoalesced( u"other", 1, [&] { mRan += "o"; } );
    copy->cancelPerformCoalesced( u"other" );
    window.reset();
    mWorld.mWork.Advance( 1 );
    EXPECT_EQ( mRan, "c" );
}

// Against a model that looks at every moment: a key runs exactly when its last request has been quiet for its delay.
TEST( PerformCoalesced, RandomRequestsRunWhenTheSimpleModelSaysSo )
{
    for ( unsigned seed = 0; seed < 300; ++seed )
    {
        std::mt19937 random( seed );
        ManualWorld world;
        const std::shared_ptr<int> targets[] = { std::make_shared<int>(), std::make_shared<int>() };
        std::map<std::pair<int, Text>, int> model; // to the time in eighths of a second
        std::multiset<std::pair<int, std::pair<int, Text>>> expected, ran;
        for ( int now = 0; now < 200; ++now )
        {
            for ( auto entry = model.begin(); entry != model.end(); )
            {
                if ( entry->second > now )
                {
                    ++entry;
                    continue;
                }
                expected.emplace( now, entry->first );
                entry = model.erase( entry );
            }
            const std::pair<int, Text> key( random() % 2, Text( 1, char16_t( u'a' + random() % 3 ) ) );
            const int delay = 1 + int( random() % 16 );
            if ( random() % 4 == 0 )
            {
                model[key] = now + delay;
                PerformCoalesced::Perform( targets[key.first], key.second, delay / 8.0,
                    [&, key]( const auto& ) { ran.emplace( int( world.mClock.MonotonicSeconds() * 8 ), key ); } );
            }
            else if ( random() % 10 == 0 )
            {
                model.erase( key );
                PerformCoalesced::Cancel( targets[key.first], key.second );
            }
            world.mWork.Advance( 0.125 );
        }
        PerformCoalesced::Finish();
        // What was due at the very end ran with the last turn of the clock.
        for ( const auto& [key, time] : model )
        {
            if ( time == 200 )
                expected.emplace( time, key );
        }
        ASSERT_EQ( ran, expected ) << "seed " << seed;
    }
}

TEST( PerformCoalesced, ABurstOnRealQueuesRunsOnce )
{
    LogCapture log;
    XThreadedWork work( XClock::System() );
    XWork::Substitute inUse( work );
    XMainLoop loop;
    const auto target = std::make_shared<int>();
    int ran = 0;
    for ( int i = 0; i < 200; ++i )
        PerformCoalesced::Perform( target, u"k", i == 199 ? 0.002 : 60, [&]( const auto& ) {
            ++ran;
            loop.Stop();
        } );
    loop.Run();
    EXPECT_EQ( ran, 1 );
    PerformCoalesced::Finish();
}

TEST_F( Jobs, AJobThatWasPushedBackIsNotDueAtTheEarlierWakeUp )
{
    DeferredJobs::Add( u"a", 1, Note( "old" ) );
    DeferredJobs::Add( u"b", 2, Note( "b" ) );
    mWorld.mWork.Advance( 0.5 );
    DeferredJobs::Add( u"a", 2, Note( "a" ) );
    mWorld.mWork.Advance( 1 );
    EXPECT_EQ( mRan, "" );
    mWorld.mWork.Advance( 1 );
    EXPECT_EQ( mRan, "ba" );
}

TEST_F( Jobs, AJobMayAddItsOwnKeyAgainAndRunsOffTheMainThread )
{
    std::function<void()> again = [&] {
        EXPECT_FALSE( XIsMainThread() );
        mRan += "x";
        if ( mRan.size() < 3 )
            DeferredJobs::Add( u"k", 1, again );
    };
    DeferredJobs::Add( u"k", 1, again );
    mWorld.mWork.Advance( 10 );
    EXPECT_EQ( mRan, "xxx" );
}

TEST_F( Jobs, FinishRunsEveryJobEarlyInOrderAndNothingComesAfter )
{
    DeferredJobs::Add( u"late", 100, Note( "3" ) );
    DeferredJobs::Add( u"early", 1, Note( "1" ) );
    DeferredJobs::Add( u"throws", 2, [&] {
        mRan += "2";
        throw std::runtime_error( "this job only" );
    } );
    DeferredJobs::Add( u"throws what is no exception", 3, [] { throw 3; } );
    DeferredJobs::Finish();
    EXPECT_EQ( mRan, "123" );
    EXPECT_EQ( mWorld.mLog.CountContaining( "WARNING: Uncaught Exception in throws: this job only" ), 1u );
    EXPECT_EQ( mWorld.mLog.CountContaining( "in throws what is no exception: an exception of unknown type" ), 1u );
    DeferredJobs::Add( u"after", 0, Note( "4" ) );
    mWorld.mWork.Advance( 200 );
    EXPECT_EQ( mRan, "123" );
    EXPECT_EQ( mWorld.mLog.CountAssertions( "!gStopped" ), 1u );
}

#include "Utility/Work/Work.h"

#include "Tests/Fakes/ManualWorld.h"
#include "Utility/Work/MainLoop.h"
#include "Utility/Work/Once.h"
#include "Utility/Work/ThreadedWork.h"

#include <atomic>
#include <gtest/gtest.h>
#include <random>
#include <thread>

namespace
{
class ThreadedQueues : public testing::Test
{
protected:
    LogCapture mLog;
    XThreadedWork mWork{ XClock::System() };
    XWork::Substitute mInUse{ mWork };
};
} // namespace

TEST_F( ThreadedQueues, ASerialQueueRunsEachSendersBlocksInOrderAndOneAtATime )
{
    constexpr int kSenders = 4, kBlocks = 500;
    const auto queue = mWork.MakeSerialQueue( u"order" );
    std::vector<int> last( kSenders, -1 ); // without a lock: the queue is the lock
    int running = 0, faults = 0;
    std::vector<std::thread> senders;
    for ( int sender = 0; sender < kSenders; ++sender )
    {
        senders.emplace_back( [&, sender] {
            for ( int block = 0; block < kBlocks; ++block )
            {
                const auto check = [&, sender, block] {
                    faults += running++ != 0 or last[sender] != block - 1;
                    last[sender] = block;
                    --running;
                };
                block % 10 ? queue->Async( check ) : queue->Sync( check );
            }
        } );
    }
    for ( std::thread& sender : senders )
        sender.join();
    queue->Sync( [&] { EXPECT_EQ( last, std::vector<int>( kSenders, kBlocks - 1 ) ); } );
    EXPECT_EQ( faults, 0 );
}

TEST_F( ThreadedQueues, AConcurrentQueueRunsBlocksThatWaitForEachOther )
{
    const auto queue = mWork.MakeConcurrentQueue( u"concurrent" );
    std::mutex mutex;
    std::condition_variable changed;
    int arrived = 0;
    XGroup group;
    for ( std::size_t i = 0; i < XThreadedWork::kConcurrentWidth; ++i )
    {
        group.Async( *queue, [&] {
            std::unique_lock lock( mutex );
            ++arrived;
            changed.notify_all();
            changed.wait( lock, [&] { return arrived == int( XThreadedWork::kConcurrentWidth ); } );
        } );
    }
    group.Wait();
    EXPECT_EQ( arrived, int( XThreadedWork::kConcurrentWidth ) );
}

TEST_F( ThreadedQueues, WaitingForOneselfIsAnAssertionAndTheBlockRuns )
{
    const auto a = mWork.MakeSerialQueue( u"a" ), b = mWork.MakeSerialQueue( u"b" );
    int ran = 0;
    const auto main = mWork.MainQueue();
    main->Sync( [&] { ++ran; } );                                      // from the main thread
    a->Sync( [&] { a->Sync( [&] { ++ran; } ); } );                     // directly
    a->Sync( [&] { b->Sync( [&] { a->Sync( [&] { ++ran; } ); } ); } ); // by way of another
    a->Sync( [&] { main->Sync( [&] { ran += XIsMainThread(); } ); } ); // the main thread waits for a
    EXPECT_EQ( ran, 4 );
    EXPECT_EQ( mLog.CountAssertions( "not IsCurrent()" ), 4u );
}

TEST_F( ThreadedQueues, AnExceptionReachesTheCallerOfSyncAndLosesNothingElse )
{
    const auto queue = mWork.MakeSerialQueue( u"throws" );
    bool ranAfter = false;
    queue->Async( [] { throw std::runtime_error( "lost" ); } );
    EXPECT_THROW( queue->Sync( [] { throw std::runtime_error( "mine" ); } ), std::runtime_error );
    queue->Sync( [&] { ranAfter = true; } );
    EXPECT_TRUE( ranAfter );
    EXPECT_EQ( mLog.CountContaining( "WARNING: Uncaught Exception in throws: lost" ), 1u );
}

TEST_F( ThreadedQueues, TheMainLoopRunsWhatOtherThreadsSendUntilItIsStopped )
{
    XMainLoop loop;
    const auto queue = mWork.MakeSerialQueue( u"worker" );
    std::vector<int> order;
    queue->Async( [&] {
        mWork.MainQueue()->Async( [&] { order.push_back( XIsMainThread() ? 1 : -1 ); } );
        mWork.MainQueue()->Sync( [&] { order.push_back( 2 ); } );
        mWork.MainQueue()->After( 0.001, [&] {
            order.push_back( 3 );
            loop.Stop();
            mWork.MainQueue()->Async( [&] { order.push_back( 4 ); } );
            loop.Run(); // inside: takes the stop
            loop.Stop();
        } );
    } );
    loop.Run();
    EXPECT_EQ( order, ( std::vector{ 1, 2, 3 } ) );
    EXPECT_EQ( loop.DrainOnce(), 1u );
    EXPECT_EQ( order.back(), 4 );
}

TEST_F( ThreadedQueues, NothingRunsAfterFinishAndNobodyWaitsForEver )
{
    const auto queue = mWork.MakeSerialQueue( u"finishing" );
    std::atomic<bool> hasBegun{ false }, ranLate{ false };
    queue->Async( [&] {
        hasBegun = true;
        mWork.MainQueue()->Sync( [&] { ranLate = true; } ); // nobody drains the main queue
    } );
    queue->Async( [&] { ranLate = true; } );
    queue->After( 3600, [&] { ranLate = true; } );
    while ( not hasBegun )
        std::this_thread::yield();
    mWork.Finish();
    queue->Async( [&] { ranLate = true; } );
    queue->Sync( [&] { ranLate = true; } );
    EXPECT_EQ( mWork.DrainMainQueue(), 0u );
    EXPECT_FALSE( ranLate );
}

TEST_F( ThreadedQueues, AQueueThatEverybodyLetGoOfStillRunsWhatItHas )
{
    XGroup group;
    std::atomic<int> ran{ 0 };
    for ( int i = 0; i < 50; ++i )
        group.Async( *mWork.MakeSerialQueue( u"short-lived" ), [&] { ++ran; } );
    group.Wait();
    EXPECT_EQ( ran, 50 );
}

TEST_F( ThreadedQueues, ATimerThatWasMovedOrCancelledRunsOnceAtMost )
{
    const auto queue = mWork.MakeSerialQueue( u"timer" );
    std::atomic<int> ran{ 0 };
    XGroup group;
    group.Enter();
    XTimer moved( queue, [&] {
        ++ran;
        group.Leave();
    } );
    XTimer cancelled( queue, [&] { ran += 1000; } );
    queue->Sync( [&] {
        const double now = mWork.Clock().MonotonicSeconds();
        cancelled.SetAt( now );
        cancelled.Cancel();
        for ( int i = 0; i < 100; ++i )
            moved.SetAt( now + i * 1e-5 );
    } );
    group.Wait();
    queue->Sync( [] {} );
    EXPECT_EQ( ran, 1 );
}

TEST( ManualWork, WakeUpsComeInTheOrderOfTheirTimesEachAtItsTime )
{
    ManualWorld world;
    const auto queue = world.mWork.MakeSerialQueue( u"q" );
    std::vector<std::pair<int, double>> ran;
    const auto note = [&]( int inWhich ) {
        return [&, inWhich] { ran.emplace_back( inWhich, world.mClock.MonotonicSeconds() ); };
    };
    queue->After( 3, note( 3 ) );
    queue->After( 1, note( 1 ) );
    queue->After( 1, [&] {
        note( 2 )();
        queue->After( 0.5, note( 4 ) ); // on the way, before 3
    } );
    queue->After( std::nan( "" ), note( 0 ) );
    world.mWork.Advance( 2.5 );
    EXPECT_EQ( ran, ( std::vector<std::pair<int, double>>{ { 0, 0 }, { 1, 1 }, { 2, 1 }, { 4, 1.5 } } ) );
    world.mWork.Advance( 0.5 );
    EXPECT_EQ( ran.back(), std::pair( 3, 3.0 ) );
}

TEST( ManualWork, ADeadlockOfTwoQueuesIsFoundAndGoneThrough )
{
    ManualWorld world;
    const auto a = world.mWork.MakeSerialQueue( u"a" ), b = world.mWork.MakeSerialQueue( u"b" );
    std::vector<char> ran;
    a->Async( [&] { b->Sync( [&] { ran.push_back( 'b' ); } ); } );
    b->Async( [&] { a->Sync( [&] { ran.push_back( 'a' ); } ); } );
    world.mWork.RunAll();
    EXPECT_EQ( ran, ( std::vector{ 'a', 'b' } ) );
    EXPECT_EQ( world.mLog.CountAssertions( "not IsCurrent()" ), 1u );
}

TEST( ManualWork, OnlyTheMainQueueIsTheMainThread )
{
    ManualWorld world;
    bool onQueue = true, onMain = false;
    world.mWork.MakeSerialQueue( u"q" )->Sync( [&] { onQueue = XIsMainThread(); } );
    world.mWork.MainQueue()->Async( [&] { onMain = XIsMainThread(); } );
    world.mWork.RunAll();
    EXPECT_FALSE( onQueue );
    EXPECT_TRUE( onMain );
}

TEST( ManualWork, AChooserReachesEveryOrderThatTheQueuesAllow )
{
    std::set<std::string> orders;
    for ( unsigned choices = 0; choices < 64; ++choices )
    {
        ManualWorld world;
        const auto a = world.mWork.MakeSerialQueue( u"a" ), b = world.mWork.MakeSerialQueue( u"b" );
        std::string order;
        for ( const char name : { '1', '2' } )
        {
            a->Async( [&, name] { order += name; } );
            b->Async( [&, name] { order += char( name + 2 ); } );
        }
        unsigned left = choices;
        world.mWork.SetChooser( [&]( std::size_t inCount ) {
            const std::size_t choice = left % inCount;
            left /= unsigned( inCount );
            return choice;
        } );
        world.mWork.RunAll();
        orders.insert( order );
    }
    EXPECT_EQ( orders, ( std::set<std::string>{ "1234", "1324", "1342", "3124", "3142", "3412" } ) );
}

TEST( XOnce, ItRunsOnceForAllThreadsAndACallFromInsideIsAnAssertion )
{
    LogCapture log;
    XOnce once;
    int ran = 0;
    std::vector<std::thread> threads;
    for ( int i = 0; i < 4; ++i )
    {
        threads.emplace_back( [&] {
            once.Do( [&] {
                ++ran;
                once.Do( [&] { ran += 100; } );
            } );
            EXPECT_EQ( ran, 1 );
        } );
    }
    for ( std::thread& thread : threads )
        thread.join();
    EXPECT_EQ( log.CountAssertions( "not IsRunningHere()" ), 1u );
}

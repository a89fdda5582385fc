#include "Utility/Work/AsyncCoallescedWriter.h"

#include "Platform/Platform.h"
#include "Tests/Fakes/FakeProcessNotifier.h"
#include "Tests/Fakes/ManualWorld.h"
#include "Utility/Work/ThreadedWork.h"

#include <gtest/gtest.h>
#include <random>
#include <thread>

namespace
{
struct Notifications
{
    Notifications() { mPlatform.SetProcessNotifier( mNotifier ); }

    [[nodiscard]] std::vector<std::string> Senders( TextView inName ) const
    {
        std::vector<std::string> senders;
        for ( const auto& [name, payload] : mNotifier.mPosts )
        {
            XText from;
            bool isEngine = true;
            EXPECT_EQ( name, inName );
            EXPECT_TRUE( payload->Get( CFSTR( "From" ), from ) and payload->Get( CFSTR( "Engine" ), isEngine ) );
            EXPECT_FALSE( isEngine );
            senders.push_back( from.GetUTF8() );
        }
        return senders;
    }

    FakeProcessNotifier mNotifier;
    Platform mPlatform;
    Platform::Substitute mInUse{ mPlatform };
};

struct WriterTest : testing::Test
{
    auto Write( const char* inName, bool inResult = true )
    {
        return [this, inName, inResult] {
            mRan += inName;
            return inResult;
        };
    }

    ManualWorld mWorld;
    Notifications mNotifications;
    AsyncCoallescedWriter* mWriter = AsyncCoallescedWriter::asyncCoallescedWriter( u"Test" );
    std::string mRan;
};
} // namespace

TEST_F( WriterTest, OfThreeWritesTheNewestRunsAndEachSenderIsToldOnce )
{
    EXPECT_EQ( AsyncCoallescedWriter::asyncCoallescedWriter( u"Test" ), mWriter );
    mWriter->asyncCoallescedWrite( Write( "1" ), u"KV_Test", u"b" );
    mWriter->asyncCoallescedWrite( Write( "2" ), u"KV_Test", u"a" );
    mWriter->asyncCoallescedWrite( Write( "3" ), u"KV_Test", u"c" );
    mWriter->asyncCoallescedWrite( Write( "4" ), u"KV_Test", u"a" );
    EXPECT_EQ( mWorld.mWork.Runnable()[0], u"com.tessarine.korvalen.Test" );
    mWorld.mWork.RunAll();
    EXPECT_EQ( mRan, "4" );
    EXPECT_EQ( mNotifications.Senders( u"KV_Test" ), ( std::vector<std::string>{ "a", "b", "c" } ) );
}

TEST_F( WriterTest, ReadsAndWritesKeepTheirOrder )
{
    mWriter->syncRead( [&] { mRan += "r"; } );
    EXPECT_EQ( mRan, "r" );
    mWriter->asyncCoallescedWrite( Write( "1" ) );
    mWriter->asyncCoallescedWrite( Write( "2" ) );
    mWriter->syncRead( [&] {
        mRan += "R";
        mWriter->asyncCoallescedWrite( Write( "3" ) );
    } );
    EXPECT_EQ( mRan, "r2R" );
    mWorld.mWork.RunAll();
    EXPECT_EQ( mRan, "r2R3" );
}

TEST_F( WriterTest, MisuseIsAnAssertionAndTheRequestIsDropped )
{
    mWriter->asyncCoallescedWrite( Write( "1" ), u"KV_Test", u"a" );
    mWriter->asyncCoallescedWrite( Write( "2" ) );
    mWriter->asyncCoallescedWrite( Write( "3" ), u"KV_Other", u"a" );
    mWorld.mWork.RunAll();
    EXPECT_EQ( mRan, "1" );
    EXPECT_EQ( mWorld.mLog.CountAssertions( "!i_notificationName" ), 1u );
    EXPECT_EQ( mWorld.mLog.CountAssertions( "[i_notificationName isEqualToString:notificationName]" ), 1u );
}

TEST_F( WriterTest, AReadFromInsideAWriteRunsAtOnceAndIsReported )
{
    mWriter->asyncCoallescedWrite( [&] {
        mWriter->asyncCoallescedWrite( Write( "2" ) );
        mWriter->syncRead( [&] { mRan += "r"; } );
        mRan += "1";
        return false;
    } );
    mWorld.mWork.RunAll();
    EXPECT_EQ( mRan, "r12" ); // a newer write never runs inside an older one
    EXPECT_EQ( mWorld.mLog.CountAssertions( "not mQueue->IsCurrent()" ), 1u );
    EXPECT_EQ( mWorld.mLog.CountContaining( "AsyncCoallescedWriter Test write error" ), 1u );
}

TEST_F( WriterTest, AWriteThatThrowsHasFailedAndItsSendersAreToldAllTheSame )
{
    mWriter->asyncCoallescedWrite( Write( "1" ), u"KV_Test", u"a" );
    mWriter->asyncCoallescedWrite( []() -> bool { throw std::runtime_error( "disk" ); }, u"KV_Test", u"b" );
    mWorld.mWork.RunAll();
    EXPECT_EQ( mRan, "" );
    EXPECT_EQ( mNotifications.Senders( u"KV_Test" ), ( std::vector<std::string>{ "a", "b" } ) );
    EXPECT_EQ( mWorld.mLog.CountContaining( "AsyncCoallescedWriter Test write error" ), 1u );
    EXPECT_EQ( mWorld.mLog.CountContaining( "WARNING: Uncaught Exception in com.tessarine.korvalen.Test: disk" ), 1u );
}

TEST_F( WriterTest, TerminatingRunsWhatIsPendingAndThenNothing )
{
    AsyncCoallescedWriter* other = AsyncCoallescedWriter::asyncCoallescedWriter( u"Other" );
    mWriter->asyncCoallescedWrite( Write( "1" ) );
    other->asyncCoallescedWrite( Write( "2" ) );
    AsyncCoallescedWriter::applicationWillTerminate();
    EXPECT_EQ( mRan.size(), 2u );
    mWriter->asyncCoallescedWrite( Write( "3" ) );
    mWriter->syncRead( [&] { mRan += "r"; } );
    EXPECT_EQ( AsyncCoallescedWriter::asyncCoallescedWriter( u"Test" ), nullptr );
    mWorld.mWork.RunAll();
    EXPECT_EQ( mRan.size(), 2u );
    EXPECT_EQ( mWorld.mLog.CountAssertions( "!gTerminating" ), 3u );
}

// Random operations of the main thread and of three queues on two writers, in a random order of execution. The model:
// a read sees the number of the newest write that came before it, and at the end each sender was told
// at least once after its last write was on disk.
TEST( AsyncCoallescedWriter, InAnyInterleavingReadsSeeTheNewestEarlierWrite )
{
    for ( unsigned seed = 0; seed < 2000; ++seed )
    {
        SCOPED_TRACE( "seed " + std::to_string( seed ) );
        std::mt19937 random( seed );
        ManualWorld world;
        Notifications notifications;
        world.mWork.SetChooser( [&]( std::size_t inCount ) { return random() % inCount; } );
        struct Disk
        {
            AsyncCoallescedWriter* mWriter;
            int mAsked = 0, mWritten = 0, mRuns = 0;
        } disks[2] = { { AsyncCoallescedWriter::asyncCoallescedWriter( u"A" ) },
            { AsyncCoallescedWriter::asyncCoallescedWriter( u"B" ) } };
        std::multiset<std::string> asked;

        const auto operate = [&] {
            Disk& disk = disks[random() % 2];
            if ( random() % 3 )
            {
                const int number = ++disk.mAsked;
                const Text sender( 1, char16_t( u'a' + random() % 4 ) );
                asked.insert( UTF8FromText( sender ) );
                disk.mWriter->asyncCoallescedWrite(
                    [&disk, number] {
                        EXPECT_LT( disk.mWritten, number ) << "an older write after a newer one";
                        disk.mWritten = number;
                        ++disk.mRuns;
                        return true;
                    },
                    u"KV_Test", sender );
            }
            else
                disk.mWriter->syncRead( [&disk, expected = disk.mAsked] { EXPECT_EQ( disk.mWritten, expected ); } );
        };
        const std::shared_ptr<XQueue> queues[] = { world.mWork.MainQueue(), world.mWork.MakeSerialQueue( u"x" ),
            world.mWork.MakeSerialQueue( u"y" ), world.mWork.MakeSerialQueue( u"z" ) };
        for ( int i = 0; i < 60; ++i )
        {
            queues[random() % 4]->Async( operate );
            if ( random() % 2 )
                world.mWork.RunOne();
        }
        world.mWork.RunAll();
        for ( const Disk& disk : disks )
        {
            EXPECT_EQ( disk.mWritten, disk.mAsked );
            EXPECT_LE( disk.mRuns, disk.mAsked );
        }
        const auto told = notifications.Senders( u"KV_Test" );
        EXPECT_EQ( std::set( told.begin(), told.end() ), std::set( asked.begin(), asked.end() ) );
        EXPECT_LE( told.size(), asked.size() );
        EXPECT_EQ( world.mLog.Lines().size(), 0u );
        if ( testing::Test::HasFailure() )
            return;
    }
}

TEST( AsyncCoallescedWriter, ManyThreadsWriteAndReadOnRealQueues )
{
    LogCapture log;
    XThreadedWork work( XClock::System() );
    XWork::Substitute inUse( work );
    AsyncCoallescedWriter* writer = AsyncCoallescedWriter::asyncCoallescedWriter( u"Stress" );
    std::atomic<int> asked[4] = {};
    int written[4] = {}; // the writer's queue is the lock
    std::vector<std::thread> threads;
    for ( int thread = 0; thread < 4; ++thread )
    {
        threads.emplace_back( [&, thread] {
            for ( int i = 1; i <= 300; ++i )
            {
                asked[thread] = i;
                writer->asyncCoallescedWrite( [&] {
                    for ( int t = 0; t < 4; ++t )
                        written[t] = asked[t]; // a whole state, as a file is
                    return true;
                } );
                if ( i % 7 == 0 )
                    writer->syncRead( [&] { EXPECT_GE( written[thread], i ); } );
            }
        } );
    }
    for ( std::thread& thread : threads )
        thread.join();
    AsyncCoallescedWriter::applicationWillTerminate();
    for ( const int last : written )
        EXPECT_EQ( last, 300 );
    EXPECT_EQ( log.CountContaining( "Assertion" ), 0u );
}

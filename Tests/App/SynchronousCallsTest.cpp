// No queue waits for itself: each call that waits for a queue, made from each queue, returns; from the queue that it
// waits for it is one assertion, and no hang.
#include "Defines/KVPreferences.h"
#include "Macros/MMacroFileSaving.h"
#include "Macros/MMacroFilesSeen.h"
#include "Macros/MMacroPreferenceFile.h"
#include "Macros/SavedStates.h"
#include "Tests/Fakes/ManualWorld.h"
#include "Tests/Support/ScratchFolder.h"
#include "Utility/Work/AsyncCoallescedWriter.h"
#include "Utility/Work/DeferredJobs.h"
#include "Utility/Work/ThreadedWork.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XErrorHandlerTesting.h"
#include "XCAF/XFileWriting.h"

#include <future>
#include <gtest/gtest.h>

namespace
{
/// Runs a block once, in the middle of the next write to disk: on whatever queue that is made.
class HookedCalls final : public XFileCalls
{
public:
    int FSync( int ) override
    {
        if ( const XBlock hook = std::exchange( mHook, nullptr ) )
            hook();
        return 0;
    }
    XBlock mHook;
};

HookedCalls* gCalls = nullptr;

MMacroFileDataPtr Data( std::string_view inBytes )
{
    return std::make_shared<const MMacroFileData>( XBytes( std::string( inBytes ) ) );
}

AsyncCoallescedWriter& Writer()
{
    return *AsyncCoallescedWriter::asyncCoallescedWriter( u"SynchronousCallsTest" );
}

/// A queue by its name, and how a block gets onto it.
struct Place
{
    const char* mName;
    void ( *mRun )( XBlock inBlock );
};
const Place kPlaces[] = {
    { "main", []( XBlock inBlock ) { XWork::Current().MainQueue()->Async( std::move( inBlock ) ); } },
    { "MacroData", []( XBlock inBlock ) { MMacroFileSaving::Queue().Async( std::move( inBlock ) ); } },
    { "SavedStates",
        []( XBlock inBlock ) {
            gCalls->mHook = std::move( inBlock );
            SavedStates::KeepSoon( Data( "a state" ) );
        } },
    { "writer",
        []( XBlock inBlock ) {
            Writer().asyncCoallescedWrite( [block = std::move( inBlock )] {
                block();
                return true;
            } );
        } },
    { "deferred jobs",
        []( XBlock inBlock ) { DeferredJobs::Add( u"SynchronousCallsTest", 0, std::move( inBlock ) ); } },
};

/// A call that waits, and the queue that it waits for.
struct Call
{
    const char* mName;
    const char* mQueue;
    void ( *mMake )();
};
const Call kCalls[] = {
    { "MMacroPreferenceFile::WaitForQueue", "MacroData", [] { MMacroPreferenceFile::WaitForQueue(); } },
    { "CopyMacroShareFileToRemote", "MacroData",
        [] {
            (void)MMacroPreferenceFile::CopyMacroShareFileToRemote( KVPreferences::FilePath( u"share.kvmacros" ) );
        } },
    { "SavedStates::WaitForQueue", "SavedStates", [] { SavedStates::WaitForQueue(); } },
    { "syncRead", "writer", [] { Writer().syncRead( [] {} ); } },
    { "ContainsSeen", "MMacroFilesSeen", [] { (void)MMacroFilesSeen::ContainsSeen( Data( "seen" ), true ); } },
    { "DeferredJobs::Finish", "deferred jobs", [] { DeferredJobs::Finish(); } },
    { "XErrorHandler::Quitting", "LogToLogFile", [] { XErrorHandler::Quitting(); } },
};

/// The data folder, and the state that calls need. Not the queues, which each case has anew.
class SynchronousCalls : public testing::Test
{
protected:
    SynchronousCalls()
    {
        gCalls = &mCalls;
        KVPreferences::UseFolder( mFolder.Path() );
    }
    ~SynchronousCalls() override
    {
        MMacroPreferenceFile::Reset();
        KVPreferences::UseFolder( {} );
        XErrorHandler::ResetForTesting();
        gCalls = nullptr;
    }

    ScratchFolder mFolder;
    HookedCalls mCalls;
    XFileCalls::Substitute mCallsInUse{ mCalls };
};
} // namespace

TEST_F( SynchronousCalls, FromItsOwnQueueIsAnAssertionAndFromAnyOtherIsNone )
{
    for ( const Place& place : kPlaces )
    {
        for ( const Call& call : kCalls )
        {
            ManualWorld world;
            MMacroPreferenceFile::Reset();
            MMacroPreferenceFile::UndoRedoMacroData( Data( "macros" ) );
            world.mWork.RunAll();
            (void)world.mLog.Take();
            bool isDone = false;
            place.mRun( [&] {
                call.mMake();
                isDone = true;
            } );
            world.mWork.Advance( 1 );
            EXPECT_TRUE( isDone ) << call.mName << " from " << place.mName;
            EXPECT_EQ( world.mLog.CountContaining( "Assertion Failed" ),
                std::string_view( place.mName ) == call.mQueue ? 1u : 0u )
                << call.mName << " from " << place.mName;
            MMacroPreferenceFile::Reset();
        }
    }
}

TEST_F( SynchronousCalls, NoneHangsWithRealThreads )
{
    constexpr std::chrono::seconds kWatchdog( 30 );
    for ( const Place& place : kPlaces )
    {
        for ( const Call& call : kCalls )
        {
            const LogCapture log;
            XThreadedWork work( XClock::Current() );
            const XWork::Substitute inUse( work );
            MMacroPreferenceFile::Reset();
            MMacroPreferenceFile::UndoRedoMacroData( Data( "macros" ) );
            SavedStates::WaitForQueue(); // the hook is for what comes now
            std::promise<void> done;
            place.mRun( [&] {
                call.mMake();
                done.set_value();
            } );
            (void)work.DrainMainQueue();
            if ( done.get_future().wait_for( kWatchdog ) != std::future_status::ready )
            {
                // The queues would wait for ever, and so would their end.
                std::fprintf( stderr, "%s from %s hangs\n", call.mName, place.mName );
                std::abort();
            }
            work.Finish();
            MMacroPreferenceFile::Reset();
        }
    }
}

#include "App/KVApplication.h"

#include "App/KVAppDetails.h"
#include "Tests/App/EngineWorld.h"

namespace
{
namespace fs = std::filesystem;

struct EngineProcesses : EngineWorld
{
    /// An engine of the executable, which has left the details of what it was started from.
    FakeRunningApplication& RunEngine( std::int64_t inNumber, const fs::path& inExecutable )
    {
        const auto bytes = KVAppDetails::ForExecutable( inExecutable ).ToBytes();
        std::ofstream( KVAppDetails::FileFor( inNumber ), std::ios::binary )
            .write( reinterpret_cast<const char*>( bytes.data() ), std::streamsize( bytes.size() ) );
        return mApplications.Run( inNumber, inExecutable );
    }
    bool KillEngines( bool inAlways )
    {
        bool alreadyRunning = not inAlways;
        KVApplication::KillEngines( inAlways, alreadyRunning );
        return alreadyRunning;
    }
    /// Another version in the place of the engine.
    void ReplaceEngine()
    {
        fs::remove( mFolder / "engine" );
        mFolder.Write( "engine", "an engine of another version" );
    }
    std::size_t Logged( const char* inPart ) { return mWorld.mLog.CountContaining( inPart ); }
};
} // namespace

TEST_F( EngineProcesses, TheRightEngineStaysAndEveryOtherGoes )
{
    mFolder.Write( "other", "the engine" );
    FakeRunningApplication& other = RunEngine( 5, mFolder / "other" ); // the same bytes elsewhere
    FakeRunningApplication& right = RunEngine( 7, mFolder / "engine" );
    FakeRunningApplication& mute = mApplications.Run( 9, mFolder / "engine" ); // left no details
    EXPECT_TRUE( KVApplication::isEngineRunning() );
    EXPECT_TRUE( KillEngines( false ) );
    EXPECT_EQ( right.mCalls, "" );
    EXPECT_EQ( other.mCalls, "terminate " );
    EXPECT_EQ( mute.mCalls, "terminate " );
    EXPECT_EQ( Logged( "Engine is already running" ), 1u );
    EXPECT_EQ( Logged( "Quit old engine " ), 2u );

    EXPECT_FALSE( KillEngines( true ) );
    EXPECT_FALSE( right.mIsRunning );
    EXPECT_FALSE( KVApplication::isEngineRunning() );
}

TEST_F( EngineProcesses, AReplacedExecutableMakesTheRunningEngineAnOldOne )
{
    RunEngine( 7, mFolder / "engine" );
    ReplaceEngine();
    EXPECT_FALSE( KillEngines( false ) );
    EXPECT_FALSE( mApplications.mProcesses[0]->mIsRunning );
}

TEST_F( EngineProcesses, AnEngineHasTwoSecondsToQuit )
{
    const struct
    {
        int mTicksToQuit, mTicks;
        const char *mCalls, *mWaited;
    } kCases[] = {
        { 0, 1, "terminate ", nullptr },
        { 498, 499, "terminate ", nullptr },
        { 499, 500, "terminate ", "Waited 0.501000 seconds for engine to quit" },
        { 1998, 1999, "terminate ", "Waited 2.000000 seconds for engine to quit" },
        { 3000, 2000, "terminate forceTerminate ", "Waited 2.001000 seconds for engine to quit" },
    };
    for ( const auto& [ticksToQuit, ticks, calls, waited] : kCases )
    {
        mApplications.mProcesses.clear();
        FakeRunningApplication& engine = mApplications.Run( 7, mFolder / "engine" );
        engine.mTicksToQuit = ticksToQuit;
        mApplications.mTicks = 0;
        (void)mWorld.mLog.Take();
        const double start = mWorld.mClock.MonotonicSeconds();
        EXPECT_FALSE( KillEngines( false ) );
        EXPECT_EQ( mApplications.mTicks, ticks );
        EXPECT_NEAR( mWorld.mClock.MonotonicSeconds() - start, ticks / 1000.0, 1e-6 );
        EXPECT_FALSE( engine.mIsRunning );
        EXPECT_EQ( engine.mCalls, calls );
        EXPECT_EQ( Logged( "Wait for engine to quit " ), std::size_t( ticks ) );
        EXPECT_EQ( Logged( " seconds for engine to quit" ), waited ? 1u : 0u );
        EXPECT_EQ( Logged( waited ? waited : "Waited" ), waited ? 1u : 0u );
    }
}

TEST_F( EngineProcesses, NothingIsSentToAProcessThatBecameAnother )
{
    // The number, or the executable, is another's by the time that it would be ended by force.
    FakeRunningApplication& engine = mApplications.Run( 7, mFolder / "engine" );
    engine.mTicksToQuit = 1'000'000;
    mSleep.mMeanwhile = [&] { engine.mExecutable = "/usr/bin/editor"; };
    EXPECT_FALSE( KillEngines( false ) );
    EXPECT_EQ( engine.mCalls, "terminate " );
    EXPECT_EQ( Logged( "isn't known to be an engine" ), 1u );

    // Another program was put into its place on the disk.
    engine.mExecutable = mFolder / "engine";
    engine.mCalls.clear();
    mSleep.mMeanwhile = [&, isDone = false]() mutable {
        if ( not std::exchange( isDone, true ) )
            ReplaceEngine();
    };
    EXPECT_FALSE( KillEngines( true ) );
    EXPECT_EQ( engine.mCalls, "terminate " );

    // What it runs can't be found out.
    engine.mExecutable.clear();
    engine.mCalls.clear();
    EXPECT_FALSE( KillEngines( true ) );
    EXPECT_EQ( engine.mCalls, "" );
}

TEST_F( EngineProcesses, TheUserMayHaveTheEngineLeftAlone )
{
    KVPreferences::SetBoolean( KVPreferences::kLeaveEngineAloneID, true );
    FakeRunningApplication& engine = mApplications.Run( 7, mFolder / "other" );
    EXPECT_TRUE( KillEngines( false ) ); // nothing is launched, then
    EXPECT_EQ( engine.mCalls, "" );
    EXPECT_EQ( Logged( "Leaving Engine Alone" ), 1u );
    EXPECT_FALSE( KillEngines( true ) );
    EXPECT_EQ( Logged( "Want to leave engine alone, but quitting it anyway" ), 1u );
    EXPECT_FALSE( engine.mIsRunning );
}

TEST_F( EngineProcesses, LaunchingDoesNotWaitAndSaysHowItWent )
{
    KVApplication::LaunchEngine();
    EXPECT_EQ( mApplications.mLaunched, std::vector<fs::path>{ mFolder / "engine" } );
    EXPECT_EQ( mWorld.mLog.Take(), std::vector<std::string>{ "Launch Engine" } );
    mApplications.mLaunchFailure = u"no such file";
    KVApplication::LaunchEngine();
    EXPECT_EQ( mWorld.mLog.Take(), std::vector<std::string>{ "KVApplication::LaunchEngine error no such file" } );
    mApplications.mEngine.reset();
    KVApplication::LaunchEngine();
    EXPECT_EQ( mWorld.mLog.CountAssertions( "enginePath" ), 1u );
    EXPECT_EQ( mApplications.mLaunched.size(), 2u );
}

TEST_F( EngineProcesses, QuittingTheEngineIsARequest )
{
    mApplications.Run( 7, mFolder / "engine" );
    KVApplication::quitEngine();
    ASSERT_EQ( mNotifier.mPosts.size(), 1u );
    EXPECT_EQ( mNotifier.mPosts[0].first, u"KV_QuitEngine" );
    EXPECT_EQ( mNotifier.mAudiences[0], XProcessNotifier::Audience::kEngineOnly );
    EXPECT_TRUE( KVApplication::isEngineRunning() );
}

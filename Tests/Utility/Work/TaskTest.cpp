#include "Tests/Fakes/ManualWorld.h"
#include "Utility/Work/AsyncNSTask.h"
#include "Utility/Work/MainLoop.h"
#include "Utility/Work/SyncNSTask.h"
#include "Utility/Work/ThreadedWork.h"
#include "XCAF/XErrorHandler.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <random>
#include <thread>
#include <unistd.h>

namespace
{
using Strings = std::vector<std::string>;

// Jumps ahead at each look: a command that does nothing is over its time at once.
class ImpatientClock final : public XClock
{
public:
    [[nodiscard]] XAbsoluteTime Now() const override { return 0; }
    [[nodiscard]] double MonotonicSeconds() const override { return mSeconds += 3; }

private:
    mutable std::atomic<double> mSeconds{ 0 };
};

struct Listener final : AsyncNSTaskDelegate
{
    void TaskOutput( AsyncNSTask&, const std::shared_ptr<void>&, std::string_view inBytes ) override
    {
        EXPECT_TRUE( XIsMainThread() and not mIsFinished );
        mOutput += inBytes;
        if ( mOnOutput )
            mOnOutput();
    }
    void TaskError( AsyncNSTask&, const std::shared_ptr<void>&, std::string_view inBytes ) override
    {
        mError += inBytes;
    }
    void TaskFinished( AsyncNSTask& inTask, const std::shared_ptr<void>& ) override
    {
        EXPECT_TRUE( inTask.finished() and not mIsFinished );
        mIsFinished = true;
        if ( mLoop )
            mLoop->Stop();
    }

    std::string mOutput, mError;
    XBlock mOnOutput;
    bool mIsFinished = false;
    XMainLoop* mLoop = nullptr;
};

struct AsyncTask : testing::Test
{
    AsyncTask() { mListener->mLoop = &mLoop; }
    void RunUntilFinished( AsyncNSTask& inTask )
    {
        mLoop.Run();
        EXPECT_TRUE( inTask.finished() );
    }

    LogCapture mLog;
    XThreadedWork mWork{ XClock::System() };
    XWork::Substitute mInUse{ mWork };
    XMainLoop mLoop{ mWork };
    std::shared_ptr<Listener> mListener = std::make_shared<Listener>();
    std::shared_ptr<AsyncNSTask> mTask = AsyncNSTask::initWithDelegate( mListener );
};

struct FixedVariables final : XTaskVariables
{
    explicit FixedVariables( std::vector<XTaskVariable> inVariables ) : mVariables( std::move( inVariables ) ) {}
    [[nodiscard]] std::vector<XTaskVariable> CopyVariables( const std::optional<Text>& ) const override
    {
        return mVariables;
    }
    std::vector<XTaskVariable> mVariables;
};

std::size_t SizeOf( const Strings& inEnvironment )
{
    std::size_t size = 0;
    for ( const std::string& entry : inEnvironment )
        size += entry.size() + 1;
    return size;
}

bool Has( const Strings& inEnvironment, std::string_view inEntry )
{
    return std::find( inEnvironment.begin(), inEnvironment.end(), inEntry ) != inEnvironment.end();
}
} // namespace

TEST( SyncNSTask, LargeInputAndOutputDoNotBlockEachOther )
{
    std::string input( 3000000, '\0' );
    std::mt19937 random( 1 );
    for ( char& byte : input )
        byte = char( random() );
    EXPECT_TRUE( SyncNSTask::dataFromTask( u"cat", {}, input ) == input );
    EXPECT_EQ( SyncNSTask::dataFromTask( u"true", {}, input ), "" ); // never reads what it is sent
    EXPECT_EQ( SyncNSTask::stringFromTask( u"/bin/cat", {}, u"é€😀" ), u"é€😀" );
}

TEST( SyncNSTask, ArgumentsArriveAsTheyAreForThereIsNoShell )
{
    const std::vector<Text> arguments = { u"%s\\n", u"a b", u"$HOME", u"`id`", u"'\"", u"", u"é\n;", u"*" };
    EXPECT_EQ( SyncNSTask::stringFromTask( u"printf", arguments ), u"a b\n$HOME\n`id`\n'\"\n\né\n;\n*\n" );
}

TEST( SyncNSTask, ACommandThatCannotStartIsLoggedAndGivesNothing )
{
    LogCapture log;
    EXPECT_FALSE( SyncNSTask::dataFromTask( u"/no/such/command", { u"x", u"y" } ) );
    EXPECT_FALSE( SyncNSTask::dataFromTask( u"no-such-command-anywhere" ) );
    EXPECT_FALSE( SyncNSTask::dataFromTask( u"echo", { Text( u"a\0b", 3 ) } ) ); // refused, not cut
    EXPECT_FALSE( SyncNSTask::dataFromTask( u"" ) );
    EXPECT_EQ( log.CountContaining( "Launch Task /no/such/command (x, y) failed" ), 1u );
    EXPECT_EQ( log.CountContaining( "Launch Task " ), 3u );
    EXPECT_EQ( log.CountAssertions( "taskPath" ), 1u );
}

TEST( SyncNSTask, TheChildHasThreeDescriptorsAndItsOwnGroup )
{
    const int leaked = ::open( "/dev/null", O_RDONLY ); // as a careless library opens it
    // Asked for one by one, for listing a folder opens it. The fifth field of the shell's own line is its group.
    const auto listing = SyncNSTask::stringFromTask( u"sh",
        { u"-c",
            u"n=0; while [ $n -lt 100 ]; do [ -e /proc/$$/fd/$n ] && echo $n; n=$(( n + 1 )); done;"
            u"read id name state parent group rest < /proc/$$/stat; echo group $(( group - id ))" } );
    ::close( leaked );
    EXPECT_LT( leaked, 100 );
    EXPECT_EQ( listing, u"0\n1\n2\ngroup 0\n" );
}

TEST( SyncNSTask, ACommandOverALimitIsKilledWithItsGroup )
{
    LogCapture log;
    const ImpatientClock clock;
    const XClock::Substitute inUse( clock );
    SyncNSTask::Options options;
    options.mTimeout = 1;
    EXPECT_FALSE( SyncNSTask::dataFromTask( u"sh", { u"-c", u"trap '' TERM; sleep 1000 & wait" }, {}, options ) );
    EXPECT_EQ( log.CountContaining( "Task sh was stopped: it took more than 1 seconds" ), 1u );
    options.mTimeout.reset();
    options.mMaximumOutput = 1000000;
    EXPECT_FALSE( SyncNSTask::dataFromTask( u"cat", { u"/dev/zero" }, {}, options ) );
    EXPECT_EQ( log.CountContaining( "it wrote more than 1000000 bytes" ), 1u );
}

TEST( SyncNSTask, ACommandThatLeftItsGroupIsKilledAllTheSame )
{
    if ( not SyncNSTask::dataFromTask( u"perl", { u"-e", u"1" } ) )
        GTEST_SKIP() << "needs perl";
    LogCapture log;
    SyncNSTask::Options options;
    options.mMaximumOutput = 100000; // it leaves before it writes
    EXPECT_FALSE( SyncNSTask::dataFromTask( u"perl",
        { u"-e", u"setpgrp( 0, getpgrp( getppid ) ) or die; $SIG{ PIPE } = 'IGNORE'; print 'x' x 1000 while 1" }, {},
        options ) );
    EXPECT_EQ( log.CountContaining( "it wrote more than 100000 bytes" ), 1u );
}

TEST( SyncNSTask, ADescendantThatKeepsThePipeOpenIsNotWaitedFor )
{
    const auto output = SyncNSTask::dataFromTask( u"sh", { u"-c", u"sleep 1000 & echo $!" } );
    ASSERT_TRUE( output );
    const pid_t descendant = std::atoi( output->c_str() );
    ASSERT_GT( descendant, 1 );
    EXPECT_EQ( ::kill( descendant, SIGKILL ), 0 ); // it was left alone
}

TEST( SyncNSTask, TheErrorStreamIsMergedOrLoggedIfAsked )
{
    LogCapture log;
    const std::vector<Text> script = { u"-c", u"echo out; echo 'one\ntwo' >&2; printf end >&2" };
    SyncNSTask::Options options;
    EXPECT_EQ( SyncNSTask::dataFromTask( u"sh", script, {}, options ), "out\n" );
    options.mLogStdErr = true;
    EXPECT_EQ( SyncNSTask::dataFromTask( u"sh", script, {}, options ), "out\n" );
    EXPECT_EQ( log.Lines(), ( Strings{ ">one", ">two", ">end" } ) );
    options.mMergeStdErr = true;
    EXPECT_EQ( SyncNSTask::dataFromTask( u"sh", script, {}, options ), "out\none\ntwo\nend" );
}

TEST( TaskEnvironment, WhatMustNotLeakIsDroppedAndTheRestStands )
{
    const Strings process = { "HOME=/h", "LD_PRELOAD=x", "LD_=y", "OLD_LD_=z", "DYLD_X=1", "KVVAR_A=old",
        "KVPARAM_A=old", "PERL5OPT=-d", "PERL5LIB=/l", "PERLLIB=/l", "PERL5DB=d", "PERL5X=stays", "EMPTY=", "nonsense",
        "=C:=odd", "KVINSTANCE=i" };
    XTaskEnvironment environment;
    EXPECT_EQ( environment.Make( process ),
        ( Strings{ "HOME=/h", "OLD_LD_=z", "PERL5X=stays", "EMPTY=", "=C:=odd", "KVINSTANCE=i" } ) );
    environment.mDropOwnVariables = false;
    EXPECT_TRUE( Has( environment.Make( process ), "KVVAR_A=old" ) );
}

TEST( TaskEnvironment, VariablesAndParametersAreNamedByTheRules )
{
    LogCapture log;
    XTaskEnvironment environment;
    environment.mVariables = { { u"My Name", u"é €" }, { u"ENV_PATH", u"/mine" }, { u"ENV_", u"n" },
        { u"ENV_LD_PRELOAD", u"mine" }, { Text{ u'b', char16_t( 0xD800 ) }, u"v" }, { u"a=b", u"v" },
        { u"nul", Text( u"a\0b", 3 ) } };
    environment.mParameters = { { u"First One", u"1" } };
    environment.mInstance = u"42";
    EXPECT_EQ( environment.Make( { "PATH=/old", "A=b", "PATH=/older", "A=c", "LD_PRELOAD=theirs" } ),
        ( Strings{ "A=b", "KVVAR_My_Name=é €", "KVVAR_ENV_PATH=/mine", "PATH=/mine", "KVVAR_ENV_=n",
            "KVVAR_ENV_LD_PRELOAD=mine", "LD_PRELOAD=mine", "KVINSTANCE=42", "KVPARAM_First_One=1" } ) );
    EXPECT_EQ( log.CountContaining( "Conversion failed for: " ), 3u );
    EXPECT_EQ( log.CountContaining( "Variable “ENV_LD_PRELOAD” changes what commands run" ), 1u );
}

TEST( TaskEnvironment, TheLargestVariablesGiveWayAndTheSizeStaysBelowItsLimit )
{
    LogCapture log;
    XTaskEnvironment environment;
    environment.mVariables = { { u"Big", Text( 90000, u'b' ) }, { u"Bigger", Text( 95000, u'B' ) },
        { u"Small", u"s" } };
    const Strings made = environment.Make( { "HOME=/h" } );
    EXPECT_TRUE( Has( made, "KVVAR_Bigger=Too Large For Environment" ) );
    EXPECT_TRUE( Has( made, "KVVAR_Big=" + std::string( 90000, 'b' ) ) );
    EXPECT_EQ( log.Lines(),
        Strings{ "Variable “Bigger” excluded from environment to ensure the environment is not too large" } );

    // Exactly at the limit: "KVVAR_X=" and the final NUL make nine bytes.
    environment.mVariables = { { u"X", Text( XTaskEnvironment::kMaxBytes - 1 - 9, u'x' ) } };
    EXPECT_EQ( SizeOf( environment.Make( {} ) ), XTaskEnvironment::kMaxBytes - 1 );
    environment.mVariables[0].mText += u'x';
    EXPECT_EQ( environment.Make( {} ), Strings{ "KVVAR_X=Too Large For Environment" } );
}

TEST( TaskEnvironment, AnyMixOfVariablesStaysBelowTheLimit )
{
    for ( unsigned seed = 0; seed < 30; ++seed )
    {
        LogCapture log;
        std::mt19937 random( seed );
        XTaskEnvironment environment;
        for ( unsigned i = 0, count = seed % 3 ? random() % 20 : 5000; i < count; ++i )
            environment.mVariables.push_back(
                { TextFromASCII( "v" + std::to_string( i ) ), Text( random() % ( count > 100 ? 20 : 30000 ), u'x' ) } );
        const Strings process = { "HOME=/h", "HUGE=" + std::string( random() % 150000, 'h' ) };
        EXPECT_LT( SizeOf( environment.Make( process ) ), XTaskEnvironment::kMaxBytes ) << "seed " << seed;
        EXPECT_TRUE( Has( environment.Make( process ), "HOME=/h" ) ) << "seed " << seed;
    }
}

TEST_F( AsyncTask, OutputErrorAndEndArriveOnTheMainThreadInOrder )
{
    auto holder = std::make_shared<int>();
    const std::weak_ptr<int> script = holder;
    mTask->tempScriptHolder = std::move( holder );
    mTask->executionParameters = { { u"P", u"parameter" } };
    mTask->includeVariables = std::make_shared<FixedVariables>( std::vector<XTaskVariable>{ { u"V", u"variable" } } );
    mTask->variableInstance = u"7";
    mListener->mOnOutput = [&] { EXPECT_FALSE( script.expired() ); };
    ASSERT_TRUE( mTask->launchWithCommand(
        u"sh", { u"-c", u"cat; echo $KVVAR_V $KVPARAM_P $KVINSTANCE; echo oops >&2; exit 3" }, "input\n" ) );
    RunUntilFinished( *mTask );
    EXPECT_EQ( mListener->mOutput, "input\nvariable parameter 7\n" );
    EXPECT_EQ( mListener->mError, "oops\n" );
    EXPECT_EQ( mTask->terminationStatus(), 3 );
    EXPECT_FALSE( mTask->terminatedBySignal() );
    EXPECT_TRUE( script.expired() );
    EXPECT_FALSE( mTask->launchWithCommand( u"true" ) ); // once
}

TEST_F( AsyncTask, ALargeOutputWaitsForASlowMainThreadAndNothingIsLost )
{
    ASSERT_TRUE( mTask->launchWithCommand( u"head", { u"-c", u"20000000", u"/dev/zero" } ) );
    RunUntilFinished( *mTask );
    EXPECT_EQ( mListener->mOutput.size(), 20000000u );
}

TEST_F( AsyncTask, TerminatingEndsTheWholeGroup )
{
    ASSERT_TRUE( mTask->launchWithCommand( u"sh", { u"-c", u"sleep 1000 & echo $!; wait" } ) );
    mListener->mOnOutput = [&] { mTask->terminate(); };
    RunUntilFinished( *mTask );
    EXPECT_TRUE( mTask->terminatedBySignal() );
    EXPECT_EQ( mTask->terminationStatus(), SIGTERM );
    mTask->terminate(); // after the end: nothing
    // The descendant was sent SIGKILL; until its new parent has reaped it, the number answers.
    const pid_t descendant = std::atoi( mListener->mOutput.c_str() );
    ASSERT_GT( descendant, 1 );
    std::string state;
    for ( int i = 0; i < 1000000 and ::kill( descendant, 0 ) == 0; ++i )
    {
        const std::string path = "/proc/" + std::to_string( descendant ) + "/stat";
        char text[512] = {};
        const int file = ::open( path.c_str(), O_RDONLY );
        if ( file < 0 or ::read( file, text, sizeof( text ) - 1 ) <= 0 )
            text[0] = 0;
        if ( file >= 0 )
            ::close( file );
        state = text;
        if ( state.find( ") Z " ) != std::string::npos )
            break;
    }
    EXPECT_TRUE( ::kill( descendant, 0 ) != 0 or state.find( ") Z " ) != std::string::npos ) << state;
}

TEST_F( AsyncTask, ADelegateThatWasDroppedHearsNothingAndAFailedLaunchIsLogged )
{
    mTask->ActionDestroyed();
    ASSERT_TRUE( mTask->launchWithCommand( u"echo", { u"x" } ) );
    mWork.RunUntil( [] { return true; } );
    while ( not mTask->finished() )
    {
        mLoop.DrainOnce();
        std::this_thread::yield();
    }
    EXPECT_EQ( mListener->mOutput, "" );
    EXPECT_FALSE( mListener->mIsFinished );
    const auto other = AsyncNSTask::initWithDelegate( mListener );
    EXPECT_FALSE( other->launchWithCommand( u"/no/such", { u"a" } ) );
    EXPECT_EQ( mLog.CountContaining( "Launch Task /no/such (a) failed with exception No such file or directory" ), 1u );
}

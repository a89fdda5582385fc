#include "XCAF/XErrorHandler.h"

#include "Platform/Platform.h"
#include "Tests/Fakes/FakeAlerts.h"
#include "Tests/Fakes/ManualWorld.h"
#include "Tests/Support/ScratchFolder.h"
#include "Utility/Work/ThreadedWork.h"
#include "XCAF/ErrorAlert.h"
#include "XCAF/KVDiagnostics.h"
#include "XCAF/UserFolders.h"
#include "XCAF/XErrorHandlerTesting.h"
#include "XCAF/XException.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <pwd.h>
#include <regex>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace
{
// A start of the process of its own: nothing read, a logs folder of its own, alerts that are remembered.
struct Logging : testing::Test
{
    Logging()
    {
        mPlatform.SetAlerts( mAlerts );
        Restart();
        XErrorHandler::SetLogsFolder( mFolder / "Korvalen" );
    }
    ~Logging() override
    {
        XErrorHandler::ResetForTesting();
        XErrorHandler::SetLogsFolder( mFolderBefore );
    }

    void Restart( std::optional<Text> inDebug = {}, std::optional<bool> inBeep = {} )
    {
        XErrorHandler::ResetForTesting();
        XErrorHandler::SetPreferenceSource( { [this, inDebug]( TextView inKey ) {
                                                 EXPECT_EQ( inKey, u"Debug" );
                                                 ++mReads;
                                                 return inDebug;
                                             },
            [this, inBeep]( TextView inKey ) {
                EXPECT_EQ( inKey, u"AssertBeep" );
                ++mReads;
                return inBeep;
            } } );
    }

    [[nodiscard]] std::string File() const
    {
        std::ifstream file( mFolder / "Korvalen" / "Editor.log" );
        return { std::istreambuf_iterator<char>( file ), {} };
    }

    const std::filesystem::path mFolderBefore = XErrorHandler::LogsFolder();
    ScratchFolder mFolder;
    FakeAlerts mAlerts;
    Platform mPlatform;
    Platform::Substitute mPlatformInUse{ mPlatform };
    XManualClock mClock;
    XClock::Substitute mClockInUse{ mClock };
    XManualWork mWork{ mClock };
    XWork::Substitute mWorkInUse{ mWork };
    std::atomic<int> mReads{ 0 };
};

std::string LocalTimeText( double inSince1970 )
{
    const std::time_t time = std::time_t( inSince1970 );
    char text[64];
    return { text, std::strftime( text, sizeof( text ), "%F %T", std::localtime( &time ) ) };
}
} // namespace

TEST_F( Logging, TagsAreOnByWholeWords )
{
    const Text just( 252, u'x' ), tooLong( 253, u'x' ), tooManyBytes( 127, u'é' );
    const struct
    {
        std::optional<TextView> mDebug;
        const char* mTag;
        bool mIsOn;
    } kCases[] = {
        { {}, "always", true }, { {}, "display", true }, { {}, "debug", true }, { {}, "any", false },
        { {}, "XTask", false }, { u"", "any", false }, { u"XFile", "XFileMonitor", false }, { u"XFile", "XFile", true },
        { u"XFile", "any", true }, { u"XFile", "File", false }, { u"all", "XFileMonitor", true },
        { u"all XFileMonitor", "XFileMonitor", true }, { u"all XFileMonitor", "XTask", false },
        { u"all XFileMonitor", "all", true }, { u"XTask XFileMonitor", "XTask", true },
        { u"XTask XFileMonitor", "XFileMonitor", true }, { u"XTask", "xtask", false },
        { u"all AccurateTime", "XTask", false }, { just, "any", true }, { tooLong, "any", false },
        { tooManyBytes, "any", false }, // 254 of them
    };
    for ( const auto& [debug, tag, isOn] : kCases )
    {
        Restart( debug ? std::optional<Text>( *debug ) : std::nullopt );
        EXPECT_EQ( XErrorHandler::MaybeShouldLog( tag ), isOn )
            << UTF8FromText( debug.value_or( u"-" ) ) << ", " << tag;
    }
}

TEST_F( Logging, ThePreferencesAreReadOnceAndNotBeforeThereIsASource )
{
    XErrorHandler::ResetForTesting();
    EXPECT_FALSE( XErrorHandler::MaybeShouldLog( "XTask" ) );
    Restart( u"XTask" );
    for ( int i = 0; i < 3; ++i )
    {
        EXPECT_TRUE( XErrorHandler::MaybeShouldLog( "XTask" ) );
        XAssert( i < 0 );
    }
    EXPECT_EQ( mReads, 2 );
    mWork.RunAll();
    EXPECT_NE( File().find( " Debugging level set to 'XTask'\n" ), std::string::npos );
}

TEST_F( Logging, ASourceThatLogsAndAssertsDoesNotHang )
{
    XErrorHandler::ResetForTesting();
    XErrorHandler::SetPreferenceSource( { []( TextView ) {
                                             XErrorHandler::PrivateMaybeLogFormat( "XTask", "too early" );
                                             XAssert( 1 > 2 );
                                             return Text( u"XTask" );
                                         },
        []( TextView ) {
            XAssert( 2 > 3 );
            return true;
        } } );
    EXPECT_TRUE( XErrorHandler::MaybeShouldLog( "XTask" ) );
    mWork.RunAll();
    EXPECT_EQ( File().find( "too early" ), std::string::npos );
    EXPECT_NE( File().find( "Assertion Failed: 2 > 3" ), std::string::npos );
}

TEST_F( Logging, ABadTagIsAnAssertionAndCountsAsOn )
{
    EXPECT_TRUE( XErrorHandler::MaybeShouldLog( "ab" ) );
    EXPECT_TRUE( XErrorHandler::MaybeShouldLog( nullptr ) );
    EXPECT_TRUE( XErrorHandler::MaybeShouldLog( std::string( 100, 'x' ).c_str() ) );
    EXPECT_FALSE( XErrorHandler::MaybeShouldLog( std::string( 99, 'x' ).c_str() ) );
    mWork.RunAll();
    const std::string file = File();
    EXPECT_NE( file.find( "Assertion Failed: strlen( code ) >= 3,  file: …/Source/XCAF/XErrorHandler.cpp:" ),
        std::string::npos );
    EXPECT_NE( file.find( "Assertion Failed: strlen( code ) < MAXCODELEN,  file: " ), std::string::npos );
}

TEST_F( Logging, AnEntryIsOneLineWithTheLocalTimeAndLineFeedsOnly )
{
    XErrorHandler::PrivateMaybeLogFormat( "display", "a %@ b\r\nc\rd %s", u"é", KORVALEN_TESTS_FOLDER );
    XErrorHandler::PrivateMaybeLogFormat( "XTask", "not this" );
    EXPECT_FALSE( std::filesystem::exists( mFolder / "Korvalen" ) ); // nothing is touched before the queue runs
    mWork.RunAll();
    EXPECT_EQ( File(), LocalTimeText( 700000000.0 + 978307200.0 ) + " a é b\nc\nd …/Tests\n" );
    struct stat status;
    ASSERT_EQ( ::stat( ( mFolder / "Korvalen/Editor.log" ).c_str(), &status ), 0 );
    EXPECT_EQ( status.st_mode & 0777, 0600u );
    ASSERT_EQ( ::stat( ( mFolder / "Korvalen" ).c_str(), &status ), 0 );
    EXPECT_EQ( status.st_mode & 0777, 0700u );
}

TEST_F( Logging, AccurateTimeAddsMicroseconds )
{
    Restart( u"XTask AccurateTime" );
    mClock.Advance( 1.25 );
    XErrorHandler::PrivateMaybeLogFormat( "XTask", "now" );
    mWork.RunAll();
    EXPECT_NE( File().find( " 1250000 now\n" ), std::string::npos ) << File();
}

TEST_F( Logging, TheSystemLogGetsWhatIsAlwaysLoggedAndEverythingWithLOG )
{
    XErrorHandler::PrivateMaybeLogFormat( "display", "file only" );
    XErrorHandler::PrivateMaybeLogFormat( "always", "both" );
    XErrorBeep( "beep %d", 1 );
    XException( "broken", "a.cpp", 7 ).Log( u"here" );
    EXPECT_EQ( mAlerts.mSystemLog,
        ( std::vector<Text>{ u"both", u"beep 1", u"WARNING: Uncaught Exception in here: broken, a.cpp:7" } ) );
    EXPECT_EQ( mAlerts.mSounds, std::vector<int>{ 4096 } );
    Restart( u"XTask LOG" );
    XErrorHandler::PrivateMaybeLogFormat( "XTask", "everything" );
    EXPECT_EQ( mAlerts.mSystemLog.back(), u"everything" );
    mWork.RunAll();
    for ( const char* line : { " file only\n", " both\n", " beep 1\n", " everything\n" } )
        EXPECT_NE( File().find( line ), std::string::npos ) << line;
}

TEST_F( Logging, AnAssertionGoesOnAndBeepsIfAsked )
{
    int rounds = 0;
    for ( ; rounds < 3; ++rounds )
        XAssert( rounds > 5 );
    EXPECT_EQ( rounds, 3 );
    EXPECT_TRUE( mAlerts.mSounds.empty() );
    Restart( {}, true );
    XAssertText( false, "given text" );
    EXPECT_EQ( mAlerts.mSounds, std::vector<int>{ 4096 } );
    mWork.RunAll();
    EXPECT_TRUE( std::regex_search( File(),
        std::regex( "Assertion Failed: given text,  file: …/Tests/XCAF/XErrorHandlerTest.cpp:\\d+, value: 0\n" ) ) )
        << File();
}

TEST_F( Logging, ASourceThatThrowsCountsAsNotSet )
{
    XErrorHandler::ResetForTesting();
    XErrorHandler::SetPreferenceSource( { []( TextView ) -> std::optional<Text> { throw std::bad_alloc(); },
        []( TextView ) -> std::optional<bool> { throw std::bad_alloc(); } } );
    EXPECT_NO_THROW( EXPECT_FALSE( XErrorHandler::MaybeShouldLog( "XTask" ) ) );
    EXPECT_NO_THROW( XAssert( 1 > 2 ) );
    mWork.RunAll();
    EXPECT_NE( File().find( "Assertion Failed: 1 > 2" ), std::string::npos );
}

TEST_F( Logging, QuittingPutsEveryEntryOnDisk )
{
    XErrorHandler::PrivateMaybeLogFormat( "display", "before" );
    XErrorHandler::Quitting();
    EXPECT_NE( File().find( " before\n" ), std::string::npos );
    XErrorHandler::PrivateMaybeLogFormat( "display", "after" );
    EXPECT_NE( File().find( " after\n" ), std::string::npos );
}

TEST_F( Logging, AnEntryFromTheLogQueueDoesNotWaitForItselfWhileQuitting )
{
    XThreadedWork work( XClock::System() );
    const XWork::Substitute inUse( work );
    const std::shared_ptr<XQueue> logQueue = XErrorHandler::LogQueueForTesting();
    logQueue->Async( [] {
        XErrorHandler::Quitting();
        XErrorHandler::PrivateMaybeLogFormat( "display", "from the queue" );
        // By way of another queue, for which a block of the log queue waits.
        XWork::Current().MakeSerialQueue( u"q" )->Sync(
            [] { XErrorHandler::PrivateMaybeLogFormat( "display", "on its behalf" ); } );
    } );
    logQueue->Sync( [] {} );
    XErrorHandler::PrivateMaybeLogFormat( "display", "last" );
    const std::string file = File();
    for ( const char* line : { " from the queue\n", " on its behalf\n", " last\n" } )
        EXPECT_NE( file.find( line ), std::string::npos ) << line;
    EXPECT_EQ( file.find( "Assertion" ), std::string::npos );
}

TEST_F( Logging, AFileThatCannotBeWrittenTroublesNobody )
{
    // The file's name is taken by a folder, by a link, and the folder's name by a file.
    std::filesystem::create_directories( mFolder / "Korvalen" / "Editor.log" );
    XErrorHandler::PrivateMaybeLogFormat( "display", "x" );
    mWork.RunAll();
    std::filesystem::remove( mFolder / "Korvalen" / "Editor.log" );
    std::filesystem::create_symlink( mFolder / "elsewhere", mFolder / "Korvalen" / "Editor.log" );
    XErrorHandler::PrivateMaybeLogFormat( "display", "x" );
    mWork.RunAll();
    EXPECT_FALSE( std::filesystem::exists( mFolder / "elsewhere" ) );
    std::filesystem::remove_all( mFolder / "Korvalen" );
    std::ofstream( mFolder / "Korvalen" ) << "a file";
    XErrorHandler::PrivateMaybeLogFormat( "display", "x" );
    mWork.RunAll();
    std::filesystem::remove( mFolder / "Korvalen" );
    XErrorHandler::PrivateMaybeLogFormat( "display", "recovered" );
    mWork.RunAll();
    EXPECT_NE( File().find( " recovered\n" ), std::string::npos );
}

TEST_F( Logging, ALogThatHasGrownKeepsItsLastLinesOnceAProcess )
{
    const auto write = [&]( std::size_t inSize ) {
        // Lines of ten bytes, and two blank ones where the cut falls.
        std::string content;
        while ( content.size() < inSize )
            content += "123456789\n";
        content.resize( inSize );
        content.back() = '\n';
        std::filesystem::create_directories( mFolder / "Korvalen" );
        std::ofstream( mFolder / "Korvalen" / "Editor.log", std::ios::trunc ) << content;
        return content;
    };
    const auto launch = [&] {
        XManualWork work( mClock ); // a file is opened anew in each environment
        const XWork::Substitute inUse( work );
        XErrorHandler::PrivateMaybeLogFormat( "display", "new" );
        work.RunAll();
        return File();
    };
    const std::string kept = write( 13000000 );
    EXPECT_TRUE( launch().starts_with( kept ) );

    const std::string cut = write( 13000001 );
    const std::string file = launch();
    const std::string tail = cut.substr( cut.size() - 7000000 );
    const std::string expected = tail.substr( tail.find_first_not_of( '\n', tail.find( '\n' ) ) );
    EXPECT_TRUE( file.starts_with( expected ) );
    EXPECT_EQ( file.size(), expected.size() + LocalTimeText( 0 ).size() + 5 );
    EXPECT_EQ( std::distance( std::filesystem::directory_iterator( mFolder / "Korvalen" ), {} ), 1 );
}

TEST_F( Logging, AFileThatTheUserThrewAwayIsMadeAgain )
{
    XErrorHandler::PrivateMaybeLogFormat( "display", "one" );
    mWork.RunAll();
    std::filesystem::remove( mFolder / "Korvalen" / "Editor.log" );
    XErrorHandler::PrivateMaybeLogFormat( "display", "two" );
    mWork.RunAll();
    EXPECT_NE( File().find( " two\n" ), std::string::npos );
}

TEST_F( Logging, ManyThreadsLogWhileTheProcessQuits )
{
    XThreadedWork work( XClock::System() );
    const XWork::Substitute inUse( work );
    Restart( u"XTask" );
    // The first question reads the preference, and whoever asks meanwhile hears that the tag is off.
    ASSERT_TRUE( XErrorHandler::MaybeShouldLog( "XTask" ) );
    std::vector<std::thread> threads;
    for ( int thread = 0; thread < 4; ++thread )
    {
        threads.emplace_back( [thread] {
            for ( int i = 0; i < 100; ++i )
                XErrorHandler::PrivateMaybeLogFormat( "XTask", "line %d of %d", i, thread );
        } );
    }
    XErrorHandler::Quitting();
    for ( std::thread& thread : threads )
        thread.join();
    std::map<int, int> next;
    std::istringstream lines( File() );
    for ( std::string line; std::getline( lines, line ); )
    {
        int i = 0, thread = 0;
        if ( std::sscanf( line.c_str() + 20, "line %d of %d", &i, &thread ) == 2 )
        {
            EXPECT_EQ( next[thread]++, i );
        }
    }
    EXPECT_EQ( next, ( std::map<int, int>{ { 0, 100 }, { 1, 100 }, { 2, 100 }, { 3, 100 } } ) );
}

TEST_F( Logging, TheDefaultFolderFollowsTheStateFolder )
{
    const char* previous = std::getenv( "XDG_STATE_HOME" );
    const std::optional<std::string> kept = previous ? std::optional<std::string>( previous ) : std::nullopt;
    ::setenv( "XDG_STATE_HOME", mFolder.Path().c_str(), 1 );
    XErrorHandler::SetLogsFolder( {} );
    EXPECT_EQ( XErrorHandler::LogFilePath(), mFolder / "Korvalen" / "Editor.log" );
    EXPECT_TRUE( std::filesystem::is_directory( mFolder / "Korvalen" ) );
    kept ? ::setenv( "XDG_STATE_HOME", kept->c_str(), 1 ) : ::unsetenv( "XDG_STATE_HOME" );
}

TEST( UserFolders, WithoutAHomeInTheEnvironmentTheAccountsOneCounts )
{
    const char* home = std::getenv( "HOME" );
    const std::optional<std::string> kept = home ? std::optional<std::string>( home ) : std::nullopt;
    const std::filesystem::path expected = ::getpwuid( ::getuid() )->pw_dir;
    ::unsetenv( "HOME" );
    EXPECT_EQ( kvr_userFolder( "KORVALEN_NO_SUCH_VARIABLE", "a/b" ), expected / "a/b" );
    ::setenv( "HOME", "relative", 1 );
    EXPECT_EQ( kvr_userFolder( "KORVALEN_NO_SUCH_VARIABLE", "a/b" ), expected / "a/b" );
    kept ? ::setenv( "HOME", kept->c_str(), 1 ) : ::unsetenv( "HOME" );
}

TEST_F( Logging, AnUncaughtExceptionAlertsOnlyInTheActiveApplication )
{
    const XException exception( u"a > b", "f.cpp", 3 );
    exception.WarnUncaught( u"Main Application" );
    EXPECT_TRUE( mAlerts.mAlerts.empty() );
    mAlerts.mIsActive = true;
    exception.WarnUncaught( u"Main Application" );
    ASSERT_EQ( mAlerts.mAlerts.size(), 1u );
    EXPECT_EQ( mAlerts.mAlerts[0].mStyle, XAlertStyle::kCritical );
    EXPECT_EQ( mAlerts.mAlerts[0].mTitle, u"WARNING: Uncaught Exception in Main Application" );
    EXPECT_EQ( mAlerts.mAlerts[0].mText, u"f.cpp:3 \na > b" );
    EXPECT_EQ( mAlerts.mSystemLog.size(), 2u );
}

TEST_F( Logging, ErrorAlertsHaveOneButtonAndTheirStyle )
{
    auto* const window = reinterpret_cast<XPlatformWindow*>( this );
    ErrorAlert::Error( window, u"kvUntitledMacro", u"kvUntitledMacroGroup" );
    ErrorAlert::Critical( nullptr, u"kvUntitledMacro", u"kvUntitledMacro" );
    ErrorAlert::Message( nullptr, u"kvUntitledMacro", u"kvUntitledMacro" );
    ErrorAlert::Message( nullptr, u"kvUntitledMacro", u"kvUntitledMacroGroup", true );
    mWork.MakeSerialQueue( u"q" )->Sync( [] { ErrorAlert::Error( nullptr, u"kvOKButton", u"kvOKButton" ); } );
    ASSERT_EQ( mAlerts.mAlerts.size(), 3u );
    mWork.RunAll(); // the one from another queue waits for the main one
    ASSERT_EQ( mAlerts.mAlerts.size(), 4u );
    EXPECT_EQ( mAlerts.mAlerts[0].mTitle, u"Untitled Macro" );
    EXPECT_EQ( mAlerts.mAlerts[0].mText, u"Untitled Macro Group" );
    EXPECT_EQ( mAlerts.mAlerts[0].mButtons, std::vector<Text>{ u"OK" } );
    EXPECT_EQ( mAlerts.mAlerts[0].mWindow, window );
    const int styles[] = { 0, 2, 1, 0 };
    for ( std::size_t i = 0; i < 4; ++i )
        EXPECT_EQ( int( mAlerts.mAlerts[i].mStyle ), styles[i] ) << i;
    EXPECT_EQ( mAlerts.mNotifications,
        ( std::vector<std::pair<Text, Text>>{ { u"Untitled Macro", u"Untitled Macro Group" } } ) );
}

TEST_F( Logging, CrashReportsAreFoundByTheirWholeName )
{
    for ( const char* name : { "Korvalen_2026.crash", "Korvalen.crash", "Korvalen Engine-1.crash", "Korvalen.crash.old",
              "korvalen.crash", "My Korvalen.crash", "Korvalenxcrash", "Korvalen\n.crash" } )
        std::ofstream( mFolder / name ) << "x";
    std::filesystem::create_directory( mFolder / "Korvalen folder.crash" );
    std::vector<std::string> names;
    for ( const auto& path : KVDiagnostics::CheckForNew( mFolder.Path() ) )
        names.push_back( path.filename() );
    EXPECT_EQ(
        names, ( std::vector<std::string>{ "Korvalen Engine-1.crash", "Korvalen.crash", "Korvalen_2026.crash" } ) );
    EXPECT_TRUE( KVDiagnostics::CheckForNew( mFolder / "missing" ).empty() );
}

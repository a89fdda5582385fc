// A desk for tests that use the programs as a person does: a session bus of its own, data folders, editors and their
// engines as processes, and verbs. Nothing is waited for by the clock: only facts that others can see are, and for each
// there is a deadline.
#pragma once

#include "Tests/Platform/Linux/ChildOfTest.h"
#include "Tests/Support/ScratchFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <poll.h>
#include <sstream>
#include <sys/syscall.h>

namespace Day
{
namespace fs = std::filesystem;
using Strings = std::vector<std::string>;

inline constexpr int kPatience = 20000; ///< milliseconds

inline bool Until( const std::function<bool()>& inCondition )
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds( kPatience );
    while ( not inCondition() )
    {
        if ( std::chrono::steady_clock::now() > end )
            return false;
        (void)::poll( nullptr, 0, 5 );
    }
    return true;
}

inline std::string ReadFile( const fs::path& inPath )
{
    std::ifstream stream( inPath, std::ios::binary );
    return { std::istreambuf_iterator<char>( stream ), {} };
}

inline void WriteFile( const fs::path& inPath, const std::string& inBytes )
{
    std::ofstream( inPath, std::ios::binary ) << inBytes;
}

/// A process whose output goes into two files; killed at the end if it still runs.
class Process
{
public:
    Process( Strings inCommand, Strings inEnvironment, const fs::path& inOutput )
        : mOutput( inOutput ),
          mErrors( inOutput.native() + ".errors" )
    {
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init( &actions );
        posix_spawn_file_actions_addopen( &actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0 );
        constexpr int kNew = O_WRONLY | O_CREAT | O_TRUNC;
        posix_spawn_file_actions_addopen( &actions, STDOUT_FILENO, mOutput.c_str(), kNew, 0600 );
        posix_spawn_file_actions_addopen( &actions, STDERR_FILENO, mErrors.c_str(), kNew, 0600 );
        if ( ::posix_spawn( &mNumber, inCommand.front().c_str(), &actions, nullptr, Pointers( inCommand ).data(),
                 Pointers( inEnvironment ).data() ) != 0 )
            mNumber = 0;
        posix_spawn_file_actions_destroy( &actions );
    }
    ~Process()
    {
        Signal( SIGKILL );
        (void)Wait();
    }
    Process( const Process& ) = delete;
    Process& operator=( const Process& ) = delete;

    [[nodiscard]] pid_t Number() const { return mNumber; }
    [[nodiscard]] std::string Output() const { return ReadFile( mOutput ); }
    [[nodiscard]] std::string Errors() const { return ReadFile( mErrors ); }
    void Signal( int inSignal ) const
    {
        if ( mNumber > 0 )
            ::kill( mNumber, inSignal );
    }
    /// The exit status; minus the signal that ended it; -1000 when it hasn't ended in time.
    int Wait()
    {
        if ( mNumber <= 0 )
            return mStatus;
        const int handle = int( ::syscall( SYS_pidfd_open, mNumber, 0 ) );
        pollfd waiting{ handle, POLLIN, 0 };
        const bool hasEnded = ::poll( &waiting, 1, kPatience ) == 1;
        ::close( handle );
        if ( not hasEnded )
            return -1000;
        int status = 0;
        ::waitpid( mNumber, &status, 0 );
        mNumber = 0;
        return mStatus = WIFEXITED( status ) ? WEXITSTATUS( status ) : -WTERMSIG( status );
    }

private:
    static std::vector<char*> Pointers( Strings& inStrings )
    {
        std::vector<char*> pointers;
        for ( std::string& string : inStrings )
            pointers.push_back( string.data() );
        pointers.push_back( nullptr );
        return pointers;
    }

    const fs::path mOutput, mErrors;
    pid_t mNumber = 0;
    int mStatus = 0;
};

struct Outcome
{
    int mStatus;
    std::string mOutput, mErrors;
};

inline void PrintTo( const Outcome& inOutcome, std::ostream* ioStream )
{
    *ioStream << inOutcome.mStatus << ": " << inOutcome.mOutput << inOutcome.mErrors;
}

/// One computer: a data folder, and the engine that its editors launch.
class Computer
{
public:
    Computer( const fs::path& inPlace, Strings inEnvironment )
        : mPlace( inPlace ),
          mEnvironment( std::move( inEnvironment ) )
    {
        fs::create_directories( mPlace / "home" );
        for ( const auto& [name, value] : { std::pair( "HOME", mPlace / "home" ), { "KORVALEN_HOME", Folder() },
                  { "KORVALEN_ENGINE_LOG", mPlace / "engine.log" }, { "KORVALEN_ENGINE_COMMANDS", EnginePipe() },
                  { "KORVALEN_ENGINE", KORVALEN_STAND_IN_ENGINE } } )
            Set( name, value );
        Set( "PATH", "/usr/bin:/bin" );
    }
    ~Computer()
    {
        mEditor.reset();
        // The engine goes on without its editor, as it should.
        if ( not EngineLog().empty() and not EngineLog().ends_with( "\nquit\n" ) )
        {
            Command( "quit" );
            EXPECT_TRUE( Until( [this] { return EngineLog().ends_with( "\nquit\n" ); } ) );
        }
    }
    Computer( const Computer& ) = delete;
    Computer& operator=( const Computer& ) = delete;

    void Set( const std::string& inName, const std::string& inValue )
    {
        std::erase_if( mEnvironment, [&]( const std::string& inOne ) { return inOne.starts_with( inName + "=" ); } );
        mEnvironment.push_back( inName + "=" + inValue );
    }
    void Unset( const std::string& inName )
    {
        std::erase_if( mEnvironment, [&]( const std::string& inOne ) { return inOne.starts_with( inName + "=" ); } );
    }

    [[nodiscard]] fs::path Folder() const { return mPlace / "data"; }
    [[nodiscard]] fs::path MacrosFile() const { return Folder() / "Korvalen Macros.plist"; }
    [[nodiscard]] fs::path operator/( const char* inName ) const { return mPlace / inName; }
    [[nodiscard]] std::string EngineLog() const { return ReadFile( mPlace / "engine.log" ); }
    [[nodiscard]] std::string EditorLog() const { return ReadFile( Folder() / "Logs" / "Editor.log" ); }

    /// Starts "run" and waits until it says that it is ready.
    [[nodiscard]] bool StartEditor( Strings inArguments = {} )
    {
        Begin( std::move( inArguments ) );
        return Until( [this] { return mEditor->Output().starts_with( "korvalen is ready" ); } );
    }
    void Begin( Strings inArguments )
    {
        mEditor.reset();
        Strings command = mShell;
        command.insert( command.end(), { KORVALEN_PROGRAM, "run" } );
        command.insert( command.end(), inArguments.begin(), inArguments.end() );
        mEditor = std::make_unique<Process>( command, mEnvironment, mPlace / "editor" );
    }
    int StopEditor( int inSignal = SIGTERM )
    {
        mEditor->Signal( inSignal );
        return mEditor->Wait();
    }

    Outcome Run( Strings inCommand )
    {
        Process process( std::move( inCommand ), mEnvironment, mPlace / ( "verb" + std::to_string( ++mVerbs ) ) );
        const int status = process.Wait();
        return { status, process.Output(), process.Errors() };
    }
    Outcome Verb( Strings inArguments )
    {
        inArguments.insert( inArguments.begin(), KORVALEN_PROGRAM );
        return Run( std::move( inArguments ) );
    }
    /// What must go well: the output.
    std::string Do( Strings inArguments )
    {
        const Outcome outcome = Verb( std::move( inArguments ) );
        EXPECT_EQ( outcome.mStatus, 0 ) << outcome.mErrors;
        return outcome.mOutput;
    }
    /// Makes a macro in the default group; its UID.
    std::string NewMacro( const std::string& inName )
    {
        return TextOf( "uid", Do( { "new", "macro", inName, "--json" } ) );
    }
    /// The text at the first such key of a JSON value; "" when it has none.
    static std::string TextOf( const std::string& inKey, const std::string& inJSON )
    {
        const std::string mark = "\"" + inKey + "\": \"";
        const std::size_t begin = inJSON.find( mark );
        if ( begin == std::string::npos )
            return {};
        return inJSON.substr( begin + mark.size(), inJSON.find( '"', begin + mark.size() ) - begin - mark.size() );
    }

    /// The groups and macros that the file holds, in Python's eyes; one line of its complaint when it can't be read.
    Strings Judged( const fs::path& inFile )
    {
        const Outcome outcome = Run( { KORVALEN_PYTHON, KORVALEN_JUDGE, inFile } );
        if ( outcome.mStatus != 0 )
            return { "unreadable: " + outcome.mErrors };
        Strings lines;
        std::istringstream stream( outcome.mOutput );
        for ( std::string line; std::getline( stream, line ); )
            lines.push_back( line );
        return lines;
    }
    Strings Judged() { return Judged( MacrosFile() ); }
    /// Waits until the running editor has written everything.
    [[nodiscard]] bool IsSaved()
    {
        return Until( [this] {
            return Do( { "status", "--json" } ).find( "\"unsaved\": false" ) != std::string::npos;
        } );
    }

    /// Tells the engine to do something, and waits until it has.
    void Command( const std::string& inLine ) const
    {
        const int pipe = ::open( EnginePipe().c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC );
        if ( pipe < 0 )
            return;
        (void)!::write( pipe, ( inLine + "\n" ).data(), inLine.size() + 1 );
        ::close( pipe );
    }
    [[nodiscard]] bool EngineTells( const std::string& inPart ) const
    {
        return Until( [&] { return EngineLog().find( inPart ) != std::string::npos; } );
    }
    /// How often the engine was told to load the macros.
    [[nodiscard]] std::size_t Loads() const
    {
        std::size_t count = 0;
        const std::string log = EngineLog();
        for ( std::size_t at = 0; ( at = log.find( "load ", at ) ) != std::string::npos; ++at )
            ++count;
        return count;
    }
    /// The number of the engine that was ready last.
    [[nodiscard]] pid_t EngineNumber() const
    {
        const std::string log = EngineLog();
        const std::size_t at = log.rfind( "ready " );
        return at == std::string::npos ? 0 : pid_t( std::stol( log.substr( at + 6 ) ) );
    }
    /// Files of Set Aside whose name begins so.
    [[nodiscard]] Strings InSetAside( const std::string& inBeginning ) const
    {
        Strings names;
        std::error_code error;
        for ( const auto& entry : fs::directory_iterator( Folder() / "Set Aside", error ) )
        {
            if ( entry.is_regular_file( error ) and entry.path().filename().native().starts_with( inBeginning ) )
                names.push_back( entry.path().filename() );
        }
        return names;
    }

    std::unique_ptr<Process> mEditor;
    Strings mShell; ///< what the editor is started by, if not by itself

private:
    [[nodiscard]] fs::path EnginePipe() const { return mPlace / "engine.pipe"; }

    const fs::path mPlace;
    Strings mEnvironment;
    int mVerbs = 0;
};

/// A session bus, and the first computer on it.
class Desk : public testing::Test
{
protected:
    Desk()
    {
        mScratch.Write( "bus.conf",
            "<busconfig><type>session</type><listen>unix:path=" + mSocket +
                "</listen><auth>EXTERNAL</auth><policy context=\"default\"><allow send_destination=\"*\"/>"
                "<allow receive_sender=\"*\"/><allow own=\"*\"/></policy></busconfig>\n" );
        mBus = std::make_unique<ChildOfTest>(
            Strings{ KORVALEN_DBUS_DAEMON, "--nofork", "--nopidfile", "--print-address=1",
                "--config-file=" + ( mScratch / "bus.conf" ).native() },
            Strings(), ChildOfTest::Errors::kHidden );
        EXPECT_FALSE( mBus->ReadLine().empty() ) << "the bus doesn't start";
        mMine.emplace( mScratch / "mine", Environment() );
    }
    [[nodiscard]] Strings Environment() const { return { "DBUS_SESSION_BUS_ADDRESS=unix:path=" + mSocket }; }
    Computer& Mine() { return *mMine; }

    ScratchFolder mScratch;
    const std::string mSocket = mScratch / "bus";
    std::unique_ptr<ChildOfTest> mBus;
    std::optional<Computer> mMine; // after the bus, which its engine ends without
};

inline constexpr const char* kDefault = "Global Macro Group / ";
} // namespace Day

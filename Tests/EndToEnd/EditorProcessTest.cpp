// The editor among the other processes of the machine.
#include "Tests/EndToEnd/Desk.h"

#include <sys/stat.h>

using namespace Day;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

namespace
{
class EditorProcess : public Desk
{};

/// What the descriptors of a process lead to, as the system names it.
Strings Descriptors( pid_t inProcess )
{
    Strings targets;
    std::error_code error;
    for ( const auto& entry : fs::directory_iterator( "/proc/" + std::to_string( inProcess ) + "/fd", error ) )
        targets.push_back( fs::read_symlink( entry.path(), error ) );
    return targets;
}

/// The sockets of a process that listen for others over the network.
Strings ListeningSockets( pid_t inProcess )
{
    const Strings open = Descriptors( inProcess );
    Strings listening;
    for ( const char* const table : { "tcp", "tcp6" } )
    {
        std::istringstream lines( ReadFile( "/proc/" + std::to_string( inProcess ) + "/net/" + table ) );
        for ( std::string line; std::getline( lines, line ); )
        {
            std::istringstream words( line );
            const Strings fields{ std::istream_iterator<std::string>( words ), {} };
            constexpr std::size_t kState = 3, kInode = 9;
            if ( fields.size() > kInode and fields[kState] == "0A" and
                std::ranges::count( open, "socket:[" + fields[kInode] + "]" ) > 0 )
                listening.push_back( line );
        }
    }
    return listening;
}
} // namespace

TEST_F( EditorProcess, EachSignalThatAsksForTheEndSavesEverything )
{
    int made = 0;
    for ( const int signal : { SIGTERM, SIGHUP, SIGINT } )
    {
        ASSERT_TRUE( Mine().StartEditor( { "--no-engine" } ) );
        const std::string name = "At the end " + std::to_string( ++made );
        Mine().NewMacro( name );
        EXPECT_EQ( Mine().StopEditor( signal ), 0 );
        EXPECT_THAT( Mine().Judged(), Contains( kDefault + name ) );
        EXPECT_EQ( Mine().InSetAside( "Recovery" ), Strings() );
    }
    EXPECT_THAT( Mine().EditorLog(), HasSubstr( "Editor Quitting" ) );
}

TEST_F( EditorProcess, ASecondStartHandsItsFilesToTheFirst )
{
    ASSERT_TRUE( Mine().StartEditor( { "--no-engine" } ) );
    Mine().NewMacro( "Handed" );
    const fs::path file = mScratch / "Handed.kvmacros";
    Mine().Do( { "export", "Handed", "-o", file } );
    Mine().Do( { "delete", "Handed" } );
    EXPECT_THAT( Mine().Do( { "run" } ), HasSubstr( "runs already" ) );
    Mine().Do( { "run", file } );
    EXPECT_TRUE( Until( [&] { return testing::Value( Mine().Judged(), Contains( HasSubstr( "Handed" ) ) ); } ) );
    EXPECT_EQ( Mine().StopEditor(), 0 );
}

TEST_F( EditorProcess, AnEngineFromElsewhereIsEndedEvenWhenItRefuses )
{
    const fs::path older = mScratch / "korvalen-engine";
    fs::copy_file( KORVALEN_STAND_IN_ENGINE, older );
    Process engine( { older },
        { "KORVALEN_HOME=" + Mine().Folder().native(), "DBUS_SESSION_BUS_ADDRESS=unix:path=" + mSocket,
            "KORVALEN_ENGINE_REFUSES=1", "KORVALEN_ENGINE_LOG=" + ( mScratch / "older.log" ).native() },
        mScratch / "older" );
    ASSERT_TRUE( Until( [&] { return ReadFile( mScratch / "older.log" ).starts_with( "ready" ); } ) );
    ASSERT_TRUE( Mine().StartEditor() );
    EXPECT_EQ( engine.Wait(), -SIGKILL );
    EXPECT_THAT( ReadFile( mScratch / "older.log" ), HasSubstr( "refused to quit by SIGTERM" ) );
    EXPECT_TRUE( Mine().EngineTells( "load 1 " ) ) << "ours comes in its place";
    EXPECT_EQ( Mine().StopEditor(), 0 );
}

TEST_F( EditorProcess, NobodyCanReachTheEditorOverTheNetwork )
{
    ASSERT_TRUE( Mine().StartEditor() );
    ASSERT_TRUE( Mine().EngineTells( "load 1 " ) );
    EXPECT_THAT( Descriptors( Mine().mEditor->Number() ), Contains( HasSubstr( "socket:" ) ) ) << "none is looked at";
    EXPECT_EQ( ListeningSockets( Mine().mEditor->Number() ), Strings() );
}

TEST_F( EditorProcess, TheEngineIsGivenNoDescriptorsOfOurs )
{
    const fs::path script = mScratch / "engine.sh", list = mScratch / "descriptors";
    WriteFile( script,
        "#!/bin/sh\nenv >" + ( mScratch / "environment" ).native() + "\nexec '" KORVALEN_PYTHON "' - '" +
            list.native() +
            "' <<'END'\n"
            "import os, sys\n"
            "def is_open(number):\n"
            "    try:\n"
            "        os.fstat(number)\n"
            "    except OSError:\n"
            "        return False\n"
            "    return True\n"
            "found = [str(number) for number in range(4096) if is_open(number)]\n"
            "with open(sys.argv[1] + '.new', 'w') as file:\n"
            "    file.write(' '.join(found))\n"
            "os.rename(sys.argv[1] + '.new', sys.argv[1])\n"
            "END\n" );
    fs::permissions( script, fs::perms::owner_all );
    Mine().Set( "KORVALEN_ENGINE", script );
    Mine().Set( "LD_LIBRARY_PATH", "/nonexistent" );
    ASSERT_TRUE( Mine().StartEditor() );
    ASSERT_TRUE( Until( [&] { return fs::exists( list ); } ) );
    EXPECT_EQ( ReadFile( list ), "0 1 2" );
    EXPECT_THAT( ReadFile( mScratch / "environment" ), Not( HasSubstr( "LD_LIBRARY_PATH" ) ) );
    EXPECT_EQ( Mine().StopEditor(), 0 );
}

TEST_F( EditorProcess, OthersReadNothingWhateverTheUmask )
{
    Mine().mShell = { "/bin/sh", "-c", "umask 000; exec \"$@\"", "sh" };
    ASSERT_TRUE( Mine().StartEditor() );
    ASSERT_TRUE( Mine().EngineTells( "load 1 " ) );
    const std::string uid = Mine().NewMacro( "Secret" );
    Mine().Do( { "save" } );
    Mine().Command( "toggle " + uid + " 0" );
    ASSERT_TRUE(
        Until( [&] { return Mine().Do( { "status" } ).find( "Undo Engine Disable Macro" ) != std::string::npos; } ) );
    Mine().Do( { "revisions", "revert", "launch" } );
    EXPECT_EQ( Mine().StopEditor(), 0 );
    int files = 0;
    for ( const auto& entry : fs::recursive_directory_iterator( Mine().Folder() ) )
    {
        // The engine's own, which is no program of ours.
        if ( entry.path().native().find( "Engine" ) != std::string::npos )
            continue;
        struct stat facts
        {};
        ASSERT_EQ( ::lstat( entry.path().c_str(), &facts ), 0 );
        const unsigned mode = facts.st_mode & 07777u;
        const bool isShared = entry.path().filename() == "Korvalen Enable Overrides";
        EXPECT_EQ( mode, S_ISDIR( facts.st_mode ) ? 0700u : isShared ? 0660u : 0600u ) << entry.path();
        files += not S_ISDIR( facts.st_mode );
    }
    EXPECT_GT( files, 6 );
}

#include "Tests/App/KorvalenRun.h"

#include "App/DescriptorBuffer.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <ostream>
#include <unistd.h>

TEST( Program, HelpFitsOnOneScreenAndEveryVerbHasAnExample )
{
    const std::vector<std::vector<std::string>> kVerbs = { {}, { "check" }, { "list" }, { "show" }, { "search" },
        { "smart" }, { "convert" }, { "plist" }, { "plist", "print" }, { "plist", "convert" }, { "plist", "verify" },
        { "plist", "compare" }, { "new" }, { "new", "macro" }, { "new", "group" }, { "new", "smart-group" },
        { "rename" }, { "enable" }, { "disable" }, { "move" }, { "duplicate" }, { "delete" }, { "import" },
        { "export" }, { "undo" }, { "redo" }, { "save" }, { "status" }, { "paths" }, { "revisions" },
        { "revisions", "list" }, { "revisions", "show" }, { "revisions", "compare" }, { "revisions", "revert" },
        { "revisions", "restore" }, { "set-aside" }, { "set-aside", "list" }, { "set-aside", "show" },
        { "set-aside", "compare" }, { "set-aside", "restore" }, { "share" }, { "share", "create" }, { "share", "join" },
        { "share", "stop" }, { "share", "status" }, { "prefs" }, { "prefs", "list" }, { "prefs", "get" },
        { "prefs", "set" }, { "prefs", "remove" } };
    for ( auto arguments : kVerbs )
    {
        arguments.push_back( "--help" );
        const KorvalenResult help = RunKorvalenWith( arguments );
        EXPECT_EQ( help.mStatus, 0 );
        EXPECT_EQ( help.mErrors, "" );
        EXPECT_LE( std::count( help.mOutput.begin(), help.mOutput.end(), '\n' ), 30 ) << help.mOutput;
        std::istringstream lines( help.mOutput );
        for ( std::string line; std::getline( lines, line ); )
            EXPECT_LE( TextFromUTF8( line ).size(), 100u ) << line;
        EXPECT_NE(
            help.mOutput.find( arguments.size() > 1 ? "Example: korvalen " : "Try: korvalen" ), std::string::npos )
            << help.mOutput;
    }
}

TEST( Program, WrongUsageIsOneSentenceAndStatusTwo )
{
    const struct
    {
        std::vector<std::string> mArguments;
        const char* mBeginning;
    } kCases[] = {
        { { "prunt" }, "korvalen: there is no verb “prunt” here; see “korvalen --help”" },
        { { "--prunt" }, "korvalen: there is no option “--prunt” here; see" },
        { { "plist" }, "korvalen: a verb is missing; see “korvalen plist --help”" },
        { { "plist", "print" }, "korvalen: FILE is required; see “korvalen plist print --help”" },
        { { "plist", "print", "a", "b" }, "korvalen: The following argument was not expected: b; see" },
        { { "plist", "print", "--depth", "-1", "a" }, "korvalen: --depth: " },
        { { "plist", "convert", "a" }, "korvalen: --to is required; see “korvalen plist convert --help”" },
        { { "plist", "convert", "--to", "yaml", "a" }, "korvalen: --to: " },
        { { "plist", "compare", "-", "-" }, "korvalen: standard input can only be one of the two" },
        { { "\x1B[2J\n" }, "korvalen: there is no verb “\\u001B[2J " },
    };
    for ( const auto& [arguments, beginning] : kCases )
    {
        const KorvalenResult result = RunKorvalenWith( arguments );
        EXPECT_EQ( result.mStatus, 2 ) << beginning;
        EXPECT_EQ( result.mOutput, "" ) << beginning;
        EXPECT_TRUE( result.mErrors.starts_with( beginning ) ) << result.mErrors;
        EXPECT_EQ( std::count( result.mErrors.begin(), result.mErrors.end(), '\n' ), 1 ) << result.mErrors;
    }
}

TEST( Program, AFileThatCantBeReadIsOneSentenceAndStatusOne )
{
    const KorvalenFolder folder;
    const struct
    {
        std::string mPath;
        const char* mReason;
    } kCases[] = {
        { folder.Path( "none" ), "No such file or directory; check the name and the folder" },
        { folder.Path( "." ), "it is a folder; name a file in it" },
        { folder.File( "empty", "" ), "is empty" },
        { folder.File( "broken", "{\"a\": }" ),
            "can't be understood as JSON: '}' stands where a value should, at line 1" },
        { folder.File( "rubbish", "bplist00" ), "can't be understood as a property list" },
        { "-", "standard input is empty" },
    };
    for ( const auto& [path, reason] : kCases )
    {
        const KorvalenResult result = RunKorvalenWith( { "plist", "print", path } );
        EXPECT_EQ( result.mStatus, 1 ) << path;
        EXPECT_EQ( result.mOutput, "" ) << path;
        EXPECT_NE( result.mErrors.find( reason ), std::string::npos ) << result.mErrors;
        EXPECT_EQ( std::count( result.mErrors.begin(), result.mErrors.end(), '\n' ), 1 ) << result.mErrors;
    }
}

TEST( Program, NothingInAFileReachesTheTerminalAsACommand )
{
    const std::string hostile =
        "{\"\\u001b]0;k\\u0007\": [\"\\u009b2J\\u202e\\u007f\", {\"\\u001b[31m\": \"\\u2028\"}]}";
    const KorvalenFolder folder;
    const std::string path = folder.File( "a\x1B[31m", hostile );
    const std::string other = folder.File( "other", "{}" );
    for ( const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{ { "print", path },
              { "print", "--json", path }, { "verify", path }, { "verify", "--json", path }, { "compare", path, other },
              { "compare", "--json", other, path }, { "print", path + "\n" }, { "convert", "--to", "json", path } } )
    {
        std::vector<std::string> all = { "plist" };
        all.insert( all.end(), arguments.begin(), arguments.end() );
        const KorvalenResult result = RunKorvalenWith( all );
        const Text shown = TextFromUTF8( result.mOutput + result.mErrors );
        EXPECT_GT( shown.size(), 0u );
        for ( const char16_t unit : shown )
            EXPECT_TRUE( unit == '\n' or
                ( unit >= 0x20 and ( unit < 0x7F or unit > 0x9F ) and unit != 0x202E and unit != 0x2028 ) )
                << unsigned( unit ) << " by " << arguments[0];
    }
}

TEST( Program, ColoursAreForTerminalsWhoseUserWantsThem )
{
    EXPECT_TRUE( WantsColours( true, nullptr, "xterm" ) );
    EXPECT_TRUE( WantsColours( true, "", "xterm" ) );
    EXPECT_FALSE( WantsColours( false, nullptr, "xterm" ) );
    EXPECT_FALSE( WantsColours( true, "0", "xterm" ) );
    EXPECT_FALSE( WantsColours( true, nullptr, "dumb" ) );
    EXPECT_FALSE( WantsColours( true, nullptr, nullptr ) );

    const auto print = []( bool inColours ) {
        return RunKorvalenWith( { "plist", "print", "-" }, "{\"a\": 1}", { true, inColours } ).mOutput;
    };
    EXPECT_EQ( print( true ), "dictionary of 1 key\n  \x1B[36ma\x1B[0m: 1\n" );
    EXPECT_EQ( print( false ), "dictionary of 1 key\n  a: 1\n" );
}

TEST( Program, AFailedWriteIsRememberedWithItsReason )
{
    std::signal( SIGPIPE, SIG_IGN );
    int ends[2];
    ASSERT_EQ( ::pipe( ends ), 0 );
    ::close( ends[0] );
    DescriptorBuffer buffer( ends[1] );
    std::ostream stream( &buffer );
    stream << std::string( 100'000, 'x' ) << "more";
    EXPECT_EQ( buffer.Finish(), EPIPE );
    ::close( ends[1] );
    std::signal( SIGPIPE, SIG_DFL );
}

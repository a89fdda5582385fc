#include "Platform/Linux/EngineProcesses.h"

#include "Platform/Linux/LinuxRunningApplications.h"
#include "Tests/Platform/Linux/ChildOfTest.h"
#include "Tests/Support/LogCapture.h"
#include "Tests/Support/ScratchFolder.h"

#include <gtest/gtest.h>

namespace
{
class VariableSet
{
public:
    VariableSet( const char* inName, const std::string& inValue ) : mName( inName )
    {
        ::setenv( inName, inValue.c_str(), 1 );
    }
    ~VariableSet() { ::unsetenv( mName ); }
    VariableSet( const VariableSet& ) = delete;
    VariableSet& operator=( const VariableSet& ) = delete;

private:
    const char* mName;
};

std::filesystem::path Script( const ScratchFolder& inFolder, const char* inName, const std::string& inText )
{
    inFolder.Write( inName, inText );
    ::chmod( ( inFolder / inName ).c_str(), 0700 );
    return inFolder / inName;
}

std::vector<std::int64_t> Numbers( const EngineProcesses::Folder& inFolder )
{
    std::vector<std::int64_t> numbers;
    for ( const auto& process : EngineProcesses::Find( inFolder ) )
        numbers.push_back( process->ProcessIdentifier() );
    return numbers;
}

constexpr const char* kScript = "#!/bin/sh\necho here\nread line\n";
} // namespace

TEST( EngineProcesses, AnEngineIsKnownByItsFileAndByTheFolderThatItServes )
{
    const ScratchFolder scratch;
    const EngineProcesses::Folder own{ scratch.Path() / "own", false }, other{ scratch.Path() / "other", false };
    const std::string home = "KORVALEN_HOME=" + own.mPath.native();
    std::filesystem::create_directory( scratch / "elsewhere" );
    std::filesystem::copy_file( "/bin/cat", scratch / "elsewhere/korvalen-engine" );
    const std::string script = Script( scratch, "my engine", kScript );
    const std::string named = Script( scratch, "Korvalen Engine", kScript );
    const VariableSet engine( "KORVALEN_ENGINE", script );

    const ChildOfTest program( { scratch / "elsewhere/korvalen-engine" }, { home } );
    const ChildOfTest ownScript( { script }, { home } ), namedScript( { named }, { home } );
    // Programs that have to do with the files, but aren't engines; and engines of others.
    const ChildOfTest reader( { "/bin/cat", "-", script }, { home } );
    const ChildOfTest shell( { "/bin/sh", "-c", "echo here; read line", script }, { home } );
    const ChildOfTest ofOther( { script }, { "KORVALEN_HOME=" + other.mPath.native() } );
    const ChildOfTest ofDefault( { script } );
    for ( const ChildOfTest* child : { &ownScript, &namedScript, &shell, &ofOther, &ofDefault } )
        ASSERT_EQ( child->ReadLine(), "here" );

    std::vector<std::int64_t> expected{ program.Number(), ownScript.Number(), namedScript.Number() };
    std::sort( expected.begin(), expected.end() );
    EXPECT_EQ( Numbers( own ), expected );
    EXPECT_EQ( Numbers( other ), std::vector<std::int64_t>{ ofOther.Number() } );
    EXPECT_EQ( Numbers( { scratch.Path() / "nobody's", true } ), std::vector<std::int64_t>{ ofDefault.Number() } );
    for ( const auto& process : EngineProcesses::Find( other ) )
        EXPECT_EQ( process->ExecutablePath(), script );
}

TEST( EngineProcesses, OnlyTheAbsolutePathOfAProgramCountsAsTheEngine )
{
    const LogCapture log;
    const ScratchFolder scratch;
    scratch.Write( "no program", "" );
    const std::string script = Script( scratch, "engine", kScript );
    const struct
    {
        std::string mValue;
        bool mIsTaken;
    } cases[] = { { script, true }, { scratch / "no program", false }, { scratch / "missing", false },
        { scratch.Path(), false }, { "engine", false }, { "../engine", false } };
    for ( const auto& [value, isTaken] : cases )
    {
        const VariableSet engine( "KORVALEN_ENGINE", value );
        const auto found = EngineProcesses::OwnExecutable();
        EXPECT_EQ( found.has_value(), isTaken ) << value;
        EXPECT_TRUE( not found or *found == value );
    }
    EXPECT_EQ( log.CountContaining( "KORVALEN_ENGINE is" ), 5u );
}

TEST( Launch, AProgramStartsWithNothingOfOursAndIsReaped )
{
    const ScratchFolder scratch;
    const VariableSet loader( "LD_PRELOAD", "" ), harmless( "KORVALEN_TEST_VARIABLE", "kept" );
    const std::string script = Script( scratch, "engine",
        "#!/bin/sh\ncd \"$KORVALEN_HOME\"\n"
        "for n in 0 1 2 3 4 5 6 7 8 9; do [ -e /proc/$$/fd/$n ] && open=\"$open $n\"; done\n"
        "read -r facts < /proc/$$/stat; env > variables; targets=$(readlink /proc/$$/fd/0 /proc/$$/fd/1 "
        "/proc/$$/fd/2)\n"
        "set -- $facts; [ $6 = $$ ] && session=own\n"
        "echo $open $targets $session > files; mv files done\n" );
    const int ours = ::open( "/dev/zero", O_RDONLY ); // would be inherited
    BusConnection bus( XWork::Current() );
    LinuxRunningApplications applications( bus );
    applications.SetFolder( { scratch.Path(), false } );
    EXPECT_EQ( applications.Launch( script ), std::nullopt );
    // The end of the child wakes the context.
    while ( not std::filesystem::exists( scratch / "done" ) )
        g_main_context_iteration( nullptr, TRUE );
    ::close( ours );
    EXPECT_EQ( scratch.Read( "done" ), "0 1 2 /dev/null /dev/null /dev/null own\n" );
    const std::string variables = scratch.Read( "variables" );
    EXPECT_EQ( variables.find( "LD_PRELOAD" ), std::string::npos );
    EXPECT_NE( variables.find( "KORVALEN_TEST_VARIABLE=kept\n" ), std::string::npos );
    EXPECT_NE( variables.find( "KORVALEN_HOME=" + scratch.Path().native() + "\n" ), std::string::npos );
    EXPECT_EQ( ::waitpid( -1, nullptr, WNOHANG ), -1 ) << "a child is left that nobody has reaped";
}

TEST( Launch, WhatCannotBeStartedSaysWhy )
{
    const ScratchFolder scratch;
    scratch.Write( "no program", "text" );
    BusConnection bus( XWork::Current() );
    LinuxRunningApplications applications( bus );
    for ( const std::filesystem::path& path :
        { scratch / "missing", scratch / "no program", scratch.Path(), std::filesystem::path( "relative" ) } )
    {
        const std::optional<Text> reason = applications.Launch( path );
        ASSERT_TRUE( reason ) << path;
        EXPECT_NE( UTF8FromText( *reason ).find( path.native() ), std::string::npos );
    }
}

TEST( ProcessExists, OnlyANumberThatAProcessCanHaveIsAsked )
{
    BusConnection bus( XWork::Current() );
    const LinuxRunningApplications applications( bus );
    EXPECT_TRUE( applications.ProcessExists( ::getpid() ) );
    EXPECT_TRUE( applications.ProcessExists( 1 ) );
    for ( const std::int64_t number :
        { std::int64_t( 0 ), std::int64_t( -1 ), std::int64_t( 1 ) << 40, ( std::int64_t( 1 ) << 32 ) + ::getpid() } )
        EXPECT_FALSE( applications.ProcessExists( number ) ) << number;
}

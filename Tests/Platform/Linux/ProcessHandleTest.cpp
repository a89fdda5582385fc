#include "Platform/Linux/ProcessHandle.h"

#include "Tests/Platform/Linux/ChildOfTest.h"
#include "Tests/Support/LogCapture.h"

#include <gtest/gtest.h>

namespace
{
// Both read their input to its end, so a test that fails leaves none behind.
const std::vector<std::string> kReader{ "/bin/cat" };
const std::vector<std::string> kReaderLater{ "/bin/sh", "-c", "read line; exec cat" };
} // namespace

TEST( ProcessHandle, ARunningProcessIsKnownByNumberAndFile )
{
    const ChildOfTest child( kReader );
    const auto handle = ProcessHandle::Hold( child.Number() );
    ASSERT_TRUE( handle );
    EXPECT_EQ( handle->ProcessIdentifier(), child.Number() );
    EXPECT_EQ( handle->Identity(), FileIdentity::Of( "/bin/cat" ) );
    EXPECT_EQ( handle->ExecutablePath(), std::filesystem::canonical( "/bin/cat" ) );
    EXPECT_TRUE( handle->IsRunning() );
}

TEST( ProcessHandle, BothWaysOfEndingUseTheirSignal )
{
    constexpr struct
    {
        void ( XRunningApplication::*mEnd )();
        int mSignal;
    } kCases[] = { { &XRunningApplication::terminate, SIGTERM }, { &XRunningApplication::forceTerminate, SIGKILL } };
    for ( const auto& [end, signal] : kCases )
    {
        ChildOfTest child( kReader );
        const auto handle = ProcessHandle::Hold( child.Number() );
        ASSERT_TRUE( handle );
        ( *handle.*end )();
        const int status = child.Reap();
        EXPECT_TRUE( WIFSIGNALED( status ) and WTERMSIG( status ) == signal ) << signal;
        EXPECT_FALSE( handle->IsRunning() );
    }
}

TEST( ProcessHandle, OneThatEndedIsNotRunningBeforeItIsReapedEither )
{
    ChildOfTest child( kReader );
    const auto handle = ProcessHandle::Hold( child.Number() );
    ASSERT_TRUE( handle );
    EXPECT_TRUE( ProcessFacts::IsAlive( child.Number() ) );
    child.CloseInput();
    child.WaitForEnd();
    EXPECT_FALSE( handle->IsRunning() );
    EXPECT_FALSE( ProcessFacts::IsAlive( child.Number() ) );
    EXPECT_FALSE( ProcessHandle::Hold( child.Number() ) );
    // The number is free from here on; whoever has it isn't hit.
    EXPECT_EQ( child.Reap(), 0 );
    handle->terminate();
    handle->forceTerminate();
    EXPECT_FALSE( handle->IsRunning() );
}

TEST( ProcessHandle, OneThatRunsAnotherFileByNowIsLeftAlone )
{
    const LogCapture log;
    const ChildOfTest child( kReaderLater );
    const auto handle = ProcessHandle::Hold( child.Number() );
    ASSERT_TRUE( handle );
    child.Write( "a line for the shell\n" );
    child.Write( "one that comes back\n" );
    ASSERT_EQ( child.ReadLine(), "one that comes back" );
    handle->terminate();
    handle->forceTerminate();
    child.Write( "still here\n" );
    EXPECT_EQ( child.ReadLine(), "still here" );
    EXPECT_EQ( log.CountContaining( "runs another program by now" ), 2u );
}

TEST( ProcessHandle, NeitherThisProcessNorTheSystemsFirstIsHeld )
{
    for ( const pid_t number : { ::getpid(), pid_t( 1 ), pid_t( 0 ), pid_t( -1 ), ::getpgrp() * -1 } )
        EXPECT_FALSE( ProcessHandle::Hold( number ) ) << number;
    const std::vector<pid_t> processes = ProcessFacts::OfThisUser();
    EXPECT_EQ( std::count( processes.begin(), processes.end(), ::getpid() ), 0 );
    EXPECT_EQ( std::count( processes.begin(), processes.end(), 1 ), 0 );
    EXPECT_TRUE( std::is_sorted( processes.begin(), processes.end() ) );
}

TEST( ProcessFacts, ArgumentsAndVariablesAreThoseOfTheStart )
{
    const ChildOfTest child( { "/bin/sh", "-c", "echo here; read line", "a b", "" }, { "A=1", "AB=2=3", "C=" } );
    ASSERT_EQ( child.ReadLine(), "here" );
    EXPECT_EQ( ProcessFacts::Arguments( child.Number() ),
        ( std::vector<std::string>{ "/bin/sh", "-c", "echo here; read line", "a b", "" } ) );
    EXPECT_EQ( ProcessFacts::Variable( child.Number(), "AB" ), "2=3" );
    EXPECT_EQ( ProcessFacts::Variable( child.Number(), "C" ), "" );
    EXPECT_FALSE( ProcessFacts::Variable( child.Number(), "B" ) );
    EXPECT_EQ( ProcessFacts::WorkingFolder( child.Number() ), std::filesystem::current_path() );
}

// A child process of a test, with pipes to its input and output; ended and reaped at the end.
#pragma once

#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

class ChildOfTest
{
public:
    enum class Errors { kShown, kHidden };

    explicit ChildOfTest( std::vector<std::string> inCommand, std::vector<std::string> inEnvironment = {},
        Errors inErrors = Errors::kShown )
    {
        int input[2], output[2];
        if ( ::pipe2( input, O_CLOEXEC ) != 0 or ::pipe2( output, O_CLOEXEC ) != 0 )
            return;
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init( &actions );
        posix_spawn_file_actions_adddup2( &actions, input[0], STDIN_FILENO );
        posix_spawn_file_actions_adddup2( &actions, output[1], STDOUT_FILENO );
        if ( inErrors == Errors::kHidden )
            posix_spawn_file_actions_addopen( &actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0 );
        if ( ::posix_spawn( &mNumber, inCommand.front().c_str(), &actions, nullptr, Pointers( inCommand ).data(),
                 Pointers( inEnvironment ).data() ) != 0 )
            mNumber = 0;
        posix_spawn_file_actions_destroy( &actions );
        ::close( input[0] );
        ::close( output[1] );
        mInput = input[1];
        mOutput = output[0];
    }
    ~ChildOfTest()
    {
        CloseInput();
        ::close( mOutput );
        if ( mNumber > 0 )
            ::kill( mNumber, SIGKILL );
        Reap();
    }
    ChildOfTest( const ChildOfTest& ) = delete;
    ChildOfTest& operator=( const ChildOfTest& ) = delete;

    /// 0 when it couldn't be started.
    [[nodiscard]] pid_t Number() const { return mNumber; }
    void Write( const std::string& inText ) const { (void)!::write( mInput, inText.data(), inText.size() ); }
    void CloseInput()
    {
        if ( mInput >= 0 )
            ::close( mInput );
        mInput = -1;
    }
    /// The next line, without its end; waits for it. "" at the end of the output.
    [[nodiscard]] std::string ReadLine() const
    {
        std::string line;
        for ( char character; ::read( mOutput, &character, 1 ) == 1 and character != '\n'; )
            line += character;
        return line;
    }
    /// Returns when it has ended, and leaves it unreaped.
    void WaitForEnd() const
    {
        siginfo_t info{};
        (void)::waitid( P_PID, id_t( mNumber ), &info, WEXITED | WNOWAIT );
    }
    /// Waits for the end; the wait status.
    int Reap()
    {
        int status = 0;
        if ( mNumber > 0 )
            ::waitpid( mNumber, &status, 0 );
        mNumber = 0;
        return status;
    }

private:
    static std::vector<char*> Pointers( std::vector<std::string>& inStrings )
    {
        std::vector<char*> pointers;
        for ( std::string& string : inStrings )
            pointers.push_back( string.data() );
        pointers.push_back( nullptr );
        return pointers;
    }

    pid_t mNumber = 0;
    int mInput = -1, mOutput = -1;
};

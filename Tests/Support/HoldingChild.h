// Another process that takes something, says so, and then stands still until it is killed: a crash, as far as anybody
// can tell.
#pragma once

#include <csignal>
#include <functional>
#include <sys/wait.h>
#include <unistd.h>

class HoldingChild
{
public:
    /// Returns when the child has run the function, which says whether it has what it should have.
    explicit HoldingChild( const std::function<bool()>& inTake )
    {
        int ends[2] = {};
        if ( ::pipe( ends ) != 0 )
            return;
        mProcess = ::fork();
        if ( mProcess == 0 )
        {
            const char answer = inTake() ? 1 : 0;
            const bool isTold = ::write( ends[1], &answer, 1 ) == 1;
            while ( isTold )
                ::pause();
            ::_exit( 1 );
        }
        ::close( ends[1] );
        char answer = 0;
        mHasIt = ::read( ends[0], &answer, 1 ) == 1 and answer == 1;
        ::close( ends[0] );
    }
    ~HoldingChild() { Kill(); }
    HoldingChild( const HoldingChild& ) = delete;
    HoldingChild& operator=( const HoldingChild& ) = delete;

    [[nodiscard]] bool HasIt() const { return mHasIt; }
    [[nodiscard]] pid_t Process() const { return mProcess; }
    void Kill()
    {
        if ( mProcess > 0 )
        {
            ::kill( mProcess, SIGKILL );
            ::waitpid( mProcess, nullptr, 0 );
        }
        mProcess = -1;
    }

private:
    pid_t mProcess = -1;
    bool mHasIt = false;
};

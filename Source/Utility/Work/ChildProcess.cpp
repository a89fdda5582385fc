// A thread waits for the command's end without reaping it, and tells the poll loop through a pipe of our own. Until the
// loop reaps it the process number can't be given to another process, and only the loop sends signals:
// so none can hit a stranger.
#include "Utility/Work/ChildProcess.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

namespace
{
constexpr std::size_t kReadSize = 65536;
// What a pipe can hold at most: more than this after the command's end was written by someone else.
constexpr std::size_t kMaxPipeContent = std::size_t( 1 ) << 20;

class Descriptor
{
public:
    Descriptor() = default;
    explicit Descriptor( int inDescriptor ) : mDescriptor( inDescriptor ) {}
    Descriptor( Descriptor&& inOther ) noexcept : mDescriptor( std::exchange( inOther.mDescriptor, -1 ) ) {}
    Descriptor& operator=( Descriptor&& inOther ) noexcept
    {
        std::swap( mDescriptor, inOther.mDescriptor );
        return *this;
    }
    ~Descriptor() { Close(); }

    [[nodiscard]] int Get() const { return mDescriptor; }
    [[nodiscard]] bool IsOpen() const { return mDescriptor >= 0; }
    void Close()
    {
        if ( mDescriptor >= 0 )
            ::close( std::exchange( mDescriptor, -1 ) );
    }

private:
    int mDescriptor = -1;
};

struct Pipe
{
    Descriptor mRead, mWrite;

    [[nodiscard]] bool Open()
    {
        int ends[2];
        if ( ::pipe( ends ) != 0 )
            return false;
        mRead = Standing( ends[0] );
        mWrite = Standing( ends[1] );
        return mRead.IsOpen() and mWrite.IsOpen();
    }

private:
    // Where a standard descriptor of ours is closed, a pipe may get its number and be in the way in the child.
    static Descriptor Standing( int inEnd )
    {
        const Descriptor end( inEnd );
        return Descriptor( ::fcntl( end.Get(), F_DUPFD_CLOEXEC, 3 ) );
    }
};

void SetNonBlocking( const Descriptor& inDescriptor )
{
    ::fcntl( inDescriptor.Get(), F_SETFL, ::fcntl( inDescriptor.Get(), F_GETFL ) | O_NONBLOCK );
}

// Writing to a command that has closed its input must fail, not end this process.
class PipeSignalBlocked
{
public:
    PipeSignalBlocked()
    {
        sigemptyset( &mPipeSignal );
        sigaddset( &mPipeSignal, SIGPIPE );
        sigset_t pending;
        sigpending( &pending );
        mWasPending = sigismember( &pending, SIGPIPE ) == 1;
        pthread_sigmask( SIG_BLOCK, &mPipeSignal, &mPrevious );
    }
    ~PipeSignalBlocked()
    {
        sigset_t pending;
        sigpending( &pending );
        if ( not mWasPending and sigismember( &pending, SIGPIPE ) == 1 )
        {
            int signal = 0;
            sigwait( &mPipeSignal, &signal );
        }
        pthread_sigmask( SIG_SETMASK, &mPrevious, nullptr );
    }
    PipeSignalBlocked( const PipeSignalBlocked& ) = delete;
    PipeSignalBlocked& operator=( const PipeSignalBlocked& ) = delete;

private:
    sigset_t mPipeSignal, mPrevious;
    bool mWasPending;
};

std::vector<char*> PointersTo( const std::vector<std::string>& inStrings )
{
    std::vector<char*> pointers;
    for ( const std::string& string : inStrings )
        pointers.push_back( const_cast<char*>( string.c_str() ) ); // as the system's declaration wants it
    pointers.push_back( nullptr );
    return pointers;
}

std::string_view PathOf( const std::vector<std::string>& inEnvironment )
{
    for ( const std::string_view entry : inEnvironment )
    {
        if ( entry.starts_with( "PATH=" ) )
            return entry.substr( 5 );
    }
    return "/usr/local/bin:/usr/bin:/bin";
}

// Entries that are relative are passed over: what is in the current folder isn't a command.
std::string FindCommand( const XChildProcess::Command& inCommand )
{
    if ( inCommand.mPath.find( '/' ) != std::string::npos )
        return inCommand.mPath;
    std::string_view path = PathOf( inCommand.mEnvironment );
    while ( not path.empty() )
    {
        const std::string_view folder = path.substr( 0, path.find( ':' ) );
        path.remove_prefix( std::min( folder.size() + 1, path.size() ) );
        const std::string candidate = std::string( folder ) + "/" + inCommand.mPath;
        if ( folder.starts_with( '/' ) and ::access( candidate.c_str(), X_OK ) == 0 )
            return candidate;
    }
    return {};
}

bool HasNul( const XChildProcess::Command& inCommand )
{
    const auto has = []( const std::string& inString ) { return inString.find( '\0' ) != std::string::npos; };
    return has( inCommand.mPath ) or std::any_of( inCommand.mArguments.begin(), inCommand.mArguments.end(), has ) or
        std::any_of( inCommand.mEnvironment.begin(), inCommand.mEnvironment.end(), has );
}

// The child's side of the start: descriptors, group and signals.
class SpawnSetup
{
public:
    SpawnSetup( int inInput, int inOutput, int inError )
    {
        posix_spawn_file_actions_init( &mActions );
        posix_spawn_file_actions_adddup2( &mActions, inInput, 0 );
        posix_spawn_file_actions_adddup2( &mActions, inOutput, 1 );
        posix_spawn_file_actions_adddup2( &mActions, inError, 2 );
        short flags = POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK;
        // Not every library opens its files so that they close by themselves.
#if defined( __APPLE__ )
        flags |= POSIX_SPAWN_CLOEXEC_DEFAULT;
#else
        posix_spawn_file_actions_addclosefrom_np( &mActions, 3 );
#endif
        posix_spawnattr_init( &mAttributes );
        posix_spawnattr_setflags( &mAttributes, flags );
        posix_spawnattr_setpgroup( &mAttributes, 0 );
        sigset_t signals;
        sigemptyset( &signals );
        posix_spawnattr_setsigmask( &mAttributes, &signals );
        for ( const int signal : { SIGPIPE, SIGINT, SIGQUIT, SIGHUP, SIGTERM, SIGCHLD } )
            sigaddset( &signals, signal );
        posix_spawnattr_setsigdefault( &mAttributes, &signals );
    }
    ~SpawnSetup()
    {
        posix_spawn_file_actions_destroy( &mActions );
        posix_spawnattr_destroy( &mAttributes );
    }
    SpawnSetup( const SpawnSetup& ) = delete;
    SpawnSetup& operator=( const SpawnSetup& ) = delete;

    posix_spawn_file_actions_t mActions;
    posix_spawnattr_t mAttributes;
};
} // namespace

struct XChildProcess::Parts
{
    pid_t mProcess = 0;
    Pipe mInput, mOutput, mError, mWake;
    std::atomic<bool> mTerminate{ false }, mEnded{ false };
    std::thread mWaiter;

    void Poke()
    {
        const char byte = 0;
        // The pipe doesn't block: if it is full the loop has enough to wake it.
        [[maybe_unused]] const auto written = ::write( mWake.mWrite.Get(), &byte, 1 );
    }
    void WaitForEnd()
    {
        siginfo_t info;
        while ( ::waitid( P_PID, id_t( mProcess ), &info, WEXITED | WNOWAIT ) != 0 and errno == EINTR )
        {}
        mEnded = true;
        Poke();
    }
    void SignalGroup( int inSignal ) const { ::kill( -mProcess, inSignal ); }
    // The command itself by its own number too, for it may have gone to another group.
    void KillGroup() const
    {
        SignalGroup( SIGKILL );
        ::kill( mProcess, SIGKILL );
    }
    // From here on the number is free for another process.
    [[nodiscard]] int Reap()
    {
        int status = 0;
        while ( ::waitpid( mProcess, &status, 0 ) < 0 and errno == EINTR )
        {}
        mProcess = 0;
        return status;
    }
};

// The poll loop and its state.
class XChildProcess::Communication
{
public:
    Communication(
        Parts& ioParts, std::string_view inInput, Handler& ioHandler, const Limits& inLimits, const XClock& inClock )
        : mParts( ioParts ),
          mInput( inInput ),
          mHandler( ioHandler ),
          mLimits( inLimits ),
          mClock( inClock ),
          mBuffer( kReadSize )
    {
        if ( mLimits.mTimeout )
            mDeadline = mClock.MonotonicSeconds() + *mLimits.mTimeout;
    }

    End::Cause Run()
    {
        if ( mInput.empty() )
            mParts.mInput.mWrite.Close();
        while ( not mParts.mEnded )
        {
            Poll();
            CheckTermination();
            CheckDeadline();
        }
        if ( mCause != End::Cause::kItself )
            mParts.KillGroup(); // the rest of the group, before the number is free
        mReadSinceEnd = 0;
        while ( ReadOnce( mParts.mOutput.mRead, false ) and mReadSinceEnd < kMaxPipeContent )
        {}
        mReadSinceEnd = 0;
        while ( ReadOnce( mParts.mError.mRead, true ) and mReadSinceEnd < kMaxPipeContent )
        {}
        return mCause;
    }

private:
    void Poll()
    {
        const bool wantsMore = mHandler.WantsMore();
        pollfd entries[] = {
            { mParts.mWake.mRead.Get(), POLLIN, 0 },
            { mParts.mInput.mWrite.Get(), POLLOUT, 0 }, // a closed one is -1, which poll passes over
            { wantsMore ? mParts.mOutput.mRead.Get() : -1, POLLIN, 0 },
            { wantsMore ? mParts.mError.mRead.Get() : -1, POLLIN, 0 },
        };
        if ( ::poll( entries, std::size( entries ), PollTime() ) <= 0 )
            return;
        if ( entries[0].revents )
            while ( ::read( mParts.mWake.mRead.Get(), mBuffer.data(), mBuffer.size() ) > 0 )
            {}
        if ( entries[1].revents )
            WriteOnce();
        if ( entries[2].revents )
            ReadOnce( mParts.mOutput.mRead, false );
        if ( entries[3].revents )
            ReadOnce( mParts.mError.mRead, true );
    }

    // In short parts, for the clock that counts may be another than the system's.
    [[nodiscard]] int PollTime() const
    {
        if ( not mDeadline )
            return -1;
        return int( std::clamp( ( *mDeadline - mClock.MonotonicSeconds() ) * 1000 + 1, 0.0, 100.0 ) );
    }

    void WriteOnce()
    {
        const PipeSignalBlocked blocked;
        const ssize_t written = ::write( mParts.mInput.mWrite.Get(), mInput.data(), mInput.size() );
        if ( written > 0 )
            mInput.remove_prefix( std::size_t( written ) );
        const bool isGone = written < 0 and errno != EAGAIN and errno != EINTR; // nobody reads any more
        if ( isGone or mInput.empty() )
            mParts.mInput.mWrite.Close();
    }

    // True when there was something.
    bool ReadOnce( Descriptor& ioDescriptor, bool inIsError )
    {
        if ( not ioDescriptor.IsOpen() )
            return false;
        const ssize_t count = ::read( ioDescriptor.Get(), mBuffer.data(), mBuffer.size() );
        if ( count < 0 and ( errno == EAGAIN or errno == EINTR ) )
            return errno == EINTR;
        if ( count <= 0 )
        {
            ioDescriptor.Close();
            return false;
        }
        mReadSinceEnd += std::size_t( count );
        mTotal += std::size_t( count );
        if ( mTotal > mLimits.mMaximumOutput )
            Kill( End::Cause::kTooMuchOutput );
        else
            inIsError ? mHandler.Error( { mBuffer.data(), std::size_t( count ) } )
                      : mHandler.Output( { mBuffer.data(), std::size_t( count ) } );
        return true;
    }

    void CheckTermination()
    {
        if ( not mParts.mTerminate or mCause != End::Cause::kItself )
            return;
        mCause = End::Cause::kTerminated;
        mParts.SignalGroup( SIGTERM );
        mParts.SignalGroup( SIGCONT ); // a stopped process hears nothing else
        mDeadline = mClock.MonotonicSeconds() + kGraceSeconds;
    }

    void CheckDeadline()
    {
        if ( mDeadline and mClock.MonotonicSeconds() >= *mDeadline )
            Kill( End::Cause::kTimeout );
    }

    void Kill( End::Cause inCause )
    {
        if ( mCause == End::Cause::kItself )
            mCause = inCause;
        mParts.KillGroup();
        mDeadline.reset();
    }

    Parts& mParts;
    std::string_view mInput;
    Handler& mHandler;
    const Limits& mLimits;
    const XClock& mClock;
    std::vector<char> mBuffer;
    std::optional<double> mDeadline;
    std::size_t mTotal = 0, mReadSinceEnd = 0;
    End::Cause mCause = End::Cause::kItself;
};

XChildProcess::XChildProcess( std::unique_ptr<Parts> inParts ) : mParts( std::move( inParts ) ) {}

XChildProcess::~XChildProcess()
{
    if ( mParts->mProcess == 0 )
        return;
    // Started, but nobody communicated: it doesn't go on unheard.
    mParts->KillGroup();
    if ( mParts->mWaiter.joinable() )
        mParts->mWaiter.join();
    (void)mParts->Reap();
}

std::unique_ptr<XChildProcess> XChildProcess::Start( const Command& inCommand, std::string& outFault )
{
    if ( HasNul( inCommand ) )
    {
        outFault = "the command, an argument or a variable holds a NUL";
        return nullptr;
    }
    const std::string path = FindCommand( inCommand );
    if ( path.empty() )
    {
        outFault = "the command is not on the path";
        return nullptr;
    }
    auto parts = std::make_unique<Parts>();
    if ( not parts->mInput.Open() or not parts->mOutput.Open() or not parts->mWake.Open() or
        ( not inCommand.mMergeStdErr and not parts->mError.Open() ) )
    {
        outFault = std::strerror( errno );
        return nullptr;
    }
    const Pipe& error = inCommand.mMergeStdErr ? parts->mOutput : parts->mError;
    const SpawnSetup setup( parts->mInput.mRead.Get(), parts->mOutput.mWrite.Get(), error.mWrite.Get() );
    std::vector<std::string> arguments = { inCommand.mPath };
    arguments.insert( arguments.end(), inCommand.mArguments.begin(), inCommand.mArguments.end() );
    const int fault = ::posix_spawn( &parts->mProcess, path.c_str(), &setup.mActions, &setup.mAttributes,
        PointersTo( arguments ).data(), PointersTo( inCommand.mEnvironment ).data() );
    if ( fault != 0 )
    {
        outFault = std::strerror( fault );
        return nullptr;
    }
    parts->mInput.mRead.Close();
    parts->mOutput.mWrite.Close();
    parts->mError.mWrite.Close();
    for ( const Descriptor* descriptor : { &parts->mInput.mWrite, &parts->mOutput.mRead, &parts->mError.mRead,
              &parts->mWake.mRead, &parts->mWake.mWrite } )
    {
        if ( descriptor->IsOpen() )
            SetNonBlocking( *descriptor );
    }
    Parts& started = *parts;
    std::unique_ptr<XChildProcess> child( new XChildProcess( std::move( parts ) ) );
    try
    {
        started.mWaiter = std::thread( [&started] { started.WaitForEnd(); } );
    }
    catch ( const std::system_error& failure )
    {
        outFault = failure.what();
        return nullptr;
    }
    return child;
}

XChildProcess::End XChildProcess::Communicate(
    std::string_view inInput, Handler& ioHandler, const Limits& inLimits, const XClock& inClock )
{
    End end;
    end.mCause = Communication( *mParts, inInput, ioHandler, inLimits, inClock ).Run();
    mParts->mWaiter.join();
    const int status = mParts->Reap();
    end.mBySignal = WIFSIGNALED( status );
    end.mStatus = end.mBySignal ? WTERMSIG( status ) : WEXITSTATUS( status );
    return end;
}

void XChildProcess::Terminate()
{
    mParts->mTerminate = true;
    mParts->Poke();
}

void XChildProcess::Wake()
{
    mParts->Poke();
}

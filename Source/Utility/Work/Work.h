// Where work runs: queues with labels, the main queue, timers and groups. Everything asks the
// environment in use, `XWork::Current()`, for its queues; in the program that is XThreadedWork,
// and in tests XManualWork, where nothing runs until the test says so. State that the process
// holds once (writers, pending requests) hangs on the environment too, so that a test starts
// with none.
#pragma once

#include "CFMethods/Text.h"
#include "Utility/Work/Clock.h"

#include <condition_variable>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <typeindex>
#include <unordered_map>

using XBlock = std::function<void()>;

/// True on the thread that was declared main, and in a block of the main queue. Without a
/// declaration the first thread that asks is the main one.
[[nodiscard]] bool XIsMainThread();
/// Declares the calling thread to be the main one. At start, once.
void XDeclareMainThread();

/// A queue of blocks. A serial queue runs one block at a time, in the order in which they came; a
/// concurrent one starts them in that order and runs several at once; the main queue is serial,
/// and the main loop runs it. Every operation may be called from any thread.
///
/// A block that throws loses only itself: the exception is logged. On the main queue it reaches
/// whoever runs the loop, and out of Sync it reaches the caller.
class XQueue : public std::enable_shared_from_this<XQueue>
{
public:
    enum class Kind { kSerial, kConcurrent, kMain };

    virtual ~XQueue() = default;
    XQueue( const XQueue& ) = delete;
    XQueue& operator=( const XQueue& ) = delete;

    [[nodiscard]] const Text& GetLabel() const { return mLabel; }
    [[nodiscard]] Kind GetKind() const { return mKind; }

    /// Queues a block and returns at once. After the environment has finished the block is dropped.
    virtual void Async( XBlock inBlock ) = 0;

    /// Queues a block and returns when it has run. From the queue itself, directly or by way of
    /// other queues that wait for each other, this would wait for ever: that is an assertion, and
    /// the block runs here and now. It keeps its exclusiveness, for whoever occupies the queue is
    /// waiting, and nothing is lost but the order behind blocks that were queued earlier.
    void Sync( const XBlock& inBlock ) { PrivateSync( inBlock, nullptr ); }
    /// The same for callers that order their own lists by the queue: the lock is held until the
    /// block has its place in the queue, and open while the caller waits.
    void Sync( const XBlock& inBlock, std::unique_lock<std::mutex>& ioLock ) { PrivateSync( inBlock, &ioLock ); }

    /// Queues a block in so many seconds; what isn't positive means now.
    void After( double inSeconds, XBlock inBlock );

    /// Whether the caller occupies this queue: it is in a block of the queue, or in one that a block
    /// of the queue waits for.
    [[nodiscard]] bool IsCurrent() const;

protected:
    friend class XTimer;

    // What a thread is running, and on whose behalf. The chain goes on across threads: a caller of
    // Sync stands still, so its frame may be read.
    struct Frame
    {
        const XQueue* mQueue;
        const Frame* mCaller;
    };
    // A Sync under way; lives on the stack of the caller.
    struct SyncCall
    {
        const XBlock* mBlock;
        const Frame* mCaller;
        std::condition_variable mChanged;
        bool mDone = false; // guarded by the environment's mutex
        std::exception_ptr mException;
    };
    struct Job
    {
        XBlock mBlock; // empty when mCall is set
        SyncCall* mCall = nullptr;
    };

    XQueue( TextView inLabel, Kind inKind ) : mLabel( inLabel ), mKind( inKind ) {}

    /// Gives the call its place; false when the environment has finished.
    virtual bool Place( SyncCall& ioCall ) = 0;
    /// Returns when the call is done.
    virtual void Await( SyncCall& ioCall ) = 0;
    /// Queues the block when the monotonic clock reaches the time; the number serves to cancel.
    virtual std::uint64_t AddWakeUp( double inMonotonicTime, XBlock inBlock ) = 0;
    virtual void CancelWakeUp( std::uint64_t inNumber ) = 0;
    [[nodiscard]] virtual const XClock& Clock() const = 0;
    /// Whether somebody down the stack holds the queue who can't go on before the caller does.
    [[nodiscard]] virtual bool IsOccupied() const { return false; }

    /// Runs a job of this queue on the calling thread.
    void Run( Job& ioJob ) const;
    [[nodiscard]] static bool IsAnythingRunningHere();

private:
    friend bool XIsMainThread();

    void PrivateSync( const XBlock& inBlock, std::unique_lock<std::mutex>* ioLock );

    static thread_local const Frame* gFrame;

    Text mLabel;
    Kind mKind;
};

/// An environment of queues.
class XWork
{
public:
    virtual ~XWork() = default;
    XWork( const XWork& ) = delete;
    XWork& operator=( const XWork& ) = delete;

    [[nodiscard]] virtual std::shared_ptr<XQueue> MakeSerialQueue( TextView inLabel ) = 0;
    [[nodiscard]] virtual std::shared_ptr<XQueue> MakeConcurrentQueue( TextView inLabel ) = 0;
    [[nodiscard]] virtual const std::shared_ptr<XQueue>& MainQueue() = 0;

    /// The clock that the timers of this environment follow.
    [[nodiscard]] virtual const XClock& Clock() const = 0;

    /// Runs what is on the main queue now, not what comes meanwhile; the number of blocks. Main thread.
    virtual std::size_t DrainMainQueue() = 0;
    /// What to call, from any thread, when the main queue has something to run: whoever drives the
    /// main loop installs it. Empty for none.
    virtual void SetMainWakeUp( std::function<void()> inWakeUp ) = 0;

    /// Lets the environment do the work that a waiting caller waits for, if it has no threads that do it
    /// by themselves. True when the condition holds; false means that the caller has to block.
    virtual bool RunUntil( const std::function<bool()>& inDone ) = 0;

    /// Waits for the blocks that are running, and drops all others: nothing runs afterwards. Callers
    /// of Sync return. Not from a block of this environment.
    virtual void Finish() = 0;

    /// The environment's one T, made with the environment at first use. Its constructor must not
    /// ask for another.
    template<class T>
    [[nodiscard]] T& Shared()
    {
        return *static_cast<T*>(
            SharedObject( typeid( T ), [this]() -> std::shared_ptr<void> { return std::make_shared<T>( *this ); } ) );
    }

    /// The environment in use: threads, unless another was installed. Any thread.
    [[nodiscard]] static XWork& Current();

    /// Installs an environment for as long as this object lives. Main thread, while nothing else runs.
    class Substitute
    {
    public:
        explicit Substitute( XWork& inWork );
        ~Substitute();
        Substitute( const Substitute& ) = delete;
        Substitute& operator=( const Substitute& ) = delete;

    private:
        XWork* mPrevious;
    };

protected:
    XWork() = default;
    /// For destructors: the shared objects go while the environment is still whole.
    void DropShared();

private:
    void* SharedObject( std::type_index inType, const std::function<std::shared_ptr<void>()>& inMake );

    std::mutex mSharedMutex;
    std::unordered_map<std::type_index, std::shared_ptr<void>> mShared;
};

/// Runs a handler on a queue, once, when its time comes; setting it again moves the time. The
/// operations are called on that queue; there, a handler that was cancelled or moved never runs.
class XTimer
{
public:
    XTimer( std::shared_ptr<XQueue> inQueue, XBlock inHandler );
    ~XTimer();
    XTimer( const XTimer& ) = delete;
    XTimer& operator=( const XTimer& ) = delete;

    /// The time is on the monotonic clock of the queue's environment, in seconds.
    void SetAt( double inMonotonicTime );
    void Cancel();

private:
    struct State
    {
        XBlock mHandler;
        std::uint64_t mGeneration = 0;
    };

    std::shared_ptr<XQueue> mQueue;
    std::shared_ptr<State> mState;
    std::uint64_t mWakeUp = 0;
};

/// Counts work that is under way, and waits for it. Any thread.
class XGroup
{
public:
    explicit XGroup( XWork& inWork = XWork::Current() ) : mWork( inWork ) {}

    void Enter();
    /// Asserts that there was an Enter.
    void Leave();
    /// Queues a block, and counts it until it has run.
    void Async( XQueue& inQueue, XBlock inBlock );
    /// Returns when the count is 0.
    void Wait();

private:
    struct State
    {
        std::mutex mMutex;
        std::condition_variable mChanged;
        std::size_t mCount = 0;
    };
    static void Leave( State& ioState );

    XWork& mWork;
    // Shared, for the last to leave still touches it when the waiter has gone on.
    std::shared_ptr<State> mState = std::make_shared<State>();
};

// Invariants, all under the core's one mutex:
// - A queue is in the ready list once for each block that may start now: a serial queue at most once, and not
//   while a block of it runs; a concurrent queue as often as its width has room.
// - There are never more ready entries than threads that are free or about to be.
// - Blocks run, and are destroyed, with the mutex open.
// Threads hold the core, so that the last of them may still touch it when the environment is gone.
#include "Utility/Work/ThreadedWork.h"

#include "XCAF/XErrorHandler.h"

#include <chrono>
#include <deque>
#include <map>
#include <thread>
#include <vector>

namespace
{
// Whose thread this is, for an environment can't wait for the end of its own threads on one of them.
thread_local const void* gCoreOfThread = nullptr;
} // namespace

struct XThreadedWork::Core : std::enable_shared_from_this<Core>
{
    class Queue;
    struct WakeUp
    {
        std::shared_ptr<XQueue> mQueue;
        XBlock mBlock;
    };
    using WakeUpKey = std::pair<double, std::uint64_t>; // time, number

    explicit Core( const XClock& inClock ) : mClock( inClock ) {}

    void MakeReady( std::shared_ptr<Queue> inQueue );
    void WorkerLoop();
    void TimerLoop();
    std::uint64_t AddWakeUp( double inMonotonicTime, std::shared_ptr<XQueue> inQueue, XBlock inBlock );
    void CancelWakeUp( std::uint64_t inNumber );
    std::shared_ptr<Queue> MakeQueue( TextView inLabel, XQueue::Kind inKind );
    void Finish();

    template<class Function>
    bool StartThread( const Function& inFunction );

    const XClock& mClock;
    std::mutex mMutex;
    std::condition_variable mReadyChanged, mTimesChanged, mThreadEnded;
    bool mFinished = false;

    std::deque<std::shared_ptr<Queue>> mReady;
    std::vector<std::weak_ptr<Queue>> mQueues; // for Finish, which has to find what is pending
    std::size_t mFreeThreads = 0, mThreads = 0;

    std::map<WakeUpKey, WakeUp> mWakeUps;
    std::unordered_map<std::uint64_t, double> mWakeUpTimes;
    std::uint64_t mLastWakeUp = 0;
    bool mKeepsTime = false;

    std::function<void()> mMainWakeUp;
};

class XThreadedWork::Core::Queue final : public XQueue
{
public:
    Queue( std::shared_ptr<Core> inCore, TextView inLabel, Kind inKind )
        : XQueue( inLabel, inKind ),
          mCore( std::move( inCore ) )
    {}

    void Async( XBlock inBlock ) override { Add( Job{ std::move( inBlock ) } ); }

    /// Takes the block whose turn it is and runs it. The lock is open meanwhile.
    void RunOne( std::unique_lock<std::mutex>& ioLock );
    /// An entry of the ready list has been served: the queue may need another.
    void FinishedOne();
    [[nodiscard]] std::size_t CountPending() const { return mPending.size(); }

    using DroppedJob = Job;
    /// Takes out what is pending, under the mutex; callers of Sync go on.
    std::deque<DroppedJob> TakePending();

protected:
    bool Place( SyncCall& ioCall ) override { return Add( Job{ {}, &ioCall } ); }
    void Await( SyncCall& ioCall ) override
    {
        std::unique_lock lock( mCore->mMutex );
        ioCall.mChanged.wait( lock, [&] { return ioCall.mDone; } );
    }
    std::uint64_t AddWakeUp( double inMonotonicTime, XBlock inBlock ) override
    {
        return mCore->AddWakeUp( inMonotonicTime, shared_from_this(), std::move( inBlock ) );
    }
    void CancelWakeUp( std::uint64_t inNumber ) override { mCore->CancelWakeUp( inNumber ); }
    [[nodiscard]] const XClock& Clock() const override { return mCore->mClock; }

private:
    bool Add( Job inJob );
    void MakeReadyIfPossible();

    const std::shared_ptr<Core> mCore;
    std::deque<Job> mPending;
    std::size_t mStarted = 0; // ready or running
};

bool XThreadedWork::Core::Queue::Add( Job inJob )
{
    std::function<void()> wakeUp;
    {
        const std::scoped_lock lock( mCore->mMutex );
        if ( mCore->mFinished )
            return false;
        mPending.push_back( std::move( inJob ) );
        if ( GetKind() == Kind::kMain )
            wakeUp = mCore->mMainWakeUp;
        else
            MakeReadyIfPossible();
    }
    if ( wakeUp )
        wakeUp();
    return true;
}

void XThreadedWork::Core::Queue::MakeReadyIfPossible()
{
    const std::size_t width = GetKind() == Kind::kConcurrent ? kConcurrentWidth : 1;
    const std::size_t isRunning = GetKind() == Kind::kMain ? width : mStarted; // the main queue has no thread of ours
    if ( isRunning >= width or mPending.empty() )
        return;
    ++mStarted;
    mCore->MakeReady( std::static_pointer_cast<Queue>( shared_from_this() ) );
}

void XThreadedWork::Core::Queue::FinishedOne()
{
    --mStarted;
    MakeReadyIfPossible();
}

void XThreadedWork::Core::Queue::RunOne( std::unique_lock<std::mutex>& ioLock )
{
    // Also when a block of the main queue throws, the lock is had again and a waiting caller goes on.
    struct Done
    {
        ~Done()
        {
            mLock.lock();
            if ( mCall )
            {
                mCall->mDone = true;
                mCall->mChanged.notify_all(); // under the mutex, for the caller's stack goes right after
            }
        }
        std::unique_lock<std::mutex>& mLock;
        SyncCall* mCall;
    };
    if ( mPending.empty() ) // a concurrent queue may have more entries than blocks
        return;
    Job first = std::move( mPending.front() );
    mPending.pop_front();
    ioLock.unlock();
    const Done done{ ioLock, first.mCall };
    Job job = std::move( first ); // goes before Done takes the lock
    Run( job );
}

std::deque<XThreadedWork::Core::Queue::DroppedJob> XThreadedWork::Core::Queue::TakePending()
{
    for ( Job& job : mPending )
    {
        if ( job.mCall )
        {
            job.mCall->mDone = true;
            job.mCall->mChanged.notify_all();
        }
    }
    return std::exchange( mPending, {} );
}

template<class Function>
bool XThreadedWork::Core::StartThread( const Function& inFunction )
{
    try
    {
        std::thread( [core = shared_from_this(), inFunction] {
            gCoreOfThread = core.get();
            inFunction( *core );
            const std::scoped_lock lock( core->mMutex );
            --core->mThreads;
            core->mThreadEnded.notify_all();
        } ).detach();
        ++mThreads;
        return true;
    }
    catch ( const std::system_error& )
    {
        return false; // the system has no more; threads that become free take the work
    }
}

void XThreadedWork::Core::MakeReady( std::shared_ptr<Queue> inQueue )
{
    mReady.push_back( std::move( inQueue ) );
    if ( mReady.size() > mFreeThreads )
        StartThread( []( Core& ioCore ) { ioCore.WorkerLoop(); } );
    else
        mReadyChanged.notify_one();
}

void XThreadedWork::Core::WorkerLoop()
{
    std::unique_lock lock( mMutex );
    for ( ;; )
    {
        if ( mReady.empty() and not mFinished )
        {
            ++mFreeThreads;
            mReadyChanged.wait_for(
                lock, std::chrono::duration<double>( kIdleSeconds ), [&] { return mFinished or not mReady.empty(); } );
            --mFreeThreads;
        }
        if ( mReady.empty() )
            return;
        std::shared_ptr<Queue> queue = std::move( mReady.front() );
        mReady.pop_front();
        queue->RunOne( lock );
        queue->FinishedOne();
        lock.unlock();
        queue.reset(); // may be the last holder, and what it holds may ask for the mutex
        lock.lock();
    }
}

void XThreadedWork::Core::TimerLoop()
{
    std::unique_lock lock( mMutex );
    while ( not mFinished )
    {
        if ( mWakeUps.empty() )
        {
            mTimesChanged.wait( lock );
            continue;
        }
        const auto first = mWakeUps.begin();
        const double remaining = first->first.first - mClock.MonotonicSeconds();
        if ( remaining > 0 )
        {
            // In parts, for a far time overflows the library's arithmetic.
            mTimesChanged.wait_for( lock, std::chrono::duration<double>( std::min( remaining, 3600.0 ) ) );
            continue;
        }
        mWakeUpTimes.erase( first->first.second );
        WakeUp due = std::move( first->second );
        mWakeUps.erase( first );
        lock.unlock();
        due.mQueue->Async( std::move( due.mBlock ) );
        due = {};
        lock.lock();
    }
}

std::uint64_t XThreadedWork::Core::AddWakeUp( double inMonotonicTime, std::shared_ptr<XQueue> inQueue, XBlock inBlock )
{
    const std::scoped_lock lock( mMutex );
    if ( mFinished )
        return 0;
    const WakeUpKey key{ inMonotonicTime, ++mLastWakeUp };
    mWakeUps.emplace( key, WakeUp{ std::move( inQueue ), std::move( inBlock ) } );
    mWakeUpTimes.emplace( key.second, key.first );
    if ( not mKeepsTime )
        mKeepsTime = StartThread( []( Core& ioCore ) { ioCore.TimerLoop(); } );
    else if ( mWakeUps.begin()->first == key )
        mTimesChanged.notify_one();
    return key.second;
}

void XThreadedWork::Core::CancelWakeUp( std::uint64_t inNumber )
{
    decltype( mWakeUps )::node_type cancelled; // destroyed after the lock is open
    const std::scoped_lock lock( mMutex );
    const auto time = mWakeUpTimes.find( inNumber );
    if ( time == mWakeUpTimes.end() )
        return;
    cancelled = mWakeUps.extract( WakeUpKey{ time->second, inNumber } );
    mWakeUpTimes.erase( time );
}

void XThreadedWork::Core::Finish()
{
    std::map<WakeUpKey, WakeUp> wakeUps;
    std::vector<std::deque<Queue::DroppedJob>> pending;
    std::deque<std::shared_ptr<Queue>> ready;
    std::vector<std::shared_ptr<Queue>> queues;
    std::unique_lock lock( mMutex );
    mFinished = true;
    wakeUps.swap( mWakeUps );
    mWakeUpTimes.clear();
    ready.swap( mReady );
    for ( const auto& weakQueue : mQueues )
    {
        if ( auto queue = weakQueue.lock() )
        {
            pending.push_back( queue->TakePending() );
            queues.push_back( std::move( queue ) );
        }
    }
    mReadyChanged.notify_all();
    mTimesChanged.notify_all();
    const bool isOwnThread = gCoreOfThread == this;
    if ( not isOwnThread )
        mThreadEnded.wait( lock, [&] { return mThreads == 0; } );
    lock.unlock(); // before the dropped blocks go
    XAssert( not isOwnThread );
}

std::shared_ptr<XThreadedWork::Core::Queue> XThreadedWork::Core::MakeQueue( TextView inLabel, XQueue::Kind inKind )
{
    auto queue = std::make_shared<Queue>( shared_from_this(), inLabel, inKind );
    const std::scoped_lock lock( mMutex );
    std::erase_if( mQueues, []( const auto& inQueue ) { return inQueue.expired(); } );
    mQueues.push_back( queue );
    return queue;
}

XThreadedWork::XThreadedWork( const XClock& inClock )
    : mCore( std::make_shared<Core>( inClock ) ),
      mMainQueue( mCore->MakeQueue( u"main", XQueue::Kind::kMain ) )
{}

XThreadedWork::~XThreadedWork()
{
    Finish();
    DropShared();
}

std::shared_ptr<XQueue> XThreadedWork::MakeSerialQueue( TextView inLabel )
{
    return mCore->MakeQueue( inLabel, XQueue::Kind::kSerial );
}

std::shared_ptr<XQueue> XThreadedWork::MakeConcurrentQueue( TextView inLabel )
{
    return mCore->MakeQueue( inLabel, XQueue::Kind::kConcurrent );
}

const XClock& XThreadedWork::Clock() const
{
    return mCore->mClock;
}

std::size_t XThreadedWork::DrainMainQueue()
{
    auto& queue = static_cast<Core::Queue&>( *mMainQueue );
    std::unique_lock lock( mCore->mMutex );
    std::size_t count = 0;
    for ( std::size_t left = queue.CountPending(); left > 0 and queue.CountPending() > 0; --left, ++count )
        queue.RunOne( lock );
    return count;
}

void XThreadedWork::SetMainWakeUp( std::function<void()> inWakeUp )
{
    const std::scoped_lock lock( mCore->mMutex );
    mCore->mMainWakeUp.swap( inWakeUp );
}

void XThreadedWork::Finish()
{
    mCore->Finish();
}

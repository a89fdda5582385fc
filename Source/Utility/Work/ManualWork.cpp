// One thread plays all threads: a caller of Sync stays on the stack while the blocks before its own run on
// top of it. So a queue with a frame on the stack is occupied until that frame is on top again, and
// a Sync that needs such a queue could never return: with real threads it would be a deadlock.
#include "Utility/Work/ManualWork.h"

#include "XCAF/XErrorHandler.h"

#include <deque>
#include <map>

namespace
{
constexpr std::size_t kMaxStepsInARow = 1000000;
}

struct XManualWork::Core
{
    class Queue;
    struct WakeUp
    {
        std::shared_ptr<XQueue> mQueue;
        XBlock mBlock;
    };
    struct Candidate
    {
        std::uint64_t mNumber;
        std::shared_ptr<Queue> mQueue;
        std::size_t mIndex;
    };

    explicit Core( XManualClock& inClock ) : mClock( inClock ) {}

    [[nodiscard]] std::vector<Candidate> Candidates() const;
    /// Queues what is due now.
    void DeliverDue();

    XManualClock& mClock;
    mutable std::mutex mMutex; // guards what other threads may add to
    bool mFinished = false;
    std::uint64_t mLastNumber = 0;
    std::vector<std::weak_ptr<Queue>> mQueues;
    std::map<std::pair<double, std::uint64_t>, WakeUp> mWakeUps;
    std::function<void()> mMainWakeUp;
};

class XManualWork::Core::Queue final : public XQueue
{
public:
    struct Entry
    {
        std::uint64_t mNumber;
        Job mJob;
    };

    Queue( std::shared_ptr<Core> inCore, TextView inLabel, Kind inKind )
        : XQueue( inLabel, inKind ),
          mCore( std::move( inCore ) )
    {}

    void Async( XBlock inBlock ) override { Add( Job{ std::move( inBlock ) } ); }
    void RunAt( std::size_t inIndex );
    /// The pending callers of Sync go on.
    void DoneWithCalls()
    {
        for ( Entry& entry : mPending )
        {
            if ( entry.mJob.mCall )
                entry.mJob.mCall->mDone = true;
        }
    }
    [[nodiscard]] bool IsOccupied() const override { return mFrames > 0 and GetKind() != Kind::kConcurrent; }

    std::deque<Entry> mPending;
    std::shared_ptr<XQueue> mKeepsItself; // while something is pending, whoever else lets go

protected:
    bool Place( SyncCall& ioCall ) override { return Add( Job{ {}, &ioCall } ); }
    void Await( SyncCall& ioCall ) override;
    std::uint64_t AddWakeUp( double inMonotonicTime, XBlock inBlock ) override;
    void CancelWakeUp( std::uint64_t inNumber ) override;
    [[nodiscard]] const XClock& Clock() const override { return mCore->mClock; }

private:
    bool Add( Job inJob );

    const std::shared_ptr<Core> mCore;
    mutable std::size_t mFrames = 0;
};

bool XManualWork::Core::Queue::Add( Job inJob )
{
    std::function<void()> wakeUp;
    {
        const std::scoped_lock lock( mCore->mMutex );
        if ( mCore->mFinished )
            return false;
        mPending.push_back( { ++mCore->mLastNumber, std::move( inJob ) } );
        mKeepsItself = shared_from_this();
        if ( GetKind() == Kind::kMain )
            wakeUp = mCore->mMainWakeUp;
    }
    if ( wakeUp )
        wakeUp();
    return true;
}

void XManualWork::Core::Queue::RunAt( std::size_t inIndex )
{
    struct Scope
    {
        ~Scope()
        {
            --mFrames;
            if ( mCall )
                mCall->mDone = true;
        }
        std::size_t& mFrames;
        SyncCall* mCall;
    };
    const std::shared_ptr<XQueue> keep = shared_from_this();
    Job job;
    {
        const std::scoped_lock lock( mCore->mMutex );
        job = std::move( mPending[inIndex].mJob );
        mPending.erase( mPending.begin() + std::ptrdiff_t( inIndex ) );
        if ( mPending.empty() )
            mKeepsItself = nullptr;
    }
    ++mFrames;
    const Scope scope{ mFrames, job.mCall };
    Run( job );
}

void XManualWork::Core::Queue::Await( SyncCall& ioCall )
{
    // The main thread may call from outside any block, and stands still all the same.
    struct Standing
    {
        explicit Standing( std::size_t& ioFrames ) : mFrames( ioFrames ) { ++mFrames; }
        ~Standing() { --mFrames; }
        std::size_t& mFrames;
    };
    std::size_t unused = 0;
    const auto* caller = ioCall.mCaller ? static_cast<const Queue*>( ioCall.mCaller->mQueue ) : nullptr;
    const Standing standing( caller ? caller->mFrames : unused );

    // Only this queue moves: whatever else is needed on the way is waited for by its blocks.
    while ( not ioCall.mDone )
    {
        std::size_t index = 0;
        if ( GetKind() == Kind::kConcurrent ) // doesn't wait for the blocks before it
        {
            while ( mPending[index].mJob.mCall != &ioCall )
                ++index;
        }
        RunAt( index );
    }
}

std::uint64_t XManualWork::Core::Queue::AddWakeUp( double inMonotonicTime, XBlock inBlock )
{
    const std::scoped_lock lock( mCore->mMutex );
    if ( mCore->mFinished )
        return 0;
    const std::uint64_t number = ++mCore->mLastNumber;
    mCore->mWakeUps.emplace( std::pair( inMonotonicTime, number ), WakeUp{ shared_from_this(), std::move( inBlock ) } );
    return number;
}

void XManualWork::Core::Queue::CancelWakeUp( std::uint64_t inNumber )
{
    WakeUp cancelled;
    const std::scoped_lock lock( mCore->mMutex );
    const auto found = std::find_if( mCore->mWakeUps.begin(), mCore->mWakeUps.end(),
        [&]( const auto& inEntry ) { return inEntry.first.second == inNumber; } );
    if ( found == mCore->mWakeUps.end() )
        return;
    cancelled = std::move( found->second );
    mCore->mWakeUps.erase( found );
}

std::vector<XManualWork::Core::Candidate> XManualWork::Core::Candidates() const
{
    std::vector<Candidate> result;
    const std::scoped_lock lock( mMutex );
    for ( const auto& weakQueue : mQueues )
    {
        const auto queue = weakQueue.lock();
        if ( not queue or queue->IsOccupied() )
            continue;
        const std::size_t count = queue->GetKind() == XQueue::Kind::kConcurrent
            ? queue->mPending.size()
            : std::min<std::size_t>( queue->mPending.size(), 1 );
        for ( std::size_t i = 0; i < count; ++i )
            result.push_back( { queue->mPending[i].mNumber, queue, i } );
    }
    std::sort(
        result.begin(), result.end(), []( const Candidate& a, const Candidate& b ) { return a.mNumber < b.mNumber; } );
    return result;
}

void XManualWork::Core::DeliverDue()
{
    for ( ;; )
    {
        WakeUp due;
        {
            const std::scoped_lock lock( mMutex );
            const auto first = mWakeUps.begin();
            if ( first == mWakeUps.end() or first->first.first > mClock.MonotonicSeconds() )
                return;
            due = std::move( first->second );
            mWakeUps.erase( first );
        }
        due.mQueue->Async( std::move( due.mBlock ) );
    }
}

XManualWork::XManualWork( XManualClock& inClock ) : mClock( inClock ), mCore( std::make_shared<Core>( inClock ) )
{
    (void)XIsMainThread(); // the test's thread is the main one
    auto queue = std::make_shared<Core::Queue>( mCore, u"main", XQueue::Kind::kMain );
    mCore->mQueues.push_back( queue );
    mMainQueue = std::move( queue );
}

XManualWork::~XManualWork()
{
    Finish();
    DropShared();
}

std::shared_ptr<XQueue> XManualWork::MakeSerialQueue( TextView inLabel )
{
    auto queue = std::make_shared<Core::Queue>( mCore, inLabel, XQueue::Kind::kSerial );
    const std::scoped_lock lock( mCore->mMutex );
    mCore->mQueues.push_back( queue );
    return queue;
}

std::shared_ptr<XQueue> XManualWork::MakeConcurrentQueue( TextView inLabel )
{
    auto queue = std::make_shared<Core::Queue>( mCore, inLabel, XQueue::Kind::kConcurrent );
    const std::scoped_lock lock( mCore->mMutex );
    mCore->mQueues.push_back( queue );
    return queue;
}

std::size_t XManualWork::DrainMainQueue()
{
    std::size_t count = 0;
    auto& queue = static_cast<Core::Queue&>( *mMainQueue );
    for ( std::size_t left = queue.mPending.size(); left > 0 and not queue.mPending.empty(); --left, ++count )
        queue.RunAt( 0 ); // also inside a block of the main queue, as a nested loop does
    return count;
}

void XManualWork::SetMainWakeUp( std::function<void()> inWakeUp )
{
    const std::scoped_lock lock( mCore->mMutex );
    mCore->mMainWakeUp.swap( inWakeUp );
}

bool XManualWork::RunUntil( const std::function<bool()>& inDone )
{
    bool isDone = inDone();
    while ( not isDone and RunOne() )
        isDone = inDone();
    XAssertText( isDone, "inDone()" );
    return true;
}

void XManualWork::Finish()
{
    std::map<std::pair<double, std::uint64_t>, Core::WakeUp> wakeUps;
    std::vector<std::deque<Core::Queue::Entry>> pending;
    const std::scoped_lock lock( mCore->mMutex );
    mCore->mFinished = true;
    wakeUps.swap( mCore->mWakeUps );
    for ( const auto& weakQueue : mCore->mQueues )
    {
        if ( const auto queue = weakQueue.lock() )
        {
            queue->DoneWithCalls();
            pending.push_back( std::exchange( queue->mPending, {} ) );
            queue->mKeepsItself = nullptr;
        }
    }
}

std::vector<Text> XManualWork::Runnable() const
{
    std::vector<Text> labels;
    for ( const Core::Candidate& candidate : mCore->Candidates() )
        labels.push_back( candidate.mQueue->GetLabel() );
    return labels;
}

bool XManualWork::RunOne()
{
    const auto candidates = mCore->Candidates();
    if ( candidates.empty() )
        return false;
    const std::size_t choice = mChooser ? mChooser( candidates.size() ) : 0;
    XAssert( choice < candidates.size() );
    const auto& chosen = candidates[std::min( choice, candidates.size() - 1 )];
    chosen.mQueue->RunAt( chosen.mIndex );
    return true;
}

bool XManualWork::RunOneOf( XQueue& inQueue )
{
    for ( const auto& candidate : mCore->Candidates() )
    {
        if ( candidate.mQueue.get() == &inQueue )
        {
            candidate.mQueue->RunAt( candidate.mIndex );
            return true;
        }
    }
    return false;
}

std::size_t XManualWork::RunAll()
{
    std::size_t steps = 0;
    while ( steps < kMaxStepsInARow and RunOne() )
        ++steps;
    XAssert( steps < kMaxStepsInARow );
    return steps;
}

void XManualWork::Advance( double inSeconds )
{
    const double target = mClock.MonotonicSeconds() + inSeconds;
    for ( ;; )
    {
        mCore->DeliverDue();
        RunAll();
        {
            const std::scoped_lock lock( mCore->mMutex );
            const auto first = mCore->mWakeUps.begin();
            if ( first == mCore->mWakeUps.end() or first->first.first > target )
                break;
            mClock.AdvanceTo( first->first.first );
        }
    }
    mClock.AdvanceTo( target );
}

bool XManualWork::AdvanceToNextWakeUp()
{
    {
        const std::scoped_lock lock( mCore->mMutex );
        if ( mCore->mWakeUps.empty() )
            return false;
        mClock.AdvanceTo( mCore->mWakeUps.begin()->first.first );
    }
    mCore->DeliverDue();
    return true;
}

std::size_t XManualWork::CountWakeUps() const
{
    const std::scoped_lock lock( mCore->mMutex );
    return mCore->mWakeUps.size();
}

#include "Utility/Work/Work.h"

#include "Utility/Work/ThreadedWork.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XException.h"

#include <atomic>
#include <cmath>

thread_local const XQueue::Frame* XQueue::gFrame = nullptr;

namespace
{
// The address of a thread's own mark is its identity; the main thread's is never given to another
// thread, for the main thread outlives them.
thread_local char gThreadMark;
std::atomic<const char*> gMainThread{ nullptr };

std::atomic<XWork*> gWork{ nullptr };

XWork& ProgramsWork()
{
    // Never destroyed: its threads may be running when the process ends.
    static XWork* const gThreaded = new XThreadedWork( XClock::System() );
    return *gThreaded;
}
} // namespace

bool XIsMainThread()
{
    // A block of the main queue counts wherever it runs, and a block of any other doesn't even
    // in an environment that runs all of them on one thread.
    if ( XQueue::gFrame )
        return XQueue::gFrame->mQueue->GetKind() == XQueue::Kind::kMain;
    const char* main = nullptr;
    gMainThread.compare_exchange_strong( main, &gThreadMark );
    return main == nullptr or main == &gThreadMark;
}

void XDeclareMainThread()
{
    gMainThread.store( &gThreadMark );
}

// ---- XQueue

bool XQueue::IsAnythingRunningHere()
{
    return gFrame != nullptr;
}

bool XQueue::IsCurrent() const
{
    for ( const Frame* frame = gFrame; frame; frame = frame->mCaller )
    {
        if ( frame->mQueue == this )
            return true;
    }
    return mKind == Kind::kMain and XIsMainThread();
}

void XQueue::Run( Job& ioJob ) const
{
    struct Scope
    {
        explicit Scope( const Frame& inFrame ) : mPrevious( std::exchange( gFrame, &inFrame ) ) {}
        ~Scope() { gFrame = mPrevious; }
        const Frame* mPrevious;
    };
    const Frame frame{ this, ioJob.mCall ? ioJob.mCall->mCaller : nullptr };
    const Scope scope( frame );
    try
    {
        ioJob.mCall ? ( *ioJob.mCall->mBlock )() : ioJob.mBlock();
    }
    catch ( ... )
    {
        if ( ioJob.mCall )
            ioJob.mCall->mException = std::current_exception();
        else if ( mKind == Kind::kMain )
            throw;
        else
            XException::LogCurrent( mLabel );
    }
    ioJob.mBlock = nullptr; // what it captured goes here, not under somebody's lock
}

void XQueue::PrivateSync( const XBlock& inBlock, std::unique_lock<std::mutex>* ioLock )
{
    SyncCall call;
    call.mBlock = &inBlock;
    call.mCaller = gFrame;
    if ( IsCurrent() or IsOccupied() )
    {
        if ( ioLock )
            ioLock->unlock();
        XAssertText( false, "not IsCurrent()" );
        Job job{ {}, &call };
        Run( job );
    }
    else
    {
        // The main thread outside any block occupies the main queue just as a block of it does.
        const std::shared_ptr<XQueue> mainQueue =
            XIsMainThread() and not gFrame ? XWork::Current().MainQueue() : nullptr;
        const Frame mainFrame{ mainQueue.get(), nullptr };
        if ( mainQueue )
            call.mCaller = &mainFrame;
        const bool isPlaced = Place( call );
        if ( ioLock )
            ioLock->unlock();
        if ( isPlaced )
            Await( call );
    }
    if ( call.mException )
        std::rethrow_exception( call.mException );
}

void XQueue::After( double inSeconds, XBlock inBlock )
{
    const double delay = inSeconds > 0 ? std::min( inSeconds, 1e9 ) : 0.0; // not a number is now, too
    AddWakeUp( Clock().MonotonicSeconds() + delay, std::move( inBlock ) );
}

// ---- XWork

XWork& XWork::Current()
{
    XWork* work = gWork.load( std::memory_order_acquire );
    return work ? *work : ProgramsWork();
}

XWork::Substitute::Substitute( XWork& inWork ) : mPrevious( gWork.exchange( &inWork ) ) {}

XWork::Substitute::~Substitute()
{
    gWork.store( mPrevious );
}

void* XWork::SharedObject( std::type_index inType, const std::function<std::shared_ptr<void>()>& inMake )
{
    const std::scoped_lock lock( mSharedMutex );
    std::shared_ptr<void>& object = mShared[inType];
    if ( not object )
        object = inMake();
    return object.get();
}

void XWork::DropShared()
{
    std::unordered_map<std::type_index, std::shared_ptr<void>> dropped;
    {
        const std::scoped_lock lock( mSharedMutex );
        dropped.swap( mShared );
    }
}

// ---- XTimer

XTimer::XTimer( std::shared_ptr<XQueue> inQueue, XBlock inHandler )
    : mQueue( std::move( inQueue ) ),
      mState( std::make_shared<State>() )
{
    mState->mHandler = std::move( inHandler );
}

XTimer::~XTimer()
{
    Cancel();
}

void XTimer::SetAt( double inMonotonicTime )
{
    Cancel();
    // A wake-up that is already on the queue can't be taken back; the generation tells it that it is stale.
    const std::uint64_t generation = mState->mGeneration;
    const std::weak_ptr<State> weakState = mState;
    mWakeUp = mQueue->AddWakeUp( inMonotonicTime, [weakState, generation] {
        const auto state = weakState.lock();
        if ( state and state->mGeneration == generation )
            state->mHandler();
    } );
}

void XTimer::Cancel()
{
    ++mState->mGeneration;
    if ( mWakeUp )
        mQueue->CancelWakeUp( std::exchange( mWakeUp, 0 ) );
}

// ---- XGroup

void XGroup::Enter()
{
    const std::scoped_lock lock( mState->mMutex );
    ++mState->mCount;
}

void XGroup::Leave( State& ioState )
{
    const std::scoped_lock lock( ioState.mMutex );
    XAssertText( ioState.mCount > 0, "mCount > 0" );
    if ( ioState.mCount > 0 and --ioState.mCount == 0 )
        ioState.mChanged.notify_all();
}

void XGroup::Leave()
{
    Leave( *mState );
}

void XGroup::Async( XQueue& inQueue, XBlock inBlock )
{
    // Leaves when the block goes: after it ran or threw, and also when it is dropped unrun.
    struct Member
    {
        explicit Member( std::shared_ptr<State> inState ) : mState( std::move( inState ) ) {}
        ~Member() { Leave( *mState ); }
        Member( const Member& ) = delete;
        std::shared_ptr<State> mState;
    };
    Enter();
    inQueue.Async( [member = std::make_shared<Member>( mState ), block = std::move( inBlock )] { block(); } );
}

void XGroup::Wait()
{
    const std::shared_ptr<State> state = mState;
    const auto isEmpty = [&] {
        const std::scoped_lock lock( state->mMutex );
        return state->mCount == 0;
    };
    if ( mWork.RunUntil( isEmpty ) )
        return;
    std::unique_lock lock( state->mMutex );
    state->mChanged.wait( lock, [&] { return state->mCount == 0; } );
}

#include "Utility/Work/DeferredJobs.h"

#include "XCAF/XErrorHandler.h"
#include "XCAF/XException.h"

#include <algorithm>
#include <vector>

namespace
{
struct DeferredJob
{
    Text mKey;
    double mFireTime; // on the monotonic clock
    XBlock mBlock;
};

class Jobs
{
public:
    explicit Jobs( XWork& inWork )
        : mWork( inWork ),
          mQueue( inWork.MakeSerialQueue( u"com.tessarine.korvalan.DeferredJobs" ) ), // as it stands
          mTimer( mQueue, [this] { RunDue(); } )
    {}

    void Add( DeferredJob inJob )
    {
        mQueue->Async( [this, job = std::move( inJob )]() mutable { QAdd( std::move( job ) ); } );
    }

    void Finish()
    {
        mQueue->Sync( [this] {
            mIsFinished = true;
            mTimer.Cancel();
            for ( DeferredJob& job : TakeUntil( mJobs.size() ) )
                Run( job );
        } );
    }

    [[nodiscard]] double Now() const { return mWork.Clock().MonotonicSeconds(); }

private:
    void QAdd( DeferredJob inJob )
    {
        XAssertText( not mIsFinished, "!gStopped" );
        if ( mIsFinished )
            return;
        std::erase_if( mJobs, [&]( const DeferredJob& inOther ) { return inOther.mKey == inJob.mKey; } );
        const auto position = std::upper_bound( mJobs.begin(), mJobs.end(), inJob.mFireTime,
            []( double inTime, const DeferredJob& inOther ) { return inTime < inOther.mFireTime; } );
        mJobs.insert( position, std::move( inJob ) );
        SetTimer();
    }

    void RunDue()
    {
        const auto later = std::find_if(
            mJobs.begin(), mJobs.end(), [now = Now()]( const DeferredJob& inJob ) { return inJob.mFireTime > now; } );
        for ( DeferredJob& job : TakeUntil( std::size_t( later - mJobs.begin() ) ) )
            Run( job );
        SetTimer();
    }

    // Out of the list before they run, for a job may add its own key again.
    std::vector<DeferredJob> TakeUntil( std::size_t inCount )
    {
        const auto end = mJobs.begin() + std::ptrdiff_t( inCount );
        std::vector<DeferredJob> taken( std::make_move_iterator( mJobs.begin() ), std::make_move_iterator( end ) );
        mJobs.erase( mJobs.begin(), end );
        return taken;
    }

    // Several run in one block of the queue; an exception loses this one only.
    static void Run( DeferredJob& ioJob )
    {
        try
        {
            ioJob.mBlock();
        }
        catch ( ... )
        {
            XException::LogCurrent( ioJob.mKey );
        }
        ioJob.mBlock = nullptr;
    }

    void SetTimer()
    {
        if ( mJobs.empty() )
            mTimer.Cancel();
        else
            mTimer.SetAt( mJobs.front().mFireTime );
    }

    XWork& mWork;
    const std::shared_ptr<XQueue> mQueue;
    // On the queue only.
    std::vector<DeferredJob> mJobs; // by time
    bool mIsFinished = false;
    XTimer mTimer;
};
} // namespace

void DeferredJobs::Add( TextView inKey, double inDelay, XBlock inBlock )
{
    XAssertText( not inKey.empty(), "key" );
    XAssertText( inBlock, "block" );
    XAssertText( inDelay >= 0, "delay >= 0" );
    if ( inKey.empty() or not inBlock or not( inDelay >= 0 ) )
        return;
    Jobs& jobs = XWork::Current().Shared<Jobs>();
    jobs.Add( { Text( inKey ), jobs.Now() + inDelay, std::move( inBlock ) } );
}

void DeferredJobs::Finish()
{
    XWork::Current().Shared<Jobs>().Finish();
}

// Where things are destroyed matters as much here as where they run: a dropped block may hold the last reference
// to an object of the main thread. So the private queue never locks a target, and what it
// drops travels to the main thread to die.
#include "Utility/Work/PerformCoalesced.h"

#include "XCAF/XErrorHandler.h"

#include <algorithm>
#include <cstdlib>
#include <cxxabi.h>
#include <vector>

Text kvr_typeDescription( const std::type_info& inType )
{
    int status = 0;
    const std::unique_ptr<char, decltype( &std::free )> name(
        abi::__cxa_demangle( inType.name(), nullptr, nullptr, &status ), &std::free );
    return TextFromUTF8( status == 0 and name ? name.get() : inType.name() );
}

namespace
{
using PerformCoalesced::Block;
using PerformCoalesced::Target;

struct Entry
{
    Target mTarget;
    Text mKey;
    double mFireTime; // on the monotonic clock: a clock that is set must neither hold work back nor hurry it
    Block mBlock;
};
using EntryPointer = std::shared_ptr<Entry>;

class Coalescer
{
public:
    explicit Coalescer( XWork& inWork )
        : mWork( inWork ),
          mQueue( inWork.MakeSerialQueue( u"com.tessarine.korvalan.CoalescedTimer" ) ), // as it stands
          mTimer( mQueue, [this] { TimerFired(); } )
    {}

    void Perform( EntryPointer inEntry )
    {
        std::vector<EntryPointer> dropped;
        mQueue->Sync( [&] {
            QCancel( inEntry->mTarget, inEntry->mKey, dropped );
            XErrorHandler::PrivateMaybeLogFormat( "PerformCoalesced", "PerformCoalesced::Perform add entry" );
            mEntries.push_back( std::move( inEntry ) );
            QResetTimer( dropped );
        } );
    }

    void Cancel( const Target& inTarget, TextView inKey )
    {
        std::vector<EntryPointer> dropped;
        mQueue->Sync( [&] {
            QCancel( inTarget, inKey, dropped );
            QResetTimer( dropped );
        } );
    }

    void Finish()
    {
        std::vector<EntryPointer> dropped;
        mQueue->Sync( [&] {
            mIsStopped = true;
            dropped.swap( mEntries );
            dropped.insert( dropped.end(), mDue.begin(), mDue.end() );
            mDue.clear();
            QResetTimer( dropped );
        } );
    }

    [[nodiscard]] bool IsStopped() const
    {
        bool isStopped = false;
        mQueue->Sync( [&] { isStopped = mIsStopped; } );
        return isStopped;
    }

    [[nodiscard]] double Now() const { return mWork.Clock().MonotonicSeconds(); }

private:
    static void Take( std::vector<EntryPointer>& ioFrom, const auto& inWhich, std::vector<EntryPointer>& outTaken )
    {
        const auto kept = std::stable_partition(
            ioFrom.begin(), ioFrom.end(), [&]( const EntryPointer& inEntry ) { return not inWhich( *inEntry ); } );
        std::move( kept, ioFrom.end(), std::back_inserter( outTaken ) );
        ioFrom.erase( kept, ioFrom.end() );
    }

    // Also what is due but hasn't had its turn on the main queue: it isn't quiet any more.
    void QCancel( const Target& inTarget, TextView inKey, std::vector<EntryPointer>& outDropped )
    {
        const auto isIt = [&]( const Entry& inEntry ) {
            return inEntry.mKey == inKey and inEntry.mTarget.IsSame( inTarget );
        };
        Take( mEntries, isIt, outDropped );
        Take( mDue, isIt, outDropped );
    }

    void QResetTimer( std::vector<EntryPointer>& outDropped )
    {
        Take(
            mEntries, []( const Entry& inEntry ) { return inEntry.mTarget.IsGone(); }, outDropped );
        // A target may go at any moment, also during the sort, so the order is by time alone.
        std::stable_sort( mEntries.begin(), mEntries.end(),
            []( const EntryPointer& a, const EntryPointer& b ) { return a->mFireTime < b->mFireTime; } );
        mTimer.Cancel();
        while ( not mIsStopped and not mEntries.empty() and mEntries.front()->mFireTime <= Now() )
        {
            mDue.push_back( mEntries.front() );
            mEntries.erase( mEntries.begin() );
            mWork.MainQueue()->Async( [this, weakEntry = std::weak_ptr( mDue.back() )] { RunDue( weakEntry ); } );
        }
        // A tenth of a second of leeway is allowed, but a saving must not wait for it.
        if ( not mIsStopped and not mEntries.empty() )
            mTimer.SetAt( mEntries.front()->mFireTime );
    }

    void TimerFired()
    {
        std::vector<EntryPointer> dropped;
        QResetTimer( dropped );
        if ( not dropped.empty() )
            mWork.MainQueue()->Async( [dropped = std::move( dropped )] {} );
    }

    // On the main queue.
    void RunDue( const std::weak_ptr<Entry>& inEntry )
    {
        EntryPointer entry;
        mQueue->Sync( [&] {
            const auto found = std::find( mDue.begin(), mDue.end(), inEntry.lock() );
            if ( found != mDue.end() )
            {
                entry = std::move( *found );
                mDue.erase( found );
            }
        } );
        const std::shared_ptr<void> target = entry ? entry->mTarget.Lock() : nullptr;
        if ( not target )
            return;
        XErrorHandler::PrivateMaybeLogFormat(
            "PerformCoalesced", "CoalescedTimer Run block %@ key %@", entry->mTarget.GetDescription(), entry->mKey );
        entry->mBlock( target );
    }

    XWork& mWork;
    const std::shared_ptr<XQueue> mQueue;
    // On the queue only.
    std::vector<EntryPointer> mEntries; // gEntries, sorted by time
    std::vector<EntryPointer> mDue;     // on their way to the main queue
    bool mIsStopped = false;
    XTimer mTimer;
};

Coalescer& TheCoalescer()
{
    return XWork::Current().Shared<Coalescer>();
}
} // namespace

void PerformCoalesced::Perform( const Target& inTarget, TextView inKey, double inAfterDelay, Block inBlock )
{
    const bool isMain = XIsMainThread();
    XAssertText( isMain, "[NSThread isMainThread]" );
    XAssertText( not inTarget.IsGone(), "weakTarget" );
    XAssertText( not inKey.empty(), "key" );
    XAssertText( inBlock, "block" );
    XAssertText( inAfterDelay >= 0, "afterDelay >= 0" );
    if ( not isMain or inTarget.IsGone() or inKey.empty() or not inBlock or not( inAfterDelay >= 0 ) )
        return;

    Coalescer& coalescer = TheCoalescer();
    const bool isStopped = coalescer.IsStopped();
    XAssertText( not isStopped, "!gStopped" );
    if ( isStopped )
        return;
    XErrorHandler::PrivateMaybeLogFormat( "PerformCoalesced", "PerformCoalesced::Perform %@ key %@ afterDelay %f",
        inTarget.GetDescription(), inKey, inAfterDelay );
    coalescer.Perform( std::make_shared<Entry>(
        Entry{ inTarget, Text( inKey ), coalescer.Now() + inAfterDelay, std::move( inBlock ) } ) );
}

void PerformCoalesced::Cancel( const Target& inTarget, TextView inKey )
{
    const bool isMain = XIsMainThread();
    XAssertText( isMain, "[NSThread isMainThread]" );
    if ( isMain )
        TheCoalescer().Cancel( inTarget, inKey );
}

void PerformCoalesced::Finish()
{
    TheCoalescer().Finish();
}

PerformCoalesced::Target XCoalescedPerformer::AsTarget() const
{
    return PerformCoalesced::Target( mPresence, kvr_typeDescription( typeid( *this ) ) );
}

void XCoalescedPerformer::performCoalesced( TextView inKey, double inAfterDelay, XBlock inBlock )
{
    PerformCoalesced::Block block;
    if ( inBlock )
        block = [inBlock = std::move( inBlock )]( const std::shared_ptr<void>& ) { inBlock(); };
    PerformCoalesced::Perform( AsTarget(), inKey, inAfterDelay, std::move( block ) );
}

void XCoalescedPerformer::cancelPerformCoalesced( TextView inKey )
{
    PerformCoalesced::Cancel( AsTarget(), inKey );
}

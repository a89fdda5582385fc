// The steps: open ─▶ read ─▶ read ... until the file lost its name ─▶ open; a second lies between any two.
#include "XCAF/XFileMonitor.h"

#include "XCAF/XErrorHandler.h"

#include <utility>

namespace
{
constexpr double kBetweenSteps = 1.0;

// What happened to a file, in the numbers that the log has always had.
enum Flags : unsigned { kDelete = 1, kWrite = 2, kExtend = 4, kRename = 32 };
constexpr unsigned kReopenMask = kDelete | kExtend | kRename;
} // namespace

std::shared_ptr<XFileMonitor> XFileMonitor::fileMonitorWithPath( std::filesystem::path inPath, Block inBlock )
{
    const std::shared_ptr<XFileMonitor> monitor( new XFileMonitor( std::move( inPath ), std::move( inBlock ) ) );
    monitor->mQueue->Async( [weak = monitor->weak_from_this()] {
        if ( const auto self = weak.lock() )
            self->open();
    } );
    return monitor;
}

XFileMonitor::XFileMonitor( std::filesystem::path inPath, Block inBlock )
    : mPath( std::move( inPath ) ),
      mBlock( std::move( inBlock ) ),
      mQueue( XWork::Current().MakeSerialQueue( u"com.tessarine.korvalen.XFileMonitor" ) )
{
    if ( const auto facts = Facts() )
        mReported = { facts->mModifiedSeconds, facts->mModifiedNanoseconds, facts->mSize };
}

void XFileMonitor::open()
{
    mOpened = Facts();
    if ( mOpened )
        check( *mOpened );
    After1Second( mOpened ? &XFileMonitor::read : &XFileMonitor::open );
}

void XFileMonitor::read()
{
    const auto facts = Facts();
    const unsigned flags = TakeFlags( facts );
    if ( flags != 0 )
    {
        if ( facts )
            check( *facts );
        XErrorHandler::PrivateMaybeLogFormat( "XFileMonitor", "flags %08X!", flags );
    }
    After1Second( flags & kReopenMask ? &XFileMonitor::open : &XFileMonitor::read );
}

void XFileMonitor::check( const XFileStatus& inFacts )
{
    const Reported now{ inFacts.mModifiedSeconds, inFacts.mModifiedNanoseconds, inFacts.mSize };
    if ( std::exchange( mReported, now ) == now )
        return;
    XErrorHandler::PrivateMaybeLogFormat( "XFileMonitor", "File %@ changed!", mPath );
    mBlock();
}

std::optional<XFileStatus> XFileMonitor::Facts() const
{
    XFileStatus facts;
    return XFileCalls::Current().GetPathFacts( mPath, facts ) == 0 ? std::optional( facts ) : std::nullopt;
}

/// What happened since the last event.
unsigned XFileMonitor::TakeFlags( const std::optional<XFileStatus>& inFacts )
{
    const auto before = std::exchange( mOpened, inFacts );
    if ( not before or not inFacts )
        return kDelete;
    unsigned flags = 0;
    if ( inFacts->mDevice != before->mDevice or inFacts->mFile != before->mFile )
        flags |= kRename;
    if ( inFacts->mSize > before->mSize )
        flags |= kExtend;
    if ( inFacts->mSize != before->mSize or inFacts->mModifiedSeconds != before->mModifiedSeconds or
        inFacts->mModifiedNanoseconds != before->mModifiedNanoseconds )
        flags |= kWrite;
    return flags;
}

void XFileMonitor::After1Second( void ( XFileMonitor::*inStep )() )
{
    mQueue->After( kBetweenSteps, [weak = weak_from_this(), inStep] {
        if ( const auto self = weak.lock() )
            ( ( *self ).*inStep )();
    } );
}

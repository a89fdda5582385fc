#include "Utility/Work/Clock.h"

#include <chrono>

namespace
{
class SystemClock final : public XClock
{
public:
    [[nodiscard]] XAbsoluteTime Now() const override
    {
        constexpr double k2001 = 978307200; // 2001-01-01 in the Unix epoch
        using Seconds = std::chrono::duration<double>;
        return Seconds( std::chrono::system_clock::now().time_since_epoch() ).count() - k2001;
    }
    [[nodiscard]] double MonotonicSeconds() const override
    {
        using Seconds = std::chrono::duration<double>;
        return Seconds( std::chrono::steady_clock::now().time_since_epoch() ).count();
    }
};

const SystemClock gSystemClock;
std::atomic<const XClock*> gClock{ &gSystemClock };
} // namespace

const XClock& XClock::Current()
{
    return *gClock.load( std::memory_order_acquire );
}

const XClock& XClock::System()
{
    return gSystemClock;
}

XClock::Substitute::Substitute( const XClock& inClock ) : mPrevious( gClock.exchange( &inClock ) ) {}

XClock::Substitute::~Substitute()
{
    gClock.store( mPrevious );
}

XManualClock::XManualClock( XAbsoluteTime inNow ) : mNow( inNow ) {}

XAbsoluteTime XManualClock::Now() const
{
    return mNow.load();
}

double XManualClock::MonotonicSeconds() const
{
    return mMonotonic.load();
}

void XManualClock::Advance( double inSeconds )
{
    mNow.store( mNow.load() + inSeconds );
    mMonotonic.store( mMonotonic.load() + inSeconds );
}

void XManualClock::AdvanceTo( double inMonotonicSeconds )
{
    const double step = inMonotonicSeconds - mMonotonic.load();
    if ( not( step > 0 ) )
        return;
    mNow.store( mNow.load() + step );
    mMonotonic.store( inMonotonicSeconds );
}

void XManualClock::SetNow( XAbsoluteTime inNow )
{
    mNow.store( inNow );
}

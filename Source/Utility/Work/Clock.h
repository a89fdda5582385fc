// Where time comes from. No code reads a clock by itself: it asks the clock that is installed,
// so that tests turn time by hand.
#pragma once

#include <atomic>

/// Times are seconds since 2001-01-01 00:00:00 UTC.
using XAbsoluteTime = double;

class XClock
{
public:
    virtual ~XClock() = default;

    /// Wall-clock time; may jump when the system's clock is set.
    [[nodiscard]] virtual XAbsoluteTime Now() const = 0;
    /// Seconds since some fixed start; never goes back. Delays are measured with it.
    [[nodiscard]] virtual double MonotonicSeconds() const = 0;

    /// The clock in use: the system's unless another was installed. Any thread.
    [[nodiscard]] static const XClock& Current();
    /// The system's clock, whatever is installed: for what has to wait in real time.
    [[nodiscard]] static const XClock& System();

    /// Installs a clock for as long as this object lives. Main thread, while nothing else runs.
    class Substitute
    {
    public:
        explicit Substitute( const XClock& inClock );
        ~Substitute();
        Substitute( const Substitute& ) = delete;
        Substitute& operator=( const Substitute& ) = delete;

    private:
        const XClock* mPrevious;
    };
};

/// A clock that stands still until it is turned. Any thread may read it; one turns it.
class XManualClock final : public XClock
{
public:
    explicit XManualClock( XAbsoluteTime inNow = 700000000.0 );
    [[nodiscard]] XAbsoluteTime Now() const override;
    [[nodiscard]] double MonotonicSeconds() const override;
    /// Both times move on.
    void Advance( double inSeconds );
    /// Both times move on until the monotonic one is exactly this; a time gone by is ignored.
    void AdvanceTo( double inMonotonicSeconds );
    /// Only the wall clock jumps, as when a user sets it.
    void SetNow( XAbsoluteTime inNow );

private:
    std::atomic<double> mNow;
    std::atomic<double> mMonotonic{ 0 };
};

// The environment of the program: queues over threads. Threads belong to nobody: one that is free
// takes the next queue that has something to run, a new one is made when none is free, and
// one that has had nothing to do for a while ends. So an idle queue costs no thread, and a
// queue that waits for another can't starve it. One more thread, made at first use, keeps time.
#pragma once

#include "Utility/Work/Work.h"

class XThreadedWork final : public XWork
{
public:
    /// The clock must run by itself and outlive the environment.
    explicit XThreadedWork( const XClock& inClock );
    /// Finishes.
    ~XThreadedWork() override;

    [[nodiscard]] std::shared_ptr<XQueue> MakeSerialQueue( TextView inLabel ) override;
    /// At most kConcurrentWidth blocks of one concurrent queue run at once.
    [[nodiscard]] std::shared_ptr<XQueue> MakeConcurrentQueue( TextView inLabel ) override;
    [[nodiscard]] const std::shared_ptr<XQueue>& MainQueue() override { return mMainQueue; }
    [[nodiscard]] const XClock& Clock() const override;
    std::size_t DrainMainQueue() override;
    void SetMainWakeUp( std::function<void()> inWakeUp ) override;
    bool RunUntil( const std::function<bool()>& ) override { return false; }
    void Finish() override;

    static constexpr std::size_t kConcurrentWidth = 8;
    static constexpr double kIdleSeconds = 5.0; ///< after which a free thread ends

    struct Core;

private:
    std::shared_ptr<Core> mCore;
    std::shared_ptr<XQueue> mMainQueue;
};

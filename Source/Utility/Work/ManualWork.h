// An environment that stands still until it is told to move: for tests, and for a scheduler that
// tries orders of events from a seed. Blocks run one at a time on the thread that calls RunOne,
// in the order that a chooser picks; wake-ups come when time is turned by Advance. Other threads
// may queue blocks, but only one thread runs them and calls Sync.
#pragma once

#include "Utility/Work/Work.h"

#include <vector>

class XManualWork final : public XWork
{
public:
    /// Given the number of blocks that could run next, the oldest first, answers with an index.
    using Chooser = std::function<std::size_t( std::size_t inCount )>;

    /// The clock is turned by Advance, and outlives this.
    explicit XManualWork( XManualClock& inClock );
    /// Finishes.
    ~XManualWork() override;

    [[nodiscard]] std::shared_ptr<XQueue> MakeSerialQueue( TextView inLabel ) override;
    [[nodiscard]] std::shared_ptr<XQueue> MakeConcurrentQueue( TextView inLabel ) override;
    [[nodiscard]] const std::shared_ptr<XQueue>& MainQueue() override { return mMainQueue; }
    [[nodiscard]] const XClock& Clock() const override { return mClock; }
    std::size_t DrainMainQueue() override;
    void SetMainWakeUp( std::function<void()> inWakeUp ) override;
    /// Runs blocks until the condition holds. With nothing left to run it could never hold: that is
    /// an assertion, and the waiting caller goes on.
    bool RunUntil( const std::function<bool()>& inDone ) override;
    void Finish() override;

    /// Without one the oldest block runs first.
    void SetChooser( Chooser inChooser ) { mChooser = std::move( inChooser ); }
    /// The labels of the queues whose blocks could run next, the oldest block first: the head of each
    /// serial queue that isn't occupied, every block of a concurrent one.
    [[nodiscard]] std::vector<Text> Runnable() const;
    /// Runs the block that the chooser picks; false when there is none.
    bool RunOne();
    /// Runs one block of a queue; false when it has none that could run.
    bool RunOneOf( XQueue& inQueue );
    /// Runs blocks until none is left; the number. More than a million in a row is an assertion.
    std::size_t RunAll();

    /// Turns time by so many seconds: each wake-up on the way comes at its time, in order, and all
    /// that can run runs before time goes on.
    void Advance( double inSeconds );
    /// Moves time to the next wake-up and queues what it brings, running nothing; false when there is none.
    bool AdvanceToNextWakeUp();
    [[nodiscard]] std::size_t CountWakeUps() const;

    struct Core;

private:
    XManualClock& mClock;
    Chooser mChooser;
    std::shared_ptr<Core> mCore;
    std::shared_ptr<XQueue> mMainQueue;
};

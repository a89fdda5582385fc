// A main loop of our own: it runs the main queue on the thread that calls Run. A desktop's or a
// toolkit's main loop takes its place by installing its own wake-up and calling
// XWork::DrainMainQueue when it was woken.
#pragma once

#include "Utility/Work/Work.h"

class XMainLoop
{
public:
    explicit XMainLoop( XWork& inWork = XWork::Current() );
    ~XMainLoop();
    XMainLoop( const XMainLoop& ) = delete;
    XMainLoop& operator=( const XMainLoop& ) = delete;

    /// Runs blocks of the main queue until Stop; may be called from such a block, and then Stop ends
    /// the inner run first. Main thread.
    void Run();
    /// Ends Run after the blocks that are due now; one that comes before Run ends it at once. Any thread.
    void Stop();
    /// Runs what is on the main queue now; the number of blocks. Main thread.
    std::size_t DrainOnce() { return mWork.DrainMainQueue(); }

private:
    struct State
    {
        std::mutex mMutex;
        std::condition_variable mChanged;
        bool mIsWoken = true;
        std::size_t mStops = 0;
    };

    XWork& mWork;
    std::shared_ptr<State> mState = std::make_shared<State>(); // a wake-up may outlive the loop
};

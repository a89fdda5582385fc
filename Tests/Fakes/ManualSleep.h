// Sleeping that takes no time: the clock moves on by what was asked for, and then the test may play another process.
#pragma once

#include "Utility/Work/Clock.h"
#include "Utility/Work/Sleep.h"

#include <functional>

class ManualSleep final : public XSleep
{
public:
    explicit ManualSleep( XManualClock& inClock ) : mClock( inClock ) {}
    void Sleep( double inSeconds ) override
    {
        ++mCount;
        mClock.Advance( inSeconds );
        if ( mMeanwhile )
            mMeanwhile();
    }

    std::function<void()> mMeanwhile;
    int mCount = 0;

private:
    XManualClock& mClock;
    XSleep::Substitute mInUse{ *this };
};

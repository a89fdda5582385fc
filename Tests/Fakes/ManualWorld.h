// A world that stands still: a clock and queues turned by hand, and a log that is only remembered.
#pragma once

#include "Tests/Support/LogCapture.h"
#include "Utility/Work/ManualWork.h"

class ManualWorld
{
public:
    LogCapture mLog;
    XManualClock mClock;
    XClock::Substitute mClockInUse{ mClock };
    XManualWork mWork{ mClock };
    XWork::Substitute mWorkInUse{ mWork };
};

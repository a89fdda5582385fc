// Jobs without a target that run later, once, off the main thread: adding a key again replaces the
// job and pushes it back. Jobs run on the queue "com.tessarine.korvalan.DeferredJobs" (spelt
// so), one at a time. Any thread may call.
#pragma once

#include "Utility/Work/Work.h"

namespace DeferredJobs
{
/// Runs the block in so many seconds, unless the key is added again before. A missing key or block, a
/// delay below 0 and a call after Finish are assertions, and the job is dropped.
void Add( TextView inKey, double inDelay, XBlock inBlock );

/// Runs every job still pending, in the order of their times, and returns when they have run.
void Finish();
} // namespace DeferredJobs

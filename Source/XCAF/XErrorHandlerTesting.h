// How tests look behind the logging facility. Nobody else includes this.
#pragma once

#include "CFMethods/Text.h"

#include <functional>
#include <memory>

class XQueue;

namespace XErrorHandler
{
/// Gets each message instead of the log file, on the thread that logs. It must not log. Empty: the file.
using TestSink = std::function<void( bool inToSystemLog, TextView inMessage )>;
void SetSinkForTesting( TestSink inSink );

/// As at the start of a process: nothing read, no source, not quitting. The logs folder and the sink stay;
/// a file is opened anew in each environment of queues. While nothing else runs.
void ResetForTesting();

/// `gLogFileQueue` of the environment in use.
[[nodiscard]] std::shared_ptr<XQueue> LogQueueForTesting();

/// `gHackSyncronousLogging`: every entry is on disk before the call returns.
void SetSyncronousLogging( bool inOn );
} // namespace XErrorHandler

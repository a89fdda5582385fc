// Runs an external command to its end and returns what it wrote. No shell: the command is a path, or
// a name that is looked up on the path, with its arguments as they stand. Any thread that may
// wait.
#pragma once

#include "CFMethods/Text.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace SyncNSTask
{
struct Options
{
    /// Seconds after which the command is killed with its group, and there is no result.
    std::optional<double> mTimeout;
    /// Bytes; a command that writes more is killed with its group, and there is no result.
    std::size_t mMaximumOutput = std::size_t( 256 ) << 20;
    bool mMergeStdErr = false; ///< the error stream is part of the output
    bool mLogStdErr = false;   ///< the error stream goes to the log, each line after ">"
};

/// The output, whatever the exit status; absent, with a log line, when the command couldn't be started or was
/// killed by a limit.
[[nodiscard]] std::optional<std::string> dataFromTask( TextView inTaskPath, const std::vector<Text>& inArguments = {},
    std::string_view inInput = {}, const Options& inOptions = {} );

/// The same in text. Bytes of the output that aren't UTF-8 become U+FFFD.
[[nodiscard]] std::optional<Text> stringFromTask( TextView inTaskPath, const std::vector<Text>& inArguments = {},
    TextView inInput = {}, const Options& inOptions = {} );
} // namespace SyncNSTask

// One external command: started with an argument vector, never through a shell, in a process group
// of its own, with descriptors 0, 1 and 2 only. Private to the tasks of this folder. One thread
// starts the command and calls Communicate; Terminate and Wake may come from any other.
#pragma once

#include "Utility/Work/Clock.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class XChildProcess
{
public:
    struct Command
    {
        std::string mPath; ///< without "/": looked up on the PATH of the environment
        std::vector<std::string> mArguments;
        std::vector<std::string> mEnvironment; ///< "NAME=value"
        bool mMergeStdErr = false;             ///< descriptor 2 is the same pipe as 1
    };

    struct Limits
    {
        std::optional<double> mTimeout; ///< seconds from Communicate, then the group is killed
        std::size_t mMaximumOutput;     ///< bytes of output and error together, then the group is killed
    };

    /// What the command writes, as it comes, on the thread of Communicate.
    class Handler
    {
    public:
        virtual ~Handler() = default;
        virtual void Output( std::string_view inBytes ) = 0;
        virtual void Error( std::string_view inBytes ) = 0;
        /// False holds the command's output back in its pipe until Wake.
        [[nodiscard]] virtual bool WantsMore() { return true; }
    };

    struct End
    {
        enum class Cause { kItself, kTimeout, kTooMuchOutput, kTerminated };
        Cause mCause = Cause::kItself;
        int mStatus = 0; ///< exit status, or the number of the signal
        bool mBySignal = false;
    };

    /// Starts the command; null, with the reason as a clause, when it can't be.
    [[nodiscard]] static std::unique_ptr<XChildProcess> Start( const Command& inCommand, std::string& outFault );
    ~XChildProcess();
    XChildProcess( const XChildProcess& ) = delete;
    XChildProcess& operator=( const XChildProcess& ) = delete;

    /// Writes the input, hands on what comes, and returns when the command has ended and what it had
    /// written by then was handed on. Descendants that hold the pipes open aren't waited for. Once.
    End Communicate( std::string_view inInput, Handler& ioHandler, const Limits& inLimits, const XClock& inClock );

    /// Asks the command's group to end, and kills it after kGraceSeconds. After the end it does nothing.
    void Terminate();
    /// The handler may want more.
    void Wake();

    static constexpr double kGraceSeconds = 2.0;

private:
    class Communication;
    struct Parts;
    explicit XChildProcess( std::unique_ptr<Parts> inParts );
    std::unique_ptr<Parts> mParts;
};

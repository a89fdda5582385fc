// Runs an external command in the background and delivers what it writes, and its end, to a delegate
// on the main queue. No shell: the command is a path, or a name that is looked up on the path.
// The task keeps itself alive until its end was delivered. Main thread.
#pragma once

#include "CFMethods/Text.h"
#include "Utility/Work/TaskEnvironment.h"
#include "Utility/Work/Work.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class AsyncNSTask;

/// Called on the main thread, in the order of events; nothing comes after the end.
class AsyncNSTaskDelegate
{
public:
    virtual ~AsyncNSTaskDelegate() = default;
    /// The receiver is what was given with the delegate, or null when that has gone.
    virtual void TaskOutput(
        AsyncNSTask& inTask, const std::shared_ptr<void>& inReceiver, std::string_view inBytes ) = 0;
    /// The error stream, unless it was merged or logged.
    virtual void TaskError( AsyncNSTask&, const std::shared_ptr<void>&, std::string_view ) {}
    virtual void TaskFinished( AsyncNSTask& inTask, const std::shared_ptr<void>& inReceiver ) = 0;
};

class AsyncNSTask : public std::enable_shared_from_this<AsyncNSTask>
{
public:
    /// Neither is kept alive; the receiver is on whose behalf the delegate acts, if anyone.
    [[nodiscard]] static std::shared_ptr<AsyncNSTask> initWithDelegate(
        std::weak_ptr<AsyncNSTaskDelegate> inDelegate, std::weak_ptr<void> inReceiver = {} );

    // Options, set before the launch.
    bool logStdErr = false;                                 ///< the error stream goes to the log, each line after ">"
    bool mergeStdErr = false;                               ///< the error stream is part of the output
    std::vector<XTaskVariable> executionParameters;         ///< "KVPARAM_..."
    std::shared_ptr<const XTaskVariables> includeVariables; ///< "KVVAR_..."; null for none
    std::optional<Text> variableInstance;                   ///< "KVINSTANCE", with the variables
    std::shared_ptr<void> tempScriptHolder;                 ///< kept until the task has ended

    /// Starts the command; false, with a log line, when it can't be: then the delegate hears nothing.
    /// Once a task.
    bool launchWithCommand( TextView inCommand, const std::vector<Text>& inArguments = {}, std::string inInput = {} );

    /// Asks the command to end, with its group, and kills it when it doesn't in 2 seconds.
    void terminate();
    /// True when the end is being delivered, and afterwards.
    [[nodiscard]] bool finished() const { return mIsFinished; }
    /// The exit status, or the number of the signal that ended it; 0 before the end.
    [[nodiscard]] int terminationStatus() const { return mStatus; }
    [[nodiscard]] bool terminatedBySignal() const { return mBySignal; }

    /// The delegate hears no more. The command goes on.
    void ActionDestroyed() { mDelegate.reset(); }

    ~AsyncNSTask();

private:
    struct Reading;
    AsyncNSTask() = default;
    void readPipe( std::string_view inBytes );
    void errorPipe( std::string_view inBytes );
    void Finish( int inStatus, bool inBySignal );

    std::weak_ptr<AsyncNSTaskDelegate> mDelegate;
    std::weak_ptr<void> mReceiver;
    std::shared_ptr<Reading> mReading; // while it runs
    bool mIsFinished = false, mBySignal = false;
    int mStatus = 0;
};

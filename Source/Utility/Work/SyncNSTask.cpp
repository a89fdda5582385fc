#include "Utility/Work/SyncNSTask.h"

#include "Utility/Work/ChildProcess.h"
#include "Utility/Work/TaskEnvironment.h"
#include "Utility/Work/TaskLog.h"

namespace
{
class Collector final : public XChildProcess::Handler
{
public:
    explicit Collector( bool inLogStdErr ) : mLogStdErr( inLogStdErr ) {}
    void Output( std::string_view inBytes ) override { mOutput += inBytes; }
    void Error( std::string_view inBytes ) override
    {
        if ( mLogStdErr )
            mErrors.Add( inBytes );
    }

    std::string mOutput;
    TaskLog::ErrorLines mErrors;

private:
    bool mLogStdErr;
};
} // namespace

std::optional<std::string> SyncNSTask::dataFromTask(
    TextView inTaskPath, const std::vector<Text>& inArguments, std::string_view inInput, const Options& inOptions )
{
    XAssertText( not inTaskPath.empty(), "taskPath" );
    if ( inTaskPath.empty() )
        return {};
    XChildProcess::Command command{ UTF8FromText( inTaskPath ), {}, {}, inOptions.mMergeStdErr };
    for ( const Text& argument : inArguments )
        command.mArguments.push_back( UTF8FromText( argument ) );
    XTaskEnvironment environment;
    environment.mDropOwnVariables = false;
    command.mEnvironment = environment.Make( XTaskEnvironment::OfProcess() );

    std::string fault;
    const auto child = XChildProcess::Start( command, fault );
    if ( not child )
    {
        XErrorHandler::PrivateMaybeLogFormat(
            "display", "Launch Task %@ %@ failed", inTaskPath, TaskLog::Describe( inArguments ) );
        XErrorHandler::PrivateMaybeLogFormat( "display", "%@: %s", inTaskPath, fault );
        return {};
    }
    Collector collector( inOptions.mLogStdErr );
    const XChildProcess::End end =
        child->Communicate( inInput, collector, { inOptions.mTimeout, inOptions.mMaximumOutput }, XClock::Current() );
    collector.mErrors.Flush();
    if ( end.mCause == XChildProcess::End::Cause::kItself )
        return std::move( collector.mOutput );
    if ( end.mCause == XChildProcess::End::Cause::kTimeout )
        XErrorHandler::PrivateMaybeLogFormat(
            "display", "Task %@ was stopped: it took more than %g seconds", inTaskPath, *inOptions.mTimeout );
    else
        XErrorHandler::PrivateMaybeLogFormat( "display", "Task %@ was stopped: it wrote more than %lu bytes",
            inTaskPath, std::uint64_t( inOptions.mMaximumOutput ) );
    return {};
}

std::optional<Text> SyncNSTask::stringFromTask(
    TextView inTaskPath, const std::vector<Text>& inArguments, TextView inInput, const Options& inOptions )
{
    const auto data = dataFromTask( inTaskPath, inArguments, UTF8FromText( inInput ), inOptions );
    return data ? std::optional( TextFromUTF8( *data ) ) : std::nullopt;
}

#include "App/KVApplication.h"

#include "App/KVAppDetails.h"
#include "Defines/KVPreferences.h"
#include "Platform/Platform.h"
#include "Platform/RunningApplications.h"
#include "Utility/Work/Sleep.h"
#include "XCAF/KVNotifications.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XFileWriting.h"
#include "XCAF/XNotificationCenter.h"

namespace
{
constexpr int kPolls = 2000, kQuickPolls = 500;
constexpr double kBetweenPolls = 0.001;

/// A process, and what it ran when it was found. The handle keeps the process; this sees to it that the process has not
/// become another program meanwhile, whatever the platform's handle is worth.
class FoundEngine
{
public:
    explicit FoundEngine( XRunningApplication& inProcess )
        : mProcess( inProcess ),
          mNumber( inProcess.ProcessIdentifier() ),
          mExecutable( inProcess.ExecutablePath() ),
          mFile( FileOf( mExecutable ) )
    {}

    [[nodiscard]] const std::filesystem::path& Executable() const { return mExecutable; }
    [[nodiscard]] std::int64_t Number() const { return mNumber; }
    [[nodiscard]] bool IsRunning() const { return mProcess.IsRunning(); }

    void terminate()
    {
        if ( IsStillTheEngine() )
            mProcess.terminate();
    }
    void forceTerminate()
    {
        if ( IsRunning() and IsStillTheEngine() )
            mProcess.forceTerminate();
    }

private:
    /// Absent for a file that has gone, as when the engine was replaced while it ran. All facts count: the number of a
    /// removed file is soon given to another.
    static std::optional<XFileStatus> FileOf( const std::filesystem::path& inPath )
    {
        XFileStatus facts;
        if ( inPath.empty() or XFileCalls::Current().GetPathFacts( inPath, facts ) != 0 )
            return {};
        return facts;
    }

    [[nodiscard]] bool IsStillTheEngine() const
    {
        const std::filesystem::path now = mProcess.ExecutablePath();
        if ( not mExecutable.empty() and now == mExecutable and mProcess.ProcessIdentifier() == mNumber and
            FileOf( now ) == mFile )
            return true;
        XErrorHandler::PrivateMaybeLogFormat( "always",
            "Process %lld isn't known to be an engine (%@, now %@): it's left alone", mNumber, mExecutable, now );
        return false;
    }

    XRunningApplication& mProcess;
    std::int64_t mNumber;
    std::filesystem::path mExecutable;
    std::optional<XFileStatus> mFile;
};

/// Waits until it has gone, or time is up.
void WaitForQuit( const FoundEngine& inEngine )
{
    int polls = 0;
    while ( polls < kPolls and inEngine.IsRunning() )
    {
        XErrorHandler::PrivateMaybeLogFormat(
            "engine", "Wait for engine to quit %@ (%d)", inEngine.Executable(), polls );
        XSleep::For( kBetweenPolls );
        ++polls;
    }
    if ( polls >= kQuickPolls )
        XErrorHandler::PrivateMaybeLogFormat(
            "always", "Waited %f seconds for engine to quit", ( polls + 1 ) / 1000.0 );
}

void QuitOldEngine( FoundEngine& ioEngine )
{
    XErrorHandler::PrivateMaybeLogFormat( "always", "Quit old engine %@", ioEngine.Executable() );
    ioEngine.terminate();
    WaitForQuit( ioEngine );
    ioEngine.forceTerminate();
}

[[nodiscard]] bool IsRightEngine( const FoundEngine& inEngine, const KVAppDetails& inDetails )
{
    const auto ours = Platform::Current().RunningApplications().EngineExecutable();
    return ours and inEngine.Executable() == *ours and not inDetails.IsNull() and
        inDetails.Same( KVAppDetails::GetAppDetailsFromEngine( inEngine.Number() ) );
}
} // namespace

bool KVApplication::isEngineRunning()
{
    return not Platform::Current().RunningApplications().RunningApplications( kEngineBundleIdentifier ).empty();
}

void KVApplication::quitEngine()
{
    XNotificationCenter::PostNotification( KVNotifications::kQuitEngine, nullptr, true );
}

void KVApplication::LaunchEngine()
{
    XRunningApplications& applications = Platform::Current().RunningApplications();
    const auto enginePath = applications.EngineExecutable();
    XAssert( enginePath );
    if ( not enginePath )
        return;
    if ( const auto error = applications.Launch( *enginePath ) )
        XErrorHandler::PrivateMaybeLogFormat( "always", "KVApplication::LaunchEngine error %@", *error );
    else
        XErrorHandler::PrivateMaybeLogFormat( "display", "Launch Engine" );
}

void KVApplication::KillEngines( bool inAlways, bool& outAlreadyRunning )
{
    // 1. The user may want to keep another engine, as one that is being developed.
    const bool leaveAlone = KVPreferences::GetBoolean( KVPreferences::kLeaveEngineAloneID, false );
    outAlreadyRunning = leaveAlone and not inAlways;
    if ( outAlreadyRunning )
    {
        XErrorHandler::PrivateMaybeLogFormat( "display", "Leaving Engine Alone" );
        return;
    }
    if ( leaveAlone )
        XErrorHandler::PrivateMaybeLogFormat( "display", "Want to leave engine alone, but quitting it anyway" );
    // 2. and 3. The right one stays, every other one goes.
    const KVAppDetails details = KVAppDetails::GetCurrent();
    for ( const auto& process :
        Platform::Current().RunningApplications().RunningApplications( kEngineBundleIdentifier ) )
    {
        FoundEngine engine( *process );
        if ( not inAlways and IsRightEngine( engine, details ) )
        {
            outAlreadyRunning = true;
            XErrorHandler::PrivateMaybeLogFormat( "always", "Engine is already running" );
        }
        else
            QuitOldEngine( engine );
    }
}

void KVApplication::KillEngines( bool inAlways )
{
    bool alreadyRunning = false;
    KillEngines( inAlways, alreadyRunning );
}

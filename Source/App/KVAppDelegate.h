// The application: what is started, in which order, how files are held back until it is ready, and what is stopped, saved
// and waited for at the end. One instance at a time. Main thread.
#pragma once

#include "App/AppStep.h"
#include "CFMethods/Text.h"
#include "Macros/MMacroApplication.h"
#include "MacrosWindow/EngineCommands.h"
#include "Utility/Work/Work.h"
#include "XCAF/XNotificationCenter.h"

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <vector>

class MMacroDomain;

class KVAppDelegate final : public MMacroApplication
{
public:
    struct Options
    {
        bool mMayLaunchEngine = true; ///< false: as with all modifier keys held, no engine runs
        bool mIsForOneVerb = false;   ///< the engine is left alone, and there are no windows
        bool mBeginAnew = false;      ///< a macros file that can't be loaded is set aside
    };

    /// inEndLoop ends the main loop, from the main thread.
    KVAppDelegate( const Options& inOptions, KVAppSubsystems& inSubsystems, std::function<void()> inEndLoop );
    ~KVAppDelegate() override;
    KVAppDelegate( const KVAppDelegate& ) = delete;
    KVAppDelegate& operator=( const KVAppDelegate& ) = delete;
    /// The one instance, or null.
    [[nodiscard]] static KVAppDelegate* appDelegate();

    /// What is checked before anything starts. False when the program has to end, which was told.
    [[nodiscard]] bool CheckBeforeStart();

    // In this order. The first loads the macros, and throws XException for a macros file that is something else.
    void applicationWillFinishLaunching();
    void applicationDidFinishLaunching();
    /// Everything is saved when it returns. Once.
    void applicationWillTerminate();

    /// A file that the system or the user opens; false when it is none of ours. Before the application is ready the
    /// file waits and the answer is true.
    bool application( const std::filesystem::path& openFile );
    void launchOrRelaunchEngine();
    /// Imports a file, as told by its extension; what isn't a library comes in disabled unless the Option key, and no
    /// other, is held.
    bool importFromURL( const std::filesystem::path& inFile );

    // The menu commands.
    [[nodiscard]] bool isEngineRunning() const;
    void quitEngine();
    void launchEngine();

    // The desktop's search index asks to have everything indexed again, or some of it. Any thread.
    void searchableIndexReindexAll( std::function<void()> inAcknowledge );
    void searchableIndexReindex( std::vector<Text> inIdentifiers, std::function<void()> inAcknowledge );

    [[nodiscard]] bool isTerminating() const override { return mIsTerminating; }
    void terminate() override;
    void macrosSavedClearAppleScriptCaches() override;
    void HandleReloadMacros() override;
    void SaveAllMacrosIfNecessary() override;
    [[nodiscard]] bool NeedSaveAllMacros() const override;

private:
    struct Row
    {
        AppStep mStep;
        void ( KVAppDelegate::*mOwn )();
        bool ( *mIsWanted )() = nullptr; ///< null for a step that is always taken
        bool mIsOnNextTurn = false;      ///< of the main queue
    };
    static const Row kWillFinish[], kDidFinish[], kDeferred[], kWillTerminate[];

    void Take( std::span<const Row> inRows );
    void Take( const Row& inRow );
    [[nodiscard]] XBlock UnlessTerminating( XBlock inStep );
    void RunLater( double inSeconds, void ( KVAppDelegate::*inStep )() );
    void Observe( TextView inName, void ( KVAppDelegate::*inHandler )( const XNotificationCenter::Notification& ) );

    void LogStarting();
    void LoadFrequentIcons();
    void RemoveBogusDotDatFiles();
    void ReadMacUUID();
    void StartTimeSaved();
    void MigrateStatusMenuDisplayType();
    void Subscribe();
    void MakeMacroDomain();
    void CreateTriggerManagers();
    void InitialLoadAllMacros();

    void StartAppDetails();
    void CheckLicence();
    void StartMacrosWindow();
    void MacrosWindowDidFinishLaunching();
    void ScheduleEngine();
    void ForceSystemToNoticeUs();
    void EnsureCorrectDaemonLoginStatus();
    void CheckDiagnostics();

    void TakeEngineStep();
    void deferredStartupActions();
    void WarnAccessibility();
    void CheckNewVersion();
    void OpenDeferredFiles();
    bool openFile( const std::filesystem::path& inFile );

    void BeginTerminating();
    void MacrosWindowWillTerminate();
    void TerminateTriggerManagers();
    void RemoveObservers();
    void FinishDeferredJobs();
    void FinalSaveAllMacros();
    void LogQuitting();
    void DeleteMacroDomain();
    void StopTimeSaved();
    void FinishWriters();
    void FinishPerformCoalesced();

    void EncodeInIdleTurns();
    void ReloadSoon();
    void ReloadAsAsked();

    void DidGetNagNow( const XNotificationCenter::Notification& inNotification );
    void DidGetVersionCheckError( const XNotificationCenter::Notification& inNotification );
    void DidGetNoNewVersion( const XNotificationCenter::Notification& inNotification );
    void DidFailToInstall( const XNotificationCenter::Notification& inNotification );
    void DidGetQuitEditor( const XNotificationCenter::Notification& inNotification );
    void DidGetSetMacroEnable( const XNotificationCenter::Notification& inNotification );
    void DidGetSharingIncomingChange( const XNotificationCenter::Notification& inNotification );
    void DidGetAppearanceChange( const XNotificationCenter::Notification& inNotification );

    const Options mOptions;
    KVAppSubsystems& mSubsystems;
    std::function<void()> mEndLoop;
    MMacroApplication::Scope mScope{ *this };
    EngineCommands::Poster mEnginePoster;
    HEngineNotificationPoster::Scope mEnginePosterInUse{ mEnginePoster };
    std::unique_ptr<MMacroDomain> mMacroDomain;
    std::atomic<bool> mIsTerminating{ false };
    bool mMayGoOn = true;
    bool mIsReloadAsked = false;
    bool mIsLoaded = false;      ///< until then the domain is empty, and a save would lose everything
    bool mIsEncoding = false;    ///< the next idle turn goes on
    bool mDeferOpenFile = false; ///< true once the deferred actions have run
    std::vector<std::filesystem::path> mDeferredOpenFiles;
    std::shared_ptr<int> mPresence = std::make_shared<int>(); ///< what comes later looks whether we are still here
};

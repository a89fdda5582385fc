#include "App/KVAppDelegate.h"

#include "App/AssistiveDevices.h"
#include "App/DaemonLoginStatus.h"
#include "App/KVAppDetails.h"
#include "App/KVApplication.h"
#include "ClipboardSwitcher/ClipboardReference.h"
#include "Defines/KVIconRegistry.h"
#include "Defines/KVPreferences.h"
#include "Defines/SetAside.h"
#include "Macros/HTimeSaved.h"
#include "Macros/ImportZipExtension.h"
#include "Macros/MMacroDomain.h"
#include "Macros/MMacroFileEncoder.h"
#include "Macros/MMacroPreferenceFile.h"
#include "Macros/SavedStates.h"
#include "Macros/SpotlightExport.h"
#include "MacrosWindow/EngineCommands.h"
#include "MacrosWindow/MacroImport.h"
#include "MacrosWindow/MacrosWindowInterface.h"
#include "MacrosWindow/MacrosWindowUndo.h"
#include "MacrosWindow/RecoverySnapshot.h"
#include "Platform/Alerts.h"
#include "Platform/Platform.h"
#include "Platform/RunningApplications.h"
#include "Platform/SearchIndex.h"
#include "Platform/Workspace.h"
#include "Triggers/TTriggerManagerDomain.h"
#include "Utility/Text/Localization.h"
#include "Utility/Work/AsyncCoallescedWriter.h"
#include "Utility/Work/DeferredJobs.h"
#include "Utility/Work/PerformCoalesced.h"
#include "Utility/Work/Work.h"
#include "XCAF/ErrorAlert.h"
#include "XCAF/KVDiagnostics.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XException.h"
#include "XCAF/XNotificationCenter.h"

#include <cstdlib>

namespace
{
KVAppDelegate* gAppDelegate = nullptr;

constexpr double kEngineDelay = 0.01, kDeferredDelay = 0.2, kVersionCheckDelay = 1.0;
constexpr int kExpiryDays = 30, kExpiryLevel = 1;
constexpr std::int64_t kOldDisplayTypes = 3;

Text ExtensionOf( const std::filesystem::path& inFile )
{
    const std::string extension = inFile.extension().native();
    return TextFromUTF8( extension.empty() ? extension : extension.substr( 1 ) );
}

template<const KVPreferences::PreferenceID& inID, bool inDefault>
bool IsSet()
{
    return KVPreferences::GetBoolean( inID, inDefault );
}
constexpr auto& kShowsDevelopMenu = IsSet<KVPreferences::kShowDevelopMenuID, false>;
constexpr auto& kRunsUnitTests = IsSet<KVPreferences::kRunUnitTestsID, false>;
constexpr auto& kOpensValueInspector = IsSet<KVPreferences::kValueInspectorOpenID, false>;
constexpr auto& kDisplaysWelcomeWindow = IsSet<KVPreferences::kDisplayWelcomeWindowID, true>;
constexpr auto& kWritesHelpFiles = IsSet<KVPreferences::kWriteHelpFilesID, false>;
} // namespace

// The order is a promise to every part that is named here.
const KVAppDelegate::Row KVAppDelegate::kWillFinish[] = {
    { AppStep::kSetInitialDarkMode, nullptr },
    { AppStep::kLogStarting, &KVAppDelegate::LogStarting },
    { AppStep::kRouteDatabaseLog, nullptr },
    { AppStep::kLoadFrequentIcons, &KVAppDelegate::LoadFrequentIcons },
    { AppStep::kShowDevelopMenu, nullptr, kShowsDevelopMenu },
    { AppStep::kRemoveBogusDotDatFiles, &KVAppDelegate::RemoveBogusDotDatFiles },
    { AppStep::kMacUUID, &KVAppDelegate::ReadMacUUID },
    { AppStep::kTimeSavedStart, &KVAppDelegate::StartTimeSaved },
    { AppStep::kReachabilityStart, nullptr },
    { AppStep::kMigrateStatusMenuDisplayType, &KVAppDelegate::MigrateStatusMenuDisplayType },
    { AppStep::kVariablesStart, nullptr },
    { AppStep::kGestureMonitorStart, nullptr },
    { AppStep::kRunningApplicationsListStart, nullptr },
    { AppStep::kSubscribe, &KVAppDelegate::Subscribe },
    { AppStep::kMakeMacroDomain, &KVAppDelegate::MakeMacroDomain },
    { AppStep::kCreateTriggerManagers, &KVAppDelegate::CreateTriggerManagers },
    { AppStep::kBecomeIndexDelegate, nullptr },
    { AppStep::kInitialLoadAllMacros, &KVAppDelegate::InitialLoadAllMacros },
    { AppStep::kUsageSortOrderStart, nullptr },
    { AppStep::kDictionaryStart, nullptr },
    { AppStep::kTesseractDownloadStart, nullptr },
    { AppStep::kRunUnitTests, nullptr, kRunsUnitTests },
};

const KVAppDelegate::Row KVAppDelegate::kDidFinish[] = {
    { AppStep::kBecomeNotificationDelegate, nullptr },
    { AppStep::kAppDetailsStart, &KVAppDelegate::StartAppDetails },
    { AppStep::kLicenceReminder, &KVAppDelegate::CheckLicence },
    { AppStep::kOpenValueInspector, nullptr, kOpensValueInspector, true },
    { AppStep::kMacrosWindowStart, &KVAppDelegate::StartMacrosWindow },
    { AppStep::kOpenWelcomeWindow, nullptr, kDisplaysWelcomeWindow, true },
    { AppStep::kMacrosWindowDidFinishLaunching, &KVAppDelegate::MacrosWindowDidFinishLaunching },
    { AppStep::kScheduleEngine, &KVAppDelegate::ScheduleEngine },
    { AppStep::kPrecacheApplications, nullptr },
    { AppStep::kForceSystemToNoticeUs, &KVAppDelegate::ForceSystemToNoticeUs },
    { AppStep::kInsertActionMenu, nullptr },
    { AppStep::kEnsureCorrectDaemonLoginStatus, &KVAppDelegate::EnsureCorrectDaemonLoginStatus },
    { AppStep::kScrollWheelStart, nullptr },
    { AppStep::kWriteHelpFiles, nullptr, kWritesHelpFiles },
    { AppStep::kCheckDiagnostics, &KVAppDelegate::CheckDiagnostics },
    { AppStep::kLintActionEditors, nullptr, kShowsDevelopMenu },
    { AppStep::kRegisterMenus, nullptr },
};

const KVAppDelegate::Row KVAppDelegate::kDeferred[] = {
    { AppStep::kWarnAccessibility, &KVAppDelegate::WarnAccessibility },
    { AppStep::kCheckNewVersion, &KVAppDelegate::CheckNewVersion },
    { AppStep::kOpenDeferredFiles, &KVAppDelegate::OpenDeferredFiles },
};

const KVAppDelegate::Row KVAppDelegate::kWillTerminate[] = {
    { AppStep::kBeginTerminating, &KVAppDelegate::BeginTerminating },
    { AppStep::kSaveWindowStates, nullptr },
    { AppStep::kMacrosWindowWillTerminate, &KVAppDelegate::MacrosWindowWillTerminate },
    { AppStep::kTerminateTriggerManagers, &KVAppDelegate::TerminateTriggerManagers },
    { AppStep::kRemoveObservers, &KVAppDelegate::RemoveObservers },
    { AppStep::kFinishDeferredJobs, &KVAppDelegate::FinishDeferredJobs },
    { AppStep::kFinalSaveAllMacros, &KVAppDelegate::FinalSaveAllMacros },
    { AppStep::kRunningApplicationsListStop, nullptr },
    { AppStep::kLogQuitting, &KVAppDelegate::LogQuitting },
    { AppStep::kDeleteMacroDomain, &KVAppDelegate::DeleteMacroDomain },
    { AppStep::kTimeSavedStop, &KVAppDelegate::StopTimeSaved },
    { AppStep::kReachabilityStop, nullptr },
    { AppStep::kGestureMonitorStop, nullptr },
    { AppStep::kFinishCompiledScripts, nullptr },
    { AppStep::kFinishWriters, &KVAppDelegate::FinishWriters },
    { AppStep::kUsageSortOrderFinish, nullptr },
    { AppStep::kDictionaryFinish, nullptr },
    { AppStep::kVariablesFinish, nullptr },
    { AppStep::kKeyMonitorFinish, nullptr },
    { AppStep::kTesseractDownloadFinish, nullptr },
    { AppStep::kFinishPerformCoalesced, &KVAppDelegate::FinishPerformCoalesced },
};

KVAppDelegate::KVAppDelegate( const Options& inOptions, KVAppSubsystems& inSubsystems, std::function<void()> inEndLoop )
    : mOptions( inOptions ),
      mSubsystems( inSubsystems ),
      mEndLoop( std::move( inEndLoop ) )
{
    XAssert( gAppDelegate == nullptr );
    gAppDelegate = this;
    ClipboardReference::SetAskForReload( [this] { ReloadSoon(); } );
}

KVAppDelegate::~KVAppDelegate()
{
    gAppDelegate = nullptr;
    ClipboardReference::SetAskForReload( {} );
    // After a start that failed: what would have been done at the end mustn't reach the next one.
    XNotificationCenter::RemoveEveryCocoaObserver( this );
    HTimeSaved::Stop();
    mMacroDomain.reset();
    MacrosWindowUndo::Reset();
    RecoverySnapshot::Reset();
    MMacroPreferenceFile::Reset();
}

KVAppDelegate* KVAppDelegate::appDelegate()
{
    return gAppDelegate;
}

void KVAppDelegate::Take( const Row& inRow )
{
    if ( inRow.mIsWanted and not inRow.mIsWanted() )
        return;
    if ( inRow.mIsOnNextTurn )
    {
        XWork::Current().MainQueue()->Async(
            UnlessTerminating( [this, step = inRow.mStep] { mSubsystems.Take( step ); } ) );
        return;
    }
    mSubsystems.Take( inRow.mStep );
    if ( inRow.mOwn )
        ( this->*inRow.mOwn )();
}

void KVAppDelegate::Take( std::span<const Row> inRows )
{
    for ( const Row& row : inRows )
        Take( row );
}

XBlock KVAppDelegate::UnlessTerminating( XBlock inStep )
{
    return [this, step = std::move( inStep ), presence = std::weak_ptr<int>( mPresence )] {
        if ( not presence.expired() and not mIsTerminating )
            step();
    };
}

void KVAppDelegate::RunLater( double inSeconds, void ( KVAppDelegate::*inStep )() )
{
    XWork::Current().MainQueue()->After( inSeconds, UnlessTerminating( [this, inStep] { ( this->*inStep )(); } ) );
}

bool KVAppDelegate::CheckBeforeStart()
{
    ::unsetenv( "SHLVL" );
    // The one text whose value is known proves that the texts are there and whole.
    if ( kvr_localized( u"kCheckLocalizedStrings" ) != u"GOOD" )
    {
        Platform::Current().Alerts().Notify( u"Korvalen", u"Localized.strings is corrupted." );
        return false;
    }
    return not mSubsystems.IsExpired( kExpiryDays, kExpiryLevel );
}

void KVAppDelegate::applicationWillFinishLaunching()
{
    Take( kWillFinish );
}

void KVAppDelegate::applicationDidFinishLaunching()
{
    for ( const Row& row : kDidFinish )
    {
        const bool isForUser = row.mStep >= AppStep::kOpenValueInspector and row.mStep <= AppStep::kScheduleEngine;
        if ( mMayGoOn or not isForUser )
            Take( row );
    }
    EncodeInIdleTurns();
}

void KVAppDelegate::applicationWillTerminate()
{
    Take( kWillTerminate );
}

// Before the application has finished launching.

void KVAppDelegate::LogStarting()
{
    XErrorHandler::PrivateMaybeLogFormat( "display", "Editor Starting %@", MMacroDomain::GetOurVersion() );
}

void KVAppDelegate::LoadFrequentIcons()
{
    for ( const auto icon : { KVIconRegistry::kCondition, KVIconRegistry::kTrigger, KVIconRegistry::kDisabledBadge,
              KVIconRegistry::kMacro, KVIconRegistry::kGear } )
        (void)KVIconRegistryName( icon );
}

void KVAppDelegate::RemoveBogusDotDatFiles()
{
    KVPreferences::RemoveBogusDotDatFiles();
    ImportZipExtension::RemoveLeftovers();
}

void KVAppDelegate::ReadMacUUID()
{
    (void)KVPreferences::MacUUID();
}

void KVAppDelegate::StartTimeSaved()
{
    HTimeSaved::Start( MacrosWindowInterface::DoResortForMacroStatsChanged );
}

void KVAppDelegate::MigrateStatusMenuDisplayType()
{
    std::int64_t type = 0;
    if ( KVPreferences::Get( KVPreferences::kDepricatedStatusMenuDisplayTypeID, &type, kOldDisplayTypes ) ==
            KVPreferences::kFound and
        type >= 0 and type < kOldDisplayTypes )
    {
        (void)KVPreferences::Set( KVPreferences::kStatusMenuDisplayType2ID,
            XText( KVPreferences::kStatusMenuDisplayTypeNames[std::size_t( type )] ) );
        (void)KVPreferences::Remove( KVPreferences::kDepricatedStatusMenuDisplayTypeID );
    }
    (void)KVPreferences::Remove( KVPreferences::kDefunctFixFinderSelectionBugID );
}

void KVAppDelegate::Observe(
    TextView inName, void ( KVAppDelegate::*inHandler )( const XNotificationCenter::Notification& ) )
{
    XNotificationCenter::AddCocoaObserver(
        this, inName, [this, inHandler]( const XNotificationCenter::Notification& inNotification ) {
            ( this->*inHandler )( inNotification );
        } );
}

void KVAppDelegate::Subscribe()
{
    XNotificationCenter::ListenToOtherProcesses();
    Observe( u"KV_NagNow", &KVAppDelegate::DidGetNagNow );
    Observe( u"KV_ManualSIVCCheckGotError", &KVAppDelegate::DidGetVersionCheckError );
    Observe( u"KV_ManualSIVCCheckNoNewVersion", &KVAppDelegate::DidGetNoNewVersion );
    Observe( u"KV_InstallFailed", &KVAppDelegate::DidFailToInstall );
    Observe( u"KV_QuitEditor", &KVAppDelegate::DidGetQuitEditor );
    Observe( u"KV_SetMacroEnable", &KVAppDelegate::DidGetSetMacroEnable );
    Observe( u"KV_SharingIncomingChange", &KVAppDelegate::DidGetSharingIncomingChange );
    Observe( u"KV_AppearancePreferenceChanged", &KVAppDelegate::DidGetAppearanceChange );
}

void KVAppDelegate::MakeMacroDomain()
{
    mMacroDomain = std::make_unique<MMacroDomain>();
}

void KVAppDelegate::CreateTriggerManagers()
{
    TTriggerManagerDomain::CreateTriggerManagers();
}

void KVAppDelegate::InitialLoadAllMacros()
{
    MMacroPreferenceFile::SetBeginAnew( mOptions.mBeginAnew );
    MMacroPreferenceFile::InitialLoadAllMacros();
    mIsLoaded = true;
    MacrosWindowUndo::LoadPersistentStacks();
    RecoverySnapshot::FoundAtStart();
    SetAside::Cull();
}

// After it has.

void KVAppDelegate::StartAppDetails()
{
    KVAppDetails::Start();
}

void KVAppDelegate::CheckLicence()
{
    mMayGoOn = mSubsystems.MayGoOn();
    if ( not mMayGoOn )
        KVApplication::KillEngines( true );
}

void KVAppDelegate::StartMacrosWindow()
{
    MacrosWindowInterface::Start();
}

void KVAppDelegate::MacrosWindowDidFinishLaunching()
{
    MacrosWindowInterface::ApplicationDidFinishLaunching();
}

void KVAppDelegate::ScheduleEngine()
{
    // Holding all the keys is the user's way to start without an engine.
    if ( not mOptions.mMayLaunchEngine or
        ( Platform::Current().Workspace().ModifierFlags() & kAllModifiers ) == kAllModifiers )
    {
        KVApplication::KillEngines( true );
    }
    else
    {
        RunLater( kEngineDelay, &KVAppDelegate::TakeEngineStep );
    }
    // Without an engine as well: the files that wait were promised to be opened.
    RunLater( kDeferredDelay, &KVAppDelegate::deferredStartupActions );
}

void KVAppDelegate::TakeEngineStep()
{
    Take( { AppStep::kLaunchOrRelaunchEngine, &KVAppDelegate::launchOrRelaunchEngine } );
}

void KVAppDelegate::launchOrRelaunchEngine()
{
    bool alreadyRunning = false;
    KVApplication::KillEngines( false, alreadyRunning );
    const bool isInstalled = Platform::Current().RunningApplications().EngineExecutable().has_value();
    if ( not alreadyRunning and isInstalled )
        KVApplication::LaunchEngine();
    else if ( not alreadyRunning ) // a normal state: it was installed without one
        XErrorHandler::PrivateMaybeLogFormat( "always", "There is no engine to launch" );
    MMacroPreferenceFile::InitialEngineFinishedRelaunching();
}

void KVAppDelegate::ForceSystemToNoticeUs()
{
    AssistiveDevices::ForceSystemToNoticeUs();
}

void KVAppDelegate::EnsureCorrectDaemonLoginStatus()
{
    DaemonLoginStatus::EnsureCorrectDaemonLoginStatus();
}

void KVAppDelegate::CheckDiagnostics()
{
    (void)KVDiagnostics::CheckForNew( XErrorHandler::LogsFolder() );
}

// A moment later.

void KVAppDelegate::deferredStartupActions()
{
    Take( kDeferred );
}

void KVAppDelegate::WarnAccessibility()
{
    AssistiveDevices::WarnAccessibilitIsRequiredForOperation();
}

void KVAppDelegate::CheckNewVersion()
{
    const auto isReported = [] {
        return not KVPreferences::Get( KVPreferences::kReportNewVersionID, XText( u"" ) ).IsEmpty();
    };
    if ( not isReported() )
        return;
    XWork::Current().MainQueue()->After( kVersionCheckDelay, [isReported] {
        if ( not isReported() )
            return;
        (void)KVPreferences::Remove( KVPreferences::kReportNewVersionID );
        XNotificationCenter::PostNotification( u"KV_ManualSIVCCheck", nullptr, true );
    } );
}

void KVAppDelegate::OpenDeferredFiles()
{
    mDeferOpenFile = true;
    for ( const auto& file : std::exchange( mDeferredOpenFiles, {} ) )
        (void)openFile( file );
}

bool KVAppDelegate::application( const std::filesystem::path& inFile )
{
    if ( mDeferOpenFile )
        return openFile( inFile );
    mDeferredOpenFiles.push_back( inFile );
    return true;
}

bool KVAppDelegate::importFromURL( const std::filesystem::path& inFile )
{
    const MacroImport::Result result =
        MacroImport::ImportFromURL( TextFromUTF8( inFile.native() ), ImportMacrosDisabledType::kByOptionKey );
    return bool( result );
}

bool KVAppDelegate::openFile( const std::filesystem::path& inFile )
{
    const Text extension = ExtensionOf( inFile );
    if ( extension == u"kvmacros" or extension == u"kvactions" or extension == u"kvlibrary" )
    {
        (void)importFromURL( inFile );
        return true;
    }
    return extension == u"zip" and ImportZipExtension::Import( inFile );
}

// At the end.

void KVAppDelegate::BeginTerminating()
{
    mIsTerminating = true;
}

void KVAppDelegate::MacrosWindowWillTerminate()
{
    MacrosWindowInterface::ApplicationWillTerminate();
}

void KVAppDelegate::TerminateTriggerManagers()
{
    MMacroDomain::Terminate();
}

void KVAppDelegate::RemoveObservers()
{
    XNotificationCenter::RemoveEveryCocoaObserver( this );
}

void KVAppDelegate::FinishDeferredJobs()
{
    DeferredJobs::Finish();
}

void KVAppDelegate::FinalSaveAllMacros()
{
    if ( mIsLoaded )
        MacrosWindowUndo::FinalSaveAllMacros();
    SavedStates::WaitForQueue();
}

void KVAppDelegate::LogQuitting()
{
    XErrorHandler::Quitting();
    XErrorHandler::PrivateMaybeLogFormat( "display", "Editor Quitting" );
}

void KVAppDelegate::DeleteMacroDomain()
{
    mMacroDomain.reset();
}

void KVAppDelegate::StopTimeSaved()
{
    HTimeSaved::Stop();
}

void KVAppDelegate::FinishWriters()
{
    AsyncCoallescedWriter::applicationWillTerminate();
    KVPreferences::Finish();
}

void KVAppDelegate::FinishPerformCoalesced()
{
    PerformCoalesced::Finish();
}

// What other processes say.

void KVAppDelegate::DidGetNagNow( const XNotificationCenter::Notification& )
{
    mSubsystems.NagNow();
}

void KVAppDelegate::DidGetVersionCheckError( const XNotificationCenter::Notification& )
{
    ErrorAlert::Error( nullptr, u"ManualSIVCErrorTitle", u"ManualSIVCErrorStr" );
}

void KVAppDelegate::DidGetNoNewVersion( const XNotificationCenter::Notification& )
{
    ErrorAlert::Error( nullptr, u"ManualSIVCNoNewVersionTitle", u"ManualSIVCNoNewVersionStr" );
}

void KVAppDelegate::DidFailToInstall( const XNotificationCenter::Notification& )
{
    ErrorAlert::Error( nullptr, u"InstallFailedTitle", u"InstallFailedStr" );
}

void KVAppDelegate::DidGetQuitEditor( const XNotificationCenter::Notification& )
{
    XErrorHandler::PrivateMaybeLogFormat( "Quit", "Received kQuitEditor notification event" );
    terminate();
}

void KVAppDelegate::DidGetSetMacroEnable( const XNotificationCenter::Notification& )
{
    EngineCommands::SetMacroEnable();
}

void KVAppDelegate::DidGetSharingIncomingChange( const XNotificationCenter::Notification& )
{
    MMacroPreferenceFile::ProcessSharingIncomingChange();
}

void KVAppDelegate::DidGetAppearanceChange( const XNotificationCenter::Notification& inNotification )
{
    mSubsystems.AppearancePreferenceChanged( inNotification.mUserInfo );
}

// For others.

void KVAppDelegate::terminate()
{
    XWork::Current().MainQueue()->Async( [this, presence = std::weak_ptr<int>( mPresence )] {
        if ( not presence.expired() and mEndLoop )
            mEndLoop();
    } );
}

void KVAppDelegate::macrosSavedClearAppleScriptCaches()
{
    XErrorHandler::PrivateMaybeLogFormat( "AppleScript", "macrosSavedClearAppleScriptCaches" );
    // After an undo the model is a new one.
    if ( not MMacroFileEncoder::HasAnything() )
        EncodeInIdleTurns();
}

// A clipboard was renamed while a reference to it was looked at, which is also done when the model is written: so never
// now, and once for all references.
void KVAppDelegate::ReloadSoon()
{
    if ( not std::exchange( mIsReloadAsked, true ) )
        RunLater( 0, &KVAppDelegate::ReloadAsAsked );
}

void KVAppDelegate::ReloadAsAsked()
{
    // The reload itself looks at the references, and the bytes may still have the old names: that asks for nothing.
    HandleReloadMacros();
    mIsReloadAsked = false;
}

// So that the next save finds all but what was edited in its encoded form. Each turn is short, and others come between.
void KVAppDelegate::EncodeInIdleTurns()
{
    constexpr std::size_t kObjectsInATurn = 500;
    if ( not std::exchange( mIsEncoding, true ) )
        RunLater( 0, &KVAppDelegate::EncodeInIdleTurns );
    else if ( mMacroDomain and not MMacroFileEncoder::EncodeSome( *mMacroDomain, kObjectsInATurn ) )
        RunLater( 0, &KVAppDelegate::EncodeInIdleTurns );
    else
        mIsEncoding = false;
}

void KVAppDelegate::HandleReloadMacros()
{
    MacrosWindowUndo::HandleReloadMacros();
    EncodeInIdleTurns();
}

void KVAppDelegate::SaveAllMacrosIfNecessary()
{
    MacrosWindowUndo::SaveAllMacrosIfNecessary();
}

bool KVAppDelegate::NeedSaveAllMacros() const
{
    return MacrosWindowUndo::NeedSaveAllMacros();
}

bool KVAppDelegate::isEngineRunning() const
{
    return KVApplication::isEngineRunning();
}

void KVAppDelegate::quitEngine()
{
    KVApplication::quitEngine();
}

void KVAppDelegate::launchEngine()
{
    KVApplication::LaunchEngine();
    // When the editor was started without an engine, what was held back since then goes out from now on.
    MMacroPreferenceFile::InitialEngineFinishedRelaunching();
}

void KVAppDelegate::searchableIndexReindexAll( std::function<void()> inAcknowledge )
{
    XWork::Current().MainQueue()->Async( [acknowledge = std::move( inAcknowledge )] {
        SpotlightExport::ExportToSpotlightIndex( Platform::Current().SearchIndex(), acknowledge );
    } );
}

void KVAppDelegate::searchableIndexReindex( std::vector<Text> inIdentifiers, std::function<void()> inAcknowledge )
{
    XWork::Current().MainQueue()->Async(
        [identifiers = std::move( inIdentifiers ), acknowledge = std::move( inAcknowledge )] {
            SpotlightExport::ExportToSpotlightIndexWithIdentifiers(
                Platform::Current().SearchIndex(), identifiers, acknowledge );
        } );
}

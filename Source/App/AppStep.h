// The steps of the application's life, in the order in which they are taken. Some belong to parts of the program that
// this build doesn't have: those are asked all the same, at their point, and do nothing.
#pragma once

#include "CFMethods/PropertyList.h"

#include <cstdint>
#include <iterator>
#include <string_view>

enum class AppStep : std::uint8_t {
    // before the application has finished launching
    kSetInitialDarkMode,
    kLogStarting,
    kRouteDatabaseLog,
    kLoadFrequentIcons,
    kShowDevelopMenu,
    kRemoveBogusDotDatFiles,
    kMacUUID,
    kTimeSavedStart,
    kReachabilityStart,
    kMigrateStatusMenuDisplayType,
    kVariablesStart,
    kGestureMonitorStart,
    kRunningApplicationsListStart,
    kSubscribe,
    kMakeMacroDomain,
    kCreateTriggerManagers,
    kBecomeIndexDelegate,
    kInitialLoadAllMacros,
    kUsageSortOrderStart,
    kDictionaryStart,
    kTesseractDownloadStart,
    kRunUnitTests,
    // after it has
    kBecomeNotificationDelegate,
    kAppDetailsStart,
    kLicenceReminder,
    kOpenValueInspector,
    kMacrosWindowStart,
    kOpenWelcomeWindow,
    kMacrosWindowDidFinishLaunching,
    kScheduleEngine,
    kPrecacheApplications,
    kForceSystemToNoticeUs,
    kInsertActionMenu,
    kEnsureCorrectDaemonLoginStatus,
    kScrollWheelStart,
    kWriteHelpFiles,
    kCheckDiagnostics,
    kLintActionEditors,
    kRegisterMenus,
    // a moment later
    kLaunchOrRelaunchEngine,
    kWarnAccessibility,
    kCheckNewVersion,
    kOpenDeferredFiles,
    // at the end
    kBeginTerminating,
    kSaveWindowStates,
    kMacrosWindowWillTerminate,
    kTerminateTriggerManagers,
    kRemoveObservers,
    kFinishDeferredJobs,
    kFinalSaveAllMacros,
    kRunningApplicationsListStop,
    kLogQuitting,
    kDeleteMacroDomain,
    kTimeSavedStop,
    kReachabilityStop,
    kGestureMonitorStop,
    kFinishCompiledScripts,
    kFinishWriters,
    kUsageSortOrderFinish,
    kDictionaryFinish,
    kVariablesFinish,
    kKeyMonitorFinish,
    kTesseractDownloadFinish,
    kFinishPerformCoalesced,
};
inline constexpr std::string_view kAppStepNames[] = { "SetInitialDarkMode", "LogStarting", "RouteDatabaseLog",
    "LoadFrequentIcons", "ShowDevelopMenu", "RemoveBogusDotDatFiles", "MacUUID", "TimeSavedStart", "ReachabilityStart",
    "MigrateStatusMenuDisplayType", "VariablesStart", "GestureMonitorStart", "RunningApplicationsListStart",
    "Subscribe", "MakeMacroDomain", "CreateTriggerManagers", "BecomeIndexDelegate", "InitialLoadAllMacros",
    "UsageSortOrderStart", "DictionaryStart", "TesseractDownloadStart", "RunUnitTests", "BecomeNotificationDelegate",
    "AppDetailsStart", "LicenceReminder", "OpenValueInspector", "MacrosWindowStart", "OpenWelcomeWindow",
    "MacrosWindowDidFinishLaunching", "ScheduleEngine", "PrecacheApplications", "ForceSystemToNoticeUs",
    "InsertActionMenu", "EnsureCorrectDaemonLoginStatus", "ScrollWheelStart", "WriteHelpFiles", "CheckDiagnostics",
    "LintActionEditors", "RegisterMenus", "LaunchOrRelaunchEngine", "WarnAccessibility", "CheckNewVersion",
    "OpenDeferredFiles", "BeginTerminating", "SaveWindowStates", "MacrosWindowWillTerminate",
    "TerminateTriggerManagers", "RemoveObservers", "FinishDeferredJobs", "FinalSaveAllMacros",
    "RunningApplicationsListStop", "LogQuitting", "DeleteMacroDomain", "TimeSavedStop", "ReachabilityStop",
    "GestureMonitorStop", "FinishCompiledScripts", "FinishWriters", "UsageSortOrderFinish", "DictionaryFinish",
    "VariablesFinish", "KeyMonitorFinish", "TesseractDownloadFinish", "FinishPerformCoalesced" };
static_assert( std::size( kAppStepNames ) == std::size_t( AppStep::kFinishPerformCoalesced ) + 1 );

/// The parts of the application that aren't built here. Each step that is taken is offered to it, in the order of the
/// enumeration, before the program does what it has to do itself; one that a setting has to ask for isn't taken without
/// it, and what opens a window of the inspector or of the welcome waits for the next turn of the main queue. Main thread.
class KVAppSubsystems
{
public:
    virtual ~KVAppSubsystems() = default;
    virtual void Take( AppStep /*inStep*/ ) {}
    /// Another process has changed how windows look; the dictionary, which may be null, says to what.
    virtual void AppearancePreferenceChanged( const CFContainer<XPlistDictionary>& /*inUserInfo*/ ) {}
    /// The engine wants the user to be reminded of the licence.
    virtual void NagNow() {}
    /// A version that is too old doesn't start.
    [[nodiscard]] virtual bool IsExpired( int /*inDays*/, int /*inLevel*/ ) { return false; }
    /// The licence reminder's decision.
    [[nodiscard]] virtual bool MayGoOn() { return true; }
};

// The whole life of the application, turned by hand: which steps are taken, in which order, and what is on disk, on the
// bus and in the engine's process after each.
#include "App/KVAppDelegate.h"

#include "Defines/SetAside.h"
#include "Macros/HTimeSaved.h"
#include "Macros/MMacroPreferenceFile.h"
#include "MacrosWindow/MacrosWindowInterface.h"
#include "MacrosWindow/MacrosWindowUndo.h"
#include "Tests/App/EngineWorld.h"
#include "Tests/Macros/MacroFixtures.h"
#include "Utility/Work/Random.h"
#include "XCAF/KVNotifications.h"
#include "XCAF/XException.h"

namespace
{
using testing::ElementsAre;
using testing::ElementsAreArray;
using Steps = std::vector<std::string>;

/// Writes down each step that is offered, and plays a part in some.
class Recorder final : public KVAppSubsystems
{
public:
    void Take( AppStep inStep ) override
    {
        mSteps.emplace_back( kAppStepNames[std::size_t( inStep )] );
        if ( mAtStep )
            mAtStep( inStep );
    }
    void AppearancePreferenceChanged( const CFContainer<XPlistDictionary>& inUserInfo ) override
    {
        mAppearance = inUserInfo;
    }
    void NagNow() override { ++mNags; }
    [[nodiscard]] bool IsExpired( int inDays, int inLevel ) override
    {
        mExpiryQuestion = { inDays, inLevel };
        return mIsExpired;
    }
    [[nodiscard]] bool MayGoOn() override { return mMayGoOn; }

    [[nodiscard]] Steps Taken() { return std::exchange( mSteps, {} ); }

    Steps mSteps;
    std::function<void( AppStep )> mAtStep;
    CFContainer<XPlistDictionary> mAppearance;
    int mNags = 0;
    std::pair<int, int> mExpiryQuestion;
    bool mIsExpired = false, mMayGoOn = true;
};

__SafeCFPropertyList ParsedFile( const std::string& inBytes )
{
    return ReadPropertyList( XBytes( inBytes ).Span() ).mValue;
}

class AppDelegate : public EngineWorld
{
protected:
    AppDelegate()
    {
        WriteMacros( FileWith( { GroupWith( u"G", {}, { { "Name", Str( u"start" ) } } ) },
            { { "MacroPreferencesVersion", Int( 91 ) } } ) );
    }
    ~AppDelegate() override { mDelegate.reset(); }

    void WriteMacros( const __SafeCFPropertyList& inFile ) const
    {
        mFolder.Write( "Korvalen Macros.plist", WriteBinaryPropertyList( inFile ).View() );
    }
    void Make( const KVAppDelegate::Options& inOptions = {} )
    {
        mDelegate.reset();
        mDelegate = std::make_unique<KVAppDelegate>( inOptions, mSteps, [this] { ++mEnds; } );
    }
    /// From the beginning until the files that were opened have been imported.
    void StartWhole()
    {
        Make();
        mDelegate->applicationWillFinishLaunching();
        mDelegate->applicationDidFinishLaunching();
        Advance( 0.2 );
        (void)mSteps.Taken();
    }
    void Advance( double inSeconds )
    {
        mWorld.mWork.RunAll();
        mWorld.mWork.Advance( inSeconds );
    }
    void Rename( TextView inName )
    {
        MMacroGroup* const group = MMacroSerializedObject::FindMacroGroupByUID( u"G" );
        ASSERT_TRUE( group );
        group->SetName( inName );
        MacrosWindowChange change;
        change.mType = MacrosWindowChangeType::kMacroGroupChanged;
        change.mObjects.insert( group );
        MacrosWindowInterface::NoteChange( Text( u"Rename" ), change );
    }
    void ExportGroup( const std::string& inFile, TextView inName ) const
    {
        mFolder.Write( inFile,
            WriteBinaryPropertyList( Array( { GroupWith( inName, {}, { { "Name", Str( inName ) } } ) } ) ).View() );
    }
    static std::vector<std::string> GroupNames()
    {
        std::vector<std::string> names;
        MMacroDomain::Get()->DoForEveryMacroGroup(
            [&]( MMacroGroup& group ) { names.push_back( UTF8FromText( group.GetName() ) ); } );
        return names;
    }
    static std::string NameOfG()
    {
        const MMacroGroup* const group = MMacroSerializedObject::FindMacroGroupByUID( u"G" );
        return group ? UTF8FromText( group->GetName() ) : "none";
    }
    std::string NameOnDisk() const
    {
        const auto file = ParsedFile( mFolder.Read( "Korvalen Macros.plist" ) );
        const auto groups = file ? At( file, "MacroGroups" ) : nullptr;
        for ( const XPlistNode* const node :
            groups.AsArray() ? groups.AsArray()->Nodes() : std::span<const XPlistNode* const>() )
        {
            const __SafeCFPropertyList group( node );
            if ( TextAt( group, "UID" ) == u"G" )
                return UTF8FromText( TextAt( group, "Name" ) );
        }
        return "none";
    }
    std::size_t CountPosts( TextView inName ) const
    {
        return std::size_t( std::count_if( mNotifier.mPosts.begin(), mNotifier.mPosts.end(),
            [&]( const auto& post ) { return post.first == inName; } ) );
    }
    void Receive( TextView inName, const CFContainer<XPlistDictionary>& inUserInfo = nullptr )
    {
        mNotifier.mReceiver( inName, inUserInfo, true );
        mWorld.mWork.RunAll();
    }

    Recorder mSteps;
    std::unique_ptr<KVAppDelegate> mDelegate;
    int mEnds = 0;
};

const Steps kBeforeLaunch = { "SetInitialDarkMode", "LogStarting", "RouteDatabaseLog", "LoadFrequentIcons",
    "RemoveBogusDotDatFiles", "MacUUID", "TimeSavedStart", "ReachabilityStart", "MigrateStatusMenuDisplayType",
    "VariablesStart", "GestureMonitorStart", "RunningApplicationsListStart", "Subscribe", "MakeMacroDomain",
    "CreateTriggerManagers", "BecomeIndexDelegate", "InitialLoadAllMacros", "UsageSortOrderStart", "DictionaryStart",
    "TesseractDownloadStart" };
const Steps kAfterLaunch = { "PrecacheApplications", "ForceSystemToNoticeUs", "InsertActionMenu",
    "EnsureCorrectDaemonLoginStatus", "ScrollWheelStart", "CheckDiagnostics", "RegisterMenus" };
const Steps kAtTheEnd = { "BeginTerminating", "SaveWindowStates", "MacrosWindowWillTerminate",
    "TerminateTriggerManagers", "RemoveObservers", "FinishDeferredJobs", "FinalSaveAllMacros",
    "RunningApplicationsListStop", "LogQuitting", "DeleteMacroDomain", "TimeSavedStop", "ReachabilityStop",
    "GestureMonitorStop", "FinishCompiledScripts", "FinishWriters", "UsageSortOrderFinish", "DictionaryFinish",
    "VariablesFinish", "KeyMonitorFinish", "TesseractDownloadFinish", "FinishPerformCoalesced" };

Steps Joined( Steps inFirst, const Steps& inSecond )
{
    inFirst.insert( inFirst.end(), inSecond.begin(), inSecond.end() );
    return inFirst;
}
} // namespace

TEST_F( AppDelegate, LivesFromStartToEndInItsOrder )
{
    Make();
    ASSERT_TRUE( mDelegate->CheckBeforeStart() );
    EXPECT_EQ( mSteps.mExpiryQuestion, ( std::pair{ 30, 1 } ) );
    mDelegate->applicationWillFinishLaunching();
    EXPECT_THAT( mSteps.Taken(), ElementsAreArray( kBeforeLaunch ) );
    EXPECT_EQ( NameOfG(), "start" );
    EXPECT_EQ( mWorld.mLog.CountContaining( "Editor Starting " ), 1u );

    mDelegate->applicationDidFinishLaunching();
    EXPECT_THAT( mSteps.Taken(),
        ElementsAreArray( Joined( { "BecomeNotificationDelegate", "AppDetailsStart", "LicenceReminder",
                                      "MacrosWindowStart", "MacrosWindowDidFinishLaunching", "ScheduleEngine" },
            kAfterLaunch ) ) );
    mWorld.mWork.RunAll();
    EXPECT_THAT( mSteps.Taken(), ElementsAre( "OpenWelcomeWindow" ) ) << "in the next turn";

    EXPECT_EQ( CountPosts( u"KV_LoadMacroFiles" ), 0u ) << "held back until the engine is there";
    mWorld.mWork.Advance( 0.009 );
    EXPECT_TRUE( mApplications.mLaunched.empty() );
    mWorld.mWork.Advance( 0.002 );
    EXPECT_THAT( mApplications.mLaunched, ElementsAre( mFolder / "engine" ) );
    EXPECT_EQ( CountPosts( u"KV_LoadMacroFiles" ), 1u );
    EXPECT_THAT( mSteps.Taken(), ElementsAre( "LaunchOrRelaunchEngine" ) );
    mWorld.mWork.Advance( 0.188 );
    EXPECT_TRUE( mSteps.Taken().empty() );
    mWorld.mWork.Advance( 0.002 );
    EXPECT_THAT( mSteps.Taken(), ElementsAre( "WarnAccessibility", "CheckNewVersion", "OpenDeferredFiles" ) );

    FakeRunningApplication& engine = mApplications.Run( 70, mFolder / "engine" );
    for ( const char16_t* const name : { u"one", u"two", u"three" } )
    {
        Rename( name );
        mWorld.mWork.Advance( 0.5 );
        EXPECT_EQ( NameOnDisk(), "start" ) << "each edit pushes the save back";
    }
    mWorld.mWork.Advance( 0.6 );
    EXPECT_EQ( NameOnDisk(), "three" );
    EXPECT_EQ( CountPosts( u"KV_LoadMacroFiles" ), 2u ) << "one save of all three";

    Rename( u"last" );
    bool isSavedInTime = false, isDomainThere = false;
    mSteps.mAtStep = [&]( AppStep inStep ) {
        if ( inStep == AppStep::kRunningApplicationsListStop )
            isSavedInTime = NameOnDisk() == "last";
        if ( inStep == AppStep::kDeleteMacroDomain )
            isDomainThere = MMacroDomain::Get() != nullptr;
        if ( inStep > AppStep::kBeginTerminating )
        {
            EXPECT_TRUE( mDelegate->isTerminating() );
        }
    };
    mDelegate->applicationWillTerminate();
    EXPECT_THAT( mSteps.Taken(), ElementsAreArray( kAtTheEnd ) );
    EXPECT_TRUE( isSavedInTime );
    EXPECT_TRUE( isDomainThere );
    EXPECT_EQ( MMacroDomain::Get(), nullptr );
    EXPECT_EQ( mWorld.mLog.CountContaining( "Editor Quitting" ), 1u );
    EXPECT_EQ( engine.mCalls, "" ) << "the engine goes on";
    EXPECT_EQ( CountPosts( u"KV_QuitEngine" ), 0u );
    EXPECT_EQ( mWorld.mLog.CountContaining( "Assertion Failed" ), 0u );
}

TEST_F( AppDelegate, ASettingAddsTheStepsThatItAsksFor )
{
    for ( const auto& id : { KVPreferences::kShowDevelopMenuID, KVPreferences::kRunUnitTestsID,
              KVPreferences::kValueInspectorOpenID, KVPreferences::kWriteHelpFilesID } )
        KVPreferences::SetBoolean( id, true );
    KVPreferences::SetBoolean( KVPreferences::kDisplayWelcomeWindowID, false );
    Make();
    mDelegate->applicationWillFinishLaunching();
    const Steps before = mSteps.Taken();
    ASSERT_EQ( before.size(), kBeforeLaunch.size() + 2 );
    EXPECT_EQ( before[4], "ShowDevelopMenu" );
    EXPECT_EQ( before.back(), "RunUnitTests" );
    mDelegate->applicationDidFinishLaunching();
    EXPECT_THAT( mSteps.Taken(),
        ElementsAre( "BecomeNotificationDelegate", "AppDetailsStart", "LicenceReminder", "MacrosWindowStart",
            "MacrosWindowDidFinishLaunching", "ScheduleEngine", "PrecacheApplications", "ForceSystemToNoticeUs",
            "InsertActionMenu", "EnsureCorrectDaemonLoginStatus", "ScrollWheelStart", "WriteHelpFiles",
            "CheckDiagnostics", "LintActionEditors", "RegisterMenus" ) );
    mWorld.mWork.RunAll();
    EXPECT_THAT( mSteps.Taken(), ElementsAre( "OpenValueInspector" ) );
}

TEST_F( AppDelegate, FilesWaitForTheDeferredStepAndComeInInTheirOrder )
{
    ExportGroup( "b.kvmacros", u"Zebra" );
    ExportGroup( "a.kvmacros", u"Ant" );
    Make();
    EXPECT_TRUE( mDelegate->application( mFolder / "b.kvmacros" ) );
    mDelegate->applicationWillFinishLaunching();
    EXPECT_TRUE( mDelegate->application( mFolder / "unknown.txt" ) ) << "nobody knows yet";
    mDelegate->applicationDidFinishLaunching();
    EXPECT_TRUE( mDelegate->application( mFolder / "a.kvmacros" ) );
    const auto before = GroupNames();
    Advance( 0.19 );
    EXPECT_EQ( GroupNames(), before );
    mWorld.mWork.Advance( 0.02 );
    EXPECT_EQ( GroupNames().size(), before.size() + 2 );
    // The file that came first is undone last.
    for ( const char* const name : { "Ant", "Zebra" } )
    {
        EXPECT_THAT( GroupNames(), testing::Contains( name ) );
        EXPECT_TRUE( MacrosWindowUndo::Undo() );
        Advance( 2 );
        EXPECT_THAT( GroupNames(), testing::Not( testing::Contains( name ) ) );
    }
    EXPECT_THAT( GroupNames(), testing::UnorderedElementsAreArray( before ) );

    EXPECT_FALSE( mDelegate->application( mFolder / "unknown.txt" ) );
    EXPECT_FALSE( mDelegate->application( mFolder / "noextension" ) );
    EXPECT_TRUE( mDelegate->application( mFolder / "b.kvmacros" ) );
    EXPECT_THAT( GroupNames(), testing::Contains( "Zebra" ) ) << "at once from now on";
}

TEST_F( AppDelegate, AllModifierKeysMeanNoEngine )
{
    const struct
    {
        std::uint32_t mModifiers;
        bool mIsLaunched;
    } kCases[] = { { 0, true }, { 1966080 & ~524288u, true }, { 1966080, false }, { 1966080 | 65536, false } };
    for ( const auto& [modifiers, isLaunched] : kCases )
    {
        mApplications.mLaunched.clear();
        mApplications.mProcesses.clear();
        FakeRunningApplication& old = mApplications.Run( 70, "/elsewhere/engine" );
        mWorkspace.mModifiers = modifiers;
        Make();
        mDelegate->applicationWillFinishLaunching();
        mDelegate->applicationDidFinishLaunching();
        EXPECT_EQ( old.mIsRunning, isLaunched ) << modifiers << ": quit at once, or when the right one is launched";
        Advance( 1 );
        EXPECT_EQ( mApplications.mLaunched.size(), isLaunched ) << modifiers;
        EXPECT_FALSE( old.mIsRunning );
        EXPECT_THAT( mSteps.Taken(), testing::Contains( "OpenDeferredFiles" ) ) << "files were promised to be opened";
    }
}

TEST_F( AppDelegate, WithoutALicenceThereIsNoEngineAndNoWindow )
{
    FakeRunningApplication& engine = mApplications.Run( 70, mFolder / "engine" );
    mSteps.mMayGoOn = false;
    Make();
    mDelegate->applicationWillFinishLaunching();
    (void)mSteps.Taken();
    mDelegate->applicationDidFinishLaunching();
    Advance( 10 );
    EXPECT_FALSE( engine.mIsRunning );
    EXPECT_TRUE( mApplications.mLaunched.empty() );
    EXPECT_THAT( mSteps.Taken(),
        ElementsAreArray(
            Joined( { "BecomeNotificationDelegate", "AppDetailsStart", "LicenceReminder" }, kAfterLaunch ) ) );
}

TEST_F( AppDelegate, AReloadThatABackgroundSaveAskedForIsNotMadeWhileTerminating )
{
    for ( const bool isTerminating : { false, true } )
    {
        mWorld.mWork.RunAll();
        WriteMacros( FileWith( { GroupWith( u"G", {}, { { "Name", Str( u"start" ) } } ) },
            { { "MacroPreferencesVersion", Int( 91 ) } } ) );
        mSteps.mAtStep = {};
        StartWhole();
        const XBytes shared =
            WriteBinaryPropertyList( FileWith( { GroupWith( u"G", {}, { { "Name", Str( u"shared" ) } } ) },
                { { "MacroPreferencesVersion", Int( 91 ) } } ) );
        MMacroPreferenceFile::SaveRemoteMacroShareFileData(
            std::make_shared<MMacroFileData>( XBytes( std::string( shared.View() ) ) ) );
        if ( isTerminating )
        {
            std::string name;
            mSteps.mAtStep = [&]( AppStep inStep ) {
                if ( inStep != AppStep::kSaveWindowStates )
                    return;
                mWorld.mWork.RunAll();
                name = NameOfG();
            };
            mDelegate->applicationWillTerminate();
            EXPECT_EQ( name, "start" );
        }
        else
        {
            mWorld.mWork.RunAll();
            EXPECT_EQ( NameOfG(), "shared" );
        }
    }
}

TEST_F( AppDelegate, HearsWhatOthersSayUntilTheEnd )
{
    StartWhole();
    const struct
    {
        TextView mName, mTitleKey;
    } kAlerts[] = { { u"KV_ManualSIVCCheckGotError", u"ManualSIVCErrorTitle" },
        { u"KV_ManualSIVCCheckNoNewVersion", u"ManualSIVCNoNewVersionTitle" },
        { u"KV_InstallFailed", u"InstallFailedTitle" } };
    for ( const auto& [name, title] : kAlerts )
    {
        mAlerts.mAlerts.clear();
        Receive( name );
        ASSERT_EQ( mAlerts.mAlerts.size(), 1u ) << UTF8FromText( name );
        EXPECT_EQ( mAlerts.mAlerts[0].mTitle, kvr_localized( title ) );
    }
    Receive( u"KV_NagNow" );
    EXPECT_EQ( mSteps.mNags, 1 );
    XMutableDictionary appearance;
    appearance.SetText( CFSTR( "Appearance" ), TextView( u"Dark" ) );
    Receive( u"KV_AppearancePreferenceChanged", appearance.Seal() );
    XText value;
    ASSERT_TRUE( mSteps.mAppearance );
    EXPECT_TRUE( mSteps.mAppearance->Get( CFSTR( "Appearance" ), value ) and value == TextView( u"Dark" ) );

    EXPECT_EQ( mEnds, 0 );
    mNotifier.mReceiver( u"KV_QuitEditor", nullptr, false );
    mWorld.mWork.RunAll();
    EXPECT_EQ( mEnds, 0 ) << "not from just anybody";
    Receive( u"KV_QuitEditor" );
    EXPECT_EQ( mEnds, 1 );

    mDelegate->applicationWillTerminate();
    Receive( u"KV_NagNow" );
    EXPECT_EQ( mSteps.mNags, 1 );
}

TEST_F( AppDelegate, WindowsSortAgainWhenStatisticsCome )
{
    struct Window final : MacrosWindow
    {
        Window() { MacrosWindowInterface::AddWindow( *this ); }
        ~Window() override { MacrosWindowInterface::RemoveWindow( *this ); }
        const XText& windowUID() const override { return mUID; }
        void noteChange( const MacrosWindowChange& ) override {}
        CFContainer<XPlistDictionary> savedSelectionState() const override { return nullptr; }
        void didReloadMacros( const CFContainer<XPlistDictionary>& ) override {}
        void didDeferredSaveAllMacros() override {}
        void showNeedSaveView( bool ) override {}
        void stopRecording() override {}
        void doResortForMacroStatsChanged() override { ++mResorts; }
        void close() override {}
        XText mUID = u"W";
        int mResorts = 0;
    } window;
    StartWhole();
    EXPECT_EQ( window.mResorts, 0 );
    XMutableDictionary statistics;
    statistics.Set( CFSTR( "M" ), Dict( { { "ExecutedCount", Int( 3 ) } } ) );
    Receive( u"KV_MacroStatsUpdated", statistics.Seal() );
    EXPECT_EQ( window.mResorts, 1 );
    EXPECT_EQ( HTimeSaved::GetExecutedCount( u"M" ), 3u );
}

TEST_F( AppDelegate, ANewVersionIsLookedForOnlyWhileItIsReported )
{
    for ( const bool isWithdrawn : { false, true } )
    {
        KVPreferences::Set( KVPreferences::kReportNewVersionID, u"9.9" );
        StartWhole();
        const std::size_t before = CountPosts( u"KV_ManualSIVCCheck" );
        if ( isWithdrawn )
            (void)KVPreferences::Set( KVPreferences::kReportNewVersionID, u"" );
        Advance( 0.9 );
        EXPECT_EQ( CountPosts( u"KV_ManualSIVCCheck" ), before );
        Advance( 0.2 );
        EXPECT_EQ( CountPosts( u"KV_ManualSIVCCheck" ) - before, isWithdrawn ? 0u : 1u );
        EXPECT_TRUE( KVPreferences::Get( KVPreferences::kReportNewVersionID, u"" ).IsEmpty() );
    }
}

TEST_F( AppDelegate, TheOldStatusMenuSettingBecomesTheNewOne )
{
    const struct
    {
        std::int64_t mOld;
        TextView mNew;
        bool mStays;
    } kCases[] = { { 0, u"Alphabetical", false }, { 1, u"ByGroup", false }, { 2, u"Hierarchical", false },
        { 3, u"", true }, { -1, u"", true } };
    for ( const auto& [old, name, stays] : kCases )
    {
        (void)KVPreferences::Remove( KVPreferences::kStatusMenuDisplayType2ID );
        (void)KVPreferences::Set( KVPreferences::kDepricatedStatusMenuDisplayTypeID, old );
        (void)KVPreferences::SetBoolean( KVPreferences::kDefunctFixFinderSelectionBugID, true );
        Make();
        mDelegate->applicationWillFinishLaunching();
        EXPECT_EQ( KVPreferences::Get( KVPreferences::kStatusMenuDisplayType2ID, u"" ), name ) << old;
        EXPECT_EQ( bool( KVPreferences::GetPropertyList( KVPreferences::kDepricatedStatusMenuDisplayTypeID ) ), stays );
        EXPECT_FALSE( KVPreferences::GetPropertyList( KVPreferences::kDefunctFixFinderSelectionBugID ) );
    }
}

TEST_F( AppDelegate, AWrongRootEndsTheStartAndTheNextOneMayBeginAnew )
{
    const std::string wrong( WriteBinaryPropertyList( Array( { Str( u"precious" ) } ) ).View() );
    mFolder.Write( "Korvalen Macros.plist", wrong );
    const auto Start = [&]( bool inBeginsAnew, std::size_t inButton ) {
        mAlerts.mButton = inButton;
        mAlerts.mAlerts.clear();
        Make( { .mBeginAnew = inBeginsAnew } );
        mDelegate->applicationWillFinishLaunching();
    };
    EXPECT_THROW( Start( false, 1 ), XException );
    EXPECT_TRUE( mAlerts.mAlerts.empty() ) << "the first one says why, and doesn't ask";
    mDelegate->applicationWillTerminate();
    mDelegate.reset();
    mWorld.mWork.RunAll();
    EXPECT_EQ( mFolder.Read( "Korvalen Macros.plist" ), wrong ) << "its end saves nothing";

    EXPECT_THROW( Start( false, 0 ), XException );
    EXPECT_EQ( mAlerts.mAlerts.size(), 1u ) << "the one after it asks";
    mDelegate.reset();
    mWorld.mWork.RunAll();
    EXPECT_EQ( mFolder.Read( "Korvalen Macros.plist" ), wrong );

    Start( true, 0 );
    mWorld.mWork.RunAll();
    EXPECT_TRUE( ParsedFile( mFolder.Read( "Korvalen Macros.plist" ) ).AsDictionary() );
    const auto kept = SetAside::List( SetAside::Kind::kMacrosFile );
    ASSERT_EQ( kept.size(), 1u );
    EXPECT_EQ( ReadWholeFile( kept[0].mPath, 1 << 20 ).mBytes.View(), wrong );
}

TEST_F( AppDelegate, AnEndBeforeTheMacrosWereLoadedSavesNothing )
{
    const std::string before = mFolder.Read( "Korvalen Macros.plist" );
    mSteps.mAtStep = []( AppStep inStep ) {
        if ( inStep == AppStep::kInitialLoadAllMacros )
            throw std::bad_alloc();
    };
    Make();
    EXPECT_THROW( mDelegate->applicationWillFinishLaunching(), std::bad_alloc );
    mDelegate->applicationWillTerminate();
    mWorld.mWork.RunAll();
    EXPECT_EQ( mFolder.Read( "Korvalen Macros.plist" ), before );
}

TEST_F( AppDelegate, AnExpiredVersionDoesNotStart )
{
    mSteps.mIsExpired = true;
    Make();
    EXPECT_FALSE( mDelegate->CheckBeforeStart() );
}

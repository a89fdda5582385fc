// What crashes, power cuts and failing disks leave of the whole editor's work, at every call that it makes of the file
// system. There is no file of clipboards yet; in its place stands what the engine leaves for the editor, its enable
// overrides, which is read and emptied as clipboards are.
#include "Defines/KVNotices.h"
#include "Defines/SetAside.h"
#include "Macros/MMacroPreferenceFile.h"
#include "Macros/SavedStates.h"
#include "MacrosWindow/EngineCommands.h"
#include "MacrosWindow/MacrosWindowUndo.h"
#include "Tests/App/SimulatedEditor.h"
#include "XCAF/XFileWriting.h"

#include <cerrno>
#include <gmock/gmock.h>
#include <set>

namespace
{
using Editor = SimulatedEditor;

struct Scenario
{
    const char* mName;
    std::string mOld, mNew;                                  ///< the macro's name before and after
    std::function<void( Editor&, SimulatedDisk& )> mPrepare; ///< in an editor that runs
    std::function<void( Editor& )> mRun;                     ///< leaves nothing on a queue
    std::string mFile = Editor::kMacrosFile;                 ///< the one that is replaced
    std::string
        mCopyOfOld = {}; ///< a file, or the beginning of its path, that has the old bytes before they are replaced
    bool mMayLeaveWork = false; ///< for the next load: something came from outside
    bool mIsSave = false;       ///< of an edit, which stays in the model whatever the disk does
    bool mIsAboutOverrides = false;
    bool mIsShared = false; ///< the shared file gets the new bytes too
};

void Save( Editor& ioEditor )
{
    ioEditor.Rename( u"new" );
    ioEditor.Wait( 1.1 );
}

void Share( Editor& ioEditor )
{
    MMacroPreferenceFile::WaitForQueue();
    (void)MMacroPreferenceFile::CopyMacroShareFileToRemote( Editor::kShareFile );
    (void)KVPreferences::Set( KVPreferences::kMacroSharingFileID, XText( TextFromUTF8( Editor::kShareFile ) ) );
    ioEditor.RunAll();
}

std::vector<Scenario> MakeScenarios()
{
    std::vector<Scenario> scenarios{
        { "save", "old", "new", []( Editor&, SimulatedDisk& ) {}, Save },
        { "first save of a day", "yesterday", "new",
            []( Editor& editor, SimulatedDisk& ) {
                editor.Rename( u"yesterday" );
                editor.Wait( Editor::kDay );
            },
            Save, Editor::kMacrosFile, "/data/Revisions Version 9/2023_03_09.plist" },
        { "save with share", "old", "new", []( Editor& editor, SimulatedDisk& ) { Share( editor ); }, Save,
            Editor::kMacrosFile, "", true, false, false, true },
        { "undo", "new", "old", []( Editor& editor, SimulatedDisk& ) { Save( editor ); },
            []( Editor& editor ) {
                (void)MacrosWindowUndo::Undo();
                editor.RunAll();
            } },
        { "redo", "old", "new",
            []( Editor& editor, SimulatedDisk& ) {
                Save( editor );
                (void)MacrosWindowUndo::Undo();
            },
            []( Editor& editor ) {
                (void)MacrosWindowUndo::Redo();
                editor.RunAll();
            } },
        { "revert", "new", "long ago",
            []( Editor& editor, SimulatedDisk& disk ) {
                disk.Put( "/data/Revisions Version 9/2023_02_01.plist", Editor::BytesWith( u"long ago" ) );
                Save( editor );
            },
            []( Editor& editor ) {
                (void)MacrosWindowUndo::RevertToRevision( u"2023_02_01" );
                editor.RunAll();
            },
            Editor::kMacrosFile, "/data/Revisions Version 9/9999_01_02.plist" },
        { "incoming share", "old", "received",
            []( Editor& editor, SimulatedDisk& disk ) {
                Share( editor );
                disk.Put( Editor::kShareFile, Editor::BytesWith( u"received" ) );
                disk.Put( Editor::kIncomingFile, Editor::BytesWith( u"received" ) );
            },
            []( Editor& editor ) {
                MMacroPreferenceFile::ProcessSharingIncomingChange();
                editor.RunAll();
            },
            Editor::kMacrosFile, "/data/Set Aside/Before Received", true },
        { "enable overrides", "old", "old",
            []( Editor&, SimulatedDisk& disk ) {
                disk.Put( Editor::kOverridesFile, "0:" + UTF8FromText( Editor::kMacroUID ) + std::string( 1, '\0' ) );
            },
            []( Editor& editor ) {
                EngineCommands::SetMacroEnable();
                editor.Wait( 1.1 );
            },
            Editor::kMacrosFile, "", true, false, true },
        { "preferences", "old", "old", []( Editor&, SimulatedDisk& ) {},
            []( Editor& editor ) {
                (void)KVPreferences::Set( KVPreferences::kAppearanceID, XText( u"Dark" ) );
                editor.RunAll();
            },
            Editor::kSettingsFile },
    };
    for ( Scenario& scenario : scenarios )
        scenario.mIsSave = std::string_view( scenario.mName ).find( "save" ) != std::string_view::npos;
    return scenarios;
}

const std::vector<Scenario>& Scenarios()
{
    static const auto kScenarios = MakeScenarios();
    return kScenarios;
}

const SimulatedDisk& BaseDisk()
{
    static const auto kDisk = Editor::DiskWith( u"old" );
    return *kDisk;
}

/// An editor for which a scenario is about to begin.
struct Stage
{
    explicit Stage( const Scenario& inScenario, XFileCalls* inCalls, const std::shared_ptr<SimulatedDisk>& inDisk )
        : mDisk( inDisk ),
          mEditor( *mDisk, inCalls )
    {
        mEditor.Wait( 3600 );
        (void)mEditor.Start();
        inScenario.mPrepare( mEditor, *mDisk );
        mEditor.Wait( 10 );
        mDisk->SyncAll();
        mDisk->ResetCount();
        mOld = mDisk->Content( inScenario.mFile ).value_or( "" );
    }
    explicit Stage( const Scenario& inScenario ) : Stage( inScenario, nullptr, BaseDisk().Copy() ) {}

    std::shared_ptr<SimulatedDisk> mDisk;
    Editor mEditor;
    std::string mOld;
};

struct Outcome
{
    std::string mOld, mNew; ///< the bytes of the file
    std::vector<std::string> mCalls;
};

/// What the scenario does when nothing goes wrong.
Outcome OutcomeOf( const Scenario& inScenario )
{
    Stage stage( inScenario );
    inScenario.mRun( stage.mEditor );
    return { stage.mOld, *stage.mDisk->Content( inScenario.mFile ), stage.mDisk->Log() };
}

bool HasCopyOfOld( const SimulatedDisk& inDisk, const Scenario& inScenario, const Outcome& inOutcome )
{
    for ( const auto& [path, bytes] : inDisk.Files() )
    {
        if ( path.starts_with( inScenario.mCopyOfOld ) and bytes == inOutcome.mOld )
            return true;
    }
    return false;
}

bool IsNowhere( const SimulatedDisk& inDisk )
{
    for ( const auto& [path, bytes] : inDisk.Files() )
    {
        const bool mayHave = path == Editor::kOverridesFile or path.starts_with( "/data/Set Aside/Overrides" );
        if ( mayHave and bytes.find( UTF8FromText( Editor::kMacroUID ) ) != std::string::npos )
            return false;
    }
    return true;
}

/// "" or what is wrong with the files of a state that a crash or a power cut has left.
std::string FaultOf(
    const SimulatedDisk& inDisk, const Scenario& inScenario, const Outcome& inOutcome, bool inIsDone = false )
{
    const auto content = inDisk.Content( inScenario.mFile );
    if ( not content )
        return "the file is gone";
    const bool isNew = *content == inOutcome.mNew;
    if ( not isNew and *content != inOutcome.mOld )
        return "the file has neither the old nor the new bytes";
    if ( inIsDone and not isNew )
        return "the file has the old bytes after success";
    if ( isNew and not inScenario.mCopyOfOld.empty() and not HasCopyOfOld( inDisk, inScenario, inOutcome ) )
        return "the old bytes are nowhere, but the file is replaced";
    if ( inScenario.mIsAboutOverrides and not isNew and IsNowhere( inDisk ) )
        return "the overrides are neither in their file nor set aside nor saved";
    if ( inScenario.mIsShared )
    {
        const auto shared = inDisk.Content( Editor::kShareFile );
        if ( not shared or ( *shared != inOutcome.mOld and *shared != inOutcome.mNew ) )
            return "the shared file has neither the old nor the new bytes";
    }
    return {};
}

/// The same of a start on it: everything is there, and nobody is told of damage.
std::string FaultOfStartOn( const SimulatedDisk& inDisk, const Scenario& inScenario, double inNow )
{
    const auto disk = inDisk.Copy();
    disk->SyncAll();
    Editor editor( *disk );
    editor.SetNow( inNow + 60 );
    if ( not editor.Start() )
        return "the folder is held";
    if ( Editor::Model() != inScenario.mOld and Editor::Model() != inScenario.mNew )
        return "the macro is named " + Editor::Model();
    for ( const auto& [path, bytes] : disk->Files() )
    {
        // What is left in the shared folder may be another computer's that is writing it.
        if ( path.starts_with( Editor::kFolder ) and path.find( "/.dat" ) != std::string::npos )
            return "left behind: " + path;
    }
    const bool hasWork = editor.World().mLog.CountContaining( "initiating immediate save" ) > 0;
    return ( hasWork and not inScenario.mMayLeaveWork ? "the load had to be saved\n" : "" ) + editor.Complaints();
}

/// Makes a faulty writer of the one that calls: one that leaves out a step, or takes it too late.
class FaultyWriter final : public XFileCalls
{
public:
    enum class Fault : std::uint8_t { kNone, kNoSyncOfFiles, kNoSyncOfFolders, kRenameBeforeSync };
    FaultyWriter( SimulatedDisk& ioDisk, Fault inFault ) : mDisk( ioDisk ), mFault( inFault ) {}

    int Open( const std::filesystem::path& inPath, OpenFor inPurpose ) override
    {
        const int file = mDisk.Open( inPath, inPurpose );
        if ( inPurpose == OpenFor::kFolder )
            mFolders.insert( file );
        else
            mFolders.erase( file );
        return file;
    }
    int FSync( int inFile ) override
    {
        const bool isFolder = mFolders.contains( inFile );
        if ( isFolder ? mFault == Fault::kNoSyncOfFolders : mFault == Fault::kNoSyncOfFiles )
            return 0;
        if ( isFolder or mFault != Fault::kRenameBeforeSync )
            return mDisk.FSync( inFile );
        mLate = inFile;
        return 0;
    }
    int Close( int inFile ) override { return inFile == mLate ? 0 : mDisk.Close( inFile ); }
    int Rename( const std::filesystem::path& inFrom, const std::filesystem::path& inTo ) override
    {
        const int result = mDisk.Rename( inFrom, inTo );
        if ( const int late = std::exchange( mLate, -1 ); late >= 0 )
        {
            (void)mDisk.FSync( late );
            (void)mDisk.Close( late );
        }
        return result;
    }
    std::ptrdiff_t Read( int inFile, std::span<std::uint8_t> outBytes ) override
    {
        return mDisk.Read( inFile, outBytes );
    }
    std::ptrdiff_t Write( int inFile, std::span<const std::uint8_t> inBytes ) override
    {
        return mDisk.Write( inFile, inBytes );
    }
    int ChangeMode( int inFile, std::uint32_t inMode ) override { return mDisk.ChangeMode( inFile, inMode ); }
    int Lock( int inFile ) override { return mDisk.Lock( inFile ); }
    int TryLock( int inFile ) override { return mDisk.TryLock( inFile ); }
    int Truncate( int inFile, std::uint64_t inSize ) override { return mDisk.Truncate( inFile, inSize ); }
    int RenameToNew( const std::filesystem::path& inFrom, const std::filesystem::path& inTo ) override
    {
        return mDisk.RenameToNew( inFrom, inTo );
    }
    int Unlink( const std::filesystem::path& inPath ) override { return mDisk.Unlink( inPath ); }
    int MakeFolder( const std::filesystem::path& inPath ) override { return mDisk.MakeFolder( inPath ); }
    int RemoveFolder( const std::filesystem::path& inPath ) override { return mDisk.RemoveFolder( inPath ); }
    int ReadFolder( const std::filesystem::path& inPath, std::vector<std::string>& outNames ) override
    {
        return mDisk.ReadFolder( inPath, outNames );
    }
    int GetFacts( int inFile, XFileStatus& outFacts ) override { return mDisk.GetFacts( inFile, outFacts ); }
    int GetPathFacts( const std::filesystem::path& inPath, XFileStatus& outFacts ) override
    {
        return mDisk.GetPathFacts( inPath, outFacts );
    }
    int GetLinkFacts( const std::filesystem::path& inPath, XFileStatus& outFacts ) override
    {
        return mDisk.GetLinkFacts( inPath, outFacts );
    }
    int ReadLink( const std::filesystem::path& inPath, std::filesystem::path& outTarget ) override
    {
        return mDisk.ReadLink( inPath, outTarget );
    }

private:
    SimulatedDisk& mDisk;
    Fault mFault;
    std::set<int> mFolders;
    int mLate = -1; ///< a file that is flushed after its rename
};

/// The states that a power cut at any moment of the scenario leaves.
class PowerCuts
{
public:
    PowerCuts( const Scenario& inScenario, const Outcome& inOutcome ) : mScenario( inScenario ), mOutcome( inOutcome )
    {}

    void Run( FaultyWriter::Fault inFault = FaultyWriter::Fault::kNone )
    {
        const auto disk = BaseDisk().Copy();
        FaultyWriter calls( *disk, inFault );
        Stage stage( mScenario, &calls, disk );
        disk->SetDidCall( [&] { Look( *disk, false ); } );
        mScenario.mRun( stage.mEditor );
        Look( *disk, true );
        disk->SetDidCall( {} );
        mNow = stage.mEditor.World().mClock.Now();
    }
    void StartOnEach()
    {
        for ( const auto& [call, state] : mToStartOn )
        {
            const std::string fault = FaultOfStartOn( *state, mScenario, mNow );
            if ( not fault.empty() )
                mFaults.insert( "start after " + call + ": " + fault );
        }
    }

    std::set<std::string> mFaults;
    std::size_t mStates = 0;
    std::vector<std::pair<std::string, std::shared_ptr<SimulatedDisk>>> mToStartOn;

private:
    void Look( const SimulatedDisk& inDisk, bool inIsDone )
    {
        const std::string call = std::to_string( inDisk.CountCalls() ) + " " + inDisk.Log().back();
        for ( auto& state : inDisk.PowerLossStates() )
        {
            ++mStates;
            const std::string fault = FaultOf( *state, mScenario, mOutcome, inIsDone );
            if ( not fault.empty() )
                mFaults.insert( "after " + call + ( inIsDone ? ", the last" : "" ) + ": " + fault );
            if ( mSeen.insert( std::hash<std::string>()( state->Fingerprint() ) ).second )
                mToStartOn.emplace_back( call, std::move( state ) );
        }
    }

    const Scenario& mScenario;
    const Outcome& mOutcome;
    std::set<std::size_t> mSeen;
    double mNow = 0;
};

bool CanBeHad( const SimulatedDisk& inDisk, const std::string& inBytes )
{
    const auto files = inDisk.Files();
    return std::any_of( files.begin(), files.end(), [&]( const auto& file ) { return file.second == inBytes; } ) or
        SavedStates::Load( MMacroFileData( XBytes( inBytes ) ).Digest() );
}

/// While the disk fails, in the editor that runs.
std::string FaultDuringFailure( const Stage& inStage, const Scenario& inScenario, const Outcome& inOutcome )
{
    const auto content = inStage.mDisk->Content( inScenario.mFile );
    const bool isNew = content == inOutcome.mNew;
    if ( not isNew and content != inOutcome.mOld )
        return "the file has neither the old nor the new bytes";
    const std::size_t failures = inStage.mEditor.CountFailedSaves(), alerts = inStage.mEditor.Alerts().size();
    if ( failures > 1 or alerts != failures )
        return std::to_string( failures ) + " log lines and " + std::to_string( alerts ) + " alerts";
    if ( inScenario.mIsSave and not isNew and failures == 0 )
        return "nobody was told";
    if ( Editor::Model() != inScenario.mNew and ( inScenario.mIsSave or Editor::Model() != inScenario.mOld ) )
        return "the model is " + Editor::Model();
    return {};
}

/// After the repair: the next save goes through, and the next start finds everything.
std::string FaultAfterRepair( Stage& ioStage, const Scenario& inScenario )
{
    ioStage.mEditor.Rename( u"repaired" );
    ioStage.mEditor.Wait( 400 );
    if ( Editor::NameIn( *ioStage.mDisk->Content( Editor::kMacrosFile ) ) != "repaired" )
        return "the save after the repair has failed";
    if ( inScenario.mFile == Editor::kSettingsFile and
        not KVPreferences::Get( KVPreferences::kAppearanceID, XText() ).Equals( u"Dark" ) )
        return "the setting is gone";
    ioStage.mEditor.Quit();
    (void)ioStage.mEditor.Start();
    if ( Editor::Model() != "repaired" )
        return "the next start finds " + Editor::Model();
    if ( inScenario.mIsAboutOverrides and Editor::IsMacroEnabled() and IsNowhere( *ioStage.mDisk ) )
        return "the overrides are gone";
    return {};
}

bool HasTemporary( const SimulatedDisk& inDisk )
{
    const auto files = inDisk.Files();
    return std::any_of( files.begin(), files.end(),
        []( const auto& file ) { return file.first.find( "/.dat" ) != std::string::npos; } );
}

std::string FaultAfterFailure(
    const Scenario& inScenario, const Outcome& inOutcome, const SimulatedDisk::Fault& inFault )
{
    Stage stage( inScenario );
    stage.mDisk->SetFault( inFault );
    inScenario.mRun( stage.mEditor );
    std::string fault = FaultDuringFailure( stage, inScenario, inOutcome );
    if ( fault.empty() and not inFault.mFromThenOn and HasTemporary( *stage.mDisk ) )
        fault = "a temporary file is left";
    stage.mDisk->SetFault( {} );
    if ( fault.empty() and inScenario.mFile == Editor::kMacrosFile and not CanBeHad( *stage.mDisk, inOutcome.mOld ) )
        fault = "the old bytes are gone";
    return fault.empty() ? FaultAfterRepair( stage, inScenario ) : fault;
}
} // namespace

TEST( NothingIsLostTest, TheScenariosDoWhatTheySay )
{
    for ( const Scenario& scenario : Scenarios() )
    {
        SCOPED_TRACE( scenario.mName );
        const Outcome outcome = OutcomeOf( scenario );
        EXPECT_NE( outcome.mOld, outcome.mNew );
        if ( scenario.mFile == Editor::kMacrosFile )
        {
            EXPECT_EQ( Editor::NameIn( outcome.mOld ), scenario.mOld );
            EXPECT_EQ( Editor::NameIn( outcome.mNew ), scenario.mNew );
        }
    }
}

TEST( NothingIsLostTest, AnEditorThatIsKilledAtAnyCallLeavesTheOldOrTheNewBytesAndNothingToMend )
{
    for ( const Scenario& scenario : Scenarios() )
    {
        SCOPED_TRACE( scenario.mName );
        const Outcome outcome = OutcomeOf( scenario );
        const std::size_t last = outcome.mCalls.size();
        for ( std::size_t point = 0; point < 2 * last; ++point )
        {
            const std::size_t call = point / 2 + 1;
            const bool isAfter = point % 2;
            SCOPED_TRACE( ( isAfter ? "after call " : "before call " ) + std::to_string( call ) );
            Stage stage( scenario );
            stage.mDisk->SetKill( call, isAfter );
            scenario.mRun( stage.mEditor );
            ASSERT_TRUE( stage.mDisk->WasKilled() );
            const double now = stage.mEditor.World().mClock.Now();
            stage.mEditor.Die();
            EXPECT_EQ( FaultOf( *stage.mDisk, scenario, outcome, isAfter and call == last ), "" );
            EXPECT_EQ( FaultOfStartOn( *stage.mDisk, scenario, now ), "" );
        }
    }
}

TEST( NothingIsLostTest, APowerCutAtAnyCallLeavesTheOldOrTheNewState )
{
    for ( const Scenario& scenario : Scenarios() )
    {
        SCOPED_TRACE( scenario.mName );
        const Outcome outcome = OutcomeOf( scenario );
        PowerCuts cuts( scenario, outcome );
        cuts.Run();
        cuts.StartOnEach();
        EXPECT_THAT( cuts.mFaults, testing::IsEmpty() );
        EXPECT_GE( cuts.mToStartOn.size(), 4u );
    }
}

TEST( NothingIsLostTest, AWriterThatLeavesOutAStepIsCaught )
{
    for ( const Scenario& scenario : Scenarios() )
    {
        if ( &scenario != &Scenarios().front() and not Editor::IsLongRun() )
            continue;
        const Outcome outcome = OutcomeOf( scenario );
        using enum FaultyWriter::Fault;
        for ( const auto fault : { kNoSyncOfFiles, kNoSyncOfFolders, kRenameBeforeSync } )
        {
            PowerCuts cuts( scenario, outcome );
            cuts.Run( fault );
            EXPECT_FALSE( cuts.mFaults.empty() ) << scenario.mName << ", fault " << int( fault );
        }
    }
}

TEST( NothingIsLostTest, AFailingDiskLeavesWholeBytesATruthfulEditorAndASaveThatWorksAgain )
{
    for ( const Scenario& scenario : Scenarios() )
    {
        const Outcome outcome = OutcomeOf( scenario );
        for ( const int error : { 0, ENOSPC, EMFILE, EINTR, EIO, EDQUOT, EACCES, EROFS } )
        {
            // The last four differ from EMFILE in the words of the alert alone.
            const bool isLikeAnother = error == EIO or error == EDQUOT or error == EACCES or error == EROFS;
            if ( isLikeAnother and &scenario != &Scenarios().front() and not Editor::IsLongRun() )
                continue;
            for ( std::size_t point = 0; point < 2 * outcome.mCalls.size(); ++point )
            {
                const std::size_t call = point / 2 + 1;
                const bool fromThenOn = point % 2;
                EXPECT_EQ( FaultAfterFailure( scenario, outcome, { call, error, fromThenOn, error == 0 } ), "" )
                    << scenario.mName << ", errno " << error << ( fromThenOn ? ", from call " : ", at call " ) << call
                    << " " << outcome.mCalls[call - 1];
            }
        }
    }
}

// Long lives of an editor on a disk in memory: bursts of edits, ends at any time, clocks that are set wrong, and random walks
// of all that a user and the world can do. A state that was saved, or shown for longer than the bound, can be
// had afterwards from some file.
#include "Defines/KVNotices.h"
#include "Macros/MMacroPreferenceFile.h"
#include "Macros/MMacroSharing.h"
#include "Macros/SavedStates.h"
#include "MacrosWindow/MacroImport.h"
#include "MacrosWindow/MacrosWindowUndo.h"
#include "Tests/App/SimulatedEditor.h"
#include "Tests/Macros/MacroFixtures.h"

#include <cerrno>
#include <map>
#include <set>

namespace
{
using Editor = SimulatedEditor;

constexpr double kBound = 2.0; ///< of the age of an edit that a crash may take

Text NumberedName( int inNumber )
{
    return u"edit " + TextFromUTF8( std::to_string( inNumber ) );
}

int NumberIn( const std::string& inName )
{
    return inName.starts_with( "edit " ) ? std::stoi( inName.substr( 5 ) ) : -1;
}

/// The states that a disk has, by the name of the macro, and where it isn't unique, by how many macros there are.
class States
{
public:
    [[nodiscard]] static std::string Shown()
    {
        return Editor::Model() + "/" + std::to_string( CountIn( u"G-1" ) + CountIn( u"G-2" ) );
    }
    /// What the bytes of a macros file show; "" for another file.
    [[nodiscard]] std::string In( const std::string& inBytes )
    {
        const auto [entry, isNew] = mByBytes.try_emplace( std::hash<std::string>()( inBytes ) );
        if ( isNew )
            entry->second = Read( inBytes );
        return entry->second;
    }
    /// All that can be had; an editor runs on the disk.
    [[nodiscard]] std::set<std::string> On( const SimulatedDisk& inDisk )
    {
        std::set<std::string> states;
        for ( const auto& [path, bytes] : inDisk.Files() )
        {
            if ( path.starts_with( Editor::kFolder ) )
                states.insert( In( bytes ) );
        }
        for ( const SavedStates::State& state : SavedStates::List() )
        {
            const auto [entry, isNew] = mByDigest.try_emplace( state.mDigest );
            if ( isNew )
            {
                const auto data = SavedStates::Load( state.mDigest );
                entry->second = data ? Read( std::string( data->Span().begin(), data->Span().end() ) ) : "";
            }
            states.insert( entry->second );
        }
        return states;
    }

private:
    static std::size_t CountIn( TextView inGroup )
    {
        const MMacroGroup* const group = MMacroSerializedObject::FindMacroGroupByUID( inGroup );
        return group ? group->GetMacroCount() : 0;
    }
    static std::string Read( const std::string& inBytes )
    {
        const std::string name = Editor::NameIn( inBytes );
        if ( name == "unreadable" or name == "no macros file" )
            return {};
        std::size_t count = 0;
        const auto groups = At( ReadPropertyList( XBytes( inBytes ).Span() ).mValue, "MacroGroups" );
        for ( const XPlistNode* const group : groups.AsArray()->Nodes() )
        {
            const auto macros = At( __SafeCFPropertyList( group ), "Macros" );
            count += macros.AsArray() ? macros.AsArray()->GetCount() : 0;
        }
        return name + "/" + std::to_string( count );
    }

    std::map<std::size_t, std::string> mByBytes;
    std::map<std::string, std::string> mByDigest;
};

/// The newest edit that can be had.
int NewestOn( States& ioStates, const SimulatedDisk& inDisk )
{
    int newest = -1;
    for ( const std::string& state : ioStates.On( inDisk ) )
        newest = std::max( newest, NumberIn( state ) );
    return newest;
}
} // namespace

TEST( EditorHistoryTest, AnUnbrokenRunOfEditsNeverRisksMoreThanTwoSeconds )
{
    constexpr double kBetweenEdits = 0.3, kMinutes = 10;
    const double betweenKills = Editor::IsLongRun() ? 1 : 10;
    struct Moment
    {
        std::shared_ptr<SimulatedDisk> mDisk;
        int mOldestSafe; ///< the newest edit that is older than the bound
    };
    std::vector<Moment> moments;
    const auto disk = Editor::DiskWith( u"old" );
    {
        Editor editor( *disk );
        (void)editor.Start();
        const double start = editor.Now();
        int number = 0;
        double nextKill = betweenKills;
        while ( editor.Now() - start < kMinutes * 60 )
        {
            editor.Rename( NumberedName( number++ ) );
            editor.Wait( kBetweenEdits );
            const double passed = editor.Now() - start;
            if ( passed < nextKill )
                continue;
            nextKill += betweenKills;
            moments.push_back( { disk->Copy(), int( ( passed - kBound ) / kBetweenEdits - 1e-9 ) } );
        }
        EXPECT_EQ( Editor::NameIn( *disk->Content( Editor::kMacrosFile ) ), "old" ) << "a save came between";
    }
    EXPECT_GE( moments.size(), 59u );
    for ( const auto& [left, oldestSafe] : moments )
    {
        SCOPED_TRACE( oldestSafe );
        Editor editor( *left );
        editor.SetNow( Editor::kNoon + 3600 );
        (void)editor.Start();
        States states;
        EXPECT_GE( NewestOn( states, *left ), oldestSafe );
        EXPECT_EQ( Editor::Model(), "old" ) << "a copy is offered, and never loaded by itself";
        ASSERT_EQ( KVNotices::Unanswered().size(), 1u );
        EXPECT_GE( NumberIn( Editor::NameIn( *left->Content( KVNotices::Unanswered().front().mPath ) ) ), oldestSafe );
    }
}

TEST( EditorHistoryTest, AfterTheLastEditASecondAndTheWriteIsAllThatACrashCanTake )
{
    const auto disk = Editor::DiskWith( u"old" );
    Editor editor( *disk );
    for ( int number = 0; number < 20; ++number )
    {
        (void)editor.Start();
        editor.Rename( NumberedName( number ) );
        editor.Wait( 1.0 );
        editor.Die();
        EXPECT_EQ( Editor::NameIn( *disk->Content( Editor::kMacrosFile ) ), UTF8FromText( NumberedName( number ) ) );
    }
}

TEST( EditorHistoryTest, AnEndInOrderAtAnyTimeSavesWhatIsPending )
{
    const auto base = Editor::DiskWith( u"old" );
    const double step = Editor::IsLongRun() ? 0.004 : 0.04;
    for ( double end = 0; end < 4.5; end += step )
    {
        SCOPED_TRACE( end );
        const auto disk = base->Copy();
        Editor editor( *disk );
        (void)editor.Start();
        int number = 0;
        double passed = 0;
        for ( ; passed + 0.15 < std::min( end, 3.0 ); passed += 0.15 )
        {
            editor.Rename( NumberedName( number++ ) );
            editor.Wait( 0.15 );
        }
        editor.Rename( NumberedName( number ) );
        editor.Wait( std::max( end - passed, 0.0 ) );
        editor.Quit();
        EXPECT_EQ( Editor::NameIn( *disk->Content( Editor::kMacrosFile ) ), UTF8FromText( NumberedName( number ) ) );
        editor.Wait( 60 );
        (void)editor.Start();
        EXPECT_EQ( Editor::Model(), UTF8FromText( NumberedName( number ) ) );
        EXPECT_EQ( editor.Complaints(), "" );
        EXPECT_EQ( MacrosWindowUndo::UndoCount() > 0, true );
    }
}

TEST( EditorHistoryTest, AnEndWhileQueuesAreAtWorkSavesWhatIsPending )
{
    const auto base = Editor::DiskWith( u"old" );
    for ( int blocks = 0; blocks < 16; ++blocks )
    {
        SCOPED_TRACE( blocks );
        const auto disk = base->Copy();
        Editor editor( *disk );
        (void)editor.Start();
        editor.Rename( u"first" );
        MacrosWindowUndo::SaveAllMacrosIfNecessary();
        editor.Rename( u"second" );
        for ( int i = 0; i < blocks; ++i )
            (void)editor.World().mWork.RunOne();
        editor.Quit();
        EXPECT_EQ( Editor::NameIn( *disk->Content( Editor::kMacrosFile ) ), "second" );
        (void)editor.Start();
        EXPECT_EQ( editor.Complaints(), "" );
        States states;
        EXPECT_THAT( states.On( *disk ), testing::IsSupersetOf( { "old/1", "first/1", "second/1" } ) );
    }
}

namespace
{
constexpr std::string_view kRevisions = "/data/Revisions Version 9/";

std::map<std::string, std::string> RevisionsOn( const SimulatedDisk& inDisk )
{
    std::map<std::string, std::string> revisions;
    for ( const auto& [path, bytes] : inDisk.Files() )
    {
        if ( path.starts_with( kRevisions ) )
            revisions[path.substr( kRevisions.size(), 10 )] = bytes;
    }
    return revisions;
}

/// Those of a launch and of what was before a revert and a received file are replaced each time, and that is their sense.
bool IsReplacedEachTime( const std::string& inDate )
{
    return inDate >= "9999_01_01" and inDate <= "9999_01_03";
}

/// "" or which revision was overwritten or culled against the rules.
std::string FaultOfRevisions( const std::map<std::string, std::string>& inBefore, const SimulatedDisk& inDisk )
{
    const auto after = RevisionsOn( inDisk );
    std::set<std::string> kept;
    for ( const auto& [path, bytes] : inDisk.Files() )
        kept.insert( bytes );
    bool isOlderThere = false;
    for ( const auto& [date, bytes] : inBefore )
    {
        if ( IsReplacedEachTime( date ) )
            continue;
        const auto now = after.find( date );
        if ( now == after.end() and isOlderThere )
            return date + " was culled, and an older one wasn't";
        if ( now != after.end() and now->second != bytes and not kept.contains( bytes ) )
            return date + " was overwritten";
        isOlderThere = isOlderThere or ( now != after.end() and not date.starts_with( "0000" ) );
    }
    return {};
}
} // namespace

TEST( EditorHistoryTest, ClocksThatAreSetWrongOverwriteNoRevisionAndCullNoneOutOfTurn )
{
    constexpr double kDay = Editor::kDay, k1999 = -50000000, k9999 = 252424425600.0 - 5 * kDay;
    std::vector<double> times{ 0, kDay, -kDay, 0, kDay, k1999, 2 * kDay, k9999, k9999, k9999 + kDay, 3 * kDay, k1999 };
    for ( int day = 4; day < 20; ++day )
        times.push_back( day * kDay );
    times.insert( times.end(), { 3 * kDay, 3 * kDay, k9999 + kDay, 18 * kDay, 40 * kDay, k1999 + kDay, 41 * kDay } );

    const auto disk = Editor::DiskWith( u"old" );
    Editor editor( *disk );
    (void)editor.Start();
    int number = 0;
    for ( const double time : times )
    {
        SCOPED_TRACE( time );
        const bool isAbsolute = time == k1999 or time == k1999 + kDay or time >= k9999;
        for ( const bool restarts : { false, true } )
        {
            const auto before = RevisionsOn( *disk );
            // The clock is set while edits wait, and they are saved on the new day.
            editor.Rename( NumberedName( number++ ) );
            editor.SetNow( isAbsolute ? time : Editor::kNoon + time );
            editor.Wait( 1.1 );
            editor.Rename( NumberedName( number++ ) );
            editor.Wait( 1.1 );
            if ( restarts )
            {
                editor.Quit();
                (void)editor.Start();
            }
            EXPECT_EQ( FaultOfRevisions( before, *disk ), "" ) << ( restarts ? "at a start" : "at a save" );
        }
    }
}

TEST( EditorHistoryTest, ADayThatEndsDuringTheSecondBeforeASaveGetsItsRevision )
{
    const auto disk = Editor::DiskWith( u"old" );
    Editor editor( *disk );
    for ( const double beforeMidnight : { 0.5, 0.9999, 1.0, 1.0001, 1.5 } )
    {
        (void)editor.Start();
        editor.SetNow( std::floor( editor.Now() / Editor::kDay ) * Editor::kDay + Editor::kDay - 3600 );
        editor.Rename( u"evening" );
        editor.Wait( 3600 - beforeMidnight );
        const auto before = RevisionsOn( *disk );
        const std::string evening = *disk->Content( Editor::kMacrosFile );
        editor.Rename( u"midnight" );
        editor.Wait( 1 );
        editor.Rename( u"morning" );
        editor.Wait( 1.1 );
        EXPECT_EQ( FaultOfRevisions( before, *disk ), "" );
        editor.Quit();
    }
}

namespace
{
/// A random life. What has to be had is noted as it happens, and looked up after each end.
class Walk
{
public:
    explicit Walk( std::uint64_t inSeed ) : mRandom( inSeed )
    {
        mEditor = std::make_unique<Editor>( *mDisk );
        (void)mEditor->Start();
        mShown = States::Shown();
    }

    void Step()
    {
        using Action = void ( Walk::* )();
        static constexpr Action kActions[] = { &Walk::Edit, &Walk::Edit, &Walk::Edit, &Walk::Edit, &Walk::Wait,
            &Walk::Wait, &Walk::Undo, &Walk::Redo, &Walk::Save, &Walk::Crash, &Walk::CrashInACall, &Walk::CutPower,
            &Walk::Restart, &Walk::Revert, &Walk::Receive, &Walk::ToggleSharing, &Walk::Import, &Walk::FillDisk };
        mActions.push_back( int( mRandom.Next() % std::size( kActions ) ) );
        ( this->*kActions[mActions.back()] )();
        Note();
    }
    /// What was saved or shown long enough, and can't be had.
    [[nodiscard]] std::set<std::string> Lost()
    {
        std::set<std::string> lost;
        const auto there = mStates.On( *mDisk );
        std::set_difference(
            mRequired.begin(), mRequired.end(), there.begin(), there.end(), std::inserter( lost, lost.end() ) );
        return lost;
    }
    [[nodiscard]] std::size_t CountRequired() const { return mRequired.size(); }
    [[nodiscard]] std::string History() const
    {
        std::string history;
        for ( const int action : mActions )
            history += std::to_string( action ) + " ";
        return history;
    }

private:
    void Note()
    {
        if ( const auto file = mDisk->Content( Editor::kMacrosFile ) )
            mRequired.insert( mStates.In( *file ) );
        const std::string shown = States::Shown();
        if ( shown != mShown )
            mSince = mEditor->Now();
        else if ( mEditor->Now() - mSince > kBound )
            mRequired.insert( shown );
        mShown = shown;
    }
    double Fraction() { return double( mRandom.Next() % 1000 ) / 1000; }
    Text NextName() { return NumberedName( mNumber++ ); }

    void Edit() { mEditor->Rename( NextName() ); }
    void Wait() { mEditor->Wait( 0.1 + 3 * Fraction() ); }
    void Undo() { (void)MacrosWindowUndo::Undo(), mEditor->RunAll(); }
    void Redo() { (void)MacrosWindowUndo::Redo(), mEditor->RunAll(); }
    void Save() { MacrosWindowUndo::SaveAllMacrosIfNecessary(), mEditor->RunAll(); }
    void Begin()
    {
        mEditor->Wait( 1 );
        (void)mEditor->Start();
        mShown.clear();
    }
    void Crash()
    {
        mEditor->Die();
        Begin();
    }
    void CrashInACall()
    {
        mDisk->SetKill( mDisk->CountCalls() + 1 + mRandom.Next() % 60, mRandom.Next() % 2 );
        Edit();
        mEditor->Wait( 1.1 );
        Crash();
    }
    void CutPower()
    {
        const std::size_t at = mDisk->CountCalls() + 1 + mRandom.Next() % 40;
        std::shared_ptr<SimulatedDisk> left;
        mDisk->SetDidCall( [&] {
            if ( mDisk->CountCalls() != at )
                return;
            auto states = mDisk->PowerLossStates();
            left = std::move( states[mRandom.Next() % states.size()] );
        } );
        Edit();
        mEditor->Wait( 1.1 );
        mDisk->SetDidCall( {} );
        const double now = mEditor->Now();
        mEditor.reset();
        if ( left )
            mDisk = left;
        mEditor = std::make_unique<Editor>( *mDisk );
        mEditor->SetNow( now );
        Begin();
    }
    void Restart()
    {
        mEditor->Quit();
        Begin();
    }
    void Revert()
    {
        const auto revisions = MMacroPreferenceFile::Revisions();
        if ( not revisions.empty() )
            (void)MacrosWindowUndo::RevertToRevision( revisions[mRandom.Next() % revisions.size()] );
        mEditor->RunAll();
    }
    void Receive()
    {
        mDisk->Put( Editor::kIncomingFile, Editor::BytesWith( NextName() ) );
        MMacroPreferenceFile::ProcessSharingIncomingChange();
        mEditor->RunAll();
    }
    void ToggleSharing()
    {
        if ( MMacroSharing::IsSharing() )
            MMacroSharing::StopSharing();
        else if ( mRandom.Next() % 2 and mDisk->Content( Editor::kShareFile ) )
            (void)MMacroSharing::StartSharingOpen( Editor::kShareFile );
        else
            (void)MMacroSharing::StartSharingCreate( Editor::kShareFile );
        mEditor->RunAll();
    }
    void Import()
    {
        const auto macro = MacroWith( uuidString(), { { "Name", Str( NextName() ) } } );
        (void)MacroImport::importMacrosFromArray(
            Array( { GroupWith( u"G-1", { macro } ) } ), { ImportMacrosDisabledType::kAsTheyAre, false } );
    }
    /// The disk has room again before the next edit.
    void FillDisk()
    {
        mDisk->SetFault( { mDisk->CountCalls() + 1 + mRandom.Next() % 40, ENOSPC, mRandom.Next() % 2 == 0 } );
        Edit();
        mEditor->Wait( 1.1 );
        mDisk->SetFault( {} );
        Edit();
    }

    XSeededRandom mRandom;
    std::shared_ptr<SimulatedDisk> mDisk = Editor::DiskWith( u"old" );
    std::unique_ptr<Editor> mEditor;
    States mStates;
    std::set<std::string> mRequired;
    std::string mShown;
    double mSince = 0;
    int mNumber = 0;
    std::vector<int> mActions;
};
} // namespace

TEST( EditorHistoryTest, NoRandomLifeLosesAStateThatWasSavedOrShownLongEnough )
{
    const int walks = Editor::IsLongRun() ? 1000 : 20, steps = 120;
    std::size_t required = 0;
    for ( int seed = 1; seed <= walks; ++seed )
    {
        Walk walk( static_cast<std::uint64_t>( seed ) );
        for ( int step = 0; step < steps; ++step )
            walk.Step();
        EXPECT_THAT( walk.Lost(), testing::IsEmpty() ) << "seed " << seed << ": " << walk.History();
        required += walk.CountRequired();
    }
    EXPECT_GT( required, std::size_t( walks * steps / 5 ) );
}

TEST( EditorHistoryTest, AStartThatTheDiskDisturbsAfterACrashLosesNothingEither )
{
    const auto base = Editor::DiskWith( u"old" );
    double now = 0;
    {
        Editor editor( *base );
        (void)editor.Start();
        editor.Rename( u"saved" );
        editor.Wait( 2 );
        for ( int i = 0; i < 10; ++i )
        {
            editor.Rename( u"unsaved" );
            editor.Wait( 0.3 );
        }
        now = editor.Now() + Editor::kDay;
    }
    for ( const int error : { EIO, ENOSPC, EACCES } )
    {
        for ( std::size_t point = 0;; ++point )
        {
            const std::size_t call = point / 2 + 1;
            const bool fromThenOn = point % 2;
            SCOPED_TRACE( "errno " + std::to_string( error ) + ( fromThenOn ? " from call " : " at call " ) +
                std::to_string( call ) );
            const auto disk = base->Copy();
            Editor editor( *disk );
            editor.SetNow( now );
            editor.SetFaultOfStart( { call, error, fromThenOn } );
            const bool isStarted = editor.Start();
            const bool hasFailed = disk->HasFailed();
            if ( isStarted )
                editor.Quit();
            editor.Wait( 60 );
            ASSERT_TRUE( editor.Start() );
            States states;
            EXPECT_THAT( states.On( *disk ), testing::IsSupersetOf( { "old/1", "saved/1", "unsaved/1" } ) );
            if ( not hasFailed )
                break;
        }
    }
}

#include "MacrosWindow/UndoJournal.h"

#include "Tests/MacrosWindow/UndoWorld.h"

namespace fs = std::filesystem;

namespace
{
class UndoJournalTest : public UndoWorld
{
protected:
    UndoJournalTest()
    {
        EditAndSave( u"One", u"1" );
        EditAndSave( u"Two", u"2" );
        EditAndSave( u"Three", u"3" );
        MacrosWindowUndo::Undo();
        Advance( 1 );
    }
    [[nodiscard]] fs::path StoreFolder() const { return mFolder.Path() / "Set Aside" / "Saved States"; }
};
} // namespace

TEST_F( UndoJournalTest, BothStacksOutliveARestart )
{
    Restart();
    EXPECT_EQ( UndoTitle(), "Undo Two" );
    EXPECT_EQ( RedoTitle(), "Redo Three" );
    EXPECT_TRUE( MacrosWindowUndo::Redo() );
    EXPECT_EQ( Model(), "3" );
    for ( const char* const state : { "2", "1", "start" } )
    {
        Restart();
        EXPECT_TRUE( MacrosWindowUndo::Undo() );
        EXPECT_EQ( Model(), state );
    }
    EXPECT_FALSE( MacrosWindowUndo::Undo() );
    EXPECT_EQ( MacrosWindowUndo::RedoCount(), 3u );
}

TEST_F( UndoJournalTest, AnEditBeforeTheStacksAreReadStandsOnTopOfThem )
{
    mWorld->mWork.RunAll();
    Die();
    Start();
    Edit( u"Four", u"4" );
    EXPECT_EQ( UndoTitle(), "Undo Four" );
    EXPECT_EQ( MacrosWindowUndo::UndoCount(), 3u );
    EXPECT_EQ( RedoTitle(), "Redo (off)" );
    Advance( 1 );
    Restart();
    EXPECT_EQ( MacrosWindowUndo::UndoCount(), 3u );
    EXPECT_TRUE( MacrosWindowUndo::Undo() );
    EXPECT_EQ( Model(), "2" );
}

TEST_F( UndoJournalTest, AChangeFromOutsideIsAStepWithoutATitle )
{
    mWorld->mWork.RunAll();
    mFolder.Write( "Korvalen Macros.plist",
        WriteBinaryPropertyList( FileWith( { GroupWith( u"G", {}, { { "Name", Str( u"other" ) } } ) } ) ).View() );
    Restart();
    EXPECT_EQ( UndoTitle(), "Undo" );
    EXPECT_EQ( RedoTitle(), "Redo (off)" );
    EXPECT_EQ( mWorld->mLog.CountContaining( "changed since the last step of undo" ), 1u );
    for ( const char* const state : { "2", "1", "start" } )
    {
        EXPECT_TRUE( MacrosWindowUndo::Undo() );
        EXPECT_EQ( Model(), state );
    }
    for ( const char* const state : { "1", "2", "other" } )
    {
        EXPECT_TRUE( MacrosWindowUndo::Redo() );
        EXPECT_EQ( Model(), state );
    }
}

TEST_F( UndoJournalTest, TheLastSaveOfARunIsFoundAgainBeforeAChangeFromOutside )
{
    MacrosWindowUndo::FinalSaveAllMacros(); // of what was saved before, so that no state is kept of it
    mWorld->mWork.RunAll();
    mFolder.Write( "Korvalen Macros.plist",
        WriteBinaryPropertyList( FileWith( { GroupWith( u"G", {}, { { "Name", Str( u"other" ) } } ) } ) ).View() );
    Restart();
    EXPECT_TRUE( MacrosWindowUndo::Undo() );
    EXPECT_EQ( Model(), "2" );
}

TEST_F( UndoJournalTest, SavesThatTheJournalWasNotToldOfCostNoStep )
{
    mWorld->mWork.RunAll();
    const std::string journal = mFolder.Read( "Korvalen Undo.plist" );
    for ( int saves = 1; saves <= 2; ++saves )
    {
        EditAndSave( u"Rename", saves == 1 ? u"A" : u"B" );
        mWorld->mWork.RunAll();
        Die();
        mFolder.Write( "Korvalen Undo.plist", journal ); // as the process left it that was killed
        Start();
        EXPECT_EQ( UndoTitle(), "Undo" );
        EXPECT_EQ( MacrosWindowUndo::UndoCount(), 3u );
        EXPECT_TRUE( MacrosWindowUndo::Undo() );
        EXPECT_EQ( Model(), "2" );
        EXPECT_EQ( UndoTitle(), "Undo Two" );
        mWorld->mWork.RunAll();
    }
}

// Killed after a save, a process may not have kept what it saved; the next one mustn't replace it unkept.
TEST_F( UndoJournalTest, WhereverTheProcessDiesTheStateThatASaveReplacesCanBeHad )
{
    mWorld->mWork.RunAll();
    int replaced = 0;
    for ( int calls = 0;; ++calls )
    {
        ASSERT_LT( calls, 500 );
        Die();
        fs::remove_all( StoreFolder() );
        Start();
        const std::string before = MMacroPreferenceFile::SavedData()->Digest(), name = Model();
        mCalls.mFirst = mCalls.mCount + calls;
        // Without an undo step, which would have the state kept too, but no sooner than its queue comes to it.
        MMacroSerializedObject::FindMacroGroupByUID( u"G" )->SetName( TextFromUTF8( name ) + u"x" );
        MMacroPreferenceFile::SaveAllMacros();
        mWorld->mWork.RunAll();
        const bool isWhole = mCalls.mCount < mCalls.mFirst;
        mCalls.mFirst = std::numeric_limits<int>::max();
        const bool isReplaced = File() != name;
        replaced += isReplaced;
        EXPECT_TRUE( not isReplaced or SavedStates::Load( before ) ) << calls;
        if ( isWhole )
            break;
    }
    EXPECT_GT( replaced, 2 );
}

TEST_F( UndoJournalTest, ASaveWithoutAnEditThatTheJournalWasNotToldOfIsNoStep )
{
    mWorld->mWork.RunAll();
    const std::string journal = mFolder.Read( "Korvalen Undo.plist" );
    MacrosWindowUndo::FinalSaveAllMacros();
    mWorld->mWork.RunAll();
    Die();
    mFolder.Write( "Korvalen Undo.plist", journal );
    Start();
    EXPECT_EQ( UndoTitle(), "Undo Two" );
    EXPECT_EQ( RedoTitle(), "Redo Three" );
}

TEST_F( UndoJournalTest, AJournalThatIsOneStepAheadOfTheFileIsTakenBack )
{
    const std::string before = mFolder.Read( "Korvalen Macros.plist" );
    EditAndSave( u"Four", u"4" );
    mWorld->mWork.RunAll();
    Die();
    mFolder.Write( "Korvalen Macros.plist", before );
    Start();
    EXPECT_EQ( UndoTitle(), "Undo Two" );

    MacrosWindowUndo::Undo();
    mWorld->mWork.RunAll();
    Die();
    mFolder.Write( "Korvalen Macros.plist", before );
    Start();
    EXPECT_EQ( UndoTitle(), "Undo Two" );
    EXPECT_TRUE( MacrosWindowUndo::Undo() );
    EXPECT_EQ( Model(), "1" );
}

TEST_F( UndoJournalTest, StepsWhoseBytesAreGoneAreLeftOut )
{
    mWorld->mWork.RunAll();
    std::vector<fs::path> files;
    for ( const auto& entry : fs::directory_iterator( StoreFolder() ) )
    {
        if ( entry.path().extension() == ".state" )
            files.push_back( entry.path() );
    }
    std::sort( files.begin(), files.end() ); // the oldest first
    fs::remove( files.front() );
    Restart();
    EXPECT_EQ( MacrosWindowUndo::UndoCount(), 1u );
    EXPECT_EQ( mWorld->mLog.CountContaining( "A step of undo is gone: “One”" ), 1u );

    for ( const fs::path& file : files )
        fs::remove( file );
    EXPECT_FALSE( MacrosWindowUndo::Undo() );
    EXPECT_EQ( Model(), "2" );
    EXPECT_EQ( MacrosWindowUndo::UndoCount(), 0u );
}

TEST_F( UndoJournalTest, ADamagedJournalIsLeftAloneWithALogLine )
{
    mWorld->mWork.RunAll();
    const std::string whole = mFolder.Read( "Korvalen Undo.plist" );
    for ( const std::string& damaged : { std::string(), std::string( "garbage" ), whole.substr( 0, whole.size() / 2 ),
              std::string( WriteBinaryPropertyList( Dict( { { "Version", Int( 2 ) } } ) ).View() ) } )
    {
        mFolder.Write( "Korvalen Undo.plist", damaged );
        Die();
        Start();
        EXPECT_EQ( UndoTitle(), "Undo (off)" );
        EXPECT_EQ( mWorld->mLog.CountContaining( "Can't read the steps of undo" ), 1u );
    }
    mFolder.Write( "Korvalen Undo.plist", whole );
    Restart();
    EXPECT_EQ( UndoTitle(), "Undo Two" );
}

TEST_F( UndoJournalTest, TheLimitHoldsForTheStepsOfTheLastRunToo )
{
    mWorld->mWork.RunAll();
    Die();
    KVPreferences::Set(
        KVPreferences::kMaximumUndoSizeID, std::int64_t( mFolder.Read( "Korvalen Macros.plist" ).size() * 3 / 2 ) );
    Start();
    EXPECT_EQ( MacrosWindowUndo::UndoCount(), 1u );
    EXPECT_EQ( UndoTitle(), "Undo Two" );
}

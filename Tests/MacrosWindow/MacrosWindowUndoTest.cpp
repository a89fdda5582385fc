#include "MacrosWindow/MacrosWindowUndo.h"

#include "MacrosWindow/SavedSelection.h"
#include "Tests/MacrosWindow/UndoWorld.h"

namespace
{
using MacrosWindowUndoTest = UndoWorld;

/// A window that shows one selection, and remembers what it was told.
class FakeWindow final : public MacrosWindow
{
public:
    explicit FakeWindow( TextView inUID ) : mUID( inUID ) { MacrosWindowInterface::AddWindow( *this ); }
    ~FakeWindow() override { MacrosWindowInterface::RemoveWindow( *this ); }

    void Select( TextView inWhat )
    {
        mSelected = inWhat;
        mSaved.saveSelectionState();
    }

    const XText& windowUID() const override { return mUID; }
    void noteChange( const MacrosWindowChange& ) override { mLog += "change "; }
    CFContainer<XPlistDictionary> savedSelectionState() const override { return mSaved.savedSelectionState(); }
    void didReloadMacros( const CFContainer<XPlistDictionary>& inSelection ) override
    {
        XText selected;
        mWasReloading = MacrosWindowUndo::ReloadInProgress();
        mRestored = inSelection and inSelection->Get( CFSTR( "Selected" ), selected ) ? selected.GetUTF8() : "nothing";
        mLog += "reload ";
    }
    void didDeferredSaveAllMacros() override
    {
        mSaved.didDeferredSaveAllMacros();
        mLog += "saved ";
    }
    void showNeedSaveView( bool inShow ) override { mLog += inShow ? "show " : "hide "; }
    void stopRecording() override { mLog += "stop "; }
    void close() override { mLog += "close "; }

    XText mUID;
    Text mSelected;
    bool mIsAnimating = false;
    bool mWasReloading = false;
    std::string mRestored = "not yet";
    std::string mLog;
    SavedSelection mSaved{ [this] {
                              XMutableDictionary selection;
                              selection.SetText( CFSTR( "Selected" ), mSelected );
                              return selection.Seal();
                          },
        [this] { return mIsAnimating; } };
};

class FakeItem final : public EditMenuItem
{
public:
    EditMenuAction GetAction() const override { return mAction; }
    void SetAction( EditMenuAction inAction ) override { mAction = inAction; }
    void SetTitle( TextView inTitle ) override { mTitle = inTitle; }

    EditMenuAction mAction = EditMenuAction::kOriginal;
    Text mTitle = u"untouched";
};

class FakeMenu final : public EditMenu
{
public:
    bool IsMacroContextFront() const override { return mIsMacroContextFront; }
    EditMenuItem& UndoItem() override { return mUndo; }
    EditMenuItem& RedoItem() override { return mRedo; }

    bool mIsMacroContextFront = false;
    FakeItem mUndo, mRedo;
};
} // namespace

TEST_F( MacrosWindowUndoTest, EditsWithinASecondAreOneStepTitledWhenAllAreAlike )
{
    struct Step
    {
        double mDelay;
        std::optional<Text> mTitle;
    };
    const struct
    {
        std::vector<Step> mSteps;
        std::string mTitle;
        std::size_t mCount;
    } kCases[] = {
        { {}, "Undo (off)", 0 },
        { { { 0, {} } }, "Undo (off)", 0 },
        { { { 0, u"Add" } }, "Undo Add", 1 },
        { { { 0, u"Add" }, { 0.5, u"Add" } }, "Undo Add", 1 },
        { { { 0, u"Add" }, { 0.5, u"Paste" } }, "Undo", 1 },
        { { { 0, u"Add" }, { 0.5, u"Paste" }, { 0.5, u"Add" } }, "Undo", 1 },
        { { { 0, u"Add" }, { 0.9, u"Add" }, { 0.9, u"Add" }, { 0.9, u"Add" } }, "Undo Add", 1 },
        { { { 0, u"Add" }, { 1, u"Paste" } }, "Undo Paste", 2 },
        { { { 0, u"Add" }, { 1, u"Add" } }, "Undo Add", 2 },
        { { { 0, u"" } }, "Undo", 1 },
        { { { 0, u"Add" }, { 0.5, {} } }, "Undo Add", 1 },
    };
    for ( const auto& [steps, title, count] : kCases )
    {
        MacrosWindowUndo::SaveAllMacrosIfNecessary();
        MacrosWindowUndo::DebugClearUnnecessaryState();
        for ( const auto& [delay, stepTitle] : steps )
        {
            Advance( delay );
            Edit( stepTitle, u"edited" );
        }
        EXPECT_EQ( UndoTitle(), title );
        EXPECT_EQ( MacrosWindowUndo::UndoCount(), count ) << title;
        EXPECT_EQ( RedoTitle(), "Redo (off)" );
    }
}

TEST_F( MacrosWindowUndoTest, ASaveComesASecondAfterTheLastEdit )
{
    for ( int i = 0; i < 5; ++i )
    {
        Edit( u"Rename", u"edited" );
        Advance( 0.9 );
    }
    EXPECT_TRUE( MacrosWindowUndo::NeedSaveAllMacros() );
    EXPECT_EQ( File(), "start" );
    Advance( 0.1 );
    EXPECT_FALSE( MacrosWindowUndo::NeedSaveAllMacros() );
    EXPECT_EQ( File(), "edited" );
}

TEST_F( MacrosWindowUndoTest, ARandomWalkIsWhatAListOfStatesSays )
{
    std::vector<std::string> states{ "start" };
    std::size_t at = 0;
    for ( int i = 0; i < 300; ++i )
    {
        switch ( mRandom.Next() % 4 )
        {
        case 0:
        case 1:
        {
            const std::string name = "state " + std::to_string( i );
            EditAndSave( u"Rename", TextFromUTF8( name ) );
            states.resize( ++at );
            states.push_back( name );
            break;
        }
        case 2:
            EXPECT_EQ( MacrosWindowUndo::Undo(), at > 0 );
            at -= at > 0;
            break;
        default:
            EXPECT_EQ( MacrosWindowUndo::Redo(), at + 1 < states.size() );
            at += at + 1 < states.size();
        }
        if ( i % 60 == 59 )
            Restart();
        ASSERT_EQ( Model(), states[at] ) << i;
        ASSERT_EQ( File(), states[at] ) << i;
        ASSERT_EQ( MacrosWindowUndo::UndoCount(), at ) << i;
        ASSERT_EQ( MacrosWindowUndo::RedoCount(), states.size() - 1 - at ) << i;
    }
}

TEST_F( MacrosWindowUndoTest, ANewEditClearsRedoAtOnce )
{
    EditAndSave( u"One", u"1" );
    MacrosWindowUndo::Undo();
    EXPECT_EQ( RedoTitle(), "Redo One" );
    Edit( u"Two", u"2" );
    EXPECT_EQ( RedoTitle(), "Redo (off)" );
    EXPECT_FALSE( MacrosWindowUndo::Redo() );
    EXPECT_EQ( Model(), "2" );
}

TEST_F( MacrosWindowUndoTest, TheLimitCountsBytesAndDropsTheOldest )
{
    const std::size_t size = MMacroPreferenceFile::SavedData()->size();
    const struct
    {
        std::int64_t mLimit;
        std::size_t mCount;
    } kCases[] = { { std::int64_t( 3 * size + size / 2 ), 3 }, { std::int64_t( size + size / 2 ), 1 },
        { std::int64_t( size - 100 ), 0 }, { 0, 0 }, { -5, 0 } };
    for ( const auto& [limit, count] : kCases )
    {
        MacrosWindowUndo::Reset();
        KVPreferences::Set( KVPreferences::kMaximumUndoSizeID, limit );
        for ( int i = 0; i < 6; ++i )
        {
            Edit( u"Rename", u"first " );
            Edit( u"Rename", u"other" ); // has no entry to name when the limit took it
            Advance( 1 );
        }
        EXPECT_EQ( MacrosWindowUndo::UndoCount(), count ) << limit;
        EXPECT_EQ( MacrosWindowUndo::Undo(), count > 0 );
        // Read once.
        KVPreferences::Set( KVPreferences::kMaximumUndoSizeID, std::int64_t( 1 ) );
        EditAndSave( u"Rename", u"last" );
        EXPECT_EQ( MacrosWindowUndo::UndoCount(), count ) << limit;
    }
}

// A state may be hundreds of megabytes.
TEST_F( MacrosWindowUndoTest, NothingHoldsTheBytesOfAStepThatTheLimitHasDropped )
{
    MacrosWindowUndo::Reset();
    KVPreferences::Set( KVPreferences::kMaximumUndoSizeID, std::int64_t( 1 ) );
    std::vector<std::weak_ptr<const MMacroFileData>> states;
    for ( int i = 0; i < 5; ++i )
    {
        states.push_back( MMacroPreferenceFile::SavedData() );
        EditAndSave( u"Rename", u"state " + Text( std::size_t( i ), u'x' ) );
    }
    mWorld->mWork.RunAll();
    for ( const auto& state : states )
        EXPECT_TRUE( state.expired() );
    EXPECT_GT( SavedStates::List().size(), states.size() );
}

TEST_F( MacrosWindowUndoTest, UndoBeforeTheSaveSetsTheEditsAside )
{
    EditAndSave( u"One", u"1" );
    Edit( u"Two", u"2" );
    Advance( 0.5 );
    EXPECT_TRUE( MacrosWindowUndo::Undo() );
    // The step of the edits that wait holds the state before them.
    EXPECT_EQ( Model(), "1" );
    EXPECT_EQ( SetAsideNames( SetAside::Kind::kUnsaved ), std::vector<std::string>{ "2" } );
    // The pending save writes the reloaded model.
    EXPECT_TRUE( MacrosWindowUndo::NeedSaveAllMacros() );
    Advance( 0.5 );
    EXPECT_FALSE( MacrosWindowUndo::NeedSaveAllMacros() );
    EXPECT_EQ( File(), "1" );
    // Redo goes to the last save, as neither snapshot has the edits.
    EXPECT_TRUE( MacrosWindowUndo::Redo() );
    EXPECT_EQ( Model(), "1" );
    EXPECT_EQ( SetAsideNames( SetAside::Kind::kUnsaved ).size(), 1u );
}

TEST_F( MacrosWindowUndoTest, EditsThatCantBeSetAsideAreNotThrownAway )
{
    EditAndSave( u"One", u"1" );
    Edit( u"Two", u"2" );
    mCalls.mFirst = 0;
    EXPECT_FALSE( MacrosWindowUndo::Undo() );
    EXPECT_EQ( Model(), "2" );
    EXPECT_EQ( MacrosWindowUndo::UndoCount(), 2u );
    mCalls.mFirst = std::numeric_limits<int>::max();
    EXPECT_TRUE( MacrosWindowUndo::Undo() );
    EXPECT_EQ( Model(), "1" );
}

TEST_F( MacrosWindowUndoTest, UndoBringsBackTheSelectionFromBeforeTheEdits )
{
    FakeWindow first( u"W1" );
    first.Select( u"before" );
    Edit( u"Rename", u"1" );
    first.Select( u"after" );
    FakeWindow late( u"W2" );
    Advance( 1 );
    EXPECT_TRUE( MacrosWindowUndo::Undo() );
    EXPECT_EQ( first.mRestored, "before" );
    EXPECT_EQ( late.mRestored, "nothing" );
    EXPECT_TRUE( first.mWasReloading );
    EXPECT_FALSE( MacrosWindowUndo::ReloadInProgress() );
    EXPECT_TRUE( MacrosWindowUndo::Redo() );
    EXPECT_EQ( first.mRestored, "after" );
}

TEST_F( MacrosWindowUndoTest, ASelectionWaitsForTheEndOfAnAnimation )
{
    FakeWindow window( u"W" );
    window.mIsAnimating = true;
    window.Select( u"early" );
    Advance( 0.01 );
    EXPECT_FALSE( window.savedSelectionState() );
    window.mIsAnimating = false;
    Advance( 0.002 );
    EXPECT_TRUE( window.savedSelectionState() );
}

TEST_F( MacrosWindowUndoTest, WindowsAreToldInOrder )
{
    FakeWindow window( u"W" );
    Edit( u"Rename", u"1" );
    EXPECT_EQ( std::exchange( window.mLog, "" ), "change show " );
    Advance( 1 );
    EXPECT_EQ( std::exchange( window.mLog, "" ), "hide saved " );
    MacrosWindowUndo::Undo();
    EXPECT_EQ( std::exchange( window.mLog, "" ), "stop reload " );
    MacrosWindowUndo::HandleReloadMacros();
    EXPECT_EQ( std::exchange( window.mLog, "" ), "reload " );
    EXPECT_EQ( window.mRestored, "nothing" );
    Edit( {}, u"2" );
    EXPECT_EQ( window.mLog, "change " );
}

TEST_F( MacrosWindowUndoTest, AReloadFromOutsideSavesWaitingEditsFirst )
{
    Edit( u"Rename", u"mine" );
    MMacroPreferenceFile::UndoRedoMacroData( std::make_shared<const MMacroFileData>(
        WriteBinaryPropertyList( FileWith( { GroupWith( u"G", {}, { { "Name", Str( u"theirs" ) } } ) } ) ) ) );
    const std::string theirs = MMacroPreferenceFile::SavedData()->Digest();
    MacrosWindowUndo::HandleReloadMacros();
    mWorld->mWork.RunAll();
    EXPECT_EQ( Model(), "mine" );
    EXPECT_EQ( File(), "mine" );
    EXPECT_TRUE( SavedStates::Load( theirs ) );
}

TEST_F( MacrosWindowUndoTest, ARevertIsAStepOfItsOwn )
{
    EditAndSave( u"One", u"old" );
    std::filesystem::create_directory( mFolder / "Revisions Version 9" );
    mFolder.Write( "Revisions Version 9/2023_04_05.plist", mFolder.Read( "Korvalen Macros.plist" ) );
    mFolder.Write( "Revisions Version 9/2023_04_06.plist", "damaged" );
    EditAndSave( u"Two", u"new" );
    Edit( u"Three", u"newer" );

    EXPECT_FALSE( MacrosWindowUndo::RevertToRevision( u"2023_04_06" ) );
    EXPECT_EQ( MacrosWindowUndo::UndoCount(), 3u );
    EXPECT_FALSE( MacrosWindowUndo::NeedSaveAllMacros() ); // it was forced

    EXPECT_TRUE( MacrosWindowUndo::RevertToRevision( u"2023_04_05" ) );
    mWorld->mWork.RunAll();
    EXPECT_EQ( Model(), "old" );
    EXPECT_EQ( UndoTitle(), "Undo Revert to April 5, 2023" );
    EXPECT_TRUE( MacrosWindowUndo::Undo() );
    EXPECT_EQ( Model(), "newer" );
    EXPECT_EQ( UndoTitle(), "Undo Three" );
}

TEST_F( MacrosWindowUndoTest, TheMenuIsAboutMacrosOnlyWhileTheyAreInFront )
{
    FakeMenu menu;
    bool isEnabled = true;
    MacrosWindowUndo::SetMacroUndoMenu( menu );
    EXPECT_FALSE( MacrosWindowUndo::ValidateMenuItem( menu.mUndo, isEnabled ) );
    EXPECT_EQ( menu.mUndo.mTitle, u"untouched" );
    EXPECT_TRUE( isEnabled );

    EditAndSave( u"Paste Icons", u"1" );
    menu.mIsMacroContextFront = true;
    MacrosWindowUndo::SetMacroUndoMenu( menu );
    EXPECT_TRUE( MacrosWindowUndo::ValidateMenuItem( menu.mUndo, isEnabled ) );
    EXPECT_EQ( menu.mUndo.mTitle, u"Undo Paste Icons" );
    EXPECT_TRUE( isEnabled );
    EXPECT_TRUE( MacrosWindowUndo::ValidateMenuItem( menu.mRedo, isEnabled ) );
    EXPECT_EQ( menu.mRedo.mTitle, u"Redo" );
    EXPECT_FALSE( isEnabled );

    menu.mIsMacroContextFront = false;
    MacrosWindowUndo::SetMacroUndoMenu( menu );
    EXPECT_EQ( menu.mRedo.mAction, EditMenuAction::kOriginal );
}

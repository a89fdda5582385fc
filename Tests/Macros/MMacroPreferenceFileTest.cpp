// Starts, saves and shares, each in a folder of its own; what is expected stands in the rules for the macros file and in
// what is promised of faults.
#include "Macros/MMacroPreferenceFile.h"

#include "Tests/Macros/MacrosFileWorld.h"

#include <map>
#include <new>

namespace
{
using namespace MMacroPreferenceFile;
using Kind = SetAside::Kind;
using Bytes = std::multiset<std::string>;

class MacrosFileTest : public MacrosFileWorld
{
protected:
    static constexpr char kShare[] = "share.plist";
    static constexpr char kIncoming[] = "Korvalen Macros From Shared.plist";

    void SaveAllMacrosIfNecessary() override
    {
        if ( std::exchange( mHasEdits, false ) )
            SaveAllMacros();
    }
    bool mHasEdits = false;

    /// What the engine does.
    void Bring( std::string_view inBytes )
    {
        mFolder.Write( kIncoming, inBytes );
        ProcessSharingIncomingChange();
        mWorld.mWork.RunAll();
    }
};

/// Fails once, in the middle of what asks for it.
class RandomThatFailsOnce final : public XRandom
{
public:
    std::uint64_t Next() override
    {
        if ( std::exchange( mFails, false ) )
            throw std::bad_alloc();
        return mRandom.Next();
    }
    bool mFails = false;

private:
    XSeededRandom mRandom{ 3 };
};

std::string HalfOf( const std::string& inBytes )
{
    return inBytes.substr( 0, inBytes.size() / 2 );
}
} // namespace

TEST_F( MacrosFileTest, AFirstRunMakesEverythingInOneSave )
{
    Start();
    EXPECT_EQ( mWorld.mLog.CountContaining( "Loading made changes, initiating immediate save" ), 1u );
    const auto file = Parsed( MacrosFile() );
    ASSERT_TRUE( file );
    EXPECT_EQ( At( file, "MacroPreferencesVersion" ), Int( 91 ) );
    EXPECT_EQ( At( file, "MacroDefaultsVersion" ), Int( 91 ) );
    EXPECT_EQ(
        At( At( file, "MacroGroups" ).AsArray()->GetValueAt( 0 ), "SearchStrings" ).GetType(), XPlistType::kArray );
    EXPECT_TRUE( HasGroup( kvr_localized( u"hkDefaultMacroGroupName" ) ) );
    EXPECT_EQ( Revisions(), ( std::vector<Text>{ u"0000_01_02", u"9999_01_01" } ) );
    EXPECT_EQ( Revision( "0000_01_02" ), MacrosFile() );
    EXPECT_TRUE( KVNotices::Unanswered().empty() );

    // The engine hears of it when it runs, once.
    EXPECT_EQ( PostsOf( u"KV_LoadMacroFiles" ), 0u );
    InitialEngineFinishedRelaunching();
    InitialEngineFinishedRelaunching();
    mWorld.mWork.RunAll();
    EXPECT_EQ( PostsOf( u"KV_LoadMacroFiles" ), 1u );
    Save();
    EXPECT_EQ( PostsOf( u"KV_LoadMacroFiles" ), 2u );

    // The first save of a day keeps the state of the day before.
    const Text firstDay = RevisionDates::GetCurrentSaveDate();
    const std::string before = MacrosFile();
    mWorld.mClock.Advance( kDay );
    Save();
    EXPECT_EQ( Revisions(), ( std::vector<Text>{ u"0000_01_02", firstDay, u"9999_01_01" } ) );
    EXPECT_EQ( Revision( UTF8FromText( firstDay ) ), before );
}

TEST_F( MacrosFileTest, AFileWithNothingToDoIsNotWritten )
{
    Start();
    const std::string before = MacrosFile();
    const std::string launch = Revision( "9999_01_01" );
    WriteRevision( "9999_01_01", "old" );
    WriteRevision( "0000_01_02", "old" );
    WriteRevision( "9999_01_02", "gone after the start" );
    Start();
    EXPECT_EQ( MacrosFile(), before );
    EXPECT_EQ( MMacroDomain::LastLoadUUID(), At( Parsed( before ), "PreferenceSaveUUID" ).AsString()->GetText() );
    EXPECT_EQ( Revision( "9999_01_01" ), before );
    EXPECT_EQ( Revision( "0000_01_02" ), "old" );
    EXPECT_EQ( Revision( "9999_01_02" ), "" );
    EXPECT_TRUE( SetAside::List().empty() );
    EXPECT_FALSE( std::filesystem::exists( mFolder / "Korvalen Test Write" ) );
    EXPECT_TRUE( mAlerts.mAlerts.empty() );
    EXPECT_EQ( SavedData()->Span().size(), before.size() );
}

TEST_F( MacrosFileTest, AStartOnADiskThatCannotBeWrittenSaysSo )
{
    StartWith( CurrentFile( u"Mine" ) );
    mDisk.mFailFrom = mDisk.mCount = 1;
    mDisk.mCode = EROFS;
    Start();
    ASSERT_EQ( mAlerts.mAlerts.size(), 1u );
    EXPECT_EQ( mAlerts.mAlerts[0].mButtons.size(), 3u );
    EXPECT_TRUE( mHasEnded ) << "the first button ends the program";
    EXPECT_TRUE( HasGroup( u"Mine" ) );
}

TEST_F( MacrosFileTest, AFileThatCannotBeReadIsKeptBeforeTheDefaultsReplaceIt )
{
    const std::string good = BytesOf( CurrentFile( u"Mine" ) );
    const std::string kRows[] = { "", "garbage", HalfOf( good ), "bplist00", std::string( 100, '\0' ),
        "<plist><array><dict>" };
    int number = 0;
    for ( const std::string& bytes : kRows )
    {
        std::filesystem::remove_all( mFolder / "Set Aside" );
        KVNotices::AnswerAll();
        for ( int i = 0; i < 12; ++i )
            WriteRevision( "2011_01_" + std::to_string( 10 + i ), std::to_string( number++ ) );
        WriteRevision( "9999_01_02", "before a revert" );
        mFolder.Write( kMacrosFile, bytes );
        Start();
        EXPECT_EQ( SetAsideAs( Kind::kMacrosFile ), Bytes{ bytes } ) << bytes;
        EXPECT_TRUE( KVNotices::IsUnanswered( u"MacrosFileUnreadable" ) );
        EXPECT_TRUE( HasGroup( u"Clipboard Filters" ) );
        // Three culled ones, and the state before the revert, which may be all that is left.
        EXPECT_EQ( SetAsideAs( Kind::kRevision ).size(), 4u ) << bytes;
        EXPECT_TRUE( SetAsideAs( Kind::kRevision ).contains( "before a revert" ) );

        // Seen by the user: what is culled goes again.
        KVNotices::AnswerAll();
        Start();
        EXPECT_EQ( SetAsideAs( Kind::kRevision ).size(), 4u ) << bytes;
    }
}

TEST_F( MacrosFileTest, AFileWhoseBytesAreOutOfReachIsMovedAway )
{
    const std::string bytes = BytesOf( CurrentFile( u"Mine" ) );
    mFolder.Write( kMacrosFile, bytes );
    mDisk.mUnreadable = mFolder / kMacrosFile;
    Start();
    EXPECT_EQ( mFolder.Read( "Korvalen Macros Unreadable.plist" ), bytes );
    EXPECT_NE( MacrosFile(), "" );
    EXPECT_TRUE( KVNotices::IsUnanswered( u"MacrosFileUnreadable" ) );
}

TEST_F( MacrosFileTest, NothingIsWrittenOverAFileThatCannotBeKept )
{
    mFolder.Write( kMacrosFile, "garbage" );
    mDisk.mFailFrom = 1;
    Start();
    EXPECT_EQ( MacrosFile(), "garbage" );
    Save();
    EXPECT_EQ( MacrosFile(), "garbage" );
    mDisk.mFailFrom = 0;
    Save();
    EXPECT_EQ( SetAsideAs( Kind::kMacrosFile ), Bytes{ "garbage" } );
    EXPECT_TRUE( Parsed( MacrosFile() ) );
}

TEST_F( MacrosFileTest, AWrongRootEndsTheStartAndTouchesNothingUntilSomebodySaysSo )
{
    for ( const auto& file : { Array( {} ), Dict( { { "MacroGroups", Str( u"none" ) } } ), Str( u"text" ) } )
    {
        KVNotices::AnswerAll();
        const std::string bytes = BytesOf( file );
        mFolder.Write( kMacrosFile, bytes );
        mAlerts.mButton = 1;
        mAlerts.mAlerts.clear();
        EXPECT_THROW( Start(), XException );
        EXPECT_TRUE( mAlerts.mAlerts.empty() ) << "the first one only says it";
        EXPECT_TRUE( KVNotices::IsUnanswered( u"MacrosFileWrongRoot" ) );
        FinalSaveAllMacros();
        EXPECT_EQ( MacrosFile(), bytes ) << "an end after it saves no empty set";

        mAlerts.mButton = 0;
        EXPECT_THROW( Start(), XException );
        EXPECT_EQ( mAlerts.mAlerts.size(), 1u );
        EXPECT_EQ( MacrosFile(), bytes );

        mAlerts.mButton = 1;
        Start();
        EXPECT_FALSE( KVNotices::IsUnanswered( u"MacrosFileWrongRoot" ) );
        EXPECT_TRUE( HasGroup( u"Clipboard Filters" ) );
        EXPECT_TRUE( SetAsideAs( Kind::kMacrosFile ).contains( bytes ) );
        EXPECT_FALSE( IsSavingLatchedOff() );
    }
}

TEST_F( MacrosFileTest, WhatWasUnderstoodInPartIsKeptBeforeTheFirstSave )
{
    const auto unknown = MacroWith( u"M",
        { { "Actions", Array( { ActionDict( u"Teleport" ), ActionDict( u"Beam" ) } ) },
            { "Triggers", Array( { Trigger( u"Thought" ) } ) } } );
    const struct
    {
        __SafeCFPropertyList mFile;
        const char16_t* mNotice;
        std::string mCounts;
    } kRows[] = {
        { With( CurrentFile( u"Mine" ), { { "MacroGroups", Array( { GroupWith( u"G", { unknown } ), Int( 3 ) } ) } } ),
            u"MacrosFileInPart", "(actions: 2, triggers: 1, other elements: 1)" },
        { CurrentFile( u"Mine", { { "MacroPreferencesVersion", Int( 92 ) } } ), u"MacrosFileNewer", "" },
    };
    for ( const auto& [file, identifier, counts] : kRows )
    {
        std::filesystem::remove_all( mFolder / "Set Aside" );
        KVNotices::AnswerAll();
        WriteRevision( "9999_01_02", "before a revert" );
        StartWith( file );
        EXPECT_EQ( SetAsideAs( Kind::kMacrosFile ), Bytes{ BytesOf( file ) } );
        const auto notices = KVNotices::Unanswered();
        ASSERT_EQ( notices.size(), 1u );
        EXPECT_EQ( notices[0].mIdentifier, identifier );
        EXPECT_NE( UTF8FromText( notices[0].mText ).find( counts ), std::string::npos )
            << UTF8FromText( notices[0].mText );
        EXPECT_TRUE( SetAsideAs( Kind::kRevision ).contains( "before a revert" ) );
    }
}

TEST_F( MacrosFileTest, ALoadThatBreaksOffLetsNothingBeSavedUntilTheMacrosAreWholeAgain )
{
    StartWith( CurrentFile( u"Mine" ) );
    const std::string before = MacrosFile();
    // Its group needs a new UID, and the source of those fails.
    const auto broken =
        DataOf( BytesOf( FileWith( { GroupWith( u"", { MacroWith( u"" ) }, { { "Name", Str( u"New" ) } } ) } ) ) );
    RandomThatFailsOnce random;
    const XRandom::Substitute randomInUse( random );
    UndoRedoMacroData( broken );
    mDomain->Empty(); // groups that go ask for UIDs as well
    random.mFails = true;
    ReloadAllMacros();
    EXPECT_EQ( mWorld.mLog.CountContaining( "Failed to reload macros" ), 1u );
    EXPECT_TRUE( HasGroup( u"Mine" ) ) << "the macros from before are back";
    EXPECT_FALSE( IsSavingLatchedOff() );
    Save();
    EXPECT_EQ( SetAsideAs( Kind::kMacrosFile ).size(), 1u );
    EXPECT_TRUE( KVNotices::IsUnanswered( u"MacrosLoadFailed" ) );
    EXPECT_EQ( WithoutStamps( Parsed( MacrosFile() ) ), WithoutStamps( mDomain->GetPropertyList() ) );

    // With nothing to go back to it stays so, and an end doesn't save the half either.
    mDomain.reset();
    Reset();
    mDomain = std::make_unique<MMacroDomain>();
    UndoRedoMacroData( broken );
    random.mFails = true;
    ReloadAllMacros();
    EXPECT_TRUE( IsSavingLatchedOff() );
    const std::string file = MacrosFile();
    Save();
    FinalSaveAllMacros();
    EXPECT_EQ( MacrosFile(), file );
    ReloadAllMacros();
    EXPECT_FALSE( IsSavingLatchedOff() );
    EXPECT_TRUE( HasGroup( u"New" ) );
    Save();
    EXPECT_NE( MacrosFile(), file );
}

TEST_F( MacrosFileTest, AReloadOfBytesThatDoNotParseLeavesTheMacros )
{
    StartWith( CurrentFile( u"Mine" ) );
    UndoRedoMacroData( DataOf( "garbage" ) );
    ReloadAllMacros();
    EXPECT_TRUE( HasGroup( u"Mine" ) );
    Save();
    EXPECT_EQ( SetAsideAs( Kind::kMacrosFile ), Bytes{ "garbage" } );
    EXPECT_TRUE( Parsed( MacrosFile() ) );
    for ( const Text& date : Revisions() )
        EXPECT_TRUE( MRevisions::IsDate( date ) );
}

TEST_F( MacrosFileTest, AShareThatIsNoMacrosFileCountsAsNotRead )
{
    const std::string ours = BytesOf( CurrentFile( u"Mine" ) ), theirs = BytesOf( CurrentFile( u"Theirs" ) );
    for ( const std::string& bytes :
        { std::string(), std::string( "garbage" ), HalfOf( theirs ), BytesOf( Array( {} ) ) } )
    {
        std::filesystem::remove_all( mFolder / "Set Aside" );
        KVNotices::AnswerAll();
        mFolder.Write( kShare, bytes );
        mFolder.Write( kMacrosFile, ours );
        mFolder.Write( kIncoming, "left over" );
        Share( kShare );
        Start();
        EXPECT_TRUE( HasGroup( u"Mine" ) );
        EXPECT_EQ( MacrosFile(), ours );
        EXPECT_EQ( mFolder.Read( kShare ), bytes ) << "nothing is copied there before it is set aside";
        EXPECT_TRUE( KVNotices::IsUnanswered( u"ShareFileUnreadable" ) );
        EXPECT_FALSE( std::filesystem::exists( mFolder / kIncoming ) );

        mDisk.mFailFrom = 0;
        Save();
        EXPECT_EQ( SetAsideAs( Kind::kShareFile ), Bytes{ bytes } );
        EXPECT_EQ( mFolder.Read( kShare ), MacrosFile() );
    }
}

TEST_F( MacrosFileTest, ASharedFileIsTakenAtStartAndTheLocalOneIsKept )
{
    const std::string ours = BytesOf( CurrentFile( u"Mine" ) ), theirs = BytesOf( CurrentFile( u"Theirs" ) );
    mFolder.Write( kMacrosFile, ours );
    mFolder.Write( kShare, theirs );
    Share( kShare );
    Start();
    EXPECT_TRUE( HasGroup( u"Theirs" ) );
    EXPECT_EQ( SetAsideAs( Kind::kReceived ), Bytes{ ours } );
    EXPECT_EQ( MacrosFile(), theirs ) << "the engine reads the local file";
    EXPECT_EQ( mFolder.Read( kShare ), theirs ) << "a start that changed nothing brings nobody a change";

    Save();
    EXPECT_EQ( mFolder.Read( kShare ), MacrosFile() );
    EXPECT_TRUE( SetAsideAs( Kind::kShareFile ).empty() ) << "what we read and wrote ourselves is known";

    // An older shared file is upgraded, saved and copied at once; the local file hasn't been in anybody's hands.
    const std::string older = BytesOf( CurrentFile( u"Older", { { "MacroPreferencesVersion", Int( 90 ) } } ) );
    mFolder.Write( kMacrosFile, ours + "x" );
    mFolder.Write( kShare, older );
    Start();
    EXPECT_TRUE( SetAsideAs( Kind::kReceived ).contains( ours + "x" ) );
    EXPECT_EQ( mFolder.Read( kShare ), MacrosFile() );
    EXPECT_EQ( At( Parsed( MacrosFile() ), "MacroPreferencesVersion" ), Int( 91 ) );
}

TEST_F( MacrosFileTest, ASaveSetsAsideWhatAnotherComputerHasSavedMeanwhile )
{
    mFolder.Write( kShare, BytesOf( CurrentFile( u"Theirs" ) ) );
    Share( kShare );
    Start();
    const std::string later = BytesOf( CurrentFile( u"Later" ) );
    mFolder.Write( kShare, later );
    mDisk.mUnreadable = mFolder / kShare;
    Save();
    EXPECT_EQ( mFolder.Read( kShare ), later ) << "what can't be looked at isn't replaced";
    EXPECT_EQ( mWorld.mLog.CountContaining( "Preference shared sync write failed" ), 1u );
    mDisk.mUnreadable.clear();
    Save();
    EXPECT_EQ( SetAsideAs( Kind::kShareFile ), Bytes{ later } );
    EXPECT_EQ( mFolder.Read( kShare ), MacrosFile() );
}

TEST_F( MacrosFileTest, ASharedFileOfANewerVersionSuspendsSharing )
{
    const std::string newer = BytesOf( CurrentFile( u"Newer", { { "Version", Str( u"999.0" ) } } ) );
    mFolder.Write( kMacrosFile, BytesOf( CurrentFile( u"Mine" ) ) );
    mFolder.Write( kShare, newer );
    Share( kShare );
    Start();
    EXPECT_TRUE( HasGroup( u"Mine" ) );
    EXPECT_TRUE( IsSharingDisabledBecauseOfNewerVersion() );
    ASSERT_EQ( mAlerts.mAlerts.size(), 1u );
    EXPECT_EQ( PostsOf( u"KV_ManualSIVCCheck" ), 1u ) << "the first button";
    Save();
    EXPECT_EQ( mFolder.Read( kShare ), newer );
    Bring( BytesOf( CurrentFile( u"Theirs" ) ) );
    EXPECT_TRUE( HasGroup( u"Mine" ) );

    mAlerts.mButton = 1;
    Start();
    EXPECT_EQ( PostsOf( u"KV_StopSharing" ), 1u );
    EXPECT_TRUE( IsEmpty( KVPreferences::Get( KVPreferences::kMacroSharingFileID, XText() ) ) );
    EXPECT_TRUE( CopyMacroShareFileToRemote( mFolder / kShare ) );
    EXPECT_FALSE( IsSharingDisabledBecauseOfNewerVersion() );
    EXPECT_EQ( SetAsideAs( Kind::kShareFile ), Bytes{ newer } );
}

TEST_F( MacrosFileTest, WhatComesInReplacesTheMacrosUnlessItIsOursOrNoMacrosFile )
{
    StartWith( CurrentFile( u"Mine" ) );
    Save();
    const std::string ours = MacrosFile();
    Bring( ours );
    EXPECT_EQ( mReloads, 0 ) << "an echo";
    EXPECT_FALSE( std::filesystem::exists( mFolder / kIncoming ) );
    Bring( BytesOf( CurrentFile( u"Newer", { { "Version", Str( u"999.0" ) } } ) ) );
    EXPECT_TRUE( IsSharingDisabledBecauseOfNewerVersion() );
    EXPECT_EQ( MacrosFile(), ours );

    Start();
    const std::string half = HalfOf( BytesOf( CurrentFile( u"Theirs" ) ) );
    for ( const std::string& bytes : { std::string(), half, BytesOf( Array( {} ) ) } )
        Bring( bytes );
    EXPECT_EQ( mWorld.mLog.CountContaining( "Preference read share incoming failed with error: " ), 3u );
    EXPECT_EQ( SetAsideAs( Kind::kShareFile ), ( Bytes{ "", half, BytesOf( Array( {} ) ) } ) );
    EXPECT_EQ( MacrosFile(), ours );
    EXPECT_EQ( mReloads, 0 );

    Save(); // a local change, which what comes in now is about to replace
    const std::string before = MacrosFile(), theirs = BytesOf( CurrentFile( u"Theirs" ) );
    Bring( theirs );
    EXPECT_EQ( MacrosFile(), theirs );
    EXPECT_TRUE( HasGroup( u"Theirs" ) );
    EXPECT_EQ( Revision( "9999_01_03" ), before );
    EXPECT_EQ( SetAsideAs( Kind::kReceived ), Bytes{ before } );
    EXPECT_EQ( mReloads, 1 );
    Bring( theirs );
    EXPECT_EQ( mReloads, 1 );
}

TEST_F( MacrosFileTest, ARevertKeepsTheStateBeforeAndRefusesWhatIsDamaged )
{
    StartWith( CurrentFile( u"Mine" ) );
    const std::string before = MacrosFile();
    WriteRevision( "2022_01_01", BytesOf( CurrentFile( u"Old" ) ) );
    WriteRevision( "2022_01_02", HalfOf( before ) );
    WriteRevision( "2022_01_03", BytesOf( Array( {} ) ) );
    for ( const char16_t* const date : { u"2022_01_02", u"2022_01_03", u"2022_01_04", u"../Korvalen Macros" } )
        EXPECT_FALSE( RevertToRevision( date ) ) << UTF8FromText( date );
    mWorld.mWork.RunAll();
    EXPECT_EQ( MacrosFile(), before );
    EXPECT_EQ( Revision( "9999_01_02" ), "" );

    EXPECT_TRUE( RevertToRevision( u"2022_01_01" ) );
    mWorld.mWork.RunAll();
    EXPECT_TRUE( HasGroup( u"Old" ) );
    EXPECT_EQ( Revision( "9999_01_02" ), before );
    const auto menu = FillRevertMenu();
    ASSERT_FALSE( menu.empty() );
    EXPECT_EQ( menu.front().mDate, u"0000_01_02" );
    EXPECT_EQ( menu.front().mTitle, kvr_localized( u"kRevisions0000_01_02" ) );
}

TEST_F( MacrosFileTest, AFailedSaveChangesNothingIsToldOnceAndTheNextOneSucceeds )
{
    StartWith( CurrentFile( u"Mine" ) );
    const std::string old = MacrosFile();
    mAlerts.mButton = 1; // carry on
    for ( const bool onlyOnce : { false, true } )
    {
        for ( int n = 1;; ++n )
        {
            const std::string before = MacrosFile();
            AddGroup( u"New" );
            const auto model = WithoutStamps( mDomain->GetPropertyList() );
            (void)mWorld.mLog.Take();
            mAlerts.mAlerts.clear();
            mDisk.mOnlyOnce = onlyOnce;
            mDisk.mCount = 0;
            mDisk.mFailFrom = n;
            Save();
            mDisk.mFailFrom = 0;
            const bool failed = mWorld.mLog.CountContaining( "Preference write failed with error: " ) > 0;
            EXPECT_LE( mWorld.mLog.CountContaining( "Preference write failed with error: " ), 1u );
            EXPECT_EQ( mAlerts.mAlerts.size(), failed ? 1u : 0u ) << n;
            EXPECT_EQ( WithoutStamps( mDomain->GetPropertyList() ), model ) << n;
            if ( not failed )
            {
                EXPECT_EQ( WithoutStamps( Parsed( MacrosFile() ) ), model ) << n;
            }
            EXPECT_EQ( TemporaryFiles(), 0u ) << n;
            EXPECT_FALSE( mHasEnded );
            Save();
            EXPECT_EQ( WithoutStamps( Parsed( MacrosFile() ) ), model ) << n;
            if ( mDisk.mCount < n )
                break;
            ASSERT_LT( n, 200 );
        }
    }
}

TEST_F( MacrosFileTest, QuittingAfterAFailedSaveMakesNoFurtherOne )
{
    StartWith( CurrentFile( u"Mine" ) );
    const std::string before = MacrosFile();
    mDisk.mFailFrom = 1;
    Save();
    EXPECT_TRUE( mHasEnded );
    mDisk.mFailFrom = 0;
    FinalSaveAllMacros();
    EXPECT_EQ( MacrosFile(), before );
    Save();
    FinalSaveAllMacros();
    EXPECT_NE( MacrosFile(), before ) << "a save after all takes it back";
}

TEST_F( MacrosFileTest, EveryRevisionBearsItsOwnDayWhateverTheClockDoes )
{
    StartWith( CurrentFile( u"Mine" ) );
    XSeededRandom random( 11 );
    for ( int i = 0; i < 300; ++i )
    {
        switch ( random.Next() % 6 )
        {
        case 0:
            mWorld.mClock.SetNow( mWorld.mClock.Now() - kDay * double( random.Next() % 5 ) );
            break;
        case 1:
            mWorld.mClock.SetNow( mWorld.mClock.Now() + kDay * double( random.Next() % 4 ) );
            break;
        case 2:
            Start();
            break;
        default:
            mWorld.mClock.Advance( 3600 );
            AddGroup( u"G" + TextFromUTF8( std::to_string( i ) ) );
            Save();
        }
        for ( const Text& date : Revisions() )
        {
            if ( date < u"0001" or date > u"9998" )
                continue;
            const auto file = Parsed( Revision( UTF8FromText( date ) ) );
            ASSERT_EQ( UTF8FromText( TextAt( file, "PreferenceSavedDate" ) ), UTF8FromText( date ) ) << "step " << i;
        }
    }
    EXPECT_FALSE( SetAsideAs( Kind::kRevision ).empty() ) << "days that came twice";
}

TEST_F( MacrosFileTest, AMidnightWhileASaveIsMadeDatesItByTheNewDay )
{
    /// Midnight comes between two looks at it.
    class MidnightClock final : public XClock
    {
    public:
        explicit MidnightClock( double inNow ) : mNow( inNow ) {}
        [[nodiscard]] XAbsoluteTime Now() const override { return mLooks++ == 0 ? mNow : mNow + kDay; }
        [[nodiscard]] double MonotonicSeconds() const override { return 0; }
        const double mNow;
        mutable int mLooks = 0;
    };
    StartWith( CurrentFile( u"Mine" ) );
    Save();
    const std::string lastOfTheDay = MacrosFile();
    const std::string day = UTF8FromText( RevisionDates::GetCurrentSaveDate() );
    {
        const MidnightClock clock( mWorld.mClock.Now() );
        const XClock::Substitute clockInUse( clock );
        Save();
    }
    mWorld.mClock.Advance( kDay );
    Save();
    EXPECT_EQ( Revision( day ), lastOfTheDay );
}

TEST_F( MacrosFileTest, EditsSavedBecauseAFileComesInStayOnThisComputer )
{
    const std::string theirs = BytesOf( CurrentFile( u"Theirs" ) );
    mFolder.Write( kShare, BytesOf( CurrentFile( u"Mine" ) ) );
    Share( kShare );
    Start();
    AddGroup( u"Edited" );
    mHasEdits = true;
    mFolder.Write( kShare, theirs );
    Bring( theirs );
    EXPECT_FALSE( mHasEdits );
    EXPECT_EQ( MacrosFile(), theirs );
    EXPECT_EQ( mFolder.Read( kShare ), theirs ) << "or this computer and the others would go apart";
    const auto before = Parsed( Revision( "9999_01_03" ) );
    ASSERT_TRUE( before ) << "the edits are in a revision";
    EXPECT_NE( Revision( "9999_01_03" ).find( "Edited" ), std::string::npos );
    Save();
    EXPECT_EQ( mFolder.Read( kShare ), MacrosFile() ) << "later saves go there again";
}

TEST_F( MacrosFileTest, ANewerShareOfAnotherFormSuspendsSharingUntilAnotherOneIsJoined )
{
    const std::string newer = BytesOf( Dict( { { "Version", Str( u"999.0" ) }, { "Groups", Array( {} ) } } ) );
    mFolder.Write( kMacrosFile, BytesOf( CurrentFile( u"Mine" ) ) );
    mFolder.Write( kShare, newer );
    Share( kShare );
    mAlerts.mButton = 1; // Stop Sharing
    Start();
    EXPECT_TRUE( IsSharingDisabledBecauseOfNewerVersion() );
    EXPECT_FALSE( KVNotices::IsUnanswered( u"ShareFileUnreadable" ) );
    Save();
    EXPECT_EQ( mFolder.Read( kShare ), newer );
    EXPECT_TRUE( SaveRemoteMacroShareFileData( DataOf( BytesOf( CurrentFile( u"Theirs" ) ) ) ) );
    EXPECT_FALSE( IsSharingDisabledBecauseOfNewerVersion() );
}

TEST_F( MacrosFileTest, ABackupOfAnEarlierUpgradeIsKept )
{
    mFolder.Write( "Korvalen Macros Saved Version 8.plist", "from an earlier upgrade" );
    const auto older = CurrentFile( u"Mine", { { "MacroPreferencesVersion", Int( 90 ) } } );
    StartWith( older );
    EXPECT_EQ( mFolder.Read( "Korvalen Macros Saved Version 8.plist" ), BytesOf( older ) );
    EXPECT_EQ( SetAsideAs( Kind::kMacrosFile ), Bytes{ "from an earlier upgrade" } );
}

TEST_F( MacrosFileTest, AReceivedFileThatCouldNotBeWrittenIsNotWhatWasSavedLast )
{
    StartWith( CurrentFile( u"Mine" ) );
    const auto before = SavedData();
    mFolder.Write( "Set Aside", "a file in the way" );
    EXPECT_FALSE( SaveRemoteMacroShareFileData( DataOf( BytesOf( CurrentFile( u"Theirs" ) ) ) ) );
    EXPECT_EQ( SavedData(), before );
    ReloadAllMacros();
    EXPECT_TRUE( HasGroup( u"Mine" ) );
}

TEST_F( MacrosFileTest, DestroyingTheMacrosDrawsNoUIDs )
{
    Start();
    XSeededRandom drawn( 5 ), untouched( 5 );
    const XRandom::Substitute inUse( drawn );
    mDomain.reset();
    EXPECT_EQ( drawn.Next(), untouched.Next() );
}

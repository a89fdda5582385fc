#include "MacrosWindow/RecoverySnapshot.h"

#include "Defines/KVNotices.h"
#include "Tests/MacrosWindow/UndoWorld.h"

namespace
{
class RecoverySnapshotTest : public UndoWorld
{
protected:
    [[nodiscard]] std::vector<std::string> Copies() const { return SetAsideNames( SetAside::Kind::kRecovery ); }

    /// Edits each 0.3 seconds, and at every second asks what a death would lose.
    void EditForAWhile( double inSeconds, double inMostLost )
    {
        std::map<std::string, double> madeAt{ { "start", 0.0 } };
        double nextCheck = 1;
        for ( int i = 0; i * 0.3 < inSeconds; ++i )
        {
            const std::string name = "edit " + std::to_string( i );
            const double now = mWorld->mClock.MonotonicSeconds();
            madeAt[name] = now;
            Edit( u"Rename", TextFromUTF8( name ) );
            Advance( 0.3 );
            if ( mWorld->mClock.MonotonicSeconds() < nextCheck )
                continue;
            nextCheck += 1;
            const auto copies = Copies();
            ASSERT_LE( copies.size(), 1u );
            // The first edit that a death loses here.
            const double have = madeAt.at( copies.empty() ? File() : copies.front() );
            for ( const auto& [edit, time] : madeAt )
            {
                const bool isSafe = time <= have or mWorld->mClock.MonotonicSeconds() - time < inMostLost;
                ASSERT_TRUE( isSafe ) << edit;
            }
        }
    }
};
} // namespace

TEST_F( RecoverySnapshotTest, TenMinutesOfEditsNeverRiskMoreThanTwoSeconds )
{
    EditForAWhile( 600, RecoverySnapshot::kDelay + 0.001 );
    EXPECT_EQ( File(), "start" );
    EXPECT_EQ( Copies().size(), 1u );
    Advance( 1 );
    EXPECT_EQ( File(), Model() );
    EXPECT_EQ( Copies().size(), 0u );
}

TEST_F( RecoverySnapshotTest, ALargeFileRisksNoMoreThanFiveSeconds )
{
    mDomain->LoadFromPropertyList( FileWith( { GroupWith( u"G", {}, { { "Name", Str( u"start" ) } } ),
                                                 GroupWith( u"H", {}, { { "Name", Str( Text( 21 << 20, u'x' ) ) } } ) },
        { { "MacroPreferencesVersion", Int( 91 ) } } ) );
    MMacroPreferenceFile::SaveAllMacros();
    mWorld->mWork.RunAll();
    ASSERT_GT( MMacroPreferenceFile::SavedData()->size(), RecoverySnapshot::kLargeBytes );
    EditForAWhile( 8, RecoverySnapshot::kLargeDelay + 0.001 );
    EXPECT_EQ( Copies().size(), 1u );
}

TEST_F( RecoverySnapshotTest, AnEditThatIsSavedInTimeMakesNoCopy )
{
    EditAndSave( u"Rename", u"0" ); // reads the limit of undo, once
    const int calls = mCalls.mCount;
    Edit( u"Rename", u"1" );
    Edit( u"Rename", u"2" );
    EXPECT_EQ( mCalls.mCount, calls ) << "an edit touches no file";
    Advance( 10 );
    EXPECT_TRUE( Copies().empty() );
    EXPECT_EQ( mWorld->mLog.CountContaining( "Set aside" ), 0u );
}

TEST_F( RecoverySnapshotTest, ACopyIsNoSave )
{
    const Text before = MMacroDomain::LastSaveUUID().GetText();
    for ( int i = 0; i < 10; ++i )
    {
        Edit( u"Rename", u"edited" );
        Advance( 0.5 );
    }
    EXPECT_EQ( Copies(), std::vector<std::string>{ "edited" } );
    EXPECT_EQ( MMacroDomain::LastSaveUUID().GetText(), before );
}

TEST_F( RecoverySnapshotTest, TheCopyStaysUntilTheSaveIsOnDisk )
{
    for ( int i = 0; i < 10; ++i )
    {
        Edit( u"Rename", u"edited" );
        Advance( 0.5 );
    }
    mCalls.mCode = ENOSPC;
    mCalls.mFirst = 0;
    Advance( 1 );
    EXPECT_FALSE( MacrosWindowUndo::NeedSaveAllMacros() );
    mCalls.mFirst = std::numeric_limits<int>::max();
    EXPECT_EQ( File(), "start" );
    EXPECT_EQ( Copies(), std::vector<std::string>{ "edited" } );
    EditAndSave( u"Rename", u"later" );
    EXPECT_EQ( File(), "later" );
    EXPECT_TRUE( Copies().empty() );
}

TEST_F( RecoverySnapshotTest, ACopyThatIsFoundIsToldAndOnlyTold )
{
    for ( int i = 0; i < 10; ++i )
    {
        Edit( u"Rename", u"edited" );
        Advance( 0.5 );
    }
    Die();
    Start();
    RecoverySnapshot::FoundAtStart();
    EXPECT_EQ( Model(), "start" );
    EXPECT_TRUE( KVNotices::IsUnanswered( u"RecoverySnapshot" ) );
    EXPECT_TRUE( std::filesystem::exists( KVNotices::Unanswered().front().mPath ) );
    // Edits and saves of this run leave it alone.
    for ( int i = 0; i < 10; ++i )
    {
        Edit( u"Rename", u"new edits" );
        Advance( 0.5 );
    }
    Advance( 1 );
    EXPECT_EQ( SetAsideNames( SetAside::Kind::kUnsaved ), std::vector<std::string>{ "edited" } );
    EXPECT_TRUE( Copies().empty() );
}

TEST_F( RecoverySnapshotTest, ACopyWhoseEditsWereSavedIsNotTold )
{
    Edit( u"Rename", u"edited" );
    (void)SetAside::Keep( SetAside::Kind::kRecovery, RecoverySnapshot::EncodeModel()->Span(), u"test" );
    Advance( 1 );
    Restart();
    RecoverySnapshot::FoundAtStart();
    EXPECT_FALSE( KVNotices::IsUnanswered( u"RecoverySnapshot" ) );
    EXPECT_TRUE( Copies().empty() );
}

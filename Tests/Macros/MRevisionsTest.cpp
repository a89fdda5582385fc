#include "Macros/MRevisions.h"

#include "Tests/Macros/MacrosFileWorld.h"

namespace
{
using MRevisionsTest = MacrosFileWorld;

// The manual clock begins in March 2023, behind all of these.
std::string Day( int inNumber )
{
    const std::string digits = std::to_string( 1000 + inNumber ); // four of them, in order
    return "20" + digits.substr( 0, 2 ) + "_01_" + digits.substr( 2 );
}
} // namespace

TEST_F( MRevisionsTest, AtMostThreeGoAtALaunchUnlessThereAreMoreThan21 )
{
    const struct
    {
        int mThere, mLeft;
        bool mWithReserved;
    } kRows[] = { { 0, 0, false }, { 5, 5, false }, { 7, 7, false }, { 8, 7, false }, { 9, 7, false }, { 10, 7, false },
        { 11, 8, false }, { 20, 17, false }, { 24, 21, false }, { 25, 21, false }, { 30, 21, false }, { 99, 21, false },
        { 7, 7, true }, { 30, 21, true } };
    for ( const auto& [there, left, withReserved] : kRows )
    {
        std::filesystem::remove_all( mFolder / "Revisions Version 9" );
        for ( int i = 0; i < there; ++i )
            WriteRevision( Day( i ), "r" );
        const std::vector<std::string> reserved = { "0000_01_02", "9999_01_03",
            UTF8FromText( RevisionDates::GetCurrentSaveDate() ) };
        for ( const std::string& date : reserved )
            if ( withReserved )
                WriteRevision( date, "r" );
        MRevisions::Cull( MRevisions::Keep::kNothing );
        auto dates = MRevisions::List();
        for ( const std::string& date : reserved )
            EXPECT_EQ( std::erase( dates, TextFromUTF8( date ) ), withReserved ) << there << ' ' << date;
        ASSERT_EQ( dates.size(), std::size_t( left ) ) << there;
        for ( int i = 0; i < left; ++i ) // the oldest have gone
            EXPECT_EQ( UTF8FromText( dates[std::size_t( i )] ), Day( there - left + i ) ) << there;
    }
}

TEST_F( MRevisionsTest, OnlyNamesOfTheFormAreRevisions )
{
    for ( const char* const name : { "2024_01_02", "2024_1_2", "2024_01_02 copy", "x2024_01_02", "2024-01-02" } )
        WriteRevision( name, "r" );
    mFolder.Write( "Revisions Version 9/2024_01_03.plist.bak", "r" );
    EXPECT_EQ( MRevisions::List(), std::vector<Text>{ u"2024_01_02" } );
    mFolder.Write( "outside.plist", "r" );
    EXPECT_FALSE( MRevisions::Read( u"../outside" ) ) << "a date leads nowhere else";
    MRevisions::PrivateSaveRevision( u"../outside", DataOf( "x" ) );
    EXPECT_EQ( mFolder.Read( "outside.plist" ), "r" );
}

TEST_F( MRevisionsTest, TheOneBeforeThisVersionIsWrittenOnceEver )
{
    for ( const char* const bytes : { "first", "second" } )
        for ( const char16_t* const date : { u"0000_01_02", u"9999_01_01", u"2023_01_05" } )
            MRevisions::PrivateSaveRevision( date, DataOf( bytes ) );
    EXPECT_EQ( Revision( "0000_01_02" ), "first" );
    EXPECT_EQ( Revision( "9999_01_01" ), "second" );
    EXPECT_EQ( Revision( "2023_01_05" ), "second" );
    EXPECT_EQ( SetAsideAs( SetAside::Kind::kRevision ), std::multiset<std::string>{ "first" } )
        << "another state of a day isn't lost; that of a launch is meant to be";
}

TEST_F( MRevisionsTest, AFailedWriteBeepsAndLeavesTheOldOne )
{
    WriteRevision( "2023_01_05", "old" );
    mDisk.mFailFrom = 1;
    MRevisions::PrivateSaveRevision( u"2023_01_05", DataOf( "new" ) );
    EXPECT_EQ( Revision( "2023_01_05" ), "old" );
    EXPECT_EQ( mWorld.mLog.CountContaining( "Preference revision write failed with exception" ), 1u );
    EXPECT_EQ( mAlerts.mSounds.size(), 1u );
}

TEST_F( MRevisionsTest, OneThatIsToBeKeptAndCannotBeStays )
{
    WriteRevision( "2023_01_05", "bytes" );
    mDisk.mFailFrom = 1;
    MRevisions::DeleteRevision( u"2023_01_05", MRevisions::Keep::kInSetAside );
    EXPECT_EQ( Revision( "2023_01_05" ), "bytes" );
    mDisk.mFailFrom = 0;
    MRevisions::DeleteRevision( u"2023_01_05", MRevisions::Keep::kInSetAside );
    EXPECT_EQ( Revision( "2023_01_05" ), "" );
    EXPECT_EQ( SetAsideAs( SetAside::Kind::kRevision ), std::multiset<std::string>{ "bytes" } );
}

TEST_F( MRevisionsTest, ThoseOfTheOlderLayoutComeAcrossWholeOrAreTriedAgain )
{
    const auto older = mFolder / "Revisions Version 8";
    std::filesystem::create_directories( older );
    for ( int i = 0; i < 5; ++i )
        mFolder.Write( "Revisions Version 8/" + Day( i ) + ".plist", "r" + std::to_string( i ) );
    for ( int n = 1;; ++n )
    {
        mDisk.mCount = 0;
        mDisk.mFailFrom = n;
        MRevisions::CopyFromVersion8();
        if ( mDisk.mCount < n )
            break;
        EXPECT_FALSE( std::filesystem::exists( mFolder / "Revisions Version 9" ) ) << "a part isn't taken for it " << n;
    }
    EXPECT_EQ( Revisions().size(), 5u );
    EXPECT_EQ( Revision( Day( 3 ) ), "r3" );
    EXPECT_EQ( std::distance( std::filesystem::directory_iterator( older ), {} ), 5 ) << "they are only read";
    mFolder.Write( "Revisions Version 8/" + Day( 9 ) + ".plist", "late" );
    MRevisions::CopyFromVersion8();
    EXPECT_EQ( Revisions().size(), 5u ) << "once";
}

TEST_F( MRevisionsTest, ACopyThatFailedGoesOnAtALaterStartBesideWhatWasSavedMeanwhile )
{
    std::filesystem::create_directories( mFolder / "Revisions Version 8" );
    for ( int i = 0; i < 5; ++i )
        mFolder.Write( "Revisions Version 8/" + Day( i ) + ".plist", "r" + std::to_string( i ) );
    for ( int n = 1;; ++n )
    {
        SCOPED_TRACE( n );
        mDisk.mCount = 0;
        mDisk.mFailFrom = n;
        MRevisions::CopyFromVersion8();
        const bool isCopied = mDisk.mCount < n;
        // The disk has room again: a save makes the folder, with one day that the copy would bring too.
        mDisk.mFailFrom = 0;
        MRevisions::PrivateSaveRevision( TextFromUTF8( Day( 2 ) ), DataOf( "saved" ) );
        MRevisions::CopyFromVersion8();
        EXPECT_EQ( Revisions().size(), 5u );
        EXPECT_EQ( Revision( Day( 2 ) ), "saved" );
        EXPECT_EQ( Revision( Day( 3 ) ), "r3" );
        EXPECT_FALSE( std::filesystem::exists( mFolder / "Revisions Version 9 Being Copied" ) );
        std::filesystem::remove_all( mFolder / "Revisions Version 9" );
        if ( isCopied )
            break;
    }
}

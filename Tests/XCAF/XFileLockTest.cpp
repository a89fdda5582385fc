#include "XCAF/XFileLock.h"

#include "Tests/Fakes/ManualSleep.h"
#include "Tests/Fakes/ManualWorld.h"
#include "Tests/Support/LogTags.h"
#include "Tests/Support/ScratchFolder.h"

#include <cmath>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace fs = std::filesystem;

namespace
{
constexpr double k2001 = 978307200;

struct FileLock : testing::Test
{
    [[nodiscard]] std::unique_ptr<XFileLock> Lock() const { return XFileLock::lockWithPath( mPath ); }
    /// A date is so many seconds ago, by the clock of the test.
    void SetAge( const fs::path& inPath, double inSeconds ) const
    {
        const double date = mWorld.mClock.Now() + k2001 - inSeconds;
        const timespec when{ time_t( std::floor( date ) ), long( ( date - std::floor( date ) ) * 1e9 ) };
        const timespec times[2] = { when, when };
        ASSERT_EQ( ::utimensat( AT_FDCWD, inPath.c_str(), times, 0 ), 0 );
    }
    /// Somebody else's lock of this age takes the place of whatever lock there is. Another folder, whose number isn't
    /// that of the one that goes.
    void ReplaceLock( double inAge ) const
    {
        const auto other = mFolder / "other";
        fs::create_directory( other );
        SetAge( other, inAge );
        fs::remove( mPath );
        fs::rename( other, mPath );
    }
    [[nodiscard]] ino_t Number() const
    {
        struct stat status = {};
        return ::stat( mPath.c_str(), &status ) == 0 ? status.st_ino : 0;
    }
    [[nodiscard]] std::size_t CountFiles() const
    {
        return std::size_t( std::distance( fs::directory_iterator( mFolder.Path() ), {} ) );
    }

    ManualWorld mWorld;
    LogTags mTags{ u"XFileLock", mWorld.mLog };
    ManualSleep mSleep{ mWorld.mClock };
    ScratchFolder mFolder;
    fs::path mPath = mFolder / "lock";
};
} // namespace

TEST_F( FileLock, OneHasItUntilItUnlocks )
{
    const auto a = Lock(), b = Lock();
    EXPECT_FALSE( a->lockDate() );
    EXPECT_EQ( UTF8FromText( a->description() ), " path is '" + mPath.native() + "' not currently locked by us" );
    EXPECT_TRUE( a->tryLock() );
    EXPECT_TRUE( fs::is_directory( mPath ) );
    EXPECT_TRUE( UTF8FromText( a->description() ).starts_with( " path is '" + mPath.native() + "' locked by us at " ) );
    EXPECT_EQ( b->lockDate(), a->lockDate() );
    EXPECT_FALSE( b->tryLock() );
    EXPECT_FALSE( a->tryLock() );
    a->unlock();
    EXPECT_EQ( CountFiles(), 0u );
    EXPECT_TRUE( b->tryLock() );
    b->unlock();
    EXPECT_EQ( mWorld.mLog.Take(), std::vector<std::string>() );

    b->unlock();
    EXPECT_EQ( mWorld.mLog.CountAssertions( "i_myLockDate" ), 1u );
}

TEST_F( FileLock, MissingFoldersAboveAreMadeAndAHolderThatGoesUnlocks )
{
    mPath = mFolder / "a" / "b" / "lock";
    {
        const auto lock = Lock();
        EXPECT_TRUE( lock->tryLock() );
    }
    EXPECT_FALSE( fs::exists( mPath ) );
    EXPECT_TRUE( fs::exists( mPath.parent_path() ) );
}

TEST_F( FileLock, TryingForSomeTimeTellsHowLongItTook )
{
    const auto a = Lock(), b = Lock();
    ASSERT_TRUE( b->tryLock() );
    EXPECT_FALSE( a->tryLockFor( 0.5 ) );
    EXPECT_EQ( mWorld.mLog.Take(), std::vector<std::string>( { "File lock failed after 0.50 seconds" } ) );
    EXPECT_NEAR( mSleep.mCount, 500, 1 );

    mSleep.mMeanwhile = [&, until = mWorld.mClock.MonotonicSeconds() + 0.25] {
        if ( fs::exists( mPath ) and mWorld.mClock.MonotonicSeconds() >= until )
            b->unlock();
    };
    EXPECT_TRUE( a->tryLockFor( 0.5 ) );
    EXPECT_EQ( mWorld.mLog.Take(), std::vector<std::string>( { "File lock took more 0.25 seconds" } ) );
    a->unlock();
    EXPECT_TRUE( a->tryLockFor( 0 ) );
    EXPECT_EQ( mWorld.mLog.Take(), std::vector<std::string>() );
}

TEST_F( FileLock, UnlockingLeavesALockThatAnotherHasNow )
{
    for ( const bool isOfTheSameDate : { false, true } )
    {
        const auto a = Lock();
        ASSERT_TRUE( a->tryLock() );
        const auto date = fs::last_write_time( mPath );
        ReplaceLock( 5 );
        if ( isOfTheSameDate )
            fs::last_write_time( mPath, date );
        const ino_t others = Number();
        a->unlock();
        EXPECT_EQ( mWorld.mLog.CountAssertions( "false" ), 1u );
        EXPECT_EQ( Number(), others );
        EXPECT_TRUE( UTF8FromText( a->description() ).ends_with( "not currently locked by us" ) );
        EXPECT_EQ( CountFiles(), 1u );
        (void)mWorld.mLog.Take();
        fs::remove( mPath );
    }
}

TEST_F( FileLock, BreakingOurOwnLockForgetsIt )
{
    const auto a = Lock();
    ASSERT_TRUE( a->tryLock() );
    a->breakLock();
    EXPECT_EQ( CountFiles(), 0u );
    EXPECT_TRUE( UTF8FromText( a->description() ).ends_with( "not currently locked by us" ) );
    EXPECT_TRUE( a->tryLock() );
}

TEST_F( FileLock, OnlyAnOldLockIsBroken )
{
    const auto a = Lock();
    a->breakLockOlderThan( 10 ); // there is none
    fs::create_directory( mPath );
    SetAge( mPath, 9 );
    a->breakLockOlderThan( 10 );
    EXPECT_TRUE( fs::exists( mPath ) );
    SetAge( mPath, 11 );
    a->breakLockOlderThan( 10 );
    EXPECT_EQ( CountFiles(), 0u );
    const auto lines = mWorld.mLog.Take();
    ASSERT_EQ( lines.size(), 1u );
    EXPECT_TRUE( lines[0].starts_with( "File lock needs breaking " + mPath.native() + " 11.0" ) ) << lines[0];
}

TEST_F( FileLock, ALockThatIsTooYoungIsBrokenOnceItHasAged )
{
    const auto a = Lock();
    fs::create_directory( mPath );
    SetAge( mPath, -5 );
    const double start = mWorld.mClock.MonotonicSeconds();
    a->tryThenBreakLockFor( 10 );
    EXPECT_NEAR( mWorld.mClock.MonotonicSeconds() - start, 20, 0.1 ) << "5 seconds old after 10, 15 after 20";
    EXPECT_EQ( mWorld.mLog.CountContaining( "File lock needs breaking" ), 1u );
    EXPECT_EQ( mWorld.mLog.CountContaining( "File lock failed after 10.00 seconds" ), 2u );
    a->unlock();
    EXPECT_EQ( CountFiles(), 0u );
}

TEST_F( FileLock, ALockThatChangedHandsWhileWeWaitedIsntOldWhateverItsDateSays )
{
    const auto a = Lock();
    fs::create_directory( mPath );
    SetAge( mPath, 100 );
    const double start = mWorld.mClock.MonotonicSeconds();
    mSleep.mMeanwhile = [&, isDone = false]() mutable {
        if ( mWorld.mClock.MonotonicSeconds() - start < 5 or std::exchange( isDone, true ) )
            return;
        ReplaceLock( 60 ); // its computer's clock is a minute behind
    };
    a->tryThenBreakLockFor( 10 );
    EXPECT_NEAR( mWorld.mClock.MonotonicSeconds() - start, 20, 0.1 );
}

TEST_F( FileLock, ALockThatComesBetweenTheLookAndTheRemovalGoesBack )
{
    struct Calls final : XFileCalls
    {
        int Rename( const fs::path& inFrom, const fs::path& inTo ) override
        {
            if ( inFrom == mTest.mPath )
                mTest.ReplaceLock( 0 );
            return XFileCalls::Rename( inFrom, inTo );
        }
        int RenameToNew( const fs::path& inFrom, const fs::path& inTo ) override
        {
            if ( mKnowsNew )
                return XFileCalls::RenameToNew( inFrom, inTo );
            errno = EINVAL;
            return -1;
        }
        Calls( FileLock& inTest, bool inKnowsNew ) : mTest( inTest ), mKnowsNew( inKnowsNew ) {}
        FileLock& mTest;
        bool mKnowsNew;
    };
    for ( const bool knowsNew : { true, false } )
    {
        fs::create_directory( mPath );
        SetAge( mPath, 11 );
        const ino_t before = Number();
        Calls calls( *this, knowsNew );
        const XFileCalls::Substitute inUse( calls );
        Lock()->breakLockOlderThan( 10 );
        EXPECT_NE( Number(), 0u );
        EXPECT_NE( Number(), before );
        EXPECT_EQ( CountFiles(), 1u );
    }
}

TEST_F( FileLock, WhatIsNoFolderIsNeverRemoved )
{
    mFolder.Write( "lock", "precious" );
    fs::create_directory( mFolder / "target" );
    const auto a = Lock();
    for ( int i = 0; i < 2; ++i )
    {
        EXPECT_FALSE( a->tryLock() );
        EXPECT_FALSE( a->lockDate() );
        a->breakLock();
        a->breakLockOlderThan( -1e9 );
        EXPECT_TRUE( fs::exists( fs::symlink_status( mPath ) ) );
        fs::remove( mPath );
        fs::create_directory_symlink( mFolder / "target", mPath );
    }
    EXPECT_TRUE( fs::exists( mFolder / "target" ) );
}

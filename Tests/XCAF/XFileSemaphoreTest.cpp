#include "XCAF/XFileSemaphore.h"

#include "Tests/Fakes/ManualSleep.h"
#include "Tests/Fakes/ManualWorld.h"
#include "Tests/Support/HoldingChild.h"
#include "Tests/Support/LogTags.h"
#include "Tests/Support/ScratchFolder.h"
#include "Utility/Work/Random.h"

#include <fcntl.h>
#include <gtest/gtest.h>

namespace
{
struct FileSemaphore : testing::Test
{
    FileSemaphore() { mRaw = ::sem_open( mName.c_str(), O_CREAT, 0644, 1 ); }
    ~FileSemaphore() override
    {
        ::sem_close( mRaw );
        ::sem_unlink( mName.c_str() );
    }

    [[nodiscard]] std::unique_ptr<XFileSemaphore> Semaphore() const
    {
        return XFileSemaphore::lockWithPath( mName, mFolder / "lock file" );
    }
    [[nodiscard]] int Value() const
    {
        int value = -1;
        ::sem_getvalue( mRaw, &value );
        return value;
    }
    [[nodiscard]] double Now() const { return mWorld.mClock.MonotonicSeconds(); }

    ManualWorld mWorld;
    LogTags mTags{ u"XFileSemaphore", mWorld.mLog };
    ManualSleep mSleep{ mWorld.mClock };
    ScratchFolder mFolder;
    const std::string mName = "/KVtest-" + UTF8FromText( uuidString() );
    sem_t* mRaw = nullptr; ///< as a program has it that knows the semaphore alone
};
} // namespace

TEST_F( FileSemaphore, OneHasItUntilItUnlocks )
{
    const auto a = Semaphore(), b = Semaphore();
    EXPECT_TRUE( a->tryLock() );
    EXPECT_EQ( Value(), 0 );
    EXPECT_FALSE( b->tryLock() );
    a->unlock();
    EXPECT_EQ( Value(), 1 );
    EXPECT_TRUE( b->tryLock() );
    EXPECT_FALSE( a->tryLock() );
    b->unlock();
    EXPECT_EQ( Value(), 1 );
    EXPECT_EQ( mWorld.mLog.Take(), std::vector<std::string>() );
}

TEST_F( FileSemaphore, LockingTwiceAndUnlockingWithoutALockChangeNothing )
{
    const auto a = Semaphore();
    a->unlock();
    EXPECT_EQ( mWorld.mLog.CountAssertions( "i_locked" ), 1u );
    EXPECT_EQ( Value(), 1 );
    EXPECT_TRUE( a->tryLock() );
    EXPECT_FALSE( a->tryLock() );
    a->forceLockAfter( 10 );
    EXPECT_EQ( mWorld.mLog.CountAssertions( "!i_locked" ), 2u );
    EXPECT_EQ( Value(), 0 );
}

TEST_F( FileSemaphore, AnotherProgramThatHasTheSemaphoreAloneKeepsUsOut )
{
    const auto a = Semaphore();
    ASSERT_EQ( ::sem_trywait( mRaw ), 0 );
    EXPECT_FALSE( a->tryLockFor( 0.5 ) );
    EXPECT_EQ( mWorld.mLog.Take(), std::vector<std::string>( { "File tryLock failed after 0.50 seconds" } ) );
    mSleep.mMeanwhile = [&, until = Now() + 0.25, isDone = false]() mutable {
        if ( Now() >= until and not std::exchange( isDone, true ) )
            ::sem_post( mRaw );
    };
    EXPECT_TRUE( a->tryLockFor( 0.5 ) );
    EXPECT_EQ( mWorld.mLog.Take(), std::vector<std::string>( { "File tryLock took 0.25 seconds" } ) );
}

TEST_F( FileSemaphore, AHolderThatWasKilledDelaysTheNextByTenSecondsAndASecond )
{
    std::unique_ptr<XFileSemaphore> childs;
    HoldingChild child( [&] {
        childs = Semaphore();
        return childs->tryLock();
    } );
    ASSERT_TRUE( child.HasIt() );
    const auto a = Semaphore();
    EXPECT_FALSE( a->tryLock() );
    child.Kill();
    const double start = Now();
    a->forceLockAfter( 10 );
    EXPECT_NEAR( Now() - start, 11, 0.1 );
    EXPECT_EQ( mWorld.mLog.CountContaining( "Break semaphore" ), 1u );
    EXPECT_EQ( Value(), 0 );
    a->unlock();
    EXPECT_EQ( Value(), 1 );
}

TEST_F( FileSemaphore, BreakingTheLockOfALivingHolderLetsNoTwoOfUsInAndHeals )
{
    const auto holder = Semaphore(), a = Semaphore(), b = Semaphore();
    ASSERT_TRUE( holder->tryLock() );
    bool isHeld = true;
    mSleep.mMeanwhile = [&, until = Now() + 25] {
        if ( not isHeld or Now() < until )
            return;
        EXPECT_EQ( Value(), 2 ) << "posted by force twice";
        holder->unlock();
        isHeld = false;
    };
    a->forceLockAfter( 10 );
    EXPECT_FALSE( isHeld );
    EXPECT_EQ( mWorld.mLog.CountContaining( "Break semaphore" ), 2u );
    EXPECT_EQ( Value(), 0 );
    EXPECT_FALSE( b->tryLock() );
    EXPECT_NE( ::sem_trywait( mRaw ), 0 ) << "nor does another program get in";
    a->unlock();
    EXPECT_EQ( Value(), 1 );
}

TEST_F( FileSemaphore, ACountAboveOneIsBroughtBack )
{
    for ( int i = 0; i < 3; ++i )
        ::sem_post( mRaw );
    const auto a = Semaphore();
    EXPECT_TRUE( a->tryLock() );
    EXPECT_EQ( Value(), 0 );
    for ( int i = 0; i < 3; ++i )
        ::sem_post( mRaw );
    a->unlock();
    EXPECT_EQ( Value(), 1 );
}

TEST_F( FileSemaphore, EachOfTheTwoLocksDoesWhereTheOtherCantBeHad )
{
    const auto withoutFile = XFileSemaphore::lockWithPath( mName, mFolder / "none" / "lock file" );
    EXPECT_TRUE( withoutFile->tryLock() );
    EXPECT_EQ( Value(), 0 );
    withoutFile->unlock();
    EXPECT_TRUE( withoutFile->tryLock() );
    withoutFile->unlock();
    EXPECT_EQ( mWorld.mLog.CountContaining( "XFileSemaphore couldn't open" ), 1u ) << "once";

    const auto a = XFileSemaphore::lockWithPath( "/not/a name", mFolder / "lock file" );
    const auto b = XFileSemaphore::lockWithPath( "/not/a name", mFolder / "lock file" );
    EXPECT_EQ( mWorld.mLog.CountContaining( "Can't open semaphore /not/a name" ), 2u );
    a->forceLockAfter( 10 );
    EXPECT_FALSE( b->tryLock() );
    a->unlock();
    EXPECT_TRUE( b->tryLock() );
}

TEST_F( FileSemaphore, ALinkInPlaceOfTheLockFileIsntFollowed )
{
    std::filesystem::create_symlink( mFolder / "elsewhere", mFolder / "lock file" );
    EXPECT_TRUE( Semaphore()->tryLock() );
    EXPECT_FALSE( std::filesystem::exists( mFolder / "elsewhere" ) );
}

#include "Defines/KVFolderLock.h"

#include "Defines/KVPreferences.h"
#include "Tests/Support/HoldingChild.h"
#include "Tests/Support/ScratchFolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace
{
using Result = XKernelLock::Result;
constexpr char kName[] = ".Korvalen Editor Lock";

struct FolderLock : testing::Test
{
    FolderLock() { KVPreferences::UseFolder( mFolder.Path() ); }
    ~FolderLock() override { KVPreferences::UseFolder( {} ); }

    ScratchFolder mFolder;
    KVFolderLock mA, mB;
};
} // namespace

TEST_F( FolderLock, OneHasItAndTellsItsProcessUntilItIsReleased )
{
    const mode_t mask = ::umask( 0 );
    EXPECT_EQ( mA.TryTake(), Result::kTaken );
    ::umask( mask );
    EXPECT_TRUE( mA.IsHeld() );
    struct stat status = {};
    ASSERT_EQ( ::stat( ( mFolder / kName ).c_str(), &status ), 0 );
    EXPECT_EQ( status.st_mode & 07777u, 0600u );

    EXPECT_EQ( mB.TryTake(), Result::kHeldByAnother );
    EXPECT_EQ( mB.HolderProcess(), ::getpid() );
    mA.Release();
    EXPECT_EQ( mB.TryTake(), Result::kTaken );
    EXPECT_FALSE( mB.HolderProcess() );
    EXPECT_EQ( mA.TryTake(), Result::kHeldByAnother );
}

TEST_F( FolderLock, AKilledHolderGivesItUp )
{
    HoldingChild child( [this] { return mA.TryTake() == Result::kTaken; } );
    ASSERT_TRUE( child.HasIt() );
    EXPECT_EQ( mB.TryTake(), Result::kHeldByAnother );
    EXPECT_EQ( mB.HolderProcess(), child.Process() );
    child.Kill();
    EXPECT_EQ( mB.TryTake(), Result::kTaken );
}

TEST_F( FolderLock, OnlyAWholeNumberNamesAProcess )
{
    for ( const char* text : { "", "12", "x\n", "-3\n", "0\n", "99999999999999999999999\n", "12 34\n" } )
    {
        EXPECT_EQ( mA.TryTake(), Result::kTaken );
        mFolder.Write( kName, text );
        EXPECT_EQ( mB.TryTake(), Result::kHeldByAnother );
        EXPECT_FALSE( mB.HolderProcess() ) << text;
        mA.Release();
    }
}

TEST_F( FolderLock, WhatIsNoFileInItsPlaceIsAnErrorAndLeftAlone )
{
    namespace fs = std::filesystem;
    mFolder.Write( "precious", "bytes" );
    fs::create_symlink( mFolder / "precious", mFolder / kName );
    EXPECT_EQ( mA.TryTake(), Result::kFailed );
    ASSERT_TRUE( mA.Error() );
    EXPECT_EQ( mA.Error()->mPath, mFolder / kName );
    EXPECT_EQ( mFolder.Read( "precious" ), "bytes" );

    fs::remove( mFolder / kName );
    ASSERT_EQ( ::mkfifo( ( mFolder / kName ).c_str(), 0600 ), 0 );
    EXPECT_EQ( mA.TryTake(), Result::kFailed );
    EXPECT_FALSE( mA.IsHeld() );
    fs::remove( mFolder / kName );
    EXPECT_EQ( mA.TryTake(), Result::kTaken );
    EXPECT_FALSE( mA.Error() );
}

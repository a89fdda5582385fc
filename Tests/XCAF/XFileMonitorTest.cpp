#include "XCAF/XFileMonitor.h"

#include "Tests/Fakes/ManualWorld.h"
#include "Tests/Support/LogTags.h"
#include "Tests/Support/ScratchFolder.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace
{
struct FileMonitor : testing::Test
{
    void Watch()
    {
        mMonitor = XFileMonitor::fileMonitorWithPath( mFile, [this] { ++mCount; } );
        mWorld.mWork.RunAll();
    }
    /// How often the block was called in so many seconds.
    [[nodiscard]] int CallsIn( double inSeconds )
    {
        mCount = 0;
        mWorld.mWork.Advance( inSeconds );
        return mCount;
    }
    void ReplaceByRename( std::string_view inBytes ) const
    {
        mFolder.Write( "new", inBytes );
        fs::rename( mFolder / "new", mFile );
    }
    /// A change of the date alone; it is another each time.
    void Touch() const { fs::last_write_time( mFile, fs::last_write_time( mFile ) + std::chrono::nanoseconds( 1 ) ); }

    ManualWorld mWorld;
    LogTags mTags{ u"XFileMonitor", mWorld.mLog };
    ScratchFolder mFolder;
    fs::path mFile = mFolder / "file";
    int mCount = 0;
    std::shared_ptr<XFileMonitor> mMonitor;
};
} // namespace

TEST_F( FileMonitor, ChangesOfSizeAndDateAreToldWithinASecondAndOnce )
{
    mFolder.Write( "file", "a" );
    Watch();
    EXPECT_EQ( CallsIn( 10 ), 0 ) << "nothing has changed";
    Touch();
    EXPECT_EQ( CallsIn( 0.9 ), 0 );
    EXPECT_EQ( CallsIn( 0.2 ), 1 );
    EXPECT_EQ(
        mWorld.mLog.Take(), std::vector<std::string>( { "File " + mFile.native() + " changed!", "flags 00000002!" } ) );
    EXPECT_EQ( CallsIn( 10 ), 0 );

    mFolder.Write( "file", "longer" );
    EXPECT_EQ( CallsIn( 1 ), 1 );
    EXPECT_EQ( mWorld.mLog.CountContaining( "flags 00000006!" ), 1u );
    const auto date = fs::last_write_time( mFile );
    mFolder.Write( "file", "short" );
    fs::last_write_time( mFile, date );
    EXPECT_EQ( CallsIn( 2 ), 1 ) << "after the second of opening anew";
}

TEST_F( FileMonitor, AReplacedFileIsWatchedOn )
{
    mFolder.Write( "file", "a" );
    Watch();
    for ( const char* bytes : { "bb", "ccc", "d" } )
    {
        ReplaceByRename( bytes );
        EXPECT_EQ( CallsIn( 2 ), 1 ) << bytes;
        Touch();
        EXPECT_EQ( CallsIn( 2 ), 1 ) << bytes;
    }
    EXPECT_EQ( CallsIn( 10 ), 0 );
}

TEST_F( FileMonitor, AFileThatGoesAndComesIsTold )
{
    Watch();
    EXPECT_EQ( CallsIn( 5 ), 0 );
    mFolder.Write( "file", "a" );
    EXPECT_EQ( CallsIn( 1 ), 1 );
    fs::remove( mFile );
    EXPECT_EQ( CallsIn( 5 ), 0 ) << "it has no date to tell";
    EXPECT_EQ( mWorld.mLog.CountContaining( "flags 00000001!" ), 1u );
    mFolder.Write( "file", "bb" );
    EXPECT_EQ( CallsIn( 1 ), 1 );
}

TEST_F( FileMonitor, AChangeBetweenTheStartAndTheFirstLookIsTold )
{
    mFolder.Write( "file", "a" );
    mMonitor = XFileMonitor::fileMonitorWithPath( mFile, [this] { ++mCount; } );
    mFolder.Write( "file", "bb" );
    EXPECT_EQ( CallsIn( 0 ), 1 );
}

TEST_F( FileMonitor, NobodyIsToldOnceItIsGoneAndItLooksOnceASecond )
{
    mFolder.Write( "file", "a" );
    Watch();
    EXPECT_EQ( mWorld.mWork.CountWakeUps(), 1u );
    mMonitor.reset();
    mFolder.Write( "file", "bb" );
    EXPECT_EQ( CallsIn( 10 ), 0 );
    EXPECT_EQ( mWorld.mWork.CountWakeUps(), 0u );
}

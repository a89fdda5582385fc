#include "App/KVAppDetails.h"

#include "Tests/App/EngineWorld.h"

#include <cmath>
#include <cstring>

namespace
{
namespace fs = std::filesystem;

struct EngineDetails : EngineWorld
{
    /// The details that process 7 has left, if its file has these bytes.
    KVAppDetails FromFile( const std::string& inBytes )
    {
        std::ofstream( KVAppDetails::FileFor( 7 ), std::ios::binary ) << inBytes;
        return KVAppDetails::GetAppDetailsFromEngine( 7 );
    }
    /// The file as its rule tells it: a double and an integer, eight bytes each.
    static std::string Bytes( double inTime, std::int64_t inSize )
    {
        std::string bytes( 16, '\0' );
        std::memcpy( bytes.data(), &inTime, 8 );
        std::memcpy( bytes.data() + 8, &inSize, 8 );
        return bytes;
    }
};
} // namespace

TEST_F( EngineDetails, AFileOfAnythingButSixteenBytesOfDetailsIsNull )
{
    const std::string good = Bytes( 700000000.5, 12345 );
    EXPECT_TRUE( FromFile( good ).Same( { 700000000.5, 12345 } ) );
    for ( const std::string& bytes : { std::string(), good.substr( 0, 15 ), good + "x", good + good, Bytes( NAN, 1 ),
              Bytes( INFINITY, 1 ), Bytes( 1, -1 ), Bytes( 0, 0 ) } )
        EXPECT_TRUE( FromFile( bytes ).IsNull() ) << bytes.size();
    fs::remove( KVAppDetails::FileFor( 7 ) );
    EXPECT_TRUE( KVAppDetails::GetAppDetailsFromEngine( 7 ).IsNull() );
    mFolder.Write( "planted", good );
    fs::create_symlink( mFolder / "planted", KVAppDetails::FileFor( 7 ) );
    EXPECT_TRUE( KVAppDetails::GetAppDetailsFromEngine( 7 ).IsNull() );
}

TEST_F( EngineDetails, TheyTellAnExecutableByTimeAndSize )
{
    const KVAppDetails details = KVAppDetails::GetCurrent();
    EXPECT_FALSE( details.IsNull() );
    EXPECT_TRUE( details.Same( KVAppDetails::FromBytes( details.ToBytes() ) ) );
    const auto time = fs::last_write_time( mFolder / "engine" );
    mFolder.Write( "longer", "the engine, longer" );
    fs::last_write_time( mFolder / "longer", time );
    EXPECT_FALSE( details.Same( KVAppDetails::ForExecutable( mFolder / "longer" ) ) );
    fs::last_write_time( mFolder / "engine", time + std::chrono::microseconds( 1 ) );
    EXPECT_FALSE( details.Same( KVAppDetails::GetCurrent() ) );
    fs::last_write_time( mFolder / "engine", time );
    EXPECT_TRUE( details.Same( KVAppDetails::GetCurrent() ) );
    EXPECT_TRUE( KVAppDetails::ForExecutable( mFolder.Path() ).IsNull() );
    mApplications.mEngine.reset();
    EXPECT_TRUE( KVAppDetails::GetCurrent().IsNull() );
}

TEST_F( EngineDetails, TimesAreTheSameUpToTheirRounding )
{
    constexpr double kTime = 700000000, kRounding = 0x1p-23; // of times of that size
    for ( int steps = 0; steps <= 4; ++steps )
    {
        const bool isSame = steps * kRounding <= 3.5011993304578937e-07;
        EXPECT_EQ( KVAppDetails( kTime, 1 ).Same( { kTime + steps * kRounding, 1 } ), isSame ) << steps;
        EXPECT_EQ( KVAppDetails( kTime + steps * kRounding, 1 ).Same( { kTime, 1 } ), isSame ) << steps;
    }
}

TEST_F( EngineDetails, StartClearsTheFolderOfWhatBelongsToNoProcess )
{
    KVAppDetails::Start(); // no engine has ever run
    mApplications.Run( 7, mFolder / "engine" );
    (void)FromFile( Bytes( 1, 1 ) );
    const fs::path folder = KVAppDetails::FileFor( 7 ).parent_path();
    EXPECT_EQ( folder, mFolder / "Running Engine Details" );
    const char* const kOld[] = { "8", "77", "0", "99999999999999999999999999" };
    const char* const kUnknown[] = { "7x", "-7", " 7", "notes.txt", "\xD9\xA7" };
    for ( const char* const name : kOld )
        mFolder.Write( std::string( "Running Engine Details/" ) + name, name );
    for ( const char* const name : kUnknown )
        mFolder.Write( std::string( "Running Engine Details/" ) + name, name );
    KVAppDetails::Start();
    std::vector<std::string> left;
    for ( const auto& entry : fs::directory_iterator( folder ) )
        left.push_back( entry.path().filename() );
    EXPECT_EQ( left, std::vector<std::string>{ "7" } );
    EXPECT_EQ( mTrash.mTrashed.size(), std::size( kUnknown ) );
    const auto lines = mWorld.mLog.Take();
    EXPECT_EQ( std::count( lines.begin(), lines.end(), "Delete old file " + folder.native() + "/77" ), 1 );
    EXPECT_EQ(
        std::count( lines.begin(), lines.end(), "Unknown file " + folder.native() + "/notes.txt, trashing" ), 1 );
    EXPECT_EQ( lines.size(), std::size( kOld ) + std::size( kUnknown ) );
}

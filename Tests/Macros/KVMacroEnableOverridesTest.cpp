#include "Macros/KVMacroEnableOverrides.h"

#include "Tests/Support/ScratchFolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <map>
#include <sys/file.h>
#include <unistd.h>

using namespace std::string_literals;

namespace
{
constexpr char kName[] = "Korvalen Enable Overrides";

std::string Record( char inState, const std::string& inUID )
{
    std::string record( 1, inState );
    return record.append( ":" ).append( inUID ).append( 1, '\0' );
}

std::string UID( char inDigit )
{
    std::string uid = "00000000-0000-4000-8000-000000000000";
    uid.front() = inDigit;
    return uid;
}

struct EnableOverrides : testing::Test
{
    [[nodiscard]] std::optional<KVMacroEnableOverrides> Get()
    {
        return KVMacroEnableOverrides::Get( mFolder / kName, [this]( double inSeconds ) {
            mWaited.push_back( inSeconds );
            if ( mWhileWaiting )
                mWhileWaiting();
        } );
    }

    ScratchFolder mFolder;
    std::vector<double> mWaited;
    std::function<void()> mWhileWaiting;
};
} // namespace

TEST_F( EnableOverrides, RecordsAreTakenUntilWhatIsNoneAndTheFileIsEmptied )
{
    const std::string a = UID( 'A' ), b = UID( 'B' ), c = UID( 'C' );
    using States = std::map<std::string, bool>;
    struct Case
    {
        const char* mWhat;
        std::string mBytes;
        States mStates;
    };
    std::string many;
    States all;
    for ( char digit = 'A'; digit <= 'Z'; ++digit )
    {
        many += Record( '1', UID( digit ) );
        all[UID( digit )] = true;
    }
    const Case kCases[] = {
        { "nothing", "", {} },
        { "both states", Record( '0', a ) + Record( '1', b ), { { a, false }, { b, true } } },
        { "the last of equal UIDs counts", Record( '0', a ) + Record( '1', a ), { { a, true } } },
        { "more than a buffer", many, all },
        { "under 35 bytes", Record( '1', std::string( 31, 'x' ) ), {} },
        { "just 35 bytes", Record( '1', std::string( 32, 'x' ) ), { { std::string( 32, 'x' ), true } } },
        { "a short record with more behind it", Record( '1', "s" ) + Record( '0', a ),
            { { "s", true }, { a, false } } },
        { "another state", Record( '1', a ) + Record( '2', b ) + Record( '1', c ), { { a, true } } },
        { "no colon", Record( '1', a ) + "1;" + b + '\0' + Record( '1', c ), { { a, true } } },
        { "no zero at the end", Record( '1', a ) + "1:" + b, { { a, true } } },
        { "the longest", Record( '1', std::string( 125, 'x' ) ), { { std::string( 125, 'x' ), true } } },
        { "too long", Record( '1', a ) + Record( '1', std::string( 126, 'x' ) ) + Record( '1', b ), { { a, true } } },
        { "junk", std::string( 300, '\xFF' ), {} },
    };
    for ( const auto& [what, bytes, states] : kCases )
    {
        mFolder.Write( kName, bytes );
        const auto overrides = Get();
        EXPECT_EQ( overrides.has_value(), not states.empty() ) << what;
        EXPECT_EQ( overrides ? overrides->GetCount() : 0, states.size() ) << what;
        for ( const auto& [uid, enabled] : states )
            EXPECT_EQ( overrides->StateFor( XText( XPlistString::MakeUTF8( uid ) ) ), enabled ) << what << uid;
        EXPECT_EQ( std::filesystem::file_size( mFolder / kName ), 0u ) << what;
        EXPECT_FALSE( Get() ) << "they are used once";
    }
    EXPECT_TRUE( mWaited.empty() );
}

TEST_F( EnableOverrides, AMissingFolderIsNoReasonToWait )
{
    EXPECT_FALSE(
        KVMacroEnableOverrides::Get( mFolder / "none" / kName, [this]( double ) { mWaited.push_back( 0 ); } ) );
    EXPECT_TRUE( mWaited.empty() );
    EXPECT_FALSE( Get() );
    EXPECT_TRUE( std::filesystem::exists( mFolder / kName ) ) << "a file that is missing is made";
}

TEST_F( EnableOverrides, ALockIsWaitedForOneHundredTries )
{
    mFolder.Write( kName, Record( '1', UID( 'A' ) ) );
    const int engine = open( ( mFolder / kName ).c_str(), O_RDWR );
    ASSERT_EQ( flock( engine, LOCK_EX ), 0 );
    EXPECT_FALSE( Get() );
    EXPECT_EQ( mWaited, std::vector<double>( 99, 500e-6 ) );
    EXPECT_NE( mFolder.Read( kName ), "" ) << "what couldn't be read is kept";

    mWaited.clear();
    mWhileWaiting = [&] {
        if ( mWaited.size() == 99 )
            flock( engine, LOCK_UN );
    };
    EXPECT_TRUE( Get() ) << "the last try counts";
    close( engine );
}

TEST_F( EnableOverrides, ALinkIsNotFollowed )
{
    mFolder.Write( "precious", Record( '1', UID( 'A' ) ) );
    std::filesystem::create_symlink( mFolder / "precious", mFolder / kName );
    EXPECT_FALSE( Get() );
    EXPECT_EQ( mFolder.Read( "precious" ), Record( '1', UID( 'A' ) ) );
}

#include "Macros/KVMacroEnableOverrides.h"

#include "Defines/KVPreferences.h"
#include "Defines/SetAside.h"
#include "Tests/Fakes/ManualSleep.h"
#include "Tests/Fakes/ManualWorld.h"
#include "Tests/Support/ScratchFolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <map>
#include <sys/file.h>
#include <sys/stat.h>
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
    EnableOverrides() { KVPreferences::UseFolder( mFolder.Path() ); }
    ~EnableOverrides() override { KVPreferences::UseFolder( {} ); }
    /// The bytes of the copies, the newest first.
    [[nodiscard]] std::vector<std::string> Copies() const
    {
        std::vector<std::string> copies;
        for ( const auto& entry : SetAside::List( SetAside::Kind::kOverrides ) )
            copies.push_back( mFolder.Read( "Set Aside/" + entry.mPath.filename().native() ) );
        return copies;
    }
    [[nodiscard]] std::optional<KVMacroEnableOverrides> Get()
    {
        return KVMacroEnableOverrides::Get( mFolder / kName, [this]( double inSeconds ) {
            mWaited.push_back( inSeconds );
            if ( mWhileWaiting )
                mWhileWaiting();
        } );
    }

    ScratchFolder mFolder;
    ManualWorld mWorld;
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

TEST_F( EnableOverrides, ACopyStandsAsideUntilASaveThatHasThem )
{
    using Texts = std::vector<std::string>;
    const std::string first = Record( '1', UID( 'A' ) ), second = Record( '0', UID( 'A' ) );
    const auto before = KVMacroEnableOverrides::CountTaken();
    mFolder.Write( kName, first );
    EXPECT_TRUE( Get() );
    EXPECT_EQ( Copies(), Texts( { first } ) );
    KVMacroEnableOverrides::DidSave( before );
    EXPECT_EQ( Copies(), Texts( { first } ) ) << "the bytes of that save were built before";

    const auto between = KVMacroEnableOverrides::CountTaken();
    mFolder.Write( kName, second );
    EXPECT_TRUE( Get() );
    EXPECT_EQ( Copies(), Texts( { second, first } ) );
    KVMacroEnableOverrides::DidSave( between );
    EXPECT_EQ( Copies(), Texts( { second } ) );
    KVMacroEnableOverrides::DidSave( KVMacroEnableOverrides::CountTaken() );
    EXPECT_EQ( Copies(), Texts() );
}

TEST_F( EnableOverrides, TheCopyOfAFileWithABadRecordStays )
{
    const std::string good = Record( '1', UID( 'A' ) );
    const std::string bad[] = { good + "2:" + UID( 'B' ) + '\0', good + "1:" + UID( 'B' ), good + "1:" };
    for ( const std::string& bytes : bad )
    {
        mFolder.Write( kName, bytes );
        const auto overrides = Get();
        ASSERT_TRUE( overrides );
        EXPECT_EQ( overrides->GetCount(), 1u ) << "a last record that isn't whole counts for nothing";
        KVMacroEnableOverrides::DidSave( KVMacroEnableOverrides::CountTaken() );
        ASSERT_FALSE( Copies().empty() );
        EXPECT_EQ( Copies().front(), bytes );
    }
    EXPECT_EQ( Copies().size(), 3u );
}

TEST_F( EnableOverrides, WithoutACopyTheyAreLeftForTheNextTime )
{
    mFolder.Write( kName, Record( '1', UID( 'A' ) ) );
    mFolder.Write( "Set Aside", "a file in the way" );
    EXPECT_FALSE( Get() );
    EXPECT_NE( mFolder.Read( kName ), "" );
    std::filesystem::remove( mFolder / "Set Aside" );
    EXPECT_TRUE( Get() );
    EXPECT_EQ( mFolder.Read( kName ), "" );
}

TEST_F( EnableOverrides, AFileThatCantBeReadToItsEndIsLeft )
{
    struct BadDisk final : XFileCalls
    {
        std::ptrdiff_t Read( int inFile, std::span<std::uint8_t> outBytes ) override
        {
            if ( mCount++ == 0 )
                return XFileCalls::Read( inFile, outBytes.first( 39 ) );
            errno = EIO;
            return -1;
        }
        int mCount = 0;
    } disk;
    const std::string bytes = Record( '1', UID( 'A' ) ) + Record( '1', UID( 'B' ) );
    mFolder.Write( kName, bytes );
    {
        const XFileCalls::Substitute inUse( disk );
        EXPECT_FALSE( Get() );
    }
    EXPECT_EQ( mFolder.Read( kName ), bytes );
    EXPECT_EQ( Get()->GetCount(), 2u );
}

TEST_F( EnableOverrides, AFileThatIsMadeIsForTheGroupTooAndOneThatIsThereKeepsItsMode )
{
    const auto ModeOf = [this] {
        struct stat status = {};
        return ::stat( ( mFolder / kName ).c_str(), &status ) == 0 ? status.st_mode & 07777 : 0;
    };
    const mode_t mask = ::umask( 077 );
    ManualSleep sleep( mWorld.mClock );
    EXPECT_FALSE( KVMacroEnableOverrides::Get() );
    ::umask( mask );
    EXPECT_EQ( ModeOf(), 0660u );
    ASSERT_EQ( ::chmod( ( mFolder / kName ).c_str(), 0640 ), 0 );
    EXPECT_FALSE( KVMacroEnableOverrides::Get() );
    EXPECT_EQ( ModeOf(), 0640u );
    EXPECT_EQ( sleep.mCount, 0 );
}

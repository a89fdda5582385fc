#include "Defines/SetAside.h"

#include "Defines/KVPreferences.h"
#include "Tests/Fakes/ManualWorld.h"
#include "Tests/Support/ScratchFolder.h"
#include "Utility/Work/Random.h"

#include <algorithm>
#include <cerrno>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sys/stat.h>

namespace fs = std::filesystem;

namespace
{
using SetAside::Entry;
using SetAside::Kind;

std::span<const std::uint8_t> Bytes( std::string_view inText )
{
    return { reinterpret_cast<const std::uint8_t*>( inText.data() ), inText.size() };
}

std::string Content( const fs::path& inPath )
{
    std::ifstream stream( inPath, std::ios::binary );
    return { std::istreambuf_iterator<char>( stream ), {} };
}

mode_t ModeOf( const fs::path& inPath )
{
    struct stat status = {};
    return ::stat( inPath.c_str(), &status ) == 0 ? status.st_mode & 07777 : 0;
}

/// No disk to wait for: what is there is looked at by the same kernel.
struct QuickDisk : XFileCalls
{
    int FSync( int ) override { return 0; }
};

struct Aside : testing::Test
{
    Aside() { KVPreferences::UseFolder( mFolder.Path() ); }
    ~Aside() override { KVPreferences::UseFolder( {} ); }

    [[nodiscard]] static std::optional<Entry> Keep( std::string_view inText, Kind inKind = Kind::kMacrosFile )
    {
        Entry entry;
        return SetAside::Keep( inKind, Bytes( inText ), u"a test", &entry ) ? std::nullopt : std::optional( entry );
    }
    /// The bytes of what is listed, the newest first.
    [[nodiscard]] static std::vector<std::string> Contents( const std::vector<Entry>& inEntries = SetAside::List() )
    {
        std::vector<std::string> contents;
        for ( const Entry& entry : inEntries )
            contents.push_back( Content( entry.mPath ) );
        return contents;
    }
    using Texts = std::vector<std::string>;

    ScratchFolder mFolder;
    fs::path mAside = mFolder / "Set Aside";
    ManualWorld mWorld;
    QuickDisk mDisk;
    XFileCalls::Substitute mDiskInUse{ mDisk };
};
} // namespace

TEST_F( Aside, WhatIsKeptIsListedWithAllThatIsKnownOfIt )
{
    mWorld.mClock.SetNow( 86400.0 * 365 + 3661.5 );
    const auto entry = Keep( "bytes", Kind::kReceived );
    ASSERT_TRUE( entry );
    // The digest by the tool sha256sum.
    EXPECT_EQ( entry->mPath, mAside / "Before Received 2002-01-01T01-01-01Z 000001 277089d91c0bdf4f" );
    EXPECT_EQ( Content( entry->mPath ), "bytes" );
    const auto list = SetAside::List( Kind::kReceived );
    ASSERT_EQ( list.size(), 1u );
    EXPECT_EQ( list[0].mPath, entry->mPath );
    EXPECT_EQ( list[0].mTime, 86400.0 * 365 + 3661 );
    EXPECT_EQ( list[0].mSize, 5u );
    EXPECT_EQ( list[0].mDigest, entry->mDigest );
    EXPECT_TRUE( SetAside::List( Kind::kShareFile ).empty() );
    SetAside::Remove( *entry );
    EXPECT_TRUE( SetAside::List().empty() );
    SetAside::Remove( *entry );
    EXPECT_EQ( mWorld.mLog.CountContaining( "Can't" ), 0u );
}

TEST_F( Aside, NobodyElseReadsIt )
{
    const mode_t mask = ::umask( 0 );
    fs::create_directory( mAside ); // open to all
    const auto entry = Keep( "bytes" );
    ::umask( mask );
    ASSERT_TRUE( entry );
    EXPECT_EQ( ModeOf( entry->mPath ), 0600u );
    EXPECT_EQ( ModeOf( mAside ), 0700u );
}

TEST_F( Aside, EqualBytesOfAKindAreThereOnceAndCountAsNew )
{
    for ( const char* text : { "a", "b", "a" } )
        EXPECT_TRUE( Keep( text ) );
    EXPECT_EQ( Contents(), Texts( { "a", "b" } ) );
    EXPECT_TRUE( Keep( "b", Kind::kShareFile ) );
    EXPECT_EQ( Contents(), Texts( { "b", "a", "b" } ) );
    EXPECT_TRUE( Keep( "" ) );
    EXPECT_EQ( Contents(), Texts( { "", "b", "a", "b" } ) );
}

TEST_F( Aside, ADamagedCopyIsNotTakenForTheBytes )
{
    const auto entry = Keep( "bytes" );
    std::ofstream( entry->mPath ) << "bites";
    EXPECT_TRUE( Keep( "bytes" ) );
    EXPECT_EQ( Contents(), Texts( { "bytes", "bites" } ) );
}

TEST_F( Aside, OtherNamesAreNeitherListedNorCulled )
{
    const std::string good = "Macros 2024-03-01T09-05-59Z 000001 0123456789abcdef";
    const Texts kOthers = {
        "Macros 2024-03-01T09-05-59Z 000001 0123456789abcde",
        "Macros 2024-03-01T09-05-59Z 000001 0123456789ABCDEF",
        "Macros 2024-03-01T09-05-59Z 000001 0123456789abcdeg",
        "Macros 2024-03-01T09-05-59Z 0123456789abcdef",
        "Macros 2024-03-01T09-05-59Z +00001 0123456789abcdef",
        "Macros 2024-03-01T09-05-59Z 9999999999999999999 0123456789abcdef",
        "Macros 2024-03-01T09-05-59Z  0123456789abcdef",
        "Macros 2024-02-30T09-05-59Z 000001 0123456789abcdef",
        "Macros 2024-03-01T24-05-59Z 000001 0123456789abcdef",
        "Macros 2024-03-01T09-60-59Z 000001 0123456789abcdef",
        "Macros 2024-03-01T09-05-60Z 000001 0123456789abcdef",
        "Macros 2024-03-01T 9-05-59Z 000001 0123456789abcdef",
        "Macros 2024-3-01T09-05-59Z 000001 0123456789abcdef",
        "Macros 2024-03-01T09-05-59 000001 0123456789abcdef",
        "Makros 2024-03-01T09-05-59Z 000001 0123456789abcdef",
        " 2024-03-01T09-05-59Z 000001 0123456789abcdef",
        "2024-03-01T09-05-59Z 000001 0123456789abcdef",
        "notes of mine",
    };
    fs::create_directory( mAside );
    for ( const std::string& name : kOthers )
        mFolder.Write( "Set Aside/" + name, "x" );
    fs::create_directory( mAside / "Macros 2024-03-01T09-05-59Z 000002 0123456789abcdef" );
    fs::create_symlink( mFolder / "x", mAside / "Macros 2024-03-01T09-05-59Z 000003 0123456789abcdef" );
    for ( const Entry& entry : SetAside::List() )
        ADD_FAILURE() << entry.mPath;
    mFolder.Write( "Set Aside/" + good, "x" );
    EXPECT_EQ( SetAside::List().size(), 1u );

    for ( int i = 0; i < 10; ++i )
        EXPECT_TRUE( Keep( std::to_string( i ) ) );
    mWorld.mClock.Advance( 1e9 );
    SetAside::Cull();
    EXPECT_EQ( SetAside::List().size(), 10u );
    EXPECT_FALSE( fs::exists( mAside / good ) );
    for ( const std::string& name : kOthers )
        EXPECT_TRUE( fs::exists( mAside / name ) ) << name;
}

namespace
{
/// A disk on which each byte is a mebibyte, so that a few bytes reach the limit.
struct LargeBytes final : QuickDisk
{
    int GetLinkFacts( const fs::path& inPath, XFileStatus& outFacts ) override
    {
        const int result = XFileCalls::GetLinkFacts( inPath, outFacts );
        outFacts.mSize <<= 20;
        return result;
    }
};
constexpr std::uint64_t kMostMebibytes = 1024;
} // namespace

TEST_F( Aside, OverSimulatedWeeksNothingGoesThatHasToStay )
{
    LargeBytes calls;
    const XFileCalls::Substitute inUse( calls );
    for ( const std::uint64_t seed : { 1u, 2u, 3u, 4u } )
    {
        std::error_code ignored;
        fs::remove_all( mAside, ignored );
        XSeededRandom random( seed );
        // Quiet seeds stay below the limit, the others are beyond it all the time.
        const std::uint64_t most = seed % 2 ? 4 : 300;
        struct Kept
        {
            std::string mText;
            double mTime;
        };
        std::vector<Kept> all; // the oldest first
        const auto Check = [&] {
            const auto contents = Contents();
            const std::set<std::string> there( contents.begin(), contents.end() );
            std::uint64_t newer = 0;
            for ( std::size_t i = all.size(); i-- > 0; )
            {
                const Kept& kept = all[i];
                newer += kept.mText.size();
                const bool mustBeThere = all.size() - i <= 10 or
                    ( mWorld.mClock.Now() - kept.mTime < 7 * 86400.0 and newer <= kMostMebibytes );
                ASSERT_TRUE( there.count( kept.mText ) or not mustBeThere )
                    << seed << " lost number " << i << " of " << all.size();
            }
            std::uint64_t total = 0;
            for ( const std::string& text : there )
                total += text.size();
            ASSERT_TRUE( total <= kMostMebibytes or there.size() <= 10 ) << seed;
        };
        for ( int day = 0; day < 40; ++day )
        {
            for ( std::uint64_t i = random.Next() % 6; i > 0; --i )
            {
                mWorld.mClock.Advance( double( random.Next() % 14400 ) );
                const std::string start = std::to_string( all.size() ) + " ";
                all.push_back( { start + std::string( random.Next() % most, 'x' ), mWorld.mClock.Now() } );
                ASSERT_TRUE( Keep( all.back().mText, Kind( random.Next() % 5 ) ) );
                Check();
            }
            mWorld.mClock.Advance( 43200 );
            SetAside::Cull();
            Check();
        }
        EXPECT_LT( SetAside::List().size(), all.size() ) << "what is old goes";
        for ( int start = 0; start < 10; ++start )
        {
            mWorld.mClock.Advance( 86400 );
            SetAside::Cull();
        }
        EXPECT_EQ( SetAside::List().size(), 10u );
    }
}

TEST_F( Aside, AClockThatIsWrongChangesNoOrderAndCostsLittle )
{
    const auto start = mWorld.mClock.Now();
    Texts newestFirst;
    const auto KeepNext = [&] {
        newestFirst.insert( newestFirst.begin(), std::to_string( newestFirst.size() ) );
        EXPECT_TRUE( Keep( newestFirst.front() ) );
    };
    for ( int i = 0; i < 30; ++i )
        KeepNext();
    for ( const double wrong : { 252455616000.0, -63114076800.0, 1e300, -1e300 } ) // the years 9001, 1 and nonsense
    {
        mWorld.mClock.SetNow( wrong );
        KeepNext();
        SetAside::Cull();
        mWorld.mClock.SetNow( start );
        KeepNext();
        const auto there = Contents();
        ASSERT_GE( there.size(), 10u );
        EXPECT_EQ( there, Texts( newestFirst.begin(), newestFirst.begin() + std::ptrdiff_t( there.size() ) ) );
    }
    EXPECT_GE( SetAside::List().size(), newestFirst.size() - 2 * SetAside::kMostAgedAtOnce )
        << "two starts in a far future take no more than this";
}

TEST_F( Aside, OneRecoverySnapshotStandsAtATimeAndAnEarlierRunsOneBecomesUnsaved )
{
    EXPECT_TRUE( Keep( "burst", Kind::kRecovery ) );
    EXPECT_TRUE( Keep( "burst goes on", Kind::kRecovery ) );
    EXPECT_EQ( Contents( SetAside::List( Kind::kRecovery ) ), Texts( { "burst goes on" } ) );
    EXPECT_TRUE( Keep( "burst goes on", Kind::kRecovery ) );
    EXPECT_EQ( Contents( SetAside::List( Kind::kRecovery ) ), Texts( { "burst goes on" } ) );
    EXPECT_TRUE( SetAside::List( Kind::kUnsaved ).empty() );
    {
        ManualWorld nextRun;
        EXPECT_TRUE( Keep( "next run", Kind::kRecovery ) );
        EXPECT_TRUE( Keep( "next run goes on", Kind::kRecovery ) );
    }
    EXPECT_EQ( Contents( SetAside::List( Kind::kRecovery ) ), Texts( { "next run goes on" } ) );
    EXPECT_EQ( Contents( SetAside::List( Kind::kUnsaved ) ), Texts( { "burst goes on" } ) );
}

TEST_F( Aside, TemporaryFilesOfACrashGoWhenNobodyCanBeWritingThem )
{
    EXPECT_TRUE( Keep( "bytes" ) );
    mFolder.Write( "Set Aside/.dat0123456789abcdef", "half" );
    struct stat status = {};
    ASSERT_EQ( ::stat( ( mAside / ".dat0123456789abcdef" ).c_str(), &status ), 0 );
    mWorld.mClock.SetNow( double( status.st_mtime ) - 978307200 + 60 );
    SetAside::Cull();
    EXPECT_TRUE( fs::exists( mAside / ".dat0123456789abcdef" ) );
    mWorld.mClock.Advance( 3600 );
    SetAside::Cull();
    EXPECT_FALSE( fs::exists( mAside / ".dat0123456789abcdef" ) );
    EXPECT_EQ( Contents(), Texts( { "bytes" } ) );
}

TEST_F( Aside, ALinkInPlaceOfTheFolderLeadsNowhere )
{
    const auto elsewhere = mFolder / "elsewhere";
    fs::create_directory( elsewhere );
    fs::create_directory_symlink( elsewhere, mAside );
    EXPECT_FALSE( Keep( "bytes" ) );
    EXPECT_TRUE( fs::is_empty( elsewhere ) );
    mFolder.Write( "elsewhere/Macros 2024-03-01T09-05-59Z 000001 0123456789abcdef", "bytes" );
    EXPECT_TRUE( SetAside::List().empty() );
}

TEST_F( Aside, AFileIsKeptThroughALinkAndWhatIsNoFileIsAnError )
{
    const auto KeepFile = []( const fs::path& inPath ) {
        return SetAside::KeepFile( Kind::kOther, inPath, u"a test" );
    };
    EXPECT_FALSE( KeepFile( mFolder / "missing" ) );
    EXPECT_TRUE( SetAside::List().empty() );
    mFolder.Write( "file", "bytes" );
    fs::create_symlink( mFolder / "file", mFolder / "link" );
    EXPECT_FALSE( KeepFile( mFolder / "link" ) );
    EXPECT_EQ( Contents(), Texts( { "bytes" } ) );
    ASSERT_EQ( ::mkfifo( ( mFolder / "pipe" ).c_str(), 0600 ), 0 );
    EXPECT_TRUE( KeepFile( mFolder / "pipe" ) ) << "nor does it wait for a writer";
    EXPECT_TRUE( KeepFile( mFolder.Path() ) );

    EXPECT_FALSE( SetAside::MoveFile( Kind::kMacrosFile, mFolder / "missing", u"a test" ) );
    EXPECT_FALSE( SetAside::MoveFile( Kind::kMacrosFile, mFolder / "file", u"a test" ) );
    EXPECT_FALSE( fs::exists( mFolder / "file" ) );
    EXPECT_EQ( Contents(), Texts( { "bytes", "bytes" } ) );
    EXPECT_EQ( SetAside::List().front().mDigest, "0000000000000000" );
}

namespace
{
/// A disk of which the n-th call that changes or opens something fails, or each from there on.
class FailingDisk final : public QuickDisk
{
public:
    FailingDisk( int inFirst, bool inFromThenOn, int inCode )
        : mLeft( inFirst ),
          mStays( inFromThenOn ),
          mCode( inCode )
    {}
    [[nodiscard]] bool HasFailed() const { return mHasFailed; }

    int Open( const fs::path& a, OpenFor b ) override { return Fails() ? -1 : XFileCalls::Open( a, b ); }
    std::ptrdiff_t Read( int a, std::span<std::uint8_t> b ) override { return Fails() ? -1 : XFileCalls::Read( a, b ); }
    std::ptrdiff_t Write( int a, std::span<const std::uint8_t> b ) override
    {
        return Fails() ? -1 : XFileCalls::Write( a, b.first( std::min<std::size_t>( b.size(), 2 ) ) );
    }
    int FSync( int ) override { return Fails() ? -1 : 0; }
    int Rename( const fs::path& a, const fs::path& b ) override { return Fails() ? -1 : XFileCalls::Rename( a, b ); }
    int RenameToNew( const fs::path& a, const fs::path& b ) override
    {
        return Fails() ? -1 : XFileCalls::RenameToNew( a, b );
    }
    int MakeFolder( const fs::path& a ) override { return Fails() ? -1 : XFileCalls::MakeFolder( a ); }
    int ReadFolder( const fs::path& a, std::vector<std::string>& b ) override
    {
        return Fails() ? -1 : XFileCalls::ReadFolder( a, b );
    }
    int GetLinkFacts( const fs::path& a, XFileStatus& b ) override
    {
        return Fails() ? -1 : XFileCalls::GetLinkFacts( a, b );
    }

private:
    bool Fails()
    {
        const bool fails = --mLeft == 0 or ( mStays and mLeft < 0 );
        mHasFailed = mHasFailed or fails;
        errno = fails ? mCode : errno;
        return fails;
    }
    int mLeft;
    bool mStays;
    int mCode;
    bool mHasFailed = false;
};
} // namespace

TEST_F( Aside, WhateverCallFailsOlderBytesStayAndSuccessMeansThatTheBytesAreThere )
{
    for ( const int code : { ENOSPC, EIO } )
    {
        for ( const bool stays : { false, true } )
        {
            bool hasFailed = true;
            for ( int first = 1; hasFailed; ++first )
            {
                std::error_code ignored;
                fs::remove_all( mAside, ignored );
                ASSERT_TRUE( Keep( "old" ) and Keep( "again" ) );
                FailingDisk disk( first, stays, code );
                bool isNewKept = false, isOldKept = false;
                {
                    const XFileCalls::Substitute inUse( disk );
                    isNewKept = Keep( "new bytes" ).has_value();
                    isOldKept = Keep( "old" ).has_value();
                }
                hasFailed = disk.HasFailed();
                EXPECT_TRUE( hasFailed or ( isNewKept and isOldKept ) );
                auto there = Contents();
                EXPECT_EQ( std::count( there.begin(), there.end(), "new bytes" ) == 0 and isNewKept, false ) << first;
                for ( const char* text : { "old", "again" } )
                    EXPECT_GE( std::count( there.begin(), there.end(), text ), 1 ) << text << first;
                for ( const auto& file : fs::directory_iterator( mAside ) )
                    EXPECT_FALSE( file.path().filename().native().starts_with( ".dat" ) ) << first;
                ASSERT_LT( first, 100 );
            }
        }
    }
}

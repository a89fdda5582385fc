#include "Macros/SavedStates.h"
#include "Defines/KVNotices.h"
#include "Defines/KVPreferences.h"
#include "Macros/StateChunks.h"
#include "Tests/Fakes/ManualWorld.h"
#include "Tests/Support/ScratchFolder.h"
#include "Tests/Support/StoppingFileCalls.h"
#include "Utility/Work/Random.h"

#include <gtest/gtest.h>
#include <map>
#include <set>

namespace fs = std::filesystem;

namespace
{
constexpr double kDay = 86400;

MMacroFileDataPtr Data( std::string_view inBytes )
{
    return std::make_shared<const MMacroFileData>( XBytes( inBytes ) );
}

std::string RandomBytes( XSeededRandom& ioRandom, std::size_t inSize )
{
    std::string bytes( inSize, 0 );
    for ( char& byte : bytes )
        byte = char( ioRandom.Next() );
    return bytes;
}

/// Words, which can be packed to less than half.
std::string RandomWords( XSeededRandom& ioRandom, std::size_t inSize )
{
    std::string words;
    while ( words.size() < inSize )
        words += "word" + std::to_string( ioRandom.Next() % 1000 ) + " and then ";
    words.resize( inSize );
    return words;
}

class SavedStatesTest : public testing::Test
{
protected:
    SavedStatesTest() { KVPreferences::UseFolder( mFolder.Path() ); }
    ~SavedStatesTest() override
    {
        SavedStates::SetMostBytesForTesting( SavedStates::kMostBytes );
        KVPreferences::UseFolder( {} );
    }

    std::string Keep( std::string_view inBytes )
    {
        const auto data = Data( inBytes );
        SavedStates::KeepSoon( data );
        SavedStates::WaitForQueue();
        return data->Digest();
    }
    static std::string Loaded( const std::string& inDigest )
    {
        const auto data = SavedStates::Load( inDigest );
        const auto bytes = data ? data->Span() : std::span<const std::uint8_t>();
        return data ? std::string( bytes.begin(), bytes.end() ) : "gone";
    }
    static std::set<std::string> Listed()
    {
        std::set<std::string> digests;
        for ( const SavedStates::State& state : SavedStates::List() )
            digests.insert( state.mDigest );
        return digests;
    }
    [[nodiscard]] fs::path StoreFolder() const { return mFolder.Path() / "Set Aside" / "Saved States"; }
    [[nodiscard]] std::uint64_t BytesOnDisk() const
    {
        std::uint64_t bytes = 0;
        for ( const auto& entry : fs::directory_iterator( StoreFolder() ) )
            bytes += entry.file_size();
        return bytes;
    }
    [[nodiscard]] std::vector<fs::path> Files( const char* inExtension ) const
    {
        std::vector<fs::path> files;
        for ( const auto& entry : fs::directory_iterator( StoreFolder() ) )
        {
            if ( entry.path().extension() == inExtension )
                files.push_back( entry.path() );
        }
        std::sort( files.begin(), files.end() ); // the newest last
        return files;
    }
    /// As after a new start: nothing is known but what is on disk.
    void Restart()
    {
        const XAbsoluteTime now = mWorld->mClock.Now();
        mWorld.reset();
        mWorld = std::make_unique<ManualWorld>();
        mWorld->mClock.SetNow( now );
    }

    StoppingFileCalls mCalls;
    XFileCalls::Substitute mCallsInUse{ mCalls };
    ScratchFolder mFolder;
    std::unique_ptr<ManualWorld> mWorld = std::make_unique<ManualWorld>();
    XSeededRandom mRandom{ 6 };
};
} // namespace

TEST_F( SavedStatesTest, StatesOfEverySizeComeBack )
{
    const std::size_t sizes[] = { 0, 1, 2, StateChunks::kShortest - 1, StateChunks::kShortest, StateChunks::kLongest,
        StateChunks::kLongest + 1, 3 << 20 };
    std::map<std::string, std::string> kept;
    for ( const std::size_t size : sizes )
    {
        for ( const std::string& bytes :
            { RandomBytes( mRandom, size ), RandomWords( mRandom, size ), std::string( size, 'x' ) } )
            kept[Keep( bytes )] = bytes;
    }
    for ( const auto& [digest, bytes] : kept )
        EXPECT_TRUE( Loaded( digest ) == bytes ) << bytes.size();
    EXPECT_EQ( Listed().size(), kept.size() );
}

TEST_F( SavedStatesTest, AStateSharesWhatDidNotChange )
{
    std::string bytes = RandomBytes( mRandom, 4 << 20 );
    Keep( bytes );
    const std::uint64_t before = BytesOnDisk();
    for ( const std::size_t place : { std::size_t( 0 ), bytes.size() / 2, bytes.size() } )
    {
        bytes.insert( place, "a new macro" );
        EXPECT_TRUE( Loaded( Keep( bytes ) ) == bytes );
    }
    // At most the two chunks around each insertion, and three lists.
    EXPECT_LT( BytesOnDisk() - before, 6 * StateChunks::kLongest );
}

TEST_F( SavedStatesTest, APropertyListSharesItsTableOfOffsetsToo )
{
    std::string previous;
    std::uint64_t before = 0;
    for ( const char16_t* const first : { u"a name", u"a longer name" } )
    {
        XMutableArray texts;
        texts.Append( __SafeCFPropertyList::String( first ) );
        for ( int i = 0; i < 200000; ++i )
            texts.Append( __SafeCFPropertyList::Integer( i ) );
        const std::string bytes( WriteBinaryPropertyList( texts.Seal() ).View() );
        before = previous.empty() ? 0 : BytesOnDisk();
        EXPECT_TRUE( Loaded( Keep( bytes ) ) == bytes );
        previous = bytes;
    }
    EXPECT_LT( BytesOnDisk() - before, 4 * StateChunks::kLongest );
}

TEST_F( SavedStatesTest, WhatLooksLikeATableOfOffsetsComesBackWhateverItHolds )
{
    for ( const int entrySize : { 1, 2, 3, 4, 8 } )
    {
        std::string bytes = RandomBytes( mRandom, 20 + std::size_t( entrySize ) * 5000 + 32 );
        const std::size_t trailer = bytes.size() - 32;
        bytes.replace( trailer, 32, std::string( 32, 0 ) );
        bytes[trailer + 6] = char( entrySize );
        bytes[trailer + 14] = char( 5000 >> 8 );
        bytes[trailer + 15] = char( 5000 & 255 );
        bytes[trailer + 31] = 20;
        ASSERT_TRUE( StateChunks::FindOffsetTable( Data( bytes )->Span() ) );
        EXPECT_TRUE( Loaded( Keep( bytes ) ) == bytes ) << entrySize;
    }
}

TEST_F( SavedStatesTest, ChunksAreAboutFortyKiBAndWithinTheirBounds )
{
    const auto data = Data( RandomBytes( mRandom, 8 << 20 ) );
    std::size_t count = 0;
    for ( auto rest = data->Span(); not rest.empty(); ++count )
    {
        const std::size_t length = StateChunks::FirstLength( rest );
        ASSERT_LE( length, StateChunks::kLongest );
        ASSERT_TRUE( length >= StateChunks::kShortest or length == rest.size() );
        rest = rest.subspan( length );
    }
    const double average = double( data->size() ) / double( count );
    EXPECT_GT( average, 16 << 10 );
    EXPECT_LT( average, 64 << 10 );
}

TEST_F( SavedStatesTest, EqualStatesAreKeptOnceWithTheNewerTime )
{
    const std::string first = Keep( "one" ), second = Keep( "two" );
    mWorld->mClock.Advance( 100 );
    Keep( "one" );
    const auto states = SavedStates::List();
    ASSERT_EQ( states.size(), 2u );
    EXPECT_EQ( states[0].mDigest, first );
    EXPECT_DOUBLE_EQ( states[0].mTime, 700000100 );
    EXPECT_EQ( states[0].mSize, 3u );
    EXPECT_EQ( states[1].mDigest, second );
    EXPECT_EQ( Loaded( first ), "one" );
}

TEST_F( SavedStatesTest, ThroughWeeksTheLastDaysAndTheNewestStay )
{
    std::string bytes = RandomWords( mRandom, 300 << 10 );
    std::vector<std::pair<double, std::string>> kept;
    const auto stays = [&]( std::size_t index ) {
        return kept.size() - index <= SavedStates::kFewest or
            mWorld->mClock.Now() - kept[index].first <= SavedStates::kKeepSeconds;
    };
    for ( int day = 0; day < 40; ++day )
    {
        // Some weeks are busy, some are quiet.
        const int saves = day / 10 % 2 == 0 ? 12 : 1;
        for ( int i = 0; i < saves; ++i )
        {
            mWorld->mClock.Advance( kDay / saves );
            bytes.replace( mRandom.Next() % ( bytes.size() - 100 ), 50, RandomWords( mRandom, 40 ) );
            kept.emplace_back( mWorld->mClock.Now(), Keep( bytes ) );
        }
        if ( day % 9 == 0 )
            Restart();
        const auto listed = Listed();
        for ( std::size_t index = 0; index < kept.size(); ++index )
            ASSERT_TRUE( listed.contains( kept[index].second ) or not stays( index ) ) << day << " " << index;
    }
    std::size_t loaded = 0;
    for ( std::size_t index = 0; index < kept.size(); ++index )
        loaded += stays( index ) and Loaded( kept[index].second ) != "gone";
    EXPECT_GE( loaded, SavedStates::kFewest );
    // What nobody keeps is gone from the disk, and few files are left.
    EXPECT_LT( Listed().size(), kept.size() / 2 );
    EXPECT_LT( Files( ".pack" ).size(), 70u );
}

TEST_F( SavedStatesTest, AboveTheLimitTheOldestGoButNeverTheNewestTen )
{
    constexpr std::uint64_t kLimit = 2 << 20;
    SavedStates::SetMostBytesForTesting( kLimit );
    std::vector<std::string> digests;
    for ( int i = 0; i < 40; ++i )
        digests.push_back( Keep( RandomBytes( mRandom, 100 << 10 ) ) );
    EXPECT_LE( BytesOnDisk(), kLimit );
    EXPECT_GT( BytesOnDisk(), kLimit / 2 );
    for ( std::size_t i = digests.size() - Listed().size(); i < digests.size(); ++i )
        EXPECT_TRUE( Loaded( digests[i] ) != "gone" ) << i;

    SavedStates::SetMostBytesForTesting( 1000 );
    digests.push_back( Keep( "small" ) );
    EXPECT_EQ( Listed(), std::set( digests.end() - SavedStates::kNewestAlways, digests.end() ) );
}

TEST_F( SavedStatesTest, AClockThatWentAstrayTakesNothingOutOfTurn )
{
    std::vector<std::string> digests;
    for ( int i = 0; i < 80; ++i )
        digests.push_back( Keep( RandomBytes( mRandom, 100 ) ) );
    mWorld->mClock.SetNow( 2e11 );
    digests.push_back( Keep( "in the far future" ) );
    mWorld->mClock.SetNow( 700000000 );
    digests.push_back( Keep( "back again" ) );
    EXPECT_GE( Listed().size(), digests.size() - 3 );
    EXPECT_EQ( SavedStates::List().front().mDigest, digests.back() );
}

TEST_F( SavedStatesTest, WhereverTheProcessDiesTheStoreStillReads )
{
    SavedStates::SetMostBytesForTesting( 1500 << 10 );
    bool wentThrough = false;
    for ( int call = 1; not wentThrough; call += call < 60 ? 1 : 7 )
    {
        ASSERT_LT( call, 5000 );
        fs::remove_all( mFolder.Path() / "Set Aside" );
        Restart();
        // The states from the eleventh on push others out.
        std::map<std::string, std::string> acknowledged;
        std::vector<std::string> order;
        mCalls.mCount = 0;
        mCalls.mFirst = std::numeric_limits<int>::max();
        for ( int i = 0; i < 11; ++i )
        {
            const std::string bytes = RandomBytes( mRandom, 120 << 10 );
            order.push_back( Keep( bytes ) );
            acknowledged[order.back()] = bytes;
        }
        mCalls.mCount = 0;
        mCalls.mFirst = call;
        for ( int i = 0; i < 3; ++i )
        {
            const std::string bytes = RandomBytes( mRandom, 120 << 10 );
            acknowledged[Data( bytes )->Digest()] = bytes;
            order.push_back( Keep( bytes ) );
        }
        wentThrough = mCalls.mCount < call;

        mCalls.mFirst = std::numeric_limits<int>::max();
        Restart();
        const auto listed = Listed();
        for ( const std::string& digest : listed )
            ASSERT_TRUE( Loaded( digest ) == acknowledged[digest] ) << call;
        for ( std::size_t i = order.size() - 13; i < 11; ++i )
            ASSERT_TRUE( listed.contains( order[i] ) or wentThrough or i < 4 ) << call << " " << i;
        // And it goes on as if nothing had been, without what the death left.
        ASSERT_EQ( Loaded( Keep( "after" ) ), "after" ) << call;
        ASSERT_TRUE( Files( "" ).empty() );
    }
}

TEST_F( SavedStatesTest, ADiskThatIsFullIsToldOnceAndKeepingGoesOnAfterwards )
{
    const std::string first = Keep( "before" );
    mCalls.mCode = ENOSPC;
    mCalls.mFirst = 0;
    Keep( "lost" );
    Keep( "lost too" );
    EXPECT_EQ( mWorld->mLog.CountContaining( "Can't keep a saved state" ), 2u );
    mCalls.mFirst = std::numeric_limits<int>::max();
    EXPECT_EQ( Loaded( Keep( "after" ) ), "after" );
    EXPECT_EQ( Loaded( first ), "before" );
}

TEST_F( SavedStatesTest, DamageIsNeverHandedOutAndTheNextSaveMendsIt )
{
    const std::string bytes = RandomBytes( mRandom, 300 << 10 );
    const std::string digest = Keep( bytes );
    for ( const char* const extension : { ".pack", ".state" } )
    {
        for ( const double place : { 0.0, 0.5, 1.0 } )
        {
            const fs::path damaged = Files( extension ).back();
            const auto offset = std::streamoff( place * double( fs::file_size( damaged ) - 1 ) );
            std::fstream stream( damaged, std::ios::in | std::ios::out | std::ios::binary );
            stream.seekg( offset );
            const char byte = char( stream.get() ^ 1 );
            stream.seekp( offset );
            stream.put( byte );
            stream.close();
            Restart();
            EXPECT_TRUE( Loaded( digest ) == "gone" ) << extension << " " << place;
            EXPECT_EQ( mWorld->mLog.CountContaining( "Can't load the saved state " + digest ), 1u );
            EXPECT_EQ( Keep( bytes ), digest );
            EXPECT_TRUE( Loaded( digest ) == bytes ) << extension << " " << place;
        }
    }
}

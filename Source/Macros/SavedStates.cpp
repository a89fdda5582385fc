// The folder "Set Aside/Saved States" has packs of chunks (see StatePacks), and a file for each state, named
// "0000000012 757382400000 1048576 <digest>.state": a number that grows, so that a clock that is set back doesn't
// change the order; the time in milliseconds; the size; the SHA-256. Its content, numbers little-endian:
//   "KVSTATE1", count (4), CRC-32 of the digests (4), the SHA-256 of each chunk (32)
// The chunks are those of the macros file, of which the table of offsets is stored as differences (see StateChunks).
// A state is there when its file is. So the packs come first, and a state's file goes before its chunks do.
#include "Macros/SavedStates.h"

#include "Defines/KVNotices.h"
#include "Defines/SetAside.h"
#include "Macros/StatePacks.h"
#include "Utility/Text/Localization.h"
#include "Utility/Work/Work.h"
#include "XCAF/XErrorHandler.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <fmt/format.h>
#include <system_error>
#include <zlib.h>

namespace
{
using StateChunks::Digest;

constexpr std::string_view kMagic = "KVSTATE1";
constexpr std::string_view kSuffix = ".state";
constexpr std::size_t kHeadSize = 16, kDigestDigits = 64;
constexpr std::size_t kMostStateFileBytes = std::size_t( 64 ) << 20;
// A clock that stands in the far future for a moment makes everything look old: few states go at a time.
constexpr std::size_t kMostOldAtOnce = 3;
constexpr int kReadAttempts = 3;

std::uint64_t gMostBytes = SavedStates::kMostBytes;

struct StoredState
{
    SavedStates::State mState;
    std::uint64_t mNumber = 0;
    std::string mName;
    std::uint64_t mFileSize = 0; ///< when the store knows it
};

std::filesystem::path Folder()
{
    return SetAside::Folder() / "Saved States";
}

XFileError SystemError( const char* inCall, const std::filesystem::path& inPath )
{
    const int code = errno;
    return { inCall, inPath, code, std::generic_category().message( code ), {} };
}

std::string NameFor( std::uint64_t inNumber, const SavedStates::State& inState )
{
    return fmt::format( "{:010} {} {} {}{}", inNumber, std::int64_t( std::llround( inState.mTime * 1000 ) ),
        inState.mSize, inState.mDigest, kSuffix );
}

template<class Number>
bool TakeNumber( std::string_view& ioName, Number& outNumber )
{
    const char* const end = ioName.data() + ioName.size();
    const auto result = std::from_chars( ioName.data(), end, outNumber );
    if ( result.ec != std::errc() or result.ptr == end or *result.ptr != ' ' )
        return false;
    ioName = { result.ptr + 1, end };
    return true;
}

bool IsDigest( std::string_view inText )
{
    return inText.size() == kDigestDigits and inText.find_first_not_of( "0123456789abcdef" ) == std::string_view::npos;
}

std::optional<StoredState> StateFromName( const std::string& inName )
{
    std::string_view rest = inName;
    StoredState found;
    std::int64_t milliseconds = 0;
    if ( not rest.ends_with( kSuffix ) or not TakeNumber( rest, found.mNumber ) or
        not TakeNumber( rest, milliseconds ) or not TakeNumber( rest, found.mState.mSize ) )
        return {};
    rest.remove_suffix( kSuffix.size() );
    if ( not IsDigest( rest ) )
        return {};
    found.mState.mDigest = rest;
    found.mState.mTime = double( milliseconds ) / 1000;
    found.mName = inName;
    return found;
}

/// The newest first.
std::optional<XFileError> ListStates( std::vector<StoredState>& outStates )
{
    std::vector<std::string> names;
    outStates.clear();
    if ( XFileCalls::Current().ReadFolder( Folder(), names ) != 0 )
    {
        if ( errno == ENOENT )
            return {};
        return SystemError( "list", Folder() );
    }
    for ( const std::string& name : names )
    {
        if ( auto state = StateFromName( name ) )
            outStates.push_back( std::move( *state ) );
    }
    std::sort( outStates.begin(), outStates.end(),
        []( const StoredState& a, const StoredState& b ) { return a.mNumber > b.mNumber; } );
    return {};
}

struct ChunkList
{
    std::vector<Digest> mChunks;
    std::optional<XFileError> mError; ///< the file couldn't be read; it may be sound
    bool mIsDamaged = false;
};

ChunkList ReadChunkList( const std::string& inName )
{
    ChunkList list;
    XFileContent content = ReadWholeFile( Folder() / inName, kMostStateFileBytes );
    list.mError = std::move( content.mError );
    if ( list.mError )
        return list;
    const auto bytes = content.mBytes.Span();
    std::array<std::uint32_t, 2> head{}; // the count, the checksum
    if ( bytes.size() >= kHeadSize )
        std::memcpy( head.data(), bytes.data() + kMagic.size(), sizeof head );
    list.mIsDamaged = bytes.size() < kHeadSize or not content.mBytes.View().starts_with( kMagic ) or
        bytes.size() != kHeadSize + head[0] * sizeof( Digest ) or
        crc32( 0, bytes.data() + kHeadSize, uInt( bytes.size() - kHeadSize ) ) != head[1];
    if ( not list.mIsDamaged and head[0] > 0 )
    {
        list.mChunks.resize( head[0] );
        std::memcpy( list.mChunks.data(), bytes.data() + kHeadSize, bytes.size() - kHeadSize );
    }
    return list;
}

std::vector<std::uint8_t> ChunkListBytes( std::span<const Digest> inChunks )
{
    const auto* const digests = reinterpret_cast<const std::uint8_t*>( inChunks.data() );
    const std::array<std::uint32_t, 2> head{ std::uint32_t( inChunks.size() ),
        std::uint32_t( crc32( 0, digests, uInt( inChunks.size_bytes() ) ) ) };
    const auto* const headBytes = reinterpret_cast<const std::uint8_t*>( head.data() );
    std::vector<std::uint8_t> bytes( kMagic.begin(), kMagic.end() );
    bytes.insert( bytes.end(), headBytes, headBytes + sizeof head );
    bytes.insert( bytes.end(), digests, digests + inChunks.size_bytes() );
    return bytes;
}

std::optional<XFileError> SyncFolder()
{
    XFileCalls& calls = XFileCalls::Current();
    const auto folder = XOpenFile::Open( Folder(), XFileCalls::OpenFor::kFolder, calls );
    if ( not folder or calls.FSync( folder.Get() ) != 0 )
        return SystemError( "sync folder", Folder() );
    return {};
}

/// What a crash left. Nobody else writes here.
void RemoveTemporaryFiles()
{
    std::vector<std::string> names;
    (void)XFileCalls::Current().ReadFolder( Folder(), names );
    for ( const std::string& name : names )
    {
        if ( name.starts_with( XAtomicFile::kTemporaryPrefix ) )
            (void)XFileCalls::Current().Unlink( Folder() / name );
    }
}

/// Keeps and culls; belongs to the queue.
class Store
{
public:
    enum class When : std::uint8_t { kAlways, kMissing };
    [[nodiscard]] std::optional<XFileError> Keep( const MMacroFileData& inData, When inWhen );
    [[nodiscard]] std::optional<XFileError> Cull();
    [[nodiscard]] std::optional<XFileError> Mend( std::span<const Digest> inChunks );
    /// Forgets what is known of the disk; the next call looks anew. After an error.
    void Close() { mPacks.reset(); }

private:
    [[nodiscard]] std::optional<XFileError> Open();
    [[nodiscard]] std::optional<XFileError> StoreState(
        std::span<const std::uint8_t> inBytes, std::vector<Digest>& outChunks );
    [[nodiscard]] std::optional<XFileError> StoreChunks(
        std::span<const std::uint8_t> inBytes, std::vector<Digest>& outChunks );
    [[nodiscard]] bool RenewTime( const StoredState& inOld, const SavedStates::State& inNew );
    [[nodiscard]] std::optional<XFileError> CountReferences( const std::vector<StoredState>& inStates );
    [[nodiscard]] std::optional<XFileError> RemoveStates( std::span<const StoredState> inStates );
    [[nodiscard]] std::uint64_t NextNumber() const { return mStates.empty() ? 1 : mStates.front().mNumber + 1; }
    [[nodiscard]] std::uint64_t StateBytes() const;
    [[nodiscard]] bool IsLastOld() const;

    std::optional<StatePacks> mPacks;
    std::vector<StoredState> mStates; ///< the newest first
    bool mAreReferencesKnown = false;
};

std::optional<XFileError> Store::Open()
{
    const auto folder = Folder();
    if ( mPacks and mPacks->Folder() == folder )
        return {};
    mAreReferencesKnown = false;
    mPacks.emplace( folder );
    if ( auto error = MakeFolders( folder ) )
        return error;
    if ( auto error = ListStates( mStates ) )
        return error;
    RemoveTemporaryFiles();
    for ( StoredState& state : mStates )
    {
        XFileStatus facts;
        if ( XFileCalls::Current().GetLinkFacts( folder / state.mName, facts ) == 0 )
            state.mFileSize = facts.mSize;
    }
    return mPacks->ReadFolder();
}

std::optional<XFileError> Store::StoreChunks( std::span<const std::uint8_t> inBytes, std::vector<Digest>& outChunks )
{
    while ( not inBytes.empty() )
    {
        const auto chunk = inBytes.first( StateChunks::FirstLength( inBytes ) );
        outChunks.push_back( StateChunks::DigestOf( chunk ) );
        if ( auto error = mPacks->Add( outChunks.back(), chunk ) )
            return error;
        inBytes = inBytes.subspan( chunk.size() );
    }
    return {};
}

std::optional<XFileError> Store::StoreState( std::span<const std::uint8_t> inBytes, std::vector<Digest>& outChunks )
{
    const auto table = StateChunks::FindOffsetTable( inBytes );
    auto error = StoreChunks( table ? inBytes.first( table->mStart ) : inBytes, outChunks );
    if ( table and not error )
    {
        std::vector<std::uint8_t> tail( inBytes.begin() + std::ptrdiff_t( table->mStart ), inBytes.end() );
        StateChunks::ToDifferences( std::span( tail ).first( table->Size() ), table->mEntrySize );
        error = StoreChunks( tail, outChunks );
    }
    return error ? error : mPacks->Flush();
}

bool Store::RenewTime( const StoredState& inOld, const SavedStates::State& inNew )
{
    const ChunkList list = ReadChunkList( inOld.mName );
    if ( list.mError or list.mIsDamaged or
        not std::all_of( list.mChunks.begin(), list.mChunks.end(),
            [&]( const Digest& digest ) { return mPacks->Contains( digest ); } ) )
        return false;
    StoredState renewed{ inNew, NextNumber(), NameFor( NextNumber(), inNew ), inOld.mFileSize };
    if ( XFileCalls::Current().RenameToNew( Folder() / inOld.mName, Folder() / renewed.mName ) != 0 )
        return false;
    const std::string name = inOld.mName; // the old entry moves in the next line
    std::erase_if( mStates, [&]( const StoredState& state ) { return state.mName == name; } );
    mStates.insert( mStates.begin(), std::move( renewed ) );
    return true;
}

std::optional<XFileError> Store::Keep( const MMacroFileData& inData, When inWhen )
{
    if ( auto error = Open() )
        return error;
    const SavedStates::State state{ inData.Digest(), XClock::Current().Now(), inData.size() };
    const auto same = std::find_if( mStates.begin(), mStates.end(),
        [&]( const StoredState& other ) { return other.mState.mDigest == state.mDigest; } );
    if ( same != mStates.end() and inWhen == When::kMissing )
        return {};
    if ( same != mStates.end() and RenewTime( *same, state ) )
        return SyncFolder();

    std::vector<Digest> chunks;
    if ( auto error = StoreState( inData.Span(), chunks ) )
        return error;
    const auto bytes = ChunkListBytes( chunks );
    StoredState stored{ state, NextNumber(), NameFor( NextNumber(), state ), bytes.size() };
    if ( auto error = XAtomicFile::Write( Folder() / stored.mName, bytes, XAtomicFile::Links::kReplace ) )
        return error;
    if ( mAreReferencesKnown )
        mPacks->Retain( chunks );
    if ( same != mStates.end() )
    {
        // The older file of the same state can't be used, or its time would have been renewed.
        (void)XFileCalls::Current().Unlink( Folder() / same->mName );
        mStates.erase( same );
    }
    mStates.insert( mStates.begin(), std::move( stored ) );
    return {};
}

std::uint64_t Store::StateBytes() const
{
    std::uint64_t bytes = 0;
    for ( const StoredState& state : mStates )
        bytes += state.mFileSize;
    return bytes;
}

bool Store::IsLastOld() const
{
    return mStates.size() > SavedStates::kFewest and
        XClock::Current().Now() - mStates.back().mState.mTime > SavedStates::kKeepSeconds;
}

std::optional<XFileError> Store::CountReferences( const std::vector<StoredState>& inStates )
{
    mPacks->ForgetReferences();
    for ( const StoredState& state : inStates )
    {
        const ChunkList list = ReadChunkList( state.mName );
        // What can't be read now may be read later, so its chunks can't be told from those that nobody needs.
        if ( list.mError )
            return list.mError;
        mPacks->Retain( list.mChunks );
    }
    return {};
}

std::optional<XFileError> Store::RemoveStates( std::span<const StoredState> inStates )
{
    for ( const StoredState& state : inStates )
    {
        if ( XFileCalls::Current().Unlink( Folder() / state.mName ) != 0 and errno != ENOENT )
            return SystemError( "remove", Folder() / state.mName );
    }
    // Their chunks may go only when no power cut can bring the states back.
    return SyncFolder();
}

std::optional<XFileError> Store::Cull()
{
    const auto isTooMuch = [&] { return mPacks->BytesOnDisk() + StateBytes() > gMostBytes; };
    if ( not isTooMuch() and not IsLastOld() )
        return {};
    if ( not mAreReferencesKnown )
    {
        if ( auto error = CountReferences( mStates ) )
            return error;
        mAreReferencesKnown = true;
    }
    std::vector<StoredState> culled;
    const auto cullLast = [&] {
        mPacks->Release( ReadChunkList( mStates.back().mName ).mChunks );
        culled.push_back( std::move( mStates.back() ) );
        mStates.pop_back();
    };
    for ( std::size_t i = 0; i < kMostOldAtOnce and IsLastOld(); ++i )
        cullLast();
    while ( mStates.size() > SavedStates::kNewestAlways and mPacks->LiveBytes() + StateBytes() > gMostBytes )
        cullLast();
    if ( not culled.empty() )
    {
        if ( auto error = RemoveStates( culled ) )
            return error;
    }
    const std::uint64_t stateBytes = StateBytes();
    return mPacks->Collect( gMostBytes - std::min( gMostBytes, stateBytes ) );
}

std::optional<XFileError> Store::Mend( std::span<const Digest> inChunks )
{
    if ( auto error = Open() )
        return error;
    return mPacks->Mend( inChunks );
}

void TellOfFailure( const XFileError& inError )
{
    XErrorHandler::PrivateMaybeLogFormat( "always", "Can't keep a saved state: %@", inError.Describe() );
    if ( not KVNotices::IsUnanswered( u"SavedStates" ) )
        KVNotices::Post( { u"SavedStates", kvr_localized( u"kvNoticeSavedStatesTitle" ),
            kvr_localizedFormat( u"kvNoticeSavedStatesText", inError.Describe() ), inError.mPath } );
}

/// The queue and the store, once for the process.
class SavedStatesQueue
{
public:
    explicit SavedStatesQueue( XWork& inWork )
        : mQueue( inWork.MakeSerialQueue( u"com.tessarine.korvalen.SavedStates" ) )
    {}

    [[nodiscard]] XQueue& Queue() const { return *mQueue; }
    /// On the queue.
    void Keep( const MMacroFileData& inData, Store::When inWhen )
    {
        auto error = mStore.Keep( inData, inWhen );
        if ( error )
            TellOfFailure( *error );
        else if ( ( error = mStore.Cull() ) )
            XErrorHandler::PrivateMaybeLogFormat( "always", "Can't cull saved states: %@", error->Describe() );
        if ( error )
            mStore.Close();
    }
    void Mend( const std::vector<Digest>& inChunks )
    {
        if ( const auto error = mStore.Mend( inChunks ) )
        {
            XErrorHandler::PrivateMaybeLogFormat( "always", "Can't mend saved states: %@", error->Describe() );
            mStore.Close();
        }
    }

private:
    std::shared_ptr<XQueue> mQueue;
    Store mStore;
};

SavedStatesQueue& TheQueue()
{
    return XWork::Current().Shared<SavedStatesQueue>();
}

void KeepSoonWhen( const MMacroFileDataPtr& inData, Store::When inWhen )
{
    XAssert( inData );
    if ( inData )
        TheQueue().Queue().Async( [inData, inWhen] { TheQueue().Keep( *inData, inWhen ); } );
}

/// Reads without the queue, so that nobody waits for a state that is being kept.
std::optional<std::string> ReadState( const StoredState& inState, MMacroFileDataPtr& outData, ChunkList& outList )
{
    outList = ReadChunkList( inState.mName );
    if ( outList.mError )
        return outList.mError->Describe();
    if ( outList.mIsDamaged )
        return "its list of chunks is damaged";
    if ( inState.mState.mSize / StateChunks::kLongest > outList.mChunks.size() )
        return "its size is wrong";
    StatePacks packs( Folder() );
    if ( const auto error = packs.ReadFolder() )
        return error->Describe();
    XBytes bytes( std::size_t( inState.mState.mSize ) );
    if ( auto fault = packs.Read( outList.mChunks, bytes ) )
        return fault;
    // The trailer, which tells of the table, is stored as it stands.
    if ( const auto table = StateChunks::FindOffsetTable( bytes.Span() ) )
        StateChunks::FromDifferences( { bytes.data() + table->mStart, table->Size() }, table->mEntrySize );
    auto data = std::make_shared<const MMacroFileData>( std::move( bytes ) );
    if ( data->Digest() != inState.mState.mDigest )
        return "its digest is another";
    outData = std::move( data );
    return {};
}
} // namespace

void SavedStates::KeepSoon( const MMacroFileDataPtr& inData )
{
    KeepSoonWhen( inData, Store::When::kAlways );
}

void SavedStates::KeepSoonIfMissing( const MMacroFileDataPtr& inData )
{
    KeepSoonWhen( inData, Store::When::kMissing );
}

void SavedStates::SetMostBytesForTesting( std::uint64_t inBytes )
{
    gMostBytes = inBytes;
}

void SavedStates::WaitForQueue()
{
    TheQueue().Queue().Sync( [] {} );
}

std::vector<SavedStates::State> SavedStates::List()
{
    std::vector<StoredState> stored;
    if ( const auto error = ListStates( stored ) )
        XErrorHandler::PrivateMaybeLogFormat( "always", "Can't list saved states: %@", error->Describe() );
    std::vector<State> states;
    for ( StoredState& state : stored )
        states.push_back( std::move( state.mState ) );
    return states;
}

MMacroFileDataPtr SavedStates::Load( const std::string& inDigest )
{
    std::optional<std::string> fault;
    ChunkList list;
    // Packs may be replaced by others meanwhile.
    for ( int attempt = 0; attempt < kReadAttempts; ++attempt )
    {
        std::vector<StoredState> states;
        (void)ListStates( states );
        const auto found = std::find_if( states.begin(), states.end(),
            [&]( const StoredState& state ) { return state.mState.mDigest == inDigest; } );
        MMacroFileDataPtr data;
        fault = found == states.end() ? "there is none" : ReadState( *found, data, list );
        if ( data )
            return data;
    }
    XErrorHandler::PrivateMaybeLogFormat( "always", "Can't load the saved state %@: %@", inDigest, *fault );
    if ( not list.mChunks.empty() )
        TheQueue().Queue().Async( [chunks = std::move( list.mChunks )] { TheQueue().Mend( chunks ); } );
    return nullptr;
}

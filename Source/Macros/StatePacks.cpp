// A pack, "00000001.pack", numbers little-endian:
//   "KVPACK1\n", count (4), CRC-32 of the directory (4)
//   directory: for each chunk its SHA-256 (32), packed size (4), size (4)
//   the packed chunks in the order of the directory
#include "Macros/StatePacks.h"

#include "XCAF/XErrorHandler.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <charconv>
#include <fmt/format.h>
#include <system_error>
#include <zlib.h>

static_assert( std::endian::native == std::endian::little, "numbers are copied as they stand" );

namespace
{
constexpr std::size_t kFullPack = std::size_t( 16 ) << 20;
constexpr std::size_t kMostPackBytes = std::size_t( 64 ) << 20;
constexpr std::string_view kMagic = "KVPACK1\n";
constexpr std::string_view kSuffix = ".pack";
constexpr std::size_t kHeadSize = 16, kRowSize = 40;
// A save a minute makes a small pack a minute: they are put together when there are so many.
constexpr std::size_t kMostSmallPacks = 64;
constexpr std::uint64_t kSmallPack = std::uint64_t( 1 ) << 20;

std::uint32_t NumberAt( const std::uint8_t* inBytes )
{
    std::uint32_t number = 0;
    std::memcpy( &number, inBytes, sizeof number );
    return number;
}

void AppendNumber( std::vector<std::uint8_t>& ioBytes, std::size_t inNumber )
{
    const auto number = std::uint32_t( inNumber );
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>( &number );
    ioBytes.insert( ioBytes.end(), bytes, bytes + sizeof number );
}

std::uint32_t Checksum( std::span<const std::uint8_t> inBytes )
{
    return std::uint32_t( crc32( 0, inBytes.data(), uInt( inBytes.size() ) ) );
}

std::optional<std::uint32_t> NumberFromName( std::string_view inName )
{
    if ( inName.size() != 8 + kSuffix.size() or not inName.ends_with( kSuffix ) )
        return {};
    std::uint32_t number = 0;
    const auto result = std::from_chars( inName.data(), inName.data() + 8, number, 16 );
    if ( result.ec != std::errc() or result.ptr != inName.data() + 8 or number == 0 )
        return {};
    return number;
}

/// False when the file ends before.
bool ReadExactly( const XOpenFile& inFile, std::span<std::uint8_t> outBytes )
{
    for ( int interruptions = 0; not outBytes.empty(); )
    {
        const std::ptrdiff_t count = XFileCalls::Current().Read( inFile.Get(), outBytes );
        if ( count < 0 and errno == EINTR and ++interruptions < 100 )
            continue;
        if ( count <= 0 )
            return false;
        outBytes = outBytes.subspan( std::size_t( count ) );
    }
    return true;
}
} // namespace

std::filesystem::path StatePacks::PathOf( std::uint32_t inPack ) const
{
    return mFolder / fmt::format( "{:08x}{}", inPack, kSuffix );
}

std::optional<XFileError> StatePacks::ReadFolder()
{
    std::vector<std::string> names;
    if ( XFileCalls::Current().ReadFolder( mFolder, names ) != 0 )
    {
        if ( errno == ENOENT )
            return {};
        return XFileError{ "list", mFolder, errno, std::generic_category().message( errno ), {} };
    }
    // In the order of their numbers, so that of two places of a chunk the newer counts: the older one may be damaged.
    for ( const std::string& name : names )
    {
        const auto number = NumberFromName( name );
        if ( not number )
            continue;
        mNext = std::max( mNext, *number + 1 );
        if ( const auto fault = ReadDirectory( *number ) )
            XErrorHandler::PrivateMaybeLogFormat( "always", "Can't use %@: %@", PathOf( *number ), *fault );
    }
    return {};
}

std::optional<std::string> StatePacks::ReadDirectory( std::uint32_t inPack )
{
    XFileCalls& calls = XFileCalls::Current();
    const auto file = XOpenFile::Open( PathOf( inPack ), XFileCalls::OpenFor::kRead, calls );
    XFileStatus facts;
    if ( not file or calls.GetFacts( file.Get(), facts ) != 0 )
        return std::generic_category().message( errno );
    std::array<std::uint8_t, kHeadSize> head{};
    if ( not ReadExactly( file, head ) or std::memcmp( head.data(), kMagic.data(), kMagic.size() ) != 0 )
        return "it is no pack";
    const std::size_t count = NumberAt( &head[8] );
    if ( facts.mSize > kMostPackBytes or count > ( facts.mSize - kHeadSize ) / kRowSize )
        return "its size is wrong";
    std::vector<std::uint8_t> directory( count * kRowSize );
    if ( not ReadExactly( file, directory ) or Checksum( directory ) != NumberAt( &head[12] ) )
        return "its directory is damaged";

    std::vector<Chunk> chunks( count );
    std::uint64_t offset = kHeadSize + directory.size();
    for ( std::size_t i = 0; i < count; ++i )
    {
        const std::uint8_t* const row = &directory[i * kRowSize];
        auto& [digest, place] = chunks[i];
        std::copy_n( row, digest.size(), digest.begin() );
        place = { inPack, std::uint32_t( offset ), NumberAt( row + 32 ), NumberAt( row + 36 ), 0 };
        if ( place.mPacked > place.mSize or place.mSize > StateChunks::kLongest )
            return "its directory is wrong";
        offset += place.mPacked;
    }
    if ( offset != facts.mSize )
        return "its size is wrong";
    mPacks[inPack] = facts.mSize;
    for ( const auto& [digest, place] : chunks )
        mPlaces[digest] = place;
    return {};
}

std::optional<XFileError> StatePacks::Add( const Digest& inDigest, std::span<const std::uint8_t> inChunk )
{
    if ( Contains( inDigest ) )
        return {};
    return Append( inDigest, mPacker.Pack( inChunk ), inChunk.size(), 0 );
}

std::optional<XFileError> StatePacks::Append(
    const Digest& inDigest, std::span<const std::uint8_t> inPacked, std::size_t inSize, std::uint32_t inReferences )
{
    const Place place{ mNext, std::uint32_t( mBytes.size() ), std::uint32_t( inPacked.size() ), std::uint32_t( inSize ),
        inReferences };
    mPlaces[inDigest] = place;
    mAdded.push_back( { inDigest, place } );
    mBytes.insert( mBytes.end(), inPacked.begin(), inPacked.end() );
    return mBytes.size() >= kFullPack ? Flush() : std::nullopt;
}

std::optional<XFileError> StatePacks::Flush()
{
    if ( mAdded.empty() )
        return {};
    std::vector<std::uint8_t> directory;
    directory.reserve( mAdded.size() * kRowSize );
    for ( const auto& [digest, place] : mAdded )
    {
        directory.insert( directory.end(), digest.begin(), digest.end() );
        AppendNumber( directory, place.mPacked );
        AppendNumber( directory, place.mSize );
    }
    std::vector<std::uint8_t> file( kMagic.begin(), kMagic.end() );
    file.reserve( kHeadSize + directory.size() + mBytes.size() );
    AppendNumber( file, mAdded.size() );
    AppendNumber( file, Checksum( directory ) );
    file.insert( file.end(), directory.begin(), directory.end() );
    const std::size_t start = file.size();
    file.insert( file.end(), mBytes.begin(), mBytes.end() );

    auto error = XAtomicFile::Write( PathOf( mNext ), file, XAtomicFile::Links::kReplace );
    if ( error )
        return error;
    for ( const Chunk& chunk : mAdded )
        mPlaces[chunk.mDigest].mOffset += std::uint32_t( start );
    mPacks[mNext++] = file.size();
    mAdded.clear();
    mBytes.clear();
    return {};
}

std::optional<std::string> StatePacks::Read( std::span<const Digest> inChunks, XBytes& outBytes ) const
{
    // Pack by pack, so that each is read once, and only one is in memory.
    std::map<std::uint32_t, std::vector<std::pair<const Place*, std::size_t>>> wanted;
    std::size_t size = 0;
    for ( const Digest& digest : inChunks )
    {
        const auto found = mPlaces.find( digest );
        if ( found == mPlaces.end() )
            return "a chunk is gone";
        wanted[found->second.mPack].emplace_back( &found->second, size );
        size += found->second.mSize;
    }
    if ( size != outBytes.size() )
        return "its chunks have another size";
    for ( const auto& [pack, places] : wanted )
    {
        const XFileContent content = ReadWholeFile( PathOf( pack ), kMostPackBytes );
        if ( content.mError )
            return content.mError->Describe();
        const auto bytes = content.mBytes.Span();
        for ( const auto& [place, position] : places )
        {
            if ( place->mOffset > bytes.size() or place->mPacked > bytes.size() - place->mOffset or
                not StateChunks::Unpack(
                    bytes.subspan( place->mOffset, place->mPacked ), { outBytes.data() + position, place->mSize } ) )
                return "a chunk is damaged in “" + PathOf( pack ).native() + "”";
        }
    }
    return {};
}

void StatePacks::Retain( std::span<const Digest> inChunks )
{
    for ( const Digest& digest : inChunks )
    {
        const auto found = mPlaces.find( digest );
        if ( found != mPlaces.end() and found->second.mReferences++ == 0 )
            mLiveBytes += found->second.mPacked;
    }
}

void StatePacks::Release( std::span<const Digest> inChunks )
{
    for ( const Digest& digest : inChunks )
    {
        const auto found = mPlaces.find( digest );
        if ( found != mPlaces.end() and found->second.mReferences > 0 and --found->second.mReferences == 0 )
            mLiveBytes -= found->second.mPacked;
    }
}

void StatePacks::ForgetReferences()
{
    for ( auto& [digest, place] : mPlaces )
        place.mReferences = 0;
    mLiveBytes = 0;
}

std::uint64_t StatePacks::BytesOnDisk() const
{
    std::uint64_t bytes = 0;
    for ( const auto& [pack, size] : mPacks )
        bytes += size;
    return bytes;
}

std::map<std::uint32_t, std::uint64_t> StatePacks::LiveBytesOfPacks() const
{
    std::map<std::uint32_t, std::uint64_t> live;
    for ( const auto& [pack, size] : mPacks )
        live[pack] = 0;
    for ( const auto& [digest, place] : mPlaces )
        live[place.mPack] += place.mReferences > 0 ? place.mPacked : 0;
    return live;
}

std::optional<XFileError> StatePacks::Collect( std::uint64_t inMostBytes )
{
    std::vector<std::pair<std::uint64_t, std::uint32_t>> byWaste;
    std::vector<std::uint32_t> chosen, small;
    std::uint64_t bytes = BytesOnDisk();
    for ( const auto& [pack, live] : LiveBytesOfPacks() )
    {
        const std::uint64_t size = mPacks[pack], waste = size - std::min( size, live );
        if ( waste * 2 > size and size > kSmallPack / 16 )
        {
            chosen.push_back( pack );
            bytes -= waste;
        }
        else
        {
            byWaste.emplace_back( waste, pack );
            if ( size < kSmallPack )
                small.push_back( pack );
        }
    }
    std::sort( byWaste.rbegin(), byWaste.rend() );
    for ( const auto& [waste, pack] : byWaste )
    {
        if ( bytes <= inMostBytes or waste == 0 )
            break;
        chosen.push_back( pack );
        bytes -= waste;
    }
    if ( small.size() > kMostSmallPacks )
        chosen.insert( chosen.end(), small.begin(), small.end() );
    std::sort( chosen.begin(), chosen.end() );
    chosen.erase( std::unique( chosen.begin(), chosen.end() ), chosen.end() );
    return Rewrite( chosen, Copy::kUsed );
}

std::optional<XFileError> StatePacks::Mend( std::span<const Digest> inChunks )
{
    std::vector<std::uint32_t> packs;
    for ( const Digest& digest : inChunks )
    {
        const auto found = mPlaces.find( digest );
        if ( found != mPlaces.end() and std::find( packs.begin(), packs.end(), found->second.mPack ) == packs.end() )
            packs.push_back( found->second.mPack );
    }
    return Rewrite( packs, Copy::kAll );
}

std::optional<XFileError> StatePacks::Rewrite( const std::vector<std::uint32_t>& inPacks, Copy inCopy )
{
    for ( const std::uint32_t pack : inPacks )
    {
        if ( auto error = CopyFrom( pack, inCopy ) )
            return error;
    }
    // Nothing goes before what replaces it is on disk.
    if ( auto error = Flush() )
        return error;
    for ( const std::uint32_t pack : inPacks )
    {
        if ( XFileCalls::Current().Unlink( PathOf( pack ) ) == 0 or errno == ENOENT )
            mPacks.erase( pack );
        else
            XErrorHandler::PrivateMaybeLogFormat( "always", "Can't remove %@", PathOf( pack ) );
    }
    return {};
}

std::optional<XFileError> StatePacks::CopyFrom( std::uint32_t inPack, Copy inCopy )
{
    std::vector<Chunk> chunks;
    for ( const auto& [digest, place] : mPlaces )
    {
        if ( place.mPack == inPack )
            chunks.push_back( { digest, place } );
    }
    const auto isUsed = [&]( const Chunk& chunk ) { return inCopy == Copy::kAll or chunk.mPlace.mReferences > 0; };
    XFileContent content;
    if ( std::any_of( chunks.begin(), chunks.end(), isUsed ) )
        content = ReadWholeFile( PathOf( inPack ), kMostPackBytes );
    if ( content.mError )
        return content.mError;
    std::sort( chunks.begin(), chunks.end(),
        []( const Chunk& a, const Chunk& b ) { return a.mPlace.mOffset < b.mPlace.mOffset; } );

    const auto bytes = content.mBytes.Span();
    std::vector<std::uint8_t> unpacked;
    for ( const Chunk& chunk : chunks )
    {
        mPlaces.erase( chunk.mDigest );
        if ( not isUsed( chunk ) )
            continue;
        const Place& place = chunk.mPlace;
        unpacked.resize( place.mSize );
        const bool isThere = place.mOffset <= bytes.size() and place.mPacked <= bytes.size() - place.mOffset;
        const auto packed = isThere ? bytes.subspan( place.mOffset, place.mPacked ) : std::span<const std::uint8_t>();
        // A damaged chunk isn't handed on: the next state that has it stores it anew.
        if ( not isThere or not StateChunks::Unpack( packed, unpacked ) or
            StateChunks::DigestOf( unpacked ) != chunk.mDigest )
        {
            XErrorHandler::PrivateMaybeLogFormat( "always", "A chunk is damaged in %@", PathOf( inPack ) );
            mLiveBytes -= place.mReferences > 0 ? place.mPacked : 0;
            continue;
        }
        if ( auto error = Append( chunk.mDigest, packed, place.mSize, place.mReferences ) )
            return error;
    }
    return {};
}

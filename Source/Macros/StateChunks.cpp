#include "Macros/StateChunks.h"

#include "XCAF/XErrorHandler.h"

#include <algorithm>
#include <sha2.h>
#include <zlib.h>

namespace
{
// A random word for each byte. The words must never change: other ones would cut elsewhere, and share nothing with
// what is stored.
constexpr auto kGear = [] {
    std::array<std::uint64_t, 256> words{};
    std::uint64_t state = 0x4B6F7276616C656Eu;
    for ( std::uint64_t& word : words )
    {
        state += 0x9E3779B97F4A7C15u;
        word = state;
        word = ( word ^ ( word >> 30 ) ) * 0xBF58476D1CE4E5B9u;
        word = ( word ^ ( word >> 27 ) ) * 0x94D049BB133111EBu;
        word ^= word >> 31;
    }
    return words;
}();

// The high bits know of the last 64 bytes, the low ones only of a few.
constexpr int kCutShift = 64 - 15;

constexpr std::size_t kTrailerSize = 32;

std::uint64_t BigEndianAt( const std::uint8_t* inBytes, std::size_t inSize )
{
    std::uint64_t value = 0;
    for ( std::size_t i = 0; i < inSize; ++i )
        value = value << 8 | inBytes[i];
    return value;
}

void StoreBigEndian( std::uint8_t* outBytes, std::size_t inSize, std::uint64_t inValue )
{
    for ( std::size_t i = inSize; i-- > 0; inValue >>= 8 )
        outBytes[i] = std::uint8_t( inValue );
}
} // namespace

StateChunks::Digest StateChunks::DigestOf( std::span<const std::uint8_t> inBytes )
{
    Digest digest;
    SHA2_CTX context;
    SHA256Init( &context );
    SHA256Update( &context, inBytes.data(), inBytes.size() );
    SHA256Final( digest.data(), &context );
    return digest;
}

std::size_t StateChunks::FirstLength( std::span<const std::uint8_t> inBytes )
{
    const std::size_t end = std::min( inBytes.size(), kLongest );
    std::uint64_t hash = 0;
    // What comes 64 bytes before the first place of a cut has left the hash when that is reached.
    for ( std::size_t i = kShortest - 64; i < end; ++i )
    {
        hash = ( hash << 1 ) + kGear[inBytes[i]];
        if ( i + 1 >= kShortest and ( hash >> kCutShift ) == 0 )
            return i + 1;
    }
    return end;
}

std::optional<StateChunks::OffsetTable> StateChunks::FindOffsetTable( std::span<const std::uint8_t> inBytes )
{
    if ( inBytes.size() < kTrailerSize )
        return {};
    const std::size_t end = inBytes.size() - kTrailerSize;
    const std::uint8_t* const trailer = inBytes.data() + end;
    const std::uint64_t count = BigEndianAt( trailer + 8, 8 ), start = BigEndianAt( trailer + 24, 8 );
    const std::size_t entrySize = trailer[6];
    if ( entrySize < 1 or entrySize > 8 or start > end or count != ( end - start ) / entrySize or
        count * entrySize != end - start )
        return {};
    return OffsetTable{ std::size_t( start ), std::size_t( count ), entrySize };
}

void StateChunks::ToDifferences( std::span<std::uint8_t> ioTable, std::size_t inEntrySize )
{
    std::uint64_t previous = 0;
    for ( std::size_t at = 0; at < ioTable.size(); at += inEntrySize )
    {
        const std::uint64_t value = BigEndianAt( &ioTable[at], inEntrySize );
        StoreBigEndian( &ioTable[at], inEntrySize, value - previous );
        previous = value;
    }
}

void StateChunks::FromDifferences( std::span<std::uint8_t> ioTable, std::size_t inEntrySize )
{
    std::uint64_t value = 0;
    for ( std::size_t at = 0; at < ioTable.size(); at += inEntrySize )
    {
        value += BigEndianAt( &ioTable[at], inEntrySize );
        StoreBigEndian( &ioTable[at], inEntrySize, value );
    }
}

StateChunks::Packer::Packer() : mStream( std::make_unique<z_stream>() )
{
    *mStream = {};
    // The quickest: each save of a large file is packed, and the store is read once in a blue moon.
    if ( deflateInit( mStream.get(), Z_BEST_SPEED ) != Z_OK )
        mStream.reset();
}

StateChunks::Packer::~Packer()
{
    if ( mStream )
        (void)deflateEnd( mStream.get() );
}

std::span<const std::uint8_t> StateChunks::Packer::Pack( std::span<const std::uint8_t> inChunk )
{
    if ( not mStream or inChunk.size() < 2 or deflateReset( mStream.get() ) != Z_OK )
        return inChunk;
    mPacked.resize( inChunk.size() - 1 );
    mStream->next_in = const_cast<Bytef*>( inChunk.data() ); // zlib only reads it
    mStream->avail_in = uInt( inChunk.size() );
    mStream->next_out = mPacked.data();
    mStream->avail_out = uInt( mPacked.size() );
    if ( deflate( mStream.get(), Z_FINISH ) != Z_STREAM_END )
        return inChunk;
    return std::span( mPacked ).first( mPacked.size() - mStream->avail_out );
}

bool StateChunks::Unpack( std::span<const std::uint8_t> inPacked, std::span<std::uint8_t> outChunk )
{
    if ( inPacked.size() == outChunk.size() )
    {
        std::copy( inPacked.begin(), inPacked.end(), outChunk.begin() );
        return true;
    }
    uLongf size = uLongf( outChunk.size() );
    return uncompress( outChunk.data(), &size, inPacked.data(), uLong( inPacked.size() ) ) == Z_OK and
        size == outChunk.size();
}

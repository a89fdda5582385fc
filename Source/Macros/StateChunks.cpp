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

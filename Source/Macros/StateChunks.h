// How the states of the macros file are cut into chunks that they can share. A cut depends on the bytes just before
// it alone, so an insertion moves the cuts behind it along instead of changing every chunk. Any thread.
#pragma once

#include "CFMethods/PropertyListCodec.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

struct z_stream_s;

namespace StateChunks
{
using Digest = std::array<std::uint8_t, 32>; ///< SHA-256

struct DigestHash
{
    std::size_t operator()( const Digest& inDigest ) const
    {
        std::size_t hash = 0;
        std::memcpy( &hash, inDigest.data(), sizeof hash );
        return hash;
    }
};

[[nodiscard]] Digest DigestOf( std::span<const std::uint8_t> inBytes );

inline constexpr std::size_t kShortest = 8 << 10, kLongest = 128 << 10; // about 40 KiB on average
/// The length of the first chunk; 0 for no bytes.
[[nodiscard]] std::size_t FirstLength( std::span<const std::uint8_t> inBytes );

/// Where a binary property list has its table of offsets, of which each entry behind a change differs. As differences
/// the entries stay the same, so states can share them. Absent for bytes that end otherwise.
struct OffsetTable
{
    std::size_t mStart = 0, mCount = 0, mEntrySize = 0;
    [[nodiscard]] std::size_t Size() const { return mCount * mEntrySize; }
};
[[nodiscard]] std::optional<OffsetTable> FindOffsetTable( std::span<const std::uint8_t> inBytes );
/// Each entry becomes its difference from the one before; and back. The bytes are the table.
void ToDifferences( std::span<std::uint8_t> ioTable, std::size_t inEntrySize );
void FromDifferences( std::span<std::uint8_t> ioTable, std::size_t inEntrySize );

/// Compresses one chunk after another.
class Packer
{
public:
    Packer();
    ~Packer();
    Packer( const Packer& ) = delete;
    Packer& operator=( const Packer& ) = delete;

    /// The packed form, valid until the next call; the chunk itself when packing would not make it shorter.
    [[nodiscard]] std::span<const std::uint8_t> Pack( std::span<const std::uint8_t> inChunk );

private:
    std::unique_ptr<z_stream_s> mStream;
    std::vector<std::uint8_t> mPacked;
};

/// Fills the whole of outChunk from its packed form. False for bytes that aren't one of exactly this size.
[[nodiscard]] bool Unpack( std::span<const std::uint8_t> inPacked, std::span<std::uint8_t> outChunk );
} // namespace StateChunks

// The chunks of all saved states, in files of up to 16 MiB, so that a state of thousands of chunks costs a few writes and not
// thousands. A pack is written whole, and never changed; one that is mostly unused is replaced by a new one that holds
// the rest. After an error this object knows too much, and is to be dropped for a new one. Not for several threads at
// once.
#pragma once

#include "Macros/StateChunks.h"
#include "XCAF/XFileWriting.h"

#include <filesystem>
#include <map>
#include <optional>
#include <unordered_map>

class StatePacks
{
public:
    using Digest = StateChunks::Digest;

    explicit StatePacks( std::filesystem::path inFolder ) : mFolder( std::move( inFolder ) ) {}
    [[nodiscard]] const std::filesystem::path& Folder() const { return mFolder; }

    /// Learns which chunks there are. A pack that can't be read is logged and left alone.
    [[nodiscard]] std::optional<XFileError> ReadFolder();
    [[nodiscard]] bool Contains( const Digest& inDigest ) const { return mPlaces.contains( inDigest ); }

    /// Adds a chunk unless it is there. It is on disk after the next Flush.
    [[nodiscard]] std::optional<XFileError> Add( const Digest& inDigest, std::span<const std::uint8_t> inChunk );
    [[nodiscard]] std::optional<XFileError> Flush();

    /// The chunks, one behind the other; they must come to exactly so many bytes. A clause that says what is wrong otherwise.
    [[nodiscard]] std::optional<std::string> Read( std::span<const Digest> inChunks, XBytes& outBytes ) const;

    // How many states use a chunk; who collects has counted all of them.
    void Retain( std::span<const Digest> inChunks );
    void Release( std::span<const Digest> inChunks );
    void ForgetReferences();
    /// The bytes of the chunks that are in use, and those of all packs.
    [[nodiscard]] std::uint64_t LiveBytes() const { return mLiveBytes; }
    [[nodiscard]] std::uint64_t BytesOnDisk() const;

    /// Gives room back: packs that are mostly unused, and a crowd of small ones, are replaced by new ones of what is
    /// in use. With a limit, more of them until the packs take no more than that.
    [[nodiscard]] std::optional<XFileError> Collect( std::uint64_t inMostBytes );
    /// Replaces the packs that hold these chunks by new ones without what is damaged, which can then be stored again.
    [[nodiscard]] std::optional<XFileError> Mend( std::span<const Digest> inChunks );

private:
    struct Place
    {
        std::uint32_t mPack = 0, mOffset = 0, mPacked = 0, mSize = 0;
        std::uint32_t mReferences = 0;
    };
    struct Chunk
    {
        Digest mDigest;
        Place mPlace;
    };

    [[nodiscard]] std::filesystem::path PathOf( std::uint32_t inPack ) const;
    [[nodiscard]] std::optional<std::string> ReadDirectory( std::uint32_t inPack );
    [[nodiscard]] std::optional<XFileError> Append( const Digest& inDigest, std::span<const std::uint8_t> inPacked,
        std::size_t inSize, std::uint32_t inReferences );
    [[nodiscard]] std::map<std::uint32_t, std::uint64_t> LiveBytesOfPacks() const;
    enum class Copy : std::uint8_t { kUsed, kAll };
    [[nodiscard]] std::optional<XFileError> Rewrite( const std::vector<std::uint32_t>& inPacks, Copy inCopy );
    [[nodiscard]] std::optional<XFileError> CopyFrom( std::uint32_t inPack, Copy inCopy );

    std::filesystem::path mFolder;
    std::unordered_map<Digest, Place, StateChunks::DigestHash> mPlaces;
    std::map<std::uint32_t, std::uint64_t> mPacks; ///< and their sizes
    std::uint64_t mLiveBytes = 0;
    std::uint32_t mNext = 1; ///< the number of the pack in the making
    StateChunks::Packer mPacker;
    std::vector<Chunk> mAdded; ///< of the pack in the making, in order
    std::vector<std::uint8_t> mBytes;
};

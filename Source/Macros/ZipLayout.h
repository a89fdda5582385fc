// What a zip file holds and where, read strictly: whatever a reader could take in two ways, or could write to another
// place than its own folder, is refused. Unpacking is others' work, who have the sizes and names from here.
// Any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

struct ZipEntry
{
    std::string mName; ///< UTF-8 with "/" between its parts, without one at the end
    bool mIsFolder = false;
    bool mIsExecutable = false; ///< by its owner
    std::uint32_t mCRC = 0;
    std::uint64_t mPackedSize = 0, mSize = 0;
    std::uint64_t mOffset = 0, mEnd = 0; ///< from its header to behind its data
};

struct ZipLayout
{
    static constexpr std::size_t kMostEntries = 2000;
    static constexpr std::uint64_t kMostBytes = std::uint64_t( 64 ) << 20; ///< all entries unpacked
    static constexpr std::uint64_t kMostRatio = 200;                       ///< of what is larger than kSmallBytes
    static constexpr std::uint64_t kSmallBytes = std::uint64_t( 1 ) << 20;
    static constexpr std::size_t kMostNameBytes = 255; ///< of a part of a path
    static constexpr std::size_t kMostDepth = 16;

    std::vector<ZipEntry> mEntries;    ///< in the order in which they lie in the file
    std::optional<std::string> mFault; ///< a clause in English; there are no entries then
};

[[nodiscard]] ZipLayout ReadZipLayout( std::span<const std::uint8_t> inBytes );

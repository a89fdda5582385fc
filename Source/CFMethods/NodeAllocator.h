// Where the nodes of values live. A file is read into millions of small ones, most of which go soon and together,
// so that they are cut one behind the other out of chunks, and a chunk is free when the last of its nodes is.
// Containers have chunks of their own: they go when a file was loaded, while many of its strings stay. Any thread
// may free what any other allocated.
#pragma once

#include <cstddef>
#include <cstdint>

namespace NodeAllocator
{
enum class Kind : unsigned char { kLeaf, kContainer, kObject };

/// Nodes above this come from the heap.
inline constexpr std::size_t kMostBytes = 2048;
/// Chunks are aligned to their size, so that a node finds its chunk.
inline constexpr std::size_t kChunkBytes = 64 << 10;

/// At most kMostBytes, aligned for pointers. Throws std::bad_alloc. Null, always, where chunks would hide faults from
/// a sanitizer: then the heap serves all nodes.
[[nodiscard]] void* Allocate( std::size_t inBytes, Kind inKind );
void Free( const void* inNode );

/// Frees many: those of one chunk are counted down at once, at the latest when this goes.
class Freeing
{
public:
    Freeing() = default;
    ~Freeing() { Flush(); }
    Freeing( const Freeing& ) = delete;
    Freeing& operator=( const Freeing& ) = delete;

    void Free( const void* inNode )
    {
        const auto chunk = reinterpret_cast<std::uintptr_t>( inNode ) & ~( kChunkBytes - 1 );
        if ( chunk != mChunk )
            Flush();
        mChunk = chunk;
        ++mCount;
    }

private:
    void Flush();

    std::uintptr_t mChunk = 0;
    std::uint32_t mCount = 0;
};

/// For other small objects that come by the hundred thousand and go together: memory that is
/// freed with the same number of bytes.
[[nodiscard]] void* AllocateObject( std::size_t inBytes );
void FreeObject( void* inObject, std::size_t inBytes );

/// Makes Allocate give null on this thread, so that a test that counts or refuses allocations sees all of them.
/// Calls nest.
class HeapForTesting
{
public:
    HeapForTesting();
    ~HeapForTesting();
    HeapForTesting( const HeapForTesting& ) = delete;
    HeapForTesting& operator=( const HeapForTesting& ) = delete;
};

/// Bytes of all chunks that hold nodes. For tests and benchmarks.
[[nodiscard]] std::size_t BytesInUse();
} // namespace NodeAllocator

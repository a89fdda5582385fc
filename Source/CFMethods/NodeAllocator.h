// Where the nodes of values live. A file is read into millions of small ones, most of which go soon and together,
// so that they are cut one behind the other out of chunks, and a chunk is free when the last of its nodes is.
// Containers have chunks of their own: they go when a file was loaded, while many of its strings stay. Any thread
// may free what any other allocated.
#pragma once

#include <cstddef>

namespace NodeAllocator
{
enum class Kind : unsigned char { kLeaf, kContainer };

/// Nodes above this come from the heap.
inline constexpr std::size_t kMostBytes = 2048;

/// At most kMostBytes, aligned for pointers. Throws std::bad_alloc. Null, always, where chunks would hide faults from
/// a sanitizer: then the heap serves all nodes.
[[nodiscard]] void* Allocate( std::size_t inBytes, Kind inKind );
void Free( const void* inNode );

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

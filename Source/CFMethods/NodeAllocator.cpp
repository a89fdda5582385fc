#include "CFMethods/NodeAllocator.h"

#include <sys/mman.h>

#include <atomic>
#include <cstdint>
#include <mutex>
#include <new>
#include <vector>

#if defined( __has_feature )
#if __has_feature( address_sanitizer ) || __has_feature( thread_sanitizer ) || __has_feature( memory_sanitizer )
#define KORVALEN_NODES_ON_HEAP 1
#endif
#endif
#if defined( __SANITIZE_ADDRESS__ ) || defined( __SANITIZE_THREAD__ )
#define KORVALEN_NODES_ON_HEAP 1
#endif

namespace
{
using NodeAllocator::kChunkBytes;
constexpr std::size_t kRegionBytes = 4 << 20; // what is asked of the system at once
constexpr std::size_t kMostWarmChunks = 256;  // free ones that keep their pages; others give them back

// The thread that cuts nodes out of a chunk counts them by itself and holds the chunk by a number that no count of
// nodes reaches; when it is done with the chunk it puts the count in.
constexpr std::uint32_t kHeld = 1u << 30;

struct Chunk
{
    std::atomic<std::uint32_t> mLive{ kHeld };
};
constexpr std::size_t kChunkHead = 64;
static_assert( sizeof( Chunk ) <= kChunkHead );

class Chunks
{
public:
    static Chunks& Get()
    {
        static Chunks& gChunks = *new Chunks; // never destroyed: statics hold values until the end
        return gChunks;
    }

    [[nodiscard]] Chunk* Take()
    {
        const std::scoped_lock lock( mMutex );
        if ( mWarm.empty() and mCold.empty() )
            AddRegion();
        std::vector<void*>& from = mWarm.empty() ? mCold : mWarm;
        void* const chunk = from.back();
        from.pop_back();
        ++mInUse;
        return new ( chunk ) Chunk;
    }
    void GiveBack( Chunk* inChunk )
    {
        const std::scoped_lock lock( mMutex );
        --mInUse;
        if ( mWarm.size() < kMostWarmChunks )
        {
            mWarm.push_back( inChunk );
            return;
        }
        ::madvise( inChunk, kChunkBytes, MADV_DONTNEED );
        mCold.push_back( inChunk );
    }
    [[nodiscard]] std::size_t BytesInUse()
    {
        const std::scoped_lock lock( mMutex );
        return mInUse * kChunkBytes;
    }

private:
    void AddRegion()
    {
        // Room for all chunks that could ever come back, so that giving back never allocates.
        mWarm.reserve( kMostWarmChunks );
        mChunks += kRegionBytes / kChunkBytes;
        if ( mCold.capacity() < mChunks )
            mCold.reserve( mChunks * 2 );
        void* const region =
            ::mmap( nullptr, kRegionBytes + kChunkBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0 );
        if ( region == MAP_FAILED )
            throw std::bad_alloc();
        const auto begin = ( reinterpret_cast<std::uintptr_t>( region ) + kChunkBytes - 1 ) & ~( kChunkBytes - 1 );
        for ( std::size_t at = kRegionBytes; at > 0; at -= kChunkBytes )
            mCold.push_back( reinterpret_cast<void*>( begin + at - kChunkBytes ) );
    }

    std::mutex mMutex;
    std::vector<void*> mWarm, mCold;
    std::size_t mChunks = 0, mInUse = 0;
};

// The chunk that a thread is cutting up.
struct Cutting
{
    char* mNext;
    char* mEnd;
    Chunk* mChunk;
    std::uint32_t mCount;
};
// Without constructors, as nodes are still made while the objects of a thread or the program are destroyed.
constinit thread_local Cutting gCutting[3] = {};
constinit thread_local int gHeapForTesting = 0;

void Drop( Chunk* inChunk, std::uint32_t inCount )
{
    if ( inChunk->mLive.fetch_sub( inCount, std::memory_order_acq_rel ) == inCount )
        Chunks::Get().GiveBack( inChunk );
}

void Retire( Cutting& ioCutting )
{
    if ( ioCutting.mChunk )
        Drop( ioCutting.mChunk, kHeld - ioCutting.mCount );
    ioCutting = {};
}

struct RetireAtThreadEnd
{
    ~RetireAtThreadEnd()
    {
        for ( Cutting& cutting : gCutting )
            Retire( cutting );
    }
};

void TakeChunk( Cutting& ioCutting )
{
    static thread_local const RetireAtThreadEnd gRetire;
    static_cast<void>( &gRetire );
    Retire( ioCutting );
    Chunk* const chunk = Chunks::Get().Take();
    ioCutting = { reinterpret_cast<char*>( chunk ) + kChunkHead, reinterpret_cast<char*>( chunk ) + kChunkBytes, chunk,
        0 };
}
[[maybe_unused]] void* Cut( std::size_t inBytes, NodeAllocator::Kind inKind )
{
    const std::size_t bytes = ( inBytes + alignof( void* ) - 1 ) & ~( alignof( void* ) - 1 );
    Cutting& cutting = gCutting[std::size_t( inKind )];
    if ( std::size_t( cutting.mEnd - cutting.mNext ) < bytes ) [[unlikely]]
        TakeChunk( cutting );
    void* const node = cutting.mNext;
    cutting.mNext += bytes;
    ++cutting.mCount;
    return node;
}
} // namespace

void* NodeAllocator::Allocate( [[maybe_unused]] std::size_t inBytes, [[maybe_unused]] Kind inKind )
{
#ifdef KORVALEN_NODES_ON_HEAP
    return nullptr;
#else
    if ( gHeapForTesting > 0 ) [[unlikely]]
        return nullptr;
    return Cut( inBytes, inKind );
#endif
}

void NodeAllocator::Free( const void* inNode )
{
    Drop( reinterpret_cast<Chunk*>( reinterpret_cast<std::uintptr_t>( inNode ) & ~( kChunkBytes - 1 ) ), 1 );
}

void NodeAllocator::Freeing::Flush()
{
    if ( mCount > 0 )
        Drop( reinterpret_cast<Chunk*>( mChunk ), mCount );
    mCount = 0;
}

void* NodeAllocator::AllocateObject( std::size_t inBytes )
{
#ifndef KORVALEN_NODES_ON_HEAP
    if ( inBytes <= kMostBytes )
        return Cut( inBytes, Kind::kObject );
#endif
    return ::operator new( inBytes );
}

void NodeAllocator::FreeObject( void* inObject, [[maybe_unused]] std::size_t inBytes )
{
#ifndef KORVALEN_NODES_ON_HEAP
    if ( inBytes <= kMostBytes )
        return Free( inObject );
#endif
    ::operator delete( inObject );
}

NodeAllocator::HeapForTesting::HeapForTesting()
{
    ++gHeapForTesting;
}

NodeAllocator::HeapForTesting::~HeapForTesting()
{
    --gHeapForTesting;
}

std::size_t NodeAllocator::BytesInUse()
{
    return Chunks::Get().BytesInUse();
}

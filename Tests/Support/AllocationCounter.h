// Counts what the calling thread allocates, and can refuse the n-th allocation. The test program
// replaces the global operator new for it, so only C++ allocations are seen, not malloc itself. The
// sanitizers bring operators of their own: under them nothing is counted, and tests ask kWorks.
#pragma once

#include "CFMethods/NodeAllocator.h"

#include <cstddef>

#if defined( __SANITIZE_ADDRESS__ ) or defined( __SANITIZE_THREAD__ )
#define KORVALEN_SANITIZED 1
#elif defined( __has_feature )
#if __has_feature( address_sanitizer ) or __has_feature( thread_sanitizer )
#define KORVALEN_SANITIZED 1
#endif
#endif

class AllocationCounter
{
public:
#ifdef KORVALEN_SANITIZED
    static constexpr bool kWorks = false;
#else
    static constexpr bool kWorks = true;
#endif

    /// Counts from here until it goes; one at a time for each thread.
    AllocationCounter();
    ~AllocationCounter();
    AllocationCounter( const AllocationCounter& ) = delete;
    AllocationCounter& operator=( const AllocationCounter& ) = delete;

    /// The most bytes that were held at once since the start, as the allocator rounds them.
    [[nodiscard]] std::size_t PeakBytes() const;
    /// Bytes allocated less bytes freed since the start.
    [[nodiscard]] std::ptrdiff_t LiveBytes() const;
    [[nodiscard]] std::size_t Allocations() const;

    /// The allocation after so many more throws std::bad_alloc, and all later ones too if asked.
    void FailAfter( std::size_t inAllocations, bool inForGood = false );
    void StopFailing();

private:
    const NodeAllocator::HeapForTesting mHeap; // or the nodes of values wouldn't be seen
};

#include "Tests/Support/AllocationCounter.h"

#include <algorithm>
#include <cstdlib>
#include <malloc.h>
#include <new>

namespace
{
struct Counts
{
    bool mActive = false, mForGood = false;
    std::ptrdiff_t mLive = 0, mPeak = 0;
    std::size_t mAllocations = 0;
    std::ptrdiff_t mUntilFailure = -1; // below 0: none is refused
};
// Constant initialisation: operator new runs before any dynamic initialiser.
constinit thread_local Counts gCounts;

#ifndef KORVALEN_SANITIZED
bool IsRefused()
{
    if ( gCounts.mUntilFailure < 0 or gCounts.mUntilFailure-- > 0 )
        return false;
    if ( gCounts.mForGood )
        gCounts.mUntilFailure = 0;
    return true;
}

void* Allocate( std::size_t inSize ) noexcept
{
    if ( gCounts.mActive and IsRefused() )
        return nullptr;
    void* const memory = std::malloc( std::max<std::size_t>( inSize, 1 ) );
    if ( memory and gCounts.mActive )
    {
        gCounts.mLive += std::ptrdiff_t( malloc_usable_size( memory ) );
        gCounts.mPeak = std::max( gCounts.mPeak, gCounts.mLive );
        ++gCounts.mAllocations;
    }
    return memory;
}

void* AllocateOrThrow( std::size_t inSize )
{
    void* const memory = Allocate( inSize );
    if ( not memory )
        throw std::bad_alloc();
    return memory;
}

void Free( void* inMemory ) noexcept
{
    if ( gCounts.mActive and inMemory )
        gCounts.mLive -= std::ptrdiff_t( malloc_usable_size( inMemory ) );
    std::free( inMemory );
}
#endif
} // namespace

AllocationCounter::AllocationCounter()
{
    gCounts = { .mActive = true };
}

AllocationCounter::~AllocationCounter()
{
    gCounts = {};
}

std::size_t AllocationCounter::PeakBytes() const
{
    return std::size_t( gCounts.mPeak );
}

std::ptrdiff_t AllocationCounter::LiveBytes() const
{
    return gCounts.mLive;
}

std::size_t AllocationCounter::Allocations() const
{
    return gCounts.mAllocations;
}

void AllocationCounter::FailAfter( std::size_t inAllocations, bool inForGood )
{
    gCounts.mUntilFailure = std::ptrdiff_t( inAllocations );
    gCounts.mForGood = inForGood;
}

void AllocationCounter::StopFailing()
{
    gCounts.mUntilFailure = -1;
}

#ifndef KORVALEN_SANITIZED
// All forms but the aligned ones, so that new and delete always match.
void* operator new( std::size_t inSize )
{
    return AllocateOrThrow( inSize );
}
void* operator new[]( std::size_t inSize )
{
    return AllocateOrThrow( inSize );
}
void* operator new( std::size_t inSize, const std::nothrow_t& ) noexcept
{
    return Allocate( inSize );
}
void* operator new[]( std::size_t inSize, const std::nothrow_t& ) noexcept
{
    return Allocate( inSize );
}
void operator delete( void* inMemory ) noexcept
{
    Free( inMemory );
}
void operator delete[]( void* inMemory ) noexcept
{
    Free( inMemory );
}
void operator delete( void* inMemory, std::size_t ) noexcept
{
    Free( inMemory );
}
void operator delete[]( void* inMemory, std::size_t ) noexcept
{
    Free( inMemory );
}
void operator delete( void* inMemory, const std::nothrow_t& ) noexcept
{
    Free( inMemory );
}
void operator delete[]( void* inMemory, const std::nothrow_t& ) noexcept
{
    Free( inMemory );
}
#endif

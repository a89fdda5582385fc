#include "Utility/Work/Random.h"

#include <iterator>
#include <mutex>
#include <pthread.h>
#include <stdexcept>
#include <sys/random.h>

namespace
{
// The system's own random bits, taken by the dozen: a call for each would be most of what making a macro costs.
class SystemRandom final : public XRandom
{
public:
    SystemRandom()
    {
        // Or parent and child would draw the same from here on.
        ::pthread_atfork( nullptr, nullptr, [] { gLeft = 0; } );
    }
    [[nodiscard]] std::uint64_t Next() override
    {
        if ( gLeft == 0 )
            Fill();
        return mBits[--gLeft];
    }

private:
    void Fill()
    {
        static_assert( sizeof( mBits ) <= 256 ); // the most that one call gives
        if ( ::getentropy( mBits, sizeof( mBits ) ) != 0 )
            throw std::runtime_error( "the system has no random numbers to give" );
        gLeft = std::size( mBits );
    }

    static inline std::size_t gLeft = 0;
    std::uint64_t mBits[32];
};

std::mutex gMutex;
XRandom* gSubstitute = nullptr;

XRandom& InUse()
{
    if ( gSubstitute )
        return *gSubstitute;
    static SystemRandom gSystem;
    return gSystem;
}
} // namespace

std::uint64_t XRandom::Bits()
{
    const std::scoped_lock lock( gMutex );
    return InUse().Next();
}

XRandom::Substitute::Substitute( XRandom& inRandom )
{
    const std::scoped_lock lock( gMutex );
    mPrevious = gSubstitute;
    gSubstitute = &inRandom;
}

XRandom::Substitute::~Substitute()
{
    const std::scoped_lock lock( gMutex );
    gSubstitute = mPrevious;
}

std::uint64_t XSeededRandom::Next()
{
    mState += 0x9E3779B97F4A7C15u;
    std::uint64_t z = mState;
    z = ( z ^ ( z >> 30 ) ) * 0xBF58476D1CE4E5B9u;
    z = ( z ^ ( z >> 27 ) ) * 0x94D049BB133111EBu;
    return z ^ ( z >> 31 );
}

Text uuidString()
{
    std::uint64_t high = XRandom::Bits(), low = XRandom::Bits();
    high = ( high & ~std::uint64_t( 0xF000 ) ) | 0x4000;                          // version 4
    low = ( low & ~( std::uint64_t( 3 ) << 62 ) ) | ( std::uint64_t( 2 ) << 62 ); // variant 1

    Text result;
    result.reserve( 36 );
    for ( int digit = 0; digit < 32; ++digit )
    {
        if ( digit == 8 or digit == 12 or digit == 16 or digit == 20 )
            result += u'-';
        const std::uint64_t word = digit < 16 ? high : low;
        result += u"0123456789ABCDEF"[( word >> ( 60 - 4 * ( digit % 16 ) ) ) & 15];
    }
    return result;
}

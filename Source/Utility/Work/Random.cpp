#include "Utility/Work/Random.h"

#include <mutex>
#include <random>

namespace
{
class SystemRandom final : public XRandom
{
public:
    [[nodiscard]] std::uint64_t Next() override { return ( std::uint64_t( mDevice() ) << 32 ) | mDevice(); }

private:
    std::random_device mDevice;
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

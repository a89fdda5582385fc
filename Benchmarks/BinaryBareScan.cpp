#include "Benchmarks/BinaryBareScan.h"

#include <cstring>

namespace
{
std::uint64_t Number( const std::uint8_t* inBytes, std::uint64_t inSize )
{
    std::uint64_t value = 0;
    for ( std::uint64_t i = 0; i < inSize; ++i )
        value = value << 8 | inBytes[i];
    return value;
}

std::uint64_t SumOf( const std::uint8_t* inBytes, std::uint64_t inLength )
{
    std::uint64_t sum = 0, word = 0;
    for ( ; inLength >= 8; inLength -= 8, inBytes += 8 )
    {
        std::memcpy( &word, inBytes, 8 );
        sum += word;
    }
    for ( ; inLength > 0; --inLength )
        sum += *inBytes++;
    return sum;
}
} // namespace

std::uint64_t BareScan( std::span<const std::uint8_t> inBytes )
{
    const std::uint8_t* const trailer = inBytes.data() + inBytes.size() - 32;
    const std::uint64_t offsetSize = trailer[6], referenceSize = trailer[7], count = Number( trailer + 8, 8 );
    const std::uint8_t* const table = inBytes.data() + Number( trailer + 24, 8 );
    std::uint64_t sum = 0;
    for ( std::uint64_t i = 0; i < count; ++i )
    {
        const std::uint8_t* at = inBytes.data() + Number( table + i * offsetSize, offsetSize );
        const unsigned kind = *at >> 4;
        std::uint64_t length = *at++ & 0x0F;
        if ( kind >= 0x4 and length == 0x0F )
        {
            const std::uint64_t size = std::uint64_t( 1 ) << ( *at++ & 0x0F );
            length = Number( at, size );
            at += size;
        }
        switch ( kind )
        {
        case 0x0:
            length = 0;
            break;
        case 0x1:
        case 0x2:
        case 0x3:
            length = std::uint64_t( 1 ) << length;
            break;
        case 0x6:
            length *= 2;
            break;
        case 0xA:
            length *= referenceSize;
            break;
        case 0xD:
            length *= 2 * referenceSize;
            break;
        default:
            break;
        }
        sum += kind + SumOf( at, length );
    }
    return sum;
}

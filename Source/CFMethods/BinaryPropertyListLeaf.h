// What the writers of the binary form share: big-endian numbers, the heads of objects, and the values that hold no
// others. Private to the codecs of this folder.
#pragma once

#include "CFMethods/PropertyList.h"

#include <bit>
#include <cstring>
#include <span>

namespace BinaryPropertyList
{
/// The width, of 1, 2, 4 or 8 bytes, that a number needs.
inline unsigned SizeFor( std::uint64_t inLargest )
{
    return inLargest < 0x100 ? 1 : inLargest < 0x10000 ? 2 : inLargest <= 0xFFFFFFFFu ? 4 : 8;
}

template<class Integer>
std::uint8_t* StoreBigEndian( std::uint8_t* outBytes, Integer inValue )
{
    if constexpr ( sizeof( Integer ) == 2 )
        inValue = __builtin_bswap16( inValue );
    else if constexpr ( sizeof( Integer ) == 4 )
        inValue = __builtin_bswap32( inValue );
    else if constexpr ( sizeof( Integer ) == 8 )
        inValue = __builtin_bswap64( inValue );
    std::memcpy( outBytes, &inValue, sizeof( inValue ) );
    return outBytes + sizeof( inValue );
}

inline std::uint8_t* StoreSized( std::uint8_t* outBytes, std::uint64_t inValue, unsigned inSize )
{
    switch ( inSize )
    {
    case 1:
        return StoreBigEndian( outBytes, std::uint8_t( inValue ) );
    case 2:
        return StoreBigEndian( outBytes, std::uint16_t( inValue ) );
    case 4:
        return StoreBigEndian( outBytes, std::uint32_t( inValue ) );
    default:
        return StoreBigEndian( outBytes, inValue );
    }
}

// Lengths below 15 stand in the marker, others in an integer behind it.
inline std::size_t HeadSize( std::uint64_t inLength )
{
    return inLength < 15 ? 1 : 2 + SizeFor( inLength );
}

inline std::uint8_t* StoreHead( std::uint8_t* outBytes, std::uint8_t inKind, std::uint64_t inLength )
{
    if ( inLength < 15 )
    {
        *outBytes++ = std::uint8_t( inKind | inLength );
        return outBytes;
    }
    const unsigned size = SizeFor( inLength );
    *outBytes++ = inKind | 0x0F;
    *outBytes++ = std::uint8_t( 0x10 | std::countr_zero( size ) );
    return StoreSized( outBytes, inLength, size );
}

inline constexpr std::size_t kHeaderSize = 8, kTrailerSize = 32;

/// The root is object 0.
inline void StoreTrailer( std::uint8_t* outBytes, unsigned inOffsetSize, unsigned inReferenceSize,
    std::uint64_t inObjects, std::uint64_t inTable )
{
    std::memset( outBytes, 0, 6 );
    outBytes[6] = std::uint8_t( inOffsetSize );
    outBytes[7] = std::uint8_t( inReferenceSize );
    outBytes = StoreBigEndian( outBytes + 8, inObjects );
    outBytes = StoreBigEndian( outBytes, std::uint64_t( 0 ) );
    StoreBigEndian( outBytes, inTable );
}

/// Of a string, number, boolean, date or data.
[[nodiscard]] std::size_t LeafSize( const XPlistNode* inNode );
std::uint8_t* StoreLeaf( std::uint8_t* outBytes, const XPlistNode* inNode );

/// Seeded anew for each process, so that no file can be crafted to make a look-up slow.
[[nodiscard]] std::uint64_t HashBytes( std::span<const std::uint8_t> inBytes );
[[nodiscard]] std::uint64_t HashLeaf( const XPlistNode* inLeaf );
} // namespace BinaryPropertyList

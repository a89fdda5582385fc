#include "CFMethods/BinaryPropertyListLeaf.h"

#include <random>

using namespace BinaryPropertyList;

namespace
{
std::uint64_t ProcessSeed()
{
    static const std::uint64_t gSeed = [] {
        std::random_device device;
        return ( std::uint64_t( device() ) << 32 ) | device();
    }();
    return gSeed;
}

__extension__ using UInt128 = unsigned __int128; // no standard type, which -Wpedantic minds

std::uint64_t Mix( std::uint64_t a, std::uint64_t b )
{
    const auto product = static_cast<UInt128>( a ) * b;
    return std::uint64_t( product ) ^ std::uint64_t( product >> 64 );
}

std::uint64_t HashOf( const void* inBytes, std::size_t inLength, std::uint64_t inSeed )
{
    constexpr std::uint64_t kOdd1 = 0x9E3779B97F4A7C15u, kOdd2 = 0xD6E8FEB86659FD93u;
    const auto* bytes = static_cast<const unsigned char*>( inBytes );
    const auto load = []( const unsigned char* at, std::size_t size ) {
        std::uint64_t word = 0;
        std::memcpy( &word, at, size );
        return word;
    };
    std::uint64_t hash = inSeed ^ Mix( inLength + kOdd1, kOdd2 );
    std::size_t left = inLength;
    for ( ; left > 16; left -= 16, bytes += 16 )
        hash = Mix( load( bytes, 8 ) ^ hash, load( bytes + 8, 8 ) ^ kOdd1 ^ inSeed );
    const std::uint64_t low = load( bytes, left < 8 ? left : 8 );
    const std::uint64_t high = left > 8 ? load( bytes + 8, left - 8 ) : 0;
    return Mix( Mix( low ^ hash, high ^ kOdd1 ^ inSeed ), kOdd2 );
}

unsigned IntegerSize( const XPlistNumber& inNumber )
{
    if ( inNumber.IsUnsigned() )
        return 16;
    return inNumber.SignedValue() < 0 ? 8 : SizeFor( inNumber.UnsignedValue() );
}
} // namespace

std::uint64_t BinaryPropertyList::HashBytes( std::span<const std::uint8_t> inBytes )
{
    return HashOf( inBytes.data(), inBytes.size(), ProcessSeed() );
}

std::uint64_t BinaryPropertyList::HashLeaf( const XPlistNode* inLeaf )
{
    const std::uint64_t seed = ProcessSeed() + std::uint64_t( inLeaf->GetType() );
    switch ( inLeaf->GetType() )
    {
    case XPlistType::kString:
    {
        const auto* const string = static_cast<const XPlistString*>( inLeaf );
        return string->IsASCII() ? HashOf( string->ASCII().data(), string->GetLength(), seed )
                                 : HashOf( string->Wide().data(), string->GetLength() * 2, ~seed );
    }
    case XPlistType::kData:
    {
        const auto bytes = static_cast<const XPlistData*>( inLeaf )->GetBytes();
        return HashOf( bytes.data(), bytes.size(), seed );
    }
    case XPlistType::kNumber:
        return Mix( static_cast<const XPlistNumber*>( inLeaf )->Bits() ^ seed, seed | 1 );
    case XPlistType::kDate:
        return Mix(
            std::bit_cast<std::uint64_t>( static_cast<const XPlistDate*>( inLeaf )->GetSeconds() ) ^ seed, seed | 1 );
    default:
        return seed ^ std::uint64_t( static_cast<const XPlistBoolean*>( inLeaf )->GetValue() );
    }
}

std::size_t BinaryPropertyList::LeafSize( const XPlistNode* inNode )
{
    switch ( inNode->GetType() )
    {
    case XPlistType::kString:
    {
        const auto* const string = static_cast<const XPlistString*>( inNode );
        return HeadSize( string->GetLength() ) + string->GetLength() * ( string->IsASCII() ? 1 : 2 );
    }
    case XPlistType::kData:
    {
        const std::size_t length = static_cast<const XPlistData*>( inNode )->GetBytes().size();
        return HeadSize( length ) + length;
    }
    case XPlistType::kNumber:
    {
        const auto* const number = static_cast<const XPlistNumber*>( inNode );
        return number->IsReal() ? 9 : 1 + IntegerSize( *number );
    }
    case XPlistType::kDate:
        return 9;
    default:
        return 1;
    }
}

std::uint8_t* BinaryPropertyList::StoreLeaf( std::uint8_t* outBytes, const XPlistNode* inNode )
{
    switch ( inNode->GetType() )
    {
    case XPlistType::kString:
    {
        const auto* const string = static_cast<const XPlistString*>( inNode );
        const std::size_t length = string->GetLength();
        if ( string->IsASCII() )
        {
            outBytes = StoreHead( outBytes, 0x50, length );
            std::memcpy( outBytes, string->ASCII().data(), length );
            return outBytes + length;
        }
        outBytes = StoreHead( outBytes, 0x60, length );
        for ( const char16_t unit : string->Wide() )
            outBytes = StoreBigEndian( outBytes, std::uint16_t( unit ) );
        return outBytes;
    }
    case XPlistType::kData:
    {
        const auto bytes = static_cast<const XPlistData*>( inNode )->GetBytes();
        outBytes = StoreHead( outBytes, 0x40, bytes.size() );
        if ( not bytes.empty() )
            std::memcpy( outBytes, bytes.data(), bytes.size() );
        return outBytes + bytes.size();
    }
    case XPlistType::kNumber:
    {
        const auto* const number = static_cast<const XPlistNumber*>( inNode );
        if ( number->IsReal() )
        {
            *outBytes++ = 0x23;
            return StoreBigEndian( outBytes, number->Bits() );
        }
        const unsigned size = IntegerSize( *number );
        *outBytes++ = std::uint8_t( 0x10 | std::countr_zero( size ) );
        if ( size == 16 )
            outBytes = StoreBigEndian( outBytes, std::uint64_t( 0 ) );
        return StoreSized( outBytes, number->Bits(), size );
    }
    case XPlistType::kDate:
        *outBytes++ = 0x33;
        return StoreBigEndian(
            outBytes, std::bit_cast<std::uint64_t>( static_cast<const XPlistDate*>( inNode )->GetSeconds() ) );
    default:
        *outBytes++ = static_cast<const XPlistBoolean*>( inNode )->GetValue() ? 0x09 : 0x08;
        return outBytes;
    }
}

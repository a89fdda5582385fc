#include "CFMethods/PropertyListCodec.h"

#include <algorithm>
#include <cstring>
#include <fmt/format.h>
#include <new>

XBytes::XBytes( std::string_view inBytes ) : XBytes( inBytes.size() )
{
    if ( not inBytes.empty() )
        std::memcpy( mBytes.get(), inBytes.data(), inBytes.size() );
}

void XBytes::Resize( std::size_t inSize )
{
    // Zero bytes have no block: what realloc gives for them differs from library to library.
    auto* const moved = inSize ? static_cast<std::uint8_t*>( std::realloc( mBytes.get(), inSize ) ) : nullptr;
    if ( inSize and not moved )
        throw std::bad_alloc();
    if ( inSize )
        static_cast<void>( mBytes.release() );
    mBytes.reset( moved );
    mSize = inSize;
}

std::string XPlistFault::Describe() const
{
    if ( mLine > 0 )
        return fmt::format( "{}, at line {}, column {} (byte {})", mMessage, mLine, mColumn, mOffset );
    if ( mObject )
        return fmt::format( "{}, at object {}, byte {}", mMessage, *mObject, mOffset );
    return fmt::format( "{}, at byte {}", mMessage, mOffset );
}

XPlistReadResult ReadPropertyList( std::span<const std::uint8_t> inBytes, const XPlistLimits& inLimits )
{
    constexpr std::string_view kBinary = "bplist";
    const bool isBinary =
        inBytes.size() >= kBinary.size() and std::equal( kBinary.begin(), kBinary.end(), inBytes.begin() );
    return isBinary ? ReadBinaryPropertyList( inBytes, inLimits ) : ReadXMLPropertyList( inBytes, inLimits );
}

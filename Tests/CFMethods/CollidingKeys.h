// Texts that have one key hash, as somebody would craft them who wants dictionaries to be slow.
#pragma once

#include "CFMethods/PropertyList.h"

/// Two units put behind the text give it the hash, for about two texts of three: the hash can be run
/// backwards over the last unit.
inline std::optional<Text> WithKeyHash( Text inText, std::uint32_t inHash )
{
    constexpr std::uint32_t kInverse = 899433627; // of the hash's multiplier
    static_assert( kInverse * 16777619u == 1 );
    const std::uint32_t start = XPlistDetail::HashUnits( inText.data(), inText.size() );
    for ( std::uint32_t unit = 0; unit < 0x10000; ++unit )
    {
        const std::uint32_t last = XPlistDetail::HashUnit( start, unit ) ^ ( inHash * kInverse );
        if ( last < 0x10000 )
            return inText + char16_t( unit ) + char16_t( last );
    }
    return {};
}

inline std::vector<Text> CollidingKeys( std::size_t inCount, std::uint32_t inHash, const Text& inPrefix = u"k" )
{
    std::vector<Text> texts;
    for ( char16_t i = 0; texts.size() < inCount; ++i )
    {
        if ( auto text = WithKeyHash( inPrefix + i, inHash ) )
            texts.push_back( std::move( *text ) );
    }
    return texts;
}

// The words that stand for values which JSON hasn't got. Private to the reader and the writer.
#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string_view>

enum class JSONWord : std::uint8_t { kNone, kData, kDate, kReal };
inline constexpr std::string_view kJSONWords[] = { "", "data", "date", "real" };
static_assert( std::size( kJSONWords ) == std::size_t( JSONWord::kReal ) + 1 );

/// The NaN that arithmetic gives, which needs no bits beside its name.
inline constexpr std::uint64_t kPlainNaN = 0x7FF8'0000'0000'0000u;

struct JSONWordKey
{
    std::size_t mDollars = 0; ///< 0: the key is an ordinary one; 1: the word itself; more: an escaped key
    JSONWord mWord = JSONWord::kNone;
};

/// Takes a key apart: some "$" and then a word, or an ordinary key.
inline JSONWordKey JSONWordOf( std::string_view inKey )
{
    const std::size_t dollars = std::min( inKey.find_first_not_of( '$' ), inKey.size() );
    const auto* const found =
        std::find( std::begin( kJSONWords ) + 1, std::end( kJSONWords ), inKey.substr( dollars ) );
    if ( dollars == 0 or found == std::end( kJSONWords ) )
        return {};
    return { dollars, JSONWord( found - std::begin( kJSONWords ) ) };
}

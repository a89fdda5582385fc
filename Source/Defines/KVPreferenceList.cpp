#include "Defines/KVPreferences.h"

#include <algorithm>

namespace KVPreferences
{
namespace
{
#define KV_EDITOR( inWord, inType, inDefault )                                                                         \
    PreferenceRow{ "k" #inWord "ID", k##inWord##ID, PreferenceType::k##inType, inDefault },
#define KV_ENGINE( inWord, inType, inDefault ) KV_EDITOR( inWord, inType, inDefault )
#define KV_ENGINE_KEY( inWord, inKey, inType, inDefault ) KV_EDITOR( inWord, inType, inDefault )
constexpr PreferenceRow kPreferences[] = {
#include "Defines/KVPreferenceIDs.def"
};
#undef KV_EDITOR
#undef KV_ENGINE
#undef KV_ENGINE_KEY

// The suite's table has 183; eleven of them belong to licences, which this program doesn't have.
static_assert( std::size( kPreferences ) == 183 - 11 + std::size( { "AssertBeep", "Debug" } ) );

constexpr char LowerASCII( char inUnit )
{
    return inUnit >= 'A' and inUnit <= 'Z' ? char( inUnit + 32 ) : inUnit;
}

constexpr bool StandsBefore( const PreferenceRow& a, const PreferenceRow& b )
{
    if ( a.mID.Domain() != b.mID.Domain() )
        return a.mID.Domain() < b.mID.Domain();
    const std::string_view first = a.mID.Key().Name(), second = b.mID.Key().Name();
    return std::lexicographical_compare( first.begin(), first.end(), second.begin(), second.end(),
        []( char inFirst, char inSecond ) { return LowerASCII( inFirst ) < LowerASCII( inSecond ); } );
}

constexpr bool AreInOrder()
{
    return std::adjacent_find( std::begin( kPreferences ), std::end( kPreferences ),
               []( const auto& a, const auto& b ) { return not StandsBefore( a, b ); } ) == std::end( kPreferences );
}
static_assert( AreInOrder(), "by domain and key, each key once" );
} // namespace

std::span<const PreferenceRow> AllPreferences()
{
    return kPreferences;
}

const PreferenceRow* FindPreference( std::string_view inKey )
{
    const auto found = std::find_if( std::begin( kPreferences ), std::end( kPreferences ),
        [inKey]( const PreferenceRow& inRow ) { return inRow.mID.Key().Name() == inKey; } );
    return found == std::end( kPreferences ) ? nullptr : &*found;
}
} // namespace KVPreferences

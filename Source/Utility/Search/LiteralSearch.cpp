// The two units of the needle that are rarest in usual text are compared with a whole block of text at once,
// and the needle only where both stand. Where that fails too often, as in long runs of few letters, the rest
// is searched by the method of Knuth, Morris and Pratt, which never goes back.
#include "Utility/Search/LiteralSearch.h"

#include <cstdint>
#include <cstring>
#include <tuple>
#include <vector>

namespace
{
constexpr std::size_t kBlockBytes = 16;

template<class Unit>
using Lane = std::conditional_t<sizeof( Unit ) == 1, std::uint8_t, std::uint16_t>;

// The compilers' own vectors, so that one text serves every processor.
template<class Unit>
struct VectorOf
{
    typedef Lane<Unit> Type __attribute__( ( vector_size( kBlockBytes ) ) );
};
template<class Unit>
using Vector = typename VectorOf<Unit>::Type;

template<class Unit>
Vector<Unit> Load( const Unit* inUnits )
{
    Vector<Unit> block;
    std::memcpy( &block, inUnits, kBlockBytes );
    return block;
}

template<class AnyVector>
bool IsZero( const AnyVector& inVector )
{
    std::uint64_t halves[2];
    static_assert( sizeof halves == sizeof inVector );
    std::memcpy( halves, &inVector, sizeof halves );
    return ( halves[0] | halves[1] ) == 0;
}

// 0 for hardly ever. All that isn't here is rare enough.
template<class Unit>
std::size_t Frequency( Unit inUnit )
{
    constexpr std::string_view kMostFrequentFirst = " etaoinsrlhdcumpfgybwvk.,-0123456789x:/_\"'()=j;zq%";
    if ( Lane<Unit>( inUnit ) >= 0x80 )
        return 0;
    const std::size_t place = kMostFrequentFirst.find( char( inUnit ) );
    return place == std::string_view::npos ? 0 : kMostFrequentFirst.size() - place;
}

// The places of the two rarest units.
template<class Unit>
std::pair<std::size_t, std::size_t> RarestPlaces( std::basic_string_view<Unit> inNeedle )
{
    std::size_t first = 0, second = inNeedle.size() - 1;
    for ( std::size_t i = 0; i < inNeedle.size() and i < 64; ++i )
    {
        if ( Frequency( inNeedle[i] ) < Frequency( inNeedle[first] ) )
            first = i;
    }
    for ( std::size_t i = 0; i < inNeedle.size() and i < 64; ++i )
    {
        if ( i != first and ( second == first or Frequency( inNeedle[i] ) < Frequency( inNeedle[second] ) ) )
            second = i;
    }
    return { first, second };
}

template<class Unit>
std::size_t FindWithoutGoingBack(
    std::basic_string_view<Unit> inText, std::basic_string_view<Unit> inNeedle, std::size_t inFrom )
{
    // For each length of a part that matched, the longest shorter one that then matches too.
    std::vector<std::size_t> shorter( inNeedle.size() + 1, 0 );
    for ( std::size_t i = 1, length = 0; i < inNeedle.size(); ++i )
    {
        while ( length > 0 and inNeedle[i] != inNeedle[length] )
            length = shorter[length];
        length += inNeedle[i] == inNeedle[length];
        shorter[i + 1] = length;
    }
    for ( std::size_t i = inFrom, length = 0; i < inText.size(); ++i )
    {
        while ( length > 0 and inText[i] != inNeedle[length] )
            length = shorter[length];
        length += inText[i] == inNeedle[length];
        if ( length == inNeedle.size() )
            return i + 1 - length;
    }
    return std::basic_string_view<Unit>::npos;
}

} // namespace

template<class Unit>
LiteralSearch<Unit>::LiteralSearch( View inLiteral ) : mLiteral( inLiteral )
{
    if ( not mLiteral.empty() )
        std::tie( mFirst, mSecond ) = RarestPlaces( inLiteral );
}

template<class Unit>
std::size_t LiteralSearch<Unit>::Find( View inText, std::size_t inFrom ) const
{
    if ( mLiteral.empty() or mLiteral.size() > inText.size() )
        return View::npos;
    constexpr std::size_t kLanes = kBlockBytes / sizeof( Unit );
    const std::size_t end = inText.size() - mLiteral.size() + 1; // of the places where it could begin
    // Said as the lane's type: widening a plain char would smear its sign.
    const auto a = Vector<Unit>{} + Lane<Unit>( mLiteral[mFirst] );
    const auto b = Vector<Unit>{} + Lane<Unit>( mLiteral[mSecond] );
    const Unit* const first = inText.data() + mFirst;
    const Unit* const second = inText.data() + mSecond;
    std::size_t work = 0; // units that comparing may have looked at
    std::size_t at = inFrom;
    for ( ; at + 2 * kLanes <= end; at += 2 * kLanes )
    {
        const auto both = ( ( Load( first + at ) == a ) & ( Load( second + at ) == b ) ) |
            ( ( Load( first + at + kLanes ) == a ) & ( Load( second + at + kLanes ) == b ) );
        if ( IsZero( both ) )
            continue;
        if ( const std::size_t found = TryPlaces( inText, at, at + 2 * kLanes, work ); found != View::npos )
            return found;
        if ( work > 16 * ( at - inFrom ) + 4096 )
            return FindWithoutGoingBack( inText, View( mLiteral ), at + 2 * kLanes );
    }
    return TryPlaces( inText, at, end, work );
}

template<class Unit>
std::size_t LiteralSearch<Unit>::TryPlaces(
    View inText, std::size_t inBegin, std::size_t inEnd, std::size_t& ioWork ) const
{
    const Unit first = mLiteral[mFirst], second = mLiteral[mSecond];
    for ( std::size_t at = inBegin; at < inEnd; ++at )
    {
        if ( inText[at + mFirst] != first or inText[at + mSecond] != second )
            continue;
        ioWork += mLiteral.size();
        if ( inText.compare( at, mLiteral.size(), mLiteral ) == 0 )
            return at;
    }
    return View::npos;
}

template class LiteralSearch<char>;
template class LiteralSearch<char16_t>;

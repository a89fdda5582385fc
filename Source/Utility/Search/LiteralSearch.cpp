// The two units of the needle that are rarest in usual text are compared with a whole block of text at once,
// and the needle only where both stand. Where that fails too often, as in long runs of few letters, the rest
// is searched by the method of Knuth, Morris and Pratt, which never goes back.
#include "Utility/Search/LiteralSearch.h"

#include <cstdint>
#include <cstring>
#include <vector>

namespace
{
constexpr std::size_t kBlockBytes = 16;

template<class Unit>
using Lane = std::conditional_t<sizeof( Unit ) == 1, std::uint8_t, std::uint16_t>;

// The compilers' own vectors, so that one text serves every processor.
template<class Unit>
struct Block
{
    typedef Lane<Unit> Vector __attribute__( ( vector_size( kBlockBytes ) ) );
};

template<class Unit>
typename Block<Unit>::Vector Load( const Unit* inUnits )
{
    typename Block<Unit>::Vector block;
    std::memcpy( &block, inUnits, kBlockBytes );
    return block;
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

template<class Unit>
class Finder
{
public:
    Finder( std::basic_string_view<Unit> inText, std::basic_string_view<Unit> inNeedle )
        : mText( inText ),
          mNeedle( inNeedle ),
          mRarest( RarestPlaces( inNeedle ) )
    {}

    std::size_t Find( std::size_t inFrom )
    {
        constexpr std::size_t kLanes = kBlockBytes / sizeof( Unit );
        if ( mNeedle.size() > mText.size() )
            return npos;
        const std::size_t end = mText.size() - mNeedle.size() + 1; // of the places where it could begin
        const auto [first, second] = mRarest;
        // Said as the lane's type: widening a plain char would smear its sign.
        const auto a = typename Block<Unit>::Vector{} + Lane<Unit>( mNeedle[first] );
        const auto b = typename Block<Unit>::Vector{} + Lane<Unit>( mNeedle[second] );
        std::size_t at = inFrom;
        for ( ; at + kLanes <= end; at += kLanes )
        {
            const auto both = ( Load( mText.data() + at + first ) == a ) & ( Load( mText.data() + at + second ) == b );
            std::uint64_t halves[2];
            std::memcpy( halves, &both, kBlockBytes );
            if ( ( halves[0] | halves[1] ) == 0 )
                continue;
            if ( const std::size_t found = TryPlaces( at, at + kLanes ); found != npos )
                return found;
            if ( mWork > 16 * ( at - inFrom ) + 4096 )
                return FindWithoutGoingBack( mText, mNeedle, at + kLanes );
        }
        return TryPlaces( at, end );
    }

private:
    static constexpr std::size_t npos = std::basic_string_view<Unit>::npos;

    std::size_t TryPlaces( std::size_t inBegin, std::size_t inEnd )
    {
        const auto [first, second] = mRarest;
        for ( std::size_t at = inBegin; at < inEnd; ++at )
        {
            if ( mText[at + first] != mNeedle[first] or mText[at + second] != mNeedle[second] )
                continue;
            mWork += mNeedle.size();
            if ( mText.compare( at, mNeedle.size(), mNeedle ) == 0 )
                return at;
        }
        return npos;
    }

    std::basic_string_view<Unit> mText, mNeedle;
    std::pair<std::size_t, std::size_t> mRarest;
    std::size_t mWork = 0; // units that comparing may have looked at
};
} // namespace

std::size_t FindLiteral( std::string_view inText, std::string_view inNeedle, std::size_t inFrom )
{
    return Finder<char>( inText, inNeedle ).Find( inFrom );
}

std::size_t FindLiteral( TextView inText, TextView inNeedle, std::size_t inFrom )
{
    return Finder<char16_t>( inText, inNeedle ).Find( inFrom );
}

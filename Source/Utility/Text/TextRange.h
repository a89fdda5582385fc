// A stretch of a text, counted in UTF-16 units. Operations that may find nothing give an
// absent range, never a range with a magic location.
#pragma once

#include <algorithm>
#include <cstddef>
#include <ostream>

struct TextRange
{
    std::size_t mLocation = 0;
    std::size_t mLength = 0;

    [[nodiscard]] constexpr std::size_t End() const { return mLocation + mLength; }
    constexpr bool operator==( const TextRange& ) const = default;

    /// The part of this range that lies in a text of that length; an empty range at its end if none does.
    [[nodiscard]] constexpr TextRange ClippedTo( std::size_t inLength ) const
    {
        const std::size_t location = std::min( mLocation, inLength );
        return { location, std::min( mLength, inLength - location ) };
    }

    friend std::ostream& operator<<( std::ostream& ioStream, const TextRange& inRange )
    {
        return ioStream << '{' << inRange.mLocation << ", " << inRange.mLength << '}';
    }
};

// Walks the places in a text where another one, or a regular expression, is found: what the collection of
// that name runs over. Places are found from left to right and don't overlap; indexes count UTF-16 units.
// Searching for a text is linear in both lengths; a regular expression runs under the limits of its layer,
// anew from each position, so that "^" and "\A" match there. One thread.
#pragma once

#include "CFMethods/PropertyList.h"
#include "Utility/Text/TextRange.h"

#include <memory>
#include <optional>
#include <span>

enum class SubstringsInMatchType : std::int32_t { kCaseSensitive, kCaseInsensitive, kMatch };
inline constexpr TextView kSubstringsInMatchTypeNames[] = { u"CaseSensitive", u"CaseInsensitive", u"Match" };
static_assert( std::size( kSubstringsInMatchTypeNames ) == std::size_t( SubstringsInMatchType::kMatch ) + 1 );
constexpr auto NamesOf( SubstringsInMatchType )
{
    return std::span( kSubstringsInMatchTypeNames );
}

enum class SubstringsInResultType : std::int32_t { kString, kPosition, kRange };
inline constexpr TextView kSubstringsInResultTypeNames[] = { u"String", u"Position", u"Range" };
static_assert( std::size( kSubstringsInResultTypeNames ) == std::size_t( SubstringsInResultType::kRange ) + 1 );
constexpr auto NamesOf( SubstringsInResultType )
{
    return std::span( kSubstringsInResultTypeNames );
}

class SubstringsIn
{
public:
    /// Keeps copies. Null texts are assertions and count as "". Nothing is found of an empty search text.
    SubstringsIn( const XText& initWithString, const XText& searchString, SubstringsInMatchType matchType,
        SubstringsInResultType resultType );
    ~SubstringsIn();
    SubstringsIn( const SubstringsIn& ) = delete;
    SubstringsIn& operator=( const SubstringsIn& ) = delete;

    /// What was found, or its one-based start, or "start,length"; absent at the end.
    [[nodiscard]] std::optional<Text> nextObject();

private:
    class Searcher;

    [[nodiscard]] std::optional<TextRange> FindNext();

    Text mString;
    Text mSearch;
    SubstringsInMatchType mMatchType;
    SubstringsInResultType mResultType;
    std::size_t mPosition = 0;
    std::unique_ptr<Searcher> mSearcher; // of the two kinds that search for a text; made at first use
};

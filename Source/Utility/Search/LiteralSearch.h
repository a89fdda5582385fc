// Finding a literal in units of one or two bytes: most text is passed at the speed of memory, and the worst
// case is linear. Immutable; any thread.
#pragma once

#include "CFMethods/Text.h"

/// A literal, made ready to be looked for often.
template<class Unit>
class LiteralSearch
{
public:
    using View = std::basic_string_view<Unit>;

    LiteralSearch() = default;
    explicit LiteralSearch( View inLiteral );

    [[nodiscard]] const std::basic_string<Unit>& GetLiteral() const { return mLiteral; }
    /// Where the literal first stands, at or behind a place; npos if it doesn't, or is empty.
    [[nodiscard]] std::size_t Find( View inText, std::size_t inFrom = 0 ) const;

private:
    [[nodiscard]] std::size_t TryPlaces(
        View inText, std::size_t inBegin, std::size_t inEnd, std::size_t& ioWork ) const;

    std::basic_string<Unit> mLiteral;
    std::size_t mFirst = 0, mSecond = 0; // where its two rarest units stand
};

extern template class LiteralSearch<char>;
extern template class LiteralSearch<char16_t>;

// The texts of one object, made ready to be searched again and again: folded, one behind the other in one
// block of memory, so that a search for a word is one scan; what a search costs is fetching that memory. Texts
// of ASCII, which are nearly all, take a byte a character. Times and states aren't kept here, since they change
// by themselves. Immutable; any thread.
#pragma once

#include "Utility/Search/SearchPattern.h"
#include "Utility/Search/StringSearchee.h"

#include <memory>

class SearchableTexts
{
public:
    /// Stands between texts. No pattern with phrases holds it.
    static constexpr char16_t kSeparator = 0xFFFF;

    /// Undefined: holds nothing.
    SearchableTexts() = default;
    explicit SearchableTexts( const StringSearchee& inSearchee );

    /// Was anything collected, be it nothing at all?
    [[nodiscard]] bool Defined() const { return mBlock != nullptr; }
    /// Is there any text of the kind?
    [[nodiscard]] bool Has( StringSearchee::Kind inKind ) const;
    /// Does any text of the kind match? The kind kText stands for what a plain word is looked for in: texts, triggers,
    /// hot keys and names. Not for a pattern that needs the engine.
    [[nodiscard]] bool Matches( const SearchPattern& inPattern, StringSearchee::Kind inKind ) const;
    /// Memory beside the object itself.
    [[nodiscard]] std::size_t GetBytes() const;

private:
    struct Layout;
    struct Pieces;

    [[nodiscard]] const Layout& GetLayout() const;
    [[nodiscard]] Pieces PiecesOf( StringSearchee::Kind inKind ) const;

    // The layout; the texts of ASCII; the wide texts; the places within wide characters, as indexes.
    std::unique_ptr<const std::uint32_t[]> mBlock;
};

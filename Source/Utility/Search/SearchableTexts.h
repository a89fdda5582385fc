// The texts of one object, made ready to be searched again and again: folded, one behind the other in one
// piece of memory, so that a search for a word is one scan. Texts of ASCII, which are nearly all, take a
// byte a character. Times and states aren't kept here, since they change by themselves. Immutable; any thread.
#pragma once

#include "Utility/Search/SearchPattern.h"
#include "Utility/Search/StringSearchee.h"

#include <array>
#include <memory>

class SearchableTexts
{
public:
    /// Stands between texts. No pattern with phrases holds it.
    static constexpr char16_t kSeparator = 0xFFFF;

    SearchableTexts() = default;
    explicit SearchableTexts( const StringSearchee& inSearchee );

    /// Is there any text of the kind?
    [[nodiscard]] bool Has( StringSearchee::Kind inKind ) const;
    /// Does any text of the kind match? The kind kText stands for what a plain word is looked for in: texts, triggers,
    /// hot keys and names. Not for a pattern that needs the engine.
    [[nodiscard]] bool Matches( const SearchPattern& inPattern, StringSearchee::Kind inKind ) const;
    /// Memory beside the object itself.
    [[nodiscard]] std::size_t GetBytes() const;

private:
    static constexpr std::size_t kSlots = 7;
    template<class Unit>
    struct Store
    {
        std::unique_ptr<Unit[]> mUnits;
        std::array<std::uint32_t, kSlots> mEnds{}; // of each slot's texts

        void Set( const std::basic_string<Unit>& inUnits );
        [[nodiscard]] std::basic_string_view<Unit> Slots( std::size_t inFirst, std::size_t inLast ) const;
    };
    struct Slots
    {
        std::size_t mFirst, mLast;
    };

    [[nodiscard]] static std::size_t SlotOf( StringSearchee::Kind inKind );
    [[nodiscard]] static Slots SlotsOf( StringSearchee::Kind inKind );

    Store<char> mASCII;
    Store<char16_t> mWide;
    std::unique_ptr<const std::vector<std::uint32_t>> mInnerPlaces; // of the wide texts; null for none
};

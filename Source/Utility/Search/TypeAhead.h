// Finding a row of a list by typing: characters are collected as long as they come quickly, and the row that
// fits best is selected. Main thread.
#pragma once

#include "CFMethods/Text.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>

class TypeAhead
{
public:
    // Modifiers as triggers store them.
    static constexpr std::uint32_t kCommand = 256, kOption = 2048, kControl = 4096;

    /// How many seconds may go by between two characters, whether a blank stands for the rest of a word, and which
    /// modifiers mean that something else is meant than typing.
    explicit TypeAhead( double inAllowedSeconds = 1.0, bool inSpaceMagic = true,
        std::uint32_t inClearModifiers = kCommand | kOption | kControl )
        : mAllowedSeconds( inAllowedSeconds ),
          mSpaceMagic( inSpaceMagic ),
          mClearModifiers( inClearModifiers )
    {}

    /// What a key stroke types without its modifiers. Control and function keys begin anew.
    void addCharacterIgnoringModifiers( TextView inCharacters );
    /// Begins anew if any of the modifiers is held.
    void checkClearModifiers( std::uint32_t inModifiers );
    void Clear() { mText.clear(); }
    [[nodiscard]] const Text& GetText() const { return mText; }

    /// The text of an item, by its index.
    using TextFunction = std::function<Text( std::size_t inIndex )>;
    /// The item that fits the collected text best; absent without items.
    [[nodiscard]] std::optional<std::size_t> bestMatch( std::size_t inCount, const TextFunction& usingFunction ) const;

private:
    [[nodiscard]] Text Pattern() const;

    double mAllowedSeconds;
    bool mSpaceMagic;
    std::uint32_t mClearModifiers;
    Text mText;
    double mLastTime = 0; // of the clock that never goes back
};

// What a search term says about a text. A term is stored as a case-insensitive regular expression, but of a
// language so small (literal characters, "\s+", and modifier glyphs that may be absent) that it is matched
// without an expression engine, and with exactly the engine's result: both sides are case-folded fully, and a
// match never begins or ends within a character that folds to several ("ß" is "ss", but not "s" and "s").
// Immutable; any thread.
#pragma once

#include "CFMethods/Text.h"
#include "Utility/Search/LiteralSearch.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// A literal text, as it is looked for in folded texts.
struct SearchLiteral
{
    Text mText; ///< folded when the pattern is ready
    LiteralSearch<char16_t> mFolded;
    LiteralSearch<char> mASCII;    ///< the same, if it is ASCII; else empty, since no ASCII text has it
    std::size_t mBlanksBefore = 0; ///< at least so many white-space characters stand before it
};

class SearchPattern
{
public:
    /// One literal after the other, with white space between.
    using Phrase = std::vector<SearchLiteral>;

    SearchPattern() = default;
    /// The expression of a term, escaped by SafeExpression.
    explicit SearchPattern( TextView inExpression );

    [[nodiscard]] const Text& GetExpression() const { return mExpression; }
    /// An empty pattern matches every text.
    [[nodiscard]] bool IsEmpty() const { return mExpression.empty(); }
    /// A text matches if it has any of these; each has at least one literal that isn't empty.
    [[nodiscard]] std::span<const Phrase> GetPhrases() const { return mPhrases; }
    /// True for what isn't worth own code: halves of surrogate pairs, white space that is a literal behind other white
    /// space. Then there are no phrases, and the expression decides.
    [[nodiscard]] bool NeedsEngine() const { return mPhrases.empty() and not IsEmpty(); }
    /// Does the text match? Folds it; for one text among many see SearchableTexts.
    [[nodiscard]] bool Matches( TextView inText ) const;

    /// ASCII letters and digits, "-" and ":" as they are; U+00A0 as "\s+"; all else by its number.
    [[nodiscard]] static Text SafeExpression( TextView inTerm );

private:
    Text mExpression;
    std::vector<Phrase> mPhrases;
};

// A parsed search string, as it is typed in the search field and stored in smart groups. Terms stand between
// blanks, and all of them must hold: words, "phrases", -negations, and tags such as group:, application: or
// created:1d, which may be abbreviated. One thread.
#pragma once

#include "CFMethods/PropertyList.h"
#include "Utility/Search/SearchPattern.h"
#include "Utility/Search/StringSearchee.h"

#include <span>
#include <vector>

/// One term: an element whose text is a regular expression, or the state that is asked for, and whose age is the
/// limit of a time.
struct SearchTerm : StringSearchee::Element
{
    SearchPattern mPattern;
};

/// Something whose texts were collected before. Times and states are asked for each time.
class SearchSource
{
public:
    virtual ~SearchSource() = default;
    /// For patterns that need no engine.
    [[nodiscard]] virtual bool AnyTextMatches( const SearchPattern& inPattern, StringSearchee::Kind inKind ) const = 0;
    [[nodiscard]] virtual bool IsGlobal() const = 0;
    /// Absent for what is neither enabled nor disabled.
    [[nodiscard]] virtual std::optional<bool> GetEnabled() const = 0;
    /// Of a kind of time, the seconds since then; absent if there is no such time.
    [[nodiscard]] virtual std::optional<double> GetAge( StringSearchee::Kind inKind ) const = 0;
    /// Everything anew, as nothing but its own expression can tell what a term means.
    virtual void Collect( StringSearchee& ioSearchee ) const = 0;
};

class StringSearcher
{
public:
    /// No sane search has more terms; further ones are left out, with a line in the log.
    static constexpr std::size_t kMaxTerms = 64;

    StringSearcher() = default;
    explicit StringSearcher( TextView inText );
    explicit StringSearcher( const XText& inText ) : StringSearcher( TextView( inText.GetText() ) ) {}

    /// Adds one term, without parsing blanks or quotes. White space at its ends doesn't count.
    void Add( TextView inTerm );
    [[nodiscard]] std::span<const SearchTerm> GetTerms() const { return mTerms; }

    /// True when there is nothing to test.
    [[nodiscard]] bool Useless() const { return mTerms.empty(); }
    /// True when any term asks for more than a text anywhere.
    [[nodiscard]] bool HasSpecial() const;
    /// True when every object matches.
    [[nodiscard]] bool MatchesAll() const;
    /// True when the result changes as time goes by.
    [[nodiscard]] bool IsTimeSensitive() const;

    /// Do all terms hold? Lowers the next-change time, also by a term before one that fails.
    [[nodiscard]] bool Matches( const StringSearchee& inSearchee );
    /// The same with the same result, for what is searched often.
    [[nodiscard]] bool Matches( const SearchSource& inSource );
    /// Seconds until the result may change.
    [[nodiscard]] double NextChange() const { return mNextChange; }

    /// For each term that isn't negated, the first element by which it matches; null if there is none, and for a
    /// term that matches everything. The pointers live as long as the searchee's elements.
    [[nodiscard]] std::vector<const StringSearchee::Element*> Reasons( const StringSearchee& inSearchee ) const;

    /// A sample, for a field that is empty.
    [[nodiscard]] static Text RandomInitialSearchString();
    /// The words that a search field offers.
    [[nodiscard]] static std::vector<Text> SearchStringCompletions();

private:
    void AddTerm( StringSearchee::Kind inKind, bool inNegated, Text inText, double inAge = 0 );

    std::vector<SearchTerm> mTerms;
    double mNextChange = 1314000000.0;
};

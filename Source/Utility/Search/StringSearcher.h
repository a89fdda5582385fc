// A parsed search string: what smart groups and the search field ask of it. The search language
// installs the maker; until then no string can be made into a searcher. Main thread.
#pragma once

#include "CFMethods/PropertyList.h"

#include <functional>
#include <memory>

class StringSearchee;

class StringSearcher
{
public:
    virtual ~StringSearcher() = default;
    /// True when there is nothing to test.
    [[nodiscard]] virtual bool Useless() const = 0;
    /// True when every object matches.
    [[nodiscard]] virtual bool MatchesAll() const = 0;
    /// True when the result changes as time goes by.
    [[nodiscard]] virtual bool IsTimeSensitive() const = 0;
    /// Does the searchee match? Lowers the next-change time.
    [[nodiscard]] virtual bool Matches( const StringSearchee& inSearchee ) = 0;
    /// Seconds until the result may change.
    [[nodiscard]] virtual double NextChange() const = 0;

    using Maker = std::function<std::unique_ptr<StringSearcher>( const XText& inText )>;
    static void SetMaker( Maker inMaker );
    /// Null when no search language is installed.
    [[nodiscard]] static std::unique_ptr<StringSearcher> Create( const XText& inText );
};

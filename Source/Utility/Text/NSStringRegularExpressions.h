// Regular expressions: ICU's syntax over UTF-16. Patterns are the user's and can be hostile, so
// this layer owns every call of the engine and always sets its limits:
// - a pattern has at most 65,536 units and 2,000 character sets, 200 where it ignores case (closing
//   a set over case is what compiling costs);
// - a call takes at most 1,000 ticks, which count steps, so that results don't depend on the
//   machine, and 8 MB of backtracking stack;
// - where the engine doesn't count (long literals, back references), one second and a microsecond for
//   each unit of the text.
// A call that is stopped has no match, not even those found before, and logs that under "RegEx"; so
// does each call when that log is on. An invalid pattern matches nothing. Any thread.
#pragma once

#include "CFMethods/Text.h"
#include "Utility/Text/TextRange.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

/// Flags; their sum is what the cache's key holds.
enum class RegexOptions : std::uint32_t {
    kNone = 0,
    kCaseInsensitive = 1,
    kAllowComments = 2,            ///< white space and # comments in the pattern
    kIgnoreMetacharacters = 4,     ///< the pattern is a literal text
    kDotMatchesLineSeparators = 8, ///< "." matches line ends too
    kAnchorsMatchLines = 16,       ///< "^" and "$" match at each line
    kUseUnixLineSeparators = 32,   ///< only LF ends a line
    kUseUnicodeWordBoundaries = 64
};
constexpr RegexOptions operator|( RegexOptions a, RegexOptions b )
{
    return RegexOptions( std::uint32_t( a ) | std::uint32_t( b ) );
}
constexpr bool operator&( RegexOptions a, RegexOptions b )
{
    return ( std::uint32_t( a ) & std::uint32_t( b ) ) != 0;
}

/// A compiled pattern; immutable.
class XRegularExpression;

/// One match while it is looked at: captures are read out of the engine when they are asked for, so it doesn't
/// outlive the call that gave it.
class RegexMatch
{
public:
    RegexMatch( TextView inText, void* inEngine ) : mText( inText ), mEngine( inEngine ) {}

    /// The whole match.
    [[nodiscard]] TextRange GetRange() const { return GetRange( 0 ).value_or( TextRange() ); }
    /// A capture, counted from 1; absent if it took no part or doesn't exist.
    [[nodiscard]] std::optional<TextRange> GetRange( std::size_t inCapture ) const;
    /// Its text, empty if it has none; a view into the text that was searched.
    [[nodiscard]] TextView GetText( std::size_t inCapture = 0 ) const;
    /// How many captures the pattern has.
    [[nodiscard]] std::size_t GetCaptureCount() const;

private:
    TextView mText;
    void* mEngine;
};

namespace NSStringRegularExpressions
{
inline constexpr std::size_t kMaxPatternLength = 65536;

/// The compiled pattern out of the cache, which holds failures too: a pattern that doesn't compile logs "Invalid
/// regular expression ..." once and is null at once from then on. Null for an empty pattern.
[[nodiscard]] std::shared_ptr<const XRegularExpression> RegularExpressionWithPattern(
    TextView inPattern, RegexOptions inOptions = RegexOptions::kNone );

/// Shows the matches from left to right until the visitor answers false. Ranges count in the whole text, also when
/// only a range of it is searched; the ends of that range count as ends of the text. False when the
/// search was stopped by a limit: what was seen of it is void then.
[[nodiscard]] bool EnumerateMatches( TextView inText, TextView inRegex, RegexOptions inOptions,
    std::optional<TextRange> inRange, const std::function<bool( const RegexMatch& inMatch )>& inVisitor );
} // namespace NSStringRegularExpressions

[[nodiscard]] bool isMatchedByRegex( TextView inText, TextView inRegex, RegexOptions inOptions = RegexOptions::kNone );

/// Where the capture of the first match lies; absent without a match, and for a capture that took no part.
[[nodiscard]] std::optional<TextRange> rangeOfRegex( TextView inText, TextView inRegex,
    RegexOptions inOptions = RegexOptions::kNone, std::optional<TextRange> inRange = {}, std::size_t inCapture = 0 );

/// The capture's text in the first match, or absent as above.
[[nodiscard]] std::optional<Text> stringByMatching(
    TextView inText, TextView inRegex, RegexOptions inOptions = RegexOptions::kNone, std::size_t inCapture = 0 );

/// The text of each match.
[[nodiscard]] std::vector<Text> stringsMatchedByRegex(
    TextView inText, TextView inRegex, RegexOptions inOptions = RegexOptions::kNone );

/// The first match and then its captures, "" for one that took no part; empty without a match.
[[nodiscard]] std::vector<Text> captureComponentsMatchedByRegex(
    TextView inText, TextView inRegex, RegexOptions inOptions = RegexOptions::kNone );

/// The pieces between the matches, empty ones included. A match of nothing doesn't split; without a match the whole
/// text is the one piece.
[[nodiscard]] std::vector<Text> componentsSeparatedByRegex(
    TextView inText, TextView inRegex, RegexOptions inOptions = RegexOptions::kNone );

/// Replaces each match. In the template `$1` and `${name}` are captures, with as many digits as make a capture that
/// exists; one that doesn't exist, or took no part, is empty. `\` makes the next character literal, `\u` and `\U` begin
/// a character by its hexadecimal number. A `$` before anything else is itself.
[[nodiscard]] Text stringByReplacingOccurrencesOfRegex(
    TextView inText, TextView inRegex, TextView inTemplate, RegexOptions inOptions = RegexOptions::kNone );

/// Gives the replacement of a match, or absent to leave it.
using RegexReplacementBlock = std::function<std::optional<Text>( const RegexMatch& inMatch )>;
[[nodiscard]] Text kvr_stringByReplacingOccurrencesOfRegex( TextView inText, TextView inRegex,
    const RegexReplacementBlock& withStringFromBlock, RegexOptions inOptions = RegexOptions::kNone );

/// The same in place, in a range. Gives the number of replacements.
std::size_t kvr_slow_replaceOccurrencesOfRegex( Text& ioText, TextView inRegex, TextView inTemplate,
    RegexOptions inOptions = RegexOptions::kNone, std::optional<TextRange> inRange = {} );
std::size_t kvr_slow_replaceOccurrencesOfRegex( Text& ioText, TextView inRegex, const RegexReplacementBlock& usingBlock,
    RegexOptions inOptions = RegexOptions::kNone, std::optional<TextRange> inRange = {} );

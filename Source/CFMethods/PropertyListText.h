// Property-list values as text for people: the indented tree, one value on one line, the path of a value. The
// content comes from strangers' files, so whatever a terminal could take for a command is shown as an
// escape. All results are UTF-8. Any thread.
#pragma once

#include "CFMethods/PropertyList.h"

#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>

/// The text with control characters, direction marks and line separators shown as \u001B and so on, and lone
/// surrogates as \uD800. White space is among the control characters; the backslash stays as it is.
[[nodiscard]] std::string ShownText( TextView inText );
/// The same of UTF-8; ill-formed bytes become U+FFFD.
[[nodiscard]] std::string ShownText( std::string_view inUTF8 );

/// The text in double quotes, with \" \\ \n \r \t as well: a JSON string, from which every text, lone surrogates
/// included, can be had back.
[[nodiscard]] std::string QuotedText( const XPlistString& inText );
[[nodiscard]] std::string QuotedText( TextView inText );

/// ISO 8601 in UTC, with as many digits of the fraction as bring back the same bits; absent when no such text does
/// (not finite, minus zero, or more than 1e18 seconds from 2001).
[[nodiscard]] std::optional<std::string> ISODateText( double inSeconds );
/// The date of such a text; absent when it is none.
[[nodiscard]] std::optional<double> DateOfISOText( std::string_view inText );

[[nodiscard]] std::string Base64Text( std::span<const std::uint8_t> inBytes );
/// Data of base64, in which white space is passed over; null when it isn't base64.
[[nodiscard]] CFContainer<XPlistData> DataOfBase64( std::string_view inText );

/// A number as digits. Reals have a point or an exponent, and integers have neither; "nan", "+infinity".
[[nodiscard]] std::string NumberText( const XPlistNumber& inNumber );

/// One line of a value: strings in quotes, cut after so many units; containers and data by their size.
[[nodiscard]] std::string BriefText( const __SafeCFPropertyList& inValue, std::size_t inMostUnits = 60 );

struct XPlistPrintOptions
{
    std::size_t mMostDepth = std::numeric_limits<std::size_t>::max(); ///< levels of containers that are opened
    bool mFullData = false;                 ///< data whole, in base64, instead of the first bytes in hexadecimal
    std::string_view mBeforeKey, mAfterKey; ///< what switches a colour on and off
};

/// The value as an indented tree, a line for each value, keys in stored order. Lines deeper than 64 levels are
/// indented as those at 64, so that the text stays in proportion to the value.
[[nodiscard]] std::string PrintPropertyList(
    const __SafeCFPropertyList& inValue, const XPlistPrintOptions& inOptions = {} );

/// A key, or the index of an element. In a comparison the element may stand elsewhere in the newer array.
struct XPlistPathStep
{
    XText mKey; ///< null when it is an index
    std::size_t mIndex = 0, mNewIndex = 0;
};

enum class XPlistSide : std::uint8_t { kOld, kNew };

/// The path of a value, as .MacroGroups[2].Name or .["odd key"][0]; "." for the root.
[[nodiscard]] std::string PathText( std::span<const XPlistPathStep> inPath, XPlistSide inSide = XPlistSide::kOld );

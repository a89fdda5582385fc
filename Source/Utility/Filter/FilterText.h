// The named transformations of a text.
#pragma once

#include "CFMethods/Text.h"

#include <cstdint>
#include <iterator>
#include <span>

namespace FilterText
{
enum class Action : std::int32_t {
    kRemoveStyles,
    kMacLineEndings,
    kUnixLineEndings,
    kWindowsLineEndings,
    kTrimWhitespace,
    kWrap,
    kUnwrap,
    kLowercase,
    kLowercaseFirst,
    kUppercase,
    kUppercaseFirst,
    kCapitalize,
    kTitleCase,
    kSmartQuotes,
    kDumbQuotes,
    kFrenchQuotes,
    kSpaces, ///< without effect, as the next one: older files have them
    kTabs,
    kEncodeHTMLEntities,
    kEncodeNonASCIIHTMLEntities,
    kDecodeHTMLEntities,
    kMakeHTMLList,
    kPercentEncodeForURL,
    kPercentDecodeURL,
    kQuoteForAppleScript,
    kQuoteForJavaScript,
    kQuoteForShellScript,
    kQuoteForSwift,
    kLastPathComponent,
    kDeleteLastPathComponent,
    kPathExtension,
    kDeletePathExtension,
    kBaseName,
    kDisplayName,
    kExpandTildeInPath,
    kAbbreviateWithTildeInPath,
    kResolveSymlinks,
    kStandardizePath,
    kZapControlCharacters,
    kBulletControlCharacters,
    kCalculate,
    kProcessTokens,
    kValueOfNamedVariable,
    kValueOfNamedClipboard,
    kCharacterCount,
    kWordCount,
    kLineCount,
    kJSONCompact,
    kJSONPretty,
};
inline constexpr TextView kAFilterTextNames[] = { u"RemoveStyles", u"MacLineEndings", u"UnixLineEndings",
    u"WindowsLineEndings", u"TrimWhitespace", u"Wrap", u"Unwrap", u"Lowercase", u"LowercaseFirst", u"Uppercase",
    u"UppercaseFirst", u"Capitalize", u"TitleCase", u"SmartQuotes", u"DumbQuotes", u"FrenchQuotes", u"Spaces", u"Tabs",
    u"EncodeHTMLEntities", u"EncodeNonASCIIHTMLEntities", u"DecodeHTMLEntities", u"MakeHTMLList",
    u"PercentEncodeForURL", u"PercentDecodeURL", u"QuoteForAppleScript", u"QuoteForJavaScript", u"QuoteForShellScript",
    u"QuoteForSwift", u"LastPathComponent", u"DeleteLastPathComponent", u"PathExtension", u"DeletePathExtension",
    u"BaseName", u"DisplayName", u"ExpandTildeInPath", u"AbbreviateWithTildeInPath", u"ResolveSymlinks",
    u"StandardizePath", u"ZapControlCharacters", u"BulletControlCharacters", u"Calculate", u"ProcessTokens",
    u"ValueOfNamedVariable", u"ValueOfNamedClipboard", u"CharacterCount", u"WordCount", u"LineCount", u"JSONCompact",
    u"JSONPretty" };
static_assert( std::size( kAFilterTextNames ) == std::size_t( Action::kJSONPretty ) + 1 );
constexpr auto NamesOf( Action )
{
    return std::span( kAFilterTextNames );
}

/// What a filter is called, in the user's language.
[[nodiscard]] const Text& GetDescription( Action inAction );
} // namespace FilterText

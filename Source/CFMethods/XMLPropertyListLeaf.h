// The text forms that numbers, dates and data have in an XML property list, both ways. Private to
// this folder. All of it is the same in every locale.
#pragma once

#include "CFMethods/PropertyList.h"

#include <optional>
#include <string>
#include <string_view>

/// Why a document is refused. The position is the one in the element's text where there is one,
/// otherwise the tag that is being read.
struct XMLPlistRefusal
{
    std::string mMessage;
    std::optional<std::size_t> mTextOffset = {};
};

namespace XMLPlistLeaf
{
[[nodiscard]] constexpr bool IsSpace( char inByte )
{
    return inByte == ' ' or inByte == '\t' or inByte == '\n' or inByte == '\r';
}

/// A text from the input in quotes for a message: cut after some 40 bytes, control characters made visible.
[[nodiscard]] std::string Quoted( std::string_view inUTF8 );

// Each takes an element's whole text, white space around it allowed, and gives a value with one
// reference, which is the caller's. Throws XMLPlistRefusal when the text isn't of the form.
[[nodiscard]] const XPlistNode* MakeInteger( std::string_view inText );
[[nodiscard]] const XPlistNode* MakeReal( std::string_view inText );
[[nodiscard]] const XPlistNode* MakeDate( std::string_view inText );
[[nodiscard]] const XPlistNode* MakeData( std::string_view inText );

/// Dates this far from 2001 (in seconds, some 30,000 million years) and no farther have a text form.
inline constexpr double kMostDateSeconds = 1e18;

// Each writes the shortest text that reads back as the same value, and gives its end.
inline constexpr std::size_t kMostNumberLength = 32;
inline constexpr std::size_t kMostDateLength = 512; // the least fractions have some 340 digits
char* FormatReal( char* outText, double inValue );
/// The date must be finite and within kMostDateSeconds.
char* FormatDate( char* outText, double inSeconds );

/// Base64 of at most three bytes: four characters, padded.
void EncodeTriple( char* outText, const std::uint8_t* inBytes, std::size_t inCount );
} // namespace XMLPlistLeaf

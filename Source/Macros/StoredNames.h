// Reading what files hold as names: enumerators, and lists of texts. Main thread.
#pragma once

#include "CFMethods/PropertyList.h"

#include <optional>
#include <span>
#include <string_view>
#include <vector>

/// The index of the first name that equals the text exactly, or absent.
[[nodiscard]] std::optional<std::size_t> IndexOfStoredName(
    const XText& inName, std::span<const std::string_view> inNames );

/// The same among the names of a table beside its enumeration.
[[nodiscard]] std::optional<std::size_t> IndexOfStoredName( const XText& inName, std::span<const TextView> inNames );

/// The index of the name under a key; the default when the key is missing, no string, or unknown, which the
/// load observer is told of when a value stood there.
[[nodiscard]] std::size_t GetStoredName( const XPlistDictionary& inDictionary, const XKey& inKey,
    std::span<const std::string_view> inNames, std::size_t inDefault = 0 );

template<class Enumeration>
[[nodiscard]] Enumeration GetStoredEnumerator( const XPlistDictionary& inDictionary, const XKey& inKey,
    std::span<const std::string_view> inNames, Enumeration inDefault = Enumeration() )
{
    return Enumeration( GetStoredName( inDictionary, inKey, inNames, std::size_t( inDefault ) ) );
}

/// The name of an enumerator as a value.
template<class Enumeration>
[[nodiscard]] __SafeCFPropertyList StoredName( std::span<const std::string_view> inNames, Enumeration inValue )
{
    return XPlistString::MakeASCII( inNames[std::size_t( inValue )] );
}

/// The texts of an array. Anything else in it is left out, which the load observer is told of.
[[nodiscard]] std::vector<XText> TextsOf( const XPlistArray& inArray );

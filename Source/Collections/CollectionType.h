// The types of collection, by the names that files hold.
#pragma once

#include "CFMethods/Text.h"

#include <cstdint>
#include <iterator>
#include <span>

enum class CollectionType : std::int32_t {
    kRange,
    kApplications,
    kFiles,
    kFinderSelection,
    kVolumes,
    kLinesIn,
    kSubstringsIn,
    kPastClipboards,
    kDictionaries,
    kDictionaryKeys,
    kFoundImages,
    kVariables,
    kJSON,
};
inline constexpr TextView kCollectionTypeNames[] = { u"Range", u"Applications", u"Files", u"FinderSelection",
    u"Volumes", u"LinesIn", u"SubstringsIn", u"PastClipboards", u"Dictionaries", u"DictionaryKeys", u"FoundImages",
    u"Variables", u"JSON" };
static_assert( std::size( kCollectionTypeNames ) == std::size_t( CollectionType::kJSON ) + 1 );
constexpr auto NamesOf( CollectionType )
{
    return std::span( kCollectionTypeNames );
}

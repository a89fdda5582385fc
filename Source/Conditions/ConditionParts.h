// What conditions of several subjects share.
#pragma once

#include "CFMethods/PropertyList.h"

#include <iterator>
#include <span>

/// How something is found by its title.
enum class ConditionSelectionType : std::int32_t { kIs, kContains, kMatches };
inline constexpr TextView kConditionSelectionTypeNames[] = { u"Is", u"Contains", u"Matches" };
static_assert( std::size( kConditionSelectionTypeNames ) == std::size_t( ConditionSelectionType::kMatches ) + 1 );
constexpr auto NamesOf( ConditionSelectionType )
{
    return std::span( kConditionSelectionTypeNames );
}

/// Whether something is there.
enum class ExistenceConditionType : std::int32_t { kExists, kDoesNotExist };
inline constexpr TextView kExistenceConditionTypeNames[] = { u"Exists", u"DoesNotExist" };
static_assert( std::size( kExistenceConditionTypeNames ) == std::size_t( ExistenceConditionType::kDoesNotExist ) + 1 );
constexpr auto NamesOf( ExistenceConditionType )
{
    return std::span( kExistenceConditionTypeNames );
}

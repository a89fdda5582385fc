// Payloads as they travel on the bus: a dictionary of property-list values as "a{sv}" and back. What comes from other
// processes is taken only in exactly these forms:
//
//   string s; one that isn't valid there (NUL, a lone surrogate): its UTF-16 units aq
//   number x, t above the signed range, d; boolean b; date (d), seconds since 2001; data ay
//   array av; dictionary a{sv}; either of them deeper than the bus carries: its binary property list (ay)
//
// Private to this folder. Any thread.
#pragma once

#include "CFMethods/PropertyList.h"
#include "Platform/Linux/GLibHolders.h"

#include <string>

namespace PropertyListVariant
{
inline constexpr std::size_t kMaxBytes = std::size_t( 16 ) << 20;
/// Containers within containers, the payload being 1. The bus takes 64 levels of its own, of which one here costs 3.
inline constexpr int kMaxDepth = 12;

/// The payload as "a{sv}"; null stands as an empty one. Null, with the reason, when it can't travel: it is
/// too large, or a key isn't a valid string there.
[[nodiscard]] GVariantPtr FromPayload( const CFContainer<XPlistDictionary>& inPayload, std::string& outFault );

/// The payload of what another process sent, never null on success. Null, with the reason, when it isn't "a{sv}" of the
/// forms above or too large.
[[nodiscard]] CFContainer<XPlistDictionary> ToPayload( GVariant* inVariant, std::string& outFault );
} // namespace PropertyListVariant

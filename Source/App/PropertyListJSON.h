// Property lists as JSON and back, without loss:
//     data            {"$data": "base64"}
//     date            {"$date": "2024-01-31T09:30:00Z"}; {"$date": seconds since 2001-01-01 UTC} where no such
//                     text gives the same bits
//     NaN, infinity   {"$real": "nan"}, "inf", "-inf"; a NaN of other bits {"$real": "nan:7FF8000000000001"}
//     a real          always with a point or an exponent (5.0); an integer never, and exact to 64 bits
//     lone surrogate  \uD800
// A key of a dictionary that is one of these words itself gets another "$" in front ("$$data"). Any thread.
#pragma once

#include "CFMethods/PropertyListCodec.h"

#include <string>
#include <string_view>

/// Two blanks for each level, but no more from level 64 on; keys in stored order; ends with a line feed. The
/// value must not be null.
[[nodiscard]] std::string WritePropertyListJSON( const __SafeCFPropertyList& inValue );

struct XPlistJSONResult
{
    __SafeCFPropertyList mValue; ///< null exactly when there is a fault
    std::optional<XPlistFault> mFault;
    std::vector<XPlistNote> mNotes; ///< at most 100
};

/// Reads strict JSON in UTF-8, with or without a byte-order mark. The limits are those of property lists; null, a
/// number beyond 64 bits and text that isn't well-formed are refused. Doesn't recurse.
[[nodiscard]] XPlistJSONResult ReadPropertyListJSON(
    std::span<const std::uint8_t> inBytes, const XPlistLimits& inLimits = {} );

/// Whether the bytes begin as JSON does, and as no property list does.
[[nodiscard]] bool BeginsAsJSON( std::span<const std::uint8_t> inBytes );

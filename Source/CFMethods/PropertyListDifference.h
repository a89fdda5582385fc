// What differs between two property lists, by path. Dictionaries are compared by key. Elements of
// arrays are aligned first, so that one inserted element is one difference and not a change of all that
// follow it. Neither the depth of a value nor a crafted one can exhaust the stack or make the comparison
// quadratic: see XPlistDifferenceLimits. Any thread.
#pragma once

#include "CFMethods/PropertyListText.h"

#include <cstdint>
#include <string>
#include <vector>

struct XPlistDifference
{
    enum class Kind : std::uint8_t { kAdded, kRemoved, kChanged };

    /// Indexes of elements are those of the old array in mIndex and those of the new one in mNewIndex. The last
    /// step of what was added has its place in the new array in both, and of what was removed in the old.
    std::vector<XPlistPathStep> mPath;
    Kind mKind;
    __SafeCFPropertyList mOld; ///< null when added
    __SafeCFPropertyList mNew; ///< null when removed
};

/// The kind's word for people: "added", "removed", "changed".
[[nodiscard]] const char* NameOf( XPlistDifference::Kind inKind );

struct XPlistDifferenceLimits
{
    /// More than these are counted and not kept.
    std::size_t mMostDifferences = 100'000;
    /// Between their common beginnings and ends two arrays are aligned as a whole when the product of their lengths is
    /// at most this (1,000 elements each). Beyond, elements that stand once in both split them; a stretch between two of
    /// these that is still too long is compared index by index.
    std::size_t mMostCells = 1'000'000;
    /// All alignments of one comparison together; index by index once it is used up.
    std::size_t mMostCellsTogether = 16'000'000;
};

struct XPlistDifferences
{
    std::vector<XPlistDifference> mDifferences; ///< in the order of the old value, mostly
    std::uint64_t mCount = 0;                   ///< all of them, kept or not
};

/// Compares as `__SafeCFPropertyList::Equals` does: integers apart from reals, floats by their bits. Neither value
/// may be null.
[[nodiscard]] XPlistDifferences FindDifferences(
    const __SafeCFPropertyList& inOld, const __SafeCFPropertyList& inNew, const XPlistDifferenceLimits& inLimits = {} );

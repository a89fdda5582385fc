// The default libraries of macros that come with the program: which of them a macros file still lacks, by its version,
// and how they get in. Main thread.
#pragma once

#include "CFMethods/Text.h"

#include <cstdint>
#include <set>
#include <span>

class MMacroDomain;

namespace MDefaultLibraries
{
struct Row
{
    std::u16string_view mUID;
    std::uint32_t mVersion; ///< a file of this version or above has been offered it
};
[[nodiscard]] std::span<const Row> Rows();

/// The libraries that a file of this version lacks. The others are marked as imported.
[[nodiscard]] std::set<Text> CheckAdditions( std::uint32_t inMacroPreferencesVersion );
/// Merges those of the libraries into the domain, in the order of their files' names, and marks them as imported.
void Add( const std::set<Text>& inUIDs, MMacroDomain& ioDomain );
} // namespace MDefaultLibraries

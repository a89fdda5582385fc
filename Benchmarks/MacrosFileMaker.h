// Makes macros files of any size as values: groups of macros with triggers and nested actions,
// mostly ASCII text with some foreign text between, scripts of a few hundred bytes, and numbers,
// booleans and data as real files have them. The same count gives the same file, everywhere.
#pragma once

#include "CFMethods/PropertyList.h"

/// About 2.6 KB a macro in the binary form.
[[nodiscard]] __SafeCFPropertyList MakeMacrosFile( std::size_t inMacros );

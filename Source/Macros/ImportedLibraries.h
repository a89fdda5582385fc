// Which libraries of macros were imported: the setting "ImportedLibraries", read once. Main thread.
#pragma once

#include "CFMethods/Text.h"

namespace ImportedLibraries
{
[[nodiscard]] bool WasImported( TextView inUID );
/// From now on it was; stored when it is new.
void Imported( TextView inUID );
/// The setting is read again at the next question. For the end of the application and for tests.
void Reset();
} // namespace ImportedLibraries

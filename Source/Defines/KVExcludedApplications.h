// Three lists of applications in the settings: those that are shown whatever else is hidden, those that the
// applications palette leaves out, and those whose copies don't come into the clipboard history. The engine reads and
// writes them, too. They are read once, and again when the engine has changed one. Any
// thread may read.
#pragma once

#include "XCAF/XApplicationIdentifier.h"

namespace KVExcludedApplications
{
// A list that is missing is empty, and so, after a log line, is a setting that is no list.
[[nodiscard]] XApplicationList GetAlwaysVisible();
[[nodiscard]] XApplicationList GetApplicationsPalette();
[[nodiscard]] XApplicationList GetNoClipboard();

// Each stores the list and tells the engine. Main thread.
void SetAlwaysVisible( const XApplicationList& inApplications );
void SetApplicationsPalette( const XApplicationList& inApplications );
void SetNoClipboard( const XApplicationList& inApplications );
} // namespace KVExcludedApplications

// Every UID that was ever assigned to any object of this process. Guarded by a mutex of its own; any
// thread.
#pragma once

#include "CFMethods/PropertyList.h"

namespace MUIDEverSeen
{
/// Asserts that the UID isn't empty, and ignores one that is.
void AddUID( const XText& inUID );
/// True when the UID was assigned before.
[[nodiscard]] bool Contains( const XText& inUID );
} // namespace MUIDEverSeen

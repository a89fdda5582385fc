// User-visible text is reached by a key. The texts stand in one resource, an XML property list
// of key to text, which is part of the program and is read once, on first use. Any thread.
#pragma once

#include "CFMethods/Text.h"
#include "Utility/Text/Format.h"

/// The text of a key. A key without a text shows itself, and is logged once under "always".
[[nodiscard]] const Text& kvr_localized( TextView inKey );

/// The same by the name that text operations have.
[[nodiscard]] inline const Text& localized( TextView inKey )
{
    return kvr_localized( inKey );
}

/// True when the resource has a text for the key.
[[nodiscard]] bool kvr_hasLocalized( TextView inKey );

/// The localised format of a key, filled in.
template<class... Arguments>
[[nodiscard]] Text kvr_localizedFormat( TextView inKey, const Arguments&... inArguments )
{
    return kvr_format( TextView( kvr_localized( inKey ) ), inArguments... );
}

// Opening what the user asks to see: web pages, mail addresses, folders, and the pages of the online documentation. An
// address may be a stranger's, from a macro or a library: those that don't lead to the web or to mail are opened
// only after a question. Main thread.
#pragma once

#include "CFMethods/Text.h"

namespace KVOpen
{
/// Opens the address. False when it isn't one, which is logged, or when the user or the platform declined.
bool kvOpenURL( TextView inURL );
/// The same of an address that is known to be one.
bool kvOpen( TextView inURL );
/// The address is the localised text of the key.
bool kvOpenKeyedURL( TextView inKey );

// Each opens the folder; false when that isn't possible.
bool ThirdPartyLicenses();
bool LogsFolder();
bool PreferencesFolder();

/// Where the online documentation has a page, and a place on it.
[[nodiscard]] Text WikiLinkURL( TextView inPage );
[[nodiscard]] Text WikiLinkURL( TextView inPage, TextView inAnchor );
bool OpenWikiLinkURL( TextView inPage );
bool OpenWikiLinkURL( TextView inPage, TextView inAnchor );
} // namespace KVOpen

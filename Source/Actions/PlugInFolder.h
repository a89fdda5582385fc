// The folder "Korvalen Actions" among the data files: one folder for each plug-in, whose name is the
// plug-in's identity, with an information file that says what the action is called, which parameters it has
// and what can be done with its result. Any thread; what was read is cached under a mutex.
#pragma once

#include "CFMethods/PropertyList.h"

#include <filesystem>
#include <optional>
#include <vector>

/// Posted inside the process when a plug-in came in.
inline constexpr TextView kReloadThirdPartyActionsNotification = u"KV_ReloadThirdPartyActions";

namespace PlugInFolder
{
/// The information of a plug-in. Null, with a log line, when there is none that loads; that is asked again the next
/// time, for the user may be about to install it.
[[nodiscard]] CFContainer<XPlistDictionary> InformationForFolderName( const XText& inName );
/// Forgets all that was read.
void ClearCache();
/// The folder names of the plug-ins whose information loads, as file lists are sorted.
[[nodiscard]] std::vector<Text> ListPlugIns();
/// Takes one entry of an unzipped file in, in place of a plug-in of its name: the older folder goes to the trash
/// when the new one's information loads, and otherwise lies beside it under a name of its own, which the log tells.
bool ImportUnzipped( const std::filesystem::path& inPath );
/// Does the listing of a zip file name an information file?
[[nodiscard]] bool UnzipLikelyContains( TextView inListing );

/// The folder of a plug-in. Absent for a name that isn't one of a folder right in there: it comes out of macros files.
[[nodiscard]] std::optional<std::filesystem::path> FolderForName( const XText& inName );
/// May the file name stand in an information file? Letters, digits and underscores of ASCII, with at most one dot
/// between them.
[[nodiscard]] bool IsSafeFileName( TextView inName );
} // namespace PlugInFolder

// A zip file that a user opened: a plug-in action, or a status menu icon. It is a stranger's, so it is looked through
// before a byte of it is unpacked: names that lead out, links, devices, doubles, overlaps, encryption and bombs are
// refused, with a log line that says why. It is unpacked beneath a new folder "Import-<UUID>" among the data files.
// Main thread.
#pragma once

#include <filesystem>

namespace ImportZipExtension
{
/// False when it is neither kind or can't be used; nothing is left of it then.
bool Import( const std::filesystem::path& inPath );
/// Removes the folders of imports that a crash cut off. At start.
void RemoveLeftovers();
} // namespace ImportZipExtension

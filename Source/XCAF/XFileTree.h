// Folders with all that is in them. Any thread.
#pragma once

#include "XCAF/XFileWriting.h"

namespace XFileTree
{
/// Removes a file, or a folder with all that is in it. A link goes, not what it names. What isn't there is success.
[[nodiscard]] std::optional<XFileError> Remove(
    const std::filesystem::path& inPath, XFileCalls& inCalls = XFileCalls::Current() );
/// The paths of the regular files beneath a folder, relative to it and sorted. Links aren't followed.
[[nodiscard]] std::vector<std::filesystem::path> Files(
    const std::filesystem::path& inFolder, XFileCalls& inCalls = XFileCalls::Current() );
} // namespace XFileTree

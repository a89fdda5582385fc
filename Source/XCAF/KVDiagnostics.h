// Looks for reports of crashes that the system has left for the user.
#pragma once

#include <filesystem>
#include <vector>

namespace KVDiagnostics
{
/// The files of a folder whose names match `^Korvalen.*[.]crash$`, by name; empty when the folder
/// can't be read. Their number is logged under "ReportCrash". Any thread.
[[nodiscard]] std::vector<std::filesystem::path> CheckForNew( const std::filesystem::path& inFolder );
} // namespace KVDiagnostics

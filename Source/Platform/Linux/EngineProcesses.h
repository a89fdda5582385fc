// Which of this user's processes are the engine of a data folder. An engine is known by its file: the one that belongs to
// this program, or one that is named as engines are, wherever it lies; of a script, by the script. Which folder it serves
// is told by the environment that it was started with. Private to this folder. Main thread.
#pragma once

#include "Platform/Linux/ProcessHandle.h"

namespace EngineProcesses
{
inline constexpr const char* kFileName = "korvalen-engine";
inline constexpr const char* kOlderFileName = "Korvalen Engine";

/// The engine that belongs to this program: KORVALEN_ENGINE when that is an absolute path, else a file of the engine's
/// name beside our own or in ../libexec/korvalen. Absent when it isn't there or can't be run.
[[nodiscard]] std::optional<std::filesystem::path> OwnExecutable();

struct Folder
{
    std::filesystem::path mPath;
    bool mIsDefault = true; ///< an engine that was told of no folder serves it
};

/// The running engines of the folder, in the order of their numbers, each held.
[[nodiscard]] std::vector<std::shared_ptr<ProcessHandle>> Find( const Folder& inFolder );
} // namespace EngineProcesses

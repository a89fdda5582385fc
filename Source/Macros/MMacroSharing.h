// Several computers use one macros file on a shared disk: each reads it at start-up, copies its saves there, and takes in
// what its engine finds and fetches. This is the beginning and the end of that; MMacroPreferenceFile does the rest.
// Main thread, except for what only asks.
#pragma once

#include "CFMethods/PropertyList.h"
#include "Defines/XFileSemaphoreLock.h"

#include <filesystem>

namespace MMacroSharing
{
/// The path of the shared file; null when not sharing. Any thread.
[[nodiscard]] XText SharedFile();
[[nodiscard]] bool IsSharing();

/// Joins: the macros of an existing file replace ours, of which a copy is set aside. The result is "", or an error text,
/// and then our macros are as they were. Either way an earlier sharing, which is an assertion, has ended.
[[nodiscard]] Text StartSharingOpen( const std::filesystem::path& inPath );
/// Starts with our macros: they become the file. False, with a beep and a log line, when it couldn't be written.
bool StartSharingCreate( const std::filesystem::path& inPath );
/// Each goes on with its own macros. The file stays.
void StopSharing();
} // namespace MMacroSharing

/// While the file that the engine fetched from the share is read and removed. Not for the main thread: it may wait.
class MMacroSharedIncomingFileLock final : public XFileSemaphoreLock
{
public:
    MMacroSharedIncomingFileLock() : XFileSemaphoreLock( KVPreferences::kMacroSharingLockSemaphoreNameID ) {}

    /// Any thread.
    static void InitializeSharingLockSemaphoreName()
    {
        XFileSemaphoreLock::InitializeSharingLockSemaphoreName( KVPreferences::kMacroSharingLockSemaphoreNameID );
    }
};

// One editor per data folder: the lock of the folder, which the editor holds as long as it runs, and a command that edits
// without it for a moment. The kernel frees it when the process ends, however it ends. Main thread.
#pragma once

#include "XCAF/XKernelLock.h"

#include <cstdint>
#include <optional>

class KVFolderLock
{
public:
    /// Takes the lock of KVPreferences::FolderPath() without waiting, on the file ".Korvalen Editor Lock". kFailed means
    /// that nobody can tell, as on a volume that knows no locks: see Error.
    [[nodiscard]] XKernelLock::Result TryTake();
    /// Whether some process has the lock at this moment. Changes nothing; but it takes the lock for an instant if it can.
    [[nodiscard]] static bool IsHeldNow();
    void Release() { mLock.Release(); }
    [[nodiscard]] bool IsHeld() const { return mLock.IsHeld(); }

    /// Who held it at the last TryTake that gave kHeldByAnother; for messages only, as the number may be out of date.
    [[nodiscard]] std::optional<std::int64_t> HolderProcess() const { return mHolderProcess; }
    /// Why the last TryTake has failed.
    [[nodiscard]] const std::optional<XFileError>& Error() const { return mLock.Error(); }

private:
    XKernelLock mLock;
    std::optional<std::int64_t> mHolderProcess;
};

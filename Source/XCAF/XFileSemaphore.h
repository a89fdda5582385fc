// A lock across the processes of this computer: a named semaphore of the system that stands at 1 when nobody has it. A
// process that dies with it doesn't give it back, so who waits long enough posts it by force. That raises the count for
// good when the holder was alive after all. So our side holds a lock of the kernel beside it, which no two of us
// have at once whatever the count is; and who has that lock brings a count above 1 back to 1. Other programs know the
// semaphore alone. Callers are background queues, as waiting blocks them. One thread at a time.
#pragma once

#include "XCAF/XKernelLock.h"

#include <filesystem>
#include <memory>
#include <semaphore.h>
#include <string>

class XFileSemaphore
{
public:
    /// Opens the semaphore of that name, "/" and up to 250 characters without another "/", or makes it with mode 0644. The
    /// lock file belongs to the name: all of us give the same one. What can't be opened or locked is logged, and
    /// the other of the two has to do.
    [[nodiscard]] static std::unique_ptr<XFileSemaphore> lockWithPath(
        const std::string& inName, std::filesystem::path inLockFile );
    /// Unlocks, if it is locked.
    ~XFileSemaphore();
    XFileSemaphore( const XFileSemaphore& ) = delete;
    XFileSemaphore& operator=( const XFileSemaphore& ) = delete;

    [[nodiscard]] bool tryLock();
    /// Tries for so many seconds, at least once.
    [[nodiscard]] bool tryLockFor( double inSeconds );
    /// Returns with the lock. A holder from among us that is alive is waited for as long as it takes; any other holder
    /// loses it after so many seconds, for it may have died.
    void forceLockAfter( double inSeconds );
    void unlock();

private:
    XFileSemaphore( const std::string& inName, std::filesystem::path inLockFile );

    [[nodiscard]] bool TakeKernelLock();
    void LowerToOne();

    std::filesystem::path mLockFile;
    sem_t* mSemaphore = SEM_FAILED;
    XKernelLock mKernelLock;
    bool i_locked = false;
    bool mHasLoggedFailure = false;
};

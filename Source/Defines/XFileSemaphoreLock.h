// Holds the semaphore that a setting names, for a scope. The name goes through a setting because the editor and the engine
// must open the same one. The constructor may wait, so this is for background queues.
#pragma once

#include "Defines/KVPreferences.h"
#include "XCAF/XFileSemaphore.h"

#include <memory>

class XFileSemaphoreLock
{
public:
    /// Takes the lock; by force after 10 seconds, as its holder may have died. Without a name, which is an assertion, it
    /// holds nothing.
    explicit XFileSemaphoreLock( const KVPreferences::PreferenceID& inPreferenceID );
    ~XFileSemaphoreLock() = default; // the semaphore unlocks
    XFileSemaphoreLock( const XFileSemaphoreLock& ) = delete;
    XFileSemaphoreLock& operator=( const XFileSemaphoreLock& ) = delete;

    /// Makes a name and stores it, unless there is a valid one: "/KV" and letters and digits, 14 characters in all. Once
    /// for each setting; later calls do nothing.
    static void InitializeSharingLockSemaphoreName( const KVPreferences::PreferenceID& inPreferenceID );

private:
    std::unique_ptr<XFileSemaphore> mSemaphore;
};

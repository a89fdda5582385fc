// A lock across processes and machines: a folder at a path. Making a folder is atomic on a network volume too, and its
// modification date shows how old the lock is, so that one whose holder died can be broken. Callers are background
// queues, as waiting blocks them. One thread at a time.
#pragma once

#include "CFMethods/Text.h"
#include "Utility/Work/Clock.h"
#include "XCAF/XFileWriting.h"

#include <filesystem>
#include <memory>
#include <optional>

class XFileLock
{
public:
    [[nodiscard]] static std::unique_ptr<XFileLock> lockWithPath( std::filesystem::path inPath );
    /// Unlocks, if it is locked.
    ~XFileLock();
    XFileLock( const XFileLock& ) = delete;
    XFileLock& operator=( const XFileLock& ) = delete;

    /// Makes the folder, and those above it. False when it is there already, or can't be made.
    [[nodiscard]] bool tryLock();
    /// Tries for so many seconds, at least once.
    [[nodiscard]] bool tryLockFor( double inSeconds );
    /// Tries, and breaks what is older than so many seconds, until it has the lock.
    void tryThenBreakLockFor( double inSeconds );

    /// Removes the lock, whoever holds it.
    void breakLock();
    void breakLockOlderThan( double inSeconds );
    /// Removes our own lock. One that somebody else broke and has now is left alone.
    void unlock();

    /// When the lock was made, by the clock of the volume and whoever holds it; absent when nobody does.
    [[nodiscard]] std::optional<XAbsoluteTime> lockDate() const;
    [[nodiscard]] const std::filesystem::path& path() const { return mPath; }
    [[nodiscard]] Text description() const;

private:
    explicit XFileLock( std::filesystem::path inPath ) : mPath( std::move( inPath ) ) {}

    [[nodiscard]] std::optional<XFileStatus> LockFacts() const;
    void BreakIfOlder( const XFileStatus& inFacts, double inSeconds );
    bool RemoveIfStill( const XFileStatus& inFacts );

    std::filesystem::path mPath;
    // The folder as we made it. The date alone could be another's: some volumes count in whole seconds.
    std::optional<XFileStatus> i_myLockDate;
};

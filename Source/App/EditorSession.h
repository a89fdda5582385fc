// The editor of a data folder in this process: takes the folder's lock, the platform's services and queues of its own,
// starts the application in its order, and stops it in its order. For "run", and for a verb that is the editor for a
// moment. Main thread; one at a time.
#pragma once

#include "App/KVAppDelegate.h"
#include "Defines/KVFolderLock.h"
#include "Utility/Work/ThreadedWork.h"
#include "Utility/Work/Work.h"

#include <filesystem>
#include <optional>
#include <stdexcept>

class EditorHost;

/// Why the editor can't be started: a whole sentence with what the user can do.
class EditorTrouble : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

class EditorSession
{
public:
    /// Without a host the editor runs by itself. Nothing is started.
    explicit EditorSession( EditorHost* inHost );
    /// Stops what wasn't stopped.
    ~EditorSession();
    EditorSession( const EditorSession& ) = delete;
    EditorSession& operator=( const EditorSession& ) = delete;

    /// False when another process is the editor of the folder. Throws EditorTrouble when the folder can't be used.
    [[nodiscard]] bool TakeFolder();
    /// The process that has the folder, if it said so.
    [[nodiscard]] std::optional<std::int64_t> Holder() const { return mLock.HolderProcess(); }

    /// Loads the macros; the folder was taken. Throws EditorTrouble.
    void Start( const KVAppDelegate::Options& inOptions );
    /// Saves and stops everything, in order.
    void Stop();

    [[nodiscard]] KVAppDelegate& Delegate() { return *mDelegate; }
    [[nodiscard]] EditorHost& Host() { return *mHost; }

private:
    std::unique_ptr<EditorHost> mOwnHost; ///< when none was given
    EditorHost* mHost;
    // Queues that end with the session, so that what ends for good with the application doesn't end for a later one.
    XThreadedWork mWork{ XClock::Current() };
    std::optional<XWork::Substitute> mWorkInUse;
    KVFolderLock mLock;
    KVAppSubsystems mSubsystems;
    std::unique_ptr<KVAppDelegate> mDelegate;
};

// The platform's services on a Linux desktop, over GLib: notifications and the one editor of a folder on the session bus,
// processes held by descriptors, autostart entries, the desktop's trash, alerts as lines. Whoever runs the program makes
// one, substitutes its Platform, and drives a GLibMainLoop; what needs no bus works from the start. Main thread.
#pragma once

#include "Platform/Platform.h"

#include <filesystem>
#include <memory>

class LinuxPlatform
{
public:
    LinuxPlatform();
    /// Stops.
    ~LinuxPlatform();
    LinuxPlatform( const LinuxPlatform& ) = delete;
    LinuxPlatform& operator=( const LinuxPlatform& ) = delete;

    /// All services that Linux can answer. Valid as long as this object.
    [[nodiscard]] const Platform& GetPlatform() const;

    /// Whose data the folder holds: the user's own, which every program of the suite finds by itself, or one that
    /// was given (KORVALEN_HOME, an option) and that a launched engine has to be told of.
    enum class FolderKind { kDefault, kGiven };

    /// Joins the session's programs that work on this folder. Never starts a bus, and waits at most a second for one
    /// that is there. False when there is none, which the caller tells the user; one that comes back later is joined
    /// by itself. Before, nothing is posted and nothing heard.
    [[nodiscard]] bool Start( const std::filesystem::path& inFolder, FolderKind inKind );
    /// Leaves: what was posted is handed to the bus first, for which this waits at most a second.
    void Stop();

private:
    struct Services;
    std::unique_ptr<Services> mServices;
};

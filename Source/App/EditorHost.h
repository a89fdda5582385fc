// The process around the editor: the platform's services for a data folder, the main loop, and the signals that end
// it. The program hands in the desktop's; tests and programs without one use this base. Main thread.
#pragma once

#include "Utility/Work/MainLoop.h"

#include <filesystem>
#include <functional>
#include <memory>

class EditorHost
{
public:
    EditorHost();
    virtual ~EditorHost();
    EditorHost( const EditorHost& ) = delete;
    EditorHost& operator=( const EditorHost& ) = delete;

    /// Makes the platform's services for this folder the current ones, until StopPlatform. A folder that was given, unlike
    /// the user's own, is told to programs that are launched.
    virtual void StartPlatform( const std::filesystem::path& /*inFolder*/, bool /*inIsGiven*/ ) {}
    /// Sends what was posted, and lets go of the services.
    virtual void StopPlatform() {}

    /// Runs blocks of the main queue until StopMainLoop; inDidAskToEnd is called when the system asks the process to end.
    virtual void RunMainLoop( std::function<void()> inDidAskToEnd );
    virtual void StopMainLoop();

private:
    std::unique_ptr<XMainLoop> mLoop; ///< while it runs
};

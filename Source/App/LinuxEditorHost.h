// The editor on a Linux desktop: its services, GLib's main loop, and the signals that end a process. Main thread.
#pragma once

#include "App/EditorHost.h"
#include "Platform/Linux/GLibMainLoop.h"
#include "Platform/Linux/LinuxPlatform.h"
#include "Platform/Platform.h"

#include <optional>

class LinuxEditorHost final : public EditorHost
{
public:
    void StartPlatform( const std::filesystem::path& inFolder, bool inIsGiven ) override;
    void StopPlatform() override;
    void RunMainLoop( std::function<void()> inDidAskToEnd ) override;
    void StopMainLoop() override;

private:
    std::optional<LinuxPlatform> mPlatform;
    std::optional<Platform::Substitute> mInUse;
    std::optional<GLibMainLoop> mLoop;
};

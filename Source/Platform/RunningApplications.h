// Processes of other applications: finding the engine, ending it, and starting it. A process is held by a handle
// of the system, not by its number, so that nothing is ever sent to a process that got the number later. Main thread.
#pragma once

#include "CFMethods/Text.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// One running process of an application.
class XRunningApplication
{
public:
    virtual ~XRunningApplication() = default;
    [[nodiscard]] virtual std::int64_t ProcessIdentifier() const = 0;
    /// The file that it runs; empty when that can't be found out.
    [[nodiscard]] virtual std::filesystem::path ExecutablePath() const = 0;
    [[nodiscard]] virtual bool IsRunning() const = 0;
    /// Asks it to quit. Nothing happens when it has ended.
    virtual void terminate() = 0;
    /// Ends it. Nothing happens when it has ended.
    virtual void forceTerminate() = 0;
};

class XRunningApplications
{
public:
    virtual ~XRunningApplications() = default;

    /// The processes of an application, which is known by its bundle identifier, in the order of their numbers.
    [[nodiscard]] virtual std::vector<std::shared_ptr<XRunningApplication>> RunningApplications(
        TextView inBundleIdentifier ) const = 0;
    /// Is there any process of that number?
    [[nodiscard]] virtual bool ProcessExists( std::int64_t inProcessIdentifier ) const = 0;
    /// The file that this process runs; empty when that can't be found out.
    [[nodiscard]] virtual std::filesystem::path OwnExecutable() const { return {}; }
    /// The engine's executable that belongs to this program; absent when there is none.
    [[nodiscard]] virtual std::optional<std::filesystem::path> EngineExecutable() const = 0;
    /// Starts an application without waiting for it; absent on success, else why not.
    [[nodiscard]] virtual std::optional<Text> Launch( const std::filesystem::path& inExecutable ) = 0;

    /// Nothing runs, and nothing can be started.
    [[nodiscard]] static XRunningApplications& Absent();
};

// Finding, starting and ending the engine by /proc, and by the name that it owns on the bus. Other applications aren't
// looked for: on this system none is known by a bundle identifier. Private to this folder. Main thread.
#pragma once

#include "Platform/Linux/BusConnection.h"
#include "Platform/Linux/EngineProcesses.h"

#include <map>
#include <unistd.h>

class LinuxRunningApplications final : public XRunningApplications
{
public:
    /// The connection must outlive this object.
    explicit LinuxRunningApplications( const BusConnection& inBus ) : mConnection( inBus ) {}
    ~LinuxRunningApplications() override;

    /// Whose engine is looked for, and told to one that is launched.
    void SetFolder( EngineProcesses::Folder inFolder ) { mFolder = std::move( inFolder ); }

    [[nodiscard]] std::vector<std::shared_ptr<XRunningApplication>> RunningApplications(
        TextView inBundleIdentifier ) const override;
    [[nodiscard]] bool ProcessExists( std::int64_t inProcessIdentifier ) const override;
    [[nodiscard]] std::filesystem::path OwnExecutable() const override
    {
        return ProcessFacts::Executable( ::getpid() );
    }
    [[nodiscard]] std::optional<std::filesystem::path> EngineExecutable() const override
    {
        return EngineProcesses::OwnExecutable();
    }
    /// In a session of its own, with nothing of ours open, and without the variables that change what the loader loads.
    [[nodiscard]] std::optional<Text> Launch( const std::filesystem::path& inExecutable ) override;

private:
    [[nodiscard]] std::shared_ptr<ProcessHandle> OwnerOfEngineName() const;
    [[nodiscard]] std::vector<std::string> EnvironmentForLaunch() const;
    void WatchForEnd( pid_t inChild );

    const BusConnection& mConnection;
    EngineProcesses::Folder mFolder;
    std::map<pid_t, unsigned> mChildWatches; // processes that we started, and what waits for their end
};

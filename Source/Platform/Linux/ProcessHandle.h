// A process held by a descriptor of the system: whatever happens to its number, a signal by way of it reaches that process
// or nobody. Beside it stands which file the process ran when it was taken; one that runs another file by now is
// somebody else's and isn't touched. Private to this folder. One thread.
#pragma once

#include "Platform/RunningApplications.h"

#include <string>
#include <sys/types.h>
#include <vector>

/// What /proc tells of a process.
namespace ProcessFacts
{
/// The numbers of this user's processes, rising; without this process, and without number 1.
[[nodiscard]] std::vector<pid_t> OfThisUser();
/// The file that it runs, without the system's note that it was deleted; empty when that can't be found out.
[[nodiscard]] std::filesystem::path Executable( pid_t inProcess );
[[nodiscard]] std::vector<std::string> Arguments( pid_t inProcess );
/// The value of a variable as the process was started with it.
[[nodiscard]] std::optional<std::string> Variable( pid_t inProcess, std::string_view inName );
[[nodiscard]] std::filesystem::path WorkingFolder( pid_t inProcess );
/// Does it run, or is it an entry that only waits to be reaped?
[[nodiscard]] bool IsAlive( pid_t inProcess );
} // namespace ProcessFacts

/// One file, whatever its names are.
struct FileIdentity
{
    dev_t mDevice = 0;
    ino_t mFile = 0;

    /// Follows links; absent when there is no such file.
    [[nodiscard]] static std::optional<FileIdentity> Of( const std::filesystem::path& inPath );
    [[nodiscard]] static std::optional<FileIdentity> OfProcess( pid_t inProcess );
    friend bool operator==( const FileIdentity&, const FileIdentity& ) = default;
};

class ProcessHandle final : public XRunningApplication
{
public:
    /// Null when there is no such process of this user, when it is this process or number 1, or when the system
    /// can't hold processes.
    [[nodiscard]] static std::shared_ptr<ProcessHandle> Hold( pid_t inProcess );
    ~ProcessHandle() override;
    ProcessHandle( const ProcessHandle& ) = delete;
    ProcessHandle& operator=( const ProcessHandle& ) = delete;

    [[nodiscard]] std::int64_t ProcessIdentifier() const override { return mProcess; }
    [[nodiscard]] std::filesystem::path ExecutablePath() const override { return mShownPath; }
    [[nodiscard]] bool IsRunning() const override;
    void terminate() override;
    void forceTerminate() override;

    [[nodiscard]] const FileIdentity& Identity() const { return mIdentity; }
    /// What ExecutablePath tells from now on: of a script, the script in place of what runs it.
    void ShowPath( std::filesystem::path inPath ) { mShownPath = std::move( inPath ); }

private:
    ProcessHandle( pid_t inProcess, int inDescriptor ) : mProcess( inProcess ), mDescriptor( inDescriptor ) {}
    void Send( int inSignal ) const;

    pid_t mProcess;
    int mDescriptor;
    FileIdentity mIdentity;
    std::filesystem::path mShownPath;
};

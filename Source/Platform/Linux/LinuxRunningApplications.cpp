#include "Platform/Linux/LinuxRunningApplications.h"

#include "Platform/Linux/BusNames.h"
#include "Utility/Work/TaskEnvironment.h"
#include "XCAF/XErrorHandler.h"

#include <algorithm>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
constexpr TextView kEngineIdentifier = u"com.tessarine.korvalen.engine";

// How a program starts that has nothing to do with our terminal, descriptors and signals.
class DetachedSpawn
{
public:
    DetachedSpawn()
    {
        posix_spawn_file_actions_init( &mActions );
        for ( int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor )
            posix_spawn_file_actions_addopen( &mActions, descriptor, "/dev/null", O_RDWR, 0 );
        posix_spawn_file_actions_addclosefrom_np( &mActions, STDERR_FILENO + 1 );
        posix_spawnattr_init( &mAttributes );
        posix_spawnattr_setflags( &mAttributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF );
        sigset_t signals;
        sigemptyset( &signals );
        posix_spawnattr_setsigmask( &mAttributes, &signals );
        sigfillset( &signals );
        posix_spawnattr_setsigdefault( &mAttributes, &signals );
    }
    ~DetachedSpawn()
    {
        posix_spawn_file_actions_destroy( &mActions );
        posix_spawnattr_destroy( &mAttributes );
    }
    DetachedSpawn( const DetachedSpawn& ) = delete;
    DetachedSpawn& operator=( const DetachedSpawn& ) = delete;

    /// 0, or why not.
    int Start( const std::filesystem::path& inExecutable, std::vector<std::string> inEnvironment, pid_t& outChild )
    {
        std::string path = inExecutable.native();
        char* const arguments[] = { path.data(), nullptr };
        std::vector<char*> environment;
        for ( std::string& entry : inEnvironment )
            environment.push_back( entry.data() );
        environment.push_back( nullptr );
        return ::posix_spawn( &outChild, path.c_str(), &mActions, &mAttributes, arguments, environment.data() );
    }

private:
    posix_spawn_file_actions_t mActions;
    posix_spawnattr_t mAttributes;
};
} // namespace

LinuxRunningApplications::~LinuxRunningApplications()
{
    // The children go on; who inherits them reaps them.
    for ( const auto& [child, watch] : mChildWatches )
        g_source_remove( watch );
}

std::vector<std::shared_ptr<XRunningApplication>> LinuxRunningApplications::RunningApplications(
    TextView inBundleIdentifier ) const
{
    if ( inBundleIdentifier != kEngineIdentifier )
        return {};
    std::vector<std::shared_ptr<ProcessHandle>> engines = EngineProcesses::Find( mFolder );
    const auto numberOf = []( const auto& inProcess ) { return inProcess->ProcessIdentifier(); };
    if ( std::shared_ptr<ProcessHandle> owner = OwnerOfEngineName() )
    {
        if ( std::ranges::find( engines, owner->ProcessIdentifier(), numberOf ) == engines.end() )
            engines.push_back( std::move( owner ) );
    }
    std::ranges::sort( engines, {}, numberOf );
    return { engines.begin(), engines.end() };
}

std::shared_ptr<ProcessHandle> LinuxRunningApplications::OwnerOfEngineName() const
{
    if ( not mConnection.Get() or mFolder.mPath.empty() )
        return nullptr;
    const std::string name = BusNames::EngineOf( mFolder.mPath );
    const auto owner = [&] {
        guint32 process = 0;
        if ( const GVariantPtr reply =
                 mConnection.CallBus( "GetConnectionUnixProcessID", g_variant_new( "(s)", name.c_str() ), "(u)" ) )
            g_variant_get( reply.get(), "(u)", &process );
        return pid_t( process );
    };
    std::shared_ptr<ProcessHandle> process = ProcessHandle::Hold( owner() );
    // Asked again: the number may have changed hands before the process was held.
    return process and owner() == process->ProcessIdentifier() and process->IsRunning() ? process : nullptr;
}

bool LinuxRunningApplications::ProcessExists( std::int64_t inProcessIdentifier ) const
{
    return inProcessIdentifier == pid_t( inProcessIdentifier ) and
        ProcessFacts::IsAlive( pid_t( inProcessIdentifier ) );
}

std::vector<std::string> LinuxRunningApplications::EnvironmentForLaunch() const
{
    std::vector<std::string> environment = XTaskEnvironment{}.Make( XTaskEnvironment::OfProcess() );
    std::erase_if( environment, []( const std::string& inEntry ) { return inEntry.starts_with( "KORVALEN_HOME=" ); } );
    if ( not mFolder.mIsDefault )
        environment.push_back( "KORVALEN_HOME=" + mFolder.mPath.native() );
    return environment;
}

std::optional<Text> LinuxRunningApplications::Launch( const std::filesystem::path& inExecutable )
{
    if ( not inExecutable.is_absolute() )
        return kvr_format( "%@ isn't an absolute path", inExecutable );
    pid_t child = 0;
    if ( const int error = DetachedSpawn().Start( inExecutable, EnvironmentForLaunch(), child ) )
        return kvr_format( "can't start %@: %s", inExecutable, std::strerror( error ) );
    WatchForEnd( child );
    return {};
}

// A child that ended stays as an entry until its parent asks for it.
void LinuxRunningApplications::WatchForEnd( pid_t inChild )
{
    const auto ended = +[]( GPid inProcess, gint inStatus, gpointer inSelf ) {
        XErrorHandler::PrivateMaybeLogFormat( "engine", "Process %d has ended with %d", inProcess, inStatus );
        static_cast<LinuxRunningApplications*>( inSelf )->mChildWatches.erase( inProcess );
    };
    mChildWatches[inChild] = g_child_watch_add( inChild, ended, this );
}

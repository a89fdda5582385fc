#include "Platform/Linux/ProcessHandle.h"

#include "XCAF/XErrorHandler.h"
#include "XCAF/XFileWriting.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstring>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>
// This header of the system declares its functions for C alone.
extern "C" {
#include <sys/pidfd.h>
}

namespace
{
// /proc is no data file: its entries are read directly, whatever disk is in use.
constexpr std::size_t kLongestEntry = std::size_t( 4 ) << 20;

std::filesystem::path Entry( pid_t inProcess, const char* inName )
{
    return "/proc/" + std::to_string( inProcess ) + "/" + inName;
}

std::string ReadEntry( pid_t inProcess, const char* inName )
{
    const XFileContent content = ReadWholeFile( Entry( inProcess, inName ), kLongestEntry, XFileCalls::System() );
    return content.mError ? std::string() : std::string( content.mBytes.View() );
}

std::filesystem::path ReadLinkEntry( pid_t inProcess, const char* inName )
{
    std::filesystem::path target;
    return XFileCalls::System().ReadLink( Entry( inProcess, inName ), target ) == 0 ? target : std::filesystem::path();
}

std::vector<std::string> SplitAtNUL( const std::string& inText )
{
    std::vector<std::string> parts;
    for ( std::size_t begin = 0; begin < inText.size(); )
    {
        const std::size_t end = std::min( inText.find( '\0', begin ), inText.size() );
        parts.push_back( inText.substr( begin, end - begin ) );
        begin = end + 1;
    }
    return parts;
}

bool BelongsToThisUser( pid_t inProcess )
{
    struct stat facts;
    return ::stat( ( "/proc/" + std::to_string( inProcess ) ).c_str(), &facts ) == 0 and facts.st_uid == ::getuid();
}
} // namespace

std::vector<pid_t> ProcessFacts::OfThisUser()
{
    std::vector<std::string> names;
    if ( XFileCalls::System().ReadFolder( "/proc", names ) != 0 )
        return {};
    std::vector<pid_t> processes;
    for ( const std::string& name : names )
    {
        pid_t process = 0;
        const auto [end, error] = std::from_chars( name.data(), name.data() + name.size(), process );
        if ( error == std::errc() and end == name.data() + name.size() and process > 1 and process != ::getpid() and
            BelongsToThisUser( process ) )
            processes.push_back( process );
    }
    std::ranges::sort( processes );
    return processes;
}

std::filesystem::path ProcessFacts::Executable( pid_t inProcess )
{
    std::string path = ReadLinkEntry( inProcess, "exe" ).native();
    constexpr std::string_view kDeleted = " (deleted)";
    if ( path.ends_with( kDeleted ) )
        path.resize( path.size() - kDeleted.size() );
    return path;
}

std::vector<std::string> ProcessFacts::Arguments( pid_t inProcess )
{
    return SplitAtNUL( ReadEntry( inProcess, "cmdline" ) );
}

std::optional<std::string> ProcessFacts::Variable( pid_t inProcess, std::string_view inName )
{
    for ( const std::string& entry : SplitAtNUL( ReadEntry( inProcess, "environ" ) ) )
    {
        if ( entry.size() > inName.size() and entry.starts_with( inName ) and entry[inName.size()] == '=' )
            return entry.substr( inName.size() + 1 );
    }
    return {};
}

std::filesystem::path ProcessFacts::WorkingFolder( pid_t inProcess )
{
    return ReadLinkEntry( inProcess, "cwd" );
}

bool ProcessFacts::IsAlive( pid_t inProcess )
{
    if ( inProcess <= 0 or ( ::kill( inProcess, 0 ) != 0 and errno != EPERM ) )
        return false;
    // "number (name) state": the name may hold anything, even parentheses.
    const std::string facts = ReadEntry( inProcess, "stat" );
    const std::size_t end = facts.rfind( ')' );
    if ( end == std::string::npos or end + 2 >= facts.size() )
        return true; // hidden from us, but there
    return facts[end + 2] != 'Z' and facts[end + 2] != 'X';
}

std::optional<FileIdentity> FileIdentity::Of( const std::filesystem::path& inPath )
{
    struct stat facts;
    if ( ::stat( inPath.c_str(), &facts ) != 0 )
        return {};
    return FileIdentity{ facts.st_dev, facts.st_ino };
}

std::optional<FileIdentity> FileIdentity::OfProcess( pid_t inProcess )
{
    return Of( Entry( inProcess, "exe" ) );
}

std::shared_ptr<ProcessHandle> ProcessHandle::Hold( pid_t inProcess )
{
    if ( inProcess <= 1 or inProcess == ::getpid() )
        return nullptr;
    const int descriptor = ::pidfd_open( inProcess, 0 );
    if ( descriptor < 0 )
    {
        if ( errno != ESRCH )
            XErrorHandler::PrivateMaybeLogFormat(
                "always", "Can't hold process %d: %s", inProcess, std::strerror( errno ) );
        return nullptr;
    }
    std::shared_ptr<ProcessHandle> handle( new ProcessHandle( inProcess, descriptor ) );
    const std::optional<FileIdentity> identity = FileIdentity::OfProcess( inProcess );
    handle->mShownPath = ProcessFacts::Executable( inProcess );
    // Still there: so what was read by number was read of the process that is held.
    if ( not identity or not BelongsToThisUser( inProcess ) or not handle->IsRunning() )
        return nullptr;
    handle->mIdentity = *identity;
    return handle;
}

ProcessHandle::~ProcessHandle()
{
    ::close( mDescriptor );
}

bool ProcessHandle::IsRunning() const
{
    // Readable means ended, also while nobody has reaped it.
    pollfd end{ mDescriptor, POLLIN, 0 };
    int result = 0;
    while ( ( result = ::poll( &end, 1, 0 ) ) < 0 and errno == EINTR )
    {}
    return result == 0;
}

void ProcessHandle::terminate()
{
    Send( SIGTERM );
}

void ProcessHandle::forceTerminate()
{
    Send( SIGKILL );
}

void ProcessHandle::Send( int inSignal ) const
{
    if ( not IsRunning() )
        return;
    const std::optional<FileIdentity> identity = FileIdentity::OfProcess( mProcess );
    // By number, so the process must be there afterwards for this to be of it.
    if ( not IsRunning() )
        return;
    if ( identity != mIdentity )
    {
        XErrorHandler::PrivateMaybeLogFormat(
            "always", "Process %d runs another program by now; it is left alone", mProcess );
        return;
    }
    if ( ::pidfd_send_signal( mDescriptor, inSignal, nullptr, 0 ) != 0 and errno != ESRCH )
        XErrorHandler::PrivateMaybeLogFormat( "always", "Can't end process %d: %s", mProcess, std::strerror( errno ) );
}

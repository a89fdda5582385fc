#include "App/DescriptorBuffer.h"
#include "App/LinuxEditorHost.h"
#include "App/Program.h"
#include "Defines/KVIconRegistry.h"
#include "Defines/KVPreferences.h"
#include "Utility/Work/Work.h"
#include "XCAF/XErrorHandler.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <ostream>
#include <system_error>
#include <unistd.h>

namespace
{
// A descriptor that was closed by whoever started us would be given to the next file that is opened, and our
// words would go into that file. So it is taken by one that refuses what is asked of it.
void HoldStandardDescriptors()
{
    for ( int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor )
    {
        if ( ::fcntl( descriptor, F_GETFD ) == -1 and errno == EBADF )
            (void)::open( "/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY );
    }
}

// Terminals, sockets and devices as well, which ReadWholeFile refuses under a name.
XFileContent ReadStandardInput( std::size_t inLimit )
{
    XFileContent result;
    XBytes bytes( 64 * 1024 );
    std::size_t length = 0;
    for ( ;; )
    {
        if ( length == bytes.size() )
        {
            XBytes larger( 2 * length );
            std::copy_n( bytes.data(), length, larger.data() );
            bytes = std::move( larger );
        }
        const ssize_t got = ::read( STDIN_FILENO, bytes.data() + length, bytes.size() - length );
        if ( got < 0 and errno == EINTR )
            continue;
        if ( got < 0 )
            result.mError = XFileError{ "read", "-", errno, std::generic_category().message( errno ), {} };
        else
            length += std::size_t( got );
        result.mFacts.mSize = length;
        if ( length > inLimit )
            result.mError = XFileError{ "read", "-", 0, "it is too large", {} };
        if ( result.mError or got == 0 )
            break;
    }
    if ( not result.mError )
    {
        bytes.Shrink( length );
        result.mBytes = std::move( bytes );
    }
    return result;
}
// Both are read when something is logged, and not before.
void UseLogAndSettings()
{
    if ( const char* const home = std::getenv( "KORVALEN_HOME" ); home and *home )
        XErrorHandler::SetLogsFolder( std::filesystem::path( home ) / "Logs" );
    KVPreferences::Start();
    KVIconRegistryStart();
}
} // namespace

int main( int inCount, char** inArguments )
{
    XDeclareMainThread();
    HoldStandardDescriptors();
    UseLogAndSettings();
    // A reader that has gone shows as a failed write, so that files are still finished properly.
    std::signal( SIGPIPE, SIG_IGN );

    DescriptorBuffer outputBuffer( STDOUT_FILENO ), errorBuffer( STDERR_FILENO );
    std::ostream outputStream( &outputBuffer ), errorStream( &errorBuffer );
    const bool isTerminal = ::isatty( STDOUT_FILENO );
    Output output( outputStream, errorStream,
        { isTerminal, WantsColours( isTerminal, std::getenv( "NO_COLOR" ), std::getenv( "TERM" ) ) } );
    const FileInput input( ReadStandardInput );

    LinuxEditorHost host;
    ExitStatus status = RunKorvalen(
        { inArguments + std::min( inCount, 1 ), inArguments + inCount }, input, output, { &host, false, {} } );
    if ( const int error = outputBuffer.Finish() )
    {
        status = ExitStatus::kFailed;
        // Who closes the pipe, as "head" does, or gives us no output at all, wants nothing more.
        if ( error != EPIPE and error != EBADF )
            output.Complain(
                "can't write standard output: " + std::generic_category().message( error ) + "; check where it leads" );
    }
    XErrorHandler::Quitting();
    return int( status );
}

#include "Benchmarks/RunningEditor.h"

#include "CFMethods/PropertyList.h"

#include <csignal>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace
{
/// Standard output goes to the descriptor.
pid_t Spawn( const std::filesystem::path& inFolder, const std::vector<std::string>& inArguments, int inOutput )
{
    std::vector<std::string> words = { RunningEditor::Program(), "--folder", inFolder.string() };
    words.insert( words.end(), inArguments.begin(), inArguments.end() );
    std::vector<char*> pointers;
    for ( std::string& word : words )
        pointers.push_back( word.data() );
    pointers.push_back( nullptr );
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init( &actions );
    posix_spawn_file_actions_adddup2( &actions, inOutput, STDOUT_FILENO );
    pid_t process = -1;
    if ( posix_spawn( &process, pointers.front(), &actions, nullptr, pointers.data(), environ ) != 0 )
        process = -1;
    posix_spawn_file_actions_destroy( &actions );
    return process;
}
} // namespace

const char* RunningEditor::Program()
{
    return std::getenv( "KORVALEN_PROGRAM" );
}

RunningEditor::RunningEditor( const std::filesystem::path& inFolder ) : mFolder( inFolder )
{
    int ends[2];
    if ( pipe2( ends, O_CLOEXEC ) != 0 )
        return;
    mProcess = Spawn( mFolder, { "run", "--no-engine" }, ends[1] );
    close( ends[1] );
    char byte = 0;
    mIsReady = mProcess != -1 and read( ends[0], &byte, 1 ) == 1; // it prints one line when it is ready
    close( ends[0] );
}

RunningEditor::~RunningEditor()
{
    if ( mProcess == -1 )
        return;
    kill( mProcess, SIGTERM );
    waitpid( mProcess, nullptr, 0 );
}

int RunningEditor::Run( const std::vector<std::string>& inArguments ) const
{
    static const int gNowhere = open( "/dev/null", O_WRONLY | O_CLOEXEC );
    const pid_t process = Spawn( mFolder, inArguments, gNowhere );
    int status = 0;
    if ( process == -1 or waitpid( process, &status, 0 ) != process or not WIFEXITED( status ) )
        return -1;
    return WEXITSTATUS( status );
}

double RunningEditor::ProcessorSeconds() const
{
    clockid_t clock = 0;
    timespec editor = {};
    rusage verbs = {};
    if ( clock_getcpuclockid( mProcess, &clock ) != 0 or clock_gettime( clock, &editor ) != 0 or
        getrusage( RUSAGE_CHILDREN, &verbs ) != 0 )
        return 0;
    const auto seconds = []( const timeval& time ) { return double( time.tv_sec ) + double( time.tv_usec ) / 1e6; };
    return double( editor.tv_sec ) + double( editor.tv_nsec ) / 1e9 + seconds( verbs.ru_utime ) +
        seconds( verbs.ru_stime );
}

std::string RunningEditor::AnyMacro( const XBytes& inMacrosFile )
{
    const auto value = ReadPropertyList( inMacrosFile.Span() ).mValue;
    CFContainer<XPlistArray> groups, macros;
    XText uid;
    if ( not value.AsDictionary() or not value.AsDictionary()->Get( CFSTR( "MacroGroups" ), groups ) )
        return {};
    for ( std::size_t i = groups->GetCount() / 2; i < groups->GetCount(); ++i )
    {
        const XPlistDictionary* const group = groups->GetValueAt( i ).AsDictionary();
        if ( group and group->Get( CFSTR( "Macros" ), macros ) and macros->GetCount() > 0 and
            macros->GetValueAt( 0 ).AsDictionary()->Get( CFSTR( "UID" ), uid ) )
            return uid.GetUTF8();
    }
    return {};
}

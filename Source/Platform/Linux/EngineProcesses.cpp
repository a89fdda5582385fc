#include "Platform/Linux/EngineProcesses.h"

#include "Platform/Linux/BusNames.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XFileWriting.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <unistd.h>

namespace
{
namespace fs = std::filesystem;

bool HasEngineName( const fs::path& inPath )
{
    const fs::path name = inPath.filename();
    return name == EngineProcesses::kFileName or name == EngineProcesses::kOlderFileName;
}

bool CanRun( const fs::path& inPath )
{
    XFileStatus facts;
    return XFileCalls::System().GetPathFacts( inPath, facts ) == 0 and facts.mKind == XFileStatus::Kind::kRegular and
        ::access( inPath.c_str(), X_OK ) == 0;
}

// The interpreter and its options from the first line of a script; empty for any other file.
std::vector<std::string> InterpreterOf( const fs::path& inFile )
{
    constexpr std::size_t kLongestLine = 255; // as much as the system looks at
    std::string line( kLongestLine, '\0' );
    XFileCalls& calls = XFileCalls::System();
    const XOpenFile file = XOpenFile::Open( inFile, XFileCalls::OpenFor::kRead, calls );
    if ( not file )
        return {};
    const std::ptrdiff_t got =
        calls.Read( file.Get(), { reinterpret_cast<std::uint8_t*>( line.data() ), line.size() } );
    line.resize( std::size_t( std::max<std::ptrdiff_t>( got, 0 ) ) );
    if ( not line.starts_with( "#!" ) )
        return {};
    line.resize( std::min( line.find( '\n' ), line.size() ) );
    std::vector<std::string> words;
    for ( std::size_t begin = 2; ( begin = line.find_first_not_of( " \t", begin ) ) != std::string::npos; )
    {
        const std::size_t end = std::min( line.find_first_of( " \t", begin ), line.size() );
        words.push_back( line.substr( begin, end - begin ) );
        begin = end;
    }
    return words;
}

// "/usr/bin/env python3" runs the program of that name on the path.
fs::path OnSearchPath( const std::string& inName )
{
    const char* const path = std::getenv( "PATH" );
    for ( std::string_view rest = path ? path : ""; not rest.empty(); )
    {
        const std::string_view folder = rest.substr( 0, rest.find( ':' ) );
        rest.remove_prefix( std::min( folder.size() + 1, rest.size() ) );
        if ( const fs::path candidate = fs::path( folder ) / inName; CanRun( candidate ) )
            return candidate;
    }
    return {};
}

// Is this the program that runs the script? An editor that has the script open isn't.
bool Interprets( const FileIdentity& inProgram, const fs::path& inScript )
{
    std::vector<std::string> words = InterpreterOf( inScript );
    if ( words.empty() )
        return false;
    fs::path interpreter = words.front();
    if ( interpreter.filename() == "env" )
    {
        const auto name = std::find_if( words.begin() + 1, words.end(), []( const std::string& inWord ) {
            return not inWord.starts_with( '-' ) and inWord.find( '=' ) == std::string::npos;
        } );
        interpreter = name == words.end() ? fs::path() : OnSearchPath( *name );
    }
    return FileIdentity::Of( interpreter ) == inProgram;
}

// The script that a process runs, if it is an engine's.
std::optional<fs::path> EngineScript( const ProcessHandle& inProcess, const std::optional<fs::path>& inOwn )
{
    const std::vector<std::string> arguments = ProcessFacts::Arguments( pid_t( inProcess.ProcessIdentifier() ) );
    // The system puts the script behind the interpreter and its options, which it takes as one word.
    for ( std::size_t i = 1; i < std::min<std::size_t>( arguments.size(), 3 ); ++i )
    {
        const fs::path script = arguments[i];
        const bool isEngine = ( inOwn and script == *inOwn ) or ( script.is_absolute() and HasEngineName( script ) );
        if ( isEngine and Interprets( inProcess.Identity(), script ) )
            return script;
    }
    return {};
}

bool ServesFolder( pid_t inProcess, const EngineProcesses::Folder& inFolder )
{
    const std::optional<std::string> given = ProcessFacts::Variable( inProcess, "KORVALEN_HOME" );
    if ( not given or given->empty() )
        return inFolder.mIsDefault;
    const fs::path path = ProcessFacts::WorkingFolder( inProcess ) / *given;
    return BusNames::DigitsOf( path ) == BusNames::DigitsOf( inFolder.mPath );
}

bool IsEngine( ProcessHandle& ioProcess, const std::optional<fs::path>& inOwn )
{
    if ( inOwn and FileIdentity::Of( *inOwn ) == ioProcess.Identity() )
        return true;
    if ( HasEngineName( ioProcess.ExecutablePath() ) )
        return true;
    const std::optional<fs::path> script = EngineScript( ioProcess, inOwn );
    if ( script )
        ioProcess.ShowPath( *script );
    return script.has_value();
}
} // namespace

std::optional<fs::path> EngineProcesses::OwnExecutable()
{
    if ( const char* const given = std::getenv( "KORVALEN_ENGINE" ); given and *given )
    {
        const fs::path path = given;
        if ( path.is_absolute() and CanRun( path ) )
            return path;
        XErrorHandler::PrivateMaybeLogFormat(
            "always", "KORVALEN_ENGINE is \"%s\", which isn't the absolute path of a program", given );
        return {};
    }
    fs::path own;
    if ( XFileCalls::System().ReadLink( "/proc/self/exe", own ) != 0 )
        return {};
    const fs::path folder = own.parent_path();
    for ( const fs::path& candidate :
        { folder / kFileName, ( folder.parent_path() / "libexec/korvalen" ) / kFileName } )
    {
        if ( CanRun( candidate ) )
            return candidate;
    }
    return {};
}

std::vector<std::shared_ptr<ProcessHandle>> EngineProcesses::Find( const Folder& inFolder )
{
    const std::optional<fs::path> own = OwnExecutable();
    std::vector<std::shared_ptr<ProcessHandle>> engines;
    for ( const pid_t number : ProcessFacts::OfThisUser() )
    {
        const std::shared_ptr<ProcessHandle> process = ProcessHandle::Hold( number );
        // What is read by number after that is of the held process if it still runs at the end.
        if ( process and IsEngine( *process, own ) and ServesFolder( number, inFolder ) and process->IsRunning() )
            engines.push_back( process );
    }
    return engines;
}

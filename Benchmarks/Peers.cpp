#include "Benchmarks/Peers.h"

#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <pugixml.hpp>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

LibplistTree::LibplistTree( XPlistFormat inFormat, std::string_view inBytes )
{
    const auto length = std::uint32_t( inBytes.size() );
    if ( inFormat == XPlistFormat::kBinary )
        plist_from_bin( inBytes.data(), length, &mRoot );
    else
        plist_from_xml( inBytes.data(), length, &mRoot );
}

std::size_t LibplistTree::Write( XPlistFormat inFormat ) const
{
    char* bytes = nullptr;
    std::uint32_t length = 0;
    if ( inFormat == XPlistFormat::kBinary )
        plist_to_bin( mRoot, &bytes, &length );
    else
        plist_to_xml( mRoot, &bytes, &length );
    plist_to_bin_free( bytes );
    return length;
}

bool ParseWithPugixml( std::string_view inXML )
{
    pugi::xml_document document;
    return bool( document.load_buffer( inXML.data(), inXML.size() ) );
}

std::map<std::string, double> TimePlistlib( std::string_view inBinary, std::string_view inXML )
{
    std::string folder = ( std::filesystem::temp_directory_path() / "korvalen-bench-XXXXXX" ).native();
    if ( not mkdtemp( folder.data() ) )
        return {};
    std::ofstream( folder + "/binary", std::ios::binary ) << inBinary;
    std::ofstream( folder + "/xml", std::ios::binary ) << inXML;
    const std::string command = "python3 '" KORVALEN_BENCHMARKS_FOLDER "/PlistlibPeer.py' '" + folder + "' 2>/dev/null";
    std::map<std::string, double> seconds;
    if ( FILE* const output = popen( command.c_str(), "r" ) )
    {
        char name[32];
        double value = 0;
        while ( std::fscanf( output, "%31s %lf", name, &value ) == 2 )
            seconds[name] = value;
        pclose( output );
    }
    std::error_code ignored;
    std::filesystem::remove_all( folder, ignored );
    return seconds;
}

std::optional<int> RunProgram( const std::vector<std::string>& inArguments )
{
    std::vector<char*> arguments;
    for ( const std::string& argument : inArguments )
        arguments.push_back( const_cast<char*>( argument.c_str() ) );
    arguments.push_back( nullptr );
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init( &actions );
    posix_spawn_file_actions_addopen( &actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0 );
    pid_t child = 0;
    const int failure = posix_spawn( &child, arguments[0], &actions, nullptr, arguments.data(), environ );
    posix_spawn_file_actions_destroy( &actions );
    int status = 0;
    if ( failure != 0 or waitpid( child, &status, 0 ) != child or not WIFEXITED( status ) )
        return {};
    return WEXITSTATUS( status );
}

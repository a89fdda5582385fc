#include "XCAF/XFileTree.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace
{
using Path = std::filesystem::path;

XFileError ErrorOf( const char* inCall, const Path& inPath )
{
    const int code = errno;
    return { inCall, inPath, code, std::strerror( code ), {} };
}

std::optional<XFileError> RemoveOne( const Path& inPath, bool inIsFolder, XFileCalls& inCalls )
{
    if ( ( inIsFolder ? inCalls.RemoveFolder( inPath ) : inCalls.Unlink( inPath ) ) == 0 or errno == ENOENT )
        return {};
    return ErrorOf( inIsFolder ? "remove folder" : "remove", inPath );
}
} // namespace

std::optional<XFileError> XFileTree::Remove( const Path& inPath, XFileCalls& inCalls )
{
    XFileStatus facts;
    if ( inCalls.GetLinkFacts( inPath, facts ) != 0 )
        return errno == ENOENT ? std::nullopt : std::optional( ErrorOf( "look at", inPath ) );
    if ( facts.mKind != XFileStatus::Kind::kFolder )
        return RemoveOne( inPath, false, inCalls );

    // Folders in the order in which they are found, so each stands before those within it; they go from the back.
    std::vector<Path> folders{ inPath };
    for ( std::size_t i = 0; i < folders.size(); ++i )
    {
        std::vector<std::string> names;
        if ( inCalls.ReadFolder( folders[i], names ) != 0 )
            return ErrorOf( "read folder", folders[i] );
        for ( const std::string& name : names )
        {
            const Path path = folders[i] / name;
            if ( inCalls.GetLinkFacts( path, facts ) != 0 )
                return ErrorOf( "look at", path );
            if ( facts.mKind == XFileStatus::Kind::kFolder )
                folders.push_back( path );
            else if ( auto error = RemoveOne( path, false, inCalls ) )
                return error;
        }
    }
    for ( auto folder = folders.rbegin(); folder != folders.rend(); ++folder )
    {
        if ( auto error = RemoveOne( *folder, true, inCalls ) )
            return error;
    }
    return {};
}

std::vector<Path> XFileTree::Files( const Path& inFolder, XFileCalls& inCalls )
{
    std::vector<Path> files;
    std::vector<Path> folders{ Path() };
    for ( std::size_t i = 0; i < folders.size(); ++i )
    {
        std::vector<std::string> names;
        if ( inCalls.ReadFolder( inFolder / folders[i], names ) != 0 )
            continue;
        for ( const std::string& name : names )
        {
            const Path path = folders[i] / name;
            XFileStatus facts;
            if ( inCalls.GetLinkFacts( inFolder / path, facts ) != 0 )
                continue;
            if ( facts.mKind == XFileStatus::Kind::kFolder )
                folders.push_back( path );
            else if ( facts.mKind == XFileStatus::Kind::kRegular )
                files.push_back( path );
        }
    }
    std::sort( files.begin(), files.end() );
    return files;
}

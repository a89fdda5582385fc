// The data folder as a whole: where it lies, and what doesn't belong in it.
#include "Defines/KVPreferences.h"
#include "Defines/TrashFile.h"
#include "Utility/Text/NSStringRegularExpressions.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XFileWriting.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

namespace
{
namespace fs = std::filesystem;

void LogFailure( const char* inWhat, const fs::path& inPath, int inCode )
{
    XErrorHandler::PrivateMaybeLogFormat(
        "always", "KVPreferences can't %s %@: %s", inWhat, inPath, std::strerror( inCode ) );
}

std::optional<XFileStatus::Kind> KindOf( const fs::path& inPath )
{
    XFileStatus facts;
    if ( XFileCalls::Current().GetLinkFacts( inPath, facts ) != 0 )
        return {};
    return facts.mKind;
}

/// Every regular file below a folder. Folders are entered, links are not.
std::vector<fs::path> RegularFilesIn( const fs::path& inFolder )
{
    std::vector<fs::path> files, folders{ inFolder };
    while ( not folders.empty() )
    {
        const fs::path folder = std::move( folders.back() );
        folders.pop_back();
        std::vector<std::string> names;
        if ( XFileCalls::Current().ReadFolder( folder, names ) != 0 and errno != ENOENT )
            LogFailure( "look into", folder, errno );
        for ( const std::string& name : names )
        {
            const auto kind = KindOf( folder / name );
            if ( kind == XFileStatus::Kind::kFolder )
                folders.push_back( folder / name );
            else if ( kind == XFileStatus::Kind::kRegular )
                files.push_back( folder / name );
        }
    }
    return files;
}

/// A name as XAtomicFile makes them: nobody else's file, and never more than a copy of what was being written.
bool IsOurTemporaryFile( std::string_view inName )
{
    constexpr std::size_t kDigits = 16;
    return inName.size() == XAtomicFile::kTemporaryPrefix.size() + kDigits and
        inName.starts_with( XAtomicFile::kTemporaryPrefix ) and
        inName.find_first_not_of( "0123456789abcdef", XAtomicFile::kTemporaryPrefix.size() ) == std::string_view::npos;
}

void RemoveBogusFile( const fs::path& inFile )
{
    XErrorHandler::PrivateMaybeLogFormat( "always", "RemoveBogusDotDatFiles: %@", inFile );
    if ( not IsOurTemporaryFile( inFile.filename().native() ) )
        kvr_trashOrSetAside( inFile, u"a file in the data folder whose name looks like that of an unfinished one" );
    else if ( XFileCalls::Current().Unlink( inFile ) != 0 )
        LogFailure( "remove", inFile, errno );
}
} // namespace

std::filesystem::path KVPreferences::FolderOfKinds( const fs::path& inOlder, const fs::path& inNewer )
{
    const auto made = [&]( const fs::path& inFolder ) {
        if ( const auto error = MakeFolders( inFolder ) )
            XErrorHandler::PrivateMaybeLogFormat( "always", "KVPreferences %s", error->Describe() );
    };
    if ( not inOlder.empty() and not KindOf( inNewer ) and KindOf( inOlder ) == XFileStatus::Kind::kFolder )
    {
        made( inNewer.parent_path() );
        if ( XFileCalls::Current().RenameToNew( inOlder, inNewer ) != 0 )
        {
            // A new and empty folder would look as if everything were lost, and would be the one that counts from now on.
            LogFailure( "move to its new place", inOlder, errno );
            return inOlder;
        }
        XErrorHandler::PrivateMaybeLogFormat( "always", "Moved %@ to %@", inOlder, inNewer );
    }
    made( inNewer );
    return inNewer;
}

void KVPreferences::RemoveBogusDotDatFiles()
{
    // Any first character: so the rule has always been, and what it takes besides our own goes to the trash.
    for ( const fs::path& file : RegularFilesIn( FolderPath() ) )
    {
        if ( isMatchedByRegex( TextFromUTF8( file.filename().native() ), u"^.dat" ) )
            RemoveBogusFile( file );
    }
    // Where the settings have a folder of their own, nothing in it is anybody's business but what we left there.
    if ( ConfigurationFolder() == FolderPath() )
        return;
    for ( const fs::path& file : RegularFilesIn( ConfigurationFolder() ) )
    {
        if ( IsOurTemporaryFile( file.filename().native() ) )
            RemoveBogusFile( file );
    }
}

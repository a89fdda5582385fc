#include "Utility/Text/FileHelpers.h"

#include "Platform/FileFacts.h"
#include "Platform/Platform.h"
#include "Utility/Text/Format.h"
#include "Utility/Text/PathHelpers.h"
#include "Utility/Text/TextCompare.h"
#include "Utility/Work/Random.h"
#include "XCAF/XErrorHandler.h"

#include <cerrno>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace
{
namespace fs = std::filesystem;

bool Report( const char* inOperation, TextView inPath, const std::error_code& inError )
{
    if ( inError )
        XErrorHandler::PrivateMaybeLogFormat(
            "File", "%s failed for %@ (error: %s)", inOperation, inPath, inError.message() );
    return not inError;
}

std::error_code ErrorOf( std::errc inError )
{
    return std::make_error_code( inError );
}

bool IsTaken( const fs::path& inPath )
{
    std::error_code error;
    return fs::symlink_status( inPath, error ).type() != fs::file_type::not_found;
}

// The same name but for case, where the file system makes no difference, is no collision.
bool IsSameFile( const fs::path& inPath, const fs::path& inOther )
{
    std::error_code error;
    return kvr_caseInsensitiveIsEqualToString(
               TextFromUTF8( inPath.filename().native() ), TextFromUTF8( inOther.filename().native() ) ) and
        not fs::is_symlink( inPath, error ) and fs::equivalent( inPath, inOther, error );
}

std::error_code Rename( const fs::path& inFrom, const fs::path& inTo )
{
    if ( IsTaken( inTo ) and not IsSameFile( inFrom, inTo ) )
        return ErrorOf( std::errc::file_exists );
    std::error_code error;
    fs::rename( inFrom, inTo, error );
    return error;
}

// To another disk. The original goes only when the copy stands whole; a copy that failed is taken away again.
std::error_code CopyAndRemove( const fs::path& inFrom, const fs::path& inTo )
{
    std::error_code error, ignored;
    fs::copy( inFrom, inTo, fs::copy_options::recursive | fs::copy_options::copy_symlinks, error );
    if ( error )
        fs::remove_all( inTo, ignored );
    else
        fs::remove_all( inFrom, error );
    return error;
}
} // namespace

std::optional<fs::path> kvr_fileSystemPath( TextView inPath )
{
    if ( inPath.empty() or inPath.find( u'\0' ) != TextView::npos )
        return {};
    return fs::path( UTF8FromText( inPath ) );
}

bool existsPath( TextView inPath )
{
    const auto path = kvr_fileSystemPath( inPath );
    std::error_code error;
    return path and fs::exists( *path, error );
}

bool kvr_existsDirectory( TextView inPath )
{
    const auto path = kvr_fileSystemPath( inPath );
    std::error_code error;
    return path and fs::is_directory( *path, error );
}

std::optional<std::uint64_t> kvr_fileSize( TextView inPath )
{
    const auto path = kvr_fileSystemPath( inPath );
    std::error_code error;
    if ( not path or not fs::is_regular_file( *path, error ) )
        return {};
    const auto size = fs::file_size( *path, error );
    return error ? std::nullopt : std::optional<std::uint64_t>( size );
}

Text fileKind( TextView inPath )
{
    const auto path = kvr_fileSystemPath( inPath );
    return path ? Platform::Current().FileFacts().GetFileKind( *path ).value_or( Text() ) : Text();
}

Text fileDisplayName( TextView inPath )
{
    const auto path = kvr_fileSystemPath( inPath );
    const auto name = path ? Platform::Current().FileFacts().GetDisplayName( *path ) : std::nullopt;
    return name ? *name : lastPathComponent( inPath );
}

Text displayName( TextView inPath )
{
    return kvr_nameWithoutAppSuffix( fileDisplayName( inPath ) );
}

Text bundleName( TextView inPath )
{
    const auto path = kvr_fileSystemPath( inPath );
    const auto name = path ? Platform::Current().FileFacts().GetBundleName( *path ) : std::nullopt;
    return name ? *name : displayName( inPath );
}

bool deleteFile( TextView inPath )
{
    const auto path = kvr_fileSystemPath( inPath );
    std::error_code error;
    const bool existed = path and fs::remove( *path, error );
    return Report( "deleteFile", inPath, existed or error ? error : ErrorOf( std::errc::no_such_file_or_directory ) );
}

bool createFolder( TextView inPath )
{
    const auto path = kvr_fileSystemPath( inPath );
    std::error_code error = path ? std::error_code() : ErrorOf( std::errc::invalid_argument );
    if ( path )
        fs::create_directories( *path, error );
    // A file of that name is no error to the call above.
    if ( not error and not kvr_existsDirectory( inPath ) )
        error = ErrorOf( std::errc::not_a_directory );
    return Report( "createFolder", inPath, error );
}

bool trashFile( TextView inPath )
{
    const auto path = kvr_fileSystemPath( inPath );
    const bool done = path and IsTaken( *path ) and Platform::Current().FileFacts().TrashFile( *path );
    return Report( "trashFile", inPath, done ? std::error_code() : ErrorOf( std::errc::operation_not_supported ) );
}

bool moveFileToFolder( TextView inPath, TextView inFolder )
{
    const auto from = kvr_fileSystemPath( inPath );
    const auto to = kvr_fileSystemPath( stringByAppendingPathComponent( inFolder, lastPathComponent( inPath ) ) );
    if ( not from or not to or not kvr_existsDirectory( inFolder ) )
        return Report( "moveFileToFolder", inPath, ErrorOf( std::errc::not_a_directory ) );
    std::error_code error = Rename( *from, *to );
    if ( error == std::errc::cross_device_link )
        error = CopyAndRemove( *from, *to );
    return Report( "moveFileToFolder", inPath, error );
}

bool renameFile( TextView inPath, TextView inName )
{
    const auto from = kvr_fileSystemPath( inPath );
    const auto to =
        kvr_fileSystemPath( stringByAppendingPathComponent( stringByDeletingLastPathComponent( inPath ), inName ) );
    const bool isName =
        not inName.empty() and inName.find( u'/' ) == TextView::npos and inName != u"." and inName != u"..";
    if ( not from or not to or not isName )
        return Report( "renameFile", inPath, ErrorOf( std::errc::invalid_argument ) );
    return Report( "renameFile", inPath, Rename( *from, *to ) );
}

std::optional<Text> tempFileWithBasename( TextView inBasename, TextView extension )
{
    std::error_code error;
    const fs::path folder = fs::temp_directory_path( error );
    const std::string suffix = extension.empty() ? "" : "." + UTF8FromText( kvr_saferFileName( extension ) );
    // Others may write there too: the name can't be guessed, and the file is opened only if it is new.
    for ( int attempt = 0; not error and attempt < 100; ++attempt )
    {
        const Text name = kvr_format( u"%@-%016llX", kvr_saferFileName( inBasename ), XRandom::Bits() );
        const auto path = kvr_fileSystemPath( TextFromUTF8( ( folder / ( UTF8FromText( name ) + suffix ) ).native() ) );
        if ( not path )
            error = ErrorOf( std::errc::invalid_argument );
        else if ( const int file = ::open( path->c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0600 ); file >= 0 )
        {
            ::close( file );
            return TextFromUTF8( path->native() );
        }
        else if ( errno != EEXIST and errno != EINTR )
            error = std::error_code( errno, std::generic_category() );
    }
    static_cast<void>(
        Report( "tempFileWithBasename", inBasename, error ? error : ErrorOf( std::errc::file_exists ) ) );
    return {};
}

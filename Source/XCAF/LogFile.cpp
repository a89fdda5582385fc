#include "XCAF/LogFile.h"

#include "CFMethods/Text.h"
#include "Utility/Work/Random.h"

#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
// A link planted at the file's name isn't followed, and a pipe planted there doesn't stop us.
constexpr int kOpenFlags = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;

bool IsRegular( int inDescriptor, struct stat& outStatus )
{
    return ::fstat( inDescriptor, &outStatus ) == 0 and S_ISREG( outStatus.st_mode );
}

bool WriteAll( int inDescriptor, std::string_view inBytes )
{
    while ( not inBytes.empty() )
    {
        const ssize_t written = ::write( inDescriptor, inBytes.data(), inBytes.size() );
        if ( written < 0 and errno != EINTR )
            return false;
        if ( written > 0 )
            inBytes.remove_prefix( std::size_t( written ) );
    }
    return true;
}

// The last bytes of the file if it is too large, else nothing.
std::string ReadTail( const std::filesystem::path& inPath )
{
    std::string tail;
    const int file = ::open( inPath.c_str(), O_RDONLY | kOpenFlags );
    struct stat status;
    if ( file >= 0 and IsRegular( file, status ) and status.st_size > off_t( XLogFile::kRotateAbove ) )
    {
        tail.resize( XLogFile::kKeep );
        const off_t start = status.st_size - off_t( XLogFile::kKeep );
        std::size_t count = 0;
        while ( count < tail.size() )
        {
            const ssize_t got = ::pread( file, tail.data() + count, tail.size() - count, start + off_t( count ) );
            if ( got < 0 and errno == EINTR )
                continue;
            if ( got <= 0 )
                break;
            count += std::size_t( got );
        }
        tail.resize( count == tail.size() ? count : 0 ); // read in part: the file is left alone
    }
    if ( file >= 0 )
        ::close( file );
    return tail;
}

// A temporary file beside it, flushed, takes its place; then the folder is flushed.
void ReplaceFile( const std::filesystem::path& inPath, std::string_view inBytes )
{
    std::filesystem::path temporary = inPath;
    temporary += "." + UTF8FromText( uuidString() );
    const int file = ::open( temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | kOpenFlags, 0600 );
    if ( file < 0 )
        return;
    const bool isWritten = WriteAll( file, inBytes ) and ::fsync( file ) == 0;
    const bool isClosed = ::close( file ) == 0;
    if ( not isWritten or not isClosed or ::rename( temporary.c_str(), inPath.c_str() ) != 0 )
    {
        ::unlink( temporary.c_str() );
        return;
    }
    const int folder = ::open( inPath.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC );
    if ( folder >= 0 )
    {
        ::fsync( folder );
        ::close( folder );
    }
}
} // namespace

XLogFile::~XLogFile()
{
    Close();
}

void XLogFile::Close()
{
    if ( mDescriptor >= 0 )
        ::close( mDescriptor );
    mDescriptor = -1;
}

void XLogFile::Rotate( const std::filesystem::path& inPath )
{
    const std::string tail = ReadTail( inPath );
    if ( tail.empty() )
        return;
    // Without a line feed it is one line, and better cut than lost.
    const std::size_t lineFeed = tail.find( '\n' );
    const std::size_t start = lineFeed == std::string::npos ? 0 : tail.find_first_not_of( '\n', lineFeed );
    ReplaceFile( inPath, std::string_view( tail ).substr( std::min( start, tail.size() ) ) );
}

bool XLogFile::Open( const std::filesystem::path& inPath )
{
    // The user may throw the file away, or move it, while we have it open.
    struct stat ours, named;
    if ( mDescriptor >= 0 and mPath == inPath and ::fstat( mDescriptor, &ours ) == 0 and
        ::stat( inPath.c_str(), &named ) == 0 and ours.st_ino == named.st_ino and ours.st_dev == named.st_dev )
        return true;
    Close();
    mPath = inPath;
    mDescriptor = ::open( inPath.c_str(), O_WRONLY | O_CREAT | O_APPEND | kOpenFlags, 0600 );
    if ( mDescriptor >= 0 and not IsRegular( mDescriptor, ours ) )
        Close();
    return mDescriptor >= 0;
}

void XLogFile::Append( const std::filesystem::path& inPath, std::string_view inEntry )
{
    if ( not std::exchange( mHasRotated, true ) )
        Rotate( inPath );
    if ( Open( inPath ) )
        WriteAll( mDescriptor, inEntry );
}

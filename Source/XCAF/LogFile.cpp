#include "XCAF/LogFile.h"

#include "XCAF/XFileWriting.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <span>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace
{
// A link planted at the file's name isn't followed, and a pipe planted there doesn't stop us.
constexpr int kOpenFlags = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;

bool IsRegular( int inDescriptor, struct stat& outStatus )
{
    return ::fstat( inDescriptor, &outStatus ) == 0 and S_ISREG( outStatus.st_mode );
}

void WriteAll( int inDescriptor, std::string_view inBytes )
{
    while ( not inBytes.empty() )
    {
        const ssize_t written = ::write( inDescriptor, inBytes.data(), inBytes.size() );
        if ( written > 0 )
            inBytes.remove_prefix( std::size_t( written ) );
        else if ( written == 0 or errno != EINTR )
            return;
    }
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
    const auto kept = std::span( tail ).subspan( std::min( start, tail.size() ) );
    (void)XAtomicFile::Write( inPath, { reinterpret_cast<const std::uint8_t*>( kept.data() ), kept.size() } );
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

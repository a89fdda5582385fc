// Order of an atomic write, and what a crash after each step leaves:
//   1. new file, written, mode set   the old bytes, and a temporary file that start-up removes
//   2. flush of the new file         the same
//   3. rename                        the old or the new bytes, whole: the flush came first
//   4. flush of the folder           the new bytes, for good
#include "XCAF/XFileWriting.h"

#include "Utility/Work/Random.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace
{
constexpr std::uint32_t kPrivateMode = 0600;
constexpr std::uint32_t kPermissionBits = 0777; // never set-id bits: the content is another now
constexpr int kMostLinks = 40;                  // as the system's own limit
constexpr int kMostInterruptions = 100;         // a signal may interrupt a call; not for ever
constexpr int kMostNames = 16;
constexpr std::size_t kFirstPipeRead = 64 * 1024;

std::atomic<XFileCalls*> gFileCalls{ nullptr };

XFileStatus FactsFrom( const struct stat& inStat )
{
    XFileStatus facts;
    facts.mKind = S_ISREG( inStat.st_mode ) ? XFileStatus::Kind::kRegular
        : S_ISDIR( inStat.st_mode )         ? XFileStatus::Kind::kFolder
        : S_ISLNK( inStat.st_mode )         ? XFileStatus::Kind::kLink
        : S_ISFIFO( inStat.st_mode )        ? XFileStatus::Kind::kPipe
                                            : XFileStatus::Kind::kOther;
    facts.mMode = std::uint32_t( inStat.st_mode ) & 07777;
    facts.mDevice = std::uint64_t( inStat.st_dev );
    facts.mFile = std::uint64_t( inStat.st_ino );
    facts.mSize = std::uint64_t( inStat.st_size );
#ifdef __APPLE__
    facts.mModifiedSeconds = inStat.st_mtimespec.tv_sec;
    facts.mModifiedNanoseconds = inStat.st_mtimespec.tv_nsec;
#else
    facts.mModifiedSeconds = inStat.st_mtim.tv_sec;
    facts.mModifiedNanoseconds = inStat.st_mtim.tv_nsec;
#endif
    return facts;
}

/// Calls again when a signal came in between.
template<class Call>
auto Uninterrupted( Call inCall )
{
    auto result = inCall();
    for ( int i = 0; result < 0 and errno == EINTR and i < kMostInterruptions; ++i )
        result = inCall();
    return result;
}

XFileError SystemError( const char* inCall, const std::filesystem::path& inPath, int inCode )
{
    return { inCall, inPath, inCode, std::generic_category().message( inCode ), {} };
}

XFileError OwnError( const char* inCall, const std::filesystem::path& inPath, std::string inReason )
{
    return { inCall, inPath, 0, std::move( inReason ), {} };
}

std::filesystem::path FolderOf( const std::filesystem::path& inPath )
{
    const auto folder = inPath.parent_path();
    return folder.empty() ? std::filesystem::path( "." ) : folder;
}
} // namespace

XFileCalls& XFileCalls::System()
{
    static XFileCalls gSystem;
    return gSystem;
}

XFileCalls& XFileCalls::Current()
{
    XFileCalls* const calls = gFileCalls.load( std::memory_order_acquire );
    return calls ? *calls : System();
}

XFileCalls::Substitute::Substitute( XFileCalls& inCalls ) : mPrevious( gFileCalls.exchange( &inCalls ) ) {}

XFileCalls::Substitute::~Substitute()
{
    gFileCalls.store( mPrevious );
}

int XFileCalls::Open( const std::filesystem::path& inPath, OpenFor inPurpose )
{
    switch ( inPurpose )
    {
    case OpenFor::kRead:
        return ::open( inPath.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY );
    case OpenFor::kCreateNew:
        return ::open( inPath.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kPrivateMode );
    case OpenFor::kLock:
        return ::open( inPath.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, kPrivateMode );
    case OpenFor::kUpdate:
        return ::open( inPath.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC | O_NOCTTY );
    case OpenFor::kFolder:
        break;
    }
    return ::open( inPath.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC );
}

std::ptrdiff_t XFileCalls::Read( int inFile, std::span<std::uint8_t> outBytes )
{
    return ::read( inFile, outBytes.data(), outBytes.size() );
}

std::ptrdiff_t XFileCalls::Write( int inFile, std::span<const std::uint8_t> inBytes )
{
    return ::write( inFile, inBytes.data(), inBytes.size() );
}

int XFileCalls::FSync( int inFile )
{
#ifdef F_FULLFSYNC
    // There a plain fsync stops at the drive's cache. Some volumes don't know the stronger one.
    if ( ::fcntl( inFile, F_FULLFSYNC ) == 0 )
        return 0;
#endif
    return ::fsync( inFile );
}

int XFileCalls::ChangeMode( int inFile, std::uint32_t inMode )
{
    return ::fchmod( inFile, mode_t( inMode ) );
}

int XFileCalls::Lock( int inFile )
{
    return ::flock( inFile, LOCK_EX );
}

int XFileCalls::TryLock( int inFile )
{
    return ::flock( inFile, LOCK_EX | LOCK_NB );
}

int XFileCalls::Truncate( int inFile, std::uint64_t inSize )
{
    return ::ftruncate( inFile, off_t( inSize ) );
}

int XFileCalls::Close( int inFile )
{
    return ::close( inFile );
}

int XFileCalls::Rename( const std::filesystem::path& inFrom, const std::filesystem::path& inTo )
{
    return ::rename( inFrom.c_str(), inTo.c_str() );
}

int XFileCalls::RenameToNew( const std::filesystem::path& inFrom, const std::filesystem::path& inTo )
{
#ifdef __APPLE__
    return ::renamex_np( inFrom.c_str(), inTo.c_str(), RENAME_EXCL );
#else
    return ::renameat2( AT_FDCWD, inFrom.c_str(), AT_FDCWD, inTo.c_str(), RENAME_NOREPLACE );
#endif
}

int XFileCalls::Unlink( const std::filesystem::path& inPath )
{
    return ::unlink( inPath.c_str() );
}

int XFileCalls::MakeFolder( const std::filesystem::path& inPath )
{
    return ::mkdir( inPath.c_str(), 0700 );
}

int XFileCalls::RemoveFolder( const std::filesystem::path& inPath )
{
    return ::rmdir( inPath.c_str() );
}

int XFileCalls::ReadFolder( const std::filesystem::path& inPath, std::vector<std::string>& outNames )
{
    outNames.clear();
    std::error_code error;
    std::filesystem::directory_iterator entry( inPath, error );
    for ( ; not error and entry != std::filesystem::directory_iterator(); entry.increment( error ) )
        outNames.push_back( entry->path().filename().native() );
    std::sort( outNames.begin(), outNames.end() );
    errno = error.value();
    return error ? -1 : 0;
}

int XFileCalls::GetFacts( int inFile, XFileStatus& outFacts )
{
    struct stat status = {};
    const int result = ::fstat( inFile, &status );
    outFacts = FactsFrom( status );
    return result;
}

int XFileCalls::GetPathFacts( const std::filesystem::path& inPath, XFileStatus& outFacts )
{
    struct stat status = {};
    const int result = ::stat( inPath.c_str(), &status );
    outFacts = FactsFrom( status );
    return result;
}

int XFileCalls::GetLinkFacts( const std::filesystem::path& inPath, XFileStatus& outFacts )
{
    struct stat status = {};
    const int result = ::lstat( inPath.c_str(), &status );
    outFacts = FactsFrom( status );
    return result;
}

int XFileCalls::ReadLink( const std::filesystem::path& inPath, std::filesystem::path& outTarget )
{
    std::error_code error;
    outTarget = std::filesystem::read_symlink( inPath, error );
    errno = error.value();
    return error ? -1 : 0;
}

std::string XFileError::Describe() const
{
    std::string result = "couldn't " + mCall + " “" + mPath.native() + "”: " + mReason;
    if ( not mLeftBehind.empty() )
        result += "; the temporary file “" + mLeftBehind.native() + "” couldn't be removed";
    return result;
}

XOpenFile& XOpenFile::operator=( XOpenFile&& inOther ) noexcept
{
    if ( this != &inOther )
    {
        (void)Close();
        mFile = std::exchange( inOther.mFile, -1 );
        mCalls = inOther.mCalls;
    }
    return *this;
}

XOpenFile XOpenFile::Open( const std::filesystem::path& inPath, XFileCalls::OpenFor inPurpose, XFileCalls& inCalls )
{
    return { Uninterrupted( [&] { return inCalls.Open( inPath, inPurpose ); } ), inCalls };
}

bool XOpenFile::Close()
{
    if ( mFile < 0 )
        return true;
    // Never tried again: the descriptor is gone even after an error, and may be another's by now.
    const int result = mCalls->Close( std::exchange( mFile, -1 ) );
    return result == 0 or errno == EINTR;
}

namespace
{
/// One write, with the temporary file that has to go when it fails.
class AtomicWrite
{
public:
    AtomicWrite( std::filesystem::path inTarget, XFileCalls& inCalls )
        : mTarget( std::move( inTarget ) ),
          mCalls( inCalls )
    {}

    std::optional<XFileError> Run( std::span<const std::uint8_t> inBytes, XAtomicFile::Links inLinks )
    {
        auto error = FindTarget( inLinks );
        if ( not error )
            error = WriteTemporary( inBytes );
        // The folder is opened before the rename, so that a failure still leaves the old bytes.
        XOpenFile folder;
        if ( not error )
        {
            folder = XOpenFile::Open( FolderOf( mTarget ), XFileCalls::OpenFor::kFolder, mCalls );
            if ( not folder )
                error = SystemError( "open folder", FolderOf( mTarget ), errno );
        }
        if ( not error and Uninterrupted( [&] { return mCalls.Rename( mTemporary, mTarget ); } ) < 0 )
            error = SystemError( "replace", mTarget, errno );
        if ( error )
            RemoveTemporary( *error );
        else if ( Uninterrupted( [&] { return mCalls.FSync( folder.Get() ); } ) < 0 and not CantSync( errno ) )
            error = SystemError( "sync folder", FolderOf( mTarget ), errno );
        return error;
    }

private:
    // Some file systems have no way to flush a folder, and say so.
    static bool CantSync( int inCode ) { return inCode == EINVAL or inCode == ENOTSUP; }

    std::optional<XFileError> FindTarget( XAtomicFile::Links inLinks )
    {
        XFileStatus facts;
        for ( int links = 0;; ++links )
        {
            if ( Uninterrupted( [&] { return mCalls.GetLinkFacts( mTarget, facts ); } ) < 0 )
            {
                if ( errno == ENOENT )
                    return std::nullopt;
                return SystemError( "look at", mTarget, errno );
            }
            if ( facts.mKind != XFileStatus::Kind::kLink )
                break;
            if ( inLinks == XAtomicFile::Links::kReplace )
                return std::nullopt;
            if ( links == kMostLinks )
                return SystemError( "follow link", mTarget, ELOOP );
            std::filesystem::path next;
            if ( Uninterrupted( [&] { return mCalls.ReadLink( mTarget, next ); } ) < 0 )
                return SystemError( "follow link", mTarget, errno );
            mTarget = FolderOf( mTarget ) / next; // an absolute path stands alone
        }
        if ( facts.mKind != XFileStatus::Kind::kRegular )
            return OwnError( "replace", mTarget, "it isn't a regular file" );
        mMode = facts.mMode & kPermissionBits;
        return std::nullopt;
    }

    XOpenFile CreateTemporary()
    {
        for ( int i = 0;; ++i )
        {
            std::string name( XAtomicFile::kTemporaryPrefix );
            for ( std::uint64_t bits = XRandom::Bits(), digit = 0; digit < 16; ++digit, bits >>= 4 )
                name += "0123456789abcdef"[bits & 15];
            mTemporary = FolderOf( mTarget ) / name;
            XOpenFile file = XOpenFile::Open( mTemporary, XFileCalls::OpenFor::kCreateNew, mCalls );
            if ( file or errno != EEXIST or i == kMostNames )
                return file;
        }
    }

    std::optional<XFileError> WriteTemporary( std::span<const std::uint8_t> inBytes )
    {
        XOpenFile file = CreateTemporary();
        if ( not file )
        {
            mTemporary.clear();
            return SystemError( "create", mTarget, errno );
        }
        if ( mMode != kPrivateMode and Uninterrupted( [&] { return mCalls.ChangeMode( file.Get(), mMode ); } ) < 0 )
            return SystemError( "set mode of", mTemporary, errno );
        while ( not inBytes.empty() )
        {
            const auto written = Uninterrupted( [&] { return mCalls.Write( file.Get(), inBytes ); } );
            if ( written <= 0 )
                return SystemError( "write", mTarget, written < 0 ? errno : EIO );
            inBytes = inBytes.subspan( std::size_t( written ) );
        }
        if ( Uninterrupted( [&] { return mCalls.FSync( file.Get() ); } ) < 0 )
            return SystemError( "sync", mTarget, errno );
        if ( not file.Close() )
            return SystemError( "close", mTarget, errno );
        return std::nullopt;
    }

    void RemoveTemporary( XFileError& ioError )
    {
        if ( mTemporary.empty() )
            return;
        if ( Uninterrupted( [&] { return mCalls.Unlink( mTemporary ); } ) < 0 )
            ioError.mLeftBehind = mTemporary;
    }

    std::filesystem::path mTarget, mTemporary;
    XFileCalls& mCalls;
    std::uint32_t mMode = kPrivateMode;
};

std::optional<XFileError> TooLarge( const std::filesystem::path& inPath, std::size_t inLimit )
{
    return OwnError( "read", inPath, "it is larger than the limit of " + std::to_string( inLimit ) + " bytes" );
}
} // namespace

std::optional<XFileError> XAtomicFile::Write(
    const std::filesystem::path& inPath, std::span<const std::uint8_t> inBytes, Links inLinks, XFileCalls& inCalls )
{
    return AtomicWrite( inPath, inCalls ).Run( inBytes, inLinks );
}

XFileContent ReadWholeFile( int inFile, const std::filesystem::path& inPath, std::size_t inLimit, XFileCalls& inCalls )
{
    XFileContent result;
    if ( Uninterrupted( [&] { return inCalls.GetFacts( inFile, result.mFacts ); } ) < 0 )
    {
        result.mError = SystemError( "look at", inPath, errno );
        return result;
    }
    using enum XFileStatus::Kind;
    if ( result.mFacts.mKind != kRegular and result.mFacts.mKind != kPipe )
    {
        result.mError = OwnError(
            "read", inPath, result.mFacts.mKind == kFolder ? "it is a folder" : "it is neither a file nor a pipe" );
        return result;
    }
    if ( result.mFacts.mKind == kRegular and result.mFacts.mSize > inLimit )
    {
        result.mError = TooLarge( inPath, inLimit );
        return result;
    }

    // One byte more than needed, so that the end shows itself without another allocation.
    const std::size_t expected = result.mFacts.mKind == kRegular ? std::size_t( result.mFacts.mSize ) : kFirstPipeRead;
    XBytes bytes( std::min( expected, inLimit ) + 1 );
    std::size_t length = 0;
    for ( ;; )
    {
        if ( length == bytes.size() )
        {
            XBytes larger( length + std::min( length, inLimit - length + 1 ) );
            std::copy_n( bytes.data(), length, larger.data() );
            bytes = std::move( larger );
        }
        const std::span<std::uint8_t> room( bytes.data() + length, bytes.size() - length );
        const auto got = Uninterrupted( [&] { return inCalls.Read( inFile, room ); } );
        if ( got < 0 )
        {
            result.mError = SystemError( "read", inPath, errno );
            return result;
        }
        length += std::size_t( got );
        if ( length > inLimit )
        {
            result.mError = TooLarge( inPath, inLimit );
            return result;
        }
        if ( got == 0 )
            break;
    }
    bytes.Shrink( length );
    result.mBytes = std::move( bytes );
    return result;
}

XFileContent ReadWholeFile( const std::filesystem::path& inPath, std::size_t inLimit, XFileCalls& inCalls )
{
    const XOpenFile file = XOpenFile::Open( inPath, XFileCalls::OpenFor::kRead, inCalls );
    if ( file )
        return ReadWholeFile( file.Get(), inPath, inLimit, inCalls );
    XFileContent result;
    result.mError = SystemError( "open", inPath, errno );
    return result;
}

std::optional<XFileError> MakeFolders( const std::filesystem::path& inPath, XFileCalls& inCalls )
{
    const auto isFolder = [&inCalls]( const std::filesystem::path& path ) {
        XFileStatus facts;
        return inCalls.GetPathFacts( path, facts ) == 0 and facts.mKind == XFileStatus::Kind::kFolder;
    };
    // Mostly it is there, and asked for again with every path in it.
    if ( isFolder( inPath ) )
        return std::nullopt;
    std::filesystem::path made;
    for ( const auto& part : inPath )
    {
        made /= part;
        if ( part.empty() or part == "/" )
            continue;
        if ( Uninterrupted( [&] { return inCalls.MakeFolder( made ); } ) == 0 )
        {
            // What is written into it is only as safe as its own name.
            const XOpenFile above = XOpenFile::Open( FolderOf( made ), XFileCalls::OpenFor::kFolder, inCalls );
            if ( above )
                (void)inCalls.FSync( above.Get() );
            continue;
        }
        // A folder above may be closed to us for writing and yet be there.
        const int code = errno;
        if ( code != EEXIST and not isFolder( made ) )
            return SystemError( "make folder", made, code );
    }
    if ( isFolder( inPath ) )
        return std::nullopt;
    return OwnError( "make folder", inPath, "something else has its name" );
}

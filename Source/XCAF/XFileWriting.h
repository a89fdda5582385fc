// Reading and writing whole files so that a reader, a crash or a full disk never sees half of
// one. Errors are results, not exceptions: they say which call failed on which path. Every
// system call goes through XFileCalls, so that tests can fail the n-th one. Any thread; two
// writers of one file both succeed, and the file holds the bytes of one of them.
#pragma once

#include "CFMethods/PropertyListCodec.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// What the file system knows of a path or a descriptor.
struct XFileStatus
{
    enum class Kind : std::uint8_t { kRegular, kFolder, kLink, kPipe, kOther };

    Kind mKind = Kind::kOther;
    std::uint32_t mMode = 0; ///< permission bits only
    std::uint64_t mDevice = 0, mFile = 0;
    std::uint64_t mSize = 0;
    std::int64_t mModifiedSeconds = 0, mModifiedNanoseconds = 0; ///< since 1970

    friend bool operator==( const XFileStatus&, const XFileStatus& ) = default;
};

/// The system calls that files need, with the results of POSIX: -1 and `errno` on failure.
class XFileCalls
{
public:
    enum class OpenFor : std::uint8_t {
        kRead,      ///< follows links; a named pipe waits for its writer
        kCreateNew, ///< for writing, mode 0600; fails when anything has the name
        kLock,      ///< created with mode 0600 if missing; fails on a link
        kUpdate,    ///< a file that exists, for reading and writing; fails on a link
        kFolder,
    };

    virtual ~XFileCalls() = default;
    virtual int Open( const std::filesystem::path& inPath, OpenFor inPurpose );
    virtual std::ptrdiff_t Read( int inFile, std::span<std::uint8_t> outBytes );
    virtual std::ptrdiff_t Write( int inFile, std::span<const std::uint8_t> inBytes );
    virtual int FSync( int inFile ); ///< to the disk itself, not just to the drive's cache
    virtual int ChangeMode( int inFile, std::uint32_t inMode );
    virtual int Lock( int inFile );    ///< exclusive and advisory, until the file is closed; waits
    virtual int TryLock( int inFile ); ///< the same without waiting: EWOULDBLOCK when somebody has it
    virtual int Truncate( int inFile, std::uint64_t inSize );
    virtual int Close( int inFile );
    virtual int Rename( const std::filesystem::path& inFrom, const std::filesystem::path& inTo );
    /// Fails with EEXIST when the new name is taken.
    virtual int RenameToNew( const std::filesystem::path& inFrom, const std::filesystem::path& inTo );
    virtual int Unlink( const std::filesystem::path& inPath );
    virtual int MakeFolder( const std::filesystem::path& inPath );   ///< mode 0700
    virtual int RemoveFolder( const std::filesystem::path& inPath ); ///< an empty one
    /// The names in a folder, sorted, without "." and "..".
    virtual int ReadFolder( const std::filesystem::path& inPath, std::vector<std::string>& outNames );
    virtual int GetFacts( int inFile, XFileStatus& outFacts );
    virtual int GetPathFacts( const std::filesystem::path& inPath, XFileStatus& outFacts ); ///< follows links
    virtual int GetLinkFacts( const std::filesystem::path& inPath, XFileStatus& outFacts ); ///< of a link itself
    virtual int ReadLink( const std::filesystem::path& inPath, std::filesystem::path& outTarget );

    /// The calls of the system. It has no state.
    [[nodiscard]] static XFileCalls& System();
    /// The calls in use: the system's, unless others were installed. Any thread.
    [[nodiscard]] static XFileCalls& Current();

    /// Installs calls for as long as this object lives: a disk of a test's own, or one that fails. Main thread, while
    /// nothing else runs.
    class Substitute
    {
    public:
        explicit Substitute( XFileCalls& inCalls );
        ~Substitute();
        Substitute( const Substitute& ) = delete;
        Substitute& operator=( const Substitute& ) = delete;

    private:
        XFileCalls* mPrevious;
    };
};

/// Which call failed, on what, and why.
struct XFileError
{
    std::string mCall; ///< as "open", "write", "sync folder"
    std::filesystem::path mPath;
    int mCode = 0;                     ///< `errno`, or 0 when the reason isn't the system's
    std::string mReason;               ///< one clause
    std::filesystem::path mLeftBehind; ///< a temporary file that couldn't be removed, or empty

    /// "couldn't write “/a/b”: No space left on device", in UTF-8.
    [[nodiscard]] std::string Describe() const;
};

namespace XAtomicFile
{
/// Temporary files begin with this, and start-up removes files of such names that a crash left.
inline constexpr std::string_view kTemporaryPrefix = ".dat";

enum class Links : std::uint8_t {
    kKeep,    ///< a link stays and the file that it names is replaced, or made
    kReplace, ///< a link is replaced by the file, and what it named isn't touched
};

/// Writes the bytes to a new file in the same folder, flushes it, renames it over the target and flushes the folder.
/// The new file keeps the old one's mode, and has 0600 when there was none. On failure the target has its old bytes,
/// except when only the last flush of the folder failed: then it has the new ones, which a power cut might undo.
[[nodiscard]] std::optional<XFileError> Write( const std::filesystem::path& inPath,
    std::span<const std::uint8_t> inBytes, Links inLinks = Links::kKeep, XFileCalls& inCalls = XFileCalls::Current() );
} // namespace XAtomicFile

struct XFileContent
{
    XBytes mBytes; ///< empty when there is an error
    XFileStatus mFacts;
    std::optional<XFileError> mError;
};

/// The bytes of a regular file or pipe, following links. More than so many bytes is an error, and so is a
/// folder or a device. A file that grows or shrinks meanwhile gives the bytes that were read up to its end.
[[nodiscard]] XFileContent ReadWholeFile(
    const std::filesystem::path& inPath, std::size_t inLimit, XFileCalls& inCalls = XFileCalls::Current() );
/// The same of a descriptor, which stays open. The path is for messages.
[[nodiscard]] XFileContent ReadWholeFile(
    int inFile, const std::filesystem::path& inPath, std::size_t inLimit, XFileCalls& inCalls = XFileCalls::Current() );

/// Makes a folder and the missing ones above it, with mode 0700. A folder that exists is success; the names
/// of those that are made are flushed.
[[nodiscard]] std::optional<XFileError> MakeFolders(
    const std::filesystem::path& inPath, XFileCalls& inCalls = XFileCalls::Current() );

/// A descriptor that is closed at the end of the scope.
class XOpenFile
{
public:
    XOpenFile() = default;
    XOpenFile( int inFile, XFileCalls& inCalls ) : mFile( inFile ), mCalls( &inCalls ) {}
    XOpenFile( XOpenFile&& inOther ) noexcept : mFile( std::exchange( inOther.mFile, -1 ) ), mCalls( inOther.mCalls ) {}
    XOpenFile& operator=( XOpenFile&& inOther ) noexcept;
    ~XOpenFile() { (void)Close(); }

    /// Opens; on failure the result is not open and `errno` says why.
    [[nodiscard]] static XOpenFile Open(
        const std::filesystem::path& inPath, XFileCalls::OpenFor inPurpose, XFileCalls& inCalls );

    explicit operator bool() const { return mFile >= 0; }
    [[nodiscard]] int Get() const { return mFile; }
    /// False, with `errno`, when the system reports a late error of writing. Closed either way.
    bool Close();

private:
    int mFile = -1;
    XFileCalls* mCalls = nullptr;
};

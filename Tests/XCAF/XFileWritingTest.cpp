#include "XCAF/XFileWriting.h"
#include "Tests/Support/ScratchFolder.h"

#include <cerrno>
#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace
{
std::span<const std::uint8_t> Bytes( std::string_view inText )
{
    return { reinterpret_cast<const std::uint8_t*>( inText.data() ), inText.size() };
}

void Put( const fs::path& inPath, std::string_view inText )
{
    std::ofstream( inPath, std::ios::binary ) << inText;
}

std::string Content( const fs::path& inPath )
{
    std::ifstream file( inPath, std::ios::binary );
    return { std::istreambuf_iterator<char>( file ), {} };
}

mode_t ModeOf( const fs::path& inPath )
{
    struct stat status = {};
    return ::stat( inPath.c_str(), &status ) == 0 ? status.st_mode & 07777 : 0;
}

std::vector<std::string> NamesIn( const fs::path& inFolder )
{
    std::vector<std::string> names;
    for ( const auto& entry : fs::directory_iterator( inFolder ) )
        names.push_back( entry.path().filename() );
    std::sort( names.begin(), names.end() );
    return names;
}

enum class Mode { kOnce, kFromThenOn };

/// Calls of the system of which the n-th fails, or every one from there; writes may be short.
class FailingCalls final : public XFileCalls
{
public:
    FailingCalls( int inFirst, Mode inMode, int inCode, bool inUnlinkFails = false )
        : mFirst( inFirst ),
          mMode( inMode ),
          mCode( inCode ),
          mUnlinkFails( inUnlinkFails )
    {}

    int mCount = 0;
    bool mShortWrites = false;
    std::vector<std::string> mLog;

    int Open( const fs::path& inPath, OpenFor inPurpose ) override
    {
        return Fails( "open" ) ? -1 : XFileCalls::Open( inPath, inPurpose );
    }
    std::ptrdiff_t Read( int inFile, std::span<std::uint8_t> outBytes ) override
    {
        return Fails( "read" ) ? -1 : XFileCalls::Read( inFile, outBytes );
    }
    std::ptrdiff_t Write( int inFile, std::span<const std::uint8_t> inBytes ) override
    {
        if ( mShortWrites )
            inBytes = inBytes.first( std::min<std::size_t>( inBytes.size(), 3 ) );
        return Fails( "write" ) ? -1 : XFileCalls::Write( inFile, inBytes );
    }
    // No disk to wait for: what is left is looked at by the same kernel.
    int FSync( int ) override { return Fails( "fsync" ) ? -1 : 0; }
    int ChangeMode( int inFile, std::uint32_t inMode ) override
    {
        return Fails( "fchmod" ) ? -1 : XFileCalls::ChangeMode( inFile, inMode );
    }
    int Lock( int inFile ) override { return Fails( "lock" ) ? -1 : XFileCalls::Lock( inFile ); }
    int Close( int inFile ) override
    {
        const int result = XFileCalls::Close( inFile ); // the descriptor goes even where close fails
        return Fails( "close" ) ? -1 : result;
    }
    int Rename( const fs::path& inFrom, const fs::path& inTo ) override
    {
        return Fails( "rename" ) ? -1 : XFileCalls::Rename( inFrom, inTo );
    }
    int Unlink( const fs::path& inPath ) override
    {
        if ( mUnlinkFails )
            return Fails( "unlink" ) ? -1 : XFileCalls::Unlink( inPath );
        return XFileCalls::Unlink( inPath );
    }
    int GetFacts( int inFile, XFileStatus& outFacts ) override
    {
        return Fails( "fstat" ) ? -1 : XFileCalls::GetFacts( inFile, outFacts );
    }
    int GetLinkFacts( const fs::path& inPath, XFileStatus& outFacts ) override
    {
        return Fails( "lstat" ) ? -1 : XFileCalls::GetLinkFacts( inPath, outFacts );
    }
    int ReadLink( const fs::path& inPath, fs::path& outTarget ) override
    {
        return Fails( "readlink" ) ? -1 : XFileCalls::ReadLink( inPath, outTarget );
    }

private:
    bool Fails( const char* inCall )
    {
        mLog.push_back( inCall );
        ++mCount;
        const bool fails = mMode == Mode::kOnce ? mCount == mFirst : mCount >= mFirst;
        errno = fails ? mCode : errno;
        return fails;
    }

    int mFirst;
    Mode mMode;
    int mCode;
    bool mUnlinkFails;
};

constexpr int kNever = 1 << 30;

/// Where the file to be written is a link, another name, or not there.
struct Scenario
{
    const char* mName;
    bool mExists, mIsLink;
};
constexpr Scenario kScenarios[] = { { "new", false, false }, { "old", true, false }, { "linked", true, true } };

/// A folder with "file", through a link or not, and old bytes or none.
struct Stage
{
    explicit Stage( const Scenario& inScenario )
    {
        fs::create_directory( mFolder / "elsewhere" );
        mTarget = inScenario.mIsLink ? mFolder / "elsewhere/real" : mFolder / "file";
        if ( inScenario.mExists )
        {
            Put( mTarget, "old bytes" );
            ::chmod( mTarget.c_str(), 0640 );
        }
        if ( inScenario.mIsLink )
            fs::create_symlink( "elsewhere/real", mFolder / "file" );
        mBefore = AllNames();
    }
    [[nodiscard]] fs::path File() const { return mFolder / "file"; }
    [[nodiscard]] std::vector<std::string> AllNames() const
    {
        std::vector<std::string> names;
        for ( const auto& entry : fs::recursive_directory_iterator( mFolder.Path() ) )
            names.push_back( entry.path().native() );
        std::sort( names.begin(), names.end() );
        return names;
    }

    ScratchFolder mFolder;
    fs::path mTarget;
    std::vector<std::string> mBefore;
};

constexpr std::string_view kNew = "the new bytes, which are longer";
} // namespace

TEST( XAtomicFile, ANewFileIsPrivateAndAnOldOneKeepsItsModeWhateverTheMask )
{
    const ScratchFolder folder;
    const mode_t mask = ::umask( 0 );
    EXPECT_FALSE( XAtomicFile::Write( folder / "new", Bytes( "a" ) ) );
    ::umask( 077 );
    Put( folder / "old", "b" );
    ::chmod( ( folder / "old" ).c_str(), 0664 );
    EXPECT_FALSE( XAtomicFile::Write( folder / "old", Bytes( "" ) ) );
    ::umask( mask );
    EXPECT_EQ( ModeOf( folder / "new" ), 0600u );
    EXPECT_EQ( ModeOf( folder / "old" ), 0664u );
    EXPECT_EQ( Content( folder / "old" ), "" );
    EXPECT_EQ( NamesIn( folder.Path() ), ( std::vector<std::string>{ "new", "old" } ) );
}

TEST( XAtomicFile, ALinkIsKeptOrReplacedAsAsked )
{
    const ScratchFolder folder;
    fs::create_directory( folder / "far" );
    fs::create_symlink( "far/second", folder / "first" );
    fs::create_symlink( "target", folder / "far/second" ); // relative to its own folder, and dangling
    EXPECT_FALSE( XAtomicFile::Write( folder / "first", Bytes( "kept" ) ) );
    EXPECT_TRUE( fs::is_symlink( folder / "first" ) and fs::is_symlink( folder / "far/second" ) );
    EXPECT_EQ( Content( folder / "far/target" ), "kept" );

    EXPECT_FALSE( XAtomicFile::Write( folder / "first", Bytes( "own" ), XAtomicFile::Links::kReplace ) );
    EXPECT_FALSE( fs::is_symlink( folder / "first" ) );
    EXPECT_EQ( Content( folder / "first" ), "own" );
    EXPECT_EQ( Content( folder / "far/target" ), "kept" );

    fs::create_symlink( "loop", folder / "loop" );
    const auto error = XAtomicFile::Write( folder / "loop", Bytes( "x" ) );
    ASSERT_TRUE( error );
    EXPECT_EQ( error->mCode, ELOOP );
}

TEST( XAtomicFile, WhatIsNoFileIsRefusedAndStays )
{
    const ScratchFolder folder;
    fs::create_directory( folder / "folder" );
    ASSERT_EQ( ::mkfifo( ( folder / "pipe" ).c_str(), 0600 ), 0 );
    for ( const char* name : { "folder", "pipe", "missing/file" } )
    {
        const auto error = XAtomicFile::Write( folder / name, Bytes( "x" ) );
        ASSERT_TRUE( error ) << name;
        EXPECT_NE( error->Describe().find( ( folder / name ).native() ), std::string::npos ) << error->Describe();
    }
    EXPECT_EQ( NamesIn( folder.Path() ), ( std::vector<std::string>{ "folder", "pipe" } ) );
}

TEST( XAtomicFile, TheFileIsFlushedBeforeItIsRenamedAndTheFolderAfterwards )
{
    const Stage stage( kScenarios[1] );
    FailingCalls calls( kNever, Mode::kOnce, 0 );
    ASSERT_FALSE( XAtomicFile::Write( stage.File(), Bytes( kNew ), XAtomicFile::Links::kKeep, calls ) );
    std::vector<std::string> order;
    std::copy_if( calls.mLog.begin(), calls.mLog.end(), std::back_inserter( order ),
        []( const auto& inCall ) { return inCall == "write" or inCall == "fsync" or inCall == "rename"; } );
    EXPECT_EQ( order, ( std::vector<std::string>{ "write", "fsync", "rename", "fsync" } ) );
}

namespace
{
/// Writes with the n-th call failing and checks what is left. False when no call failed.
bool WriteWithFailure( const Scenario& inScenario, Mode inMode, int inCode, int inCall )
{
    const Stage stage( inScenario );
    FailingCalls calls( inCall, inMode, inCode );
    calls.mShortWrites = true;
    const auto error = XAtomicFile::Write( stage.File(), Bytes( kNew ), XAtomicFile::Links::kKeep, calls );
    SCOPED_TRACE( std::string( inScenario.mName ) + ", call " + std::to_string( inCall ) + ": " +
        ( error ? error->Describe() : "no error" ) );

    // After the rename there is only the flush of the folder, and no way back.
    const bool isNew = not error or error->mCall == "sync folder";
    EXPECT_EQ( Content( stage.mTarget ), isNew ? kNew : inScenario.mExists ? "old bytes" : "" );
    EXPECT_EQ( stage.AllNames().size(), stage.mBefore.size() + ( isNew and not inScenario.mExists ? 1 : 0 ) );
    EXPECT_EQ( fs::is_symlink( stage.File() ), inScenario.mIsLink );
    // Only closing the folder again, the last call, may fail and do no harm.
    EXPECT_TRUE( error or ( calls.mCount == inCall and calls.mLog.back() == "close" ) );
    EXPECT_EQ( error ? error->mCode : inCode, inCode );
    return error.has_value();
}
} // namespace

TEST( XAtomicFile, EachFailingCallLeavesOldOrNewBytesAndNoTemporaryFile )
{
    for ( const auto& scenario : kScenarios )
        for ( const Mode mode : { Mode::kOnce, Mode::kFromThenOn } )
            for ( const int code : { ENOSPC, EACCES } )
            {
                int call = 1;
                while ( WriteWithFailure( scenario, mode, code, call ) )
                    ASSERT_LT( ++call, 100 );
                EXPECT_GT( call, 10 ); // open, writes, flushes, closes, rename
            }
}

TEST( XAtomicFile, AFileSystemThatCannotFlushFoldersIsNoFailure )
{
    const Stage stage( kScenarios[1] );
    FailingCalls counting( kNever, Mode::kOnce, 0 );
    ASSERT_FALSE( XAtomicFile::Write( stage.File(), Bytes( kNew ), XAtomicFile::Links::kKeep, counting ) );
    const auto flush = std::find( counting.mLog.rbegin(), counting.mLog.rend(), "fsync" );
    const int last = int( counting.mLog.rend() - flush );
    for ( const auto& [code, succeeds] : { std::pair( EINVAL, true ), std::pair( EIO, false ) } )
    {
        FailingCalls calls( last, Mode::kOnce, code );
        const auto error = XAtomicFile::Write( stage.File(), Bytes( kNew ), XAtomicFile::Links::kKeep, calls );
        EXPECT_EQ( not error, succeeds ) << code;
    }
}

TEST( XAtomicFile, AnInterruptedCallIsMadeAgainButNotForEver )
{
    for ( int n = 1; n < 30; ++n )
    {
        const Stage stage( kScenarios[1] );
        FailingCalls once( n, Mode::kOnce, EINTR );
        EXPECT_FALSE( XAtomicFile::Write( stage.File(), Bytes( kNew ), XAtomicFile::Links::kKeep, once ) ) << n;
        EXPECT_EQ( Content( stage.mTarget ), kNew );
    }
    const Stage stage( kScenarios[1] );
    FailingCalls always( 4, Mode::kFromThenOn, EINTR );
    EXPECT_TRUE( XAtomicFile::Write( stage.File(), Bytes( kNew ), XAtomicFile::Links::kKeep, always ) );
    EXPECT_EQ( Content( stage.mTarget ), "old bytes" );
    EXPECT_EQ( stage.AllNames(), stage.mBefore );
}

TEST( XAtomicFile, ATemporaryFileThatCannotBeRemovedIsNamed )
{
    const Stage stage( kScenarios[1] );
    FailingCalls calls( 4, Mode::kFromThenOn, EIO, true );
    const auto error = XAtomicFile::Write( stage.File(), Bytes( kNew ), XAtomicFile::Links::kKeep, calls );
    ASSERT_TRUE( error );
    EXPECT_TRUE( fs::exists( error->mLeftBehind ) );
    EXPECT_TRUE( error->mLeftBehind.filename().native().starts_with( XAtomicFile::kTemporaryPrefix ) );
    EXPECT_NE( error->Describe().find( error->mLeftBehind.native() ), std::string::npos );
    EXPECT_EQ( Content( stage.mTarget ), "old bytes" );
}

TEST( ReadWholeFile, GivesEveryByteUpToTheLimitAndRefusesTheNext )
{
    const ScratchFolder folder;
    for ( const std::size_t size : { 0u, 1u, 4096u, 200000u } )
    {
        const std::string content( size, 'x' );
        Put( folder / "file", content );
        const XFileContent whole = ReadWholeFile( folder / "file", size );
        ASSERT_FALSE( whole.mError ) << whole.mError->Describe();
        EXPECT_EQ( whole.mBytes.View(), content );
        EXPECT_EQ( whole.mFacts.mSize, size );
        if ( size > 0 )
        {
            const XFileContent refused = ReadWholeFile( folder / "file", size - 1 );
            ASSERT_TRUE( refused.mError );
            EXPECT_NE( refused.mError->Describe().find( std::to_string( size - 1 ) ), std::string::npos );
            EXPECT_EQ( refused.mBytes.size(), 0u );
        }
    }
    EXPECT_EQ( ReadWholeFile( folder / "none", 10 ).mError->mCode, ENOENT );
    EXPECT_TRUE( ReadWholeFile( folder.Path(), 10 ).mError );
    EXPECT_TRUE( ReadWholeFile( "/dev/zero", 10 ).mError );
}

TEST( ReadWholeFile, ReadsAPipeToItsEndWithinTheLimit )
{
    for ( const std::size_t limit : { std::size_t( 300000 ), std::size_t( 299999 ), std::size_t( 10 ) } )
    {
        int ends[2];
        ASSERT_EQ( ::pipe( ends ), 0 );
        const pid_t writer = ::fork();
        if ( writer == 0 )
        {
            // Only calls that are safe after a fork; the reader may be gone before the end.
            ::signal( SIGPIPE, SIG_IGN );
            ::close( ends[0] );
            char block[1000];
            std::fill( std::begin( block ), std::end( block ), 'y' );
            for ( int i = 0; i < 300 and ::write( ends[1], block, sizeof( block ) ) > 0; ++i )
            {}
            ::_exit( 0 );
        }
        ::close( ends[1] );
        XFileContent content = ReadWholeFile( ends[0], "pipe", limit );
        ::close( ends[0] );
        ::waitpid( writer, nullptr, 0 );
        EXPECT_EQ( not content.mError, limit == 300000 );
        EXPECT_EQ( content.mBytes.size(), limit == 300000 ? limit : 0 );
    }
}

TEST( ReadWholeFile, AFailingCallIsAnErrorWithoutBytes )
{
    const ScratchFolder folder;
    Put( folder / "file", "content" );
    for ( int n = 1; n <= 3; ++n )
    {
        FailingCalls calls( n, Mode::kOnce, EIO );
        const XFileContent content = ReadWholeFile( folder / "file", 100, calls );
        ASSERT_TRUE( content.mError ) << n;
        EXPECT_EQ( content.mError->mCode, EIO );
        EXPECT_EQ( content.mBytes.size(), 0u );
    }
}

TEST( MakeFolders, MakesWhatIsMissingAndRefusesAFileInTheWay )
{
    const ScratchFolder folder;
    EXPECT_FALSE( MakeFolders( folder / "a/b/c" ) );
    EXPECT_FALSE( MakeFolders( folder / "a/b/c" ) );
    EXPECT_EQ( ModeOf( folder / "a/b/c" ), 0700u );
    Put( folder / "file", "" );
    EXPECT_TRUE( MakeFolders( folder / "file" ) );
    EXPECT_TRUE( MakeFolders( folder / "file/below" ) );
}

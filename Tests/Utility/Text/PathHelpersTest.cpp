#include "Utility/Text/PathHelpers.h"

#include "Platform/FileFacts.h"
#include "Platform/Platform.h"
#include "Utility/Text/FileHelpers.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>

namespace
{
namespace fs = std::filesystem;

// A folder of its own, gone with the test, and the home of the user as long.
class PathHelpersOnDisk : public testing::Test
{
protected:
    PathHelpersOnDisk()
    {
        const char* home = std::getenv( "HOME" );
        mHome = home ? home : "";
        std::string name = testing::TempDir() + "korvalen-XXXXXX";
        mFolder = fs::canonical( mkdtemp( name.data() ) );
        setenv( "HOME", mFolder.c_str(), 1 );
        setenv( "TMPDIR", mFolder.c_str(), 1 );
    }
    ~PathHelpersOnDisk() override
    {
        setenv( "HOME", mHome.c_str(), 1 );
        unsetenv( "TMPDIR" );
        fs::remove_all( mFolder );
    }

    Text Path( std::string_view inName ) const { return TextFromUTF8( ( mFolder / inName ).native() ); }
    Text MakeFile( std::string_view inName, std::string_view inContents = "contents" ) const
    {
        fs::create_directories( ( mFolder / inName ).parent_path() );
        std::ofstream( mFolder / inName ) << inContents;
        return Path( inName );
    }
    std::string Contents( std::string_view inName ) const
    {
        std::ifstream file( mFolder / inName );
        return { std::istreambuf_iterator<char>( file ), {} };
    }

    fs::path mFolder;

private:
    std::string mHome;
};

class KnownFacts final : public XDesktopFileFacts
{
public:
    bool TrashFile( const fs::path& inFile ) override { return fs::remove( inFile ); }
    std::optional<Text> GetFileKind( const fs::path& ) const override { return u"Application"; }
    std::optional<Text> GetDisplayName( const fs::path& ) const override { return u"Shown.app"; }
    std::optional<Text> GetBundleName( const fs::path& ) const override { return {}; }
    std::optional<Text> GetType( const fs::path& ) const override { return {}; }
    bool TypeConformsTo( TextView, TextView ) const override { return false; }
};
} // namespace

TEST( PathHelpers, ComponentsAndExtensions )
{
    constexpr struct
    {
        const char16_t *mPath, *mLast, *mParent, *mExtension, *mStem;
    } kCases[] = {
        { u"/tmp/scratch.tiff", u"scratch.tiff", u"/tmp", u"tiff", u"/tmp/scratch" },
        { u"/tmp/scratch.tiff/", u"scratch.tiff", u"/tmp", u"tiff", u"/tmp/scratch" },
        { u"/tmp//lock//", u"lock", u"/tmp", u"", u"/tmp//lock" },
        { u"/tmp/", u"tmp", u"/", u"", u"/tmp" },
        { u"/tmp", u"tmp", u"/", u"", u"/tmp" },
        { u"/", u"/", u"/", u"", u"/" },
        { u"///", u"/", u"/", u"", u"/" },
        { u"", u"", u"", u"", u"" },
        { u"scratch", u"scratch", u"", u"", u"scratch" },
        { u"scratch..tiff", u"scratch..tiff", u"", u"tiff", u"scratch." },
        { u"a.tar.gz", u"a.tar.gz", u"", u"gz", u"a.tar" },
        { u".profile", u".profile", u"", u"", u".profile" },
        { u"..profile", u"..profile", u"", u"", u"..profile" },
        { u".profile.bak", u".profile.bak", u"", u"bak", u".profile" },
        { u"..", u"..", u"", u"", u".." },
        { u"name.", u"name.", u"", u"", u"name." },
        { u"/a.b/c", u"c", u"/a.b", u"", u"/a.b/c" },
        { u"~/x.y", u"x.y", u"~", u"y", u"~/x" },
    };
    for ( const auto& [path, last, parent, extension, stem] : kCases )
    {
        EXPECT_EQ( lastPathComponent( path ), last ) << UTF8FromText( path );
        EXPECT_EQ( stringByDeletingLastPathComponent( path ), parent ) << UTF8FromText( path );
        EXPECT_EQ( pathExtension( path ), extension ) << UTF8FromText( path );
        EXPECT_EQ( stringByDeletingPathExtension( path ), stem ) << UTF8FromText( path );
    }
    EXPECT_EQ( stringByAppendingPathComponent( u"/tmp/", u"a" ), u"/tmp/a" );
    EXPECT_EQ( stringByAppendingPathComponent( u"/", u"a/" ), u"/a" );
    EXPECT_EQ( stringByAppendingPathComponent( u"", u"a" ), u"a" );
    EXPECT_EQ( stringByAppendingPathComponent( u"/tmp", u"/a" ), u"/tmp/a" );
    EXPECT_EQ( stringByAppendingPathComponent( u"/tmp", u"" ), u"/tmp" );
}

TEST( PathHelpers, NamesAndOrder )
{
    EXPECT_TRUE( kvr_pathIsAbsolute( u"/a" ) );
    EXPECT_TRUE( kvr_pathIsAbsolute( u"~/a" ) );
    EXPECT_FALSE( kvr_pathIsAbsolute( u"a/b" ) );
    EXPECT_FALSE( kvr_pathIsAbsolute( u"" ) );
    EXPECT_EQ( kvr_nameWithoutAppSuffix( u"Finder.app" ), u"Finder" );
    EXPECT_EQ( kvr_nameWithoutAppSuffix( u"Finder.APP" ), u"Finder" );
    EXPECT_EQ( kvr_nameWithoutAppSuffix( u".app" ), u".app" );
    EXPECT_FALSE( kvr_nameHasAppSuffix( u"application" ) );
    EXPECT_EQ( kvr_saferFileName( u"a!b,c;d:e/f\\g\rh\ni.j k" ), u"a-b-c-d-e-f-g-h-i.j k" );
    EXPECT_EQ( pathStandardCompare( u"/a/file 2", u"/a/file 10" ), -1 );
    EXPECT_EQ( pathStandardCompare( u"/a/b", u"/a b" ), -1 ); // what a folder holds is behind the folder
    EXPECT_EQ( pathStandardCompare( u"/a", u"/a/b" ), -1 );
    EXPECT_EQ( pathStandardCompare( u"/a//b/", u"/a/b" ), 0 );
}

TEST_F( PathHelpersOnDisk, TildesAreExpandedAndAbbreviated )
{
    const Text home = TextFromUTF8( mFolder.native() );
    EXPECT_EQ( stringByExpandingTildeInPath( u"~" ), home );
    EXPECT_EQ( stringByExpandingTildeInPath( u"~/a/" ), home + u"/a" );
    EXPECT_EQ( stringByExpandingTildeInPath( u"~no-such-user-here/a" ), u"~no-such-user-here/a" );
    EXPECT_EQ( stringByExpandingTildeInPath( u"~root/a" ), u"/root/a" );
    EXPECT_EQ( stringByExpandingTildeInPath( u"a/~" ), u"a/~" );
    const Text cut = Text( u"~root" ) + u'\0' + u"x/a"; // another name than what stands before the NUL
    EXPECT_EQ( stringByExpandingTildeInPath( cut ), cut );
    EXPECT_EQ( stringByAbbreviatingWithTildeInPath( home + u"/a" ), u"~/a" );
    EXPECT_EQ( stringByAbbreviatingWithTildeInPath( home ), u"~" );
    EXPECT_EQ( stringByAbbreviatingWithTildeInPath( home + u"2/a" ), home + u"2/a" );
}

TEST_F( PathHelpersOnDisk, LinksAreFollowedAndPathsMadeStandard )
{
    fs::create_directories( mFolder / "real/deep" );
    fs::create_directory_symlink( mFolder / "real/deep", mFolder / "link" );
    EXPECT_EQ( stringByResolvingSymlinksInPath( Path( "link/x" ) ), Path( "real/deep/x" ) );
    EXPECT_EQ( stringByResolvingSymlinksInPath( u"~/link" ), Path( "real/deep" ) );
    EXPECT_EQ( stringByStandardizingPath( Path( "link/../x" ) ), Path( "real/x" ) ); // not beside the link
    EXPECT_EQ( stringByStandardizingPath( Path( "none/../x" ) ), Path( "x" ) );
    EXPECT_EQ( stringByStandardizingPath( Path( "link/x" ) ), Path( "link/x" ) );
    EXPECT_EQ( stringByStandardizingPath( u"/../.././a//b/" ), u"/a/b" );
    EXPECT_EQ( stringByStandardizingPath( u"a/./../b//c/" ), u"a/../b/c" );
    EXPECT_EQ( stringByStandardizingPath( u"" ), u"" );
    EXPECT_EQ( stringByStandardizingPath( u"./" ), u"." );
}

TEST_F( PathHelpersOnDisk, ALongPathIsMadeStandardInOnePass )
{
    Text down, up;
    for ( int i = 0; i < 100'000; ++i )
    {
        down += u"/d";
        up += u"/..";
    }
    EXPECT_EQ( stringByStandardizingPath( down + u"/./x/" ), down + u"/x" );
    EXPECT_EQ( stringByStandardizingPath( down + up + u"/x" ), u"/x" );
}

TEST_F( PathHelpersOnDisk, FactsOfFiles )
{
    const Text file = MakeFile( "folder/a.txt", "12345" );
    EXPECT_TRUE( existsPath( file ) );
    EXPECT_EQ( kvr_fileSize( file ), 5u );
    EXPECT_FALSE( kvr_existsDirectory( file ) );
    EXPECT_TRUE( kvr_existsDirectory( Path( "folder" ) ) );
    EXPECT_FALSE( kvr_fileSize( Path( "folder" ) ) );
    EXPECT_FALSE( existsPath( Path( "none" ) ) );
    EXPECT_FALSE( existsPath( u"" ) );
    EXPECT_FALSE( existsPath( file + u'\0' + u"x" ) ); // a NUL doesn't cut the name short
    EXPECT_EQ( fileDisplayName( file ), u"a.txt" );
    EXPECT_EQ( displayName( Path( "folder/Finder.app" ) ), u"Finder" );
    EXPECT_EQ( fileKind( file ), u"" );
    EXPECT_FALSE( trashFile( file ) );
    EXPECT_TRUE( existsPath( file ) );

    KnownFacts facts;
    Platform platform;
    platform.SetFileFacts( facts );
    const Platform::Substitute substitute( platform );
    EXPECT_EQ( fileDisplayName( file ), u"Shown.app" );
    EXPECT_EQ( displayName( file ), u"Shown" );
    EXPECT_EQ( bundleName( file ), u"Shown" );
    EXPECT_EQ( fileKind( file ), u"Application" );
    EXPECT_TRUE( trashFile( file ) );
    EXPECT_FALSE( trashFile( file ) );
}

TEST_F( PathHelpersOnDisk, URLsOfFiles )
{
    fs::create_directories( mFolder / "a folder" );
    const Text prefix = u"file://" + TextFromUTF8( mFolder.native() );
    EXPECT_EQ( urlForPath( Path( "a folder" ) ), prefix + u"/a%20folder/" );
    EXPECT_EQ( urlForPath( Path( "\xC3\xA9?#;%.txt" ) ), prefix + u"/%C3%A9%3F%23%3B%25.txt" );
    EXPECT_EQ( urlForPath( u"" ), u"" );
}

TEST_F( PathHelpersOnDisk, FilesAreMovedRenamedAndDeletedButNeverOverwritten )
{
    const Text a = MakeFile( "a", "A" );
    MakeFile( "sub/b", "B" );
    EXPECT_FALSE( renameFile( a, u"sub/b" ) );
    EXPECT_FALSE( renameFile( a, u".." ) );
    EXPECT_FALSE( renameFile( a, u"" ) );
    EXPECT_FALSE( renameFile( Path( "none" ), u"x" ) );
    EXPECT_TRUE( renameFile( a, u"b" ) );
    EXPECT_FALSE( moveFileToFolder( Path( "b" ), Path( "sub" ) ) );
    EXPECT_EQ( Contents( "sub/b" ), "B" );
    EXPECT_TRUE( renameFile( Path( "b" ), u"c" ) );
    EXPECT_TRUE( moveFileToFolder( Path( "c" ), Path( "sub" ) ) );
    EXPECT_EQ( Contents( "sub/c" ), "A" );
    EXPECT_FALSE( moveFileToFolder( Path( "sub/c" ), Path( "none" ) ) );

    // A link that leads nowhere is something that would be overwritten.
    fs::create_symlink( "nowhere", mFolder / "sub/link" );
    EXPECT_FALSE( renameFile( Path( "sub/c" ), u"link" ) );
    fs::create_hard_link( mFolder / "sub/c", mFolder / "sub/d" );
    EXPECT_FALSE( renameFile( Path( "sub/c" ), u"d" ) );

    EXPECT_FALSE( deleteFile( Path( "sub" ) ) );
    EXPECT_TRUE( deleteFile( Path( "sub/link" ) ) );
    EXPECT_TRUE( deleteFile( Path( "sub/c" ) ) );
    EXPECT_FALSE( deleteFile( Path( "sub/c" ) ) );
    EXPECT_TRUE( createFolder( Path( "x/y/z" ) ) );
    EXPECT_TRUE( createFolder( Path( "x/y/z" ) ) );
    EXPECT_FALSE( createFolder( Path( "sub/b" ) ) );
    EXPECT_TRUE( deleteFile( Path( "x/y/z" ) ) );
}

TEST_F( PathHelpersOnDisk, TemporaryFilesAreNewPrivateAndSafelyNamed )
{
    const Text first = tempFileWithBasename( u"a/b", u"txt" ).value();
    const Text second = tempFileWithBasename( u"a/b", u"txt" ).value();
    EXPECT_NE( first, second );
    EXPECT_EQ( pathExtension( first ), u"txt" );
    EXPECT_TRUE( lastPathComponent( first ).starts_with( u"a-b-" ) );
    EXPECT_EQ( stringByDeletingLastPathComponent( first ), TextFromUTF8( mFolder.native() ) );
    EXPECT_EQ( kvr_fileSize( first ), 0u );
    EXPECT_EQ(
        fs::status( *kvr_fileSystemPath( first ) ).permissions(), fs::perms::owner_read | fs::perms::owner_write );
    EXPECT_TRUE( pathExtension( tempFileWithBasename( u"plain" ).value() ).empty() );
    EXPECT_FALSE( tempFileWithBasename( Text( 300, u'x' ) ) );
}

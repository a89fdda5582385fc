#include "Defines/KVFileTypes.h"

#include "Tests/Support/ScratchFolder.h"

#include <gtest/gtest.h>

namespace
{
using namespace KVFileTypes;

// An application whose information file has this signature.
void MakeApplication( const ScratchFolder& inFolder, const std::string& inName, const std::string& inSignature )
{
    std::filesystem::create_directories( inFolder.Path() / inName / "Contents" );
    inFolder.Write( inName + "/Contents/Info.plist",
        R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict><key>CFBundleSignature</key><string>)" +
            inSignature + "</string></dict></plist>" );
}
} // namespace

TEST( KVFileTypes, ExtensionsDecideWhateverTheirCase )
{
    struct
    {
        bool ( *mAccepts )( const Path& inPath );
        std::vector<std::string> mExtensions;
    } const kKinds[] = {
        { ShouldShowImage, { "png", "tiff", "tif", "jpeg", "jpg" } },
        { IsAppleScriptFilename, { "scpt", "scptd", "applescript" } },
        { ShouldShowShellScriptFilename, { "pl", "sh", "tcl", "tk", "py", "rb", "ruby" } },
        { ShouldShowSwiftScriptFilename, { "swift" } },
        { ShouldShowJavaScriptFilename, { "js", "javascript", "jscript" } },
        { ShouldShowWorkflowFilename, { "workflow" } },
        { ShouldShowApplication, { "app" } },
    };
    for ( const auto& [accepts, own] : kKinds )
    {
        for ( const auto& other : kKinds )
        {
            for ( std::string extension : other.mExtensions )
            {
                const bool expected = accepts == other.mAccepts;
                EXPECT_EQ( accepts( "/none/a." + extension ), expected ) << own.front() << " " << extension;
                extension[0] = char( extension[0] - 0x20 );
                EXPECT_EQ( accepts( "/none/a." + extension ), expected ) << own.front() << " " << extension;
                EXPECT_FALSE( accepts( "/none/" + extension ) ) << "no extension";
            }
        }
    }
}

TEST( KVFileTypes, AnApplicationIsAScriptByItsSignature )
{
    const ScratchFolder folder;
    MakeApplication( folder, "Applet.app", "aplt" );
    MakeApplication( folder, "Droplet.app", "dplt" );
    MakeApplication( folder, "Other.app", "????" );
    std::filesystem::create_directory( folder / "Empty.app" );
    const std::pair<const char*, bool> kCases[] = { { "Applet.app", true }, { "Droplet.app", true },
        { "Other.app", false }, { "Empty.app", false } };
    for ( const auto& [name, isScript] : kCases )
    {
        EXPECT_EQ( IsAppleScriptFilename( folder / name ), isScript ) << name;
        EXPECT_EQ( ShouldShowAppleScriptFilename( folder / name ), isScript ) << name;
        EXPECT_TRUE( ShouldShowApplication( folder / name ) ) << name;
    }
}

TEST( KVFileTypes, AFolderThatShowsAsAFileIsNoFolder )
{
    const ScratchFolder folder;
    std::filesystem::create_directory( folder / "Letters" );
    std::filesystem::create_directory( folder / "Some.app" );
    folder.Write( "file", "x" );
    EXPECT_TRUE( ShouldShowFolder( folder / "Letters" ) );
    EXPECT_FALSE( ShouldShowFileOrPackage( folder / "Letters" ) );
    for ( const char* const name : { "Some.app", "file" } )
    {
        EXPECT_FALSE( ShouldShowFolder( folder / name ) ) << name;
        EXPECT_TRUE( ShouldShowFileOrPackage( folder / name ) ) << name;
    }
    EXPECT_FALSE( ShouldShowFolder( folder / "none" ) );
    EXPECT_FALSE( ShouldShowFileOrPackage( folder / "none" ) );
}

#include "Defines/KVPreferences.h"
#include "Defines/SetAside.h"
#include "Platform/Platform.h"
#include "Tests/Fakes/FakeTrash.h"
#include "Tests/Fakes/ManualWorld.h"
#include "Tests/Support/ScratchFolder.h"
#include "XCAF/XFileWriting.h"

#include <cerrno>
#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace
{
struct DataFolder : testing::Test
{
    DataFolder()
    {
        mPlatform.SetFileFacts( mTrash );
        KVPreferences::UseFolder( mFolder.Path() );
    }
    ~DataFolder() override { KVPreferences::UseFolder( {} ); }

    /// What is left on the disk, below the data folder.
    [[nodiscard]] std::vector<std::string> Files() const
    {
        std::vector<std::string> files;
        for ( const auto& entry : fs::recursive_directory_iterator( mFolder.Path() ) )
        {
            if ( entry.is_symlink() or not entry.is_directory() )
                files.push_back( entry.path().lexically_relative( mFolder.Path() ).native() );
        }
        std::sort( files.begin(), files.end() );
        return files;
    }

    ManualWorld mWorld;
    ScratchFolder mFolder;
    FakeTrash mTrash;
    Platform mPlatform;
    Platform::Substitute mInUse{ mPlatform };
};

class NoMoving final : public XFileCalls
{
public:
    int RenameToNew( const fs::path&, const fs::path& ) override
    {
        errno = EXDEV;
        return -1;
    }
};
} // namespace

TEST_F( DataFolder, UnfinishedFilesGoAndWhatOnlyLooksLikeThemGoesToTheTrash )
{
    const std::string ours = ".dat0123456789abcdef";
    fs::create_directories( mFolder / "a/mdat" ); // a folder isn't a file, whatever it is called
    fs::create_directories( mFolder / "elsewhere" );
    const char* const kTrashed[] = { "a/mdat/xdata.json", "a/ydat", ".dat", ".dat0123456789abcdeg",
        ".datABCDEF0123456789" };
    const char* const kStaying[] = { "Korvalen Macros.plist", "a/data", "a/mdat/x.dat", "a/mdat/.DAT", "a/mdat/..dat" };
    for ( const auto& names : { std::vector<const char*>( std::begin( kTrashed ), std::end( kTrashed ) ),
              std::vector<const char*>( std::begin( kStaying ), std::end( kStaying ) ) } )
    {
        for ( const char* const name : names )
            mFolder.Write( name, name );
    }
    mFolder.Write( ours, "half" );
    mFolder.Write( "a/mdat/" + ours, "half" );
    fs::create_symlink( mFolder / "a/data", mFolder / ".datlink" );
    fs::create_directory_symlink( mFolder / "elsewhere", mFolder / "link" );

    KVPreferences::RemoveBogusDotDatFiles();
    std::vector<std::string> expected( std::begin( kStaying ), std::end( kStaying ) );
    expected.emplace_back( ".datlink" );
    expected.emplace_back( "link" );
    std::sort( expected.begin(), expected.end() );
    EXPECT_EQ( Files(), expected );
    ASSERT_EQ( mTrash.mTrashed.size(), std::size( kTrashed ) );
    for ( const auto& [name, bytes] : mTrash.mTrashed )
        EXPECT_EQ( fs::path( bytes ).filename(), name );
    EXPECT_EQ( mWorld.mLog.CountContaining( "RemoveBogusDotDatFiles: " ), std::size( kTrashed ) + 2 );
}

TEST_F( DataFolder, WithoutATrashWhatMayBeSomebodysIsSetAsideAndOtherwiseStays )
{
    mTrash.mIsFull = true;
    mFolder.Write( "mdat", "precious" );
    KVPreferences::RemoveBogusDotDatFiles();
    EXPECT_FALSE( fs::exists( mFolder / "mdat" ) );
    const auto kept = SetAside::List( SetAside::Kind::kOther );
    ASSERT_EQ( kept.size(), 1u );
    EXPECT_EQ( ReadWholeFile( kept[0].mPath, 100 ).mBytes.View(), "precious" );

    fs::remove_all( SetAside::Folder() );
    mFolder.Write( "Set Aside", "in the way" );
    mFolder.Write( "mdat", "precious" );
    KVPreferences::RemoveBogusDotDatFiles();
    EXPECT_EQ( mFolder.Read( "mdat" ), "precious" );
}

TEST_F( DataFolder, AnOlderFolderIsMovedUnlessTheNewerOneExists )
{
    const fs::path older = mFolder / "older", newer = mFolder / "deep/newer";
    EXPECT_EQ( KVPreferences::FolderOfKinds( older, newer ), newer ); // neither: the newer one is made
    EXPECT_TRUE( fs::is_directory( newer ) );

    fs::create_directory( older );
    mFolder.Write( "older/a", "a" );
    EXPECT_EQ( KVPreferences::FolderOfKinds( older, newer ), newer ); // both: nothing moves
    EXPECT_EQ( mFolder.Read( "older/a" ), "a" );

    fs::remove_all( mFolder / "deep" );
    {
        NoMoving calls;
        const XFileCalls::Substitute substitute( calls );
        EXPECT_EQ( KVPreferences::FolderOfKinds( older, newer ), older ); // the data stay in use where they are
    }
    EXPECT_FALSE( fs::exists( newer ) );
    EXPECT_EQ( KVPreferences::FolderOfKinds( older, newer ), newer );
    EXPECT_EQ( mFolder.Read( "deep/newer/a" ), "a" );
    EXPECT_FALSE( fs::exists( older ) );

    fs::remove_all( newer );
    mFolder.Write( "older", "a file" );
    EXPECT_EQ( KVPreferences::FolderOfKinds( older, newer ), newer );
    EXPECT_EQ( mFolder.Read( "older" ), "a file" );
    EXPECT_TRUE( fs::is_directory( newer ) );
}

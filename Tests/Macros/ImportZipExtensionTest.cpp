// Zip files from strangers: good ones come in, and of all others nothing is left anywhere.
#include "Macros/ImportZipExtension.h"

#include "Actions/PlugInFolder.h"
#include "Defines/KVPreferences.h"
#include "Macros/StatusMenuIcon.h"
#include "Macros/ZipLayout.h"
#include "Platform/Platform.h"
#include "Tests/Fakes/FakeAlerts.h"
#include "Tests/Fakes/FakeTrash.h"
#include "Tests/Macros/MacroFixtures.h"
#include "Tests/Macros/ZipMaker.h"
#include "Tests/Support/ScratchFolder.h"
#include "XCAF/XFileWriting.h"
#include "XCAF/XNotificationCenter.h"

#include <cstdlib>
#include <map>

namespace
{
namespace fs = std::filesystem;

std::string InformationCalled( TextView inName )
{
    return std::string( WriteXMLPropertyList( Dict( { { "Name", Str( inName ) } } ) ).mBytes.View() );
}

ZipItem Information( const std::string& inFolder = "P" )
{
    return { .mName = inFolder + "/Korvalen Action.plist", .mData = InformationCalled( u"New" ) };
}

// Whole folders are thrown away here, and only their names are asked for.
class FolderTrash final : public FakeTrash
{
public:
    bool TrashFile( const fs::path& inPath ) override
    {
        if ( mIsFull )
            return false;
        mTrashed.emplace_back( inPath.filename().native(), "" );
        return fs::remove_all( inPath ) > 0;
    }
};

class ZipImport : public testing::Test
{
protected:
    ZipImport()
    {
        fs::create_directory( mData );
        KVPreferences::UseFolder( mData );
        PlugInFolder::ClearCache();
        mPlatform.SetAlerts( mAlerts );
        mPlatform.SetFileFacts( mTrash );
    }
    ~ZipImport() override
    {
        KVPreferences::UseFolder( {} );
        PlugInFolder::ClearCache();
    }

    bool Import( const std::string& inZip )
    {
        mScratch.Write( "it.zip", inZip );
        return ImportZipExtension::Import( mScratch / "it.zip" );
    }
    /// Every path below the scratch folder with its kind, mode and bytes; the zip file itself left out.
    std::map<std::string, std::string> Tree() const
    {
        std::map<std::string, std::string> tree;
        for ( const auto& entry : fs::recursive_directory_iterator( mScratch.Path() ) )
        {
            const std::string name = entry.path().lexically_relative( mScratch.Path() );
            const auto status = entry.symlink_status();
            std::string what =
                std::to_string( int( status.type() ) ) + " " + std::to_string( unsigned( status.permissions() ) );
            if ( status.type() == fs::file_type::regular )
                what += " " + mScratch.Read( name );
            if ( name != "it.zip" )
                tree[name] = what;
        }
        return tree;
    }
    void Install( const std::string& inName, TextView inInformationName )
    {
        fs::create_directories( mData / "Korvalen Actions" / inName );
        mScratch.Write(
            "data/Korvalen Actions/" + inName + "/Korvalen Action.plist", InformationCalled( inInformationName ) );
    }
    static XText InstalledName( TextView inFolder )
    {
        XText name;
        if ( const auto information = PlugInFolder::InformationForFolderName( inFolder ) )
            (void)information->Get( CFSTR( "Name" ), name );
        return name;
    }

    ScratchFolder mScratch;
    fs::path mData = mScratch / "data";
    LogCapture mLog;
    FakeAlerts mAlerts;
    FolderTrash mTrash;
    Platform mPlatform;
    Platform::Substitute mPlatformInUse{ mPlatform };
};
} // namespace

TEST_F( ZipImport, APlugInComesInWithPrivateModesAndIsAnnounced )
{
    int announced = 0;
    const BlockNotificationObserver observer( XNotificationCenter::Reach::kInternal,
        kReloadThirdPartyActionsNotification, [&]( const auto& ) { ++announced; } );
    EXPECT_TRUE( Import( ZipMaker::Make( { { .mName = "P/", .mMode = 040777 }, Information(),
        { .mName = "P/run.sh", .mData = "#!/bin/sh\n", .mMode = 0100777, .mIsDeflated = true, .mSizesFollow = true },
        { .mName = "P/a/b/é.txt", .mData = "x", .mMode = 0100666, .mSizesFollow = true },
        { .mName = "__MACOSX/._P", .mData = "fork" }, { .mName = "P/.DS_Store", .mData = "view" } } ) ) );
    const std::string folder = "data/Korvalen Actions/P";
    EXPECT_EQ( mScratch.Read( folder + "/run.sh" ), "#!/bin/sh\n" );
    EXPECT_EQ( mScratch.Read( folder + "/a/b/é.txt" ), "x" );
    const auto modeOf = [&]( const char* name ) {
        return unsigned( fs::status( mScratch.Path() / folder / name ).permissions() );
    };
    EXPECT_EQ( modeOf( "run.sh" ), 0700u );
    EXPECT_EQ( modeOf( "a/b/é.txt" ), 0600u );
    EXPECT_EQ( modeOf( "a" ), 0700u );
    EXPECT_EQ( modeOf( "" ), 0700u );
    EXPECT_EQ( Tree().size(), 8u ); // data, the actions' folder, P and what is in it: nothing of the other system's
    EXPECT_EQ( announced, 1 );
    EXPECT_EQ( PlugInFolder::ListPlugIns(), std::vector<Text>{ u"P" } );
}

TEST_F( ZipImport, WhatPythonPacksComesIn )
{
    mScratch.Write( "Korvalen Action.plist", InformationCalled( u"From Python" ) );
    const std::string script = "import zipfile, sys, os\n"
                               "os.chdir(sys.argv[1])\n"
                               "z = zipfile.ZipFile('python.zip', 'w', zipfile.ZIP_DEFLATED)\n"
                               "z.write('Korvalen Action.plist', 'Größe/Korvalen Action.plist')\n"
                               "z.writestr('Größe/lots.txt', 'line\\n' * 100000)\n"
                               "z.close()\n";
    mScratch.Write( "pack.py", script );
    ASSERT_EQ(
        std::system(
            ( "python3 '" + ( mScratch / "pack.py" ).native() + "' '" + mScratch.Path().native() + "'" ).c_str() ),
        0 );
    EXPECT_TRUE( ImportZipExtension::Import( mScratch / "python.zip" ) );
    EXPECT_EQ( mScratch.Read( "data/Korvalen Actions/Größe/lots.txt" ).size(), 500000u );
    EXPECT_EQ( InstalledName( u"Größe" ), XText( u"From Python" ) );
}

TEST_F( ZipImport, AHostileFileIsRefusedAndNothingIsLeftOfIt )
{
    using Items = std::vector<ZipItem>;
    const std::string deep = "a/a/a/a/a/a/a/a/a/a/a/a/a/a/a/a/a", large( 256, 'n' );
    // An entry that stands, whole, in the data of another.
    const std::string within = ZipMaker::Make( { { .mName = "P/b", .mData = "x" } } );
    const auto offsetWithin =
        std::uint32_t( ZipMaker::Make( { Information() } ).find( "PK\1\2" ) + 30 + std::string_view( "P/a" ).size() );
    const struct
    {
        const char *mWhat, *mReason;
        Items mMore;
        ZipEnd mEnd = {};
    } kCases[] = {
        { "absolute", "is absolute", { { .mName = "/tmp/evil" } } },
        { "drive", "is absolute", { { .mName = "C:evil" } } },
        { "up", "leads elsewhere", { { .mName = "../evil" } } },
        { "up within", "leads elsewhere", { { .mName = "P/../../evil" } } },
        { "here", "leads elsewhere", { { .mName = "P/./evil" } } },
        { "double slash", "leads elsewhere", { { .mName = "P//evil" } } },
        { "back slash", "no file name should", { { .mName = "..\\evil" } } },
        { "NUL", "no file name should", { { .mName = std::string( "a\0b", 3 ) } } },
        { "control", "no file name should", { { .mName = "a\033[2Jb" } } },
        { "C1 control", "no file name should", { { .mName = "a\u0085b" } } },
        { "no UTF-8", "no file name should", { { .mName = "a\xFF" } } },
        { "no name", "leads elsewhere", { { .mName = "" } } },
        { "long name", "longer than 255", { { .mName = large } } },
        { "deep", "deeper than 16", { { .mName = deep } } },
        { "link", "a link or a device", { { .mName = "P/l", .mData = "/etc/passwd", .mMode = 0120777 } } },
        { "link of another system", "a link or a device",
            { { .mName = "P/l", .mData = "/etc/passwd", .mMode = 0120777, .mMadeBy = 0 } } },
        { "link as folder", "a link or a device", { { .mName = "P/l/", .mMode = 0120777 } } },
        { "device", "a link or a device", { { .mName = "P/d", .mMode = 0020666 } } },
        { "pipe", "a link or a device", { { .mName = "P/p", .mMode = 0010666 } } },
        { "set-user", "as somebody else", { { .mName = "P/s", .mMode = 0104755 } } },
        { "set-group", "as somebody else", { { .mName = "P/s", .mMode = 0102755 } } },
        { "twice", "the same", { { .mName = "P/a" }, { .mName = "P/a" } } },
        { "twice by case", "the same", { { .mName = "P/A" }, { .mName = "P/a" } } },
        { "folders by case", "the same", { { .mName = "P/X/a" }, { .mName = "P/x/b" } } },
        { "twice by form", "the same", { { .mName = "P/\u00E9" }, { .mName = "P/e\u0301" } } },
        { "file and folder", "the same", { { .mName = "P/a" }, { .mName = "P/a/b" } } },
        { "folder and file", "the same", { { .mName = "P/a/b" }, { .mName = "P/a" } } },
        { "file with a slash", "both a file and a folder", { { .mName = "P/f/", .mMode = 0100644 } } },
        { "folder with bytes", "sizes disagree", { { .mName = "P/f/", .mData = "x", .mMode = 040755 } } },
        { "encrypted", "encrypted", { { .mName = "P/a", .mData = "x", .mFlags = 1 } } },
        { "masked directory", "encrypted", { { .mName = "P/a", .mData = "x", .mFlags = 8192 } } },
        { "unknown method", "isn't known", { { .mName = "P/a", .mData = "x", .mMethod = 14 } } },
        { "another name", "and its directory disagree", { { .mName = "P/a", .mLocalName = "../a" } } },
        { "another size", "sizes disagree", { { .mName = "P/a", .mData = "xyz", .mLocalSize = 2 } } },
        { "another size behind", "sizes disagree",
            { { .mName = "P/a", .mData = "xyz", .mLocalSize = 2, .mSizesFollow = true } } },
        { "stored larger", "sizes disagree", { { .mName = "P/a", .mData = "xyz", .mSize = 4 } } },
        { "inflates to more", "wrong size", { { .mName = "P/a", .mData = "xyz", .mSize = 2, .mIsDeflated = true } } },
        { "inflates to less", "wrong size", { { .mName = "P/a", .mData = "xyz", .mSize = 4, .mIsDeflated = true } } },
        { "wrong sum", "CRC", { { .mName = "P/a", .mData = "xyz", .mCRC = 1 } } },
        { "beyond the end", "overlap", { { .mName = "P/a", .mPackedSize = 1000000, .mSize = 1000000 } } },
        { "4 GiB", "4 GiB", { { .mName = "P/a", .mPackedSize = 0xFFFFFFFF, .mSize = 0xFFFFFFFF } } },
        { "overlapping", "and its directory disagree",
            { { .mName = "P/a", .mLocalName = "P/Korvalen Action.plist", .mOffset = 0 } } },
        { "one within the other", "overlap",
            { { .mName = "P/a", .mData = within }, { .mName = "P/b", .mData = "x", .mOffset = offsetWithin } } },
        { "bomb", "too well",
            { { .mName = "P/b", .mData = std::string( 1000, 'x' ), .mMethod = 8, .mSize = 2000000 } } },
        { "small bombs", "too well", Items( 10, { .mName = "P/b", .mData = "x", .mMethod = 8, .mSize = 900000 } ) },
        { "another disk", "several disks", { { .mName = "P/a", .mDisk = 1 } } },
        { "several disks", "several disks", {}, { .mDisk = 1 } },
        { "fewer than there are", "directory is damaged", { { .mName = "P/a" } }, { .mCount = 1 } },
        { "more than there are", "directory is damaged", {}, { .mCount = 3 } },
        { "too many", "the limit is 2000", {}, { .mCount = 2001 } },
        { "directory elsewhere", "isn't where", {}, { .mOffsetError = 1 } },
        { "bytes behind", "behind its end", {}, { .mBehind = "x" } },
        { "a second end", "behind its end", {},
            { .mComment = std::string( "PK\5\6", 4 ) + std::string( 18, '\0' ) + "x" } },
    };
    for ( auto [what, reason, more, end] : kCases )
    {
        int number = 0;
        if ( more.size() == 10 )
            std::ranges::for_each( more, [&]( ZipItem& item ) { item.mName += std::to_string( ++number ); } );
        more.insert( more.begin(), Information() );
        const auto before = Tree();
        EXPECT_FALSE( Import( ZipMaker::Make( more, end ) ) ) << what;
        EXPECT_EQ( Tree(), before ) << what;
        const auto lines = mLog.Take();
        ASSERT_EQ( lines.size(), 1u ) << what;
        EXPECT_NE( lines[0].find( reason, lines[0].find( "was not imported: " ) ), std::string::npos ) << lines[0];
    }
    EXPECT_TRUE( mTrash.mTrashed.empty() );
    EXPECT_TRUE( Import( ZipMaker::Make( { Information() }, { .mComment = "It is good without what is more." } ) ) );
}

TEST_F( ZipImport, AFileCutOffAnywhereIsRefused )
{
    const std::string zip =
        ZipMaker::Make( { Information(), { .mName = "P/a", .mData = "abc", .mIsDeflated = true } } );
    const auto before = Tree();
    for ( std::size_t size = 0; size < zip.size(); ++size )
    {
        EXPECT_FALSE( Import( zip.substr( 0, size ) ) ) << size;
        ASSERT_EQ( Tree(), before ) << size;
    }
}

TEST_F( ZipImport, AFlippedBitIsHarmlessOrRefused )
{
    const std::string zip = ZipMaker::Make(
        { Information(), { .mName = "P/a", .mData = "abc", .mIsDeflated = true, .mSizesFollow = true } } );
    for ( std::size_t bit = 0; bit < 8 * zip.size(); bit += 29 )
    {
        std::string damaged = zip;
        damaged[bit / 8] = char( damaged[bit / 8] ^ 1 << bit % 8 );
        (void)Import( damaged );
        for ( const auto& [name, content] : Tree() )
        {
            const bool isInPlace = name == "data" or name.starts_with( "data/Korvalen Actions" );
            ASSERT_TRUE( isInPlace ) << name << " by bit " << bit;
        }
        fs::remove_all( mData / "Korvalen Actions" );
        PlugInFolder::ClearCache();
    }
}

TEST_F( ZipImport, AFailingDiskLeavesNothingUnpacked )
{
    struct Failing final : XFileCalls
    {
        std::ptrdiff_t Write( int inFile, std::span<const std::uint8_t> inBytes ) override
        {
            if ( mWritesLeft-- > 0 )
                return XFileCalls::Write( inFile, inBytes );
            errno = ENOSPC;
            return -1;
        }
        int mWritesLeft = 0;
    } calls;
    mScratch.Write( "it.zip", ZipMaker::Make( { Information(), { .mName = "P/a", .mData = "abc" } } ) );
    const auto before = Tree();
    for ( int writes = 0; writes < 2; ++writes )
    {
        calls.mWritesLeft = writes;
        const XFileCalls::Substitute substitute( calls );
        EXPECT_FALSE( ImportZipExtension::Import( mScratch / "it.zip" ) );
        EXPECT_EQ( Tree(), before );
    }
}

TEST_F( ZipImport, AZipOfNeitherKindGivesFalseAndNoFolder )
{
    const auto before = Tree();
    EXPECT_FALSE( Import( ZipMaker::Make( { { .mName = "readme.txt", .mData = "hello" } } ) ) );
    EXPECT_FALSE( Import( ZipMaker::Make( { { .mName = "__MACOSX/Korvalen Action.plist", .mData = "fork" } } ) ) );
    EXPECT_FALSE( ImportZipExtension::Import( mScratch.Path() ) );
    EXPECT_FALSE( ImportZipExtension::Import( mScratch / "none.zip" ) );
    EXPECT_EQ( Tree(), before );
}

TEST_F( ZipImport, ANewPlugInTakesThePlaceOfTheOlderOneWhichGoesToTheTrash )
{
    Install( "P", u"Old" );
    EXPECT_EQ( InstalledName( u"P" ), XText( u"Old" ) );
    EXPECT_TRUE( Import( ZipMaker::Make( { Information() } ) ) );
    EXPECT_EQ( InstalledName( u"P" ), XText( u"New" ) );
    EXPECT_EQ( PlugInFolder::ListPlugIns(), std::vector<Text>{ u"P" } );
    ASSERT_EQ( mTrash.mTrashed.size(), 1u );
    EXPECT_TRUE( mTrash.mTrashed[0].first.starts_with( "P" ) );
    EXPECT_EQ( mTrash.mTrashed[0].first.size(), 37u );
}

TEST_F( ZipImport, ABadPlugInGoesAndTheOlderOneIsTold )
{
    Install( "P", u"Old" );
    EXPECT_EQ( InstalledName( u"P" ), XText( u"Old" ) ); // and is cached, which mustn't speak for the new one
    EXPECT_FALSE( Import( ZipMaker::Make( { { .mName = "P/Korvalen Action.plist", .mData = "<plist>" } } ) ) );
    EXPECT_EQ( mLog.CountContaining( "Imported action invalid" ), 1u );
    EXPECT_EQ( mAlerts.mSounds.size(), 1u );
    ASSERT_EQ( mTrash.mTrashed.size(), 1u );
    EXPECT_EQ( mTrash.mTrashed[0].first, "P" );
    const std::vector<Text> names = PlugInFolder::ListPlugIns();
    ASSERT_EQ( names.size(), 1u );
    EXPECT_EQ( InstalledName( names[0] ), XText( u"Old" ) );
    EXPECT_EQ( mLog.CountContaining( "The older plug-in P lies at " +
                   ( mData / "Korvalen Actions" / UTF8FromText( names[0] ) ).native() ),
        1u );
}

TEST_F( ZipImport, WithoutATrashTheOlderPlugInIsKept )
{
    mTrash.mIsFull = true;
    Install( "P", u"Old" );
    EXPECT_TRUE( Import( ZipMaker::Make( { Information() } ) ) );
    EXPECT_EQ( InstalledName( u"P" ), XText( u"New" ) );
    EXPECT_EQ( mLog.CountContaining( "There is no trash for what " ), 1u );
    EXPECT_EQ( PlugInFolder::ListPlugIns().size(), 2u );
}

TEST_F( ZipImport, ALinkInAPlugInLeadsNowhere )
{
    Install( "P", u"Good" );
    mScratch.Write( "secret.plist", InformationCalled( u"Secret" ) );
    const fs::path information = mData / "Korvalen Actions" / "P" / "Korvalen Action.plist";
    fs::remove( information );
    fs::create_symlink( mScratch / "secret.plist", information );
    EXPECT_FALSE( PlugInFolder::InformationForFolderName( u"P" ) );
}

TEST_F( ZipImport, StatusMenuIconsAreKeptInTheirFolder )
{
    const struct
    {
        const char16_t* mListing;
        bool mIsIcon;
    } kListings[] = { { u"StatusMenuIcon.png\n", true }, { u"a/StatusMenuIcon@2x.PNG\nb.txt\n", true },
        { u"StatusMenuIcon.txt\n", false }, { u"icon.png\n", false }, { u"", false },
        { u"P/Korvalen Action.plist\nP/StatusMenuIcon.png\n", false } };
    for ( const auto& [listing, isIcon] : kListings )
        EXPECT_EQ( StatusMenuIcon::UnzipLikelyContains( listing ), isIcon ) << UTF8FromText( listing );

    EXPECT_TRUE( Import( ZipMaker::Make(
        { { .mName = "Dots/StatusMenuIcon.png", .mData = "1" }, { .mName = "readme.txt", .mData = "x" } } ) ) );
    EXPECT_EQ( mScratch.Read( "data/Status Menu Icons/Dots/StatusMenuIcon.png" ), "1" );
    EXPECT_TRUE( Import( ZipMaker::Make( { { .mName = "Dots/StatusMenuIcon.png", .mData = "2" } } ) ) );
    EXPECT_EQ( mScratch.Read( "data/Status Menu Icons/Dots/StatusMenuIcon.png" ), "2" );
    EXPECT_EQ( Tree().size(), 4u );
}

TEST_F( ZipImport, OnlyFoldersOfImportsThatWereCutOffAreRemovedAtStart )
{
    const std::string leftover = "data/Import-01234567-89AB-CDEF-0123-456789ABCDEF";
    for ( const char* const name : { "P/a", "" } )
        fs::create_directories( mScratch.Path() / leftover / name );
    mScratch.Write( leftover + "/P/file", "x" );
    mScratch.Write( "data/Import-01234567-89AB-CDEF-0123-456789ABCDE0", "a file" );
    fs::create_directories( mData / "Import-of-mine" );
    mScratch.Write( "data/Import-of-mine/file", "x" );
    fs::create_directory_symlink( mData / "Import-of-mine", mData / "Import-01234567-89AB-CDEF-0123-456789ABCDE1" );
    ImportZipExtension::RemoveLeftovers();
    EXPECT_FALSE( fs::exists( mScratch.Path() / leftover ) );
    EXPECT_EQ( Tree().size(), 5u );
}

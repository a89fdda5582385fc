// What goes wrong on a bad day, and that nothing is lost by it.
#include "Tests/EndToEnd/Desk.h"

#include <sys/mount.h>

using namespace Day;
using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;
using testing::SizeIs;

namespace
{
class Mishaps : public Desk
{};
} // namespace

TEST_F( Mishaps, AfterAKillInABurstTheEditsAreOffered )
{
    ASSERT_TRUE( Mine().StartEditor() );
    // Each edit pushes the save back, until the copy of what isn't saved is there. A machine that is busy otherwise may
    // take so long for one that the save comes first.
    Strings saved;
    std::string unsaved;
    int rounds = 0;
    for ( bool isUnsaved = false; not isUnsaved; )
    {
        const std::string name = "Unsaved " + std::to_string( ++rounds );
        unsaved = kDefault + name;
        ASSERT_TRUE( Until( [&] {
            const bool isThere = not Mine().InSetAside( "Recovery" ).empty();
            if ( not isThere )
                Mine().NewMacro( name );
            return isThere;
        } ) );
        EXPECT_EQ( Mine().StopEditor( SIGKILL ), -SIGKILL );
        saved = Mine().Judged();
        isUnsaved = not Mine().InSetAside( "Recovery" ).empty() and not testing::Value( saved, Contains( unsaved ) );
        ASSERT_TRUE( Mine().StartEditor() );
    }
    EXPECT_EQ( Mine().Judged(), saved ) << "nothing is loaded by itself";
    EXPECT_THAT( Mine().Do( { "status", "--json" } ), Not( HasSubstr( "\"notices\": []" ) ) );
    const std::string list = Mine().Do( { "set-aside", "list", "--json" } );
    Mine().Do( { "set-aside", "restore", Computer::TextOf( "digest", list ) } );
    ASSERT_TRUE( Mine().IsSaved() );
    EXPECT_THAT( Mine().Judged(), Contains( unsaved ) );
    EXPECT_EQ( Mine().StopEditor(), 0 );
}

TEST_F( Mishaps, ADamagedMacrosFileIsSetAsideAndComesBack )
{
    ASSERT_TRUE( Mine().StartEditor() );
    Mine().NewMacro( "Precious" );
    EXPECT_EQ( Mine().StopEditor(), 0 );
    const std::string good = ReadFile( Mine().MacrosFile() );
    const std::string damaged = good.substr( 0, good.size() / 2 );
    WriteFile( Mine().MacrosFile(), damaged );

    ASSERT_TRUE( Mine().StartEditor() );
    EXPECT_THAT( Mine().Judged(), Contains( "Switchers /" ) );
    const std::string status = Mine().Do( { "status", "--json" } );
    EXPECT_THAT( status, Not( HasSubstr( "\"notices\": []" ) ) );
    const fs::path kept = Computer::TextOf( "path", Mine().Do( { "set-aside", "list", "--json" } ) );
    EXPECT_EQ( ReadFile( kept ), damaged );
    EXPECT_NE( Mine().Verb( { "set-aside", "restore", kept.filename() } ).mStatus, 0 ) << "half a file is no state";
    // What the file was before it was damaged is a saved state.
    WriteFile( mScratch / "whole", good );
    const Strings whole = Mine().Judged( mScratch / "whole" );
    bool isBack = false;
    const std::string list = Mine().Do( { "revisions", "list", "--json" } );
    for ( std::size_t at = 0; not isBack and ( at = list.find( "state:", at ) ) != std::string::npos; ++at )
    {
        Mine().Do( { "revisions", "revert", list.substr( at, list.find( '"', at ) - at ) } );
        Mine().Do( { "save" } );
        isBack = Mine().Judged() == whole;
    }
    EXPECT_TRUE( isBack );
    Mine().Do( { "status", "--answer" } );
    EXPECT_EQ( Mine().StopEditor(), 0 );
    ASSERT_TRUE( Mine().StartEditor() );
    EXPECT_THAT( Mine().Do( { "status", "--json" } ), HasSubstr( "\"notices\": []" ) ) << "told once";
    EXPECT_EQ( Mine().StopEditor(), 0 );
}

TEST_F( Mishaps, AHalfCopiedShareIsNotFollowed )
{
    const fs::path share = mScratch / "Team.kvsync";
    ASSERT_TRUE( Mine().StartEditor( { "--no-engine" } ) );
    Mine().NewMacro( "Ours" );
    Mine().Do( { "share", "create", share } );
    EXPECT_EQ( Mine().StopEditor(), 0 );
    const Strings ours = Mine().Judged();
    const std::string half = ReadFile( share ).substr( 0, 1000 );
    WriteFile( share, half );

    ASSERT_TRUE( Mine().StartEditor( { "--no-engine" } ) );
    EXPECT_EQ( Mine().Judged(), ours );
    EXPECT_THAT( Mine().Do( { "status", "--json" } ), Not( HasSubstr( "\"notices\": []" ) ) );
    Mine().NewMacro( "After" );
    Mine().Do( { "save" } );
    EXPECT_EQ( Mine().StopEditor(), 0 );
    EXPECT_EQ( Mine().Judged( share ), Mine().Judged() );
    bool isKept = false;
    for ( const std::string& name : Mine().InSetAside( "" ) )
        isKept = isKept or ReadFile( Mine().Folder() / "Set Aside" / name ) == half;
    EXPECT_TRUE( isKept ) << "what was in the share, before it was written over";
}

TEST_F( Mishaps, AFileThatIsNoMacrosFileEndsTheStartUntilTheUserSaysOtherwise )
{
    fs::create_directories( Mine().Folder() );
    const std::string array = "<?xml version=\"1.0\"?><plist version=\"1.0\"><array/></plist>";
    WriteFile( Mine().MacrosFile(), array );
    Mine().Begin( { "--no-engine" } );
    EXPECT_EQ( Mine().mEditor->Wait(), 1 );
    EXPECT_THAT( Mine().mEditor->Errors(), HasSubstr( "--begin-anew" ) );
    EXPECT_EQ( ReadFile( Mine().MacrosFile() ), array );
    ASSERT_TRUE( Mine().StartEditor( { "--no-engine", "--begin-anew" } ) );
    EXPECT_THAT( Mine().Judged(), Contains( "Switchers /" ) );
    EXPECT_EQ( ReadFile( Computer::TextOf( "path", Mine().Do( { "set-aside", "list", "--json" } ) ) ), array );
    EXPECT_EQ( Mine().StopEditor(), 0 );
}

TEST_F( Mishaps, AFullDiskTakesNothingAndTheNextSaveHasAll )
{
    fs::create_directories( Mine().Folder() );
    if ( ::mount( "tmpfs", Mine().Folder().c_str(), "tmpfs", 0, "size=2m,mode=0700" ) != 0 )
        GTEST_SKIP() << "no file system may be mounted here";
    struct Unmount
    {
        fs::path mFolder;
        ~Unmount() { ::umount2( mFolder.c_str(), MNT_DETACH ); }
    } const unmount{ Mine().Folder() };
    ASSERT_TRUE( Mine().StartEditor( { "--no-engine" } ) );
    ASSERT_TRUE( Mine().IsSaved() );
    Mine().Do( { "save" } );
    const Strings first = Mine().Judged();
    {
        std::ofstream filler( Mine().Folder() / "filler", std::ios::binary );
        const std::string page( 4096, 'x' );
        while ( filler.write( page.data(), std::streamsize( page.size() ) ).flush() )
        {}
    }
    Mine().NewMacro( "Squeezed" );
    EXPECT_EQ( Mine().Verb( { "save" } ).mStatus, 1 );
    EXPECT_EQ( Mine().Judged(), first );
    EXPECT_THAT( Mine().mEditor->Errors(), Not( IsEmpty() ) ) << "the user is told";
    fs::remove( Mine().Folder() / "filler" );
    Mine().NewMacro( "Roomy" );
    Mine().Do( { "save" } );
    EXPECT_THAT( Mine().Judged(), IsSupersetOf( { "Global Macro Group / Squeezed", "Global Macro Group / Roomy" } ) );
    EXPECT_EQ( Mine().StopEditor(), 0 );
    for ( const auto& entry : fs::recursive_directory_iterator( Mine().Folder() ) )
        EXPECT_THAT( entry.path().filename().native(), Not( testing::EndsWith( ".tmp" ) ) );
}

TEST_F( Mishaps, WithoutABusItIsAloneAndSaysSoOnce )
{
    Mine().Set( "DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus" );
    ASSERT_TRUE( Mine().StartEditor() );
    const auto times = []( const std::string& inText, const std::string& inPart ) {
        std::size_t count = 0;
        for ( std::size_t at = 0; ( at = inText.find( inPart, at ) ) != std::string::npos; ++at )
            ++count;
        return count;
    };
    EXPECT_EQ( times( Mine().mEditor->Errors(), "alone" ), 1u );
    EXPECT_THAT( Mine().Do( { "status", "--json" } ), HasSubstr( "\"editor\": true" ) );
    const Outcome refused = Mine().Verb( { "new", "macro", "Too many" } );
    EXPECT_EQ( refused.mStatus, 1 );
    EXPECT_THAT( refused.mErrors, HasSubstr( "can't be reached" ) );
    EXPECT_EQ( Mine().StopEditor(), 0 );
    EXPECT_EQ( times( Mine().EditorLog(), "There is no session bus" ), 1u );
    // Now the verb is the editor for the moment.
    EXPECT_NE( Mine().NewMacro( "Alone" ), "" );
    EXPECT_THAT( Mine().Judged(), Contains( std::string( kDefault ) + "Alone" ) );
}

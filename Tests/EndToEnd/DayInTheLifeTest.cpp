// What a person does on a good day.
#include "Tests/EndToEnd/Desk.h"

using namespace Day;
using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Not;
using testing::SizeIs;

namespace
{
class DayInTheLife : public Desk
{};
} // namespace

TEST_F( DayInTheLife, TheFirstStartBringsTheLibrariesAndTheRevisions )
{
    ASSERT_TRUE( Mine().StartEditor() );
    EXPECT_EQ( std::ranges::count( Mine().mEditor->Output(), '\n' ), 1 );
    EXPECT_EQ( Mine().mEditor->Errors(), "" );
    ASSERT_TRUE( Mine().EngineTells( "load 1 " ) );
    const Strings groups = Mine().Judged();
    EXPECT_THAT( groups, Contains( "Global Macro Group /" ) );
    int libraries = 0;
    for ( const auto& library : fs::directory_iterator( KORVALEN_LIBRARIES ) )
    {
        EXPECT_THAT( groups, IsSupersetOf( Mine().Judged( library.path() ) ) ) << library.path();
        ++libraries;
    }
    EXPECT_EQ( libraries, 12 );
    EXPECT_EQ( Mine().Judged( Mine().Folder() / "Revisions Version 9/0000_01_02.plist" ), groups );
    EXPECT_EQ( Mine().Judged( Mine().Folder() / "Revisions Version 9/9999_01_01.plist" ), groups );
    EXPECT_THAT( Mine().Do( { "status", "--json" } ),
        AllOf( HasSubstr( "\"editor\": true" ), HasSubstr( "\"unsaved\": false" ), HasSubstr( "\"notices\": []" ) ) );
    EXPECT_EQ( Mine().StopEditor(), 0 );
    EXPECT_EQ( Mine().Judged(), groups );
    // All are known as imported: the next start brings none again.
    ASSERT_TRUE( Mine().StartEditor() );
    EXPECT_EQ( Mine().StopEditor(), 0 );
    EXPECT_EQ( Mine().Judged(), groups );
    EXPECT_THAT( Mine().EditorLog(), Not( HasSubstr( "Assertion" ) ) );
}

TEST_F( DayInTheLife, EachVerbWorksInTheEditorThatRuns )
{
    ASSERT_TRUE( Mine().StartEditor() );
    const Strings first = Mine().Judged();
    Mine().Do( { "new", "group", "Work" } );
    const std::string uid = Mine().NewMacro( "Draft" );
    Mine().Do( { "rename", "Draft", "Letter" } );
    Mine().Do( { "disable", uid } );
    Mine().Do( { "move", "Letter", "--to", "Work" } );
    Mine().Do( { "duplicate", "Letter" } );
    Mine().Do( { "enable", "Letter copy" } );
    Mine().Do( { "save" } );
    EXPECT_THAT( Mine().Judged(), IsSupersetOf( { "Work /", "Work / Letter (off)", "Work / Letter copy" } ) );
    const fs::path file = mScratch / "Out.kvmacros";
    Mine().Do( { "export", "Letter copy", "-o", file } );
    Mine().Do( { "delete", "Work" } );
    Mine().Do( { "save" } );
    EXPECT_EQ( Mine().Judged(), first );
    Mine().Do( { "import", file } );
    Mine().Do( { "save" } );
    EXPECT_THAT( Mine().Judged(), IsSupersetOf( { "Work / (off)", "Work / Letter copy" } ) ) << "it can't run yet";
    const Strings last = Mine().Judged();
    EXPECT_EQ( Mine().StopEditor(), 0 );
    EXPECT_EQ( Mine().Judged(), last );
}

TEST_F( DayInTheLife, ABurstMakesOneSaveAndIsUndoneAndRedone )
{
    ASSERT_TRUE( Mine().StartEditor() );
    ASSERT_TRUE( Mine().EngineTells( "load 1 " ) );
    ASSERT_TRUE( Mine().IsSaved() );
    Strings first;
    std::size_t loads = 0;
    // On a machine that is busy otherwise the edits may come too slowly to be a burst.
    for ( bool isBurst = false; not isBurst; )
    {
        first = Mine().Judged();
        loads = Mine().Loads();
        const auto begin = std::chrono::steady_clock::now();
        for ( int i = 1; i <= 8; ++i )
            Mine().NewMacro( "Burst " + std::to_string( i ) );
        isBurst = std::chrono::steady_clock::now() - begin < std::chrono::milliseconds( 900 );
        ASSERT_TRUE( Mine().IsSaved() );
        ASSERT_TRUE( Until( [&] { return Mine().Loads() > loads; } ) );
    }
    EXPECT_EQ( Mine().Loads(), loads + 1 );
    const Strings burst = Mine().Judged();
    EXPECT_THAT( burst, SizeIs( first.size() + 8 ) );
    Mine().Do( { "undo" } );
    ASSERT_TRUE( Mine().IsSaved() );
    EXPECT_EQ( Mine().Judged(), first ) << "one step, as it was one burst";
    Mine().Do( { "redo" } );
    ASSERT_TRUE( Mine().IsSaved() );
    EXPECT_EQ( Mine().Judged(), burst );
}

TEST_F( DayInTheLife, AnEditBeforeTheLastStartIsUndone )
{
    ASSERT_TRUE( Mine().StartEditor( { "--no-engine" } ) );
    const Strings first = Mine().Judged();
    Mine().NewMacro( "Yesterday" );
    EXPECT_EQ( Mine().StopEditor(), 0 );
    EXPECT_THAT( Mine().Judged(), Contains( std::string( kDefault ) + "Yesterday" ) );
    ASSERT_TRUE( Mine().StartEditor( { "--no-engine" } ) );
    Mine().Do( { "undo" } );
    EXPECT_EQ( Mine().StopEditor(), 0 );
    EXPECT_EQ( Mine().Judged(), first );
}

TEST_F( DayInTheLife, AnEarlierStateComesBackAndGoesAgain )
{
    ASSERT_TRUE( Mine().StartEditor() );
    const Strings first = Mine().Judged();
    Mine().Do( { "delete", "Switchers" } );
    Mine().NewMacro( "Today" );
    Mine().Do( { "save" } );
    const Strings today = Mine().Judged();
    EXPECT_THAT( Mine().Do( { "revisions", "list" } ), HasSubstr( "launch" ) );
    Mine().Do( { "revisions", "restore", "launch", "Switchers" } );
    Mine().Do( { "save" } );
    EXPECT_THAT( Mine().Judged(), IsSupersetOf( { "Switchers /", "Global Macro Group / Today" } ) );
    Mine().Do( { "undo" } );
    Mine().Do( { "save" } );
    EXPECT_EQ( Mine().Judged(), today );
    Mine().Do( { "revisions", "revert", "launch" } );
    Mine().Do( { "save" } );
    EXPECT_EQ( Mine().Judged(), first );
    Mine().Do( { "undo" } );
    Mine().Do( { "save" } );
    EXPECT_EQ( Mine().Judged(), today );
    EXPECT_EQ( Mine().StopEditor(), 0 );
    EXPECT_EQ( Mine().Judged(), today );
}

TEST_F( DayInTheLife, TwoComputersShareAFile )
{
    Computer other( mScratch / "other", Environment() );
    const fs::path share = mScratch / "Team.kvsync";
    ASSERT_TRUE( Mine().StartEditor() );
    Mine().NewMacro( "From mine" );
    Mine().Do( { "share", "create", share } );
    ASSERT_TRUE( other.StartEditor() );
    ASSERT_TRUE( other.EngineTells( "load 1 " ) );
    other.NewMacro( "Only here" );
    other.Do( { "share", "join", share } );
    EXPECT_THAT( other.Do( { "share", "status" } ), HasSubstr( share.native() ) );
    EXPECT_EQ( other.Judged(), Mine().Judged() );
    EXPECT_THAT( other.Do( { "set-aside", "list" } ), Not( HasSubstr( "nothing" ) ) ) << "what the join replaced";

    Mine().NewMacro( "Later" );
    Mine().Do( { "save" } );
    const Strings mine = Mine().Judged();
    ASSERT_TRUE( Until( [&] { return Mine().Judged( share ) == mine; } ) );
    other.Command( "incoming " + share.native() );
    EXPECT_TRUE( Until( [&] { return other.Judged() == mine; } ) );
    EXPECT_NE( other.NewMacro( "Answer" ), "" );
    other.Do( { "save" } );
    EXPECT_TRUE( Until( [&] { return Mine().Judged( share ) == other.Judged(); } ) );
    EXPECT_EQ( Mine().StopEditor(), 0 );
    EXPECT_EQ( other.StopEditor(), 0 );
    EXPECT_THAT( other.Judged(), Contains( std::string( kDefault ) + "Answer" ) );
}

TEST_F( DayInTheLife, WhatTheEngineTogglesIsAnEditThatIsUndone )
{
    ASSERT_TRUE( Mine().StartEditor() );
    ASSERT_TRUE( Mine().EngineTells( "load 1 " ) );
    const std::string uid = Mine().NewMacro( "Toggled" );
    Mine().Do( { "save" } );
    Mine().Command( "toggle " + uid + " 0" );
    ASSERT_TRUE(
        Until( [&] { return Mine().Do( { "status" } ).find( "Undo Engine Disable Macro" ) != std::string::npos; } ) );
    ASSERT_TRUE( Mine().IsSaved() );
    EXPECT_THAT( Mine().Judged(), Contains( std::string( kDefault ) + "Toggled (off)" ) );
    EXPECT_EQ( fs::file_size( Mine().Folder() / "Korvalen Enable Overrides" ), 0u );
    Mine().Do( { "undo" } );
    ASSERT_TRUE( Mine().IsSaved() );
    EXPECT_THAT( Mine().Judged(), Contains( std::string( kDefault ) + "Toggled" ) );
    EXPECT_EQ( Mine().StopEditor(), 0 );
}

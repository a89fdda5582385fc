#include "Defines/KVNotices.h"
#include "Defines/SetAside.h"
#include "Tests/App/EditorRun.h"

#include <gmock/gmock.h>

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

namespace
{
void WriteFile( const std::filesystem::path& inPath, std::string_view inBytes )
{
    std::filesystem::create_directories( inPath.parent_path() );
    std::ofstream( inPath, std::ios::binary ).write( inBytes.data(), std::streamsize( inBytes.size() ) );
}

/// A revision of the first state.
void WriteRevision( EditorRun& ioEditor, const char* inName )
{
    WriteFile( ioEditor.Folder() / "Revisions Version 9" / inName,
        ioEditor.Files().at( ( ioEditor.Folder() / "Korvalen Macros.plist" ).native() ) );
}
} // namespace

TEST( StateVerbs, ARevisionIsNamedByDateOrEvent )
{
    EditorRun editor( MacrosOfEditorTests() );
    WriteRevision( editor, "2024_03_01.plist" );
    WriteRevision( editor, "9999_01_01.plist" );
    EXPECT_THAT( editor.Run( { "revisions", "list" } ).mOutput,
        AllOf( HasSubstr( "2024-03-01 " ), HasSubstr( "March 1, 2024" ), HasSubstr( "launch " ),
            HasSubstr( "At This Launch" ) ) );
    for ( const char* const date : { "2024_03_01", "2024-03-01", "launch", "9999_01_01" } )
        EXPECT_THAT( editor.Run( { "revisions", "show", date } ).mOutput,
            StartsWith( "Finds  (smart group)\nAlpha  (3 macros)\n    One\n    Two\n    Same (disabled)\nBeta " ) )
            << date;
    for ( const char* const date : { "2024-03-02", "before-sync", "", "../x", "state:", "state:ffff" } )
    {
        const KorvalenResult none = editor.Run( { "revisions", "show", date } );
        EXPECT_EQ( none.mStatus, 1 ) << date;
        EXPECT_THAT( none.mErrors, HasSubstr( "“korvalen revisions list” shows" ) ) << date;
    }
}

TEST( StateVerbs, AComparisonNamesGroupsAndMacros )
{
    EditorRun editor( MacrosOfEditorTests() );
    WriteRevision( editor, "9999_01_01.plist" );
    ASSERT_EQ( editor.Run( { "rename", "Two", "Zwei" } ).mStatus, 0 );
    ASSERT_EQ( editor.Run( { "delete", "b1" } ).mStatus, 0 );
    editor.Save();
    const KorvalenResult compared = editor.Run( { "revisions", "compare", "launch" } );
    EXPECT_EQ( compared.mStatus, 1 );
    EXPECT_THAT( compared.mOutput, HasSubstr( "Alpha › Two .Name → Alpha › Zwei .Name: \"Two\" → \"Zwei\"\n" ) );
    EXPECT_THAT( compared.mOutput, HasSubstr( "removed Beta › Same: " ) );
}

TEST( StateVerbs, OneMacroComesBackOutOfARevision )
{
    EditorRun editor( MacrosOfEditorTests() );
    const __SafeCFPropertyList before = editor.Model();
    WriteRevision( editor, "9999_01_01.plist" );
    ASSERT_EQ( editor.Run( { "delete", "Two" } ).mStatus, 0 );
    editor.Save();
    const auto files = editor.Files();
    EXPECT_THAT(
        editor.Run( { "revisions", "restore", "launch", "two", "-n" } ).mOutput, "would restore Alpha › Two\n" );
    EXPECT_EQ( editor.Files(), files );
    EXPECT_THAT( editor.Run( { "revisions", "restore", "launch", "Same" } ).mErrors, HasSubstr( "2 things in" ) );
    EXPECT_THAT(
        editor.Run( { "revisions", "restore", "launch", "Nobody" } ).mErrors, HasSubstr( "has nothing called" ) );
    EXPECT_THAT( editor.Run( { "revisions", "restore", "launch", "two" } ).mOutput, "restored Alpha › Two\n" );
    ASSERT_TRUE( MMacroSerializedObject::FindMacroByUID( u"a2" ) );
    editor.Save();
    EXPECT_THAT( editor.Run( { "undo" } ).mOutput, StartsWith( "Undo Restore Macro: " ) );
    EXPECT_FALSE( MMacroSerializedObject::FindMacroByUID( u"a2" ) );
    // The whole group: what came since goes, and is told.
    ASSERT_EQ( editor.Run( { "new", "macro", "Newer", "--group", "A" } ).mStatus, 0 );
    EXPECT_THAT( editor.Run( { "revisions", "restore", "launch", "Alpha" } ).mOutput,
        "restored Alpha  (in place of the present one)\n  deleted Newer: it wasn't in the group then\n" );
    EXPECT_TRUE( editor.Model().Equals( before ) );
}

TEST( StateVerbs, WhatWasSetAsideComesBackAsOneUndoStep )
{
    EditorRun editor( MacrosOfEditorTests() );
    const auto older = WriteBinaryPropertyList(
        FileWith( { GroupWith( u"Z", { MacroWith( u"z1" ) } ) }, { { "MacroPreferencesVersion", Int( 91 ) } } ) );
    SetAside::Entry good, bad;
    ASSERT_FALSE( SetAside::Keep( SetAside::Kind::kUnsaved, older.Span(), u"a test", &good ) );
    ASSERT_FALSE(
        SetAside::Keep( SetAside::Kind::kOther, XBytes( std::string( "rubbish" ) ).Span(), u"a test", &bad ) );
    const auto files = editor.Files();
    EXPECT_THAT(
        editor.Run( { "set-aside", "list" } ).mOutput, AllOf( HasSubstr( good.mDigest ), HasSubstr( bad.mDigest ) ) );
    EXPECT_THAT( editor.Run( { "set-aside", "show", good.mDigest.substr( 0, 6 ) } ).mOutput,
        StartsWith( "Group Z  (1 macro)\n" ) );
    EXPECT_EQ( editor.Run( { "set-aside", "compare", good.mDigest } ).mStatus, 1 );
    for ( const char* const verb : { "show", "compare", "restore" } )
        EXPECT_THAT( editor.Run( { "set-aside", verb, bad.mDigest } ).mErrors, HasSubstr( "can't be understood" ) );
    EXPECT_THAT( editor.Run( { "set-aside", "show", "nothing" } ).mErrors, HasSubstr( "is called “nothing”" ) );
    EXPECT_EQ( editor.Files(), files );

    const __SafeCFPropertyList before = editor.Model();
    EXPECT_THAT(
        editor.Run( { "set-aside", "restore", good.mDigest } ).mOutput, StartsWith( "restored unsaved edits" ) );
    EXPECT_TRUE( MMacroSerializedObject::FindMacroByUID( u"z1" ) );
    EXPECT_FALSE( MMacroSerializedObject::FindMacroByUID( u"a1" ) );
    EXPECT_EQ( editor.Files().at( ( editor.Folder() / "Korvalen Macros.plist" ).native() ), older.View() );
    EXPECT_THAT( editor.Run( { "undo" } ).mOutput, StartsWith( "Undo Restore: " ) );
    EXPECT_TRUE( editor.Model().Equals( before ) );
}

TEST( StateVerbs, StatusAndPathsTellAndChangeNothing )
{
    EditorRun editor( MacrosOfEditorTests() );
    const auto files = editor.Files();
    EXPECT_THAT( editor.Run( { "status" } ).mOutput,
        AllOf( HasSubstr( "Editor:   running\n" ), HasSubstr( "5 macros in 3 groups, 1 smart group\n" ),
            HasSubstr( "Saved:    everything\n" ), HasSubstr( "Sharing:  off\n" ) ) );
    EXPECT_THAT(
        editor.Run( { "paths" } ).mOutput, HasSubstr( ( editor.Folder() / "Korvalen Macros.plist" ).native() ) );
    EXPECT_EQ( editor.Files(), files );
    ASSERT_EQ( editor.Run( { "delete", "One" } ).mStatus, 0 );
    EXPECT_THAT( editor.Run( { "status" } ).mOutput,
        AllOf( HasSubstr( "edits wait for their save\n" ), HasSubstr( "Undo:     Undo Delete Macro\n" ) ) );
    EXPECT_EQ( editor.Run( { "save" } ).mOutput, "saved\n" );
    EXPECT_EQ( editor.Run( { "save" } ).mOutput, "everything was saved already\n" );
}

TEST( StateVerbs, WithoutAFolderLookingMakesNone )
{
    const ScratchFolder scratch;
    const std::string folder = ( scratch.Path() / "none" ).native();
    for ( const std::vector<std::string>& verb : std::vector<std::vector<std::string>>{
              { "status" }, { "paths" }, { "prefs", "list" }, { "set-aside", "list" } } )
    {
        std::vector<std::string> arguments = verb;
        arguments.insert( arguments.end(), { "--folder", folder } );
        EXPECT_EQ( RunKorvalenWith( arguments ).mStatus, 0 ) << verb.front();
        EXPECT_FALSE( std::filesystem::exists( folder ) ) << verb.front();
    }
    KVPreferences::UseFolder( {} );
}

TEST( PrefsVerb, TypesAreCheckedAndUnknownKeysRefused )
{
    EditorRun editor( MacrosOfEditorTests() );
    const auto set = [&editor]( std::vector<std::string> rest ) {
        rest.insert( rest.begin(), { "prefs", "set" } );
        return editor.Run( rest );
    };
    EXPECT_THAT( editor.Run( { "prefs", "get", "MaximumUndoSize" } ).mOutput, "200000000\n" );
    const struct
    {
        const char *mKey, *mValue, *mShown; ///< null when it is refused
    } kCases[] = { { "MaximumUndoSize", "12", "12\n" }, { "MaximumUndoSize", "12.5", nullptr },
        { "MaximumUndoSize", "99999999999999999999", nullptr }, { "AutoShowActions", "no", "false\n" },
        { "AutoShowActions", "maybe", nullptr }, { "PreferenceFolderName", "12", "12\n" },
        { "ImportedLibraries", "[\"a\"]", "[\n  \"a\"\n]\n" }, { "ImportedLibraries", "a", nullptr },
        { "autoshowactions", "yes", nullptr }, { "NoSuchSetting", "1", nullptr } };
    for ( const auto& [key, value, shown] : kCases )
    {
        const KorvalenResult result = set( { key, value } );
        EXPECT_EQ( result.mStatus, shown ? 0 : 1 ) << key << value << result.mErrors;
        if ( shown )
        {
            EXPECT_EQ( editor.Run( { "prefs", "get", key } ).mOutput, shown );
        }
    }
    EXPECT_EQ( set( { "Own", "x", "--force" } ).mStatus, 1 );
    EXPECT_EQ( set( { "Own", "x", "--force", "--domain", "engine" } ).mStatus, 0 );
    EXPECT_THAT( editor.Run( { "prefs", "list" } ).mOutput,
        AllOf( HasSubstr( "MaximumUndoSize = 12\n" ), HasSubstr( "Own = x  (not known, engine)\n" ) ) );
    EXPECT_EQ( editor.Run( { "prefs", "remove", "MaximumUndoSize" } ).mStatus, 0 );
    EXPECT_EQ( editor.Run( { "prefs", "remove", "MaximumUndoSize" } ).mStatus, 1 );
}

TEST( StateVerbs, WhoeverOnlyLooksChangesNoByte )
{
    EditorRun editor( MacrosOfEditorTests() );
    WriteRevision( editor, "9999_01_01.plist" );
    ASSERT_EQ( editor.Run( { "rename", "One", "Eins" } ).mStatus, 0 );
    editor.Save();
    KVNotices::Post( { u"test", u"A title", u"A text", {}, 0 } );
    SetAside::Entry entry;
    const XBytes bytes( editor.Files().at( ( editor.Folder() / "Korvalen Macros.plist" ).native() ) );
    ASSERT_FALSE( SetAside::Keep( SetAside::Kind::kUnsaved, bytes.Span(), u"a test", &entry ) );
    const auto files = editor.Files();
    for ( const std::vector<std::string>& look : std::vector<std::vector<std::string>>{ { "revisions", "list" },
              { "revisions", "show", "launch" }, { "revisions", "compare", "launch" }, { "set-aside", "list" },
              { "set-aside", "show", entry.mDigest }, { "set-aside", "compare", entry.mDigest },
              { "prefs", "list", "--all" }, { "prefs", "get", "MaximumUndoSize" }, { "status" }, { "paths" },
              { "share", "status" }, { "set-aside", "restore", entry.mDigest, "--dry-run" } } )
    {
        std::vector<std::string> asJSON = look;
        asJSON.emplace_back( "--json" );
        for ( const auto& arguments : { look, asJSON } )
        {
            const KorvalenResult result = editor.Run( arguments );
            EXPECT_EQ( result.mErrors, "" ) << look[0] << " " << look.back();
            EXPECT_NE( result.mOutput + look.back(), "" );
        }
        editor.Save();
        EXPECT_EQ( editor.Files(), files ) << look[0] << " " << look.back();
    }
}

TEST( StateVerbs, NoticesStandUntilTheyAreAnswered )
{
    EditorRun editor( MacrosOfEditorTests() );
    KVNotices::Post( { u"test", u"Something Happened", u"Do something.", {}, 0 } );
    EXPECT_THAT( editor.Run( { "status" } ).mOutput, HasSubstr( "Something Happened" ) );
    EXPECT_THAT( editor.Run( { "status", "--answer" } ).mOutput, HasSubstr( "Do something." ) );
    EXPECT_THAT( editor.Run( { "status" } ).mOutput, testing::Not( HasSubstr( "Something Happened" ) ) );
    EXPECT_TRUE( KVNotices::Unanswered().empty() );
}

TEST( StateVerbs, ARevertTakesAllMacrosBackAndCanBeUndone )
{
    EditorRun editor( MacrosOfEditorTests() );
    const __SafeCFPropertyList before = editor.Model();
    WriteRevision( editor, "2024_03_01.plist" );
    WriteFile( editor.Folder() / "Revisions Version 9" / "2024_03_02.plist", "rubbish" );
    ASSERT_EQ( editor.Run( { "delete", "Two" } ).mStatus, 0 );
    // The edit waits for its save still: it mustn't be lost.
    const __SafeCFPropertyList after = editor.Model();
    EXPECT_EQ( editor.Run( { "revisions", "revert", "2024-03-02" } ).mStatus, 1 );
    EXPECT_TRUE( editor.Model().Equals( after ) );
    EXPECT_THAT( editor.Run( { "revisions", "revert", "2024-03-01", "--json" } ).mOutput,
        HasSubstr( "\"date\": \"2024-03-01\"" ) );
    editor.mWorld.mWork.RunAll();
    EXPECT_TRUE( editor.Model().Equals( before ) );
    EXPECT_THAT( editor.Run( { "revisions", "show", "before-revert" } ).mOutput, testing::Not( HasSubstr( "Two" ) ) );
    EXPECT_THAT( editor.Run( { "undo" } ).mOutput, StartsWith( "Undo Revert to March 1, 2024: " ) );
    EXPECT_TRUE( editor.Model().Equals( after ) );
}

TEST( StateVerbs, EverySavedStateIsARevision )
{
    EditorRun editor( MacrosOfEditorTests() );
    const __SafeCFPropertyList before = editor.Model();
    ASSERT_EQ( editor.Run( { "rename", "Two", "Zwei" } ).mStatus, 0 );
    editor.Save();
    ASSERT_EQ( editor.Run( { "delete", "Zwei" } ).mStatus, 0 );
    editor.Save();
    // One state shows each name, and going back to it or taking the macro out of it is an edit.
    std::string words, withTwo, withZwei;
    std::istringstream list( editor.Run( { "revisions", "list" } ).mOutput );
    while ( std::getline( list, words ) )
    {
        const std::string state = words.substr( 0, words.find( ' ' ) );
        const std::string shown = editor.Run( { "revisions", "show", state } ).mOutput;
        if ( withTwo.empty() and state.starts_with( "state:" ) and shown.find( "Two\n" ) != std::string::npos )
            withTwo = state;
        if ( state.starts_with( "state:" ) and shown.find( "Zwei\n" ) != std::string::npos )
            withZwei = state;
    }
    EXPECT_THAT(
        editor.Run( { "revisions", "restore", withZwei, "Zwei" } ).mOutput, StartsWith( "restored Alpha › Zwei\n" ) );
    ASSERT_TRUE( MMacroSerializedObject::FindMacroByUID( u"a2" ) );
    EXPECT_THAT( editor.Run( { "revisions", "revert", withTwo } ).mOutput, StartsWith( "reverted to " + withTwo ) );
    EXPECT_TRUE( editor.Model().Equals( before ) );
    EXPECT_THAT( editor.Run( { "undo" } ).mOutput, StartsWith( "Undo Revert to Saved " ) );
    EXPECT_TRUE( MMacroSerializedObject::FindMacroByUID( u"a2" )->GetName() == u"Zwei" );
}

TEST( StateVerbs, WithoutAnEditorEachVerbIsAnUndoStepAndTheLaunchIsTheOneOfBefore )
{
    const KorvalenFolder folder;
    const auto run = [&folder]( std::vector<std::string> arguments ) {
        arguments.insert( arguments.end(), { "--folder", folder.Path( "data" ) } );
        return RunKorvalenWith( arguments );
    };
    const auto has = [&folder]( const char* name ) {
        return folder.Content( "data/Korvalen Macros.plist" ).find( name ) != std::string::npos;
    };
    for ( const char* const name : { "First1", "Second2", "Third3" } )
        ASSERT_EQ( run( { "new", "macro", name } ).mStatus, 0 ) << name;
    ASSERT_EQ( run( { "delete", "Second2" } ).mStatus, 0 );
    // Whoever restores is the editor for a moment, and its own start is no launch that anybody would ask for.
    EXPECT_THAT( run( { "revisions", "restore", "launch", "Second2" } ).mOutput, HasSubstr( "› Second2\n" ) );
    EXPECT_TRUE( has( "Second2" ) );
    for ( const char* const title : { "Undo Restore Macro: ", "Undo Delete Macro: ", "Undo Add Macro: " } )
        EXPECT_THAT( run( { "undo" } ).mOutput, StartsWith( title ) );
    EXPECT_TRUE( has( "Second2" ) );
    EXPECT_FALSE( has( "Third3" ) );
    EXPECT_THAT( run( { "redo" } ).mOutput, StartsWith( "Redo Add Macro: " ) );
    EXPECT_TRUE( has( "Third3" ) );
    KVPreferences::UseFolder( {} );
}

// What verbs exchange with files of others: import, export and sharing. Relative paths begin where whoever asks is.
#include "Tests/App/EditorRun.h"
#include "Tests/Macros/ZipMaker.h"

#include <gmock/gmock.h>

using testing::HasSubstr;
using testing::StartsWith;

namespace
{
std::string Content( const std::filesystem::path& inPath )
{
    std::ifstream file( inPath, std::ios::binary );
    return { std::istreambuf_iterator<char>( file ), {} };
}

void Write( const std::filesystem::path& inPath, const __SafeCFPropertyList& inValue )
{
    std::ofstream( inPath, std::ios::binary ) << WriteXMLPropertyList( inValue ).mBytes.View();
}

/// An editor that is asked from another folder.
class AskedFromElsewhere : public testing::Test
{
protected:
    AskedFromElsewhere() { mEditor.mWorkingFolder = mElsewhere.Path(); }

    KorvalenResult Run( const std::vector<std::string>& inArguments ) { return mEditor.Run( inArguments ); }
    [[nodiscard]] std::filesystem::path Path( const char* inName ) const { return mElsewhere.Path() / inName; }

    ScratchFolder mElsewhere;
    EditorRun mEditor{ MacrosOfEditorTests() };
    const __SafeCFPropertyList mBefore = mEditor.Model();
};

using TransferVerbs = AskedFromElsewhere;
using ShareVerb = AskedFromElsewhere;
} // namespace

TEST( Transfer, WhatIsExportedIsImportedDisabled )
{
    EditorRun editor( MacrosOfEditorTests() );
    const __SafeCFPropertyList before = editor.Model();
    EXPECT_THAT( editor.Run( { "export", "Beta", "-o", "b.kvmacros" } ).mOutput, StartsWith( "exported 1 macro to " ) );
    EXPECT_EQ( editor.Run( { "export", "Beta", "-o", "b.txt" } ).mStatus, 2 );
    EXPECT_EQ( editor.Run( { "export", "-o", "b.kvmacros" } ).mStatus, 2 );
    EXPECT_THAT( editor.Run( { "import", "b.kvmacros", "--dry-run" } ).mOutput,
        "would import 1 macro into the present group Beta\n" );
    EXPECT_TRUE( editor.Model().Equals( before ) );
    EXPECT_EQ( editor.Run( { "import", "none.kvmacros" } ).mStatus, 1 );
    ASSERT_EQ( editor.Run( { "import", "b.kvmacros" } ).mStatus, 0 );
    std::vector<bool> active;
    MMacroSerializedObject::FindMacroGroupByUID( u"B" )->DoForEveryMacro(
        [&active]( const MMacro& macro ) { active.push_back( macro.IsActive() ); } );
    EXPECT_EQ( active, ( std::vector<bool>{ true, false } ) );
    editor.Save();
    EXPECT_EQ( editor.Run( { "undo" } ).mStatus, 0 );
    EXPECT_TRUE( editor.Model().Equals( before ) );
}

TEST_F( TransferVerbs, PathsBeginWhereWhoeverAsksIs )
{
    EXPECT_THAT( Run( { "export", "Beta", "-o", "b.kvmacros", "--json" } ).mOutput,
        HasSubstr( "\"file\": \"" + Path( "b.kvmacros" ).native() + "\"" ) );
    EXPECT_THAT( Content( Path( "b.kvmacros" ) ), HasSubstr( "<string>Beta</string>" ) );
    EXPECT_EQ( Run( { "import", "b.kvmacros" } ).mStatus, 0 );
    EXPECT_FALSE( mEditor.Model().Equals( mBefore ) );
}

TEST_F( TransferVerbs, StandardOutputAndInputAreFilesToo )
{
    const std::string exported = Run( { "export", "Beta", "-o", "-" } ).mOutput;
    EXPECT_EQ( Run( { "export", "Beta", "-o", "-", "--json" } ).mStatus, 2 );
    mEditor.mStandardInput = exported;
    EXPECT_THAT( Run( { "import", "-" } ).mOutput, StartsWith( "1 macro was imported.\n" ) );
    EXPECT_FALSE( mEditor.Model().Equals( mBefore ) );
    mEditor.mStandardInput.clear();
    EXPECT_THAT( Run( { "import", "-" } ).mErrors, HasSubstr( "standard input is empty" ) );
}

TEST_F( TransferVerbs, ActionsGoToTheMacroThatIsNamed )
{
    Write( Path( "a.kvactions" ), Array( { ActionDict( u"Pause", { { "Time", Str( u"1" ) } } ) } ) );
    const struct
    {
        std::vector<std::string> mRest;
        const char* mSentence;
    } kRefused[] = { { {}, "name that by --into MACRO" }, { { "--into", "Nobody" }, "no macro called “Nobody”" },
        { { "--into", "Alpha" }, "no macro called “Alpha”" }, { { "--into", "One" }, "is enabled, so" } };
    for ( const auto& [rest, sentence] : kRefused )
    {
        std::vector<std::string> arguments{ "import", "a.kvactions" };
        arguments.insert( arguments.end(), rest.begin(), rest.end() );
        const KorvalenResult result = Run( arguments );
        EXPECT_EQ( result.mStatus, 1 ) << sentence;
        EXPECT_THAT( result.mErrors, HasSubstr( sentence ) );
    }
    EXPECT_EQ(
        Run( { "import", "a.kvactions", "--into", "a3", "-n" } ).mOutput, "would import 1 action into Alpha › Same\n" );
    EXPECT_TRUE( mEditor.Model().Equals( mBefore ) );
    EXPECT_EQ( Run( { "import", "a.kvactions", "--into", "a3" } ).mStatus, 0 );
    EXPECT_EQ( Run( { "import", "a.kvactions", "--into", "One", "--enabled" } ).mStatus, 0 );
    const auto count = []( TextView uid ) {
        return MMacroSerializedObject::FindMacroByUID( XText( uid ) )->GetActionList()->GetCount();
    };
    EXPECT_EQ( count( u"a3" ), 1 );
    EXPECT_EQ( count( u"a1" ), 2 );
}

TEST_F( TransferVerbs, EachFileIsAnUndoStepAndOneWithAFaultBringsNothing )
{
    Write( Path( "good.kvmacros" ),
        Array( { GroupWith( u"N", { MacroWith( u"n1" ) }, { { "Name", Str( u"New" ) } } ) } ) );
    Write( Path( "bad.kvmacros" ),
        Array( { GroupWith( u"X", { MacroWith( u"x1" ) } ), Dict( { { "Name", Str( u"?" ) } } ) } ) );
    const KorvalenResult result = Run( { "import", "good.kvmacros", "bad.kvmacros", "good.kvmacros" } );
    EXPECT_EQ( result.mStatus, 1 );
    EXPECT_THAT( result.mErrors, HasSubstr( "bad.kvmacros” wasn't imported: " ) );
    EXPECT_THAT( result.mOutput, HasSubstr( "\n2 undo steps: " ) );
    EXPECT_FALSE( MMacroSerializedObject::FindMacroByUID( u"x1" ) );
    mEditor.Save();
    EXPECT_THAT( Run( { "undo" } ).mOutput, HasSubstr( "(1 macro fewer)" ) );
    EXPECT_THAT( Run( { "undo" } ).mOutput, HasSubstr( "(1 macro fewer)" ) );
    EXPECT_TRUE( mEditor.Model().Equals( mBefore ) );
}

TEST_F( TransferVerbs, ALibraryComesInTwiceOnlyWhenThatIsSaid )
{
    Write( Path( "l.kvlibrary" ),
        Dict( { { "UID", Str( u"L" ) },
            { "Items", Array( { GroupWith( u"N", { MacroWith( u"n1" ) }, { { "Name", Str( u"New" ) } } ) } ) } } ) );
    EXPECT_EQ( Run( { "import", "l.kvlibrary", "-n" } ).mOutput, "would import 1 macro with the new group New\n" );
    EXPECT_EQ( Run( { "import", "l.kvlibrary" } ).mStatus, 0 );
    const __SafeCFPropertyList once = mEditor.Model();
    for ( const char* const option : { "--enabled", "-n" } )
        EXPECT_THAT( Run( { "import", "l.kvlibrary", option } ).mErrors, HasSubstr( "--again imports it" ) );
    EXPECT_TRUE( mEditor.Model().Equals( once ) );
    EXPECT_EQ( Run( { "import", "l.kvlibrary", "--again", "-n" } ).mOutput,
        "would import 1 macro into the present group New\n" );
    EXPECT_EQ( Run( { "import", "l.kvlibrary", "--again" } ).mStatus, 0 );
    EXPECT_FALSE( mEditor.Model().Equals( once ) );
}

TEST_F( TransferVerbs, WhatIsNoImportIsASentenceAndChangesNothing )
{
    std::ofstream( Path( "bad.ZIP" ) ) << ZipMaker::Make( { { .mName = "a.txt", .mData = "a" } } );
    std::ofstream( Path( "garbage.kvmacros" ) ) << "garbage";
    std::ofstream( Path( "empty.kvmacros" ) );
    std::filesystem::create_directory( Path( "folder.kvmacros" ) );
    Write( Path( "whole.plist" ), FileWith( { GroupWith( u"N", {} ) } ) );
    const struct
    {
        const char *mFile, *mSentence;
    } kCases[] = { { "bad.ZIP", "neither a plug-in action nor a status menu icon" }, { "none.zip", "there is no file" },
        { "garbage.kvmacros", "can't be understood" }, { "empty.kvmacros", "is empty" },
        { "folder.kvmacros", "it is a folder" }, { "none.kvmacros", "check the name and the folder" },
        { "whole.plist", "it is a whole macros file" } };
    for ( const auto& [file, sentence] : kCases )
    {
        const KorvalenResult result = Run( { "import", file } );
        EXPECT_EQ( result.mStatus, 1 ) << file;
        EXPECT_THAT( result.mErrors, HasSubstr( sentence ) );
        EXPECT_TRUE( mEditor.Model().Equals( mBefore ) ) << file;
    }
    EXPECT_FALSE( MacrosWindowUndo::NeedSaveAllMacros() );
}

TEST_F( ShareVerb, MacrosAreSharedByOneAndTakenByAnother )
{
    EXPECT_EQ( Run( { "share", "status" } ).mOutput, "nothing is shared\n" );
    EXPECT_EQ( Run( { "share", "stop" } ).mStatus, 1 );
    EXPECT_EQ( Run( { "share", "create", "none/m.kvsync" } ).mStatus, 1 );
    // What waits for its save is shared, too.
    ASSERT_EQ( Run( { "delete", "Two" } ).mStatus, 0 );
    const std::string path = Path( "m.kvsync" ).native();
    EXPECT_EQ( Run( { "share", "create", "m.kvsync" } ).mOutput, "sharing " + path + "\n" );
    EXPECT_EQ( Content( path ), Content( mEditor.Folder() / "Korvalen Macros.plist" ) );
    EXPECT_THAT( Run( { "share", "status", "--json" } ).mOutput, HasSubstr( "\"sharing\": true" ) );
    for ( const char* const verb : { "create", "join" } )
        EXPECT_THAT( Run( { "share", verb, "m.kvsync" } ).mErrors, HasSubstr( "stop that first" ) );
    EXPECT_EQ( Run( { "share", "stop" } ).mOutput, "no longer sharing " + path + "\n" );
    EXPECT_THAT( Run( { "share", "create", "m.kvsync" } ).mErrors, HasSubstr( "is there already" ) );

    std::ofstream( Path( "bad.kvsync" ) ) << "rubbish";
    for ( const char* const file : { "bad.kvsync", "none.kvsync" } )
        EXPECT_THAT( Run( { "share", "join", file } ).mErrors, HasSubstr( "your macros are as they were" ) );
    EXPECT_EQ( Run( { "share", "status" } ).mOutput, "nothing is shared\n" );

    const __SafeCFPropertyList shared = mEditor.Model();
    ASSERT_EQ( Run( { "rename", "One", "Eins" } ).mStatus, 0 );
    EXPECT_EQ( Run( { "share", "join", "m.kvsync", "--json" } ).mStatus, 0 );
    mEditor.mWorld.mWork.RunAll();
    EXPECT_TRUE( mEditor.Model().Equals( shared ) );
    EXPECT_THAT( Run( { "set-aside", "list" } ).mOutput, HasSubstr( "macros before a received file" ) );
}

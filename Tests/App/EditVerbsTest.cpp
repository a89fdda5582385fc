#include "Tests/App/EditorRun.h"

#include <gmock/gmock.h>

using testing::HasSubstr;
using testing::StartsWith;

namespace
{
using Arguments = std::vector<std::string>;

Arguments With( Arguments inArguments, const char* inLast )
{
    inArguments.emplace_back( inLast );
    return inArguments;
}

struct Edit
{
    Arguments mArguments;
    const char* mOutput; ///< how it begins
    const char* mUndo;   ///< what Undo shows
};

std::vector<Edit> Edits()
{
    return {
        { { "new", "macro", "Three", "--group", "alpha" }, "added macro Alpha › Three  ", "Undo Add Macro" },
        { { "new", "group", "Gamma" }, "added group Gamma  ", "Undo Add Group" },
        { { "new", "smart-group", "Late", "--search", "modified:1d", "--search", "x" }, "added smart group Late  ",
            "Undo Add Smart Group" },
        { { "rename", "One", "Eins" }, "renamed macro Alpha › One → Eins\n", "Undo Rename Macro" },
        { { "rename", "--query", "name:same", "--replace", "am", "--with", "o" },
            "renamed macro Alpha › Same → Soe\nrenamed macro Beta › Same → Soe\n", "Undo Rename Macro" },
        { { "enable", "a3", "b1" }, "enabled macro Alpha › Same\n1 is so already\n", "Undo Enable Macro" },
        { { "disable", "beta" }, "disabled group Beta\n", "Undo Disable Macro Group" },
        { { "disable", "beta", "Finds" }, "disabled smart group Finds\ndisabled group Beta\n", "Undo Disable" },
        { { "delete", "One", "Two" }, "deleted macro Alpha › One\ndeleted macro Alpha › Two\n", "Undo Delete Macro" },
        { { "delete", "Alpha", "One" }, "deleted group Alpha  (with 3 macros)\n", "Undo Delete Macro Group" },
        { { "delete", "--query", "all:", "--kind", "macro" }, "deleted macro Alpha › One\n", "Undo Delete Macro" },
        { { "move", "One", "b1", "--to", "Beta" }, "moved macro Alpha › One → Beta\n1 is in Beta already\n",
            "Undo Move Macro" },
        { { "duplicate", "One", "Two" }, "duplicated macro Alpha › One → One copy  ", "Undo Duplicate 2 Macros" },
        { { "duplicate", "Alpha" }, "duplicated group Alpha → Alpha copy  ", "Undo Duplicate Macro Group" },
    };
}
} // namespace

TEST( EditVerbs, EachIsOneUndoStepThatBringsTheStateOfBeforeBack )
{
    for ( const Edit& edit : Edits() )
    {
        EditorRun editor( MacrosOfEditorTests() );
        const __SafeCFPropertyList before = editor.Model();
        const KorvalenResult done = editor.Run( edit.mArguments );
        EXPECT_EQ( done.mStatus, 0 ) << edit.mOutput << done.mErrors;
        EXPECT_EQ( done.mErrors, "" );
        EXPECT_THAT( done.mOutput, StartsWith( edit.mOutput ) );
        EXPECT_FALSE( editor.Model().Equals( before ) ) << edit.mOutput;
        editor.Save();
        const __SafeCFPropertyList after = editor.Model();
        const KorvalenResult undone = editor.Run( { "undo" } );
        EXPECT_THAT( undone.mOutput, StartsWith( edit.mUndo ) ) << undone.mErrors;
        EXPECT_TRUE( editor.Model().Equals( before ) ) << edit.mOutput;
        EXPECT_EQ( editor.Run( { "undo" } ).mStatus, 1 ) << edit.mOutput;
        EXPECT_EQ( editor.Run( { "redo" } ).mStatus, 0 ) << edit.mOutput;
        EXPECT_TRUE( editor.Model().Equals( after ) ) << edit.mOutput;
    }
}

TEST( EditVerbs, ADryRunTellsTheSameAndChangesNoByte )
{
    EditorRun editor( MacrosOfEditorTests() );
    const __SafeCFPropertyList before = editor.Model();
    const auto files = editor.Files();
    for ( const Edit& edit : Edits() )
    {
        const KorvalenResult told = editor.Run( With( edit.mArguments, "--dry-run" ) );
        EXPECT_EQ( told.mStatus, 0 ) << told.mErrors;
        EXPECT_THAT( told.mOutput, StartsWith( "would " ) );
        const KorvalenResult facts = editor.Run( With( With( edit.mArguments, "--dry-run" ), "--json" ) );
        EXPECT_THAT( facts.mOutput, HasSubstr( "\"dryRun\": true" ) );
        EXPECT_TRUE( editor.Model().Equals( before ) ) << edit.mOutput;
    }
    EXPECT_FALSE( MacrosWindowUndo::NeedSaveAllMacros() );
    editor.Save();
    EXPECT_EQ( editor.Files(), files );
}

TEST( EditVerbs, WhatCantBeDoneIsASentenceAndChangesNothing )
{
    EditorRun editor( MacrosOfEditorTests() );
    const __SafeCFPropertyList before = editor.Model();
    const struct
    {
        Arguments mArguments;
        int mStatus;
        const char* mSentence;
    } kCases[] = {
        { { "delete", "Same" }, 1,
            "2 things are called “Same”; name one by its UID: macro Alpha › Same a3, macro Beta" },
        { { "delete", "One", "Nothing" }, 1, "there is no macro, group or smart group called “Nothing”; " },
        { { "delete", "alph" }, 1, "did you mean “Alpha”?" },
        { { "delete", "Global Macro Group" }, 1, "is the default group, which can't be deleted" },
        { { "delete", "One", "D" }, 1, "is the default group, which can't be deleted" },
        { { "delete" }, 2, "nothing is selected" },
        { { "delete", "--query", "" }, 1, "an empty query would select everything" },
        { { "delete", "--query", "  \t" }, 1, "an empty query would select everything" },
        { { "delete", "--query", "name:zzz" }, 1, "no macro, group or smart group matches “name:zzz”" },
        { { "delete", "One", "--kind", "group" }, 1, "there is no group called “One”" },
        { { "delete", "One", "--kind", "dog" }, 2, "--kind" },
        { { "disable", "D" }, 1, "which is always active" },
        { { "move", "Alpha", "--to", "Beta" }, 1, "there is no macro called “Alpha”" },
        { { "move", "One", "--to", "Finds" }, 1, "there is no group called “Finds”" },
        { { "move", "One" }, 2, "--to is required" },
        { { "rename", "One" }, 2, "rename takes one name or UID, and the new name" },
        { { "rename", "D", "Mine" }, 1, "is the default group and keeps its name" },
        { { "rename", "A", "Global Macro Group" }, 1, "is the name of the default group" },
        { { "rename", "A", "" }, 1, "needs a name" },
        { { "rename", "--query", "name:one", "--replace", "", "--with", "x" }, 2, "needs a text to look for" },
        { { "rename", "One", "--replace", "x" }, 2, "--with" },
        { { "new", "macro", "X", "--group", "Nowhere" }, 1, "there is no group called “Nowhere”" },
        { { "new", "group", "Global Macro Group" }, 1, "is the name of the default group" },
        { { "new", "group", "Global Macro\r\n Group" }, 1, "is the name of the default group" },
        { { "rename", "A", "Global Macro\n Group" }, 1, "is the name of the default group" },
        { { "new", "group", "" }, 2, "a name can't be empty" },
        { { "new", "macro", "\n" }, 2, "a name can't be empty" },
        { { "new" }, 2, "a verb is missing" },
        { { "undo" }, 1, "there is nothing to undo" },
        { { "redo" }, 1, "there is nothing to redo" },
    };
    for ( const auto& [arguments, status, sentence] : kCases )
    {
        const KorvalenResult result = editor.Run( arguments );
        EXPECT_EQ( result.mStatus, status ) << sentence;
        EXPECT_THAT( result.mErrors, HasSubstr( sentence ) );
        EXPECT_EQ( result.mOutput, "" ) << sentence;
        EXPECT_TRUE( editor.Model().Equals( before ) ) << sentence;
    }
    EXPECT_FALSE( MacrosWindowUndo::NeedSaveAllMacros() );
}

TEST( EditVerbs, WhatIsSoAlreadyMakesNoUndoStep )
{
    EditorRun editor( MacrosOfEditorTests() );
    for ( const Arguments& arguments : { Arguments{ "enable", "One" }, Arguments{ "rename", "One", "One" },
              Arguments{ "move", "One", "--to", "Alpha" } } )
        EXPECT_EQ( editor.Run( arguments ).mStatus, 0 ) << arguments.front();
    EXPECT_FALSE( MacrosWindowUndo::NeedSaveAllMacros() );
    EXPECT_EQ( MacrosWindowUndo::UndoCount(), 0u );
}

TEST( EditVerbs, NamesThatLookLikeOptionsVerbsOrCommandsOfATerminalAreNames )
{
    EditorRun editor( MacrosOfEditorTests() );
    for ( const char* const name : { "--json", "delete", "\x1B[2J", "a\nb", "“”", "\xF0\x9F\x98\x80" } )
    {
        EXPECT_EQ( editor.Run( { "rename", "--", "a1", name } ).mStatus, 0 ) << name;
        EXPECT_EQ( editor.Run( { "disable", "--", name == std::string( "a\nb" ) ? "ab" : name } ).mStatus, 0 ) << name;
        EXPECT_EQ( editor.Run( { "enable", "a1" } ).mOutput.find( '\x1B' ), std::string::npos );
    }
}

// Files and what is known of them: what the catalogue of keys can't show.
#include "ActionTestSupport.h"

#include "Actions/FileAttributeActions.h"

TEST( FileActions, DescriptionsTellTheFileAndWhatHappensToIt )
{
    const auto file = [&]( TextView inOperation, TextView inSource, TextView inDestination ) {
        return ActionDict( u"File",
            { { "Operation", Str( inOperation ) }, { "Source", Str( inSource ) },
                { "Destination", Str( inDestination ) } } );
    };
    const struct
    {
        __SafeCFPropertyList mAction;
        const char* mDescription;
    } kCases[] = {
        { file( u"Move", u"~/Desktop/a.txt", u"~/Archive" ), "Move “a.txt” to “~/Archive”" },
        { file( u"Move", u"~/Desktop/a.txt", u"" ), "Move a File" },
        { file( u"Copy", u"", u"~/Archive" ), "Copy a File" },
        { file( u"Trash", u"~/Letters/", u"~/Archive" ), "Move “Letters” to the Trash" },
        { file( u"RecursiveDelete", u"/tmp/100%", u"" ), "Delete “100%” with All Its Contents" },
        { ActionDict( u"File" ), "Reveal a File" },
        { ActionDict( u"ReadFile", { { "Source", Str( u"/b/in.txt" ) } } ), "Read “in.txt” into the System Clipboard" },
        { ActionDict( u"ReadFile", { { "Source", Str( u"/b/in.txt" ) }, { "Destination", Str( u"Variable" ) } } ),
            "Read “in.txt” into Variable “VarName”" },
        { ActionDict( u"ReadFile",
              { { "Source", Str( u"/b/in.txt" ) }, { "Destination", Str( u"NamedClipboard" ) }, { "Name", Str( u"U" ) },
                  { "RedundandDisplayName", Str( u"Notes" ) } } ),
            "Read “in.txt” into the Named Clipboard “Notes”" },
        { ActionDict( u"ReadFile" ), "Read a File" },
        { ActionDict( u"WriteFile", { { "Destination", Str( u"~/out.txt" ) }, { "Append", Bool( true ) } } ),
            "Append the System Clipboard to “out.txt”" },
        { ActionDict( u"WriteFile",
              { { "Destination", Str( u"~/out.txt" ) }, { "Source", Str( u"StyledText" ) },
                  { "Text", Str( u"one\ntwo" ) } } ),
            "Write Styled Text “one two” to “out.txt”" },
        { ActionDict(
              u"SetFileIcon", { { "Path", Str( u"/a/b.app" ) }, { "ImageSource", Str( u"SystemClipboard" ) } } ),
            "Set the Icon of “b.app” to the Image in the System Clipboard" },
        { ActionDict( u"NewFolder", { { "Destination", Str( u"~/New" ) } } ), "Create Folder “~/New”" },
        { ActionDict( u"SplitPath", { { "Path", Str( u"%Variable%Path%" ) } } ), "Split Path “%Variable%Path%”" },
        { ActionDict( u"GetFileAttribute",
              { { "Path", Str( u"/a/b.txt" ) }, { "Variable", Str( u"Out" ) }, { "Attribute", Str( u"WhereFrom" ) } } ),
            "Set Variable “Out” to the Where From Address of “b.txt”" },
        { ActionDict( u"SetFileAttribute",
              { { "Path", Str( u"/a/b.txt" ) }, { "Text", Str( u"Red" ) }, { "Attribute", Str( u"TagsAdd" ) } } ),
            "Add Tags “Red” to “b.txt”" },
        { ActionDict( u"SetFileAttribute",
              { { "Path", Str( u"/a/b.txt" ) }, { "Text", Str( u"why" ) }, { "Attribute", Str( u"Comment" ) } } ),
            "Set the Comment of “b.txt” to “why”" },
    };
    for ( const auto& [action, description] : kCases )
        EXPECT_EQ( Described( action ), description );
}

TEST( FileActions, EveryNameOfAVocabularyHasWordsOfItsOwn )
{
    const auto expectWords = []( TextView inType, const char* inKey, std::span<const TextView> inNames ) {
        for ( const TextView name : inNames )
        {
            const std::string words = Described( ActionDict( inType,
                { { inKey, Str( name ) }, { "Path", Str( u"/p" ) }, { "Source", Str( u"/s" ) },
                    { "Destination", Str( u"/d" ) } } ) );
            EXPECT_EQ( words.find( "kv" ), std::string::npos ) << words;
        }
    };
    expectWords( u"GetFileAttribute", "Attribute", NamesOf( FileAttribute() ) );
    expectWords( u"SetFileAttribute", "Attribute", NamesOf( FileAttribute() ) );
    const TextView kOperations[] = { u"Reveal", u"Move", u"Copy", u"Duplicate", u"Trash", u"Delete",
        u"RecursiveDelete" };
    for ( const TextView operation : kOperations )
    {
        const auto empty = ActionDict( u"File", { { "Operation", Str( operation ) } } );
        for ( const auto& action : { empty, With( empty, "Source", Str( u"/s" ) ) } )
            EXPECT_EQ( Described( action ).find( "kv" ), std::string::npos ) << Described( action );
    }
}

TEST( FileActions, AKindThatIsChangedAndChangedBackFindsItsTextsButNoClipboard )
{
    const auto write = ActionDict( u"WriteFile",
        { { "Source", Str( u"NamedClipboard" ) }, { "Name", Str( u"U" ) }, { "RedundandDisplayName", Str( u"N" ) },
            { "Text", Str( u"t" ) }, { "Variable", Str( u"V" ) } } );
    EXPECT_EQ( At( Reloaded( write ), "Name" ), Str( u"U" ) );
    const auto changed = Reloaded( With( write, "Source", Str( u"Clipboard" ) ) );
    EXPECT_FALSE( At( changed, "Name" ) );
    EXPECT_FALSE( At( changed, "RedundandDisplayName" ) );
    EXPECT_EQ( At( changed, "Text" ), Str( u"t" ) );
    EXPECT_EQ( At( changed, "Variable" ), Str( u"V" ) );
}

TEST( FileActions, LinesUnderTheTitleAreSafeForAPage )
{
    const auto html = []( const __SafeCFPropertyList& inAction ) {
        return UTF8FromText( HBaseAction::CreateFromPropertyList( inAction )->GetActionExtraHTML() );
    };
    EXPECT_EQ( html( ActionDict( u"ReadFile", { { "Source", Str( u"a<b" ) } } ) ), "File: a&lt;b<br />" );
    EXPECT_EQ( html( ActionDict( u"GetFileAttribute", { { "Path", Str( u"a&b" ) } } ) ), "From file: a&amp;b<br />" );
    EXPECT_EQ( html( ActionDict( u"ReadFile" ) ), "" );
    for ( const char16_t* type : { u"ClipboardSwitcherCut", u"ClipboardHistorySwitcher" } )
    {
        const auto plain = ActionDict( type );
        EXPECT_EQ( html( plain ), "" );
        EXPECT_EQ( html( With( plain, "SwitcherUnderMouse", Bool( true ) ) ), "Place switcher under mouse.<br />" );
    }
}

TEST( FileActions, OnlyASetAttributeIsKnownBeforehand )
{
    const auto result = []( TextView inType, TextView inAttribute ) {
        const auto action = HBaseAction::CreateFromPropertyList( ActionDict(
            inType, { { "Attribute", Str( inAttribute ) }, { "Text", Str( u"t" ) }, { "Path", Str( u"/p" ) } } ) );
        return dynamic_cast<const VariableTransformationAction&>( *action ).GetTransformationResult(
            nullptr, nullptr, true );
    };
    EXPECT_EQ( result( u"SetFileAttribute", u"Comment" ), TextView( u"t" ) );
    EXPECT_TRUE( result( u"SetFileAttribute", u"TagsAdd" ).IsNull() );
    EXPECT_TRUE( result( u"GetFileAttribute", u"Name" ).IsNull() );
}

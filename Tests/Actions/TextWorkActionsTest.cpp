// The actions on clipboards, variables, dictionaries and stretches of texts, and those that search and filter: what
// a table of keys and defaults can't tell of them.
#include "ActionTestSupport.h"

#include "Actions/ASetActionDelay.h"
#include "Actions/DictionaryActions.h"
#include "Actions/FilterActions.h"
#include "Actions/VariableActions.h"
#include "Utility/Search/StringSearchee.h"

namespace
{
__SafeCFPropertyList Data( std::string_view inBytes )
{
    return XPlistData::Make( { reinterpret_cast<const std::uint8_t*>( inBytes.data() ), inBytes.size() } );
}

// An action of each type as it is written with every key that its kind has, none at its default.
std::vector<__SafeCFPropertyList> FullActions()
{
    const auto name = Str( u"Changed" );
    const auto yes = Bool( true );
    const auto list = Array( { Str( u"x" ), Dict( { { "k", yes } } ) } );
    const auto time = PlistEntry( "TimeOutAbortsMacro", Bool( false ) );
    const PlistEntry useNamed( "TargetUseNamedClipboard", yes ), uid( "TargetNamedClipboardUID", Str( u"U" ) ),
        display( "TargetNamedClipboardRedundantDisplayName", Str( u"N" ) ), source( "Source", Str( u"Variable" ) ),
        variable( "Variable", name ), destination( "Destination", Str( u"File" ) ),
        destinationPath( "DestinationPath", name );
    return {
        ActionDict( u"ClipboardSwitcherMacroAction",
            { time, { "Action", Str( u"Paste" ) }, { "Name", Str( u"U" ) }, { "RedundandDisplayName", Str( u"N" ) } } ),
        ActionDict( u"CutCopyPaste", { time, { "Action", Str( u"Paste" ) } } ),
        ActionDict( u"SetClipboardToText",
            { { "Text", name }, { "StyledText", Data( "{\\rtf1 Changed}" ) }, { "JustDisplay", yes }, useNamed, uid,
                display } ),
        ActionDict(
            u"SetClipboardToPastClipboard", { { "PastExpression", name }, { "TargetUseTriggerClipboard", yes } } ),
        ActionDict( u"DeletePastClipboard", { { "PastExpression", name } } ),
        ActionDict( u"CopyClipboard", { { "SourceUseTriggerClipboard", yes }, useNamed, uid, display } ),
        ActionDict( u"SetClipboardToFileReference", { { "Path", name }, useNamed, uid, display } ),
        ActionDict( u"ApplyStyle",
            { { "StringRangeType", Str( u"FromTo" ) }, useNamed, uid, display, { "First", name }, { "Second", name },
                { "Attributes", list } } ),
        ActionDict( u"ApplyTextFactory", { { "Path", name }, useNamed, uid, display } ),
        ActionDict( u"SetVariablesToJSON",
            { { "Prefix", name }, { "Text", name }, { "OutputFormat", Str( u"Pretty" ) }, { "ReplaceAllKeys", yes } } ),
        ActionDict(
            u"SetJSONValue", { { "Target", name }, { "Text", name }, { "OutputFormat", Str( u"CompactStrict" ) } } ),
        ActionDict( u"SetDictionaryToJSON",
            { { "Dictionary", name }, { "Text", name }, { "OutputFormat", Str( u"PrettyStrict" ) },
                { "ReplaceAllKeys", yes } } ),
        ActionDict( u"SetDictionaryValue", { { "Dictionary", name }, { "Key", name }, { "Value", name } } ),
        ActionDict(
            u"SetVariableToKeychainPassword", { variable, { "PasswordName", name }, { "PasswordAccount", name } } ),
        ActionDict(
            u"SetKeychainPasswordToText", { { "PasswordName", name }, { "PasswordAccount", name }, { "Text", name } } ),
        ActionDict(
            u"SetVariableToCalculation", { variable, { "Text", name }, { "UseFormat", yes }, { "Format", name } } ),
        ActionDict( u"SetActionDelay",
            { { "Preference", Str( u"Drag" ) }, { "Value", name }, { "Reset", yes }, { "Permanent", yes } } ),
        ActionDict( u"SearchReplace",
            { source, variable, destination, destinationPath, { "Action", Str( u"IgnoreCaseRegEx" ) },
                { "Search", name }, { "Replace", name } } ),
        ActionDict( u"SearchRegEx",
            { source, variable, { "Action", Str( u"IgnoreCaseRegEx" ) }, { "Search", name }, { "Captures", list } } ),
        ActionDict( u"Substring",
            { source, variable, destination, destinationPath, { "StringRangeType", Str( u"Last" ) }, { "Delete", yes },
                { "First", name }, { "Second", name } } ),
        ActionDict( u"UseVariable", { { "Action", Str( u"SetSystemVolume" ) }, variable } ),
        ActionDict( u"Filter", { source, variable, destination, destinationPath, { "Action", Str( u"JSONPretty" ) } } ),
        ActionDict( u"Alert", { time, { "Title", name }, { "Text", name }, { "SoundPath", name } } ),
        ActionDict( u"Log", { { "Text", name } } ),
        ActionDict( u"Comment", { { "Title", name }, { "StyledText", Data( "{\\rtf1 Changed}" ) } } ),
    };
}

Text Description( const __SafeCFPropertyList& inAction )
{
    return HBaseAction::CreateFromPropertyList( inAction )->GetActionDescriptionString();
}

std::vector<Text> WordsOf( const __SafeCFPropertyList& inAction )
{
    StringSearchee searchee;
    HBaseAction::CreateFromPropertyList( inAction )->AddMatchStrings( searchee );
    std::vector<Text> words;
    for ( const auto& element : searchee.GetElements() )
        words.push_back( element.mText );
    return words;
}

bool Finds( const __SafeCFPropertyList& inAction, TextView inWords )
{
    const auto words = WordsOf( inAction );
    return std::find( words.begin(), words.end(), inWords ) != words.end();
}
} // namespace

TEST( TextWorkActions, EveryKeyComesBack )
{
    for ( const auto& full : FullActions() )
    {
        EXPECT_EQ( Reloaded( full ), full ) << Shown( full ) << Shown( Reloaded( full ) );
        EXPECT_EQ( Saved( *HBaseAction::CreateFromPropertyList( full )->Clone() ), full );
        EXPECT_TRUE( Finds( full, u"Changed" ) or kvr_toXMLString( full )->find( u"<string>Changed" ) == Text::npos );
        EXPECT_EQ( Description( full ).find( u'@' ), Text::npos ) << UTF8FromText( Description( full ) );
    }
}

TEST( TextWorkActions, AValueOfAWrongTypeIsAsGoodAsNone )
{
    for ( const auto& full : FullActions() )
    {
        for ( const auto& entry : full.AsDictionary()->GetEntries() )
        {
            const std::string key = entry.mKey->GetUTF8();
            if ( key == "MacroActionType" or key == "Captures" or key == "Attributes" )
                continue; // the last two take what they find
            for ( const auto& wrong : { __SafeCFPropertyList::Real( 3.5 ), Array( {} ) } )
            {
                const auto saved = Reloaded( With( full, key, wrong ) );
                EXPECT_EQ( saved, Reloaded( With( full, key, nullptr ) ) ) << key << Shown( full );
                EXPECT_EQ( Reloaded( saved ), saved ) << key << Shown( full );
            }
        }
    }
}

TEST( TextWorkActions, AnOlderNumberStandsWhereTheExpressionIsMissing )
{
    const struct
    {
        __SafeCFPropertyList mExpression, mNumber;
        const char16_t* mResult;
    } kCases[] = {
        { nullptr, nullptr, u"1" },
        { nullptr, __SafeCFPropertyList::Integer( 4 ), u"4" },
        { nullptr, __SafeCFPropertyList::Real( 2.0 ), u"2" },
        { nullptr, __SafeCFPropertyList::Real( 2.50 ), u"2.5" },
        { nullptr, Str( u"7" ), u"1" },
        { Bool( true ), __SafeCFPropertyList::Integer( 4 ), u"4" },
        { Str( u"N+1" ), __SafeCFPropertyList::Integer( 4 ), u"N+1" },
        { Str( u"" ), __SafeCFPropertyList::Integer( 4 ), u"" },
    };
    for ( const TextView type : { u"SetClipboardToPastClipboard", u"DeletePastClipboard" } )
    {
        for ( const auto& [expression, number, result] : kCases )
        {
            const auto saved =
                Reloaded( With( With( ActionDict( type ), "PastExpression", expression ), "Past", number ) );
            EXPECT_EQ( saved, ActionDict( type, { { "PastExpression", Str( result ) } } ) ) << Shown( saved );
        }
    }
}

TEST( TextWorkActions, ATextFactoryOfAnOlderFileHasItsPath )
{
    const auto path = []( const __SafeCFPropertyList& inAction ) { return At( Reloaded( inAction ), "Path" ); };
    const auto older = ActionDict( u"ApplyTextFactory", { { "NewFile", Str( u"/a/b" ) } } );
    EXPECT_EQ( path( older ), Str( u"/a/b" ) );
    EXPECT_EQ( path( With( older, "Path", Str( u"/c" ) ) ), Str( u"/c" ) );
    EXPECT_EQ( path( With( older, "NewFile", Data( "alias" ) ) ), Str( u"" ) );
    EXPECT_FALSE( At( Reloaded( older ), "NewFile" ) );
}

TEST( TextWorkActions, KeysOfAnotherPlaceOrFormAreNotWritten )
{
    const auto search = ActionDict( u"SearchReplace",
        { { "Source", Str( u"TriggerClipboard" ) }, { "Destination", Str( u"Source" ) }, { "Variable", Str( u"V" ) },
            { "DestinationVariable", Str( u"V" ) }, { "NamedClipboardName", Str( u"U" ) } } );
    EXPECT_EQ( Reloaded( search ),
        ActionDict( u"SearchReplace",
            { { "Source", Str( u"TriggerClipboard" ) }, { "Action", Str( u"CaseSensitiveString" ) },
                { "Search", Str( u"" ) }, { "Replace", Str( u"" ) } } ) );
    for ( const TextView type : { u"SetVariablesToJSON", u"SetJSONValue", u"SetDictionaryToJSON" } )
    {
        EXPECT_FALSE( At( Reloaded( ActionDict( type, { { "OutputFormat", Str( u"Compact" ) } } ) ), "OutputFormat" ) );
    }
    const auto calculation = Reloaded( ActionDict( u"SetVariableToCalculation", { { "Format", Str( u"0.0" ) } } ) );
    EXPECT_EQ( At( calculation, "Format" ), Str( u"0.0" ) ) << "kept for when it is used again";
}

TEST( TextWorkActions, DescriptionsSayWhatIsDone )
{
    const PlistEntry total( "Variable", Str( u"Total" ) ), source( "Source", Str( u"Variable" ) ),
        useNamed( "TargetUseNamedClipboard", Bool( true ) ),
        notes( "TargetNamedClipboardRedundantDisplayName", Str( u"Notes" ) );
    const struct
    {
        __SafeCFPropertyList mAction;
        const char16_t* mDescription;
    } kCases[] = {
        { ActionDict( u"SearchRegEx",
              { source, total, { "Action", Str( u"IgnoreCaseRegEx" ) }, { "Search", Str( u"\\d+" ) } } ),
            u"Search Variable “Total” for Regular Expression “\\d+”, Ignoring Case" },
        { ActionDict( u"SearchReplace",
              { { "Search", Str( u"a" ) }, { "Replace", Str( u"b" ) }, { "Destination", Str( u"Variable" ) },
                  { "DestinationVariable", Str( u"X" ) } } ),
            u"Search the System Clipboard for “a” and Replace with “b”, Saving the Result to Variable “X”" },
        { ActionDict( u"CopyClipboard", { useNamed, notes } ),
            u"Copy the System Clipboard to the Named Clipboard “Notes”" },
        { ActionDict( u"SetVariableToCalculation", { { "Variable", Str( u"X" ) }, { "Text", Str( u"2*Y" ) } } ),
            u"Set Variable “X” to Calculation 2*Y" },
        { ActionDict( u"CutCopyPaste" ), u"Copy" },
        { ActionDict( u"ClipboardSwitcherMacroAction", { { "RedundandDisplayName", Str( u"Notes" ) } } ),
            u"Cut to Named Clipboard “Notes”" },
        { ActionDict( u"SetClipboardToText", { { "Text", Str( u"50%@\nmore" ) } } ),
            u"Set the System Clipboard to Text “50%@ more”" },
        { ActionDict( u"SetClipboardToPastClipboard", { useNamed, notes } ),
            u"Set the Named Clipboard “Notes” to Past Clipboard 1" },
        { ActionDict( u"Filter", { source, total } ), u"Filter Variable “Total” with “Capitalize”" },
        { ActionDict(
              u"Substring", { source, total, { "StringRangeType", Str( u"To" ) }, { "Delete", Bool( true ) } } ),
            u"Delete the First 2 Characters of Variable “Total”" },
        { ActionDict( u"ApplyStyle", { { "StringRangeType", Str( u"Range" ) } } ),
            u"Apply Style to 4 Characters Starting at Character 2 of the System Clipboard" },
        { ActionDict( u"Substring",
              { { "StringRangeType", Str( u"Last" ) }, { "First", Str( u"1" ) },
                  { "Destination", Str( u"Nothing" ) } } ),
            u"Get the Last Character of the System Clipboard, Discarding the Result" },
        { ActionDict( u"ApplyTextFactory" ), u"Apply Text Factory" },
        { ActionDict( u"ClipboardSwitcherMacroAction" ), u"Cut to a Named Clipboard" },
        { ActionDict( u"InsertText",
              { { "Text", Str( u"a\r\nb\u2028c" ) },
                  { "TargetApplication", Dict( { { "Name", Str( u"Notes" ) } } ) } } ),
            u"Insert Text “a b c” by Typing in “Notes”" },
        { ActionDict( u"ApplyTextFactory", { { "Path", Str( u"~/T/Tidy.factory" ) } } ),
            u"Apply Text Factory “Tidy.factory” to the System Clipboard" },
        { ActionDict( u"SetActionDelay", { { "Preference", Str( u"InterAction" ) }, { "Value", Str( u"0.5" ) } } ),
            u"Set Action Delay “Between Actions” to 0.5 Seconds" },
        { ActionDict( u"SetActionDelay" ), u"Set Action Delay “Copy/Paste”" },
        { ActionDict( u"SetActionDelay", { { "Reset", Bool( true ) }, { "Permanent", Bool( true ) } } ),
            u"Reset Action Delay “Copy/Paste” Permanently" },
        { ActionDict( u"SetVariableToKeychainPassword", { total } ),
            u"Set Variable “Total” to Keychain Password “Password Name”" },
        { ActionDict(
              u"SetKeychainPasswordToText", { { "PasswordAccount", Str( u"me" ) }, { "Text", Str( u"secret" ) } } ),
            u"Set Keychain Password “Password Name” of Account “me” to Text" },
        { ActionDict( u"SetDictionaryValue", { { "Key", Str( u"k" ) }, { "Value", Str( u"v" ) } } ),
            u"Set Key “k” of Dictionary “DictionaryName” to “v”" },
        { ActionDict( u"UseVariable", { total } ), u"Move the Mouse to the Position in Variable “Total”" },
        { ActionDict( u"Alert", { { "Text", Str( u"Done" ) } } ), u"Display Alert “Done”" },
        { ActionDict( u"Log" ), u"Log" },
        { ActionDict( u"Comment", { { "Text", Str( u"old" ) } } ), u"Comment: old" },
        { ActionDict( u"Comment", { { "StyledText", Data( "{\\rtf1\\par Why\\par we do}" ) } } ),
            u"Comment: Why we do" },
        { ActionDict( u"Comment", { { "StyledText", Data( "other" ) } } ), u"Comment" },
    };
    for ( const auto& [action, description] : kCases )
        EXPECT_EQ( UTF8FromText( Description( action ) ), UTF8FromText( description ) );
}

TEST( TextWorkActions, EveryNameOfATableHasWords )
{
    const auto check = []( TextView inType, const char* inKey, std::span<const TextView> inNames ) {
        for ( const TextView name : inNames )
        {
            const Text description = Description( ActionDict( inType, { { inKey, Str( name ) } } ) );
            // A key without a text shows itself.
            EXPECT_EQ( description.find( u"kv" ), Text::npos ) << UTF8FromText( description );
            EXPECT_EQ( description.find( u"kFilter" ), Text::npos ) << UTF8FromText( description );
        }
    };
    check( u"Filter", "Action", FilterText::kAFilterTextNames );
    check( u"UseVariable", "Action", NamesOf( UseVariableAction() ) );
    check( u"SetActionDelay", "Preference", HDelayPreference::kNames );
    check( u"SearchReplace", "Action",
        std::vector<TextView>{
            u"CaseSensitiveString", u"IgnoreCaseString", u"CaseSensitiveRegEx", u"IgnoreCaseRegEx" } );
    check( u"Substring", "StringRangeType",
        std::vector<TextView>{ u"All", u"To", u"From", u"Last", u"Range", u"FromTo" } );
}

TEST( TextWorkActions, SearchesOfferTheirExpressionsAndNoPlainText )
{
    const auto offered = []( TextView inType, TextView inAction ) {
        return HBaseAction::CreateFromPropertyList(
            ActionDict( inType, { { "Action", Str( inAction ) }, { "Search", Str( u"a.b" ) } } ) )
            ->ActionCouldBeRegExStrings();
    };
    const std::vector<Text> expression = { u"a.b" };
    EXPECT_EQ( offered( u"SearchRegEx", u"IgnoreCaseRegEx" ), expression );
    EXPECT_EQ( offered( u"SearchReplace", u"CaseSensitiveRegEx" ), expression );
    EXPECT_EQ( offered( u"SearchReplace", u"IgnoreCaseRegEx" ), expression );
    EXPECT_TRUE( offered( u"SearchReplace", u"CaseSensitiveString" ).empty() );
    EXPECT_TRUE( offered( u"SearchReplace", u"IgnoreCaseString" ).empty() );
}

TEST( TextWorkActions, WhatIsWithinIsFound )
{
    const auto styled = ActionDict(
        u"Comment", { { "Title", Str( u"T" ) }, { "StyledText", Data( "{\\rtf1 {\\fonttbl Helvetica;}caf\\'e9}" ) } } );
    EXPECT_TRUE( Finds( styled, u"café" ) );
    const auto search = ActionDict(
        u"SearchRegEx", { { "Captures", Array( { Dict( { { "Variable", Str( u"Inner" ) } } ), Str( u"Outer" ) } ) } } );
    EXPECT_TRUE( Finds( search, u"Inner" ) );
    EXPECT_TRUE( Finds( search, u"Outer" ) );
}

TEST( TextWorkActions, EditorsSeeTheTextThatIsTransformed )
{
    const auto filter = HBaseAction::CreateFromPropertyList(
        ActionDict( u"Filter", { { "Source", Str( u"Variable" ) }, { "Variable", Str( u"V" ) } } ) );
    auto& transformation = dynamic_cast<VariableTransformationAction&>( *filter );
    EXPECT_EQ( transformation.GetVariable(), XText( u"V" ) ) << "the result goes where the text came from";
    EXPECT_TRUE( transformation.GetVariableText().IsNull() );
    for ( const TextView type : { u"Filter", u"SetVariableToCalculation", u"SetVariablesToJSON", u"SetDictionaryToJSON",
              u"SetJSONValue", u"SetActionDelay" } )
    {
        const auto action = HBaseAction::CreateFromPropertyList( ActionDict( type ) );
        auto* text = dynamic_cast<VariableTransformationAction*>( action.get() );
        ASSERT_TRUE( text ) << UTF8FromText( type );
        text->SetVariableText( XText( u"new" ) );
        EXPECT_EQ( text->GetVariableText(), XText( u"new" ) );
        const char* key = type == u"SetActionDelay" ? "Value" : "Text";
        EXPECT_EQ( At( Saved( *action ), key ), Str( u"new" ) ) << UTF8FromText( type );
    }
}

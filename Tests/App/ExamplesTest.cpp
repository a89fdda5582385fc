// The files in Examples/ as people meet them: through the program. They are shipped, so what they are said to show
// has to stay true.
#include "Tests/App/KorvalenRun.h"

#include "Actions/ActionImageSource.h"
#include "Actions/ActionResult.h"
#include "Actions/HActionType.h"
#include "Actions/HBaseAction.h"
#include "Actions/HScreenArea.h"
#include "App/FileInput.h"
#include "Collections/CollectionType.h"
#include "Conditions/CConditionList.h"
#include "Conditions/ConditionType.h"
#include "Macros/MLoadCheck.h"
#include "Triggers/TriggerType.h"

#include <map>
#include <regex>
#include <set>

namespace
{
std::string Example( const std::string& inName )
{
    return KORVALEN_TESTS_FOLDER "/../Examples/" + inName;
}

__SafeCFPropertyList ReadValue( const std::string& inPath )
{
    std::ifstream file( inPath, std::ios::binary );
    const std::string bytes( ( std::istreambuf_iterator<char>( file ) ), {} );
    return ReadPropertyList( { reinterpret_cast<const std::uint8_t*>( bytes.data() ), bytes.size() } ).mValue;
}

/// All that a file says but for what every save writes anew.
__SafeCFPropertyList LastingPart( const std::string& inPath )
{
    const __SafeCFPropertyList value = ReadValue( inPath );
    const XPlistDictionary* const file = value.AsDictionary();
    EXPECT_TRUE( file ) << inPath;
    XMutableDictionary lasting;
    if ( file )
        lasting.SetAll( *file );
    for ( const char* const key : { "PreferenceSavedDate", "PreferenceSaveUUID", "Version" } )
        lasting.Set( XKey( key ), nullptr );
    return lasting.Seal();
}

constexpr const char* kSoundExamples[] = { "Friendly.plist", "Wide.plist", "Everything.plist" };
constexpr const char* kAllExamples[] = { "Friendly.plist", "Wide.plist", "Everything.plist", "Older.plist",
    "Damaged.plist" };

bool IsLegacy( HActionType inType )
{
    const std::string_view key = RowOf( inType ).mKey;
    constexpr std::string_view kLegacy[] = { "SetClipboardToNamedClipboard", "SaveClipboardToNamedClipboard",
        "FilterClipboard", "FilterVariable", "SearchReplaceClipboard", "SearchReplaceVariable", "SearchClipboard",
        "SearchVariable", "Growl" };
    return std::ranges::find( kLegacy, key ) != std::end( kLegacy );
}

/// Calls the block for every dictionary in the value, at any depth.
template<class Block>
void ForEachDictionary( const __SafeCFPropertyList& inValue, const Block& inBlock )
{
    if ( const XPlistArray* const array = inValue.AsArray() )
    {
        for ( const XPlistNode* const node : array->Nodes() )
            ForEachDictionary( __SafeCFPropertyList( node ), inBlock );
    }
    else if ( const XPlistDictionary* const dictionary = inValue.AsDictionary() )
    {
        inBlock( *dictionary );
        for ( const auto& entry : dictionary->GetEntries() )
            ForEachDictionary( __SafeCFPropertyList( entry.mValue ), inBlock );
    }
}

/// The text of a key, "" without one.
std::string TextOf( const XPlistDictionary& inDictionary, const char* inKey )
{
    XText text;
    return inDictionary.Get( XKey( inKey ), text ) ? UTF8FromText( text.GetText() ) : "";
}

/// The texts that a key has anywhere in a file.
std::set<std::string> TextsOfKey( const std::string& inExample, const char* inKey )
{
    std::set<std::string> texts;
    ForEachDictionary( ReadValue( Example( inExample ) ),
        [&]( const XPlistDictionary& dictionary ) { texts.insert( TextOf( dictionary, inKey ) ); } );
    return texts;
}

/// The UIDs of the macros of a file, each with the types of its actions.
std::map<std::string, std::set<std::string>> TypesByMacro( const std::string& inExample )
{
    std::map<std::string, std::set<std::string>> types;
    ForEachDictionary( ReadValue( Example( inExample ) ), [&types]( const XPlistDictionary& dictionary ) {
        __SafeCFPropertyList actions;
        if ( not dictionary.Contains( XKey( "Triggers" ) ) or not dictionary.Get( XKey( "Actions" ), actions ) )
            return;
        std::set<std::string>& ofMacro = types[TextOf( dictionary, "UID" )];
        ForEachDictionary( actions,
            [&ofMacro]( const XPlistDictionary& action ) { ofMacro.insert( TextOf( action, "MacroActionType" ) ); } );
    } );
    return types;
}
} // namespace

TEST( Examples, AreWrittenAsOurOwnWriterWritesThem )
{
    const KorvalenFolder folder;
    for ( const char* const name : kAllExamples )
    {
        const std::string path = folder.Path( name );
        ASSERT_EQ( RunKorvalenWith( { "plist", "convert", "--to", "xml", Example( name ), "-o", path } ).mStatus, 0 );
        std::ifstream file( Example( name ), std::ios::binary );
        const std::string bytes( ( std::istreambuf_iterator<char>( file ) ), {} );
        EXPECT_TRUE( folder.Content( name ) == bytes ) << name;
    }
}

TEST( Examples, ASoundFileIsSavedAsItWasLoaded )
{
    const KorvalenFolder folder;
    for ( const char* const name : kSoundExamples )
    {
        const KorvalenResult check = RunKorvalenWith( { "check", Example( name ) } );
        EXPECT_EQ( check.mStatus, 0 ) << name;
        EXPECT_TRUE( check.mOutput.ends_with( "Loading and saving it would change nothing.\n" ) ) << check.mOutput;
        EXPECT_EQ( check.mErrors, "" );

        const std::string path = folder.Path( name );
        ASSERT_EQ( RunKorvalenWith( { "convert", Example( name ), path } ).mStatus, 0 ) << name;
        EXPECT_EQ( LastingPart( Example( name ) ), LastingPart( path ) ) << name;
    }
}

TEST( Examples, ConvertingWhatWasConvertedChangesNothing )
{
    const KorvalenFolder folder;
    const std::string once = folder.Path( "once" ), twice = folder.Path( "twice" ), binary = folder.Path( "binary" );
    for ( const char* const name : kAllExamples )
    {
        ASSERT_EQ( RunKorvalenWith( { "convert", Example( name ), once, "--format", "xml" } ).mStatus, 0 ) << name;
        ASSERT_EQ( RunKorvalenWith( { "convert", once, twice, "--format", "xml" } ).mStatus, 0 ) << name;
        ASSERT_EQ( RunKorvalenWith( { "convert", once, binary } ).mStatus, 0 ) << name;
        EXPECT_EQ( LastingPart( once ), LastingPart( twice ) ) << name;
        EXPECT_EQ( LastingPart( once ), LastingPart( binary ) ) << name;
        EXPECT_EQ( RunKorvalenWith( { "check", once } ).mStatus, 0 ) << name;
    }
}

TEST( Examples, SeveralConditionsOrCollectionsAreShownOnLinesOfTheirOwn )
{
    constexpr std::pair<const char*, const char*> kShown[] = {
        { "Deciding",
            "    1. If Any of the Following Are True:\n"
            "       - Variable “Answer” Is “yes”\n"
            "       - Title of the Front Window of the Front Application Contains “Draft”\n"
            "      Then:\n" },
        { "Looping",
            "    1. For Each Value of “Line” in the Following Collections:\n"
            "       - The Numbers from 1 to 10\n"
            "       - The Lines in the System Clipboard\n"
            "      1. While Calculation “MOUSEX() < 100” Is Not Zero\n" },
    };
    for ( const auto& [macro, lines] : kShown )
    {
        const KorvalenResult shown = RunKorvalenWith( { "show", Example( "Wide.plist" ), macro } );
        EXPECT_NE( shown.mOutput.find( lines ), std::string::npos ) << shown.mOutput;
    }
}

TEST( Examples, TheWideOneHasEveryKindOfTrigger )
{
    const MFileCheck check = CheckFile( ReadValue( Example( "Wide.plist" ) ) );
    for ( const std::string_view kind : kTriggerTypeNames )
        EXPECT_TRUE( check.mContents.mTriggersByKind.contains( std::string( kind ) ) ) << kind;
}

// Rules that nothing shows are rules that nobody has seen at work.
TEST( Examples, TheDamagedOnesShowEveryRule )
{
    const KorvalenResult result =
        RunKorvalenWith( { "check", "--json", Example( "Damaged.plist" ), Example( "DoubledKeys.plist" ) } );
    EXPECT_EQ( result.mStatus, 1 );
    for ( const MLoadRuleRow& row : MLoadRules() )
        EXPECT_NE( result.mOutput.find( "\"rule\": \"" + std::string( row.mID ) + "\"" ), std::string::npos )
            << row.mID;
}

TEST( Examples, EverythingHasEveryType )
{
    const auto actions = TextsOfKey( "Everything.plist", "MacroActionType" );
    const auto olderActions = TextsOfKey( "Older.plist", "MacroActionType" );
    for ( std::size_t i = 0; i < kHActionTypeCount; ++i )
    {
        const std::string key( RowOf( HActionType( i ) ).mKey );
        EXPECT_EQ( actions.contains( key ), not IsLegacy( HActionType( i ) ) ) << key;
        EXPECT_TRUE( actions.contains( key ) or olderActions.contains( key ) ) << key;
    }
    const auto expectAll = [&]( const char* key, const auto& names ) {
        const auto found = TextsOfKey( "Everything.plist", key );
        for ( const auto& name : names )
        {
            const std::string text( name.begin(), name.end() );
            EXPECT_TRUE( found.contains( text ) ) << key << " " << text;
        }
    };
    expectAll( "ConditionType", kConditionTypeNames );
    expectAll( "CollectionType", kCollectionTypeNames );
    expectAll( "MacroTriggerType", kTriggerTypeNames );
    expectAll( "DisplayKind", kActionDisplayKindNames );
    expectAll( "ImageSource", kActionImageSourceTypeNames );
    expectAll( "ScreenAreaType", kScreenAreaTypeNames );
    expectAll( "ConditionListMatch", kConditionListMatchNames );
}

TEST( Examples, TheOlderOneIsUpgraded )
{
    const KorvalenResult check = RunKorvalenWith( { "check", Example( "Older.plist" ) } );
    for ( std::size_t i = 0; i < kHActionTypeCount; ++i )
    {
        const std::string key( RowOf( HActionType( i ) ).mKey );
        if ( not IsLegacy( HActionType( i ) ) )
            continue;
        EXPECT_NE( check.mOutput.find( "the older type “" + key + "”" ), std::string::npos ) << key;
    }
    EXPECT_EQ( check.mOutput.find( "(dropped-" ), std::string::npos ) << check.mOutput;
    EXPECT_EQ( check.mOutput.find( "(unknown-key)" ), std::string::npos ) << check.mOutput;
}

TEST( Examples, AMacroIsFoundByTheTitlesOfItsActions )
{
    for ( const auto& [uid, types] : TypesByMacro( "Everything.plist" ) )
    {
        for ( const std::string& key : types )
        {
            const auto type = HActionTypeFromKey( *XPlistString::MakeASCII( key ) );
            if ( not type )
                continue;
            // The last word of a title is seldom shared by many types.
            std::string word = UTF8FromText( HBaseAction::GetActionTypeTitle( *type ) );
            word.erase( 0, word.rfind( ' ' ) + 1 );
            const KorvalenResult found = RunKorvalenWith( { "search", Example( "Everything.plist" ), word, "--json" } );
            EXPECT_NE( found.mOutput.find( uid ), std::string::npos ) << key << " by " << word;
        }
    }
}

TEST( Examples, AnOutlineReadsAsText )
{
    const std::regex kUnreadable( "(^|[^a-zA-Z])(kv|hk|cl|c|t)[A-Z][A-Za-z]+(Title|Format|Description|Desc)"
                                  "|%@|%[0-9]+\\$|“”|\"\""
                                  "|[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}" );
    for ( const auto& [uid, types] : TypesByMacro( "Everything.plist" ) )
    {
        const KorvalenResult shown = RunKorvalenWith( { "show", Example( "Everything.plist" ), uid } );
        ASSERT_EQ( shown.mStatus, 0 ) << uid;
        // The first line names the macro, with its UID.
        const std::string body = shown.mOutput.substr( shown.mOutput.find( '\n' ) );
        std::smatch match;
        EXPECT_FALSE( std::regex_search( body, match, kUnreadable ) ) << match.str() << " in" << body;
    }
}

TEST( Examples, AnOutlineTellsWhatDiffersFromTheUsual )
{
    constexpr struct
    {
        const char *mMacro, *mLines;
    } kOutlines[] = {
        { "Tea Timer",
            "    1. Let the tea draw (Pause for 4 Minutes)\n    2. Repeat the Following Actions 3 Times\n"
            "      1. Play Sound “Glass.aiff”" },
        { "Call It a Day",
            "    1. Pause Until All of the Following Are True:\n       - Left Mouse Button Is Not Pressed\n"
            "       - Modifiers ⌃⌥⇧⌘ Are Up\n       Times out after 30 seconds.\n"
            "       When it times out, the macro goes on.\n" },
        { "Call It a Day", "“0 18 * * MON-FRI”: At 18:00 on Mon-Fri in every month\n" },
        { "Step Through a Macro", "Debugger (red)\n" },
        { "Step Away from the Desk",
            "       Fails without a notification.\n"
            "       Note: Never in the middle of a talk.\n" },
        { "Step Away from the Desk", "Switch to the User “Guest” (disabled)\n" },
        { "File the Invoice",
            "      Then:\n        1. Create Folder “~/Documents/Invoices”\n"
            "           Create the folders around it as well.\n      Otherwise: nothing\n" },
        { "List Everything I Stored",
            ":\n       - The Names of the Variables\n"
            "       - The Names of the Dictionaries\n" },
        { "Writing", "  Hot key: ⌃⌘W\n" },
    };
    for ( const auto& [macro, lines] : kOutlines )
    {
        const KorvalenResult shown = RunKorvalenWith( { "show", Example( "Everything.plist" ), macro } );
        EXPECT_NE( shown.mOutput.find( lines ), std::string::npos ) << shown.mOutput;
    }
}

TEST( Examples, ALongTextIsCutAndSaysHowMuchIsLeftOut )
{
    const KorvalenFolder folder;
    std::ifstream file( Example( "Friendly.plist" ), std::ios::binary );
    std::string bytes( ( std::istreambuf_iterator<char>( file ) ), {} );
    const std::size_t at = bytes.find( "<string>Tea is ready</string>" );
    ASSERT_NE( at, std::string::npos );
    bytes.insert( bytes.rfind( "<key>MacroActionType</key>", at ),
        "<key>ActionNotes</key><string>" + std::string( 230, 'n' ) + "</string>" );
    const KorvalenResult shown = RunKorvalenWith( { "show", folder.File( "long.plist", bytes ), "Tea Timer" } );
    EXPECT_NE(
        shown.mOutput.find( "Note: " + std::string( 200, 'n' ) + "… (and 30 more characters)\n" ), std::string::npos )
        << shown.mOutput;
}

TEST( Examples, TheDamagedOneHasEveryKindOfFinding )
{
    const KorvalenResult result = RunKorvalenWith( { "check", Example( "Damaged.plist" ) } );
    EXPECT_EQ( result.mStatus, 1 );
    EXPECT_EQ( result.mErrors, "" );
    constexpr struct
    {
        const char *mPlace, *mRule;
    } kFindings[] = {
        { "  ! A Group Without Macros", "(dropped-unknown-group)" },
        { "  ! Global Macro Group › No Triggers", "(dropped-required-key)" },
        { "  ! Global Macro Group › Unknown Types › action 1", "(dropped-unknown-action)" },
        { "  ! Global Macro Group › Unknown Types › trigger 1", "(dropped-unknown-trigger)" },
        { "  ! Keys That Nothing Reads › Extra Keys › action 3 › then action 1 · Flavour", "(unknown-key)" },
        { "  ! Keys That Nothing Reads › Extra Keys › action 2 · TimeOutPeriod", "(unused-setting)" },
        { "  ! Global Macro Group · Activate", "(default-group-reset)" },
        { "  ! Global Macro Group · IsActive", "(default-group-reset)" },
        { "  ! Global Macro Group › Wrong Types · CreationDate", "(wrong-type-defaulted)" },
        { "  ! Global Macro Group › Doubled Again · UID", "(uid-replaced)" },
        { "  ~ Global Macro Group › No UID and No Dates · UID", "(uid-added)" },
        { "  ~ Older Forms › Older Keys and Types › action 1 · MacroActionType", "(older-type)" },
        { "  ~ Older Forms › Older Keys and Types › action 2 · Count", "(older-key)" },
        { "  ~ Older Forms › Older Keys and Types › action 2 › action 1 · Seconds", "(older-key)" },
        { "  ~ Older Forms › Older Keys and Types › trigger 2 · MacroTriggerType", "(older-type)" },
        { "  ~ Global Macro Group › No UID and No Dates · CreationDate", "(default-written)" },
        { "  ~ Written Otherwise › Nothing Is Lost Here · IsActive", "(key-without-effect)" },
        { "  ~ Written Otherwise › Nothing Is Lost Here · CreationDate", "(number-form)" },
    };
    for ( const auto& [place, rule] : kFindings )
    {
        const std::size_t at = result.mOutput.find( std::string( place ) + ": " );
        ASSERT_NE( at, std::string::npos ) << place;
        const std::string line = result.mOutput.substr( at, result.mOutput.find( '\n', at ) - at );
        EXPECT_TRUE( line.ends_with( rule ) ) << line;
    }
    EXPECT_NE( result.mOutput.find( "All Macros · SearchStrings: " ), std::string::npos );
}

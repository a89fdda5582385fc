// The files in Examples/ as people meet them: through the program. They are shipped, so what they are said to show
// has to stay true.
#include "Tests/App/KorvalenRun.h"

#include "App/FileInput.h"
#include "Macros/MLoadCheck.h"
#include "Triggers/TriggerType.h"

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

constexpr const char* kSoundExamples[] = { "Friendly.plist", "Wide.plist" };
constexpr const char* kAllExamples[] = { "Friendly.plist", "Wide.plist", "Damaged.plist" };
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
            "      - Variable “Answer” Is “yes”\n"
            "      - Title of the Front Window of the Front Application Contains “Draft”\n"
            "      Then:\n" },
        { "Looping",
            "    1. For Each Value of “Line” in the Following Collections:\n"
            "      - The Numbers from 1 to 10\n"
            "      - The Lines in System Clipboard\n"
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

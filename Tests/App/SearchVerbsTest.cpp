#include "CFMethods/PropertyListCodec.h"
#include "Tests/App/KorvalenRun.h"
#include "Tests/Macros/MacroFixtures.h"
#include "Utility/Search/StringSearcher.h"

#include <gmock/gmock.h>

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace
{
struct SearchVerbs : MacroWorld
{
    SearchVerbs()
    {
        const auto insert = ActionDict( u"InsertText",
            { { "Text",
                Str( u"Dear reader,\nthis is a rather long letter "
                     u"about GRÜSSE and how they are sent to friends." ) } } );
        const __SafeCFPropertyList file = FileWith( {
            GroupWith( u"G",
                { MacroWith( u"1", { { "Name", Str( u"Write letter" ) }, { "Actions", Array( { insert } ) } } ),
                    MacroWith( u"2",
                        { { "Name", Str( u"Other" ) }, { "IsActive", Bool( false ) },
                            { "ModificationDate", Real( 700000000 - 600 ) } } ) } ),
            SmartGroupWith( u"S", { Str( u"letter" ), Str( u"modified:1h" ) }, { { "Name", Str( u"Fresh" ) } } ),
            SmartGroupWith( u"T", { Str( u"modified:1s" ) }, { { "Name", Str( u"Twice" ) } } ),
            SmartGroupWith( u"U", { Str( u"" ) }, { { "Name", Str( u"Twice" ) } } ),
            SmartGroupWith( u"V", { Str( u"-modified:1h name:other" ) }, { { "Name", Str( u"Stale" ) } } ),
        } );
        mFile = mFolder.File( "macros.plist", WriteBinaryPropertyList( file ).View() );
    }
    KorvalenResult Run( const char* inVerb, const std::vector<std::string>& inRest )
    {
        std::vector<std::string> arguments = { inVerb, mFile };
        arguments.insert( arguments.end(), inRest.begin(), inRest.end() );
        return RunKorvalenWith( arguments );
    }

    KorvalenFolder mFolder;
    std::string mFile;
};
} // namespace

TEST_F( SearchVerbs, SearchSaysWhatIsFoundAndWhy )
{
    const KorvalenResult found = Run( "search", { "letter", "grüsse" } );
    EXPECT_EQ( found.mStatus, 0 );
    EXPECT_EQ( found.mErrors, "" );
    EXPECT_THAT(
        found.mOutput, StartsWith( "Group G › Write letter\n    name: Write letter\n    action Insert Text: …" ) );
    EXPECT_THAT( found.mOutput, HasSubstr( "…s is a rather long letter about GRÜSSE and h" ) );
    EXPECT_THAT( Run( "search", { "group:\"group g\" -letter" } ).mOutput,
        "Group G  (group)\n    group: Group G\nGroup G › Other (disabled)\n    group: Group G\n" );
    EXPECT_THAT( Run( "search", { "g:fresh" } ).mOutput, "Fresh  (smart group)\n    group: Fresh\n" );
    EXPECT_THAT( Run( "search", { "m:1h", "e:no" } ).mOutput,
        "Group G › Other (disabled)\n    modified: 10 minutes ago\n    enabled: no\n" );
    EXPECT_THAT( Run( "search", { "--", "-letter name:" } ).mOutput, "Group G › Other (disabled)\n    name: Other\n" );
}

TEST_F( SearchVerbs, FindingNothingIsTold )
{
    const KorvalenResult nothing = Run( "search", { "absent" } );
    EXPECT_EQ( nothing.mStatus, 0 );
    EXPECT_EQ( nothing.mOutput, "" );
    EXPECT_THAT( nothing.mErrors, AllOf( StartsWith( "korvalen: nothing in" ), HasSubstr( "matches “absent”" ) ) );
    EXPECT_EQ( Run( "search", { "absent", "--json" } ).mOutput, "[]\n" );
    EXPECT_EQ( Run( "search", {} ).mStatus, 2 );
}

TEST_F( SearchVerbs, SearchGivesItsReasonsAsJSON )
{
    const std::string json = Run( "search", { "name:letter", "--json" } ).mOutput;
    for ( const char* const part : { "\"kind\": \"Macro\"", "\"group\": \"Group G\"", "\"uid\": \"1\"",
              "\"element\": \"name\"", "\"match\": \"letter\"", "\"text\": \"Write letter\"" } )
        EXPECT_THAT( json, HasSubstr( part ) );
}

TEST_F( SearchVerbs, SmartSaysWhatAGroupHoldsAndUntilWhen )
{
    const KorvalenResult fresh = Run( "smart", { "fresh" } );
    EXPECT_EQ( fresh.mStatus, 0 );
    // 3000 seconds after the world's 700000000, which is 2023-03-08 20:26:40.
    EXPECT_EQ( fresh.mOutput,
        "Fresh  (2 macros)\n  search: letter\n  search: modified:1h\n    Group G › Other (disabled)\n"
        "    Group G › Write letter\n"
        "Holds these until 2023-03-08T21:16:40Z, in 50 minutes, unless a macro is edited or used.\n" );
    EXPECT_THAT( Run( "smart", { "S", "--json" } ).mOutput,
        AllOf( HasSubstr( "\"until\": \"2023-03-08T21:16:40Z\"" ), HasSubstr( "\"timeSensitive\": true" ) ) );
    EXPECT_THAT(
        Run( "smart", { "T" } ).mOutput, AllOf( HasSubstr( "(0 macros)" ), HasSubstr( "no macro comes or goes" ) ) );
    EXPECT_THAT( Run( "smart", { "U", "--json" } ).mOutput,
        AllOf( HasSubstr( "\"timeSensitive\": false" ), Not( HasSubstr( "until" ) ) ) );
}

TEST_F( SearchVerbs, SmartSaysWhenAMacroMayComeByGettingOlder )
{
    EXPECT_EQ( Run( "smart", { "stale" } ).mOutput,
        "Stale  (0 macros)\n  search: -modified:1h name:other\n"
        "Holds these until 2023-03-08T21:16:40Z, in 50 minutes, unless a macro is edited or used.\n" );
}

TEST_F( SearchVerbs, TermsThatAreLeftOutAreTold )
{
    std::string query;
    for ( std::size_t i = 1; i < StringSearcher::kMaxTerms; ++i )
        query += "e: ";
    EXPECT_EQ( Run( "search", { query } ).mErrors, "" );
    EXPECT_THAT( Run( "search", { query + "e: absent" } ).mErrors, HasSubstr( "at most 64 terms" ) );
}

TEST_F( SearchVerbs, SmartTellsWhichThereAre )
{
    const KorvalenResult unknown = Run( "smart", { "Group G" } );
    EXPECT_EQ( unknown.mStatus, 1 );
    EXPECT_THAT(
        unknown.mErrors, HasSubstr( "no smart group called “Group G”; it has “Fresh”, “Stale”, “Twice”, “Twice”" ) );
    const KorvalenResult twice = Run( "smart", { "twice" } );
    EXPECT_EQ( twice.mStatus, 1 );
    EXPECT_THAT( twice.mErrors, AllOf( HasSubstr( "2 smart groups" ), HasSubstr( "by its UID: T, U" ) ) );
}

// "check" as people and review tools use it: rules, what is ignored, and the three forms of its report.
#include "Tests/App/KorvalenRun.h"

#include "App/CheckSARIF.h"

#include <algorithm>
#include <cstdlib>

namespace
{
std::string Example( const std::string& inName )
{
    return KORVALEN_TESTS_FOLDER "/../Examples/" + inName;
}

// A macros file with one key that nothing reads, one that is missing, and nothing else to tell.
constexpr const char* kFile = "{\"MacroGroups\": [], \"MacroPreferencesVersion\": 91, \"Odd\": 1}";

class CheckVerb : public testing::Test
{
protected:
    KorvalenFolder mFolder;
    const std::string mFile = mFolder.File( "a b.json", kFile );
};

// Runs a Python program over what was printed; it fails with an assertion of its own.
testing::AssertionResult Holds( const KorvalenFolder& inFolder, const std::string& inOutput, const char* inProgram )
{
    const std::string output = inFolder.File( "output", inOutput ), program = inFolder.File( "judge.py", inProgram );
    if ( std::system( ( "python3 '" + program + "' '" + output + "'" ).c_str() ) == 0 )
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << inOutput.substr( 0, 2000 );
}
} // namespace

TEST_F( CheckVerb, RulesAreListedInTheOrderOfTheirTable )
{
    const KorvalenResult text = RunKorvalenWith( { "check", "--rules" } );
    const KorvalenResult json = RunKorvalenWith( { "check", "--rules", "--json" } );
    EXPECT_EQ( text.mStatus, 0 );
    EXPECT_EQ( std::size_t( std::ranges::count( text.mOutput, '\n' ) ), kMLoadRuleCount );
    std::size_t inText = 0, inJSON = 0;
    for ( const MLoadRuleRow& row : MLoadRules() )
    {
        inText = text.mOutput.find( " " + std::string( row.mID ) + " ", inText );
        inJSON = json.mOutput.find( "\"rule\": \"" + std::string( row.mID ) + "\"", inJSON );
        ASSERT_NE( inText, std::string::npos ) << row.mID;
        ASSERT_NE( inJSON, std::string::npos ) << row.mID;
    }
}

TEST_F( CheckVerb, WhatIsIgnoredNeitherShowsNorCounts )
{
    const struct
    {
        std::vector<std::string> mIgnore;
        int mStatus;
        const char* mEnd;
    } kCases[] = {
        { {}, 1, "would lose 1 thing, and write 1 thing otherwise.\n" },
        { { "--ignore", "default-written" }, 1, "would lose 1 thing (1 finding ignored).\n" },
        { { "--ignore", "unknown-key" }, 0, "lose nothing else, and write 1 thing otherwise (1 finding ignored).\n" },
        { { "--ignore", "unknown-key,default-written" }, 0, "change nothing else (2 findings ignored).\n" },
        { { "--ignore", "unknown-key", "--ignore", "default-written" }, 0, "nothing else (2 findings ignored).\n" },
        { { "--ignore", "older-key" }, 1, "would lose 1 thing, and write 1 thing otherwise.\n" },
    };
    for ( const auto& [ignore, status, end] : kCases )
    {
        std::vector<std::string> arguments{ "check" };
        arguments.insert( arguments.end(), ignore.begin(), ignore.end() );
        arguments.push_back( mFile );
        const KorvalenResult result = RunKorvalenWith( arguments );
        EXPECT_EQ( result.mStatus, status ) << result.mOutput;
        EXPECT_TRUE( result.mOutput.ends_with( end ) ) << result.mOutput;
        EXPECT_EQ( result.mErrors, "" );
    }
}

TEST_F( CheckVerb, WrongUsageIsToldWithWhatIsNear )
{
    const struct
    {
        std::vector<std::string> mArguments;
        const char* mComplaint;
    } kCases[] = {
        { { "--ignore", "older-keys", mFile }, "there is no rule “older-keys”; near it “older-key”" },
        { { "--ignore", "unknown-key,xyzzy", mFile }, "there is no rule “xyzzy”; “korvalen check --rules” lists all" },
        { { "--format", "xml", mFile }, "--format" },
        { { "--json", "--format", "sarif", mFile }, "--format excludes --json" },
        { { "--rules", mFile }, "FILE excludes --rules" },
        { {}, "FILE is required" },
    };
    for ( auto [arguments, complaint] : kCases )
    {
        arguments.insert( arguments.begin(), "check" );
        const KorvalenResult result = RunKorvalenWith( arguments );
        EXPECT_EQ( result.mStatus, 2 ) << complaint;
        EXPECT_NE( result.mErrors.find( complaint ), std::string::npos ) << result.mErrors;
        EXPECT_EQ( result.mOutput, "" );
    }
}

TEST_F( CheckVerb, TheShortFormOfJSONIsTheLongOne )
{
    EXPECT_EQ( RunKorvalenWith( { "check", "--json", mFile } ).mOutput,
        RunKorvalenWith( { "check", "--format", "json", mFile } ).mOutput );
}

TEST_F( CheckVerb, SARIFHasWhatItsSchemaRequires )
{
    const KorvalenResult result =
        RunKorvalenWith( { "check", "--format", "sarif", mFile, Example( "Damaged.plist" ), mFolder.Path( "none" ) } );
    EXPECT_EQ( result.mStatus, 1 );
    EXPECT_TRUE( Holds( mFolder, result.mOutput, R"(
import json, sys
log = json.load(open(sys.argv[1], encoding='utf-8'))
assert log['version'] == '2.1.0' and log['$schema'].endswith('sarif-schema-2.1.0.json')
run, = log['runs']
driver = run['tool']['driver']
assert driver['name'] == 'korvalen' and driver['version']
ids = [rule['id'] for rule in driver['rules']]
assert len(ids) == len(set(ids))
levels = {'error', 'warning', 'note'}
for rule in driver['rules']:
    assert rule['shortDescription']['text'] and rule['defaultConfiguration']['level'] in levels
invocation, = run['invocations']
assert invocation['executionSuccessful'] is False
notification, = invocation['toolExecutionNotifications']
assert notification['message']['text'] and notification['level'] == 'error'
uris = [artifact['location']['uri'] for artifact in run['artifacts']]
assert len(uris) == 2 and uris[0].endswith('/a%20b.json')
assert len(run['results']) > 50
for result in run['results']:
    assert ids[result['ruleIndex']] == result['ruleId']
    assert result['level'] == driver['rules'][result['ruleIndex']]['defaultConfiguration']['level']
    assert result['message']['text']
    location, = result['locations']
    assert location['physicalLocation']['artifactLocation']['uri'] in uris
    for logical in location.get('logicalLocations', []):
        assert logical['fullyQualifiedName'].endswith(logical['name'])
names = [logical['fullyQualifiedName'] for result in run['results'] for location in result['locations']
         for logical in location.get('logicalLocations', [])]
assert 'Keys That Nothing Reads › Extra Keys › action 3 › then action 1' in names
)" ) );
}

TEST_F( CheckVerb, SARIFOfASoundFileHasNoResults )
{
    const KorvalenResult result = RunKorvalenWith( { "check", "--format", "sarif", Example( "Friendly.plist" ) } );
    EXPECT_EQ( result.mStatus, 0 );
    EXPECT_TRUE( Holds( mFolder, result.mOutput, R"(
import json, sys
run, = json.load(open(sys.argv[1], encoding='utf-8'))['runs']
assert run['results'] == [] and run['invocations'][0]['executionSuccessful'] is True
)" ) );
}

TEST( CheckSARIF, APathIsAURIReference )
{
    const struct
    {
        const char *mPath, *mURI;
    } kCases[] = { { "a/b.plist", "a/b.plist" }, { "/a b/c", "/a%20b/c" }, { "50%#?.plist", "50%25%23%3F.plist" },
        { "Größe", "Gr%C3%B6%C3%9Fe" }, { "x:y", "x%3Ay" }, { "//host/a", "/host/a" }, { "-", "-" },
        { "a\\b", "a%5Cb" }, { "\xFF", "%FF" } };
    for ( const auto& [path, uri] : kCases )
        EXPECT_EQ( URIReferenceOf( path ), uri );
}

#include "Tests/App/KorvalenRun.h"

#include "App/PropertyListJSON.h"
#include "Tests/CFMethods/RandomPropertyList.h"

namespace
{
std::string Binary( const __SafeCFPropertyList& inValue )
{
    return std::string( WriteBinaryPropertyList( inValue ).View() );
}

std::string Binary( std::string_view inJSON )
{
    return Binary( ReadPropertyListJSON( XBytes( inJSON ).Span() ).mValue );
}
} // namespace

TEST( PropertyListVerbs, PrintShowsEachTypeSoThatItCanBeTold )
{
    const KorvalenResult result =
        RunKorvalenWith( { "plist", "print", "-" }, Binary( R"({"Text": "a\"\n\u001b", "Int": 5,
        "Real": 5.0, "Yes": true, "Date": {"$date": "2024-01-31T09:30:00.5Z"}, "Never": {"$date": {"$real": "inf"}},
        "Data": {"$data": "AAECAwQFBgcICQoLDA0ODxA="}, "two words": [[], {}, "é"]})" ) );
    EXPECT_EQ( result.mErrors, "" );
    EXPECT_EQ( result.mOutput, R"(dictionary of 8 keys
  Data: data of 17 bytes: 00010203 04050607 08090A0B 0C0D0E0F …
  Date: 2024-01-31T09:30:00.5Z
  Int: 5
  Never: date +infinity seconds after 2001-01-01T00:00:00Z
  Real: 5.0
  Text: "a\"\n\u001B"
  Yes: true
  "two words": array of 3 elements
    [0]: empty array
    [1]: empty dictionary
    [2]: "é"
)" );
}

TEST( PropertyListVerbs, PrintStopsAtADepthAndShowsDataWholeOnlyWhenAsked )
{
    const std::string file = Binary( R"({"a": [{"b": 1}], "d": {"$data": "AAECAwQFBgcICQoLDA0ODxA="}})" );
    EXPECT_EQ( RunKorvalenWith( { "plist", "print", "--depth", "0", "-" }, file ).mOutput, "dictionary of 2 keys …\n" );
    EXPECT_EQ( RunKorvalenWith( { "plist", "print", "--depth=1", "--full", "-" }, file ).mOutput,
        "dictionary of 2 keys\n  a: array of 1 element …\n  d: data of 17 bytes: AAECAwQFBgcICQoLDA0ODxA=\n" );
}

TEST( PropertyListVerbs, ConvertThereAndBackIsIdentityByEveryWay )
{
    for ( std::uint64_t seed = 1; seed <= 80; ++seed )
    {
        RandomPropertyListOptions options;
        options.mLongLengths = seed % 40 == 0;
        const std::string binary = Binary( RandomPropertyList( seed, options ).Next() );
        const KorvalenResult json = RunKorvalenWith( { "plist", "convert", "--to", "json", "-" }, binary );
        EXPECT_EQ( json.mStatus, 0 ) << seed << json.mErrors;
        EXPECT_EQ( RunKorvalenWith( { "plist", "convert", "--to", "binary", "-" }, json.mOutput ).mOutput, binary )
            << seed;

        const KorvalenResult xml = RunKorvalenWith( { "plist", "convert", "--to", "xml", "-" }, binary );
        if ( xml.mStatus != 0 )
        {
            EXPECT_EQ( xml.mOutput, "" ) << seed;
            EXPECT_NE( xml.mErrors.find( "has no XML form, so nothing was written" ), std::string::npos )
                << xml.mErrors;
        }
    }
}

TEST( PropertyListVerbs, ConvertReplacesItsOwnInputAndLeavesNothingBeside )
{
    const KorvalenFolder folder;
    const std::string path = folder.File( "a.plist", "{\"a\": [1, 2.0]}" );
    EXPECT_EQ( RunKorvalenWith( { "plist", "convert", "--to", "binary", path, "-o", path } ).mStatus, 0 );
    EXPECT_EQ( folder.Content( "a.plist" ), Binary( "{\"a\": [1, 2.0]}" ) );
    EXPECT_EQ( RunKorvalenWith( { "plist", "convert", path, "--to=xml", "--output", path } ).mStatus, 0 );
    EXPECT_TRUE( folder.Content( "a.plist" ).starts_with( "<?xml" ) );
    EXPECT_EQ( folder.CountFiles(), 1u );
}

TEST( PropertyListVerbs, ConvertWritesNothingWhereSomethingWouldBeLost )
{
    const KorvalenFolder folder;
    const std::string doubled = folder.File( "doubled.json", "{\"a\": 1, \"a\": 2}" );
    const std::string lone = folder.File( "lone.json", "[\"\\uD800\"]" );
    const std::string target = folder.File( "target", "as it was" );
    for ( const std::string& path : { doubled, lone } )
    {
        const KorvalenResult result = RunKorvalenWith( { "plist", "convert", "--to", "xml", path, "-o", target } );
        EXPECT_EQ( result.mStatus, 1 ) << path;
        EXPECT_NE( result.mErrors.find( "nothing was written" ), std::string::npos ) << result.mErrors;
        EXPECT_EQ( folder.Content( "target" ), "as it was" ) << path;
    }
    EXPECT_EQ( RunKorvalenWith( { "plist", "convert", "--to", "xml", doubled, "-o", target, "--lossy" } ).mStatus, 0 );
    EXPECT_NE( folder.Content( "target" ).find( "<integer>2</integer>" ), std::string::npos );

    const KorvalenResult terminal =
        RunKorvalenWith( { "plist", "convert", "--to", "binary", "-" }, "[]", { true, false } );
    EXPECT_EQ( terminal.mStatus, 2 );
    EXPECT_EQ( terminal.mOutput, "" );
}

TEST( PropertyListVerbs, VerifyTellsOfEachFileAndGoesOnBehindABadOne )
{
    const KorvalenFolder folder;
    const std::string good = folder.File( "good", Binary( "{\"a\": [1, 2.0, \"x\"]}" ) );
    const std::string cut = folder.File( "cut", Binary( "[1, 2]" ).substr( 0, 20 ) );
    const std::string doubled = folder.File( "doubled", "{\"a\": 1, \"a\": 2}" );
    EXPECT_EQ( RunKorvalenWith( { "plist", "verify", good } ).mOutput,
        good + ": valid binary, depth 2, string 1, number 2, array 1, dictionary 1\n" );

    const KorvalenResult all = RunKorvalenWith( { "plist", "verify", cut, folder.Path( "none" ), doubled, good } );
    EXPECT_EQ( all.mStatus, 1 );
    EXPECT_NE( all.mOutput.find( cut + ": invalid binary: " ), std::string::npos ) << all.mOutput;
    EXPECT_NE( all.mOutput.find( doubled + ": note: an object has 1 keys twice" ), std::string::npos ) << all.mOutput;
    EXPECT_NE( all.mOutput.find( good + ": valid" ), std::string::npos ) << all.mOutput;
    EXPECT_NE( all.mErrors.find( "No such file" ), std::string::npos ) << all.mErrors;

    const KorvalenResult json = RunKorvalenWith( { "plist", "verify", "--json", good, cut } );
    const auto facts = ReadPropertyListJSON( XBytes( json.mOutput ).Span() ).mValue;
    ASSERT_TRUE( facts.AsArray() ) << json.mOutput;
    ASSERT_EQ( facts.AsArray()->GetCount(), 2u );
    bool isValid = true;
    EXPECT_TRUE( facts.AsArray()->GetValueAt( 1 ).AsDictionary()->Get( CFSTR( "valid" ), isValid ) );
    EXPECT_FALSE( isValid );
}

TEST( PropertyListVerbs, CompareTellsByStatusAndALineForEachDifference )
{
    const KorvalenFolder folder;
    const std::string old =
        folder.File( "old", Binary( R"({"a": [1, {"Name": "x", "U": "1"}, 3], "gone": 1, "r": 5})" ) );
    const std::string now =
        folder.File( "now", R"({"a": [0, 1, {"Name": "y", "U": "1"}, 3], "odd key": [], "r": 5.0})" );
    const KorvalenResult result = RunKorvalenWith( { "plist", "compare", old, now } );
    EXPECT_EQ( result.mStatus, 1 );
    EXPECT_EQ( result.mOutput,
        "added   .a[0]: 0\n"
        "changed .a[1].Name → .a[2].Name: \"x\" → \"y\"\n"
        "removed .gone: 1\n"
        "added   .[\"odd key\"]: empty array\n"
        "changed .r: 5 → 5.0\n" );
    const KorvalenResult equal = RunKorvalenWith( { "plist", "compare", old, "-" },
        Binary( ReadAnyPropertyList( XBytes( folder.Content( "old" ) ).Span() ).mValue ) );
    EXPECT_EQ( equal.mStatus, 0 );
    EXPECT_EQ( equal.mOutput, "" );

    const KorvalenResult json = RunKorvalenWith( { "plist", "compare", "--json", old, now } );
    const auto facts = ReadPropertyListJSON( XBytes( json.mOutput ).Span() ).mValue;
    std::int64_t count = 0;
    ASSERT_TRUE( facts.AsDictionary() ) << json.mOutput;
    EXPECT_TRUE( facts.AsDictionary()->Get( CFSTR( "count" ), count ) );
    EXPECT_EQ( count, 5 );
}

#include "App/PropertyListJSON.h"

#include "Tests/CFMethods/RandomPropertyList.h"

#include <bit>
#include <gtest/gtest.h>
#include <limits>
#include <nlohmann/json.hpp>
#include <random>

namespace
{
XPlistJSONResult Read( std::string_view inJSON )
{
    return ReadPropertyListJSON( XBytes( inJSON ).Span() );
}

std::string Nested( std::size_t inDepth, std::string_view inInnermost )
{
    return std::string( inDepth, '[' ) + std::string( inInnermost ) + std::string( inDepth, ']' );
}
} // namespace

TEST( PropertyListJSON, EveryValueComesBackToTheBitAndIsJSONToAnotherReader )
{
    for ( std::uint64_t seed = 1; seed <= 250; ++seed )
    {
        RandomPropertyListOptions options;
        options.mLongLengths = seed % 100 == 0; // they take most of the time and show little
        const __SafeCFPropertyList value = RandomPropertyList( seed, options ).Next();
        const std::string json = WritePropertyListJSON( value );
        const XPlistJSONResult read = Read( json );
        ASSERT_TRUE( read.mValue ) << "seed " << seed << ": " << read.mFault->Describe() << "\n" << json;
        ASSERT_EQ( read.mValue, value ) << "seed " << seed << "\n" << json;
        ASSERT_TRUE( read.mNotes.empty() ) << seed;
        // The other reader refuses lone surrogates, which are the only escapes that begin so.
        const bool hasLoneSurrogates = json.find( "\\uD" ) != json.npos;
        ASSERT_TRUE( hasLoneSurrogates or nlohmann::json::accept( json ) ) << "seed " << seed << "\n" << json;
    }
}

TEST( PropertyListJSON, AnyKeyAndAnyTextCanBeToldFromTheWordsOfTheForm )
{
    const Text kTexts[] = { u"", u"$data", u"$$data", u"$$$date", u"$", u"$date", u"$real", u"$$", u"data", u"$dat",
        u"$Data", u"$data ", u"\\u0041", u"\"", u"\x1B[2J", u"\u202E", u"😀", { 0xD800 }, { 0xDC00, 0xD800 }, { 0 },
        u"\u009B\x7F", u"\uFFFE" };
    for ( const Text& key : kTexts )
    {
        for ( const Text& text : kTexts )
        {
            XMutableDictionary dictionary;
            dictionary.Set( XText( key ), XText( text ) );
            const __SafeCFPropertyList value = dictionary.Seal();
            const std::string json = WritePropertyListJSON( value );
            EXPECT_EQ( Read( json ).mValue, value ) << json;
        }
    }
}

TEST( PropertyListJSON, EdgesOfNumbersAndDatesComeBackToTheBit )
{
    using Limits = std::numeric_limits<double>;
    for ( const double edge : { 0.0, -0.0, 5.0, 1e300, 5e-324, -5e-324, 1e18, 1.0000000000000002e18, -1e-9, 0.1, 1e16,
              1e-5, Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN(), -Limits::quiet_NaN(),
              std::bit_cast<double>( 0x7FF0000000000001u ), Limits::max(), 9007199254740992.0 } )
    {
        for ( const __SafeCFPropertyList& value :
            { __SafeCFPropertyList::Real( edge ), __SafeCFPropertyList( XPlistDate::Make( edge ) ) } )
            EXPECT_EQ( Read( WritePropertyListJSON( value ) ).mValue, value ) << WritePropertyListJSON( value );
    }
}

TEST( PropertyListJSON, DamagedJSONIsTakenOrRefusedAsAnotherReaderDoes )
{
    for ( std::uint64_t seed = 1; seed <= 4000; ++seed )
    {
        std::mt19937_64 random( seed );
        std::string json = R"({"a": [1, -2.5e3, true, "x\u00e9\n"], "b": {}, "c": [], "d": false, "e": 10})";
        constexpr std::string_view kLikely = "{}[],:\"\\ -+.0e\n\x80\x01u";
        for ( std::uint64_t i = random() % 3 + 1; i > 0; --i )
        {
            const std::size_t at = random() % json.size();
            if ( random() % 2 )
                json[at] = kLikely[random() % kLikely.size()];
            else
                json.erase( at, random() % 3 );
        }
        // What one takes and the other can't: values without a counterpart, and text that is no Unicode.
        if ( json.find( "\\uD" ) != json.npos or json.find( "\\ud" ) != json.npos )
            continue;
        const XPlistJSONResult read = Read( json );
        EXPECT_EQ( bool( read.mValue ), nlohmann::json::accept( json ) ) << "seed " << seed << "\n" << json;
        EXPECT_NE( bool( read.mValue ), bool( read.mFault ) ) << seed;
    }
}

TEST( PropertyListJSON, WhatHasNoCounterpartOrNoSenseIsRefusedAtItsPlace )
{
    const struct
    {
        std::string mJSON;
        const char* mMessage;
    } kCases[] = {
        { "[1,\n null]", "null has no counterpart in a property list, at line 2, column 2 (byte 5)" },
        { "[18446744073709551616]", "an integer is beyond the range of 64 bits" },
        { "[-9223372036854775809]", "an integer is beyond the range of 64 bits" },
        { "[1e999]", "a number is beyond the range of a 64-bit float" },
        { "[01]", "a number begins with 0" },
        { "{\"$data\": \"?\"}", "isn't base64" },
        { "{\"$data\": 5}", "isn't base64" },
        { "{\"$data\": \"\", \"a\": 1}", "\"$data\" stands beside other keys; write \"$$data\"" },
        { "{\"$date\": \"2024-02-30T00:00:00Z\"}", "neither a date" },
        { "{\"$real\": \"nan:3FF0000000000000\"}", "\"$real\"" },
        { "{\"a\" 1}", "'1' stands where ':' should, at line 1, column 6" },
        { "[1, 2", "the JSON ends where ',' or ']' should stand" },
        { "\"a", "a string has no end" },
        { "\"\xC0\x80\"", "a string isn't well-formed UTF-8" },
        { "\"a\nb\"", "control character 0x0A in a string; write it as \\u000A" },
        { "[1] [2]", "'[' stands where the end of the JSON should" },
        { Nested( 1001, "" ), "the depth exceeds the limit of 1000" },
        { std::string( 500'000, '[' ), "the depth exceeds the limit of 1000" },
        { std::string( 1001, '[' ) + "{", "the depth exceeds the limit of 1000" },
        { Nested( 1000, "{\"a\": 1}" ), "the depth exceeds the limit of 1000" },
    };
    for ( const auto& [json, message] : kCases )
    {
        const XPlistJSONResult read = Read( json );
        ASSERT_TRUE( read.mFault ) << json.substr( 0, 60 );
        EXPECT_NE( read.mFault->Describe().find( message ), std::string::npos ) << read.mFault->Describe();
    }
}

TEST( PropertyListJSON, TheDeepestValueOfAnyKindIsAllowed )
{
    for ( const char* const leaf : { "1", "{\"$data\": \"AA==\"}", "{\"$date\": {\"$real\": \"nan\"}}" } )
    {
        const XPlistJSONResult read = Read( Nested( 1000, leaf ) );
        ASSERT_TRUE( read.mValue ) << leaf;
        EXPECT_EQ( Read( WritePropertyListJSON( read.mValue ) ).mValue, read.mValue ) << leaf;
    }
}

TEST( PropertyListJSON, OfEqualKeysTheLastCountsAndANoteTells )
{
    const XPlistJSONResult read = Read( "[{\"a\": 1, \"b\": 2, \"a\": 3}]" );
    EXPECT_EQ( read.mValue, Read( "[{\"a\": 3, \"b\": 2}]" ).mValue );
    ASSERT_EQ( read.mNotes.size(), 1u );
    EXPECT_EQ( read.mNotes[0].mOffset, 1u );
}

TEST( PropertyListJSON, ReadsWhatOtherWritersWrite )
{
    const struct
    {
        const char* mJSON;
        const char* mSame;
    } kCases[] = {
        { "\xEF\xBB\xBF [ \"\\u00E9\\/\\uD83D\\uDE00\" ] \n", "[\"é/😀\"]" },
        { "{\"$schema\": \"x\", \"$$\": 1}", "{\"$$\":1,\"$schema\":\"x\"}" },
        { "{\"$date\": 0}", "{\"$date\": \"2001-01-01T00:00:00Z\"}" },
        { "[5e0, -0.0]", "[5.0, -0e0]" },
    };
    for ( const auto& [json, same] : kCases )
    {
        ASSERT_TRUE( Read( json ).mValue ) << json;
        EXPECT_EQ( Read( json ).mValue, Read( same ).mValue ) << json;
    }
    EXPECT_FALSE( Read( "5" ).mValue.Equals( Read( "5.0" ).mValue ) );
}

TEST( PropertyListJSON, FormsAreToldApartByContent )
{
    for ( const char* const json : { "{}", " \n[1]", "\"a\"", "-1", "\xEF\xBB\xBFtrue" } )
        EXPECT_TRUE( BeginsAsJSON( XBytes( json ).Span() ) ) << json;
    for ( const std::string_view other : { std::string_view( "bplist00" ), std::string_view( "<plist>" ),
              std::string_view( "\xEF\xBB\xBF<?xml" ), std::string_view( "\0<", 2 ), std::string_view( "<\0", 2 ),
              std::string_view( "" ), std::string_view( " " ) } )
        EXPECT_FALSE( BeginsAsJSON( XBytes( other ).Span() ) ) << other;
}

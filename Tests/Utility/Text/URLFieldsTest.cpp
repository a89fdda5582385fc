#include "Utility/Text/URLFields.h"

#include "Judge.h"

#include <gtest/gtest.h>

namespace
{
const Text kLikely = u"abz09-._~+%/?&=#: %41%C3%A9\u00E9\u20AC";

// Python's answer for each line; texts have no line ends of any kind here.
std::string ByPython( const std::string& inCall, const std::string& inInput )
{
    return OutputOf( "python3 -c '\n"
                     "import sys\n"
                     "from urllib.parse import *\n"
                     "for line in sys.stdin.buffer.read().decode().split(\"\\n\")[:-1]:\n"
                     "    sys.stdout.buffer.write((" +
            inCall + ").encode() + b\"\\n\")'",
        inInput );
}

template<class Operation>
void AgreesWithPython( const std::string& inCall, unsigned inSeed, const Operation& inOperation )
{
    TextFuzzer fuzzer( inSeed, kLikely );
    std::string input, expected;
    for ( int round = 0; round < 5000; ++round )
    {
        Text text = fuzzer.Next( 20 );
        std::erase( text, u'\n' );
        input += UTF8FromText( text ) + "\n";
        expected += UTF8FromText( inOperation( text ) ) + "\n";
    }
    EXPECT_EQ( ByPython( inCall, input ), expected ) << inCall << ", seed " << inSeed;
}
} // namespace

TEST( URLFields, EncodeAndDecodeAsPythonDoes )
{
    AgreesWithPython( "quote_plus(line)", 31, encodeURLField );
    AgreesWithPython( "quote(line, safe=\"\")", 32, kvr_stringByAddingPercentEncoding );
    AgreesWithPython( "unquote_plus(line)", 33, decodeURLField );
    AgreesWithPython( "unquote(line)", 34, decodePercentEncodedUTF8Field );
}

TEST( URLFields, WhatWasEncodedDecodesToItself )
{
    TextFuzzer fuzzer( 35, kLikely );
    for ( int round = 0; round < 5000; ++round )
    {
        const Text text = fuzzer.Next( 20, true );
        ASSERT_EQ( decodeURLField( encodeURLField( text ) ), text );
        ASSERT_EQ( stringByRemovingPercentEncoding( kvr_stringByAddingPercentEncoding( text ) ), text );
    }
}

TEST( URLFields, OnlyTheStrictDecoderRefuses )
{
    for ( const TextView broken : { u"%", u"%4", u"%G1", u"100% sure", u"%C3", u"%C3x", u"%ED%A0%80" } )
        EXPECT_FALSE( stringByRemovingPercentEncoding( broken ) ) << UTF8FromText( broken );
    EXPECT_EQ( decodeURLField( u"100%+sure%2" ), u"100% sure%2" );
    EXPECT_EQ( decodePercentEncodedUTF8Field( u"%C3x+" ), u"\uFFFDx+" );
    const char16_t lone = 0xD800;
    EXPECT_EQ( encodeURLField( TextView( &lone, 1 ) ), u"%EF%BF%BD" );
}

#include "CFMethods/PropertyListCodec.h"

#include "Tests/CFMethods/RandomPropertyList.h"
#include "Tests/Support/ScratchFolder.h"
#include "Tests/Support/SmallStack.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <limits>
#include <random>

namespace
{
using namespace std::string_literals;
using Value = __SafeCFPropertyList;

XPlistReadResult Read( std::string_view inBytes, const XPlistLimits& inLimits = {} )
{
    return ReadXMLPropertyList( { reinterpret_cast<const std::uint8_t*>( inBytes.data() ), inBytes.size() }, inLimits );
}

std::string Written( const Value& inValue )
{
    const XPlistWriteResult result = WriteXMLPropertyList( inValue );
    EXPECT_EQ( result.mFault.value_or( "" ), "" );
    return std::string( result.mBytes.View() );
}

// A comment behind the document changes nothing, but takes it off the short way for plain documents.
std::string ForParser( const std::string& inDocument )
{
    return inDocument + "<!---->";
}

std::string InPlist( std::string_view inContent )
{
    return "<plist>" + std::string( inContent ) + "</plist>";
}

void AppendScalar( Text& ioText, char32_t inScalar )
{
    if ( inScalar >= 0x10000 )
    {
        ioText += char16_t( 0xD7C0 + ( inScalar >> 10 ) );
        ioText += char16_t( 0xDC00 + ( inScalar & 0x3FF ) );
    }
    else
        ioText += char16_t( inScalar );
}

constexpr RandomPropertyListOptions kWhatXMLHolds{
    .mLoneSurrogates = false,
    .mOddReals = false,
    .mAnyDates = false,
    .mMostDepth = 3,
    .mMostElements = 8,
};
constexpr RandomPropertyListOptions kWhatAllHold{
    .mLoneSurrogates = false,
    .mNullCharacters = false,
    .mForbiddenCharacters = false,
    .mOddReals = false,
    .mAnyDates = false,
    .mMostDepth = 3,
};

void Put( const std::filesystem::path& inPath, std::string_view inBytes )
{
    std::ofstream( inPath, std::ios::binary ).write( inBytes.data(), std::streamsize( inBytes.size() ) );
}

std::string Take( const std::filesystem::path& inPath )
{
    std::ifstream file( inPath, std::ios::binary );
    return { std::istreambuf_iterator<char>( file ), {} };
}

// Runs a program with paths in the folder; true when it succeeded.
bool RunIn( const ScratchFolder& inFolder, const std::string& inCommand )
{
    return std::system( ( "cd '" + inFolder.Path().native() + "' && " + inCommand ).c_str() ) == 0;
}

Value BinaryValue( const std::string& inBytes )
{
    const auto result =
        ReadBinaryPropertyList( { reinterpret_cast<const std::uint8_t*>( inBytes.data() ), inBytes.size() } );
    EXPECT_FALSE( result.mFault ) << result.mFault->Describe();
    return result.mValue;
}

Value StringOf( char32_t inScalar )
{
    Text text;
    AppendScalar( text, inScalar );
    return Value::String( text );
}

// The fault's sentence, or the value's XML without its frame.
std::string Outcome( const std::string& inDocument )
{
    const XPlistReadResult result = Read( inDocument );
    if ( result.mFault )
        return result.mFault->Describe();
    std::string text = Written( result.mValue );
    text.erase( 0, text.find( "<plist" ) );
    text.erase( 0, text.find( '\n' ) + 1 );
    text.erase( text.rfind( "\n</plist>" ) );
    return text;
}
} // namespace

TEST( XMLPropertyList, EveryScalarSurvivesInKeysAndValues )
{
    XMutableDictionary dictionary;
    for ( char32_t first = 0; first < 0x110000; first += 64 )
    {
        Text text;
        for ( char32_t scalar = first; scalar < first + 64; ++scalar )
        {
            if ( scalar < 0xD800 or scalar > 0xDFFF )
                AppendScalar( text, scalar );
        }
        dictionary.Set( XText( text ), Value::String( text + u"\r\n" + text ) );
    }
    const Value value = dictionary.Seal();
    const std::string document = Written( value );
    EXPECT_TRUE( Read( document ).mValue == value );
    EXPECT_TRUE( Read( ForParser( document ) ).mValue == value );
}

TEST( XMLPropertyList, RandomValuesComeBackOnBothWays )
{
    RandomPropertyList values( 1, kWhatXMLHolds );
    for ( int round = 0; round < 3000; ++round )
    {
        const Value value = values.Next();
        const std::string document = Written( value );
        ASSERT_TRUE( Read( document ).mValue == value ) << "round " << round << "\n" << document;
        ASSERT_TRUE( Read( ForParser( document ) ).mValue == value ) << "round " << round << "\n" << document;
        ASSERT_TRUE( kvr_fromXMLString( *kvr_toXMLString( value ) ) == value ) << "round " << round;
    }
}

TEST( XMLPropertyList, TheShortWayAndTheParserAgreeOnDamagedDocuments )
{
    RandomPropertyList values( 2, kWhatXMLHolds );
    std::mt19937 random( 2 );
    constexpr std::string_view kPieces[] = { "<", ">", "&", "</", "/>", "]]>", "\r", "&#1;", "&#13;", "&lt;",
        "<key>a</key>", "<dict>", "</dict>", "<true/>", "\xC3", "\xEF\xBF\xBE", "\x01", " ", "0", "<![CDATA[", "&a;" };
    unsigned read = 0;
    for ( int round = 0; round < 8000; ++round )
    {
        std::string document = Written( values.Next() );
        const std::size_t start = document.find( "<plist" ), at = start + random() % ( document.size() - start );
        document.replace( at, random() % 4, kPieces[random() % std::size( kPieces )] );
        const XPlistReadResult plain = Read( document ), parsed = Read( ForParser( document ) );
        ASSERT_EQ( bool( plain.mValue ), bool( parsed.mValue ) ) << "round " << round << "\n" << document;
        ASSERT_TRUE( plain.mValue == parsed.mValue ) << "round " << round << "\n" << document;
        read += plain.mValue ? 1 : 0;
    }
    EXPECT_GT( read, 400u ); // else the damage is too great to compare anything
}

TEST( XMLPropertyList, PlistlibWritesTheSameBytesAndReadsTheSameValues )
{
    constexpr unsigned kFiles = 200;
    const ScratchFolder folder;
    RandomPropertyList values( 3, kWhatAllHold );
    std::vector<Value> all;
    for ( unsigned i = 0; i < kFiles; ++i )
    {
        all.push_back( values.Next() );
        Put( folder.Path() / ( std::to_string( i ) + ".xml" ), Written( all.back() ) );
    }
    Put( folder / "judge.py",
        "import plistlib, sys\n"
        "for i in range(int(sys.argv[1])):\n"
        "    name = str(i)\n"
        "    value = plistlib.load(open(name + '.xml', 'rb'))\n"
        "    plistlib.dump(value, open(name + '.binary', 'wb'), fmt=plistlib.FMT_BINARY)\n"
        "    plistlib.dump(value, open(name + '.python', 'wb'))\n" );
    ASSERT_TRUE( RunIn( folder, "python3 judge.py " + std::to_string( kFiles ) ) );
    for ( unsigned i = 0; i < kFiles; ++i )
    {
        const std::string path = ( folder.Path() / std::to_string( i ) ).native(), theirs = Take( path + ".python" );
        EXPECT_TRUE( BinaryValue( Take( path + ".binary" ) ) == all[i] ) << i;
        EXPECT_TRUE( Read( theirs ).mValue == all[i] ) << i;
        // Python sorts by scalars and we by UTF-16 units, so the order differs above U+FFFF.
        if ( theirs.find( '\xF0' ) == theirs.npos and theirs.find( '\xF4' ) == theirs.npos )
        {
            EXPECT_EQ( theirs, Take( path + ".xml" ) ) << i;
        }
    }
}

TEST( XMLPropertyList, PlistutilReadsAndWritesTheSameValues )
{
    const ScratchFolder folder;
    RandomPropertyList values( 4, kWhatAllHold );
    XMutableArray array;
    for ( char32_t control = 1; control < 0x20; ++control )
        array.Append( StringOf( control ) );
    array.Append( StringOf( 0xFFFE ) );
    array.Append( StringOf( 0xFFFF ) );
    for ( unsigned i = 0; i < 300; ++i )
        array.Append( values.Next() );
    const Value value = array.Seal();
    Put( folder / "ours.plist", Written( value ) );
    ASSERT_TRUE( RunIn( folder, "plistutil -f bin -i ours.plist -o theirs.binary" ) );
    EXPECT_TRUE( BinaryValue( Take( folder / "theirs.binary" ) ) == value );
    ASSERT_TRUE( RunIn( folder, "plistutil -f xml -i theirs.binary -o theirs.plist" ) );
    EXPECT_TRUE( Read( Take( folder / "theirs.plist" ) ).mValue == value );
}

TEST( XMLPropertyList, DatesComeBackToTheBit )
{
    std::mt19937_64 random( 5 );
    std::vector<double> dates = { 0, 0.1, -0.1, 1e-300, -1e-300, 5e-324, -5e-324, 0.999999999999999889, -1, 1e18, -1e18,
        -86400.5, 711846279.2285687, -62135596800 - 978307200.0, 252455616000 };
    for ( int i = 0; i < 20000; ++i )
        dates.push_back( std::ldexp( double( std::int64_t( random() ) ), -int( random() % 120 ) - 5 ) );
    for ( const double date : dates )
    {
        const std::string document = Written( XPlistDate::Make( date ) );
        const Value back = Read( document ).mValue;
        ASSERT_TRUE( back.AsDate() ) << document;
        ASSERT_EQ( back.AsDate()->GetSeconds(), date ) << document;
    }
}

TEST( XMLPropertyList, LeavesAreReadInAllTheirForms )
{
    const struct
    {
        std::string mContent, mOutcome;
    } kCases[] = {
        { "<integer> +7\n</integer>", "<integer>7</integer>" },
        { "<integer>0x1F</integer>", "<integer>31</integer>" },
        { "<integer>-0X10</integer>", "<integer>-16</integer>" },
        { "<integer>-9223372036854775808</integer>", "<integer>-9223372036854775808</integer>" },
        { "<integer>18446744073709551615</integer>", "<integer>18446744073709551615</integer>" },
        { "<integer>1<!-- -->2</integer>", "<integer>12</integer>" },
        { "<real>5</real>", "<real>5.0</real>" },
        { "<real>-.5e1</real>", "<real>-5.0</real>" },
        { "<real>700000000</real>", "<real>700000000.0</real>" },
        { "<real>+INF</real>", "<real>+infinity</real>" },
        { "<real>-Infinity</real>", "<real>-infinity</real>" },
        { "<real>NaN</real>", "<real>nan</real>" },
        { "<true></true>", "<true/>" },
        { "<false> </false>", "<false/>" },
        { "<date>2024-02-29T23:59:60Z</date>", "<date>2024-03-01T00:00:00Z</date>" },
        { "<date> 2024-01-31T09:30:00.2500Z</date>", "<date>2024-01-31T09:30:00.25Z</date>" },
        { "<date>-0044-03-15T12:00:00Z</date>", "<date>-0044-03-15T12:00:00Z</date>" },
        { "<date>+12024-01-01T00:00:00Z</date>", "<date>12024-01-01T00:00:00Z</date>" },
        { "<data>QU J\nD</data>", "<data>\nQUJD\n</data>" },
        { "<data>QQ==</data>", "<data>\nQQ==\n</data>" },
        { "<data>QQ</data>", "<data>\nQQ==\n</data>" },
        { "<data>QUI====</data>", "<data>\nQUI=\n</data>" },
        { "<data/>", "<data>\n</data>" },
        { "<string/>", "<string></string>" },
        { "<string>a\r\nb\rc&#13;</string>", "<string>a&#13;\nb&#13;c&#13;</string>" },
        { "<string\r>a<![CDATA[\r]]><!--\r-->\r</string\r>\r", "<string>a&#13;&#13;</string>" },
        { "\r<array\r>\r<string/>\r<integer>\r1\r</integer></array>\r",
            "<array>\n\t<string></string>\n\t<integer>1</integer>\n</array>" },
        { "<string><![CDATA[<&#1;]]>&#x1;&#0;\x01\xEF\xBF\xBF\x7F</string>",
            "<string>&lt;&amp;#1;&#1;&#0;&#1;&#65535;\x7F</string>" },
        { "<string>&quot;&apos;&lt;&gt;&amp;&#xE9;&#128512;]]</string>",
            "<string>\"'&lt;&gt;&amp;\xC3\xA9\xF0\x9F\x98\x80]]</string>" },
    };
    for ( const auto& [content, outcome] : kCases )
    {
        EXPECT_EQ( Outcome( InPlist( content ) ), outcome );
        EXPECT_EQ( Outcome( content ), outcome ) << "without <plist>";
        EXPECT_EQ( Outcome( ForParser( InPlist( content ) ) ), outcome );
    }
}

TEST( XMLPropertyList, WhatXMLAllowsAroundElementsIsPassedOver )
{
    const std::string document = "<?xml version='1.0'?>\r\n<?pi?><!-- a --><!DOCTYPE plist SYSTEM 'nowhere'>\n"
                                 "<plist version='9' other=''>\t<!-- b --><dict a='1'\n><?pi?><key >a</key\n> <array "
                                 "/><![CDATA[ \n]]></dict></plist>\n<!-- c -->\n";
    EXPECT_EQ( Outcome( document ), "<dict>\n\t<key>a</key>\n\t<array/>\n</dict>" );
}

TEST( XMLPropertyList, FaultsSayWhatAndWhere )
{
    const struct
    {
        std::string mDocument, mFault;
    } kCases[] = {
        { "", "there are no bytes, at line 1, column 1 (byte 0)" },
        { " \n\t", "there is nothing but white space, at line 1, column 1 (byte 0)" },
        { "<plist>\n<dict>", "the document ends early, at line 2, column 7 (byte 14)" },
        { "<plist/>", "the property list holds no value, at line 1, column 9 (byte 8)" },
        { "<array/><array/>", "this isn't XML: junk after document element, at line 1, column 9 (byte 8)" },
        { InPlist( "<true/><true/>" ),
            "a second value in the property list, which holds one, at line 1, column 15 (byte 14)" },
        { InPlist( "<plist/>" ), "<plist> within the property list, at line 1, column 8 (byte 7)" },
        { InPlist( "\n <frob/>" ), "the element \"frob\" is none of a property list, at line 2, column 2 (byte 9)" },
        { InPlist( "<array>\n\xC3\xA9 x</array>" ),
            "text where an element is expected: \"\xC3\xA9 x\", at line 2, column 1 (byte 15)" },
        { InPlist( "<array>\xC3\xA9</array>" ),
            "text where an element is expected: \"\xC3\xA9\", at line 1, column 15 (byte 14)" },
        { InPlist( "<string>\xC3\xA9<b/></string>" ),
            "an element, \"b\", within <string>, which holds text, at line 1, column 17 (byte 17)" },
        { InPlist( "<dict><key>a</key></dict>" ),
            "the dictionary's last key has no value, at line 1, column 26 (byte 25)" },
        { InPlist( "<dict><key>a</key><key>b</key></dict>" ),
            "a key behind a key that has no value, at line 1, column 26 (byte 25)" },
        { InPlist( "<dict><true/></dict>" ), "<true> without a key before it, at line 1, column 14 (byte 13)" },
        { InPlist( "<array><key>a</key></array>" ), "<key> outside a dictionary, at line 1, column 15 (byte 14)" },
        { "<key>a</key>", "<key> outside a dictionary, at line 1, column 1 (byte 0)" },
        { InPlist( "<true>no</true>" ), "text within <true>: \"no\", at line 1, column 14 (byte 13)" },
        { InPlist( "<integer>\n 12x</integer>" ), "\"12x\" isn't an integer, at line 2, column 2 (byte 18)" },
        { InPlist( "<integer/>" ), "\"\" isn't an integer, at line 1, column 8 (byte 7)" },
        { InPlist( "<integer>--1</integer>" ), "\"--1\" isn't an integer, at line 1, column 17 (byte 16)" },
        { InPlist( "<integer>18446744073709551616</integer>" ),
            "the integer \"18446744073709551616\" is beyond the range of 64 bits, at line 1, column 17 (byte 16)" },
        { InPlist( "<integer>-9223372036854775809</integer>" ),
            "the integer \"-9223372036854775809\" is beyond the range of 64 bits, at line 1, column 17 (byte 16)" },
        { InPlist( "<real>1,5</real>" ), "\"1,5\" isn't a real number, at line 1, column 14 (byte 13)" },
        { InPlist( "<real>+-1</real>" ), "\"+-1\" isn't a real number, at line 1, column 14 (byte 13)" },
        { InPlist( "<real>1e999</real>" ),
            "the real number \"1e999\" is beyond the range of a 64-bit float, at line 1, column 14 (byte 13)" },
        { InPlist( "<date>2023-02-29T00:00:00Z</date>" ),
            "\"2023-02-29T00:00:00Z\" isn't a date such as 2024-01-31T09:30:00Z, at line 1, column 14 (byte 13)" },
        { InPlist( "<date>2023-02-28T00:00:00</date>" ),
            "\"2023-02-28T00:00:00\" isn't a date such as 2024-01-31T09:30:00Z, at line 1, column 14 (byte 13)" },
        { InPlist( "<data>QU\n<!-- -->J-</data>" ), "\"-\" isn't base64, at line 2, column 10 (byte 25)" },
        { InPlist( "<data>QQ==QQ</data>" ), "base64 goes on behind its padding, at line 1, column 18 (byte 17)" },
        { InPlist( "<data>QUJDR</data>" ), "base64 ends within a byte, at line 1, column 14 (byte 13)" },
        { InPlist( "<string>&nbsp;</string>" ), "the entity \"nbsp\" isn't defined, at line 1, column 16 (byte 15)" },
        { "<!DOCTYPE plist SYSTEM 'a'>" + InPlist( "<string>&nbsp;</string>" ),
            "the entity \"nbsp\" isn't defined, at line 1, column 43 (byte 42)" },
        { InPlist( "<string>&#xD800;</string>" ),
            "the reference \"&#xD800;\" names no character, at line 1, column 16 (byte 15)" },
        { InPlist( "<string>\x01\x02&#3;&nbsp;</string>" ),
            "the entity \"nbsp\" isn't defined, at line 1, column 22 (byte 21)" },
        { InPlist( "<integer>\x01&#2;x</integer>" ),
            "\"\\x01\\x02x\" isn't an integer, at line 1, column 17 (byte 16)" },
        { InPlist( "<array></dict>" ),
            "the end tag \"dict\" isn't that of the open element, at line 1, column 17 (byte 16)" },
        { InPlist( "<string>\xC3(</string>" ), "ill-formed UTF-8, byte 0xC3, at line 1, column 16 (byte 15)" },
        { InPlist( "<string>\xED\xA0\x80</string>" ), "ill-formed UTF-8, byte 0xED, at line 1, column 16 (byte 15)" },
        { "<!DOCTYPE plist [<!ENTITY a 'b'>]>" + InPlist( "<string>&a;</string>" ),
            "the document type has an internal subset, which isn't read, at line 1, column 17 (byte 16)" },
    };
    for ( const auto& [document, fault] : kCases )
        EXPECT_EQ( Outcome( document ), fault ) << document;
}

TEST( XMLPropertyList, EncodingsAreFoundByTheirBytes )
{
    const auto wide = []( TextView inText, bool inLittleEndian ) {
        std::string bytes;
        for ( const char16_t unit : inText )
        {
            bytes += char( inLittleEndian ? unit & 0xFF : unit >> 8 );
            bytes += char( inLittleEndian ? unit >> 8 : unit & 0xFF );
        }
        return bytes;
    };
    const Text content = u"<string>é\U0001F600\x01</string>";
    const Text declared = u"<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n" + content;
    const std::string expected = "<string>\xC3\xA9\xF0\x9F\x98\x80&#1;</string>";
    const Text bad = u"<string>\n" + Text( 1, char16_t( 0xDC00 ) ) + u"</string>";
    const std::string declaration = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>";
    const struct
    {
        std::string mDocument, mOutcome;
    } kCases[] = {
        { "\xEF\xBB\xBF" + UTF8FromText( content ), expected },
        { UTF8FromText( declared ), expected },
        { wide( declared, true ), expected },
        { wide( declared, false ), expected },
        { wide( u"\uFEFF" + declared, true ), expected },
        { wide( u"\uFEFF" + declared, false ), expected },
        { wide( u"\n" + content, true ), expected },
        { wide( u"\uFEFF" + bad, true ), "the lone surrogate U+DC00, at line 2, column 1 (byte 20)" },
        { wide( bad, false ), "the lone surrogate U+DC00, at line 2, column 1 (byte 18)" },
        { wide( content, true ) + "x", "the UTF-16 text ends within a unit, at line 1, column 21 (byte 42)" },
        { wide( u"<string>é\n\x01\uFFFE<x/></string>", false ),
            "an element, \"x\", within <string>, which holds text, at line 2, column 3 (byte 24)" },
        { "<\0\0\0"s, "the text is UTF-32; UTF-8 and UTF-16 are read, at line 1, column 1 (byte 0)" },
        { declaration + "<true/>",
            "the encoding \"ISO-8859-1\" is declared; UTF-8 and UTF-16 are read, at line 1, column 1 (byte 0)" },
    };
    for ( const auto& [document, outcome] : kCases )
        EXPECT_EQ( Outcome( document ), outcome ) << document;
}

TEST( XMLPropertyList, NothingOutsideTheDocumentIsEverRead )
{
    const ScratchFolder folder;
    Put( folder / "evil.dtd", "<!ENTITY secret 'read'>" );
    const std::string path = ( folder / "evil.dtd" ).native();
    for ( const std::string& type :
        { "<!DOCTYPE plist SYSTEM '" + path + "'>", "<!DOCTYPE plist PUBLIC 'a' 'file://" + path + "'>" } )
        EXPECT_NE( Outcome( type + "<string>&secret;</string>" ).find( "the entity \"secret\" isn't defined" ),
            std::string::npos );
}

TEST( XMLPropertyList, TheLastOfDoubledKeysCountsAndIsNoted )
{
    const std::string dictionary = "<dict><key>a</key><true/><key>\xC3\xA9</key><true/><key>a</key><false/></dict>";
    for ( const std::string& document : { InPlist( dictionary ), ForParser( InPlist( dictionary ) ) } )
    {
        const XPlistReadResult result = Read( document );
        bool value = true;
        ASSERT_TRUE( result.mValue.AsDictionary() );
        EXPECT_TRUE( result.mValue.AsDictionary()->Get( CFSTR( "a" ), value ) );
        EXPECT_FALSE( value );
        ASSERT_EQ( result.mNotes.size(), 1u );
        EXPECT_EQ(
            result.mNotes[0].mMessage, "the key \"a\" stands more than once in a dictionary; the last one counts" );
        EXPECT_EQ( result.mNotes[0].mOffset, 7u );
    }
}

TEST( XMLPropertyList, LimitsAreNamedAndDepthCostsNoStack )
{
    const auto nested = []( unsigned inDepth ) {
        std::string document;
        for ( unsigned i = 0; i < inDepth; ++i )
            document += "<array>";
        for ( unsigned i = 0; i < inDepth; ++i )
            document += "</array>";
        return document;
    };
    EXPECT_FALSE( Read( InPlist( nested( 1000 ) ) ).mFault );
    EXPECT_FALSE( Read( ForParser( InPlist( nested( 1000 ) ) ) ).mFault );
    EXPECT_EQ( Outcome( nested( 1001 ) ), "the depth exceeds the limit of 1000, at line 1, column 7001 (byte 7000)" );
    EXPECT_EQ(
        Read( "<true/>", { .mMaxBytes = 6 } ).mFault->mMessage, "the file has 7 bytes, which exceeds the limit of 6" );

    RunOnSmallStack( [] {
        Value value = Value::Boolean( true );
        for ( unsigned i = 0; i < 100000; ++i )
        {
            XMutableArray array;
            array.Append( value );
            value = array.Seal();
        }
        const std::string document = Written( value );
        EXPECT_TRUE( Read( ForParser( document ), { .mMaxDepth = 100000 } ).mValue == value );
    } );
}

TEST( XMLPropertyList, ValuesWithoutAnXMLFormAreNamedByTheirPath )
{
    const auto inMacro = []( Value inName ) {
        XMutableArray macros;
        macros.Append( Value::Boolean( true ) );
        XMutableDictionary macro, root;
        macro.Set( CFSTR( "Name" ), std::move( inName ) );
        macros.Append( macro.Seal() );
        root.Set( CFSTR( "Macros" ), macros.Seal() );
        return Value( root.Seal() );
    };
    const auto infinity = std::numeric_limits<double>::infinity();
    const Text lone = u"\u00E9" + Text( 1, char16_t( 0xD800 ) );
    XMutableDictionary badKey;
    badKey.Set( XText( Text( 1, char16_t( 0xDFFF ) ) ), Value::Boolean( true ) );
    const struct
    {
        Value mValue;
        std::string mFault;
    } kCases[] = {
        { inMacro( Value::String( lone ) ), "Macros[1].Name holds the lone surrogate U+D800, which XML can't hold" },
        { inMacro( XPlistDate::Make( infinity ) ), "Macros[1].Name is a date that isn't finite, which XML can't hold" },
        { inMacro( XPlistDate::Make( 1e19 ) ),
            "Macros[1].Name is a date more than 30,000 million years off, which has no XML form" },
        { Value::String( lone ), "the value holds the lone surrogate U+D800, which XML can't hold" },
        { inMacro( badKey.Seal() ),
            "Macros[1].Name.\xEF\xBF\xBD holds the lone surrogate U+DFFF, which XML can't hold" },
        { Value(), "there is no value to write" },
    };
    for ( const auto& [value, fault] : kCases )
    {
        const XPlistWriteResult result = WriteXMLPropertyList( value );
        EXPECT_EQ( result.mFault.value_or( "written" ), fault );
        EXPECT_EQ( result.mBytes.size(), 0u );
        EXPECT_FALSE( kvr_toXMLString( value ) );
    }
    EXPECT_FALSE( kvr_fromXMLString( u"<string>" + lone + u"</string>" ) );
}

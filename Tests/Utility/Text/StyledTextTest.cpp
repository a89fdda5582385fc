#include "Utility/Text/StyledText.h"

#include <gtest/gtest.h>

namespace
{
std::optional<Text> PlainText( std::string_view inData )
{
    return kvr_plainTextFromRTF( { reinterpret_cast<const std::uint8_t*>( inData.data() ), inData.size() } );
}

constexpr std::string_view kDocument = "{\\rtf1\\ansi\\ansicpg1252\\cocoartf2639\n"
                                       "{\\fonttbl\\f0\\fswiss\\fcharset0 Helvetica-Bold;\\f1\\fswiss Helvetica;}\n"
                                       "{\\colortbl;\\red255\\green255\\blue255;}\n"
                                       "{\\*\\expandedcolortbl;;}\n"
                                       "\\pard\\tx560\\pardirnatural\\partightenfactor0\n\n"
                                       "\\f0\\b\\fs24 \\cf0 Copies \n\\f1\\b0 the \\'84total\\'93\\\n"
                                       "and more: \\uc0\\u8364 5 {\\i caf\\'e9}.}";
} // namespace

TEST( StyledText, ADocumentGivesItsTextWithoutTables )
{
    EXPECT_EQ( PlainText( kDocument ), u"Copies the „total“\nand more: €5 café." );
}

TEST( StyledText, OtherDataGivesNone )
{
    using namespace std::string_view_literals;
    for ( const auto data : { ""sv, "{\\rt"sv, "plain"sv, "rtfd\0\0"sv, " {\\rtf1 x}"sv, "bplist00"sv } )
        EXPECT_FALSE( PlainText( data ) ) << data;
}

TEST( StyledText, ControlWordsAndSymbolsGiveTheirCharacters )
{
    constexpr struct
    {
        const char* mBody;
        const char16_t* mText;
    } kCases[] = {
        { "", u"" },
        { "a\\par b\\line c\\tab d", u"a\nb\nc\td" },
        { "a\\\nb\\\r\nc", u"a\nb\nc" },
        { "a\nb\r\nc", u"abc" },
        { "\\lquote x\\rquote\\emdash\\~\\_\\-y", u"‘x’—\u00A0\u2011y" },
        { "\\\\ \\{\\}", u"\\ {}" },
        { "\\b bold\\b0  plain", u"bold plain" },
        { "\\unknown7 x{\\*\\hidden y}z", u"xz" },
        { "{\\pict\\bin5 }}}}}ff}x", u"x" },
        { "{\\info{\\title T}}x{\\field{\\*\\fldinst HYPERLINK}{\\fldrslt link}}", u"xlink" },
        { "\\u8364?5", u"€5" },
        { "\\u8364\\'805", u"€5" },
        { "\\uc2\\u8364 ab5{\\uc0\\u8364 5}\\u8364 ab6", u"€5€5€6" },
        { "{\\u8364}?5", u"€?5" },
        { "\\uc0\\u-10179\\u-8704", u"😀" },
        { "\\'zz\\'4", u"zz4" },
    };
    for ( const auto& [body, text] : kCases )
        EXPECT_EQ( PlainText( "{\\rtf1 " + std::string( body ) + "}tail" ), text ) << body;
}

TEST( StyledText, BytesAreThoseOfTheCodePage )
{
    EXPECT_EQ( PlainText( "{\\rtf1\\mac \\'8a}" ), u"ä" );
    EXPECT_EQ( PlainText( "{\\rtf1\\ansi\\ansicpg1251 \\'cf}" ), u"П" );
    EXPECT_EQ( PlainText( "{\\rtf1\\ansi\\ansicpg932 \\'82\\'a0x}" ), u"あx" );
    EXPECT_EQ( PlainText( "{\\rtf1\\ansi\\ansicpg77777 \\'e9}" ), u"é" );
}

TEST( StyledText, WhatIsCutOffOrDamagedGivesTheTextUpToThere )
{
    EXPECT_EQ( PlainText( "{\\rtf1 a{b" ), u"ab" );
    EXPECT_EQ( PlainText( "{\\rtf1 a\\bin99 b" ), u"a" );
    for ( std::size_t length = 5; length <= kDocument.size(); ++length )
        EXPECT_TRUE( PlainText( kDocument.substr( 0, length ) ) ) << length;
    const std::string deep( 200000, '{' );
    EXPECT_EQ( PlainText( "{\\rtf1 x" + deep ), u"x" );
}

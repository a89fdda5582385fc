#include "Platform/Linux/DesktopEntry.h"

#include <gtest/gtest.h>

using Words = std::vector<std::string>;

TEST( DesktopEntry, AnyCommandComesBackWordForWord )
{
    const Words cases[] = { { "/usr/bin/engine" }, { "/a b/Korvalen Engine", "--folder", "/x y" }, { "a", "" },
        { "$HOME", "`id`", "\"quoted\"", "back\\slash", "'single'" }, { "100%", "%U", "%%f" },
        { "a;b", "c&d", "e|f", "<g>", "(h)", "*?#~", "tab\there" }, { "Ä\xF0\x9F\x98\x80", "\xFF" } };
    for ( const Words& words : cases )
        EXPECT_EQ( DesktopEntry::WordsOfCommand( DesktopEntry::QuotedCommand( words ) ), words );
}

TEST( DesktopEntry, QuotingIsWhatTheDesktopReads )
{
    const std::pair<Words, const char*> cases[] = { { { "/usr/bin/engine", "-x" }, "/usr/bin/engine -x" },
        { { "/a b" }, "\"/a b\"" }, { { "/a$b" }, R"("/a\$b")" }, { { "/a\\b" }, R"("/a\\b")" },
        { { "/a\"b" }, R"("/a\"b")" }, { { "/50%" }, "/50%%" }, { { "" }, "\"\"" } };
    for ( const auto& [words, command] : cases )
        EXPECT_EQ( DesktopEntry::QuotedCommand( words ), command );
}

TEST( DesktopEntry, CommandsOfOthersAreReadByTheRules )
{
    const std::pair<const char*, std::optional<Words>> cases[] = { { "program %U", Words{ "program" } },
        { "program --icon %i file", Words{ "program", "--icon", "file" } }, { "  a \t b ", Words{ "a", "b" } },
        { "\"a b\"c", Words{ "a bc" } }, { "\"unfinished", std::nullopt }, { "", std::nullopt }, { "%f", std::nullopt },
        { "ends%", Words{ "ends" } } };
    for ( const auto& [command, words] : cases )
        EXPECT_EQ( DesktopEntry::WordsOfCommand( command ), words ) << command;
}

TEST( DesktopEntry, AnEntryComesBackFromItsFile )
{
    const DesktopEntry entry{ "  Korvalen\tEngine\nÄ\\ ", { "/a \"b\"\\$c%/engine", "x y" } };
    const std::optional<std::string> bytes = entry.Write();
    ASSERT_TRUE( bytes );
    const std::optional<DesktopEntry> again = DesktopEntry::Read( *bytes );
    ASSERT_TRUE( again ) << *bytes;
    EXPECT_EQ( again->mName, entry.mName );
    EXPECT_EQ( again->mCommand, entry.mCommand );
}

TEST( DesktopEntry, WhatAFileCannotHoldIsNotWritten )
{
    EXPECT_FALSE( ( DesktopEntry{ "n", { "/a\nb" } }.Write() ) );
    EXPECT_FALSE( ( DesktopEntry{ "n", { std::string( "/a\0b", 4 ) } }.Write() ) );
    EXPECT_FALSE( ( DesktopEntry{ "\xFF", { "/a" } }.Write() ) );
    EXPECT_FALSE( ( DesktopEntry{ "n", {} }.Write() ) );
}

TEST( DesktopEntry, OnlyWhatStartsSomethingIsAnEntry )
{
    const std::string head = "[Desktop Entry]\nType=Application\nName=A\n";
    EXPECT_TRUE( DesktopEntry::Read( head + "Exec=/a\n" ) );
    EXPECT_TRUE( DesktopEntry::Read( "# from elsewhere\n" + head + "Exec=/a\nHidden=false\nX-Other=1\n" ) );
    for ( const std::string& bytes :
        { std::string(), std::string( "no key file" ), head, head + "Exec=/a\nHidden=true\n", head + "Exec=\"/a\n",
            std::string( "[Desktop Entry]\nType=Link\nName=A\nExec=/a\n" ),
            std::string( "[Desktop Entry]\nType=Application\nExec=/a\n" ) } )
        EXPECT_FALSE( DesktopEntry::Read( bytes ) ) << bytes;
}

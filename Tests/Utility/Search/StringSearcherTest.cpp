#include "Utility/Search/StringSearcher.h"

#include "Tests/Support/LogCapture.h"
#include "Utility/Work/Random.h"

#include <gtest/gtest.h>
#include <set>

namespace
{
using Kind = StringSearchee::Kind;

// "-name(foo)" for each term; the limit of a time stands for its text.
std::string Parsed( TextView inText )
{
    constexpr const char* kNames[] = { "text", "uid", "trigger", "hotkey", "name", "group", "app", "global", "enabled",
        "created", "modified", "used", "all" };
    const StringSearcher searcher{ inText };
    std::string result;
    for ( const SearchTerm& term : searcher.GetTerms() )
    {
        std::string value = UTF8FromText( term.mText );
        if ( term.mKind >= Kind::kCreated and term.mKind <= Kind::kUsed )
            value = std::to_string( std::int64_t( term.mAge ) );
        result += ( result.empty() ? "" : " " ) + std::string( term.mNegated ? "-" : "" ) +
            kNames[std::size_t( term.mKind )] + "(" + value + ")";
    }
    return result;
}

StringSearchee SampleMacro()
{
    StringSearchee macro;
    macro.AddName( u"Paste Plain" );
    macro.AddUID( u"1F2E-AB12" );
    macro.AddCreated( 1000, 3600 );
    macro.AddModified( 2000, 60 );
    macro.AddTrigger( u"The Hot Key ⌃⌘V is pressed" );
    macro.AddHotKey( u"⌃⌘V" );
    macro.Add( u"Insert\u2003 the  Text foo:bar" );
    macro.AddGroup( u"Global Macro Group" );
    macro.AddApp( u"Finder" );
    macro.AddEnabled( true );
    return macro;
}

bool Finds( TextView inText, const StringSearchee& inSearchee = SampleMacro() )
{
    return StringSearcher( inText ).Matches( inSearchee );
}
} // namespace

TEST( StringSearcher, TextIsSplitIntoTermsWithTheirTags )
{
    constexpr struct
    {
        const char16_t* mText;
        const char* mTerms;
    } kCases[] = {
        { u"", "" },
        { u"   ", "" },
        { u"-", "" },
        { u"\"\"", "" },
        { u"- foo", "text(foo)" },
        { u"foo  -bar", "text(foo) -text(bar)" },
        { u"--a", "-text(-a)" },
        { u"a-b", "text(a-b)" },
        // Phrases
        { u"\"Global Macro Group\"", "text(Global\\s+Macro\\s+Group)" },
        { u"group:\"a b\" c", "group(a\\s+b) text(c)" },
        { u"-\"a b\"", "-text(a\\s+b)" },
        { u"\" a \"", "text(a)" },
        { u"a\"b", "text(a\\x22b)" },
        { u"\"a b", "text(\\x22a) text(b)" },
        { u"x\"a b\"y", "text(xa\\s+by)" },
        { u"\"a  b\"", "text(a\\s+\\s+b)" },
        // Escapes
        { u"a.b*", "text(a\\x2Eb\\x2A)" },
        { u"é_", "text(\\xE9\\x5F)" },
        { u"–", "text(\\x{2013})" },
        { u"\U0001F600", "text(\\x{1F600})" },
        { u"A1-:", "text(A1-:)" },
        // Each tag, in full and as short as it goes
        { u"group:x", "group(x)" },
        { u"g:x", "group(x)" },
        { u"GR:x", "group(x)" },
        { u"name:x", "name(x)" },
        { u"n:x", "name(x)" },
        { u"trigger:x", "trigger(x)" },
        { u"t:x", "trigger(x)" },
        { u"hotkey:x", "hotkey(x)" },
        { u"h:x", "hotkey(x)" },
        { u"application:Finder", "app(Finder)" },
        { u"a:", "app()" },
        { u"-app:x", "-app(x)" },
        { u"global:", "global()" },
        { u"gl:", "global()" },
        { u"universal:", "global()" },
        { u"u:", "global()" },
        { u"enabled:", "enabled(1)" },
        { u"e:Yes", "enabled(1)" },
        { u"e:1", "enabled(1)" },
        { u"e:t", "enabled(1)" },
        { u"e:no", "enabled(0)" },
        { u"e:False", "enabled(0)" },
        { u"e:0", "enabled(0)" },
        { u"disabled:", "enabled(0)" },
        { u"d:yes", "enabled(0)" },
        { u"d:N", "enabled(1)" },
        { u"created:1d", "created(86400)" },
        { u"c:90", "created(90)" },
        { u"modified:2w", "modified(1209600)" },
        { u"m:30m", "modified(1800)" },
        { u"used:1h", "used(3600)" },
        { u"us:5s", "used(5)" },
        { u"all:", "all()" },
        { u"al:", "all()" },
        { u"-all:", "-all()" },
        // A value that one row refuses goes on to the next
        { u"u:1h", "used(3600)" },
        { u"g:", "group()" },
        { u"gl:x", "text(gl:x)" },
        { u"e:maybe", "text(e:maybe)" },
        { u"c:1y", "text(c:1y)" },
        { u"c:1D", "text(c:1D)" },
        { u"c:", "text(c:)" },
        { u"c:d", "text(c:d)" },
        { u"foo:bar", "text(foo:bar)" },
        { u":", "text(:)" },
        { u":x", "text(:x)" },
        { u"g1:x", "text(g1:x)" },
        { u"groups:x", "text(groups:x)" },
        { u"n:a:b", "name(a:b)" },
        // Modifiers
        { u"t:⌘Tab", "trigger(\\x{2303}?\\x{2325}?\\x{21E7}?\\x{2318}Tab)" },
        { u"h:⇧⌃A", "hotkey(\\x{2303}\\x{2325}?\\x{21E7}\\x{2318}?A)" },
        { u"h:A⌘", "hotkey(A\\x{2318})" },
        { u"⌘⌃A", "text(\\x{2303}\\x{2318}A)" },
    };
    for ( const auto& [text, terms] : kCases )
        EXPECT_EQ( Parsed( text ), terms ) << UTF8FromText( text );
}

TEST( StringSearcher, AllTermsMustHoldAndNegatedOnesMustNot )
{
    constexpr struct
    {
        const char16_t* mText;
        bool mMatches;
    } kCases[] = {
        { u"", true },
        { u"all:", true },
        { u"-all:", false },
        { u"paste", true },
        { u"PLAIN insert", true },
        { u"paste nothing", false },
        { u"paste -insert", false },
        { u"-nothing", true },
        { u"foo:bar", true },
        { u"\"the text\"", true },
        { u"\"insert the\"", true },
        { u"\"insert text\"", false },
        { u"insertthe", false },
        // A UID only by what can be one, and a plain word neither by group nor by application
        { u"ab12", true },
        { u"e-ab", true },
        { u"ab1", false },
        { u"Finder", false },
        { u"Global", false },
        { u"-application:Finder", false },
        { u"-application:Mail", true },
        { u"a:", true },
        { u"group:macro", true },
        { u"name:paste", true },
        { u"name:insert", false },
        { u"trigger:pressed", true },
        { u"n:", true },
        { u"global:", false },
        { u"enabled:", true },
        { u"e:no", false },
        { u"-e:no", true },
        { u"created:1h", false },
        { u"created:2h", true },
        { u"modified:1h", true },
        { u"used:1w", false },
        // A key with any modifiers beside those that were typed
        { u"hotkey:V", true },
        { u"hotkey:⌘V", true },
        { u"hotkey:⌃V", true },
        { u"hotkey:⌘⌃V", true },
        { u"hotkey:⌥V", false },
        { u"hotkey:⌃⌥V", false },
        { u"⌃V", false },
        { u"⌘⌃V", true },
    };
    for ( const auto& [text, matches] : kCases )
        EXPECT_EQ( Finds( text ), matches ) << UTF8FromText( text );
}

TEST( StringSearcher, AnEmptyTermAsksForAnyTextOfItsKind )
{
    StringSearchee bare;
    bare.AddName( u"x" );
    EXPECT_FALSE( Finds( u"a:", bare ) );
    EXPECT_FALSE( Finds( u"hotkey:", bare ) );
    EXPECT_TRUE( Finds( u"name: -trigger:", bare ) );
}

TEST( StringSearcher, WhatASearchIsFollowsFromItsTerms )
{
    constexpr struct
    {
        const char16_t* mText;
        bool mUseless, mSpecial, mAll, mTime;
    } kCases[] = {
        { u"", true, false, true, false },
        { u"all: al:", false, true, true, false },
        { u"all: x", false, true, false, false },
        { u"-all:", false, true, false, false },
        { u"x", false, false, false, false },
        { u"-used:1d x", false, true, false, true },
    };
    for ( const auto& [text, useless, special, all, time] : kCases )
    {
        const StringSearcher searcher{ TextView( text ) };
        EXPECT_EQ( searcher.Useless(), useless ) << UTF8FromText( text );
        EXPECT_EQ( searcher.HasSpecial(), special ) << UTF8FromText( text );
        EXPECT_EQ( searcher.MatchesAll(), all ) << UTF8FromText( text );
        EXPECT_EQ( searcher.IsTimeSensitive(), time ) << UTF8FromText( text );
    }
}

TEST( StringSearcher, TheNextChangeIsWhenTheFirstTimeStopsBeingTrue )
{
    constexpr struct
    {
        const char16_t* mText;
        double mNext;
    } kCases[] = {
        { u"paste", 1314000000.0 }, { u"created:1d", 82800 }, { u"created:1d modified:1h", 3540 },
        { u"created:30m", 1314000000.0 },        // not true now, nor later
        { u"-created:1d", 1314000000.0 },        // negated terms give none
        { u"created:1d nothing", 82800 },        // it stays lowered when a later term fails
        { u"nothing created:1d", 1314000000.0 }, // a term behind the first failure isn't looked at
    };
    for ( const auto& [text, next] : kCases )
    {
        StringSearcher searcher{ TextView( text ) };
        (void)searcher.Matches( SampleMacro() );
        EXPECT_EQ( searcher.NextChange(), next ) << UTF8FromText( text );
    }
}

TEST( StringSearcher, TermsBeyondTheLimitAreLeftOut )
{
    Text text;
    for ( int i = 0; i < 1000; ++i )
        text += u"a ";
    EXPECT_EQ( StringSearcher( TextView( text ) ).GetTerms().size(), StringSearcher::kMaxTerms );
}

TEST( StringSearcher, ReasonsAreTheFirstElementForEachPositiveTerm )
{
    const StringSearchee macro = SampleMacro();
    const StringSearcher searcher{ TextView( u"plain -nothing all: enabled: text" ) };
    std::vector<std::string> kinds;
    for ( const StringSearchee::Element* const element : searcher.Reasons( macro ) )
        kinds.push_back( element ? UTF8FromText( element->mText ) : "none" );
    EXPECT_EQ( kinds, ( std::vector<std::string>{ "Paste Plain", "none", "1", "Insert\u2003 the  Text foo:bar" } ) );
}

TEST( StringSearcher, SamplesAndCompletionsAreSearchesThatMeanSomething )
{
    for ( const Text& completion : StringSearcher::SearchStringCompletions() )
        EXPECT_TRUE( StringSearcher( TextView( completion ) ).HasSpecial() ) << UTF8FromText( completion );
    XSeededRandom random( 1 );
    const XRandom::Substitute inUse( random );
    std::set<Text> samples;
    for ( int i = 0; i < 500; ++i )
        samples.insert( StringSearcher::RandomInitialSearchString() );
    EXPECT_EQ( samples.size(), 16u );
    for ( const Text& sample : samples )
        EXPECT_FALSE( StringSearcher( TextView( sample ) ).Useless() ) << UTF8FromText( sample );
}

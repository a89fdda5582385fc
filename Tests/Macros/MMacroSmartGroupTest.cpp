#include "Macros/MMacroSmartGroup.h"

#include "Tests/Macros/MacroFixtures.h"

#include <set>

namespace
{
struct SmartGroup : DomainWorld
{
    SmartGroup()
    {
        const auto named = []( TextView uid, TextView name ) { return MacroWith( uid, { { "Name", Str( name ) } } ); };
        mDomain.LoadFromPropertyList( FileWith( { GroupWith( u"G", { named( u"1", u"one" ), named( u"2", u"two" ) } ),
            GroupWith( u"H", { named( u"3", u"soon" ) } ) } ) );
    }

    std::set<std::string> Matching( std::initializer_list<__SafeCFPropertyList> inStrings )
    {
        std::set<std::string> uids;
        LoadedSmartGroup( SmartGroupWith( u"S", inStrings ) )->DoForEveryMacro( [&uids]( const MMacro& macro ) {
            uids.insert( macro.GetUID().GetUTF8() );
        } );
        return uids;
    }
};
} // namespace

TEST_F( SmartGroup, ItsStringsAreAlternativesAndAUselessOneMatchesNothing )
{
    using Uids = std::set<std::string>;
    EXPECT_EQ( Matching( {} ), Uids() );
    EXPECT_EQ( Matching( { Str( u"" ) } ), Uids() );
    EXPECT_EQ( Matching( { Str( u"one" ) } ), ( Uids{ "1" } ) );
    EXPECT_EQ( Matching( { Str( u"" ), Str( u"one" ), Str( u"soon" ), Str( u"none" ) } ), ( Uids{ "1", "3" } ) );
    EXPECT_EQ( Matching( { Str( u"none" ), Str( u"all:" ) } ), ( Uids{ "1", "2", "3" } ) );
    EXPECT_EQ( Matching( { Str( u"-all:" ) } ), Uids() );
    EXPECT_EQ( Matching( { Str( u"-name:one group:\"Group G\"" ) } ), ( Uids{ "2" } ) );
}

TEST_F( SmartGroup, ATimeSensitiveSearchSaysWhenItMayChange )
{
    const auto plain = LoadedSmartGroup( SmartGroupWith( u"S", { Str( u"one" ) } ) );
    const auto fresh = LoadedSmartGroup( SmartGroupWith( u"T", { Str( u"one" ), Str( u"modified:1h" ) } ) );
    EXPECT_FALSE( plain->IsTimeSensitive() );
    EXPECT_TRUE( fresh->IsTimeSensitive() );
    FoundMacro( u"1" ).SetModificationTime( mClock.Now() - 3500 ); // found by the other search already
    FoundMacro( u"2" ).SetModificationTime( mClock.Now() - 1000 );
    FoundMacro( u"3" ).SetModificationTime( mClock.Now() - 600 );
    const auto held = [&]( const MMacroSmartGroup& smartGroup, double& ioNext ) {
        std::vector<MMacro*> macros;
        smartGroup.GetEveryMacro( macros, ioNext );
        return macros.size();
    };
    double next = 3000;
    EXPECT_EQ( held( *plain, next ), 1u );
    EXPECT_EQ( next, 3000 );
    EXPECT_EQ( held( *fresh, next ), 3u );
    EXPECT_EQ( next, 2600 );
    mClock.Advance( next - 1 );
    EXPECT_EQ( held( *fresh, next ), 3u );
    mClock.Advance( 1 );
    EXPECT_EQ( held( *fresh, next ), 2u ) << "it changed when it said";
}

TEST_F( SmartGroup, ItWasModifiedWhenTheLatestOfItsMacrosWas )
{
    FoundMacro( u"2" ).SetModificationTime( 900 );
    EXPECT_EQ( LoadedSmartGroup( SmartGroupWith( u"S", { Str( u"two" ) } ) )->GetModificationTime(), 900 );
    EXPECT_EQ( LoadedSmartGroup( SmartGroupWith( u"S", { Str( u"one" ) } ) )->GetModificationTime(), 200 );
    EXPECT_EQ( LoadedSmartGroup( SmartGroupWith( u"S", { Str( u"none" ) } ) )->GetModificationTime(), 0 );
}

TEST_F( SmartGroup, KeysAreReadAndWrittenByTheirRules )
{
    struct Case
    {
        const char* mKey;
        __SafeCFPropertyList mRead, mWritten;
    };
    const Case kCases[] = {
        { "Name", Str( u"a\nb" ), Str( u"a\nb" ) }, // uncleaned
        { "Name", Str( u"Untitled Smart Group" ), nullptr },
        { "Name", Str( u"" ), nullptr },
        { "Name", nullptr, nullptr },
        { "SearchStrings", Array( { Str( u"x" ), Int( 1 ), Str( u"" ), Array( {} ) } ),
            Array( { Str( u"x" ), Str( u"" ) } ) },
        { "SearchStrings", Array( {} ), Array( {} ) },
        { "IsActive", Bool( false ), Bool( false ) },
    };
    for ( const auto& [key, read, written] : kCases )
    {
        const auto saved = LoadedSmartGroup( SmartGroupWith( u"S", { Str( u"x" ) }, { { key, read } } ) );
        EXPECT_EQ( Shown( At( saved->CopyToPropertyList(), key ) ), Shown( written ) ) << key;
    }
    EXPECT_EQ( At( MMacroSmartGroup().CopyToPropertyList(), "SearchStrings" ), Array( { Str( u"" ) } ) );
    try
    {
        (void)LoadedSmartGroup( SmartGroupWith( u"S", {}, { { "SearchStrings", Str( u"x" ) } } ) );
        ADD_FAILURE();
    }
    catch ( const XException& exception )
    {
        EXPECT_EQ( exception.GetMessage(), u"dictionary->Get( CFSTR(\"SearchStrings\"), strings )" );
    }
}

TEST_F( SmartGroup, AllMacrosIsBroughtUpToDate )
{
    const struct
    {
        const char16_t* mName;
        __SafeCFPropertyList mStrings, mWritten;
    } kCases[] = {
        { u"All Macros", Array( { Str( u"x" ), Str( u"y" ) } ), Array( { Str( u"all:" ) } ) },
        { u"All Macros", Array( {} ), Array( { Str( u"all:" ) } ) },
        { u"all macros", Array( { Str( u"x" ) } ), Array( { Str( u"x" ) } ) },
        { u"All Macros\n", Array( { Str( u"x" ) } ), Array( { Str( u"x" ) } ) },
    };
    for ( const auto& [name, strings, written] : kCases )
    {
        const auto group =
            LoadedSmartGroup( SmartGroupWith( u"S", {}, { { "Name", Str( name ) }, { "SearchStrings", strings } } ) );
        EXPECT_EQ( At( group->CopyToPropertyList(), "SearchStrings" ), written );
    }
}

TEST_F( SmartGroup, ACloneHasTheNameAndTheStrings )
{
    const auto group = LoadedSmartGroup( SmartGroupWith( u"S", { Str( u"x" ) }, { { "Name", Str( u"N" ) } } ) );
    const auto clone = group->Clone( CloneFor::kDisplayOnlyReference );
    EXPECT_EQ( With( clone->CopyToPropertyList(), "UID", Str( u"S" ) ), group->CopyToPropertyList() );
    EXPECT_NE( clone->GetUID(), group->GetUID() );
}

TEST_F( SmartGroup, EntriesOrderByKindThenByName )
{
    const auto smartGroup = LoadedSmartGroup( SmartGroupWith( u"S", {}, { { "Name", Str( u"a" ) } } ) );
    FoundGroup( u"G" ).SetName( u"a 10" );
    FoundGroup( u"H" ).SetName( u"A 9" );
    const MMacroSerializedObject* const kOrdered[] = { &FoundMacro( u"1" ), &FoundMacro( u"2" ), &FoundGroup( u"H" ),
        &FoundGroup( u"G" ), smartGroup.get() };
    for ( std::size_t i = 0; i < std::size( kOrdered ); ++i )
    {
        for ( std::size_t j = 0; j < std::size( kOrdered ); ++j )
            EXPECT_EQ( MMacroSmartGroup::CompareAlphabeticallyEntries( kOrdered[i], kOrdered[j] ),
                i < j       ? -1
                    : i > j ? 1
                            : 0 )
                << i << j;
    }
}

TEST_F( SmartGroup, ASearcherWithNothingToTestMatchesEveryMacroInTheSearchField )
{
    StringSearcher useless, one{ TextView( u"one" ) };
    EXPECT_TRUE( FoundMacro( u"2" ).MatchesTextSearch( useless ) );
    EXPECT_TRUE( FoundMacro( u"1" ).MatchesTextSearch( one ) );
    EXPECT_FALSE( FoundMacro( u"2" ).MatchesTextSearch( one ) );
}

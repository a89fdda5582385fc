// What holds for every macros file, shown on random ones.
#include "Macros/MLoadCheck.h"
#include "Tests/Macros/RandomMacrosFile.h"

#include <algorithm>
#include <set>

namespace
{
std::string Listed( const std::vector<MFinding>& inFindings )
{
    std::string list;
    for ( const MFinding& finding : inFindings )
        list += std::string( RowOf( finding.mRule ).mID ) + ( finding.IsLoss() ? "!" : "" ) + " " +
            UTF8FromText( finding.mPath ) + " " + UTF8FromText( finding.mKey ) + ": " + UTF8FromText( finding.mText ) +
            "\n";
    return list;
}

__SafeCFPropertyList Converted( const __SafeCFPropertyList& inFile )
{
    MMacroDomain domain;
    domain.LoadFromPropertyList( inFile );
    return domain.GetPropertyList();
}

// A save sorts the groups, and nothing depends on their order in a file.
__SafeCFPropertyList WithSortedGroups( const __SafeCFPropertyList& inFile )
{
    const XPlistArray* const groups = At( inFile, "MacroGroups" ).AsArray();
    std::vector<__SafeCFPropertyList> sorted;
    for ( std::size_t i = 0; i < groups->GetCount(); ++i )
        sorted.push_back( groups->GetValueAt( i ) );
    const auto place = []( const __SafeCFPropertyList& inGroup ) {
        const bool isDictionary = inGroup.AsDictionary();
        return std::pair(
            isDictionary and At( inGroup, "Macros" ).AsArray(), isDictionary ? TextAt( inGroup, "UID" ) : Text() );
    };
    std::stable_sort(
        sorted.begin(), sorted.end(), [&]( const auto& a, const auto& b ) { return place( a ) < place( b ); } );
    XMutableArray array;
    for ( const auto& group : sorted )
        array.Append( group );
    return With( inFile, "MacroGroups", array.Seal() );
}

void ExpectEveryUIDOnce( const __SafeCFPropertyList& inFile )
{
    std::set<Text> uids, toggles;
    const auto add = []( std::set<Text>& ioSet, const __SafeCFPropertyList& inObject, const char* inKey ) {
        EXPECT_TRUE( ioSet.insert( TextAt( inObject, inKey ) ).second ) << Shown( inObject );
    };
    const auto groups = At( inFile, "MacroGroups" );
    for ( const XPlistNode* const node : groups.AsArray()->Nodes() )
    {
        const __SafeCFPropertyList group( node );
        add( uids, group, "UID" );
        const auto macros = At( group, "Macros" );
        if ( not macros )
            continue;
        add( toggles, group, "ToggleMacroUID" );
        for ( const XPlistNode* const macro : macros.AsArray()->Nodes() )
            add( uids, __SafeCFPropertyList( macro ), "UID" );
    }
    EXPECT_FALSE( uids.contains( u"" ) or toggles.contains( u"" ) );
}
} // namespace

using MacrosFile = MacroWorld;

TEST_F( MacrosFile, WhatWasSavedOnceIsSavedAgainUnchanged )
{
    for ( std::uint64_t seed = 1; seed <= 400; ++seed )
    {
        const auto file = RandomMacrosFile( seed ).Next();
        const auto first = Converted( file );
        const auto read = ReadPropertyList( WriteBinaryPropertyList( first ).Span() );
        ASSERT_EQ( read.mValue, first ) << "seed " << seed;
        ASSERT_EQ( WithoutStamps( Converted( read.mValue ) ), WithoutStamps( first ) ) << "seed " << seed;
        ExpectEveryUIDOnce( first );
        const auto check = CheckFile( first );
        ASSERT_TRUE( check.mFindings.empty() ) << "seed " << seed << "\n" << Listed( check.mFindings );
        ASSERT_FALSE( HasFailure() ) << "seed " << seed;
    }
    EXPECT_EQ( mLog.CountContaining( "Assertion Failed: MMacroInsertion::CurrentlyInserting()" ), 0u );
}

TEST_F( MacrosFile, CheckReportsNothingExactlyWhenASaveWouldChangeNothing )
{
    std::size_t quiet = 0, told = 0;
    for ( std::uint64_t seed = 1; seed <= 1500; ++seed )
    {
        RandomMacrosFile random( seed );
        auto file = Converted( random.Next() );
        for ( std::size_t count = random.Below( 3 ); count > 0; --count )
            file = random.Damaged( file );
        if ( FileKindOf( file ) != MFileKind::kMacrosFile )
            continue;
        // Each run has UUIDs of its own, so a fresh one would differ between the two.
        const auto check = CheckFile( file );
        const auto saved = Converted( file );
        const bool changes = not( WithSortedGroups( WithoutStamps( file ) ) == WithoutStamps( saved ) );
        ASSERT_EQ( check.mFindings.empty(), not changes )
            << "seed " << seed << "\n"
            << Listed( check.mFindings ) << Shown( file ) << Shown( saved );
        ++( changes ? told : quiet );
    }
    // Neither side may be so rare that the test says nothing.
    EXPECT_GT( quiet, 300u );
    EXPECT_GT( told, 300u );
}

TEST_F( MacrosFile, NoDamageStopsALoadOrLeavesAnInsertionOpen )
{
    for ( std::uint64_t seed = 1; seed <= 300; ++seed )
    {
        RandomMacrosFile random( seed );
        auto file = random.Next();
        for ( std::size_t count = 8; count > 0; --count )
            file = random.Damaged( file );
        MMacroDomain domain;
        try
        {
            domain.LoadFromPropertyList( file );
        }
        catch ( const XException& )
        {
            EXPECT_FALSE( file.AsDictionary() and At( file, "MacroGroups" ).AsArray() ) << "seed " << seed;
        }
        ASSERT_FALSE( MMacroInsertion::CurrentlyInserting() ) << "seed " << seed;
        const auto first = domain.GetPropertyList();
        domain.LoadFromPropertyList( first );
        ASSERT_EQ( WithoutStamps( domain.GetPropertyList() ), WithoutStamps( first ) ) << "seed " << seed;
    }
}

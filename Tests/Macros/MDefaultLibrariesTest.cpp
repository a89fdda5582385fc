#include "Macros/MDefaultLibraries.h"

#include "App/MacroOutline.h"
#include "KorvalenResources.h"
#include "Macros/MLoadCheck.h"
#include "Tests/Macros/MacrosFileWorld.h"

#include <map>

namespace
{
__SafeCFPropertyList LibraryIn( const KorvalenResource& inResource )
{
    return ReadPropertyList( XBytes( inResource.mBytes ).Span() ).mValue;
}

using DefaultLibraries = MacrosFileWorld;

/// The libraries of which an object is in the domain.
std::set<std::string> LibrariesInDomain()
{
    std::set<std::string> found;
    for ( const KorvalenResource& resource : KorvalenLibraryResources() )
    {
        const auto library = LibraryIn( resource );
        const auto group = At( library, "Items" ).AsArray()->GetValueAt( 0 );
        const auto macros = At( group, "Macros" );
        const auto object = macros ? macros.AsArray()->GetValueAt( 0 ) : group;
        if ( MMacroSerializedObject::FindObjectByUID( TextAt( object, "UID" ) ) )
            found.insert( UTF8FromText( TextAt( library, "UID" ) ) );
    }
    return found;
}
} // namespace

TEST( DefaultLibraryFiles, EachIsAWholeLibraryThatALoadChangesNothingIn )
{
    std::set<Text> uids;
    std::vector<std::string_view> names;
    for ( const KorvalenResource& resource : KorvalenLibraryResources() )
    {
        names.push_back( resource.mName );
        const auto library = LibraryIn( resource );
        ASSERT_TRUE( library.AsDictionary() ) << resource.mName;
        EXPECT_EQ( KeysOf( library ),
            ( std::vector<std::string>{ "Author", "AuthorURL", "CanDragToMacroGroup", "Category1", "Category2",
                "Description", "Items", "UID" } ) )
            << resource.mName;
        EXPECT_FALSE( TextAt( library, "Description" ).empty() ) << resource.mName;
        EXPECT_EQ( UTF8FromText( TextAt( library, "UID" ) ) + ".kvlibrary", resource.mName );
        uids.insert( TextAt( library, "UID" ) );

        const MFileCheck check = CheckFile( library );
        EXPECT_EQ( check.mKind, MFileKind::kLibrary );
        EXPECT_TRUE( check.mFindings.empty() )
            << resource.mName << ": " << UTF8FromText( check.mFindings.front().mText );
        EXPECT_GE( check.mContents.mMacros + check.mContents.mSmartGroups, 1u ) << resource.mName;
        EXPECT_GE( check.mContents.mActions, check.mContents.mMacros ) << "a macro that does nothing";
    }
    EXPECT_TRUE( std::is_sorted( names.begin(), names.end() ) );
    ASSERT_EQ( MDefaultLibraries::Rows().size(), uids.size() );
    for ( const auto& [uid, version] : MDefaultLibraries::Rows() )
        EXPECT_TRUE( uids.contains( Text( uid ) ) ) << UTF8FromText( uid );
}

TEST( DefaultLibraryFiles, NoTwoMacrosAskForTheSameKey )
{
    std::map<std::pair<std::string, std::string>, Text> names;
    const auto note = [&names]( const __SafeCFPropertyList& inMacro ) {
        const auto triggers = At( inMacro, "Triggers" );
        for ( std::size_t i = 0; i < triggers.AsArray()->GetCount(); ++i )
        {
            const auto trigger = triggers.AsArray()->GetValueAt( i );
            if ( TextAt( trigger, "MacroTriggerType" ) != u"HotKey" )
                continue;
            const auto [other, isNew] = names.try_emplace(
                { Shown( At( trigger, "KeyCode" ) ), Shown( At( trigger, "Modifiers" ) ) }, TextAt( inMacro, "Name" ) );
            EXPECT_TRUE( isNew ) << UTF8FromText( other->second ) << " and "
                                 << UTF8FromText( TextAt( inMacro, "Name" ) );
        }
    };
    for ( const KorvalenResource& resource : KorvalenLibraryResources() )
    {
        const auto items = At( LibraryIn( resource ), "Items" );
        const auto macros = At( items.AsArray()->GetValueAt( 0 ), "Macros" );
        for ( std::size_t i = 0; macros and i < macros.AsArray()->GetCount(); ++i )
            note( macros.AsArray()->GetValueAt( i ) );
    }
    EXPECT_GE( names.size(), 10u );
}

TEST_F( DefaultLibraries, AFileTakesThoseThatItsVersionHasNotBeenOffered )
{
    const std::string kFilters = "Clipboard Filters", kAll = "All Macros Smart Group",
                      kEnabled = "Enabled Macros Smart Group", kByName = "Trigger Macro by Name",
                      kRecord = "Record Quick Macros", kLauncher = "Activate Application Launcher",
                      kWeb = "Search the Web", kPaste = "Paste Selection Into Last Application";
    const std::set<std::string> above44{ kFilters, kAll, kEnabled, kByName, kRecord };
    auto above43 = above44;
    above43.insert( kLauncher );
    auto above35 = above43;
    above35.insert( { kWeb, kPaste } );
    auto all = above35;
    all.insert( { "Activate Application Switcher", "Activate Clipboard History Switcher",
        "Activate Named Clipboard Switchers", "Activate Window Switcher" } );
    const struct
    {
        std::int64_t mVersion, mDefaults;
        std::set<std::string> mAdded;
    } kRows[] = {
        { 0, 0, all },
        { 39, 0, all },
        { 39, 1, above35 },
        { 0, 7, above35 },
        { 40, 0, above43 },
        { 40, 1, above43 },
        { 40, 2, above44 },
        { 41, 0, above35 },
        { 43, 0, above43 },
        { 44, 9, above44 },
        { 69, 0, { kFilters, kAll, kEnabled } },
        { 89, 0, { kFilters } },
        { 90, 0, {} },
        { 91, 0, {} },
        { 92, 0, {} },
        { -1, 0, all },
        { std::int64_t( 1 ) << 33, 0, all },
    };
    for ( const auto& [version, defaults, added] : kRows )
    {
        const auto file = With( CurrentFile( u"Mine" ),
            { { "MacroPreferencesVersion", Int( version ) }, { "MacroDefaultsVersion", Int( defaults ) } } );
        std::filesystem::remove( mFolder / "Korvalen Macros Saved Version 8.plist" );
        StartWith( file );
        EXPECT_EQ( LibrariesInDomain(), added ) << version << ' ' << defaults;
        EXPECT_TRUE( HasGroup( u"Mine" ) );
        EXPECT_EQ( mDomain->GetMacroPreferencesVersion(), version == 92 ? 92u : 91u );
        const bool isOld = version < 91 or version > 92;
        EXPECT_EQ( mFolder.Read( "Korvalen Macros Saved Version 8.plist" ), isOld ? BytesOf( file ) : "" ) << version;
        EXPECT_EQ( MacrosFile() != BytesOf( file ), isOld ) << "a load that changed nothing writes nothing " << version;
        for ( const auto& row : MDefaultLibraries::Rows() )
            EXPECT_TRUE( ImportedLibraries::WasImported( row.mUID ) );
    }
}

TEST_F( DefaultLibraries, WhatWasImportedIsStoredOnceAndReadAgain )
{
    (void)KVPreferences::Set( KVPreferences::kImportedLibrariesID, std::set<Text>{ u"Old" } );
    EXPECT_TRUE( ImportedLibraries::WasImported( u"Old" ) );
    EXPECT_FALSE( ImportedLibraries::WasImported( u"New" ) );
    ImportedLibraries::Imported( u"New" );
    mDisk.mCount = 0;
    ImportedLibraries::Imported( u"New" );
    EXPECT_EQ( mDisk.mCount, 0 ) << "what is known isn't written again";
    ImportedLibraries::Reset();
    EXPECT_TRUE( ImportedLibraries::WasImported( u"New" ) );
    EXPECT_EQ( KVPreferences::GetSet( KVPreferences::kImportedLibrariesID ), ( std::set<Text>{ u"New", u"Old" } ) );
}

TEST_F( DefaultLibraries, EachMacroTellsWhatItDoes )
{
    Start();
    std::size_t macros = 0;
    mDomain->DoForEveryMacro( [&macros]( MMacroGroup&, MMacro& macro ) {
        ++macros;
        const auto outline = OutlineAsValue( macro );
        EXPECT_NE( TextAt( outline, "name" ), u"" );
        const auto actions = At( outline, "actions" );
        ASSERT_TRUE( actions.AsArray() ) << UTF8FromText( macro.GetName() );
        EXPECT_GE( actions.AsArray()->GetCount(), 1u ) << UTF8FromText( macro.GetName() );
        for ( std::size_t i = 0; i < actions.AsArray()->GetCount(); ++i )
        {
            const auto action = actions.AsArray()->GetValueAt( i );
            EXPECT_FALSE( TextAt( action, "title" ).empty() ) << UTF8FromText( macro.GetName() );
            EXPECT_FALSE( TextAt( action, "description" ).empty() ) << UTF8FromText( macro.GetName() );
        }
    } );
    EXPECT_EQ( macros, 29u );
}

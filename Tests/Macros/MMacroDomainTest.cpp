#include "Macros/MMacroDomain.h"

#include "Tests/Macros/MacroFixtures.h"
#include "Triggers/TTriggerManagerDomain.h"

using Domain = DomainWorld;

namespace
{
__SafeCFPropertyList Named( TextView inUID, TextView inName, std::initializer_list<__SafeCFPropertyList> inMacros = {},
    std::initializer_list<PlistEntry> inEntries = {} )
{
    return With( GroupWith( inUID, inMacros, inEntries ), "Name", Str( inName ) );
}
} // namespace

TEST_F( Domain, ThereIsOne )
{
    EXPECT_EQ( MMacroDomain::Get(), &mDomain );
    try
    {
        const MMacroDomain second;
        ADD_FAILURE();
    }
    catch ( const XException& exception )
    {
        EXPECT_EQ( exception.GetMessage(), u"gMacroDomain == nullptr" );
    }
    EXPECT_EQ( MMacroDomain::Get(), &mDomain );
}

TEST_F( Domain, AFileIsWrittenWithSmartGroupsFirstEachSortedByUID )
{
    const auto saved = SavedAfterLoading(
        FileWith( { GroupWith( u"b", {} ), GroupWith( u"C", {} ), SmartGroupWith( u"z", {} ),
                      GroupWith( u"\uFF21", {} ), SmartGroupWith( u"a", {} ), GroupWith( u"\U0001F600", {} ) },
            { { "MacroDefaultsVersion", Int( 4294967295ll ) }, { "MacroPreferencesVersion", Int( 91 ) } } ) );
    EXPECT_THAT( KeysOf( saved ),
        testing::ElementsAre( "MacroDefaultsVersion", "MacroGroups", "MacroPreferencesVersion", "PreferenceSaveUUID",
            "PreferenceSavedDate", "Version" ) );
    std::vector<Text> uids;
    const auto groups = At( saved, "MacroGroups" );
    for ( std::size_t i = 0; i < groups.AsArray()->GetCount(); ++i )
        uids.push_back( TextAt( groups.AsArray()->GetValueAt( i ), "UID" ) );
    EXPECT_THAT( uids, testing::ElementsAre( u"a", u"z", u"C", u"b", u"\U0001F600", u"\uFF21" ) );
    EXPECT_EQ( At( saved, "MacroDefaultsVersion" ), Int( 4294967295ll ) );
    EXPECT_EQ( At( saved, "MacroPreferencesVersion" ), Int( 91 ) );
    EXPECT_EQ( TextAt( saved, "PreferenceSaveUUID" ), MMacroDomain::LastSaveUUID().GetText() );
}

TEST_F( Domain, TwoSavesDifferOnlyInTheirUUID )
{
    mDomain.LoadFromPropertyList(
        FileWith( { GroupWith( u"G", { MacroWith( u"M" ) } ), SmartGroupWith( u"S", {} ) } ) );
    const auto first = mDomain.GetPropertyList(), second = mDomain.GetPropertyList();
    EXPECT_NE( TextAt( first, "PreferenceSaveUUID" ), TextAt( second, "PreferenceSaveUUID" ) );
    EXPECT_EQ( With( first, "PreferenceSaveUUID", nullptr ), With( second, "PreferenceSaveUUID", nullptr ) );
}

TEST_F( Domain, VersionsThatAreNoneAreZero )
{
    const struct
    {
        __SafeCFPropertyList mRead;
        std::uint32_t mVersion;
    } kCases[] = { { Int( 91 ), 91 }, { Int( 4294967295ll ), 4294967295u }, { Int( 1ll << 33 ), 0 }, { Int( -1 ), 0 },
        { Real( 90 ), 90 }, { Real( 90.5 ), 0 }, { Str( u"91" ), 0 }, { nullptr, 0 },
        { XPlistNumber::MakeUnsigned( ~0ull ), 0 } };
    for ( const auto& [read, version] : kCases )
    {
        mDomain.LoadFromPropertyList(
            FileWith( {}, { { "MacroPreferencesVersion", read }, { "MacroDefaultsVersion", read } } ) );
        EXPECT_EQ( mDomain.GetMacroPreferencesVersion(), version ) << Shown( read );
        EXPECT_EQ( mDomain.GetMacroDefaultsVersion(), version ) << Shown( read );
    }
}

TEST_F( Domain, TheDateAndTheUUIDOfTheFileAreRemembered )
{
    EXPECT_EQ( mDomain.GetLastSaveDate(), XText( u"" ) );
    mDomain.LoadFromPropertyList(
        FileWith( {}, { { "PreferenceSavedDate", Str( u"2024_03_01" ) }, { "PreferenceSaveUUID", Str( u"U" ) } } ) );
    EXPECT_EQ( mDomain.GetLastSaveDate(), XText( u"2024_03_01" ) );
    EXPECT_EQ( MMacroDomain::LastLoadUUID(), XText( u"U" ) );
    mDomain.LoadFromPropertyList(
        FileWith( {}, { { "PreferenceSavedDate", Int( 1 ) }, { "PreferenceSaveUUID", Int( 1 ) } } ) );
    EXPECT_EQ( mDomain.GetLastSaveDate(), XText( u"0000_01_01" ) );
    EXPECT_TRUE( MMacroDomain::LastLoadUUID().IsNull() );
}

TEST_F( Domain, ABadFileLeavesEverythingButTheDate )
{
    const auto file =
        FileWith( { GroupWith( u"G", { MacroWith( u"M" ) } ) }, { { "MacroPreferencesVersion", Int( 7 ) } } );
    mDomain.LoadFromPropertyList( file );
    const auto before = WithoutStamps( mDomain.GetPropertyList() );
    const struct
    {
        __SafeCFPropertyList mFile;
        const char16_t* mMessage;
    } kCases[] = {
        { nullptr, u"dictionary && dictionary->IsCorrectTypeID()" },
        { Array( {} ), u"dictionary && dictionary->IsCorrectTypeID()" },
        { Dict( {} ), u"dictionary->Get( CFSTR(\"MacroGroups\"), macroGroups )" },
        { Dict( { { "MacroGroups", Dict( {} ) }, { "MacroPreferencesVersion", Int( 9 ) } } ),
            u"dictionary->Get( CFSTR(\"MacroGroups\"), macroGroups )" },
    };
    for ( const auto& [bad, message] : kCases )
    {
        try
        {
            mDomain.LoadFromPropertyList( bad );
            ADD_FAILURE() << Shown( bad );
        }
        catch ( const XException& exception )
        {
            EXPECT_EQ( exception.GetMessage(), message );
        }
        EXPECT_EQ( WithoutStamps( mDomain.GetPropertyList() ), before );
        EXPECT_EQ( mDomain.GetLastSaveDate(), XText( u"" ) );
        EXPECT_FALSE( MMacroInsertion::CurrentlyInserting() );
    }
}

TEST_F( Domain, ADamagedEntryIsLostAlone )
{
    mDomain.LoadFromPropertyList( FileWith( { Int( 1 ), GroupWith( u"G", { MacroWith( u"M" ), Str( u"x" ) } ),
        Str( u"x" ), Dict( {} ), Dict( { { "Macros", Str( u"x" ) } } ),
        Dict( { { "Activate", Str( u"OnceWithPalette" ) }, { "Macros", Array( {} ) } } ),
        Dict( { { "SearchStrings", Array( {} ) }, { "Macros", Str( u"not a list" ) } } ) } ) );
    EXPECT_EQ( mDomain.GetMacroGroupCount(), 2u );
    EXPECT_EQ( mDomain.GetMacroSmartGroupCount(), 1u );
    EXPECT_EQ( FoundGroup( u"G" ).GetMacroCount(), 1u );
    EXPECT_FALSE( MMacroInsertion::CurrentlyInserting() );
}

TEST_F( Domain, AReloadKeepsUIDsAndRewritesNoReference )
{
    const auto file = FileWith( { GroupWith(
        u"G", { MacroWith( u"M" ), MacroWith( u"M", { { "Actions", Array( { ExecuteMacro( u"M" ) } ) } } ) } ) } );
    const auto first = SavedAfterLoading( file );
    EXPECT_EQ( mLog.CountContaining( "Duplicate UID ignored" ), 1u );
    const auto macros = At( OnlyEntry( first ), "Macros" );
    EXPECT_EQ( TextAt( macros.AsArray()->GetValueAt( 0 ), "UID" ), u"M" );
    EXPECT_NE( TextAt( macros.AsArray()->GetValueAt( 1 ), "UID" ), u"M" );
    EXPECT_THAT( ReferencesOf( macros.AsArray()->GetValueAt( 1 ) ), testing::ElementsAre( u"M" ) );
    EXPECT_EQ( WithoutStamps( SavedAfterLoading( first ) ), WithoutStamps( first ) );
}

TEST_F( Domain, AnImportMergesWithTheGroupOfTheSameNameAndTarget )
{
    const auto target = Targeting( u"Included", { u"A" } );
    mDomain.LoadFromPropertyList(
        FileWith( { Named( u"G", u"Mine", { MacroWith( u"M" ) }, { { "Targeting", target } } ) } ) );
    const auto import = [this]( const __SafeCFPropertyList& inGroup, bool inDisable = false ) {
        std::vector<MMacro*> macros;
        std::vector<MMacroSmartGroup*> smartGroups;
        EXPECT_EQ( mDomain.MergePropertyListFromArray( Array( { inGroup } ), inDisable, macros, smartGroups ), 1u );
        EXPECT_EQ( macros.size(), 1u );
        return macros.at( 0 );
    };
    const struct
    {
        __SafeCFPropertyList mGroup;
        const char16_t* mOwner; // the UID of the group in which its macro is then
    } kCases[] = {
        { Named( u"H", u"MINE", { MacroWith( u"N" ) }, { { "Targeting", target } } ), u"G" },
        { Named( u"I", u"Mine", { MacroWith( u"O" ) } ), u"I" }, // another target
        { Named( u"J", u"Mine", { MacroWith( u"P" ) }, { { "Targeting", Targeting( u"Included", { u"B" } ) } } ),
            u"J" },
        // For All the applications don't count.
        { Named( u"K", u"mine", { MacroWith( u"Q" ) }, { { "Targeting", Targeting( u"All", { u"B" } ) } } ), u"I" },
    };
    for ( const auto& [group, owner] : kCases )
        EXPECT_EQ( import( group )->GetOwningGroup()->GetUID(), XText( owner ) ) << Shown( group );
    EXPECT_EQ( MMacroSerializedObject::FindObjectByUID( u"H" ), nullptr );

    // Disabling takes the highest level that touches nothing that was there.
    EXPECT_FALSE(
        import( Named( u"L", u"Mine", { MacroWith( u"R" ) }, { { "Targeting", target } } ), true )->IsActive() );
    EXPECT_TRUE( FoundGroup( u"G" ).IsActive() );
    const MMacro* const inNew = import( Named( u"N1", u"New", { MacroWith( u"S" ) } ), true );
    EXPECT_TRUE( inNew->IsActive() );
    EXPECT_FALSE( inNew->GetOwningGroup()->IsActive() );
    FoundGroup( u"G" ).SetIsActive( false );
    EXPECT_TRUE(
        import( Named( u"L", u"Mine", { MacroWith( u"T" ) }, { { "Targeting", target } } ), true )->IsActive() );
}

TEST_F( Domain, ReferencesFollowAnImport )
{
    const auto first = MacroWith( u"M", { { "Actions", Array( { ExecuteMacro( u"M" ), ExecuteMacro( u"G" ) } ) } } );
    mDomain.LoadFromPropertyList( FileWith( { Named( u"G", u"Mine", { first } ) } ) );
    std::vector<MMacro*> macros;
    std::vector<MMacroSmartGroup*> smartGroups;

    // The same group again: its UID is taken, so it had another for a moment; the reference ends at the one found.
    EXPECT_EQ(
        mDomain.MergePropertyListFromArray(
            Array( { Named( u"G", u"Mine", { first } ), SmartGroupWith( u"S", {} ) } ), false, macros, smartGroups ),
        2u );
    const MMacro& copy = *macros.at( 0 );
    EXPECT_NE( copy.GetUID(), XText( u"M" ) );
    EXPECT_THAT( ReferencesOf( copy.CopyToPropertyList() ), testing::ElementsAre( copy.GetUID().GetText(), u"G" ) );
    EXPECT_EQ( smartGroups.at( 0 )->GetUID(), XText( u"S" ) );
    EXPECT_EQ( mLog.CountContaining( "Assertion Failed" ), 0u );

    // A group that came under a UID of its own: references to it lead to the one that was found.
    macros.clear();
    EXPECT_EQ( mDomain.MergePropertyListFromArray(
                   Array( { Named(
                       u"H", u"mine", { MacroWith( u"N", { { "Actions", Array( { ExecuteMacro( u"H" ) } ) } } ) } ) } ),
                   false, macros, smartGroups ),
        1u );
    EXPECT_THAT( ReferencesOf( macros.at( 0 )->CopyToPropertyList() ), testing::ElementsAre( u"G" ) );
    // A group whose UID another group here has, and whose name and target those of a third: X is G for what came in.
    macros.clear();
    mDomain.InsertMacroGroup( LoadedGroup( Named( u"X", u"Other" ) ) );
    EXPECT_EQ( mDomain.MergePropertyListFromArray(
                   Array( { Named(
                       u"X", u"mine", { MacroWith( u"O", { { "Actions", Array( { ExecuteMacro( u"X" ) } ) } } ) } ) } ),
                   false, macros, smartGroups ),
        1u );
    EXPECT_THAT( ReferencesOf( macros.at( 0 )->CopyToPropertyList() ), testing::ElementsAre( u"G" ) );

    // What was there before is nobody's business.
    EXPECT_THAT( ReferencesOf( FoundMacro( u"M" ).CopyToPropertyList() ), testing::ElementsAre( u"M", u"G" ) );
    EXPECT_EQ( mLog.CountContaining( "Assertion Failed" ), 0u );
}

TEST_F( Domain, AMergeThatThrowsLeavesItsInsertionOpenForTheNextStartToReport )
{
    EXPECT_THROW( mDomain.MergePropertyListFromArray( Array( { Str( u"x" ) } ) ), XException );
    EXPECT_TRUE( MMacroInsertion::CurrentlyInserting() );
    EXPECT_EQ( mDomain.MergePropertyListFromArray( Str( u"no array" ) ), 0u );
    EXPECT_EQ( mLog.CountAssertions( "!CurrentlyInserting()" ), 1u );
    EXPECT_FALSE( MMacroInsertion::CurrentlyInserting() );
}

TEST_F( Domain, TheDefaultGroupIsFoundByNameAndReachElseMade )
{
    mDomain.LoadFromPropertyList( FileWith(
        { Named( u"A", u"global macro group", {}, { { "Targeting", Targeting( u"Included", { u"A" } ) } } ) } ) );
    MMacroGroup* const made = mDomain.GetDefaultMacroGroup();
    EXPECT_NE( made, &FoundGroup( u"A" ) ) << "it isn't global";
    EXPECT_TRUE( made->IsDefaultMacroGroup() );
    EXPECT_EQ( mDomain.GetDefaultMacroGroup(), made );
    EXPECT_FALSE( MMacroInsertion::CurrentlyInserting() );
    EXPECT_EQ( mDomain.GetMacroGroupCount(), 2u );

    mDomain.DeleteMacroGroupEntry( made );
    EXPECT_EQ( mLog.CountAssertions( "false" ), 1u );
    EXPECT_EQ( mDomain.GetDefaultMacroGroup(), made );
    mDomain.DeleteMacroGroupEntry( &FoundGroup( u"A" ) );
    EXPECT_EQ( mDomain.GetMacroGroupCount(), 1u );

    mDomain.LoadFromPropertyList( FileWith( { Named( u"B", u"GLOBAL macro group" ) } ) );
    EXPECT_EQ( mDomain.GetDefaultMacroGroup(), &FoundGroup( u"B" ) ) << "without regard to case";
}

TEST_F( Domain, UntitledNamesAreNumberedFromTwo )
{
    EXPECT_EQ( mDomain.GetUntitledMacroGroupName(), u"Untitled Macro Group" );
    mDomain.LoadFromPropertyList(
        FileWith( { GroupWith( u"A", {}, { { "Name", nullptr } } ), Named( u"B", u"UNTITLED Macro Group 2" ),
            Named( u"C", u"Untitled Macro Group 4" ), SmartGroupWith( u"S", {} ) } ) );
    EXPECT_EQ( mDomain.GetUntitledMacroGroupName(), u"Untitled Macro Group 3" );
    EXPECT_EQ( mDomain.GetUntitledMacroSmartGroupName(), u"Untitled Smart Group 2" );
    EXPECT_TRUE( mDomain.MacroGroupWithNameExists( u"untitled macro group" ) );
    EXPECT_FALSE( mDomain.MacroSmartGroupWithNameExists( u"Untitled Macro Group" ) );
}

TEST_F( Domain, TimesAreSetWhereTheyAreMissing )
{
    mDomain.LoadFromPropertyList( FileWith(
        { GroupWith( u"G", { MacroWith( u"M" ) } ), SmartGroupWith( u"S", {}, { { "CreationDate", nullptr } } ) } ) );
    EXPECT_TRUE( mDomain.SetTimesIfNotSet() );
    EXPECT_FALSE( mDomain.SetTimesIfNotSet() );
    EXPECT_EQ( MMacroSerializedObject::FindObjectByUID( u"S" )->GetCreationTime(), mClock.Now() );
    EXPECT_EQ( FoundMacro( u"M" ).GetCreationTime(), 100 );
}

TEST_F( Domain, TheVersionOfAFilesBytes )
{
    const auto version = []( const __SafeCFPropertyList& inValue ) {
        return MMacroDomain::VersionFromFileData( WriteBinaryPropertyList( inValue ).Span() );
    };
    EXPECT_EQ( version( Dict( { { "Version", Str( u"2.3" ) } } ) ), u"2.3" );
    EXPECT_EQ( mLog.CountContaining( "Assertion Failed" ), 0u );
    const std::uint8_t kNonsense[] = { 'x' };
    const struct
    {
        std::function<Text()> mAsk;
        const char* mExpression;
    } kCases[] = {
        { [] { return MMacroDomain::VersionFromFileData( {} ); }, "data" },
        { [&] { return MMacroDomain::VersionFromFileData( kNonsense ); }, "properties" },
        { [&] { return version( Array( {} ) ); }, "[properties isKindOfClass:[NSDictionary class]]" },
        { [&] {
             return version( Dict( { { "Version", Int( 2 ) } } ) );
         },
            "version" },
    };
    for ( const auto& [ask, expression] : kCases )
    {
        (void)mLog.Take();
        EXPECT_EQ( ask(), u"1.0.0d1" );
        EXPECT_EQ( mLog.CountContaining( "Assertion Failed" ), 1u ) << expression;
        EXPECT_EQ( mLog.CountAssertions( expression ), 1u ) << expression;
    }
    EXPECT_EQ( TextAt( mDomain.GetPropertyList(), "Version" ), MMacroDomain::GetOurVersion() );
}

TEST_F( Domain, TerminateEndsTheTriggerManagers )
{
    int created = 0, ended = 0;
    TTriggerManagerDomain::Install( [&] { ++created; }, [&] { ++ended; } );
    TTriggerManagerDomain::CreateTriggerManagers();
    MMacroDomain::Terminate();
    TTriggerManagerDomain::Install( {}, {} );
    MMacroDomain::Terminate();
    EXPECT_EQ( created, 1 );
    EXPECT_EQ( ended, 1 );
}

#include "Macros/MMacroGroup.h"

#include "Defines/KVIconRegistry.h"
#include "Defines/KVPreferences.h"
#include "Macros/KVMacroEnableOverrides.h"
#include "Macros/MMacroPreferenceFile.h"
#include "Tests/Macros/MacroFixtures.h"
#include "Tests/Support/ScratchFolder.h"
#include "Utility/Search/StringSearchee.h"

using MacroGroup = MacroWorld;

namespace
{
constexpr char16_t kDefaultName[] = u"Global Macro Group";

XApplicationIdentifier App( const char16_t* inName )
{
    return XApplicationIdentifier( inName, nullptr );
}
} // namespace

TEST_F( MacroGroup, EachKeyIsReadWithItsDefaultAndWrittenByItsRule )
{
    struct Case
    {
        const char* mKey;
        __SafeCFPropertyList mRead, mWritten;
    };
    const Case kCases[] = {
        { "Name", Str( u"a\r\nb" ), Str( u"ab" ) },
        { "Name", Str( u"\n" ), nullptr },
        { "Name", Str( u"Untitled Macro Group" ), nullptr },
        { "Name", Str( u"Untitled\n Macro Group" ), nullptr }, // cleaned first, then judged
        { "Name", nullptr, nullptr },
        { "Name", Int( 1 ), nullptr },
        { "Activate", Str( u"WithPalette" ), Str( u"WithPalette" ) },
        { "Activate", Str( u"withpalette" ), Str( u"Normal" ) },
        { "Activate", nullptr, Str( u"Normal" ) },
        { "KeyCode", Int( 0 ), Int( 0 ) },
        { "KeyCode", Int( 65535 ), Int( 65535 ) },
        { "KeyCode", Int( 65536 ), Int( 32767 ) },
        { "KeyCode", Int( -1 ), Int( 32767 ) },
        { "KeyCode", Int( 1ll << 32 ), Int( 32767 ) },
        { "KeyCode", Str( u"3" ), Int( 32767 ) },
        { "KeyCode", nullptr, Int( 32767 ) },
        { "Modifiers", Int( 4294967295ll ), Int( 4294967295ll ) },
        { "Modifiers", Int( 4294967296ll ), Int( 0 ) },
        { "Modifiers", Int( -1 ), Int( 0 ) },
        { "Modifiers", nullptr, Int( 0 ) },
        { "AddToMacroPalette", Bool( true ), Bool( true ) },
        { "AddToMacroPalette", nullptr, Bool( false ) },
        { "AddToStatusMenu", Bool( true ), Bool( true ) },
        { "AddToStatusMenu", Int( 1 ), Bool( false ) },
        { "PaletteUnderMouse", Bool( true ), Bool( true ) },
        { "PaletteUnderMouse", nullptr, Bool( false ) },
        { "DisplayToggle", Bool( false ), Bool( false ) },
        { "DisplayToggle", Bool( true ), nullptr },
        { "DisplayToggle", Str( u"false" ), nullptr },
        { "Targeting", nullptr, Targeting( u"All" ) },
        { "Targeting", Str( u"Included" ), Targeting( u"All" ) },
        { "Targeting", Targeting( u"Running", { u"A", u"B" } ), Targeting( u"Running", { u"A", u"B" } ) },
        { "Targeting", Targeting( u"all", { u"A" } ), Targeting( u"All", { u"A" } ) },
        { "Targeting",
            Dict( { { "Targeting", Str( u"Excluded" ) },
                { "TargetingApps", Array( { Int( 1 ), Dict( { { "Name", Str( u"A" ) } } ) } ) } } ),
            Targeting( u"Excluded", { u"A" } ) },
        { "FocussedWindowConditionType", Str( u"Exists" ), Str( u"Exists" ) },
        { "FocussedWindowConditionType", Str( u"Always" ), nullptr },
        { "FocussedWindowConditionType", Str( u"Sometimes" ), nullptr },
        { "FocussedWindowTitle", Str( u"T" ), nullptr }, // the type needs none
        { "Theme", Dict( { { "x", Int( 1 ) } } ), Dict( { { "x", Int( 1 ) } } ) },
        { "Theme", Str( u"x" ), nullptr },
        { "ToggleMacroUID", Str( u"TOGGLE" ), Str( u"TOGGLE" ) },
        { "DisabledMacs", Array( { Str( u"b" ), Int( 1 ), Str( u"a" ), Str( u"b" ) } ),
            Array( { Str( u"b" ), Str( u"a" ) } ) },
        { "DisabledMacs", Array( { Str( u"" ) } ), Array( { Str( u"" ) } ) },
        { "DisabledMacs", Array( {} ), nullptr },
        { "DisabledMacs", Str( u"a" ), nullptr },
        { "Macros", Array( { Str( u"x" ), Dict( {} ), MacroWith( u"M" ) } ), Array( { MacroWith( u"M" ) } ) },
    };
    for ( const auto& [key, read, written] : kCases )
    {
        const auto saved = LoadedGroup( GroupWith( u"G", {}, { { key, read } } ) )->CopyToPropertyList();
        EXPECT_EQ( Shown( At( saved, key ) ), Shown( written ) ) << key << Shown( read );
    }
    EXPECT_THAT( KeysOf( LoadedGroup( GroupWith( u"G", {} ) )->CopyToPropertyList() ),
        testing::ElementsAre( "Activate", "AddToMacroPalette", "AddToStatusMenu", "CreationDate", "KeyCode", "Macros",
            "Modifiers", "Name", "PaletteUnderMouse", "Targeting", "ToggleMacroUID", "UID" ) );
}

TEST_F( MacroGroup, EachNameOfAnEnumerationComesBack )
{
    for ( const std::string_view name : kMacroGroupActivateNames )
    {
        const auto value = Str( TextFromASCII( name ) );
        EXPECT_EQ(
            At( LoadedGroup( GroupWith( u"G", {}, { { "Activate", value } } ) )->CopyToPropertyList(), "Activate" ),
            value );
    }
    std::size_t withTitle = 0;
    for ( const TextView name : kFrontWindowConditionTypeNames )
    {
        const auto value = Str( name );
        const auto saved =
            LoadedGroup( GroupWith( u"G", {},
                             { { "FocussedWindowConditionType", value }, { "FocussedWindowTitle", Str( u"T" ) } } ) )
                ->CopyToPropertyList();
        EXPECT_EQ( Shown( At( saved, "FocussedWindowConditionType" ) ), Shown( name == u"Always" ? nullptr : value ) );
        const bool needsTitle = name.find( u"Title" ) != TextView::npos;
        EXPECT_EQ( Shown( At( saved, "FocussedWindowTitle" ) ), Shown( needsTitle ? Str( u"T" ) : nullptr ) )
            << UTF8FromText( name );
        withTitle += needsTitle;
    }
    EXPECT_EQ( withTitle, 9u );
}

TEST_F( MacroGroup, WithoutMacrosItThrows )
{
    try
    {
        (void)LoadedGroup( GroupWith( u"G", {}, { { "Macros", nullptr } } ) );
        ADD_FAILURE();
    }
    catch ( const XException& exception )
    {
        EXPECT_EQ( exception.GetMessage(), u"dictionary->Get( CFSTR(\"Macros\"), macros )" );
    }
    EXPECT_EQ( MMacroSerializedObject::FindObjectByUID( u"G" ), nullptr );
}

TEST_F( MacroGroup, ATargetThatNamesNoApplicationIsRepairedAsymmetrically )
{
    const struct
    {
        const char16_t* mType;
        bool mStaysActive;
    } kCases[] = { { u"All", true }, { u"Included", false }, { u"Excluded", true }, { u"Running", false },
        { u"RunningNotActive", false }, { u"NotRunning", true } };
    for ( const auto& [type, staysActive] : kCases )
    {
        for ( const bool wasActive : { true, false } )
        {
            const auto group = LoadedGroup(
                GroupWith( u"G", {}, { { "Targeting", Targeting( type ) }, { "IsActive", Bool( wasActive ) } } ) );
            EXPECT_EQ( group->GetTarget().GetType(), MacroAppTargetType::kAll );
            EXPECT_EQ( group->IsActive(), staysActive and wasActive ) << UTF8FromText( type );
        }
    }
}

TEST_F( MacroGroup, TheDefaultGroupIsAvailableAlwaysAndEverywhere )
{
    const auto group = LoadedGroup( GroupWith( u"G", {},
        { { "Name", Str( Text( kDefaultName ) + u"\n" ) }, { "IsActive", Bool( false ) },
            { "Activate", Str( u"WithPalette" ) }, { "Targeting", Targeting( u"Included", { u"A" } ) },
            { "FocussedWindowConditionType", Str( u"Exists" ) }, { "DisabledMacs", Array( { Str( u"a" ) } ) } } ) );
    EXPECT_TRUE( group->IsDefaultMacroGroup() );
    EXPECT_TRUE( group->IsActive() );
    EXPECT_TRUE( group->IsGloballyActive() );
    EXPECT_TRUE( group->IsAlwaysActive() );
    EXPECT_TRUE( group->GetDisabledMacs().empty() );
    const auto otherCase = LoadedGroup( GroupWith( u"H", {}, { { "Name", Str( u"GLOBAL MACRO GROUP" ) } } ) );
    EXPECT_FALSE( otherCase->IsDefaultMacroGroup() );
}

TEST_F( MacroGroup, OverridesChangeWhatDiffersAndAskForASaveOnlyThen )
{
    const auto file = GroupWith( u"G", { MacroWith( u"M" ) } );
    const auto load = []( const __SafeCFPropertyList& inFile,
                          std::initializer_list<std::pair<const char16_t*, bool>> inStates ) {
        KVMacroEnableOverrides overrides;
        for ( const auto& [uid, enabled] : inStates )
            overrides.Add( uid, enabled );
        (void)MMacroPreferenceFile::TakeLoadAllMacrosNeedsSave();
        const InsertionScope insertion;
        return std::make_unique<MMacroGroup>( inFile, &overrides );
    };
    auto group = load( file, { { u"G", true }, { u"M", true }, { u"X", false } } );
    EXPECT_FALSE( MMacroPreferenceFile::TakeLoadAllMacrosNeedsSave() );
    group.reset();
    group = load( file, { { u"G", false } } );
    EXPECT_FALSE( group->IsActive() );
    EXPECT_TRUE( group->FindFirstMacro()->IsActive() );
    EXPECT_TRUE( MMacroPreferenceFile::TakeLoadAllMacrosNeedsSave() );
    group.reset();
    group = load( file, { { u"M", false } } );
    EXPECT_TRUE( group->IsActive() );
    EXPECT_FALSE( group->FindFirstMacro()->IsActive() );
    EXPECT_TRUE( MMacroPreferenceFile::TakeLoadAllMacrosNeedsSave() );
    group.reset();
    group = load( With( file, "Name", Str( kDefaultName ) ), { { u"G", false } } );
    EXPECT_TRUE( group->IsActive() );
    EXPECT_FALSE( MMacroPreferenceFile::TakeLoadAllMacrosNeedsSave() );
}

TEST_F( MacroGroup, AnEmptyOrTakenToggleUIDGivesAFreshOne )
{
    const auto first = LoadedGroup( GroupWith( u"G", {}, { { "ToggleMacroUID", Str( u"T" ) } } ) );
    EXPECT_EQ( first->GetToggleMacro().GetUID(), XText( u"T" ) );
    for ( const char16_t* const uid : { u"T", u"" } )
    {
        const auto second = LoadedGroup( GroupWith( u"H", {}, { { "ToggleMacroUID", Str( uid ) } } ) );
        EXPECT_EQ( second->GetToggleMacro().GetUID().GetLength(), 36u );
    }
    EXPECT_EQ( mLog.CountContaining( "conflicting UID" ), 0u ) << "asked before, so nothing is refused";
}

TEST_F( MacroGroup, AnExportHoldsOneMacroAndLeavesOutWhatIsPlain )
{
    const auto group = LoadedGroup( GroupWith( u"G", { MacroWith( u"M" ), MacroWith( u"N" ) } ) );
    const MMacro* const macro = MMacroSerializedObject::FindMacroByUID( u"N" );
    auto exported = group->CopyOneMacroToPropertyListForExport( macro );
    EXPECT_THAT( KeysOf( exported ),
        testing::ElementsAre( "Activate", "CreationDate", "Macros", "Name", "ToggleMacroUID", "UID" ) );
    EXPECT_EQ( At( exported, "Macros" ), Array( { MacroWith( u"N" ) } ) );

    group->SetActivate( MacroGroupActivate::kWithPalette );
    group->SetTarget( MMacroAppTarget() );
    exported = group->CopyOneMacroToPropertyListForExport( macro );
    EXPECT_EQ( At( exported, "KeyCode" ), Int( 32767 ) );
    EXPECT_EQ( At( exported, "Targeting" ), nullptr );
    EXPECT_EQ( mLog.CountContaining( "Assertion Failed" ), 0u );
    EXPECT_EQ( At( group->CopyOneMacroToPropertyListForExport( nullptr ), "Macros" ).AsArray()->GetCount(), 2u );
    EXPECT_EQ( mLog.CountAssertions( "inMacro != nullptr" ), 1u );
}

TEST_F( MacroGroup, ACloneHasNeitherTheToggleNorTheDisabledMacs )
{
    const auto source = GroupWith( u"G", { MacroWith( u"M", { { "Actions", Array( { ExecuteMacro( u"M" ) } ) } } ) },
        { { "Activate", Str( u"OnceWithPalette" ) }, { "KeyCode", Int( 3 ) }, { "Modifiers", Int( 256 ) },
            { "AddToMacroPalette", Bool( true ) }, { "AddToStatusMenu", Bool( true ) },
            { "PaletteUnderMouse", Bool( true ) }, { "DisplayToggle", Bool( false ) },
            { "Theme", Dict( { { "x", Int( 1 ) } } ) }, { "Targeting", Targeting( u"Included", { u"A" } ) },
            { "FocussedWindowConditionType", Str( u"TitleIs" ) }, { "FocussedWindowTitle", Str( u"T" ) },
            { "DisabledMacs", Array( { Str( u"a" ) } ) }, { "ToggleMacroUID", Str( u"T" ) },
            { "IsActive", Bool( false ) } } );
    const auto group = LoadedGroup( source );
    const InsertionScope insertion;
    const auto clone = group->Clone( CloneFor::kDuplicate );
    auto saved = clone->CopyToPropertyList();
    EXPECT_EQ( MMacroInsertion::GetMapping( u"G" ), clone->GetUID() );
    EXPECT_EQ( MMacroInsertion::GetMapping( u"M" ), clone->FindFirstMacro()->GetUID() );
    EXPECT_EQ( clone->FindFirstMacro()->GetOwningGroup(), clone.get() );
    EXPECT_NE( clone->GetToggleMacro().GetUID(), XText( u"T" ) );
    saved = With( saved,
        { { "UID", Str( u"G" ) }, { "CreationDate", Real( 100 ) }, { "ToggleMacroUID", Str( u"T" ) },
            { "Macros", At( source, "Macros" ) } } );
    EXPECT_EQ( saved, With( source, { { "DisplayToggle", nullptr }, { "DisabledMacs", nullptr } } ) );
}

TEST_F( MacroGroup, DisablingForThisComputerLeavesTheOthersAlone )
{
    const ScratchFolder folder;
    KVPreferences::UseFolder( folder.Path() );
    const auto group = LoadedGroup( GroupWith( u"G", {}, { { "DisabledMacs", Array( { Str( u"other" ) } ) } } ) );
    EXPECT_TRUE( group->IsActiveForThisMac() );
    group->SetDisabledForThisMac( true );
    group->SetDisabledForThisMac( true );
    EXPECT_THAT( group->GetDisabledMacs(), testing::ElementsAre( XText( u"other" ), KVPreferences::MacUUID() ) );
    EXPECT_FALSE( group->IsActiveForThisMac() );
    EXPECT_TRUE( group->IsActive() );
    EXPECT_TRUE( group->GetXIconWithDisabledBadge().IsDimmed() );
    group->SetDisabledForThisMac( false );
    EXPECT_THAT( group->GetDisabledMacs(), testing::ElementsAre( XText( u"other" ) ) );
    EXPECT_FALSE( group->GetXIconWithDisabledBadge().IsDimmed() );
    group->SetIsActive( false );
    EXPECT_FALSE( group->IsActiveForThisMac() );
    KVPreferences::UseFolder( {} );
}

TEST_F( MacroGroup, TimesAreTheLatestOfItsMacrosAndSetWithThem )
{
    const auto group =
        LoadedGroup( GroupWith( u"G", { MacroWith( u"M" ), MacroWith( u"N", { { "ModificationDate", Real( 0 ) } } ) },
            { { "CreationDate", Real( 0 ) } } ) );
    EXPECT_EQ( group->GetModificationTime(), 200 );
    EXPECT_TRUE( group->SetTimesIfNotSet( 150 ) );
    EXPECT_EQ( group->GetCreationTime(), 150 );
    EXPECT_EQ( MMacroSerializedObject::FindMacroByUID( u"N" )->GetModificationTime(), mClock.Now() );
    EXPECT_EQ( group->GetModificationTime(), mClock.Now() );
    EXPECT_FALSE( group->SetTimesIfNotSet( 150 ) );
}

TEST_F( MacroGroup, ActiveInOneApplicationCountsTheFormsThatAreActiveAsWell )
{
    for ( std::size_t activate = 0; activate < std::size( kMacroGroupActivateNames ); ++activate )
    {
        MMacroGroup group;
        MMacroAppTarget target;
        target.SetType( MacroAppTargetType::kIncluded );
        target.SetApplications( XApplicationList( { App( u"Some.app" ) } ) );
        group.SetTarget( target );
        group.SetActivate( MacroGroupActivate( activate ) );
        Text name;
        EXPECT_EQ( group.IsAlwaysActiveInOneApplication( name ), activate == 0 or activate > 5 ) << activate;
        EXPECT_EQ( name, activate == 0 or activate > 5 ? u"Some" : u"" );
        EXPECT_FALSE( group.IsAlwaysActive() );
        target.SetApplications( XApplicationList( { App( u"A" ), App( u"B" ) } ) );
        group.SetTarget( target );
        EXPECT_FALSE( group.IsAlwaysActiveInOneApplication( name ) );
    }
}

TEST_F( MacroGroup, XMLFormsGoBothWaysAndNonsenseIsIgnored )
{
    const auto from = LoadedGroup( GroupWith( u"G", {},
        { { "Activate", Str( u"AlwaysWithPalette" ) }, { "KeyCode", Int( 9 ) }, { "DisplayToggle", Bool( false ) },
            { "Targeting", Targeting( u"NotRunning", { u"A" } ) },
            { "FocussedWindowConditionType", Str( u"TitleMatches" ) }, { "FocussedWindowTitle", Str( u"<&>" ) } } ) );
    const auto to = LoadedGroup( GroupWith( u"H", {} ) );
    to->SetActivationXML( *from->GetActivationXML() );
    to->SetAvailableApplicationXML( *from->GetAvailableApplicationXML() );
    to->SetAvailableWindowXML( *from->GetAvailableWindowXML() );
    const auto same = With( from->CopyToPropertyList(),
        { { "UID", Str( u"H" ) }, { "Name", Str( u"Group H" ) },
            { "ToggleMacroUID", __SafeCFPropertyList( to->GetToggleMacro().GetUID() ) } } );
    EXPECT_EQ( to->CopyToPropertyList(), same );
    for ( const TextView nonsense : { u"", u"<plist>", u"<plist version=\"1.0\"><string>x</string></plist>" } )
    {
        to->SetActivationXML( nonsense );
        to->SetAvailableApplicationXML( nonsense );
        to->SetAvailableWindowXML( nonsense );
    }
    EXPECT_EQ( to->CopyToPropertyList(), same );
    EXPECT_EQ( *LoadedGroup( GroupWith( u"I", {} ) )->GetActivationXML(),
        *kvr_toXMLString( Dict( { { "Activate", Str( u"Normal" ) } } ) ) );
}

TEST_F( MacroGroup, ADefaultWindowConditionIsAlwaysOrExists )
{
    MFrontWindowCondition condition;
    condition.LoadFromDictionary(
        *Dict( {} ).AsDictionary(), CFSTR( "T" ), CFSTR( "W" ), FrontWindowConditionType::kExists );
    EXPECT_EQ( condition.GetType(), FrontWindowConditionType::kExists );
    EXPECT_EQ( mLog.CountContaining( "Assertion Failed" ), 0u );
    condition.LoadFromDictionary(
        *Dict( {} ).AsDictionary(), CFSTR( "T" ), CFSTR( "W" ), FrontWindowConditionType::kTitleIs );
    EXPECT_EQ( mLog.CountAssertions( "ValidDefault( inType )" ), 1u );
}

TEST_F( MacroGroup, ItsIconSaysHowItIsActivated )
{
    MMacroGroup group;
    const KVIconRegistry kBadges[] = { KVIconRegistry::kFolder, KVIconRegistry::kHotKeyBadge,
        KVIconRegistry::kPaletteBadge };
    for ( std::size_t activate = 0; activate < std::size( kMacroGroupActivateNames ); ++activate )
    {
        group.SetActivate( MacroGroupActivate( activate ) );
        const XIcon icon = group.GetXIcon();
        const XIcon badge( kBadges[activate == 0 ? 0 : activate <= 2 ? 1 : 2] );
        const XIcon& shown = activate == 0 ? icon : icon.GetLayers().back();
        EXPECT_EQ( shown.GetInternalName(), badge.GetInternalName() ) << activate;
    }
    EXPECT_FALSE( group.GetXIconForPalette().Defined() );
}

TEST( MacroAppTarget, WhetherAnApplicationTriggerCanEverFire )
{
    // Launch, Activate, Deactivate, Quit, WhileActive, WhileRunning: for a listed application, for one other in a list
    // of one, and for one other in a list of two.
    const struct
    {
        MacroAppTargetType mType;
        const char *mListed, *mOneOther, *mTwoOthers;
    } kCases[] = {
        { MacroAppTargetType::kAll, "yyyyyy", "yyyyyy", "yyyyyy" },
        { MacroAppTargetType::kIncluded, "nnnnnn", "nnnnyy", "nnnnyy" },
        { MacroAppTargetType::kExcluded, "yyyyyy", "ynnyny", "yyyyyy" },
        { MacroAppTargetType::kRunning, "yyyyyy", "nyynyy", "yyyyyy" },
        { MacroAppTargetType::kRunningNotActive, "nnnnny", "nnnnny", "nnnnny" },
        { MacroAppTargetType::kNotRunning, "nnnnnn", "nnnnnn", "nnnnnn" },
    };
    for ( const auto& [type, listed, oneOther, twoOthers] : kCases )
    {
        MMacroAppTarget one, two;
        one.SetType( type );
        one.SetApplications( XApplicationList( { App( u"A" ) } ) );
        two.SetType( type );
        two.SetApplications( XApplicationList( { App( u"A" ), App( u"B" ) } ) );
        for ( std::size_t fire = 0; fire < 6; ++fire )
        {
            const auto fireType = ApplicationTriggerFireType( fire );
            EXPECT_EQ( one.CanTriggerFor( fireType, App( u"A" ) ), listed[fire] == 'y' ) << int( type ) << fire;
            EXPECT_EQ( one.CanTriggerFor( fireType, App( u"C" ) ), oneOther[fire] == 'y' ) << int( type ) << fire;
            EXPECT_EQ( two.CanTriggerFor( fireType, App( u"C" ) ), twoOthers[fire] == 'y' ) << int( type ) << fire;
        }
    }
}

TEST( MacroAppTarget, ApplicationsDontCountForAll )
{
    MMacroAppTarget a, b;
    b.SetApplications( XApplicationList( { App( u"A" ) } ) );
    EXPECT_EQ( a.CompareWithSame( b ), 0 );
    a.SetType( MacroAppTargetType::kIncluded );
    EXPECT_EQ( a.CompareWithSame( b ), 1 );
    b.SetType( MacroAppTargetType::kIncluded );
    EXPECT_EQ( a.CompareWithSame( b ), -1 );
    XApplicationIdentifier application;
    EXPECT_FALSE( a.TargetOneApplication( application ) );
    EXPECT_TRUE( b.TargetOneApplication( application ) );
    EXPECT_EQ( application.GetDisplayName(), u"A" );
}

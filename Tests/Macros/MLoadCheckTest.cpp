#include "Macros/MLoadCheck.h"

#include "Tests/Macros/MacroFixtures.h"

#include <set>
#include <variant>

namespace
{
using Rule = MLoadRule;

// A file that a save leaves as it is.
__SafeCFPropertyList GoodFile()
{
    MMacroDomain domain;
    domain.LoadFromPropertyList( FileWith(
        { GroupWith( u"G",
              { MacroWith( u"M",
                  { { "Name", Str( u"Mac" ) }, { "Triggers", Array( { Trigger( u"Wake" ) } ) },
                      { "Actions",
                          Array(
                              { ExecuteMacro( u"M" ), ActionDict( u"Pause", { { "Time", Str( u"1" ) } } ) } ) } } ) },
              { { "Name", Str( u"Group" ) }, { "ToggleMacroUID", Str( u"T" ) } } ),
            SmartGroupWith( u"S", { Str( u"x" ) }, { { "Name", Str( u"Smart" ) } } ) },
        { { "MacroPreferencesVersion", Int( 91 ) } } ) );
    return domain.GetPropertyList();
}

using Path = std::vector<std::variant<const char*, std::size_t>>;

// The value with what stands at a path replaced; null takes it out.
__SafeCFPropertyList Changed(
    const __SafeCFPropertyList& inValue, const Path& inPath, const __SafeCFPropertyList& inNew, std::size_t inStep = 0 )
{
    if ( inStep == inPath.size() )
        return inNew;
    if ( const auto* const key = std::get_if<const char*>( &inPath[inStep] ) )
        return With( inValue, *key, Changed( At( inValue, *key ), inPath, inNew, inStep + 1 ) );
    XMutableArray array;
    for ( std::size_t i = 0; i < inValue.AsArray()->GetCount(); ++i )
    {
        const auto element = inValue.AsArray()->GetValueAt( i );
        array.Append(
            i == std::get<std::size_t>( inPath[inStep] ) ? Changed( element, inPath, inNew, inStep + 1 ) : element );
    }
    return array.Seal();
}

std::string Described( const MFinding& inFinding )
{
    return std::string( RowOf( inFinding.mRule ).mID ) + ( inFinding.IsLoss() ? "!" : "" ) + " [" +
        UTF8FromText( inFinding.mPath ) + "] " + UTF8FromText( inFinding.mKey );
}

std::vector<std::string> DescribedFindings( const __SafeCFPropertyList& inFile )
{
    std::vector<std::string> result;
    for ( const MFinding& finding : CheckFile( inFile ).mFindings )
        result.push_back( Described( finding ) );
    return result;
}
} // namespace

using LoadCheck = MacroWorld;

TEST_F( LoadCheck, AGoodFileHasNoFindingsAndItsContentsAreCounted )
{
    const auto check = CheckFile( GoodFile() );
    EXPECT_TRUE( check.mFindings.empty() );
    EXPECT_FALSE( check.LosesSomething() );
    EXPECT_EQ( check.mContents.mGroups, 1u );
    EXPECT_EQ( check.mContents.mSmartGroups, 1u );
    EXPECT_EQ( check.mContents.mMacros, 1u );
    EXPECT_EQ( check.mContents.mTriggersByKind, ( std::map<std::string, std::size_t>{ { "Wake", 1 } } ) );
    EXPECT_EQ( check.mContents.mActionsByType,
        ( std::map<std::string, std::size_t>{ { "ExecuteMacro", 1 }, { "Pause", 1 } } ) );
}

TEST_F( LoadCheck, EachRuleIsToldWithItsPlace )
{
    // The smart group is the file's entry 0, the group its entry 1.
    const Path group = { "MacroGroups", 1u }, smart = { "MacroGroups", 0u };
    const auto in = []( Path inPath, std::initializer_list<std::variant<const char*, std::size_t>> inMore ) {
        inPath.insert( inPath.end(), inMore.begin(), inMore.end() );
        return inPath;
    };
    const Path macro = in( group, { "Macros", 0u } );
    const struct
    {
        Path mPath;
        __SafeCFPropertyList mNew;
        std::vector<std::string> mFindings;
    } kCases[] = {
        { smart, Int( 1 ), { "dropped-wrong-type! [group 1] " } },
        { in( smart, { "SearchStrings" } ), nullptr, { "dropped-unknown-group! [Smart] " } },
        { in( macro, { "Triggers" } ), nullptr, { "dropped-required-key! [Group › Mac] " } },
        { in( macro, { "Triggers", 0u } ), Trigger( u"Nonsense" ),
            { "dropped-unknown-trigger! [Group › Mac › trigger 1] " } },
        { in( macro, { "Triggers", 0u } ), With( Trigger( u"Gesture" ), "Gesture", Str( u"" ) ),
            { "dropped-useless-trigger! [Group › Mac › trigger 1] " } },
        { in( macro, { "Actions", 0u } ), ActionDict( u"Nonsense" ),
            { "dropped-unknown-action! [Group › Mac › action 1] " } },
        { in( macro, { "Actions", 0u } ), Dict( {} ), { "dropped-required-key! [Group › Mac › action 1] " } },
        { in( macro, { "Actions", 0u, "MacroUID" } ), nullptr, { "dropped-required-key! [Group › Mac › action 1] " } },
        { in( smart, { "SearchStrings", 0u } ), Int( 1 ), { "dropped-wrong-type! [Smart › SearchStrings 1] " } },
        { in( group, { "DisabledMacs" } ), Array( { Str( u"a" ), Int( 1 ) } ),
            { "dropped-wrong-type! [Group › DisabledMacs 2] " } },
        { in( group, { "Targeting" } ), Targeting( u"Excluded" ), { "empty-target! [Group] Targeting" } },
        { { "Strange" }, Int( 1 ), { "unknown-key! [] Strange" } },
        { in( group, { "Strange" } ), Int( 1 ), { "unknown-key! [Group] Strange" } },
        { in( macro, { "Actions", 0u, "Strange" } ), Int( 1 ), { "unknown-key! [Group › Mac › action 1] Strange" } },
        { in( macro, { "Actions", 0u, "StopOnFailure" } ), Bool( true ),
            { "unused-setting! [Group › Mac › action 1] StopOnFailure" } },
        { in( group, { "Activate" } ), Str( u"Sometimes" ), { "enum-defaulted! [Group] Activate" } },
        { in( group, { "Activate" } ), Int( 1 ), { "wrong-type-defaulted! [Group] Activate" } },
        { in( group, { "ToggleMacroUID" } ), Str( u"" ), { "uid-added [Group] ToggleMacroUID" } },
        { in( group, { "ToggleMacroUID" } ), nullptr, { "uid-added [Group] ToggleMacroUID" } },
        { in( group, { "Targeting", "Targeting" } ), Str( u"Everywhere" ),
            { "enum-defaulted! [Group › Targeting] Targeting" } },
        { { "MacroPreferencesVersion" }, Int( 1ll << 33 ), { "out-of-range! [] MacroPreferencesVersion" } },
        { { "MacroPreferencesVersion" }, Str( u"9" ), { "wrong-type-defaulted! [] MacroPreferencesVersion" } },
        { in( group, { "KeyCode" } ), Int( 70'000 ), { "out-of-range! [Group] KeyCode" } },
        { in( macro, { "CreationDate" } ), Str( u"x" ), { "wrong-type-defaulted! [Group › Mac] CreationDate" } },
        { in( macro, { "Name" } ), Int( 1 ), { "wrong-type-defaulted! [Group › macro 1] Name" } },
        { in( macro, { "CreationDate" } ), Int( 100 ), { "number-form [Group › Mac] CreationDate" } },
        { in( macro, { "CreationDate" } ), Real( std::numeric_limits<double>::quiet_NaN() ),
            { "out-of-range! [Group › Mac] CreationDate" } },
        { in( macro, { "Name" } ), Str( u"M\nac" ), { "changed-value! [Group › M\nac] Name" } },
        { in( macro, { "Triggers", 0u } ), Trigger( u"MenuBar" ),
            { "older-type [Group › Mac › trigger 1] MacroTriggerType" } },
        { in( smart, { "Name" } ), Str( u"All Macros" ), { "older-value [All Macros] SearchStrings" } },
        { in( group, { "KeyCode" } ), nullptr, { "default-written [Group] KeyCode" } },
        { { "MacroDefaultsVersion" }, nullptr, { "default-written [] MacroDefaultsVersion" } },
        { in( group, { "IsActive" } ), Bool( true ), { "key-without-effect [Group] IsActive" } },
        { in( group, { "DisplayToggle" } ), Bool( true ), { "key-without-effect [Group] DisplayToggle" } },
        { in( macro, { "UID" } ), nullptr, { "uid-added [Group › Mac] UID" } },
        { in( macro, { "UID" } ), Str( u"G" ), { "uid-replaced! [Group › Mac] UID" } },
        { in( group, { "UID" } ), Str( u"S" ), { "uid-replaced! [Group] UID" } },
        { { "PreferenceSavedDate" }, Str( u"2001_01_01" ), {} }, // every save writes it anew
    };
    const auto good = GoodFile();
    for ( const auto& [path, changed, findings] : kCases )
    {
        const auto file = Changed( good, path, changed );
        EXPECT_EQ( DescribedFindings( file ), findings );
        for ( const MFinding& finding : CheckFile( file ).mFindings )
            EXPECT_FALSE( finding.mText.empty() ) << Described( finding );
    }
}

TEST_F( LoadCheck, AnOlderKeyIsToldAtItsPlaceAndAtTheCurrentOne )
{
    const auto pause = ActionDict(
        u"Pause", { { "Seconds", Real( 2 ) }, { "TimeOutAbortsMacro", Bool( true ) }, { "Unit", Str( u"Seconds" ) } } );
    EXPECT_THAT( DescribedFindings( Array( { pause } ) ),
        testing::ElementsAre( "older-key [action 1] Seconds", "older-key [action 1] Time" ) );
}

// A dictionary with more keys than the recorder has bits is recorded in another way, with the same results.
TEST_F( LoadCheck, ADictionaryOfManyKeysIsCheckedAsAnyOther )
{
    auto macro = At( At( GoodFile(), "MacroGroups" ).AsArray()->GetValueAt( 1 ), "Macros" ).AsArray()->GetValueAt( 0 );
    macro = With( With( macro, "IsActive", Str( u"x" ) ), "CreationDate", Str( u"x" ) );
    std::vector<std::string> keys;
    for ( int i = 0; i < 100; ++i )
    {
        keys.push_back( "Zebra " + std::to_string( i ) );
        macro = With( macro, keys.back().c_str(), Int( i ) );
    }
    const auto findings =
        DescribedFindings( Array( { GroupWith( u"G", { macro }, { { "Name", Str( u"Group" ) } } ) } ) );
    EXPECT_THAT( findings, testing::Contains( "wrong-type-defaulted! [Group › Mac] IsActive" ) );
    EXPECT_THAT( findings, testing::Contains( "wrong-type-defaulted! [Group › Mac] CreationDate" ) );
    for ( const std::string& key : keys )
        EXPECT_THAT( findings, testing::Contains( "unknown-key! [Group › Mac] " + key ) );
    EXPECT_THAT( findings, testing::Not( testing::Contains( "unknown-key! [Group › Mac] Name" ) ) );
}

TEST( MLoadRules, HaveIdentifiersOfTheirOwnAndFullSentences )
{
    std::set<std::string_view> ids;
    for ( const MLoadRuleRow& row : MLoadRules() )
    {
        EXPECT_TRUE( ids.insert( row.mID ).second ) << row.mID;
        EXPECT_EQ( MLoadRuleNamed( row.mID ), row.mRule );
        EXPECT_EQ( row.mID.find_first_not_of( "abcdefghijklmnopqrstuvwxyz-" ), std::string_view::npos ) << row.mID;
        EXPECT_TRUE( row.mExplanation.ends_with( '.' ) ) << row.mID;
        // What loses is never a note, and every error loses.
        EXPECT_FALSE( row.mLoses and row.mSeverity == MSeverity::kNote ) << row.mID;
        EXPECT_TRUE( row.mLoses or row.mSeverity != MSeverity::kError ) << row.mID;
    }
}

TEST( MLoadRules, AreFoundByWhatIsNearly )
{
    EXPECT_EQ( MLoadRulesNear( "older-keys" ).front(), "older-key" );
    EXPECT_EQ( MLoadRulesNear( "unknwon-key" ).front(), "unknown-key" );
    EXPECT_THAT( MLoadRulesNear( "uid" ), testing::ElementsAre( "uid-replaced", "uid-added" ) );
    EXPECT_EQ( MLoadRulesNear( "dropped" ).size(), 3u );
    for ( const char* const far : { "", "xyzzy" } )
        EXPECT_TRUE( MLoadRulesNear( far ).empty() ) << far;
    EXPECT_FALSE( MLoadRuleNamed( "Older-Key" ) );
}

TEST_F( LoadCheck, ReasonsAreWordsForPeople )
{
    const auto good = GoodFile();
    const struct
    {
        Path mPath;
        __SafeCFPropertyList mNew;
        const char16_t* mText;
    } kCases[] = {
        { { "MacroGroups", 1u }, Int( 1 ), u"it is no dictionary, but of type number" },
        { { "MacroGroups", 1u }, Dict( {} ),
            u"it has neither a list “Macros”, as a group has, nor “SearchStrings”, as a smart group has" },
        { { "MacroGroups", 1u, "Macros", 0u, "Triggers" }, nullptr,
            u"its key “Triggers” is missing or of the wrong type" },
        { { "MacroGroups", 1u, "Macros", 0u, "Actions" }, nullptr, u"its key “Actions” is missing or no array" },
        { { "MacroGroups", 1u, "Macros", 0u, "Triggers", 0u }, Trigger( u"Odd" ),
            u"no kind of trigger is called “Odd”" },
        { { "MacroGroups", 1u, "Macros", 0u, "Actions", 0u }, ActionDict( u"Odd" ), u"no action type is called “Odd”" },
        { { "MacroGroups", 1u, "Macros", 0u, "Actions", 0u },
            ActionDict( u"Assert",
                { { "Conditions",
                    Dict( { { "ConditionListMatch", Str( u"All" ) },
                        { "ConditionList", Array( { Dict( { { "ConditionType", Str( u"Odd" ) } } ) } ) } } ) } } ),
            u"no condition type is called “Odd”" },
        { { "MacroGroups", 1u, "Macros", 0u, "Actions", 0u },
            ActionDict( u"For",
                { { "Actions", Array( {} ) }, { "TimeOutAbortsMacro", Bool( true ) }, { "Variable", Str( u"i" ) },
                    { "Collections",
                        Dict( { { "CollectionList",
                            Array( { Dict( { { "CollectionType", Str( u"Odd" ) } } ) } ) } } ) } } ),
            u"no collection type is called “Odd”" },
        { { "MacroGroups", 1u, "Macros", 0u, "Actions", 0u, "MacroUID" }, nullptr,
            u"its key “MacroUID” is missing or of the wrong type" },
    };
    for ( const auto& [path, changed, text] : kCases )
    {
        const auto findings = CheckFile( Changed( good, path, changed ) ).mFindings;
        ASSERT_EQ( findings.size(), 1u );
        EXPECT_EQ( findings[0].mText, text );
    }
}

TEST_F( LoadCheck, TheKindOfAFileIsToldByItsContent )
{
    const auto group = GroupWith( u"G", {} ), action = ExecuteMacro( u"M" );
    const struct
    {
        __SafeCFPropertyList mFile;
        std::optional<MFileKind> mKind;
    } kCases[] = {
        { FileWith( {} ), MFileKind::kMacrosFile },
        { Array( { group } ), MFileKind::kMacrosExport },
        { Array( { SmartGroupWith( u"S", {} ) } ), MFileKind::kMacrosExport },
        { Array( { Int( 1 ), action } ), MFileKind::kActionsExport },
        { action, MFileKind::kActionsExport },
        { Dict( { { "Items", Array( {} ) } } ), MFileKind::kLibrary },
        { Dict( { { "Items", Int( 1 ) } } ), {} },
        { Array( {} ), {} },
        { Str( u"x" ), {} },
        { nullptr, {} },
    };
    for ( const auto& [file, kind] : kCases )
    {
        EXPECT_EQ( FileKindOf( file ), kind ) << Shown( file );
        if ( kind )
        {
            EXPECT_EQ( CheckFile( file ).mKind, *kind );
            continue;
        }
        EXPECT_THROW( (void)CheckFile( file ), XException );
    }
}

TEST_F( LoadCheck, ExportsAndLibrariesAreCheckedLikeAFile )
{
    const auto group = At( GoodFile(), "MacroGroups" ).AsArray()->GetValueAt( 1 );
    EXPECT_THAT( DescribedFindings( Array( { group } ) ), testing::IsEmpty() );
    EXPECT_THAT( DescribedFindings( Array( { With( group, "Strange", Int( 1 ) ) } ) ),
        testing::ElementsAre( "unknown-key! [Group] Strange" ) );
    EXPECT_THAT( DescribedFindings( Dict( { { "Items", Array( { group, Int( 1 ) } ) }, { "Strange", Int( 1 ) } } ) ),
        testing::ElementsAre( "unknown-key! [] Strange", "dropped-wrong-type! [group 2] " ) );
    EXPECT_THAT( DescribedFindings( Array( { ExecuteMacro( u"M" ), Int( 1 ) } ) ),
        testing::Contains( "dropped-wrong-type! [action 2] " ) );
}

TEST_F( LoadCheck, TwoElementsThatAreOneValueAreToldApart )
{
    const auto good = GoodFile();
    const auto group = At( good, "MacroGroups" ).AsArray()->GetValueAt( 1 );
    EXPECT_THAT( DescribedFindings( With( good, "MacroGroups", Array( { group, group } ) ) ),
        testing::UnorderedElementsAre(
            "uid-replaced! [Group] UID", "uid-replaced! [Group] ToggleMacroUID", "uid-replaced! [Group › Mac] UID" ) );
}

TEST_F( LoadCheck, ItNeedsTheOnlyDomain )
{
    const MMacroDomain domain;
    EXPECT_THROW( (void)CheckFile( FileWith( {} ) ), XException );
}

#include "Conditions/CConditionList.h"

#include "ClipboardSwitcher/ClipboardReference.h"
#include "ConditionTestSupport.h"
#include "Utility/Search/StringSearchee.h"

namespace
{
__SafeCFPropertyList Variable( TextView inName )
{
    return Saved( *ReadCondition( ConditionDict( u"Variable", { { "Variable", Str( inName ) } } ) ) );
}

CConditionList Loaded( const __SafeCFPropertyList& inValue )
{
    CConditionList list;
    list.AppendCondition( CBaseCondition::Create( ConditionType::kKey ) );
    list.SetMatch( ConditionListMatch::kNone );
    list.LoadFromPropertyList( inValue );
    return list;
}

std::string SavedForm( const CConditionList& inList )
{
    return Shown( inList.CopyToPropertyList() );
}

// Counts what a load tells.
class Observer final : public MLoadObserver
{
public:
    void DidDrop( const XPlistArray&, std::size_t inIndex, TextView inReason ) override
    {
        mDropped.emplace_back( inIndex, UTF8FromText( inReason ) );
    }
    void DidReadOlderKey( const XPlistDictionary&, const XKey& inOlder, const XKey& inCurrent ) override
    {
        mOlder.push_back( std::string( inOlder.Name() ) + " " + std::string( inCurrent.Name() ) );
    }
    void DidUpgradeType( const XPlistDictionary&, TextView, TextView ) override {}
    void DidUpgradeValue( const XPlistDictionary&, const XKey&, TextView ) override {}
    void DidRepair( const XPlistDictionary&, const XKey& inKey, MLoadRule, TextView ) override
    {
        mRepaired.emplace_back( inKey.Name() );
    }
    void DidReadUID( const XPlistDictionary&, const XText&, const XText& ) override {}

    std::vector<std::pair<std::size_t, std::string>> mDropped;
    std::vector<std::string> mOlder, mRepaired;
};

// A store that has no clipboards and makes none.
class NoClipboards final : public ClipboardNames
{
public:
    NoClipboards() { SetCurrent( this ); }
    ~NoClipboards() override { SetCurrent( nullptr ); }
    [[nodiscard]] std::optional<Text> StrictGetClipboardNameByUID( TextView ) const override { return {}; }
    [[nodiscard]] std::optional<Text> GetClipboardUIDByName( TextView ) const override { return {}; }
    [[nodiscard]] Text GetOrCreateClipboard( TextView, TextView inUID ) override { return Text( inUID ); }
};

using Strings = std::vector<std::string>;
} // namespace

TEST( CConditionList, MatchIsAllUnlessAKnownNameSaysOtherwise )
{
    for ( const TextView name : { u"Any", u"All", u"None", u"NotAll" } )
        EXPECT_EQ( SavedForm( Loaded( ListDict( name, { Variable( u"a" ) } ) ) ),
            Shown( ListDict( name, { Variable( u"a" ) } ) ) );
    const auto list = Array( { Variable( u"a" ) } );
    for ( const auto& read : { Dict( { { "ConditionList", list } } ),
              Dict( { { "ConditionList", list }, { "ConditionListMatch", Str( u"any" ) } } ),
              Dict( { { "ConditionList", list }, { "ConditionListMatch", Int( 0 ) } } ) } )
        EXPECT_EQ( SavedForm( Loaded( read ) ), Shown( ListDict( u"All", { Variable( u"a" ) } ) ) );
}

TEST( CConditionList, AValueThatIsNoListLeavesNoConditionsOfWhichAllMustHold )
{
    for ( const auto& value : { __SafeCFPropertyList(), Str( u"x" ), Array( { Variable( u"a" ) } ), Dict( {} ),
              Dict( { { "ConditionList", Str( u"x" ) } } ) } )
        EXPECT_EQ( SavedForm( Loaded( value ) ), Shown( ListDict( u"All", {} ) ) );
}

TEST( CConditionList, ConditionsThatCannotBeUnderstoodAreDroppedWithoutALogLine )
{
    const LogCapture log;
    Observer observer;
    const MLoadObserver::Scope scope( observer );
    const auto list = Loaded( ListDict( u"Any",
        { Variable( u"a" ), ConditionDict( u"Weather" ), Variable( u"b" ), Int( 1 ), ConditionDict( u"Key" ) } ) );
    EXPECT_EQ( SavedForm( list ), Shown( ListDict( u"Any", { Variable( u"a" ), Variable( u"b" ) } ) ) );
    EXPECT_TRUE( log.Lines().empty() );
    const std::vector<std::pair<std::size_t, std::string>> expected = { { 1, "good" },
        { 3, "dictionary && dictionary->IsCorrectTypeID()" },
        { 4, "dictionary->Get( CFSTR(\"KeyCode\"), mKeyCode )" } };
    EXPECT_EQ( observer.mDropped, expected );
}

TEST( CConditionList, TheObserverHearsOfRepairsAndOlderKeys )
{
    Observer observer;
    const MLoadObserver::Scope scope( observer );
    const auto pixel = ConditionDict( u"Pixel", { { "PixelConditionType", Str( u"IsNot" ) } } );
    const auto window = ConditionDict( u"AnyWindow", { { "IsFrontApplication", Bool( false ) } } );
    static_cast<void>( Loaded( ListDict( u"Some", { pixel, window } ) ) );
    EXPECT_EQ( observer.mOlder, Strings{ "PixelConditionType PixelConditionTypeGood" } );
    EXPECT_EQ( observer.mRepaired, ( Strings{ "ConditionListMatch", "IsFrontApplication" } ) );
    // What stands in the deprecated key beside a current name isn't read.
    static_cast<void>( ReadCondition( ConditionDict(
        u"Pixel", { { "PixelConditionTypeGood", Str( u"Is" ) }, { "PixelConditionType", Str( u"Is" ) } } ) ) );
    EXPECT_EQ( observer.mOlder.size(), 1U );
    EXPECT_EQ( observer.mRepaired.size(), 2U );
    EXPECT_EQ( Shown( Reloaded( ActionDict( u"Assert", { { "Conditions", Int( 1 ) } } ) ) ),
        Shown( ActionDict( u"Assert", { { "Conditions", ListDict( u"All", {} ) } } ) ) );
    EXPECT_EQ( observer.mRepaired.back(), "Conditions" );
}

TEST( CConditionList, ACopyOwnsConditionsOfItsOwn )
{
    const auto original = Loaded( ListDict( u"Any", { Variable( u"a" ), Variable( u"b" ) } ) );
    CConditionList copy = original;
    EXPECT_NE( copy.GetConditionAtIndex( 0 ), original.GetConditionAtIndex( 0 ) );
    copy.SetConditionAtIndex( 1, CBaseCondition::Create( ConditionType::kText ) );
    copy.RemoveConditionAtIndex( 0 );
    copy.AppendCondition( ReadCondition( Variable( u"c" ) ) );
    EXPECT_EQ( SavedForm( copy ),
        Shown( ListDict( u"Any", { Saved( *CBaseCondition::Create( ConditionType::kText ) ), Variable( u"c" ) } ) ) );
    EXPECT_EQ( SavedForm( original ), Shown( ListDict( u"Any", { Variable( u"a" ), Variable( u"b" ) } ) ) );
}

TEST( CConditionList, IndexesThatAreNoneAndNoConditionAreAsserted )
{
    const LogCapture log;
    auto list = Loaded( ListDict( u"All", { Variable( u"a" ) } ) );
    list.RemoveConditionAtIndex( 1 );
    list.SetConditionAtIndex( 1, CBaseCondition::Create( ConditionType::kText ) );
    EXPECT_EQ( list.GetConditionAtIndex( 1 ), nullptr );
    EXPECT_EQ( log.CountAssertions( "inIndex < mConditions.size()" ), 3U );
    list.AppendCondition( nullptr );
    list.SetConditionAtIndex( 0, nullptr );
    EXPECT_EQ( log.CountAssertions( "inCondition" ), 2U );
    EXPECT_EQ( SavedForm( list ), Shown( ListDict( u"All", { Variable( u"a" ) } ) ) );
}

TEST( CConditionList, WordsAreTheOnlyConditionOrTheTitleAndEachCondition )
{
    const auto one = Variable( u"a" );
    const std::pair<__SafeCFPropertyList, const char*> kCases[] = {
        { ListDict( u"All", {} ), "" },
        { ListDict( u"All", { one } ), "Variable “a” Contains “value”" },
        { ListDict( u"Any", { one } ), "Variable “a” Contains “value”" },
        { ListDict( u"None", { one } ), "Not: Variable “a” Contains “value”" },
        { ListDict( u"NotAll", { one } ), "Not: Variable “a” Contains “value”" },
        { ListDict( u"Any", { one, ConditionDict( u"ActionResult" ) } ),
            "Any of the Following Are True: Variable “a” Contains “value”; Action Result Is OK" },
        { ListDict( u"NotAll", { one, ConditionDict( u"ActionResult" ) } ),
            "Not All of the Following Are True: Variable “a” Contains “value”; Action Result Is OK" },
    };
    for ( const auto& [list, words] : kCases )
        EXPECT_EQ( UTF8FromText( Loaded( list ).GetDescription() ), words );
    EXPECT_EQ(
        UTF8FromText( Loaded( ListDict( u"None", {} ) ).GetConditionDisplayText() ), "None of the Following Are True" );
}

TEST( CConditionList, DisplayContentHasADescriptionAndIconsForEachCondition )
{
    const std::uint8_t bytes[] = { 1, 2, 3 };
    const __SafeCFPropertyList image = XPlistData::Make( bytes );
    const auto list =
        Loaded( ListDict( u"All", { Variable( u"a" ), ConditionDict( u"OCR", { { "Image", image } } ) } ) );
    const auto content = list.GetConditionDisplayContent();
    ASSERT_EQ( content->GetCount(), 2U );
    EXPECT_EQ( Shown( content->GetValueAt( 0 ) ),
        Shown( Dict(
            { { "description", Str( u"Variable “a” Contains “value”" ) }, { "icon", Str( u"KVEP-Variable" ) } } ) ) );
    EXPECT_EQ( Shown( At( content->GetValueAt( 1 ), "extraicon" ) ), Shown( image ) );
}

// The actions that hold conditions

TEST( CConditionList, ActionsTellTheirConditionsAndAreFoundByThem )
{
    const auto conditions = ListDict( u"All", { Variable( u"Total" ) } );
    const std::pair<const char16_t*, const char*> kActions[] = {
        { u"IfThenElse", "If Variable “Total” Contains “value”" },
        { u"While", "While Variable “Total” Contains “value”" },
        { u"Until", "Execute the Following Actions Until Variable “Total” Contains “value”" },
        { u"Assert", "Assert Variable “Total” Contains “value”" },
        { u"PauseUntil", "Pause Until Variable “Total” Contains “value”" },
    };
    for ( const auto& [type, description] : kActions )
    {
        const auto action = HBaseAction::CreateFromPropertyList(
            ActionDict( type, { { "Conditions", conditions }, { "ActionName", Str( u"Named" ) } } ) );
        EXPECT_EQ( UTF8FromText( action->GetActionDescriptionDefaultString() ), description );
        StringSearchee searchee;
        action->AddMatchStrings( searchee );
        EXPECT_TRUE( std::ranges::any_of(
            searchee.GetElements(), []( const auto& element ) { return element.mText == u"Variable Condition"; } ) );
        EXPECT_EQ( Shown( At( Saved( *action->Clone() ), "Conditions" ) ), Shown( conditions ) );
        EXPECT_EQ( action->CompareFields( *action->Clone() ), 0 );
        const auto other = HBaseAction::CreateFromPropertyList(
            ActionDict( type, { { "Conditions", ListDict( u"Any", { Variable( u"Total" ) } ) } } ) );
        EXPECT_NE( action->CompareFields( *other ), 0 );
    }
}

TEST( CConditionList, TriggeringByNameKeepsItsSearchAndItsMacros )
{
    const auto action = ActionDict( u"TriggerByName",
        { { "TimeOutAbortsMacro", Bool( true ) }, { "InitialSearch", Str( u"mail" ) },
            { "Allowed", Str( u"IncludeDisabled" ) }, { "Macros", Array( { Str( u"b" ), Str( u"a" ) } ) } } );
    EXPECT_EQ( Shown( Reloaded( action ) ), Shown( action ) );
    const auto plain = With( With( action, "Allowed", Str( u"Normal" ) ), "Macros", Array( {} ) );
    EXPECT_EQ( Shown( Reloaded( plain ) ), Shown( With( With( action, "Allowed", nullptr ), "Macros", nullptr ) ) );
    EXPECT_EQ( UTF8FromText( HBaseAction::CreateFromPropertyList( action )->GetActionDescriptionString() ),
        "Trigger Macro by Name, Searching for “mail”" );
}

TEST( CConditionList, UpdatingToDefaultsReachesTheClipboardsWithinAnAction )
{
    const auto clipboard = ConditionDict( u"Clipboard",
        { { "ClipboardSourceUseNamedClipboard", Bool( true ) },
            { "ClipboardSourceNamedClipboardUID", Str( u"gone" ) } } );
    const PlistEntry kind( "ImageSource", Str( u"NamedClipboard" ) ), uid( "ImageNamedClipboardName", Str( u"gone" ) );
    const auto conditions = ListDict(
        u"All", { clipboard, ConditionDict( u"OCR", { kind, uid } ), ConditionDict( u"ScreenImage", { kind, uid } ) } );
    std::vector<__SafeCFPropertyList> holders = { ActionDict(
        u"Switch", { { "Source", Str( u"NamedClipboard" ) }, { "NamedClipboardName", Str( u"gone" ) } } ) };
    for ( const TextView type : { u"IfThenElse", u"While", u"Until", u"Assert", u"PauseUntil" } )
        holders.push_back( ActionDict( type, { { "Conditions", conditions } } ) );
    for ( const auto& holder : holders )
    {
        const auto action = HBaseAction::CreateFromPropertyList( holder );
        EXPECT_NE( Shown( Saved( *action ) ).find( "gone" ), std::string::npos );
        {
            const NoClipboards noClipboards;
            action->UpdateToDefaultValues( true );
        }
        EXPECT_EQ( Shown( Saved( *action ) ).find( "gone" ), std::string::npos ) << Shown( Saved( *action ) );
    }
}

TEST( CConditionList, CasesOfASwitchOfferWhatCouldBeMeantAsExpressions )
{
    const auto entry = []( TextView type, TextView value ) {
        return Dict( { { "ConditionType", Str( type ) }, { "TestValue", Str( value ) }, { "Actions", Array( {} ) } } );
    };
    const auto action = HBaseAction::CreateFromPropertyList( ActionDict( u"Switch",
        { { "CaseEntries",
            Array( { entry( u"Contains", u"a.b" ), entry( u"Is", u"c.d" ), entry( u"Contains", u"" ),
                entry( u"Contains", u"e" ), entry( u"Otherwise", u"f" ) } ) } } ) );
    EXPECT_EQ( action->ActionCouldBeRegExStrings(), ( std::vector<Text>{ u"a.b", u"e" } ) );
    StringSearchee searchee;
    action->AddMatchStrings( searchee );
    for ( const TextView words : { u"If It Contains “a.b”", u"If It Is “c.d”", u"Otherwise" } )
        EXPECT_TRUE( std::ranges::any_of(
            searchee.GetElements(), [&]( const auto& element ) { return element.mText == words; } ) );
}

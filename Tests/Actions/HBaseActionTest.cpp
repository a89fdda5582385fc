#include "ActionTestSupport.h"
#include "Tests/Support/ScratchFolder.h"

#include "Actions/ASwitch.h"
#include "Actions/ActionCreation.h"
#include "Actions/AppleScriptUIDMap.h"
#include "Actions/HCaseEntry.h"
#include "Actions/HDelayPreference.h"
#include "Actions/HFieldVisitors.h"
#include "Actions/MacroActions.h"
#include "Macros/MMacro.h"
#include "Utility/Search/StringSearchee.h"
#include "Utility/Search/StringSearcher.h"

namespace
{
// Loads a Pause with one more key and saves it.
__SafeCFPropertyList PauseWith( const char* inKey, const __SafeCFPropertyList& inValue )
{
    return Reloaded( ActionDict( u"Pause", { { inKey, inValue } } ) );
}
} // namespace

TEST( HBaseAction, BaseKeysAreWrittenOnlyWhenTheySaySomething )
{
    const auto real = []( double value ) { return __SafeCFPropertyList::Real( value ); };
    struct Case
    {
        const char* mType;
        const char* mKey;
        __SafeCFPropertyList mRead, mWritten;
    };
    const Case kCases[] = {
        { "Pause", "IsActive", Bool( false ), Bool( false ) },
        { "Pause", "IsActive", Bool( true ), nullptr },
        { "Pause", "IsActive", Str( u"false" ), nullptr },
        { "Pause", "IsDisclosed", Bool( false ), Bool( false ) },
        { "Pause", "TimeOutPeriod", real( 0.005 ), nullptr },
        { "Pause", "TimeOutPeriod", real( 0.0051 ), real( 0.0051 ) },
        { "Pause", "TimeOutPeriod", __SafeCFPropertyList::Integer( 30 ), real( 30 ) },
        { "Pause", "TimeOutPeriod", Str( u"30" ), nullptr },
        { "Comment", "TimeOutPeriod", real( 30 ), nullptr },
        { "Pause", "TimeOutAbortsMacro", Bool( false ), Bool( false ) },
        { "Pause", "NotifyOnTimeOut", Bool( false ), Bool( false ) },
        { "Pause", "NotifyOnTimeOut", Bool( true ), nullptr },
        { "Comment", "NotifyOnTimeOut", Bool( false ), nullptr },
        { "Assert", "StopOnFailure", Bool( true ), nullptr },
        { "Assert", "StopOnFailure", Bool( false ), Bool( false ) },
        { "Pause", "StopOnFailure", Bool( true ), Bool( true ) },
        { "Pause", "StopOnFailure", Bool( false ), nullptr },
        { "Pause", "StopOnFailure", __SafeCFPropertyList::Integer( 1 ), nullptr },
        { "Comment", "StopOnFailure", Bool( true ), nullptr },
        { "Pause", "NotifyOnFailure", Bool( false ), Bool( false ) },
        { "Comment", "NotifyOnFailure", Bool( false ), nullptr },
        { "Pause", "ActionColor", Str( u"Teal" ), Str( u"Teal" ) },
        { "Pause", "ActionColor", Str( u"teal" ), nullptr },
        { "Pause", "ActionColor", Str( u"None" ), nullptr },
        { "Pause", "ActionName", Str( u"Mine" ), Str( u"Mine" ) },
        { "Pause", "ActionName", Str( u"" ), nullptr },
        { "Pause", "ActionNotes", Str( u"Why" ), Str( u"Why" ) },
    };
    for ( const auto& [type, key, read, written] : kCases )
    {
        const auto bare = ActionDict( TextFromASCII( type ), { { "Conditions", Dict( {} ) } } );
        EXPECT_EQ( At( Reloaded( With( bare, key, read ) ), key ), written ) << type << " " << key << Shown( read );
    }
}

TEST( HBaseAction, NotifyOnTimeOutFollowsTimeOutAbortsMacroUnlessTheFileTellsThemApart )
{
    const auto followed =
        HBaseAction::CreateFromPropertyList( ActionDict( u"Pause", { { "TimeOutAbortsMacro", Bool( false ) } } ) );
    EXPECT_FALSE( followed->GetNotifyOnTimeOut() );
    EXPECT_EQ( At( Saved( *followed ), "NotifyOnTimeOut" ), nullptr );
    const auto apart = HBaseAction::CreateFromPropertyList(
        ActionDict( u"Pause", { { "TimeOutAbortsMacro", Bool( false ) }, { "NotifyOnTimeOut", Bool( true ) } } ) );
    EXPECT_EQ( At( Saved( *apart ), "NotifyOnTimeOut" ), Bool( true ) );
}

TEST( HBaseAction, AGrowlBecomesANotificationWithTheSameBaseProperties )
{
    const auto saved = Reloaded( ActionDict( u"Growl",
        { { "Title", Str( u"T" ) }, { "Text", Str( u"B" ) }, { "IsActive", Bool( false ) },
            { "ActionName", Str( u"N" ) } } ) );
    EXPECT_EQ( saved,
        ActionDict( u"Notification",
            { { "Title", Str( u"T" ) }, { "Subtitle", Str( u"" ) }, { "Text", Str( u"B" ) },
                { "SoundName", Str( u"" ) }, { "IsActive", Bool( false ) }, { "ActionName", Str( u"N" ) } } ) );
}

TEST( HBaseAction, XMLComesBackAndEverythingElseIsNull )
{
    const auto action = HBaseAction::CreateFromPropertyList( ActionDict( u"Pause", { { "Time", Str( u"é<&>" ) } } ) );
    const auto again = HBaseAction::CreateFromActionXML( *action->GetActionXML() );
    ASSERT_TRUE( again );
    EXPECT_EQ( Saved( *again ), Saved( *action ) );
    for ( const Text& text : { Text(), Text( u"<plist" ), *kvr_toXMLString( Array( {} ) ),
              *kvr_toXMLString( ActionDict( u"Nope" ) ), *kvr_toXMLString( ActionDict( u"While" ) ) } )
        EXPECT_EQ( HBaseAction::CreateFromActionXML( text ), nullptr ) << UTF8FromText( text );
}

TEST( HBaseAction, AScriptsReferenceFollowsWhoReusesItAndEndsWithItsAction )
{
    auto action = HBaseAction::CreateActionOfType( HActionType::kPause );
    const std::uint64_t uid = action->GetAppleScriptUID();
    EXPECT_NE( uid, 0u );
    EXPECT_EQ( HBaseAction::GetActionForAppleScriptUID( uid ), action.get() );
    auto replacement = action->Clone();
    EXPECT_NE( replacement->GetAppleScriptUID(), uid );
    action.reset();
    EXPECT_EQ( HBaseAction::GetActionForAppleScriptUID( uid ), nullptr );
    replacement->ReuseAppleScriptUID( uid );
    EXPECT_EQ( HBaseAction::GetActionForAppleScriptUID( uid ), replacement.get() );
    EXPECT_EQ( HBaseAction::GetActionForAppleScriptUID( 0 ), nullptr );
}

TEST( HBaseAction, AUIDThatLivesElsewhereIsAsserted )
{
    const LogCapture log;
    const auto first = HBaseAction::CreateActionOfType( HActionType::kPause );
    const auto second = HBaseAction::CreateActionOfType( HActionType::kPause );
    second->ReuseAppleScriptUID( first->GetAppleScriptUID() );
    EXPECT_EQ( log.CountContaining( "!GetActionForAppleScriptUID( uid )" ), 1u );
}

TEST( HBaseAction, NumbersForScriptsWrapAndSkipThoseInUse )
{
    const LogCapture log;
    AppleScriptUIDMap<int> map( "Thing" );
    int thing = 0;
    EXPECT_EQ( map.GetNewUID(), 1u );
    map.Set( 2, &thing );
    EXPECT_EQ( map.GetNewUID(), 3u );
    map.SetLastUID( 0x4000000000000000 );
    EXPECT_LT( map.GetNewUID(), 0x100000000u + 1000 );
    EXPECT_EQ( log.CountContaining( "AppleScript Thing UID Wrapped" ), 1u );
}

TEST( HBaseAction, OlderNumbersBecomeTheShortestTexts )
{
    const auto real = []( double value ) { return __SafeCFPropertyList::Real( value ); };
    const std::pair<__SafeCFPropertyList, TextView> kCases[] = {
        { __SafeCFPropertyList::Integer( 5 ), u"5" },
        { real( 2.50 ), u"2.5" },
        { real( 3.0 ), u"3" },
        { real( 0.1 ), u"0.1" },
        { real( 1.0 / 3 ), u"0.33333333" },
        { real( -0.000000001 ), u"0" },
        { real( 120000 ), u"120000" },
        { Str( u"7" ), u"1.5" },
    };
    for ( const auto& [older, text] : kCases )
    {
        const auto saved = PauseWith( "Seconds", older );
        EXPECT_EQ( At( saved, "Time" ), Str( text ) ) << Shown( older );
        EXPECT_EQ( At( saved, "Seconds" ), nullptr );
    }
    EXPECT_EQ( At( Reloaded( ActionDict( u"Repeat", { { "Count", __SafeCFPropertyList::Integer( 5 ) } } ) ),
                   "CountExpression" ),
        Str( u"5" ) );
}

TEST( HBaseAction, TwoPausesOfOneUnitMerge )
{
    const auto pause = []( TextView time, TextView unit ) {
        return HBaseAction::CreateFromPropertyList(
            ActionDict( u"Pause", { { "Time", Str( time ) }, { "Unit", Str( unit ) } } ) );
    };
    const auto merged = pause( u"1.25", u"Seconds" )->Merge( *pause( u"0.5", u"Seconds" ) );
    ASSERT_TRUE( merged );
    EXPECT_EQ( At( Saved( *merged ), "Time" ), Str( u"1.75" ) );
    EXPECT_FALSE( pause( u"1", u"Seconds" )->Merge( *pause( u"1", u"Minutes" ) ) );
    EXPECT_FALSE( pause( u"1+1", u"Seconds" )->Merge( *pause( u"1", u"Seconds" ) ) );
    EXPECT_FALSE( pause( u"1", u"Seconds" )->Merge( *HBaseAction::CreateActionOfType( HActionType::kGroup ) ) );
}

TEST( HBaseAction, AnOlderInsertTextTakesItsKindFromTwoFlags )
{
    struct Case
    {
        std::initializer_list<PlistEntry> mKeys;
        TextView mAction;
    };
    const Case kCases[] = {
        { {}, u"ByTyping" },
        { { { "Paste", Bool( true ) } }, u"ByPasting" },
        { { { "JustDisplay", Bool( true ) }, { "Paste", Bool( true ) } }, u"DisplayWindow" },
        { { { "JustDisplay", Bool( false ) } }, u"ByTyping" },
        { { { "Action", Str( u"DisplayLarge" ) }, { "Paste", Bool( true ) } }, u"DisplayLarge" },
    };
    for ( const auto& [keys, action] : kCases )
    {
        const auto saved = Reloaded( ActionDict( u"InsertText", keys ) );
        EXPECT_EQ( At( saved, "Action" ), Str( action ) );
        EXPECT_EQ( At( saved, "Paste" ), nullptr );
    }
}

TEST( HBaseAction, AnApplicationAloneSaysWhatOlderFilesMeant )
{
    const auto application = Dict( { { "Name", Str( u"Editor" ) } } );
    const auto target = Reloaded( ActionDict( u"InsertText", { { "TargetApplication", application } } ) );
    EXPECT_EQ( At( target, "TargetingType" ), Str( u"Specific" ) );
    EXPECT_EQ( At( target, "TargetApplication" ), application );
    const auto open = Reloaded( ActionDict( u"OpenURL", { { "Application", application } } ) );
    EXPECT_EQ( At( open, "IsDefaultApplication" ), Bool( false ) );
    EXPECT_EQ( At( open, "Application" ), application );
}

TEST( HBaseAction, AnApplicationThatIsNotInUseIsKeptForWhoChoosesItAgain )
{
    const auto application = Dict( { { "Name", Str( u"Editor" ) } } );
    const auto target = ActionDict( u"InsertText",
        { { "Text", Str( u"" ) }, { "Action", Str( u"ByTyping" ) }, { "TargetingType", Str( u"Front" ) },
            { "TargetApplication", application } } );
    EXPECT_EQ( Reloaded( target ), target );
    const auto unknown = Reloaded( With( target, "TargetingType", Str( u"Behind" ) ) );
    EXPECT_EQ( unknown, With( target, "TargetingType", Str( u"Specific" ) ) ) << "an application stands beside it";
    const auto open =
        ActionDict( u"OpenURL", { { "IsDefaultApplication", Bool( true ) }, { "Application", application } } );
    EXPECT_EQ( At( Reloaded( open ), "IsDefaultApplication" ), Bool( true ) );
    EXPECT_EQ( At( Reloaded( open ), "Application" ), application );
}

TEST( HBaseAction, StyledTextIsKeptByteForByte )
{
    const std::uint8_t bytes[] = { 0, 255, 7, 0 };
    const __SafeCFPropertyList styled = XPlistData::Make( bytes );
    EXPECT_EQ( At( Reloaded( ActionDict( u"InsertText", { { "StyledText", styled } } ) ), "StyledText" ), styled );
    const auto comment = Reloaded( ActionDict( u"Comment", { { "StyledText", styled }, { "Text", Str( u"old" ) } } ) );
    EXPECT_EQ( comment, ActionDict( u"Comment", { { "Title", Str( u"" ) }, { "StyledText", styled } } ) );
    EXPECT_EQ( At( Reloaded( ActionDict( u"Comment", { { "Text", Str( u"old" ) } } ) ), "Text" ), Str( u"old" ) );
}

TEST( HBaseAction, DescriptionsSayWhatTheActionWillDo )
{
    const std::pair<__SafeCFPropertyList, const char*> kCases[] = {
        { ActionDict( u"Pause", { { "Time", Str( u"1" ) } } ), "Pause for 1 Second" },
        { ActionDict( u"Pause", { { "Time", Str( u"2" ) }, { "Unit", Str( u"Hours" ) } } ), "Pause for 2 Hours" },
        { ActionDict( u"Repeat" ), "Repeat With No Actions Will Do Nothing" },
        { ActionDict(
              u"Repeat", { { "CountExpression", Str( u"5" ) }, { "Actions", Array( { ActionDict( u"ShowAll" ) } ) } } ),
            "Repeat the Following Actions 5 Times" },
        { ActionDict( u"Group" ), "Execute Nothing" },
        { ActionDict( u"Group", { { "Actions", Array( { ActionDict( u"ShowAll" ) } ) } } ),
            "Execute the Following Actions" },
        { ActionDict( u"Until", { { "Conditions", Dict( {} ) } } ),
            "Until With No Actions and No Conditions Will Do Nothing" },
        { ActionDict(
              u"Until", { { "Conditions", Dict( {} ) }, { "Actions", Array( { ActionDict( u"ShowAll" ) } ) } } ),
            "Until With No Conditions Will Execute the Following Actions Once" },
        { ActionDict( u"SetVariableToText", { { "Variable", Str( u"Total" ) }, { "Text", Str( u"a\nb" ) } } ),
            "Set Variable “Total” to Text “a b”" },
        { ActionDict( u"Pause", { { "ActionName", Str( u"Breathe" ) } } ), "Breathe" },
    };
    for ( const auto& [dictionary, description] : kCases )
        EXPECT_EQ( UTF8FromText( HBaseAction::CreateFromPropertyList( dictionary )->GetActionDescriptionString() ),
            description );
}

// Searching

TEST( HBaseAction, ASearchFindsAContainerByWhatItHoldsUnlessItsOwnWordsAreAskedFor )
{
    const auto inner = ActionDict( u"Pause", { { "ActionName", Str( u"inner" ) } } );
    const auto pause = HBaseAction::CreateFromPropertyList( inner );
    const auto group = HBaseAction::CreateFromPropertyList(
        ActionDict( u"Group", { { "ActionName", Str( u"outer" ) }, { "Actions", Array( { inner } ) } } ) );
    struct
    {
        const HBaseAction& mAction;
        const char16_t* mWord;
        bool mMatches, mJustContainer;
    } const kCases[] = {
        { *group, u"outer", true, true },
        { *group, u"inner", true, false },
        { *group, u"neither", false, false },
        { *group, u"loop", false, false },
        { *pause, u"inner", true, true },
        { *pause, u"Wait", true, true }, // a further word of the type
        { *pause, u"outer", false, false },
    };
    for ( const auto& row : kCases )
    {
        StringSearcher searcher{ TextView( row.mWord ) };
        const bool matches = row.mAction.MatchesTextSearch( searcher );
        EXPECT_EQ( matches, row.mMatches ) << UTF8FromText( row.mWord );
        EXPECT_EQ( row.mAction.MatchesTextSearchJustContainer( matches, searcher ), row.mJustContainer )
            << UTF8FromText( row.mWord );
    }
    StringSearcher nothing;
    EXPECT_TRUE( group->MatchesTextSearch( nothing ) );
}

// Flow control

TEST( HBaseAction, EmptinessOfContainersFollowsTheirLists )
{
    const auto entry = Dict( {} );
    const auto full = Dict( { { "Actions", Array( { ActionDict( u"ShowAll" ) } ) } } );
    const std::pair<__SafeCFPropertyList, bool> kCases[] = {
        { ActionDict( u"Switch", { { "CaseEntries", Array( {} ) } } ), true },
        { ActionDict( u"Switch", { { "CaseEntries", Array( { entry } ) } } ), true },
        { ActionDict( u"Switch", { { "CaseEntries", Array( { entry, entry } ) } } ), false },
        { ActionDict( u"Switch", { { "CaseEntries", Array( { full } ) } } ), false },
        { ActionDict( u"Group" ), true },
        { ActionDict( u"Pause" ), true },
        { ActionDict( u"IfThenElse",
              { { "Conditions", Dict( {} ) }, { "ElseActions", Array( { ActionDict( u"ShowAll" ) } ) } } ),
            false },
    };
    for ( const auto& [dictionary, empty] : kCases )
        EXPECT_EQ( HBaseAction::CreateFromPropertyList( dictionary )->IsEmptyOfActions(), empty )
            << Shown( dictionary );
}

TEST( HBaseAction, CaseEntriesThatCantBeUnderstoodFallOutAndOneAlwaysStands )
{
    const auto good =
        Dict( { { "TestValue", Str( u"1" ) }, { "ConditionType", Str( u"Otherwise" ) }, { "Actions", Array( {} ) } } );
    const auto bad = Dict( { { "Actions", Str( u"x" ) } } );
    EXPECT_EQ( At( Reloaded( ActionDict( u"Switch", { { "CaseEntries", Array( { Str( u"?" ), good, bad } ) } } ) ),
                   "CaseEntries" ),
        Array( { good } ) );
    for ( const auto& none : { Array( {} ), Array( { bad } ), Str( u"x" ) } )
        EXPECT_EQ(
            At( Reloaded( ActionDict( u"Switch", { { "CaseEntries", none } } ) ), "CaseEntries" ).AsArray()->GetCount(),
            1u );
}

TEST( HBaseAction, SavingAndComparingASwitchThatAScriptEmptiedChangeNothing )
{
    ASwitch emptied;
    const auto entries = emptied.AppleScriptGetCaseEntryList();
    entries->RemoveEntryAtIndex( 0 );
    EXPECT_EQ( emptied.CompareFields( emptied ), 0 );
    EXPECT_EQ( At( Saved( emptied ), "CaseEntries" ), Array( {} ) );
    EXPECT_EQ( entries->GetCount(), 0 );
}

TEST( HBaseAction, ACaseEntryAlwaysComesOutOfItsXML )
{
    for ( const TextView text : { TextView(), TextView( u"<broken" ), TextView( u"<plist><array/></plist>" ) } )
    {
        const auto entry = HCaseEntry::CreateFromCaseEntryXML( text );
        ASSERT_TRUE( entry );
        EXPECT_EQ( entry->GetConditionType(), GenericConditionType::kContains );
    }
    HCaseEntry entry;
    entry.SetConditionType( GenericConditionType::kOtherwise );
    const auto again = HCaseEntry::CreateFromCaseEntryXML( *entry.GetCaseEntryXML() );
    EXPECT_EQ( again->GetConditionType(), GenericConditionType::kOtherwise );
    EXPECT_EQ( UTF8FromText( again->GetDescription() ), "Otherwise" );
}

TEST( HBaseAction, OnlyALockWaitsAndOnlyAnUnlockFails )
{
    struct
    {
        const char16_t* mAction;
        bool mTimeOut, mFail;
    } const kCases[] = { { u"Lock", true, false }, { u"Unlock", false, true }, { u"Reset", false, false } };
    for ( const auto& row : kCases )
    {
        const auto action = HBaseAction::CreateFromPropertyList(
            ActionDict( u"Semaphore", { { "SemaphoreAction", Str( row.mAction ) } } ) );
        EXPECT_EQ( action->HasTimeOut(), row.mTimeOut );
        EXPECT_EQ( action->ActionCanFail(), row.mFail );
    }
}

TEST( HBaseAction, EngroupingGivesTheContainerAndTheListThatReceives )
{
    class NoMacro final : public EngroupSelector
    {
        MMacro* newMacroForEngroup() override { return nullptr; }
    } selector;
    const char* const kKeys[] = { "For", "Group", "IfThenElse", "IfThenElse", "Repeat", "Switch", "Until", "While" };
    for ( int i = 0; i < 8; ++i )
    {
        const EngroupResult result = CreateActionForForEngroup( selector, EngroupSelection( i ) );
        ASSERT_TRUE( result.mContainer and result.mList ) << i;
        EXPECT_EQ( KeyOf( result.mContainer->GetActionType() ).GetUTF8(), kKeys[i] );
        result.mList->AppendAction( HBaseAction::CreateActionOfType( HActionType::kShowAll ) );
        EXPECT_FALSE( result.mContainer->IsEmptyOfActions() ) << i;
    }
    for ( const int none : { 8, 9, -1, 1000 } )
        EXPECT_FALSE( CreateActionForForEngroup( selector, EngroupSelection( none ) ).mContainer ) << none;
}

TEST( HBaseAction, EngroupingIntoAMacroExecutesItAndItsOwnActionsReceive )
{
    class NewMacro final : public EngroupSelector
    {
    public:
        MMacro* newMacroForEngroup() override { return &mMacro; }
        MMacro mMacro;
    } selector;
    const EngroupResult result = CreateActionForForEngroup( selector, EngroupSelection::kNewMacro );
    const auto* execute = dynamic_cast<const AExecuteMacro*>( result.mContainer.get() );
    ASSERT_TRUE( execute );
    EXPECT_EQ( execute->GetMacroUID(), selector.mMacro.GetUID() );
    EXPECT_EQ( result.mList, selector.mMacro.GetActionList() );
}

TEST( HBaseAction, ADroppedApplicationIsActivatedUnlessItIsAScript )
{
    const ScratchFolder folder;
    std::filesystem::create_directories( folder.Path() / "Applet.app" / "Contents" );
    folder.Write( "Applet.app/Contents/Info.plist",
        UTF8FromText( *kvr_toXMLString( Dict( { { "CFBundleSignature", Str( u"aplt" ) } } ) ) ) );
    std::filesystem::create_directory( folder / "Plain.app" );
    Text title;
    const auto script = CreateActionForDraggedPath( folder / "Applet.app", title );
    EXPECT_EQ( script->GetActionType(), HActionType::kExecuteAppleScript );
    EXPECT_EQ( UTF8FromText( title ), "Execute ‘Applet.app’" );
    const auto application = CreateActionForDraggedPath( folder / "Plain.app", title );
    EXPECT_EQ( application->GetActionType(), HActionType::kActivateApplication );
    EXPECT_EQ( UTF8FromText( title ), "Activate ‘Plain’" );
    EXPECT_EQ( At( Saved( *application ), "Application" ), Dict( { { "Name", Str( u"Plain" ) } } ) );
}

TEST( HBaseAction, ADroppedFileGivesTheActionThatFitsItsName )
{
    struct
    {
        const char* mPath;
        const char* mType;
        const char* mTitle;
    } const kCases[] = {
        { "/", "Open1File", "Open ‘/’" },
        { "/usr/", "Open1File", "Open ‘usr’" },
        { "/none/a.scpt", "ExecuteAppleScript", "Execute ‘a.scpt’" },
        { "/none/a.workflow", "ExecuteWorkflow", "Execute ‘a.workflow’" },
        { "/none/a.swift", "ExecuteSwift", "Execute ‘a.swift’" },
        { "/none/a.JS", "ExecuteJavaScriptForAutomation", "Execute ‘a.JS’" },
        { "/none/a.py", "ExecuteShellScript", "Execute ‘a.py’" },
        { "/none/a.app", "Open1File", "Open ‘a.app’" },
        { "/none/letters.txt", "Open1File", "Open ‘letters.txt’" },
    };
    for ( const auto& row : kCases )
    {
        Text title;
        const auto action = CreateActionForDraggedPath( row.mPath, title );
        ASSERT_TRUE( action ) << row.mPath;
        EXPECT_EQ( KeyOf( action->GetActionType() ).GetUTF8(), row.mType ) << row.mPath;
        EXPECT_EQ( UTF8FromText( title ), row.mTitle );
    }
}

TEST( ActionColor, ScriptsNameColoursInLowerCaseAndNeverSearch )
{
    using ActionColor::Type;
    EXPECT_EQ( ActionColor::ToAppleScriptString( Type::kMagenta ), u"magenta" );
    EXPECT_EQ( ActionColor::FromAppleScriptString( u"tEaL" ), Type::kTeal );
    for ( const TextView none :
        { TextView( u"search" ), TextView( u"Search" ), TextView( u"" ), TextView( u"mauve" ) } )
        EXPECT_EQ( ActionColor::FromAppleScriptString( none ), Type::kNone );
}

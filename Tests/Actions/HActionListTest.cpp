#include "ActionTestSupport.h"
#include "Actions/ActionLimits.h"

#include "Actions/HEngineNotificationPoster.h"
#include "Actions/MacroActions.h"
#include "Defines/KVIconRegistry.h"
#include "Macros/MMacroInsertion.h"

namespace
{
std::unique_ptr<HBaseAction> Named( TextView inName )
{
    auto action = HBaseAction::CreateActionOfType( HActionType::kShowAll );
    action->SetActionName( XText( inName ) );
    return action;
}

void Fill( HActionList& ioList, TextView inNames )
{
    for ( const char16_t name : inNames )
        ioList.AppendAction( Named( TextView( &name, 1 ) ) );
}

std::string NamesIn( const HActionList& inList )
{
    std::string names;
    inList.DoForEveryActionAndSubAction( [&]( HBaseAction& action ) { names += action.GetActionName().GetUTF8(); } );
    return names;
}

class Drops final : public MLoadObserver
{
public:
    void DidDrop( const XPlistArray&, std::size_t inIndex, TextView inReason ) override
    {
        mText += std::to_string( inIndex ) + ":" + UTF8FromText( inReason ) + ";";
    }
    void DidReadOlderKey( const XPlistDictionary&, const XKey& inOlder, const XKey& inCurrent ) override
    {
        mText += std::string( inOlder.Name() ) + ">" + std::string( inCurrent.Name() ) + ";";
    }
    void DidUpgradeType( const XPlistDictionary&, TextView inOlder, TextView inCurrent ) override
    {
        mText += UTF8FromText( inOlder ) + ">" + UTF8FromText( inCurrent ) + ";";
    }
    void DidRepair( const XPlistDictionary&, const XKey& inKey, MLoadRule, TextView ) override
    {
        mText += "repaired " + std::string( inKey.Name() ) + ";";
    }
    void DidUpgradeValue( const XPlistDictionary&, const XKey&, TextView ) override {}
    void DidReadUID( const XPlistDictionary&, const XText&, const XText& ) override {}

    std::string mText;
};
} // namespace

TEST( HActionList, OperationsByIndex )
{
    struct Case
    {
        const char* mWhat;
        std::function<void( HActionList& )> mDo;
        const char* mExpected;
    };
    const Case kCases[] = {
        { "relocate forward", []( HActionList& list ) { list.RelocateActionToIndex( 0, 2 ); }, "BCA" },
        { "relocate back", []( HActionList& list ) { list.RelocateActionToIndex( 2, 0 ); }, "CAB" },
        { "relocate by one", []( HActionList& list ) { list.RelocateActionToIndex( 0, 1 ); }, "BAC" },
        { "relocate to itself", []( HActionList& list ) { list.RelocateActionToIndex( 1, 1 ); }, "ABC" },
        { "insert first", []( HActionList& list ) { list.InsertActionAt( 0, Named( u"X" ) ); }, "XABC" },
        { "insert below 0", []( HActionList& list ) { list.InsertActionAt( -5, Named( u"X" ) ); }, "XABC" },
        { "insert last", []( HActionList& list ) { list.InsertActionAt( 3, Named( u"X" ) ); }, "ABCX" },
        { "replace", []( HActionList& list ) { list.SetActionAtIndex( 1, Named( u"X" ) ); }, "AXC" },
        { "remove", []( HActionList& list ) { list.RemoveActionAtIndex( 1 ); }, "AC" },
        { "extract", []( HActionList& list ) { static_cast<void>( list.ExtractAndRemoveAction( 2 ) ); }, "AB" },
        { "remove while walking",
            []( HActionList& list ) {
                list.DoForEveryAction(
                    [&]( HBaseAction& action ) { list.RemoveActionAtIndex( list.IndexOfAction( &action ) ); } );
            },
            "" },
    };
    for ( const Case& row : kCases )
    {
        HActionList list;
        Fill( list, u"ABC" );
        row.mDo( list );
        EXPECT_EQ( NamesIn( list ), row.mExpected ) << row.mWhat;
    }
}

TEST( HActionList, AnIndexPastTheEndIsAssertedAndChangesNothing )
{
    const LogCapture log;
    HActionList list;
    Fill( list, u"AB" );
    EXPECT_EQ( list.GetAction( 2 ), nullptr );
    list.RemoveActionAtIndex( 9 );
    list.SetActionAtIndex( 2, Named( u"X" ) );
    EXPECT_EQ( NamesIn( list ), "AB" );
    EXPECT_EQ( log.CountContaining( "it != mActionList.end()" ), 3u );
}

TEST( HActionList, IndexOfActionIsByIdentity )
{
    HActionList list, other;
    Fill( list, u"AB" );
    Fill( other, u"AB" );
    EXPECT_EQ( list.IndexOfAction( list.GetAction( 1 ) ), 1 );
    EXPECT_EQ( list.IndexOfAction( other.GetAction( 1 ) ), std::numeric_limits<std::int64_t>::max() );
}

TEST( HActionList, WhatCantBeUnderstoodIsDroppedWithALineAndItsNeighboursStay )
{
    const std::pair<__SafeCFPropertyList, const char*> kBad[] = {
        { ActionDict( u"Unheard" ), "good" },
        { ActionDict( u"pause" ), "good" },
        { Dict( {} ), "good" },
        { Dict( { { "MacroActionType", Bool( true ) } } ), "good" },
        { Str( u"Pause" ), "actionDictionary && actionDictionary->IsCorrectTypeID()" },
        { ActionDict( u"While" ), "dictionary->Get( CFSTR(\"Conditions\"), conditions )" },
        { ActionDict( u"For", { { "Variable", Str( u"x" ) } } ),
            "dictionary->Get( CFSTR(\"Collections\"), collections )" },
        { ActionDict( u"ExecuteMacro", { { "MacroUID", Bool( true ) } } ),
            "dictionary->Get( CFSTR(\"MacroUID\"), macroUID )" },
        { ActionDict( u"Group", { { "Actions", Dict( {} ) } } ), "actions && actions->IsCorrectTypeID()" },
        { ActionDict( u"Group", { { "Actions", Str( u"" ) } } ), "actions && actions->IsCorrectTypeID()" },
    };
    for ( const auto& [bad, reason] : kBad )
    {
        const LogCapture log;
        Drops drops;
        HActionList list;
        {
            const MLoadObserver::Scope scope( drops );
            list.LoadActionsFromPropertyList( Array( { ActionDict( u"ShowAll", { { "ActionName", Str( u"A" ) } } ), bad,
                ActionDict( u"ShowAll", { { "ActionName", Str( u"B" ) } } ) } ) );
        }
        EXPECT_EQ( NamesIn( list ), "AB" ) << reason;
        EXPECT_EQ( drops.mText, "1:" + std::string( reason ) + ";" );
        EXPECT_EQ(
            log.CountContaining( "Failed to understand action with error " + std::string( reason ) + " at " ), 1u )
            << reason;
    }
}

TEST( HActionList, AValueThatIsNoArrayThrows )
{
    HActionList list;
    EXPECT_THROW( list.LoadActionsFromPropertyList( Dict( {} ) ), XException );
    EXPECT_THROW( list.LoadActionsFromPropertyList( nullptr ), XException );
    EXPECT_TRUE( list.Empty() );
}

TEST( HActionList, PastingSkipsWithoutALineAndFollowsTheInsertion )
{
    const LogCapture log;
    HActionList list;
    list.AppendActionsFromPList( Array(
        { ActionDict( u"Unheard" ), ActionDict( u"ExecuteMacro", { { "MacroUID", Str( u"OLD" ) } } ), Str( u"x" ) } ) );
    EXPECT_EQ( list.GetCount(), 1 );
    list.AppendActionsFromPList( Str( u"no array" ) );
    EXPECT_EQ( list.GetCount(), 1 );
    EXPECT_FALSE( MMacroInsertion::CurrentlyInserting() );
    EXPECT_EQ( log.CountContaining( "Failed to understand" ), 0u );
}

TEST( HActionList, TheDisclosedKeyIsOnlyThereWhenFalse )
{
    for ( const bool disclosed : { true, false } )
    {
        const auto saved = Reloaded( ActionDict( u"Group", { { "ActionListDisclosed", Bool( disclosed ) } } ) );
        EXPECT_EQ( At( saved, "ActionListDisclosed" ), disclosed ? nullptr : Bool( false ) );
    }
}

TEST( HActionList, TheIconIsThatOfTheOneActionThatIsNoComment )
{
    const XIcon several( KVIconRegistry( 24 ) ), none( KVIconRegistry( 38 ) ), itself( KVIconRegistry( 134 ) );
    const XIcon group = HBaseAction::GetActionTypeXIcon( HActionType::kGroup );
    const XIcon comment = HBaseAction::GetActionTypeXIcon( HActionType::kComment );
    using enum HActionType;
    const std::pair<std::vector<HActionType>, XIcon> kCases[] = {
        { {}, none },
        { { kComment, kComment }, comment },
        { { kComment, kGroup, kComment }, group },
        { { kGroup, kComment, kPause }, several },
    };
    for ( const auto& [types, icon] : kCases )
    {
        HActionList list;
        for ( const HActionType type : types )
            list.AppendAction( HBaseAction::CreateActionOfType( type ) );
        EXPECT_EQ( list.GetXIconForAction( nullptr ), icon ) << types.size();
    }
    HActionList list;
    list.AppendAction( HBaseAction::CreateActionOfType( kGroup ) );
    EXPECT_EQ( list.GetXIconForAction( list.GetAction( 0 ) ), itself );
}

TEST( HActionList, TryingSendsTheActionsToTheEngine )
{
    class Poster final : public HEngineNotificationPoster
    {
    public:
        void PostToEngine( TextView inName, CFContainer<XPlistDictionary> inInformation ) override
        {
            mName = UTF8FromText( inName );
            mInformation = inInformation;
        }
        std::string mName;
        __SafeCFPropertyList mInformation;
    } poster;
    const HEngineNotificationPoster::Scope scope( poster );
    const auto action = HBaseAction::CreateActionOfType( HActionType::kGroup );
    const auto group = ActionDict( u"Group", { { "TimeOutAbortsMacro", Bool( true ) }, { "Actions", Array( {} ) } } );

    HActionList::TryAction( *action );
    EXPECT_EQ( poster.mName, "KV_DoExecuteActions" );
    EXPECT_EQ( poster.mInformation, Dict( { { "Actions", Array( { group } ) }, { "Trying", Bool( true ) } } ) );
    HActionList::DoActionQuietly( *action );
    EXPECT_EQ(
        poster.mInformation, Dict( { { "Actions", Array( { ActionDict( u"DontRotateStatusMenu" ), group } ) } } ) );
}

TEST( HActionList, ContainersNestedDeeplyLoadCloneAndSave )
{
    __SafeCFPropertyList nested =
        ActionDict( u"Group", { { "Actions", Array( {} ) }, { "TimeOutAbortsMacro", Bool( true ) } } );
    for ( int i = 1; i < 500; ++i )
        nested = ActionDict( u"Group", { { "Actions", Array( { nested } ) }, { "TimeOutAbortsMacro", Bool( true ) } } );
    const auto action = HBaseAction::CreateFromPropertyList( nested );
    EXPECT_EQ( Saved( *action->Clone() ), nested );
    int count = 1;
    action->DoForEverySubAction( [&]( HBaseAction& ) { ++count; } );
    EXPECT_EQ( count, 500 );
}

TEST( HActionList, WhatIsNestedBeyondTheLimitIsLeftOutAndTheRestStands )
{
    const LogCapture log;
    __SafeCFPropertyList nested = ActionDict( u"Group" );
    for ( int i = 0; i < 5000; ++i )
        nested = ActionDict( u"Group", { { "Actions", Array( { nested } ) } } );
    const auto action = HBaseAction::CreateFromPropertyList( nested );
    int count = 1;
    action->DoForEverySubAction( [&]( HBaseAction& ) { ++count; } );
    EXPECT_EQ( count, kMostNestedActions );
    EXPECT_EQ( log.CountContaining( "actions are nested more than 1000 deep" ), 1u );
}

TEST( HActionList, TheLoadObserverHearsOfOlderKeysUpgradesAndRepairs )
{
    const std::pair<__SafeCFPropertyList, const char*> kCases[] = {
        { ActionDict( u"Pause", { { "Seconds", __SafeCFPropertyList::Real( 2.5 ) } } ), "Seconds>Time;" },
        { ActionDict( u"Pause", { { "Unit", Str( u"Fortnights" ) } } ), "repaired Unit;" },
        { ActionDict( u"Pause", { { "Unit", Bool( true ) } } ), "repaired Unit;" },
        { ActionDict( u"Pause", { { "ActionColor", Str( u"red" ) } } ), "repaired ActionColor;" },
        { ActionDict( u"Growl", { { "Title", Str( u"T" ) } } ), "Growl>Notification;" },
        { ActionDict( u"InsertText", { { "Paste", Bool( true ) } } ), "Paste>Action;" },
        { ActionDict( u"Cancel", { { "Instance", Bool( true ) } } ), "repaired Instance;" },
        { ActionDict( u"Pause", { { "Time", Str( u"1" ) }, { "Unit", Str( u"Hours" ) } } ), "" },
    };
    for ( const auto& [action, expected] : kCases )
    {
        Drops observer;
        const MLoadObserver::Scope scope( observer );
        static_cast<void>( HBaseAction::CreateFromPropertyList( action ) );
        EXPECT_EQ( observer.mText, expected );
    }
}

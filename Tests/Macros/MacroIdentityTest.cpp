#include "Macros/MUIDEverSeen.h"
#include "Macros/MUIDObject.h"
#include "Platform/Platform.h"
#include "Tests/Fakes/FakeAlerts.h"
#include "Tests/Macros/MacroFixtures.h"

#include <algorithm>
#include <regex>
#include <set>

using MacroIdentity = MacroWorld;

TEST_F( MacroIdentity, AnObjectIsFoundByItsUIDFromConstructionToDestruction )
{
    const InsertionScope insertion;
    XText uid;
    {
        const MMacro macro;
        uid = macro.GetUID();
        EXPECT_TRUE( std::regex_match(
            uid.GetUTF8(), std::regex( "[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}" ) ) );
        EXPECT_EQ( MMacroSerializedObject::FindMacroByUID( uid ), &macro );
        EXPECT_EQ( MMacroSerializedObject::FindMacroGroupByUID( uid ), nullptr );
        EXPECT_EQ( MMacroSerializedObject::FindMacroSmartGroupByUID( uid ), nullptr );
    }
    EXPECT_EQ( MMacroSerializedObject::FindObjectByUID( uid ), nullptr );
    EXPECT_EQ( MMacroSerializedObject::FindObjectByUID( u"" ), nullptr );
    EXPECT_EQ( MMacroSerializedObject::FindObjectByUID( nullptr ), nullptr );
    EXPECT_TRUE( MUIDEverSeen::Contains( uid ) );
}

TEST_F( MacroIdentity, AUIDThatCannotBeUsedIsReplacedWithALineInTheLog )
{
    const MMacroGroup holder;
    const struct
    {
        __SafeCFPropertyList mUID;
        const char* mLine;
    } kCases[] = {
        { nullptr, "Missing UID ignored for macro / macro group 'Mine'" },
        { Int( 7 ), "Missing UID ignored for macro / macro group 'Mine'" },
        { Str( u"" ), "Empty UID ignored for macro / macro group 'Mine'" },
        { Str( holder.GetUID().GetText() ), "Duplicate UID ignored for macro / macro group 'Mine'" },
    };
    for ( const auto& [uid, line] : kCases )
    {
        const auto macro = LoadedMacro( MacroWith( u"", { { "UID", uid }, { "Name", Str( u"Mi\nne" ) } } ) );
        EXPECT_EQ( mLog.CountContaining( line ), 1u ) << line;
        EXPECT_EQ( macro->GetUID().GetLength(), 36u );
        EXPECT_NE( macro->GetUID(), holder.GetUID() );
        EXPECT_EQ( At( macro->CopyToPropertyList(), "UID" ), __SafeCFPropertyList( macro->GetUID() ) );
        (void)mLog.Take();
    }
}

TEST_F( MacroIdentity, OnlyADuplicateUIDIsMapped )
{
    const InsertionScope insertion;
    const MMacro first( MacroWith( u"SAME" ) ), second( MacroWith( u"SAME" ) ), other( MacroWith( u"" ) );
    EXPECT_EQ( first.GetUID(), XText( u"SAME" ) );
    EXPECT_EQ( MMacroInsertion::GetMapping( u"SAME" ), second.GetUID() );
    EXPECT_EQ( MMacroInsertion::GetReverseMapping( second.GetUID() ), XText( u"SAME" ) );
    EXPECT_EQ( MMacroInsertion::GetReverseMapping( other.GetUID() ), other.GetUID() );
}

TEST_F( MacroIdentity, TheUIDOfADroppedElementIsFreeAgain )
{
    const InsertionScope insertion;
    EXPECT_THROW( MMacro( MacroWith( u"M", { { "Triggers", nullptr } } ) ), XException );
    const MMacro macro( MacroWith( u"M" ) );
    EXPECT_EQ( macro.GetUID(), XText( u"M" ) );
    EXPECT_EQ( mLog.CountContaining( "Duplicate UID" ), 0u );
}

TEST_F( MacroIdentity, AConflictingSetUIDIsReportedAndTheTableNamesTheNewHolder )
{
    MMacroGroup first, second;
    auto third = std::make_unique<MMacroGroup>();
    first.SetUID( u"X" );
    second.SetUID( u"X" );
    EXPECT_EQ( mLog.CountAssertions( "!UIDInUse( inUID )" ), 1u );
    EXPECT_EQ( MMacroSerializedObject::FindObjectByUID( u"X" ), &second );
    third->SetUID( u"X" );
    // Leaving takes out one's own entry only.
    second.SetUID( u"Y" );
    EXPECT_EQ( MMacroSerializedObject::FindObjectByUID( u"X" ), third.get() );
    third.reset();
    EXPECT_EQ( MMacroSerializedObject::FindObjectByUID( u"X" ), nullptr );
    first.SetUID( u"" );
    EXPECT_EQ( mLog.CountAssertions( "!IsEmpty( inUID )" ), 1u );
    EXPECT_EQ( first.GetUID(), XText( u"X" ) );
}

TEST_F( MacroIdentity, ASecondNamespaceRefusesAConflictAndKeepsTheOldUID )
{
    FakeAlerts alerts;
    Platform platform;
    platform.SetAlerts( alerts );
    const Platform::Substitute platformInUse( platform );
    MMacroGroup group;
    MUIDObject first, second;
    const XText before = second.GetUID();
    first.SetUID( u"Q" );
    group.SetUID( u"Q" ); // another namespace: no conflict
    EXPECT_EQ( mLog.CountAssertions( "!UIDInUse( inUID )" ), 0u );
    second.SetUID( u"Q" );
    EXPECT_EQ( mLog.CountAssertions( "!UIDInUse( inUID )" ), 1u );
    constexpr char kRefusal[] = "Refusing to set conflicting UID to avoid conflict";
    EXPECT_EQ( mLog.CountContaining( kRefusal ), 1u );
    EXPECT_EQ( std::ranges::count( alerts.mSystemLog, TextFromUTF8( kRefusal ) ), 1 );
    EXPECT_EQ( second.GetUID(), before );
    EXPECT_TRUE( MUIDObject::UIDInUse( before ) );
    second.SetUID( before ); // its own is no conflict
    EXPECT_EQ( second.GetUID(), before );
    first.RecreateUID();
    EXPECT_FALSE( MUIDObject::UIDInUse( u"Q" ) );
    EXPECT_FALSE( MUIDObject::UIDInUse( u"" ) );
}

TEST_F( MacroIdentity, ACachedHandleKeepsTheUIDAndNeverDangles )
{
    auto group = std::make_unique<MMacroGroup>();
    MCachedMacroSerializedObject handle( group.get() ), none;
    EXPECT_EQ( handle.Get(), group.get() );
    EXPECT_EQ( none.GetUID(), XText( u"" ) );
    EXPECT_EQ( none.Get(), nullptr );
    group.reset();
    EXPECT_EQ( handle.Get(), nullptr );
    handle = nullptr;
    EXPECT_EQ( handle.GetUID(), XText( u"" ) );
}

TEST_F( MacroIdentity, NamesMatchWithoutRegardToCaseAndUIDsOrderWithIt )
{
    MMacroGroup upper, lower;
    upper.SetName( u"ABC" );
    upper.SetUID( u"ABC" );
    lower.SetUID( u"abc" );
    EXPECT_TRUE( upper.NameMatches( u"abc" ) );
    EXPECT_TRUE( upper.UIDMatches( u"aBc" ) );
    EXPECT_TRUE( upper.NameOrUIDMatches( u"abc" ) );
    EXPECT_FALSE( upper.NameMatches( u"abcd" ) );
    EXPECT_EQ( MMacroSerializedObject::CompareByUID( &upper, &lower ), -1 );
    EXPECT_EQ( MMacroSerializedObject::CompareByUID( &lower, &upper ), 1 );
    EXPECT_FALSE( upper.NameMatches( nullptr ) );
    EXPECT_EQ( mLog.CountAssertions( "inMatch" ), 1u );
    // By UTF-16 units, so a surrogate pair comes before the units behind the surrogates.
    upper.SetUID( u"\U0001F600" );
    lower.SetUID( u"\uFF21" );
    EXPECT_EQ( MMacroSerializedObject::CompareByUID( &upper, &lower ), -1 );
}

TEST_F( MacroIdentity, TimesBelowOneAreUnset )
{
    const struct
    {
        double mStored;
        bool mChanges;
    } kCases[] = { { 0, true }, { 0.5, true }, { -7, true }, { 1, false }, { 300, false } };
    for ( const auto& [stored, changes] : kCases )
    {
        const auto group = LoadedGroup( GroupWith( u"G", {}, { { "CreationDate", Real( stored ) } } ) );
        EXPECT_EQ( group->SetTimesIfNotSet(), changes ) << stored;
        EXPECT_EQ( group->GetCreationTime(), changes ? mClock.Now() : stored );
        EXPECT_FALSE( group->SetTimesIfNotSet() );
    }
}

TEST_F( MacroIdentity, BaseKeysAreReadWithDefaults )
{
    const struct
    {
        const char* mKey;
        __SafeCFPropertyList mRead, mWritten;
    } kCases[] = {
        { "CreationDate", Real( 5.5 ), Real( 5.5 ) },
        { "CreationDate", Int( 5 ), Real( 5 ) },
        { "CreationDate", Str( u"5" ), Real( 0 ) },
        { "CreationDate", nullptr, Real( 0 ) },
        // A time that is no number would have no place in any order.
        { "CreationDate", Real( std::numeric_limits<double>::quiet_NaN() ), Real( 0 ) },
        { "ModificationDate", Real( std::numeric_limits<double>::quiet_NaN() ), Real( 0 ) },
        { "ModificationDate", nullptr, Real( 0 ) },
        { "IsActive", Bool( true ), nullptr },
        { "IsActive", Bool( false ), Bool( false ) },
        { "IsActive", Int( 0 ), nullptr },
        { "CustomIconData", Int( 9 ), Int( 9 ) }, // kept as it stands until an icon is asked for
        { "CustomIconData", nullptr, nullptr },
    };
    for ( const auto& [key, read, written] : kCases )
    {
        const auto saved = LoadedMacro( MacroWith( u"M", { { key, read } } ) )->CopyToPropertyList();
        EXPECT_EQ( At( saved, key ), written ) << key << Shown( read );
    }
}

TEST_F( MacroIdentity, LoadingOutsideAnInsertionIsAnAssertionAndNoDictionaryThrows )
{
    MMacro macro( MacroWith( u"M" ) );
    EXPECT_GE( mLog.CountAssertions( "MMacroInsertion::CurrentlyInserting()" ), 1u );
    for ( const auto& value : { Str( u"x" ), Array( {} ), __SafeCFPropertyList() } )
    {
        try
        {
            (void)LoadedMacro( value );
            ADD_FAILURE() << Shown( value );
        }
        catch ( const XException& exception )
        {
            EXPECT_EQ( exception.GetMessage(), u"dictionary && dictionary->IsCorrectTypeID()" );
        }
    }
}

using MacroInsertion = MacroWorld;

TEST_F( MacroInsertion, EachMisuseIsAssertedAndSurvived )
{
    MMacroInsertion::AddMapping( u"a", u"b" );
    EXPECT_EQ( mLog.CountAssertions( "CurrentlyInserting()" ), 1u );
    EXPECT_EQ( MMacroInsertion::GetMapping( u"a" ), XText( u"a" ) );
    const InsertionScope insertion;
    const struct
    {
        const char16_t *mOld, *mNew;
        const char* mExpression;
    } kCases[] = {
        { u"", u"b", "!IsEmpty( inOldUID )" },
        { u"a", u"", "!IsEmpty( inNewUID )" },
        { u"s", u"s", "![oldUID isEqualToString:newUID]" },
        { u"a", u"b", nullptr },
        { u"a", u"b", nullptr }, // the same again
        { u"a", u"c", "!gUIDMap[oldUID] or [gUIDMap[oldUID] isEqualToString:newUID]" },
        { u"d", u"b", "!gReverseUIDMap[newUID] or [gReverseUIDMap[newUID] isEqualToString:oldUID]" },
    };
    for ( const auto& [from, to, expression] : kCases )
    {
        (void)mLog.Take();
        MMacroInsertion::AddMapping( from, to );
        EXPECT_EQ( mLog.CountContaining( "Assertion Failed" ), expression ? 1u : 0u );
        EXPECT_EQ( expression ? mLog.CountAssertions( expression ) : 1, 1u );
    }
    MMacroInsertion::RemoveMapping( u"no", u"ne" );
    EXPECT_EQ( mLog.CountAssertions( "gUIDMap[oldUID]" ), 1u );
    EXPECT_EQ( mLog.CountAssertions( "gReverseUIDMap[newUID]" ), 1u );
    MMacroInsertion::Start();
    EXPECT_EQ( mLog.CountAssertions( "!CurrentlyInserting()" ), 1u );
}

TEST_F( MacroInsertion, MappingsGoBothWaysUntilRemovedOrFinished )
{
    const InsertionScope insertion;
    MMacroInsertion::AddMapping( u"old", u"new" );
    EXPECT_EQ( MMacroInsertion::GetMapping( u"old" ), XText( u"new" ) );
    EXPECT_EQ( MMacroInsertion::GetReverseMapping( u"new" ), XText( u"old" ) );
    EXPECT_EQ( MMacroInsertion::GetMapping( u"other" ), XText( u"other" ) );
    MMacroInsertion::RemoveMapping( u"old", u"new" );
    EXPECT_EQ( MMacroInsertion::GetMapping( u"old" ), XText( u"old" ) );
    MMacroInsertion::Finish();
    EXPECT_FALSE( MMacroInsertion::CurrentlyInserting() );
    EXPECT_THAT( mLog.Take(),
        testing::ElementsAre( "Start insertion", "MMacroInsertion AddMapping UID mapping from old to new",
            "MMacroInsertion RemoveMapping UID mapping from old to new", "Finish insertion and ignore UIDs" ) );
}

TEST_F( MacroInsertion, WhateverHoldsUIDsFollowsTheMapping )
{
    const auto holders = []( TextView uid ) {
        const auto conditions = Dict( { { "ConditionListMatch", Str( u"All" ) },
            { "ConditionList",
                Array( { Dict( { { "ConditionType", Str( u"Macro" ) }, { "MacroUID", Str( uid ) },
                    { "MacroConditionType", Str( u"IsEnabled" ) } } ) } ) } } );
        const auto macros = Array( { Str( uid ), Str( u"other" ) } );
        XMutableArray actions;
        for ( const TextView type : { u"Assert", u"IfThenElse", u"PauseUntil", u"Until", u"While" } )
            actions.Append( Reloaded( ActionDict( type, { { "Conditions", conditions } } ) ) );
        for ( const TextView type : { u"ShowPaletteOfMacros", u"TriggerByName" } )
            actions.Append( Reloaded( ActionDict( type, { { "Macros", macros } } ) ) );
        return __SafeCFPropertyList( actions.Seal() );
    };
    HActionList list;
    list.LoadActionsFromPropertyList( holders( u"old" ) );
    const InsertionScope insertion;
    MMacroInsertion::AddMapping( u"old", u"new" );
    MMacroInsertion::Finish( list );
    EXPECT_EQ( Shown( list.CopyActionsToPropertyList() ), Shown( holders( u"new" ) ) );
}

TEST_F( MacroInsertion, FinishingMacrosSetsTimesAndLetsReferencesFollowOnceEach )
{
    MMacroInsertion::Start();
    MMacro macro( MacroWith( u"M",
        { { "CreationDate", Real( 0 ) }, { "ModificationDate", Real( 0 ) },
            { "Actions",
                Array( { ActionDict( u"IfThenElse",
                    { { "Conditions", Dict( {} ) }, { "ThenActions", Array( { ExecuteMacro( u"a" ) } ) },
                        { "ElseActions", Array( {} ) } } ) } ) } } ) );
    // A chain: whoever were updated twice would end at c.
    MMacroInsertion::AddMapping( u"a", u"b" );
    MMacroInsertion::AddMapping( u"b", u"c" );
    MMacroInsertion::Finish( std::vector<MMacro*>{ &macro, &macro } );
    EXPECT_EQ( mLog.CountContaining( "Finish insertion of set of 1 macros" ), 1u );
    const auto saved = macro.CopyToPropertyList();
    EXPECT_EQ( At( saved, "CreationDate" ), Real( mClock.Now() ) );
    EXPECT_EQ( At( saved, "ModificationDate" ), Real( mClock.Now() ) );
    const auto container = At( saved, "Actions" ).AsArray()->GetValueAt( 0 );
    EXPECT_EQ( At( At( container, "ThenActions" ).AsArray()->GetValueAt( 0 ), "MacroUID" ), Str( u"b" ) );
}

TEST_F( MacroInsertion, FinishingObjectsUpdatesTheGroupsAmongThem )
{
    MMacroInsertion::Start();
    MMacroGroup group(
        GroupWith( u"G", { MacroWith( u"M", { { "Actions", Array( { ExecuteMacro( u"a" ) } ) } } ) } ), nullptr );
    MMacroSmartGroup smartGroup;
    MMacroInsertion::AddMapping( u"a", u"b" );
    MMacroInsertion::Finish( std::vector<MMacroSerializedObject*>{ &group, &smartGroup } );
    EXPECT_EQ( mLog.CountContaining( "Finish insertion of set of 2 macro groups" ), 1u );
    EXPECT_THAT( ReferencesOf( group.FindFirstMacro()->CopyToPropertyList() ), testing::ElementsAre( u"b" ) );
}

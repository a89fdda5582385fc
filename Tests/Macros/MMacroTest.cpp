#include "Macros/MMacro.h"

#include "Macros/HMacroStats.h"
#include "Tests/Macros/MacroFixtures.h"
#include "Utility/Search/StringSearchee.h"
#include "Utility/Search/StringSearcher.h"

#include <algorithm>
#include <map>
#include <random>

using Macro = MacroWorld;

namespace
{
std::string LoadFailure( const __SafeCFPropertyList& inValue )
{
    const InsertionScope insertion;
    try
    {
        const MMacro macro( inValue );
        return "";
    }
    catch ( const XException& exception )
    {
        return UTF8FromText( exception.GetMessage() );
    }
}
} // namespace

TEST_F( Macro, AMissingListThrowsTheReadAsItStands )
{
    for ( const auto& wrong : { __SafeCFPropertyList(), Str( u"x" ), Dict( {} ) } )
    {
        EXPECT_EQ( LoadFailure( MacroWith( u"M", { { "Triggers", wrong } } ) ),
            "dictionary->Get( CFSTR(\"Triggers\"), triggers )" );
        EXPECT_EQ( LoadFailure( MacroWith( u"M", { { "Actions", wrong } } ) ), "actions" );
    }
}

TEST_F( Macro, ItsKeysAreWrittenAlwaysButForTheName )
{
    EXPECT_THAT( KeysOf( LoadedMacro( MacroWith( u"M" ) )->CopyToPropertyList() ),
        testing::ElementsAre( "Actions", "CreationDate", "ModificationDate", "Triggers", "UID" ) );
    const struct
    {
        __SafeCFPropertyList mRead, mWritten;
    } kNames[] = {
        { Str( u"Plain" ), Str( u"Plain" ) },
        { Str( u"a\r\nb\u2028c\vd\u0085e" ), Str( u"abcde" ) },
        { Str( u"" ), Str( u"" ) },
        { Str( u"Untitled Macro" ), Str( u"Untitled Macro" ) }, // no rule of SetName holds for a load
        { Int( 3 ), nullptr },
    };
    for ( const auto& [read, written] : kNames )
        EXPECT_EQ( At( LoadedMacro( MacroWith( u"M", { { "Name", read } } ) )->CopyToPropertyList(), "Name" ), written )
            << Shown( read );
}

TEST_F( Macro, ATriggerThatCannotBeUnderstoodIsDroppedAlone )
{
    const auto macro = LoadedMacro( MacroWith( u"M",
        { { "Triggers",
            Array( { Trigger( u"Wake", { { "Unknown", Int( 1 ) } } ), Trigger( u"Nonsense" ), Str( u"x" ), Dict( {} ),
                Trigger( u"FloatingPalette" ), Trigger( u"MenuBar" ), Trigger( u"wake" ),
                HotKeyTrigger( 32767 ) } ) } } ) );
    EXPECT_EQ( At( macro->CopyToPropertyList(), "Triggers" ),
        Array( { Trigger( u"Wake" ), Trigger( u"MacroPalette" ), Trigger( u"StatusMenu" ) } ) );
    macro->GetTriggerList().DoForEveryValue(
        [&]( const TBaseTrigger& trigger ) { EXPECT_EQ( trigger.GetMacro(), macro.get() ); } );
}

TEST_F( Macro, LoadingAgainForgetsWhatWasThere )
{
    const InsertionScope insertion;
    MMacro macro( MacroWith( u"M",
        { { "Name", Str( u"Old" ) }, { "IsActive", Bool( false ) }, { "Triggers", Array( { Trigger( u"Wake" ) } ) },
            { "Actions", Array( { ExecuteMacro( u"x" ) } ) } } ) );
    macro.LoadFromPropertyList( MacroWith( u"M" ) );
    EXPECT_EQ( macro.CopyToPropertyList(), MacroWith( u"M" ) );
    EXPECT_TRUE( macro.IsActive() );
}

TEST_F( Macro, AnUnnamedMacroFollowsItsFirstAction )
{
    const auto macro = LoadedMacro( MacroWith( u"M" ) );
    EXPECT_EQ( macro->GetName(), kvr_localized( u"kvUntitledMacro" ) );
    EXPECT_TRUE( macro->UntitledMacro() );
    macro->AppendAction(
        HBaseAction::CreateFromPropertyList( ActionDict( u"Comment", { { "ActionName", Str( u"Do" ) } } ) ) );
    const Text computed = macro->GetName();
    EXPECT_NE( computed, kvr_localized( u"kvUntitledMacro" ) );
    EXPECT_TRUE( macro->UntitledMacro() );

    const struct
    {
        Text mSet;
        XText mStored;
    } kCases[] = { { computed, {} }, { kvr_localized( u"kvUntitledMacro" ), {} }, { u"", {} },
        { computed + u"!", computed + u"!" }, { u"Untitled Macro 2", u"Untitled Macro 2" }, { u"a\nb", u"ab" } };
    for ( const auto& [set, stored] : kCases )
    {
        macro->SetName( u"Before" );
        macro->SetName( set );
        EXPECT_EQ( macro->GetStoredName(), stored ) << UTF8FromText( set );
        EXPECT_EQ( macro->GetName(), IsEmpty( stored ) ? computed : stored.GetText() );
    }
    macro->SetName( u"Untitled Macro 2" );
    EXPECT_TRUE( macro->UntitledMacro() );
    macro->SetName( u"Untitled Macros" );
    EXPECT_FALSE( macro->UntitledMacro() );
    EXPECT_EQ( macro->GetUnambiguousName(), u"Macro “Untitled Macros”" );
}

TEST_F( Macro, AHotKeyIsWhatAMacroIsKnownByElseTheFirstTriggerThatMayBeShown )
{
    const struct
    {
        std::vector<const char16_t*> mKinds;
        int mAny, mNoPalette; // the index of the trigger, or -1
    } kCases[] = {
        { {}, -1, -1 },
        { { u"MacroPalette" }, 0, -1 },
        { { u"MacroPalette", u"Wake", u"Sleep" }, 0, 1 },
        { { u"Wake", u"MacroPalette", u"HotKey", u"HotKey" }, 2, 2 },
        { { u"HotKey" }, 0, 0 },
    };
    for ( const auto& [kinds, any, noPalette] : kCases )
    {
        XMutableArray triggers;
        for ( const char16_t* const kind : kinds )
            triggers.Append( LoadableTrigger( kind ) );
        const auto macro = LoadedMacro( MacroWith( u"M", { { "Triggers", triggers.Seal() } } ) );
        const auto at = [&]( int index ) {
            return index < 0 ? nullptr : macro->GetTriggerList().GetValueAtIndex( std::size_t( index ) );
        };
        EXPECT_EQ( macro->GetDisplayTriggerFromMacro( true ), at( any ) );
        EXPECT_EQ( macro->GetDisplayTriggerFromMacro( false ), at( noPalette ) );
    }
}

TEST_F( Macro, AMacroHasOneOwnerAtATime )
{
    MMacroGroup first, second;
    auto made = LoadedMacro( MacroWith( u"M" ) );
    MMacro* const macro = made.get();
    first.InsertMacro( std::move( made ) );
    second.InsertMacro( std::unique_ptr<MMacro>( macro ) );
    EXPECT_EQ( macro->GetOwningGroup(), &second );
    EXPECT_EQ( first.GetMacroCount(), 0u );
    EXPECT_EQ( second.FindFirstMacro(), macro );
    second.RemoveMacro( macro );
    EXPECT_EQ( macro->GetOwningGroup(), nullptr );
    EXPECT_EQ( second.GetMacroCount(), 0u );
    second.InsertMacro( std::unique_ptr<MMacro>( macro ) );
    second.DeleteMacro( macro );
    EXPECT_EQ( MMacroSerializedObject::FindObjectByUID( u"M" ), nullptr );
}

TEST_F( Macro, ACloneIsTheSameMacroUnderAnotherUID )
{
    const auto macro = LoadedMacro( MacroWith( u"M",
        { { "Name", Str( u"N" ) }, { "IsActive", Bool( false ) }, { "CustomIconData", Str( u"KVEC" ) },
            { "Triggers", Array( { Trigger( u"Wake" ) } ) }, { "Actions", Array( { ExecuteMacro( u"x" ) } ) } } ) );
    const auto source = macro->CopyToPropertyList();
    mClock.Advance( 5 );

    const auto shown = macro->Clone( CloneFor::kDisplayOnlyReference );
    EXPECT_EQ( mLog.CountContaining( "Assertion Failed" ), 0u );
    EXPECT_EQ( With( shown->CopyToPropertyList(), "UID", Str( u"M" ) ), source );

    const InsertionScope insertion;
    const auto copy = macro->Clone( CloneFor::kDuplicate );
    EXPECT_EQ(
        With( copy->CopyToPropertyList(), { { "UID", Str( u"M" ) }, { "CreationDate", Real( 100 ) } } ), source );
    EXPECT_EQ( copy->GetCreationTime(), mClock.Now() );
    EXPECT_EQ( MMacroInsertion::GetMapping( u"M" ), copy->GetUID() );
    EXPECT_NE( copy->GetActionList()->GetAction( 0 ), macro->GetActionList()->GetAction( 0 ) );
    EXPECT_EQ( copy->GetTriggerList().GetValueAtIndex( 0 )->GetMacro(), copy.get() );
    EXPECT_EQ( macro->GetTriggerList().GetValueAtIndex( 0 )->GetMacro(), macro.get() );
    MMacroInsertion::Finish();
    const auto outside = macro->Clone( CloneFor::kDuplicate );
    EXPECT_GE(
        mLog.CountAssertions( "what == CloneFor::kDisplayOnlyReference or MMacroInsertion::CurrentlyInserting()" ),
        1u );
}

TEST_F( Macro, AnActionListIsAlwaysDisclosed )
{
    const auto macro = LoadedMacro( MacroWith( u"M" ) );
    macro->SetActionListDisclosed( false );
    EXPECT_EQ( mLog.CountAssertions( "false" ), 1u );
    EXPECT_TRUE( macro->GetActionListDisclosed() );
}

TEST_F( Macro, ItOffersItsFactsToASearchInOrder )
{
    using Kind = StringSearchee::Kind;
    struct Stats : HMacroStats
    {
        XAbsoluteTime LastExecution( const XText& ) const override { return mUsed; }
        std::uint64_t ExecutionCount( const XText& ) const override { return 0; }
        double TimeSaved( const XText& ) const override { return 0; }
        double mUsed = 0;
    } stats;
    HMacroStats::SetCurrent( &stats );
    const auto group = LoadedGroup( GroupWith( u"G",
        { MacroWith( u"M", { { "Name", Str( u"N" ) }, { "Triggers", Array( { Trigger( u"Wake" ) } ) } } ) },
        { { "IsActive", Bool( false ) }, { "Targeting", Targeting( u"Included", { u"App" } ) } } ) );
    const auto kinds = [&] {
        StringSearchee searchee;
        group->FindFirstMacro()->AddMatchStrings( searchee );
        std::vector<Kind> result;
        for ( const auto& element : searchee.GetElements() )
            result.push_back( element.mKind );
        EXPECT_EQ( searchee.GetElements().back().mText, u"0" ) << "the group is disabled";
        EXPECT_EQ( searchee.GetElements()[2].mAge, mClock.Now() - 100 );
        return result;
    };
    EXPECT_THAT( kinds(),
        testing::ElementsAre( Kind::kName, Kind::kUID, Kind::kCreated, Kind::kModified, Kind::kTrigger, Kind::kTrigger,
            Kind::kTrigger, Kind::kGroup, Kind::kApplication, Kind::kEnabled ) );
    stats.mUsed = 500;
    EXPECT_EQ( kinds()[4], Kind::kUsed );
    HMacroStats::SetCurrent( nullptr );
}

namespace
{
// Few different values of each property, so that ties are common.
struct RandomMacros : Macro, HMacroStats
{
    RandomMacros() { HMacroStats::SetCurrent( this ); }
    ~RandomMacros() override { HMacroStats::SetCurrent( nullptr ); }

    XAbsoluteTime LastExecution( const XText& inUID ) const override { return double( inUID.GetLength() % 3 ); }
    std::uint64_t ExecutionCount( const XText& inUID ) const override { return inUID.GetLength() % 2; }
    double TimeSaved( const XText& inUID ) const override { return double( inUID.GetLength() % 4 ); }

    std::unique_ptr<MMacro> Next( std::size_t inIndex )
    {
        static constexpr TextView kNames[] = { u"", u"a", u"A", u"á", u"a 2", u"a 10", u"ß", u"" };
        static constexpr TextView kKinds[] = { u"HotKey", u"Wake", u"MacroPalette", u"Cron" };
        static const double kTimes[] = { 0, 1, 1, 7, -3, std::numeric_limits<double>::infinity(),
            std::numeric_limits<double>::quiet_NaN() };
        XMutableArray triggers;
        for ( std::size_t count = Below( 3 ); count > 0; --count )
            triggers.Append(
                With( LoadableTrigger( kKinds[Below( 4 )] ), "KeyCode", Int( std::int64_t( Below( 2 ) ) ) ) );
        return LoadedMacro( MacroWith( u"R" + Text( inIndex, u'x' ),
            { { "Name", Str( kNames[Below( 8 )] ) }, { "Triggers", triggers.Seal() },
                { "CreationDate", Real( kTimes[Below( 7 )] ) },
                { "ModificationDate", Real( kTimes[Below( 7 )] ) } } ) );
    }
    std::size_t Below( std::size_t inLimit ) { return mChoices() % inLimit; }

    std::mt19937_64 mChoices{ 20240301 };
};

using Compare = int ( * )( const MMacro*, const MMacro*, void* );
} // namespace

TEST_F( RandomMacros, EveryComparisonIsAnOrder )
{
    const std::pair<const char*, Compare> kOrders[] = { { "alphabetically", MMacro::CompareAlphabetically },
        { "by modification", MMacro::CompareByModification }, { "by execution", MMacro::CompareByExecution },
        { "by use count", MMacro::CompareByUseCount }, { "by time saved", MMacro::CompareByTimeSaved },
        { "by trigger", MMacro::CompareByTrigger },
        { "by creation",
            []( const MMacro* a, const MMacro* b, void* ) {
                return MMacroSerializedObject::CompareByCreation( a, b );
            } },
        { "by UID",
            []( const MMacro* a, const MMacro* b, void* ) { return MMacroSerializedObject::CompareByUID( a, b ); } } };
    std::vector<std::unique_ptr<MMacro>> macros;
    for ( std::size_t i = 0; i < 40; ++i )
        macros.push_back( Next( i ) );
    for ( const auto& [name, compare] : kOrders )
    {
        // Only creation knows ties between distinct macros, and those must be ties with the same neighbours.
        const bool isTotal = std::string_view( name ) != "by creation";
        for ( const auto& a : macros )
        {
            EXPECT_EQ( compare( a.get(), a.get(), nullptr ), 0 ) << name;
            for ( const auto& b : macros )
            {
                const int order = compare( a.get(), b.get(), nullptr );
                ASSERT_EQ( order, -compare( b.get(), a.get(), nullptr ) ) << name << " of one pair, both ways";
                ASSERT_TRUE( order != 0 or a == b or not isTotal ) << name;
                for ( const auto& c : macros )
                {
                    const bool inOrder = order <= 0 and compare( b.get(), c.get(), nullptr ) <= 0;
                    ASSERT_TRUE( not inOrder or compare( a.get(), c.get(), nullptr ) <= 0 ) << name;
                }
            }
        }
    }
}

TEST_F( Macro, WhatDecidesEachOrder )
{
    const auto named = [this]( TextView uid, TextView name, std::initializer_list<PlistEntry> more = {} ) {
        return LoadedMacro( With( MacroWith( uid, more ), "Name", Str( name ) ) );
    };
    const auto withHotKey = PlistEntry{ "Triggers", Array( { HotKeyTrigger( 3 ) } ) };
    const auto withWake = PlistEntry{ "Triggers", Array( { Trigger( u"Wake" ) } ) };
    const auto z = named( u"1", u"z" ), a10 = named( u"2", u"a 10" ), a2 = named( u"3", u"A 2" );
    const auto bare = named( u"4", u"m" ), bareToo = named( u"5", u"m" ), key = named( u"6", u"m", { withHotKey } ),
               wake = named( u"7", u"m", { withWake } ),
               late = named( u"8", u"z", { { "ModificationDate", Real( 9e8 ) } } );
    const struct
    {
        Compare mCompare;
        const MMacro *mFirst, *mSecond;
    } kCases[] = {
        { MMacro::CompareAlphabetically, a2.get(), a10.get() }, // numbers as numbers, case aside
        { MMacro::CompareAlphabetically, a10.get(), z.get() },
        { MMacro::CompareAlphabetically, bare.get(), key.get() },
        { MMacro::CompareAlphabetically, key.get(), wake.get() },
        { MMacro::CompareAlphabetically, bare.get(), bareToo.get() }, // by serial number
        { MMacro::CompareByModification, late.get(), a2.get() },
        { MMacro::CompareByModification, a2.get(), z.get() },
        { MMacro::CompareByTrigger, z.get(), key.get() },
        { MMacro::CompareByTrigger, key.get(), wake.get() },
        { MMacro::CompareByTrigger, a2.get(), z.get() },
    };
    for ( const auto& [compare, first, second] : kCases )
    {
        EXPECT_EQ( compare( first, second, nullptr ), -1 ) << first->GetUID().GetUTF8() << second->GetUID().GetUTF8();
        EXPECT_EQ( compare( second, first, nullptr ), 1 );
    }
}

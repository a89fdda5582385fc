// What is kept of an object's texts must never be older than the object: after each change a search gives what it
// gives on a model that is loaded afresh from the saved one.
#include "Macros/MSearchTexts.h"

#include "Macros/HMacroStats.h"
#include "Tests/Macros/MacroFixtures.h"
#include "Utility/Search/SearchableTexts.h"
#include "Utility/Search/StringSearcher.h"

#include <map>
#include <set>

namespace
{
class OneMacroWasUsed final : public HMacroStats
{
public:
    [[nodiscard]] XAbsoluteTime LastExecution( const XText& inUID ) const override
    {
        return inUID.Equals( u"1" ) ? mTime : 0;
    }
    [[nodiscard]] std::uint64_t ExecutionCount( const XText& ) const override { return 0; }
    [[nodiscard]] double TimeSaved( const XText& ) const override { return 0; }

    XAbsoluteTime mTime = 0;
};

struct SearchTexts : DomainWorld
{
    SearchTexts()
    {
        const auto insert = []( TextView text ) { return ActionDict( u"InsertText", { { "Text", Str( text ) } } ); };
        const auto named = []( TextView uid, TextView name, std::initializer_list<__SafeCFPropertyList> actions ) {
            return MacroWith( uid, { { "Name", Str( name ) }, { "Actions", Array( actions ) } } );
        };
        mDomain.LoadFromPropertyList( FileWith( {
            GroupWith( u"G",
                { named( u"1", u"one", { insert( u"hello" ) } ), named( u"2", u"two", { ExecuteMacro( u"1" ) } ),
                    MacroWith( u"3", { { "Actions", Array( { insert( u"none" ) } ) } } ) } ),
            GroupWith( u"H", { named( u"4", u"four", { ExecuteMacro( u"H" ), ExecuteMacro( u"absent" ) } ) },
                { { "Targeting", Targeting( u"Included", { u"Finder" } ) } } ),
        } ) );
    }
    ~SearchTexts() override { HMacroStats::SetCurrent( nullptr ); }

    static std::map<std::string, std::set<std::string>> Results( const MMacroDomain& inDomain )
    {
        std::map<std::string, std::set<std::string>> results;
        for ( const char16_t* const query : { u"hello", u"changed", u"one", u"new", u"insert", u"group:g", u"group:new",
                  u"a:finder", u"a:mail", u"global:", u"e:", u"e:no", u"name:one", u"created:1d", u"modified:1d",
                  u"used:1d", u"absent", u"unknown", u"\"Group H\"", u"appeared", u"-one" } )
        {
            StringSearcher searcher{ TextView( query ) };
            inDomain.DoForEveryMacro( [&]( const MMacroGroup&, const MMacro& macro ) {
                StringSearchee collected;
                macro.AddMatchStrings( collected );
                const bool matches = macro.MatchesTextSearch( searcher );
                EXPECT_EQ( matches, StringSearcher( TextView( query ) ).Matches( collected ) )
                    << UTF8FromText( query ) << " in " << UTF8FromText( macro.GetName() );
                if ( matches )
                    results[UTF8FromText( query )].insert( macro.GetUID().GetUTF8() );
            } );
        }
        return results;
    }

    /// The change, and whether the results before it, after it, and of a fresh model are as they should be.
    void Check( const char* inWhat, const std::function<void()>& inChange )
    {
        SCOPED_TRACE( inWhat );
        const auto before = Results( mDomain );
        inChange();
        const auto after = Results( mDomain );
        EXPECT_NE( before, after ) << "the change has to be one that searches see";
        mDomain.LoadFromPropertyList( mDomain.GetPropertyList() );
        EXPECT_EQ( after, Results( mDomain ) );
    }
};
} // namespace

TEST_F( SearchTexts, SearchesSeeEveryChangeAtOnce )
{
    Check( "rename a macro that others name", [] { FoundMacro( u"1" ).SetName( u"new" ); } );
    Check( "rename a group that others name", [] { FoundGroup( u"H" ).SetName( u"new" ); } );
    Check( "rename a group", [] { FoundGroup( u"G" ).SetName( u"renewed" ); } );
    Check( "append an action", [] {
        FoundMacro( u"3" ).AppendAction( HBaseAction::CreateFromPropertyList( ExecuteMacro( u"4" ) ) );
        FoundMacro( u"3" ).AppendAction(
            HBaseAction::CreateFromPropertyList( ActionDict( u"InsertText", { { "Text", Str( u"changed" ) } } ) ) );
    } );
    Check( "edit an action in place", [] {
        FoundMacro( u"1" ).GetActionList()->GetAction( 0 )->SetActionName( u"changed" );
        FoundMacro( u"1" ).EditorChangedActionList();
    } );
    Check( "disable a macro", [] { FoundMacro( u"2" ).SetIsActive( false ); } );
    Check( "disable a group", [] { FoundGroup( u"H" ).SetIsActive( false ); } );
    Check( "touch a macro", [this] { FoundMacro( u"2" ).SetModificationTime( mClock.Now() ); } );
    Check( "aim a group", [] {
        MMacroAppTarget target;
        target.LoadFromPropertyList( Targeting( u"Included", { u"Mail" } ) );
        FoundGroup( u"G" ).SetTarget( target );
    } );
    Check( "move a macro", [] {
        MMacroGroup& from = FoundGroup( u"G" );
        MMacro& macro = FoundMacro( u"1" );
        from.RemoveMacro( &macro );
        FoundGroup( u"H" ).InsertMacro( std::unique_ptr<MMacro>( &macro ) );
    } );
    Check( "delete a macro that others name", [] { FoundGroup( u"H" ).DeleteMacro( &FoundMacro( u"1" ) ); } );
    Check( "let appear what others name already", [] {
        const InsertionScope insertion;
        FoundGroup( u"G" ).InsertMacro(
            std::make_unique<MMacro>( MacroWith( u"absent", { { "Name", Str( u"appeared" ) } } ) ) );
    } );
}

TEST_F( SearchTexts, AMacroWithoutANameIsCalledAfterItsActionsByOthersToo )
{
    FoundMacro( u"1" ).SetName( nullptr );
    Check( "its first action gets a name", [] {
        FoundMacro( u"1" ).GetActionList()->GetAction( 0 )->SetActionName( u"new" );
        FoundMacro( u"1" ).AppleScriptChangedActionList();
    } );
    StringSearcher searcher{ TextView( u"new" ) };
    EXPECT_TRUE( FoundMacro( u"2" ).MatchesTextSearch( searcher ) );
}

TEST_F( SearchTexts, TimesGoByAndUsesCountWithoutAnyChange )
{
    OneMacroWasUsed stats;
    HMacroStats::SetCurrent( &stats );
    const auto finds = []( TextView query ) {
        StringSearcher searcher{ query };
        return FoundMacro( u"1" ).MatchesTextSearch( searcher );
    };
    EXPECT_FALSE( finds( u"used:1h" ) );
    stats.mTime = mClock.Now();
    FoundMacro( u"1" ).SetModificationTime( mClock.Now() );
    EXPECT_TRUE( finds( u"used:1h modified:1h" ) );
    mClock.Advance( 3600 );
    EXPECT_FALSE( finds( u"used:1h" ) );
    EXPECT_FALSE( finds( u"modified:1h" ) );
}

TEST_F( SearchTexts, OnlyWhatDependsOnAChangeIsCollectedAgain )
{
    const auto collectedBySearch = [this] {
        const std::uint64_t before = MSearchTexts::GetCollectionCount();
        StringSearcher searcher{ TextView( u"group:none -absent" ) };
        mDomain.DoForEveryMacro(
            [&]( const MMacroGroup&, const MMacro& macro ) { (void)macro.MatchesTextSearch( searcher ); } );
        return MSearchTexts::GetCollectionCount() - before;
    };
    EXPECT_EQ( collectedBySearch(), 6u ) << "four macros and two groups";
    EXPECT_EQ( collectedBySearch(), 0u );
    FoundMacro( u"3" ).SetName( u"new" );
    EXPECT_EQ( collectedBySearch(), 1u );
    FoundMacro( u"1" ).SetName( u"new" );
    EXPECT_EQ( collectedBySearch(), 2u ) << "itself, and the one that names it";
    FoundGroup( u"G" ).SetName( u"other" );
    EXPECT_EQ( collectedBySearch(), 1u );
    FoundGroup( u"H" ).SetIsActive( false );
    FoundMacro( u"2" ).SetModificationTime( 5 );
    mClock.Advance( 1e6 );
    EXPECT_EQ( collectedBySearch(), 0u );
    MSearchTexts::ForgetAll();
    EXPECT_EQ( collectedBySearch(), 6u );
}

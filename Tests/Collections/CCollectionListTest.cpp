#include "Collections/CCollectionList.h"

#include "Actions/FlowControlActions.h"
#include "Tests/Actions/ActionTestSupport.h"
#include "Utility/Search/StringSearchee.h"
#include "Utility/Text/Format.h"

namespace
{
__SafeCFPropertyList Collection( TextView inType, std::initializer_list<PlistEntry> inEntries = {} )
{
    XMutableDictionary dictionary;
    dictionary.SetText( CFSTR( "CollectionType" ), inType );
    for ( const auto& [key, value] : inEntries )
        dictionary.Set( XKey( key ), value );
    return dictionary.Seal();
}

__SafeCFPropertyList List( std::initializer_list<__SafeCFPropertyList> inCollections )
{
    return Dict( { { "CollectionList", Array( inCollections ) } } );
}

std::vector<CollectionType> TypesOf( const CCollectionList& inList )
{
    std::vector<CollectionType> types;
    for ( std::size_t i = 0; i < inList.GetCount(); ++i )
        types.push_back( inList.GetCollectionAtIndex( i )->GetCollectionType() );
    return types;
}

using Types = std::vector<CollectionType>;
} // namespace

TEST( CCollectionList, LeavesOutWhatItCantUnderstandWithoutALogLine )
{
    LogCapture log;
    CCollectionList list;
    list.LoadFromPropertyList( List( { Collection( u"Variables" ), Collection( u"Future" ), Str( u"Range" ),
        Collection( u"" ), Collection( u"JSON" ) } ) );
    EXPECT_EQ( TypesOf( list ),
        ( Types{ CollectionType::kVariables, CollectionType::kPastClipboards, CollectionType::kJSON } ) );
    EXPECT_TRUE( log.Lines().empty() );

    for ( const auto& nothing : { Str( u"x" ), Array( {} ), Dict( {} ), Dict( { { "CollectionList", Dict( {} ) } } ) } )
    {
        CCollectionList other = list;
        other.LoadFromPropertyList( nothing );
        EXPECT_TRUE( other.Empty() );
        EXPECT_EQ( other.CopyToPropertyList(), List( {} ) );
    }
}

TEST( CCollectionList, ACopyHoldsClones )
{
    CCollectionList list;
    list.AppendCollection( CBaseCollection::Create( CollectionType::kRange ) );
    const CCollectionList copy = list;
    EXPECT_NE( copy.GetCollectionAtIndex( 0 ), list.GetCollectionAtIndex( 0 ) );
    list.RemoveCollectionAtIndex( 0 );
    EXPECT_EQ( copy.GetCount(), 1u );
}

TEST( CCollectionList, IsEditedByIndexAndAssertsThoseBeyondTheEnd )
{
    CCollectionList list;
    for ( const auto type : { CollectionType::kRange, CollectionType::kFiles, CollectionType::kJSON } )
        list.AppendCollection( CBaseCollection::Create( type ) );
    list.SetCollectionAtIndex( 1, CBaseCollection::Create( CollectionType::kVolumes ) );
    list.RemoveCollectionAtIndex( 0 );
    EXPECT_EQ( TypesOf( list ), ( Types{ CollectionType::kVolumes, CollectionType::kJSON } ) );

    LogCapture log;
    list.RemoveCollectionAtIndex( 2 );
    list.SetCollectionAtIndex( 2, CBaseCollection::Create( CollectionType::kRange ) );
    list.SetCollectionAtIndex( 0, nullptr );
    list.AppendCollection( nullptr );
    EXPECT_EQ( list.GetCollectionAtIndex( 2 ), nullptr );
    EXPECT_EQ( log.CountContaining( "Assertion Failed" ), 5u );
    EXPECT_EQ( TypesOf( list ), ( Types{ CollectionType::kVolumes, CollectionType::kJSON } ) );
}

TEST( CCollectionList, TheContentForEditorsHasADescriptionAndAnIconForEach )
{
    CCollectionList list;
    list.LoadFromPropertyList( List( { Collection( u"Range" ), Collection( u"Files" ) } ) );
    const auto content = list.GetCollectionDisplayContent();
    ASSERT_EQ( content->GetCount(), 2u );
    EXPECT_EQ( At( content->GetValueAt( 0 ), "description" ), Str( u"The Numbers from 1 to 10" ) );
    for ( std::size_t i = 0; i < 2; ++i )
    {
        EXPECT_EQ( content->GetValueAt( i ).AsDictionary()->GetCount(), 2u );
        EXPECT_TRUE( At( content->GetValueAt( i ), "icon" ).AsString() );
    }
}

TEST( CCollectionList, AForActionTellsAndIsFoundByItsCollections )
{
    const auto stored = ActionDict( u"For",
        { { "Variable", Str( u"i" ) },
            { "Collections",
                List( { Collection( u"Range" ), Collection( u"JSON", { { "Text", Str( u"[zebra]" ) } } ) } ) } } );
    const auto action = HBaseAction::CreateFromPropertyList( stored );
    EXPECT_EQ( UTF8FromText( action->GetActionDescriptionString() ),
        "For Each Value of “i” in The Numbers from 1 to 10, Then The Keys of JSON “[zebra]”" );
    StringSearchee searchee;
    action->AddMatchStrings( searchee );
    const auto count = [&searchee]( TextView text ) {
        return std::ranges::count( searchee.GetElements(), text, &StringSearchee::Element::mText );
    };
    EXPECT_EQ( count( u"[zebra]" ), 1 );
    EXPECT_EQ( count( u"i" ), 1 );
}

TEST( CCollectionList, AForActionWithoutCollectionsSaysThatItDoesNothing )
{
    EXPECT_EQ( UTF8FromText( HBaseAction::CreateActionOfType( HActionType::kFor )->GetActionDescriptionString() ),
        "For Each With No Collections Will Do Nothing" );
}

TEST( CCollectionList, CollectionsOfAWrongTypeKeepTheForAction )
{
    for ( const auto& wrong : { Str( u"x" ), Bool( true ), Array( {} ) } )
        EXPECT_EQ( At( Reloaded( ActionDict( u"For", { { "Collections", wrong } } ) ), "Collections" ), List( {} ) );
    EXPECT_EQ( ReadFailure( ActionDict( u"For" ) ), "dictionary->Get( CFSTR(\"Collections\"), collections )" );
}

TEST( CCollectionList, TheLoadObserverHearsOfLossesAndOlderForms )
{
    class Observer final : public MLoadObserver
    {
    public:
        void DidDrop( const XPlistArray&, std::size_t inIndex, TextView inReason ) override
        {
            mHeard += kvr_format( "drop %zu %@;", inIndex, inReason );
        }
        void DidReadOlderKey( const XPlistDictionary&, const XKey& inOlder, const XKey& inCurrent ) override
        {
            mHeard += kvr_format( "%@ for %@;", inOlder.Name(), inCurrent.Name() );
        }
        void DidUpgradeType( const XPlistDictionary&, TextView inOlder, TextView inCurrent ) override
        {
            mHeard += kvr_format( "%@ is now %@;", inOlder, inCurrent );
        }
        void DidUpgradeValue( const XPlistDictionary&, const XKey&, TextView ) override {}
        void DidRepair( const XPlistDictionary&, const XKey& inKey, MLoadRule, TextView ) override
        {
            mHeard += kvr_format( "repair %@;", inKey.Name() );
        }
        void DidReadUID( const XPlistDictionary&, const XText&, const XText& ) override {}

        Text mHeard;
    } observer;
    const MLoadObserver::Scope scope( observer );
    CCollectionList list;
    list.LoadFromPropertyList( List( { Collection( u"Future" ), Collection( u"LinesInFile" ),
        Collection( u"Files", { { "Recursive", Bool( true ) } } ),
        Dict( { { "CollectionType2", Str( u"JSON" ) } } ) } ) );
    EXPECT_EQ( UTF8FromText( observer.mHeard ),
        "drop 0 good;LinesInFile is now LinesIn;Recursive for SortOrder;CollectionType2 for CollectionType;" );

    observer.mHeard.clear();
    for ( const auto& wrong :
        { __SafeCFPropertyList::Integer( 1 ), Dict( { { "CollectionList", __SafeCFPropertyList::Integer( 1 ) } } ) } )
        static_cast<void>( Reloaded( ActionDict( u"For", { { "Collections", wrong } } ) ) );
    EXPECT_EQ( UTF8FromText( observer.mHeard ), "repair Collections;repair CollectionList;" );
}

#include "Utility/Search/StringSearchee.h"

#include "Platform/Platform.h"
#include "Platform/SearchIndex.h"
#include "Utility/Work/Clock.h"

#include <gtest/gtest.h>

namespace
{
using Kind = StringSearchee::Kind;

/// "kind:text" for each element, in order.
std::vector<std::string> Shown( const StringSearchee& inSearchee )
{
    std::vector<std::string> result;
    for ( const auto& element : inSearchee.GetElements() )
        result.push_back( std::to_string( int( element.mKind ) ) + ":" + UTF8FromText( element.mText ) );
    return result;
}
} // namespace

TEST( StringSearchee, EachFactHasItsKindAndEmptyTextsAreSkipped )
{
    StringSearchee searchee;
    searchee.Add( u"text" );
    searchee.AddUID( XText( u"uid" ) );
    searchee.AddTrigger( Text( u"trigger" ) );
    searchee.AddHotKey( TextView( u"hotkey" ) );
    searchee.AddName( u"name" );
    searchee.AddGroup( u"group" );
    searchee.AddApp( u"application" );
    searchee.AddGlobal();
    searchee.AddEnabled( true );
    searchee.AddCreated( 5, 6 );
    searchee.AddModified( 7, 8 );
    searchee.AddUsed( 9, 10 );
    searchee.Add( u"" );
    searchee.AddName( XText() );
    searchee.AddUID( TextView() );
    EXPECT_EQ( Shown( searchee ),
        ( std::vector<std::string>{ "0:text", "1:uid", "2:trigger", "3:hotkey", "4:name", "5:group", "6:application",
            "7:", "8:1", "9:", "10:", "11:" } ) );
    EXPECT_EQ( searchee.GetElements()[9].mTime, 5 );
    EXPECT_EQ( searchee.GetElements()[11].mAge, 10 );
}

TEST( StringSearchee, ASecondEnabledStateIsAssertedAndTheFirstStands )
{
    StringSearchee searchee;
    searchee.AddEnabled( false );
    searchee.AddEnabled( true );
    EXPECT_EQ( Shown( searchee ), ( std::vector<std::string>{ "8:0" } ) );
}

TEST( StringSearchee, TheExportHasReadableTextsAndTheTimesThatAreSet )
{
    XManualClock clock( 1000 );
    const XClock::Substitute substitute( clock );
    StringSearchee searchee;
    searchee.AddName( u"Name" );
    searchee.AddUID( u"UID" );
    searchee.AddCreated( 400, 600 );
    searchee.AddModified( 0, 1000 );
    searchee.AddTrigger( u"⌘A" );
    searchee.AddEnabled( true );
    XSearchableItem item;
    item.mTextContent = u"stale";
    searchee.AddContentCr( item );
    EXPECT_EQ( item.mTextContent, u"Name\n⌘A" );
    EXPECT_EQ( item.mContentCreationDate, 400 );
    EXPECT_FALSE( item.mContentModificationDate );
    EXPECT_FALSE( item.mLastUsedDate );

    StringSearchee back;
    back.AddContentCreationModificationText( item );
    ASSERT_EQ( Shown( back ), ( std::vector<std::string>{ "0:Name\n⌘A", "9:" } ) );
    EXPECT_EQ( back.GetElements()[1].mAge, 600 );
}

TEST( SearchIndex, TheAbsentOneCompletesEveryCallWithAnError )
{
    XSearchIndex& index = Platform().SearchIndex();
    int errors = 0;
    const auto count = [&]( const std::optional<Text>& inError ) { errors += inError.has_value(); };
    EXPECT_FALSE( index.isIndexingAvailable() );
    index.deleteAllSearchableItems( count );
    index.deleteSearchableItemsWithIdentifiers( {}, count );
    index.indexSearchableItems( {}, count );
    index.indexSearchableItems( {}, nullptr );
    EXPECT_EQ( errors, 3 );
}

TEST( Platform, ASubstituteHoldsForItsScope )
{
    const Platform* before = &Platform::Current();
    {
        const Platform own;
        const Platform::Substitute substitute( own );
        EXPECT_EQ( &Platform::Current(), &own );
    }
    EXPECT_EQ( &Platform::Current(), before );
}

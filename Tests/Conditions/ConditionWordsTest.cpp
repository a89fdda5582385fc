// What every type of condition says of itself.
#include "ConditionTestSupport.h"

#include "Tests/Support/ScratchFolder.h"

#include <set>
#include <sstream>

TEST( ConditionWords, EveryTypeHasWordsOfItsOwnAndAnIcon )
{
    std::set<Text> titles;
    for ( std::size_t i = 0; i < std::size( kConditionTypeNames ); ++i )
    {
        const auto condition = CBaseCondition::Create( ConditionType( i ) );
        for ( const Text& words : { condition->GetConditionTypeDescription(), condition->GetDescription(),
                  condition->GetConditionEditorDescription(), condition->WikiName() } )
        {
            EXPECT_FALSE( words.empty() ) << i;
            EXPECT_EQ( words.find( u'%' ), Text::npos ) << UTF8FromText( words );
            EXPECT_FALSE( words.starts_with( u"kv" ) ) << UTF8FromText( words );
        }
        EXPECT_EQ( condition->GetConditionTypeSortDescription(), condition->GetConditionTypeDescription() );
        EXPECT_EQ( condition->WikiName().find( u' ' ), Text::npos );
        EXPECT_TRUE( condition->GetXIcon().GetSavedData() );
        titles.insert( condition->GetConditionTypeDescription() );
    }
    EXPECT_EQ( titles.size(), 25U );
}

TEST( ConditionWords, TheHelpDataHasALineForEachTypeSorted )
{
    const ScratchFolder folder;
    ASSERT_TRUE( CBaseCondition::WriteWikiHelpData( folder.Path() ) );
    std::istringstream lines( folder.Read( "Conditions.txt" ) );
    std::vector<std::string> found;
    for ( std::string line; std::getline( lines, line ); )
    {
        EXPECT_EQ( std::count( line.begin(), line.end(), '\t' ), 3 ) << line;
        found.push_back( line.substr( 0, line.find( '\t' ) ) );
    }
    EXPECT_EQ( found.size(), 25U );
    EXPECT_TRUE( std::is_sorted( found.begin(), found.end() ) );
    EXPECT_EQ( found.front(), "Action_Result_Condition" );
    EXPECT_FALSE( CBaseCondition::WriteWikiHelpData( folder / "missing" ) );
}

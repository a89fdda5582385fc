#include "Conditions/GenericCondition.h"

#include "Actions/ActionFieldParts.h"
#include "ConditionTestSupport.h"

using Type = GenericConditionType;
using Add = GenericConditionAddText;

TEST( GenericCondition, EachOperatorHasItsNameAndSaysWhatItNeeds )
{
    constexpr struct
    {
        const char* mName;
        bool mValue;
    } kRows[] = {
        { "ReturnsSuccess", false },
        { "ReturnsError", false },
        { "ReturnsStatus", true },
        { "IsOK", false },
        { "IsNotOK", false },
        { "HasText", false },
        { "DoesNotHaveText", false },
        { "HasImage", false },
        { "DoesNotHaveImage", false },
        { "Exists", false },
        { "DoesNotExist", false },
        { "IsEmpty", false },
        { "IsNotEmpty", false },
        { "Is", true },
        { "IsNot", true },
        { "Contains", true },
        { "DoesNotContain", true },
        { "StartsWith", true },
        { "EndsWith", true },
        { "IsBefore", true },
        { "IsAfter", true },
        { "Matches", true },
        { "DoesNotMatch", true },
        { "LessThan", true },
        { "LessThanOrEqual", true },
        { "Equal", true },
        { "GreaterThanOrEqual", true },
        { "GreaterThan", true },
        { "NotEqual", true },
        { "ConformsTo", true },
        { "DoesNotConformTo", true },
        { "Otherwise", false },
    };
    ASSERT_EQ( std::size( kRows ), std::size( kGenericConditionNames ) );
    for ( std::size_t i = 0; i < std::size( kRows ); ++i )
    {
        const GenericCondition condition( ( Type( i ) ) );
        EXPECT_EQ( UTF8FromText( kGenericConditionNames[i] ), kRows[i].mName );
        EXPECT_EQ( condition.RequiresValue(), kRows[i].mValue ) << kRows[i].mName;
        EXPECT_EQ( condition.RequiresStatus(), i == 2 ) << kRows[i].mName;
        EXPECT_EQ( condition.CouldBeIntendedRegExStrings( u"a.b" ).size(), i == 15 ? 1U : 0U ) << kRows[i].mName;
        EXPECT_TRUE( condition.CouldBeIntendedRegExStrings( u"" ).empty() );
    }
}

// Columns are the sources in their order: Nothing, Source, three of clipboards, Variable, Text, File. A capital letter
// is an answer that comes with an assertion.
TEST( GenericCondition, OperatorsAreOfferedForTheSourcesThatTheyMakeSenseFor )
{
    constexpr struct
    {
        int mFirst, mLast;
        const char* mAnswers;
    } kRows[] = {
        { 0, 4, "NNNNNNNN" },
        { 5, 8, "NNyyynnn" },
        { 9, 10, "NNnnnynn" },
        { 11, 12, "NNnnnyyy" },
        { 13, 22, "NNyyyyyy" },
        { 23, 28, "NNYYYYYY" },
        { 29, 30, "NNyyynnn" },
        { 31, 31, "NNNNNNNN" },
    };
    int tested = 0;
    for ( const auto& [first, last, answers] : kRows )
    {
        for ( int type = first; type <= last; ++type, ++tested )
        {
            for ( int source = 0; source < 8; ++source )
            {
                const LogCapture log;
                const bool applies =
                    GenericCondition::AppliesTo( GenericCondition( Type( type ) ), ActionTextSourceType( source ) );
                EXPECT_EQ( applies, answers[source] == 'y' or answers[source] == 'Y' ) << type << " " << source;
                EXPECT_EQ( log.CountAssertions( "false" ), answers[source] < 'a' ? 1U : 0U ) << type << " " << source;
            }
        }
    }
    EXPECT_EQ( tested, 32 );
}

TEST( GenericCondition, IsStoredByNameAndKeepsTheDefaultForWhatIsNone )
{
    const LogCapture log;
    for ( const TextView name : kGenericConditionNames )
    {
        const auto stored = Dict( { { "K", Str( name ) } } );
        GenericCondition condition( Type::kIs );
        condition.LoadFromDictionary( *stored.AsDictionary(), CFSTR( "K" ), Type::kIs );
        XMutableDictionary saved;
        condition.SaveToDictionary( saved, CFSTR( "K" ) );
        EXPECT_EQ( Shown( saved.Seal() ), Shown( stored ) );
    }
    for ( const auto& stored : { Dict( {} ), Dict( { { "K", Str( u"contains" ) } } ), Dict( { { "K", Int( 3 ) } } ) } )
    {
        GenericCondition condition( Type::kIs );
        condition.LoadFromDictionary( *stored.AsDictionary(), CFSTR( "K" ), Type::kMatches );
        EXPECT_EQ( condition.GetType(), Type::kMatches );
    }
    EXPECT_TRUE( log.Lines().empty() );
}

TEST( GenericCondition, DescriptionsHoldTheValueOrTheStatusAndSayWhoseTextIsComparedWhereOneIs )
{
    struct
    {
        Type mType;
        Add mAdd;
        const char* mDescription;
    } const kCases[] = {
        { Type::kContains, Add::kNothing, "Contains “50%d %@”" },
        { Type::kContains, Add::kText, "Text Contains “50%d %@”" },
        { Type::kContains, Add::kResult, "Result Contains “50%d %@”" },
        { Type::kDoesNotConformTo, Add::kText, "Text Does Not Conform to “50%d %@”" },
        { Type::kReturnsStatus, Add::kResult, "Returns Status 7" },
        { Type::kLessThan, Add::kText, "< 50%d %@" },
        { Type::kIsEmpty, Add::kText, "Is Empty" },
    };
    for ( const auto& [type, add, description] : kCases )
        EXPECT_EQ( UTF8FromText( GenericCondition( type ).GetDescription( u"50%d %@", 7, add ) ), description );
}

TEST( GenericCondition, EveryOperatorHasItsItemInMenus )
{
    const LogCapture log;
    for ( std::size_t i = 0; i < std::size( kGenericConditionNames ); ++i )
        EXPECT_FALSE( GenericCondition( Type( i ) ).GetMenuTitle().starts_with( u"kv" ) ) << i;
    EXPECT_TRUE( log.Lines().empty() );
}

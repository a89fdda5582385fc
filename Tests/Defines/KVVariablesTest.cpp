#include "Defines/KVVariables.h"

#include "Utility/Text/NSStringRegularExpressions.h"
#include "Utility/Work/Random.h"

#include <gtest/gtest.h>

TEST( KVVariables, ANameIsTrimmedAndBeginsWithALetter )
{
    const struct
    {
        TextView mName;
        std::optional<Text> mValid;
    } kCases[] = {
        { u"  My Var  ", u"My Var" },
        { u"a", u"a" },
        { u"Über 9_x", u"Über 9_x" },
        { u"\n名前\t", u"名前" },
        { u"𐐀b", u"𐐀b" }, // a letter beyond the first plane
        { u"1Var", {} },
        { u"_Var", {} },
        { u"My-Var", {} },
        { u"", {} },
        { u"  ", {} },
        { u"a\nb", {} },
        { u"a\xD800", {} },
        { u"a😀", {} },
    };
    for ( const auto& [name, valid] : kCases )
        EXPECT_EQ( KVVariables::ValidVariable( name ), valid ) << UTF8FromText( name );
}

TEST( KVVariables, TheStrictRuleIsThatOfTheRegularExpression )
{
    XSeededRandom random( 7 );
    constexpr TextView kUnits = u"aZ09 _-\n\u00E9\u0301\u0661\u2160\xD801\xDC00\xDC37";
    for ( int i = 0; i < 20'000; ++i )
    {
        Text name;
        for ( std::uint64_t length = random.Next() % 5; length > 0; --length )
            name += kUnits[random.Next() % kUnits.size()];
        ASSERT_EQ(
            KVVariables::StrictValidVariable( name ), isMatchedByRegex( name, u"\\A\\p{Alpha}[\\p{alnum} _]*\\z" ) )
            << i << ": " << UTF8FromText( name );
    }
}

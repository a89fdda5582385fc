#include "Macros/MacrosAllowed.h"

#include "Tests/Macros/MacroFixtures.h"
#include "Utility/Search/StringSearchee.h"

namespace
{
MacrosAllowed Loaded( const __SafeCFPropertyList& inDictionary )
{
    MacrosAllowed allowed;
    allowed.SetUIDs( { u"old" } );
    allowed.LoadFromDictionary( *inDictionary.AsDictionary(), CFSTR( "Type" ), CFSTR( "List" ) );
    return allowed;
}

__SafeCFPropertyList SavedForm( const MacrosAllowed& inAllowed )
{
    XMutableDictionary dictionary;
    inAllowed.SaveToDictionary( dictionary, CFSTR( "Type" ), CFSTR( "List" ) );
    return dictionary.Seal();
}
} // namespace

TEST( MacrosAllowed, WhatSaysNothingIsNotWritten )
{
    const auto list = Array( { Str( u"b" ), Str( u"a" ) } );
    const struct
    {
        __SafeCFPropertyList mRead, mWritten;
    } kCases[] = {
        { Dict( {} ), Dict( {} ) },
        { Dict( { { "Type", Str( u"Normal" ) }, { "List", Array( {} ) } } ), Dict( {} ) },
        { Dict( { { "Type", Str( u"includeinactive" ) }, { "List", Str( u"a" ) } } ), Dict( {} ) },
        { Dict( { { "Type", Str( u"IncludeInactive" ) } } ), Dict( { { "Type", Str( u"IncludeInactive" ) } } ) },
        { Dict( { { "Type", Str( u"IncludeDisabled" ) } } ), Dict( { { "Type", Str( u"IncludeDisabled" ) } } ) },
        { Dict( { { "List", Array( { Str( u"b" ), Str( u"a" ), Int( 1 ), Str( u"b" ), Str( u"a" ) } ) } } ),
            Dict( { { "List", list } } ) },
    };
    for ( const auto& [read, written] : kCases )
        EXPECT_EQ( Shown( SavedForm( Loaded( read ) ) ), Shown( written ) ) << Shown( read );
}

using MacrosAllowedSearch = MacroWorld;

TEST_F( MacrosAllowedSearch, EachUIDIsFoundAndTheNameOfWhatItNames )
{
    const auto group = LoadedGroup( GroupWith( u"G", {} ) );
    StringSearchee searchee;
    Loaded( Dict( { { "List", Array( { Str( u"gone" ), Str( u"G" ) } ) } } ) ).AddMatchStrings( searchee );
    std::vector<Text> texts;
    for ( const auto& element : searchee.GetElements() )
        texts.push_back( element.mText );
    EXPECT_THAT( texts, testing::ElementsAre( u"gone", u"G", u"Group G" ) );
}

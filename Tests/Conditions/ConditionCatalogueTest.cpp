// All types of condition against a data file of their keys and defaults.
#include "ConditionTestSupport.h"

#include "Conditions/GenericCondition.h"
#include "Tests/Support/ScratchFolder.h"
#include "Utility/Text/Localization.h"

#include <fstream>
#include <set>
#include <sstream>

namespace
{
struct CatalogueKey
{
    std::string mKey, mKind, mValue, mQuoted;
    std::vector<std::string> mNames;

    bool IsRequired() const { return mKind.starts_with( "needs-" ); }
    bool IsInteger() const { return mKind == "integer" or mKind == "needs-integer"; }
};

struct CatalogueType
{
    std::string mKey;
    std::vector<CatalogueKey> mKeys;
};

__SafeCFPropertyList Area()
{
    return Dict( { { "ScreenAreaType", Str( u"ScreenAll" ) }, { "WindowName", Str( u"" ) },
        { "IndexExpression", Str( u"2" ) }, { "LeftExpression", Str( u"125" ) }, { "TopExpression", Str( u"125" ) },
        { "WidthExpression", Str( u"300" ) }, { "HeightExpression", Str( u"300" ) } } );
}

__SafeCFPropertyList Application()
{
    return Dict( { { "BundleIdentifier", Str( u"org.example.editor" ) }, { "Name", Str( u"Editor" ) } } );
}

CatalogueKey ReadKey( std::istringstream& ioWords )
{
    CatalogueKey key;
    ioWords >> key.mKey >> key.mKind;
    if ( key.mKind != "needs-text" )
        ioWords >> key.mValue;
    if ( key.IsRequired() )
        ioWords >> key.mQuoted;
    std::string of;
    ioWords >> of;
    for ( std::string name; ioWords >> name; )
        key.mNames.push_back( name );
    for ( std::size_t i = 0; key.mKind == "generic" and i < std::size( kGenericConditionNames ); ++i )
        key.mNames.push_back( UTF8FromText( kGenericConditionNames[i] ) );
    return key;
}

const std::vector<CatalogueType>& Catalogue()
{
    static const auto gTypes = [] {
        std::vector<CatalogueType> types;
        std::ifstream file( KORVALEN_TESTS_FOLDER "/Conditions/ConditionCatalogue.txt" );
        for ( std::string line; std::getline( file, line ); )
        {
            std::istringstream words( line );
            if ( line.empty() or line[0] == '#' )
                continue;
            if ( line[0] == ' ' )
                types.back().mKeys.push_back( ReadKey( words ) );
            else
                types.push_back( { line, {} } );
        }
        return types;
    }();
    return gTypes;
}

// What is saved for a row of the data file; null when the key isn't there.
__SafeCFPropertyList Expected( const CatalogueKey& inKey, bool inNew )
{
    if ( inKey.IsInteger() )
        return Int( std::stoi( inKey.mValue ) );
    if ( inKey.mKind == "real" )
        return __SafeCFPropertyList::Real( std::stod( inKey.mValue ) );
    if ( inKey.mKind == "boolean" )
        return Bool( inKey.mValue == "true" );
    if ( inKey.mKind == "front" )
        return Bool( true );
    if ( inKey.mKind == "area" )
        return Area();
    if ( inKey.mKind == "application" )
        return nullptr;
    return Str( inKey.mKind == "new" and not inNew ? Text() : TextFromUTF8( inKey.mValue ) );
}

__SafeCFPropertyList ExpectedSave( const CatalogueType& inType, bool inNew )
{
    auto expected = ConditionDict( TextFromUTF8( inType.mKey ) );
    for ( const CatalogueKey& key : inType.mKeys )
        expected = With( expected, key.mKey, Expected( key, inNew ) );
    return expected;
}

// The type with nothing but what it needs.
__SafeCFPropertyList Bare( const CatalogueType& inType )
{
    auto bare = ConditionDict( TextFromUTF8( inType.mKey ) );
    for ( const CatalogueKey& key : inType.mKeys )
        bare = key.IsRequired() ? With( bare, key.mKey, Expected( key, true ) ) : bare;
    return bare;
}

// Other values than the default, all of which must come back.
std::vector<__SafeCFPropertyList> OtherValues( const CatalogueKey& inKey )
{
    if ( inKey.IsInteger() )
        return { Int( std::stoi( inKey.mValue ) + 7 ), Int( -1 ), Int( 2147483647 ) };
    if ( inKey.mKind == "real" )
        return { __SafeCFPropertyList::Real( 0.25 ) };
    if ( inKey.mKind == "boolean" )
        return { Bool( inKey.mValue != "true" ) };
    if ( inKey.mKind == "area" )
        return { With( Area(), "ScreenAreaType", Str( u"Area" ) ), With( Area(), "IndexExpression", Str( u"7" ) ) };
    if ( inKey.mKind == "application" )
        return { Application() };
    if ( inKey.mKind == "front" or inKey.mKind == "deprecated" ) // these don't stand alone
        return {};
    std::vector<__SafeCFPropertyList> values;
    for ( const std::string& name : inKey.mNames )
    {
        if ( name != inKey.mValue )
            values.push_back( Str( TextFromUTF8( name ) ) );
    }
    return inKey.mNames.empty() ? std::vector{ Str( u"Changed\n“text”" ) } : values;
}

std::unique_ptr<CBaseCondition> New( std::size_t inType )
{
    return CBaseCondition::Create( ConditionType( inType ) );
}
} // namespace

TEST( ConditionCatalogue, HasALineForEveryTypeInTheOrderOfTheTypes )
{
    ASSERT_EQ( Catalogue().size(), 25U );
    for ( std::size_t i = 0; i < Catalogue().size(); ++i )
    {
        ASSERT_TRUE( New( i ) );
        EXPECT_EQ( std::size_t( New( i )->GetConditionType() ), i );
        EXPECT_EQ(
            Shown( At( Saved( *New( i ) ), "ConditionType" ) ), Shown( Str( TextFromUTF8( Catalogue()[i].mKey ) ) ) );
    }
    const auto nothing = Dict( {} );
    for ( const int number : { 25, 26, -1 } )
    {
        EXPECT_FALSE( CBaseCondition::Create( ConditionType( number ) ) ) << number;
        EXPECT_FALSE( CBaseCondition::Create( ConditionType( number ), *nothing.AsDictionary() ) ) << number;
    }
}

TEST( ConditionCatalogue, ANewConditionSavesTheKeysAndDefaultsOfItsType )
{
    for ( std::size_t i = 0; i < Catalogue().size(); ++i )
        EXPECT_EQ( Shown( Saved( *New( i ) ) ), Shown( ExpectedSave( Catalogue()[i], true ) ) );
}

TEST( ConditionCatalogue, WhatIsReadFromTheRequiredKeysAloneHasTheDefaults )
{
    for ( const CatalogueType& type : Catalogue() )
        EXPECT_EQ( Shown( ReloadedCondition( Bare( type ) ) ), Shown( ExpectedSave( type, false ) ) );
}

TEST( ConditionCatalogue, AMissingOrIllTypedRequiredKeyIsQuoted )
{
    std::size_t required = 0;
    for ( const CatalogueType& type : Catalogue() )
    {
        for ( const CatalogueKey& key : type.mKeys )
        {
            const std::string quote = "dictionary->Get( CFSTR(\"" + key.mKey + "\"), " + key.mQuoted + " )";
            for ( const auto& value :
                { __SafeCFPropertyList(), __SafeCFPropertyList( Array( {} ) ), __SafeCFPropertyList::Real( 0.5 ) } )
            {
                EXPECT_EQ( ConditionReadFailure( With( ExpectedSave( type, true ), key.mKey, value ) ),
                    key.IsRequired() ? quote : "" );
            }
            required += key.IsRequired();
        }
    }
    EXPECT_EQ( required, 4U );
}

TEST( ConditionCatalogue, EachValueThatIsChangedComesBackThroughLoadingCloningAndSaving )
{
    for ( const CatalogueType& type : Catalogue() )
    {
        const auto original = ReadCondition( ExpectedSave( type, true ) );
        for ( const CatalogueKey& key : type.mKeys )
        {
            for ( const auto& value : OtherValues( key ) )
            {
                const auto changed = ReadCondition( With( Saved( *original ), key.mKey, value ) );
                const auto clone = changed->Clone();
                EXPECT_EQ( Shown( At( Saved( *clone ), key.mKey ) ), Shown( value ) ) << type.mKey << " " << key.mKey;
                EXPECT_EQ( Shown( ReloadedCondition( Saved( *clone ) ) ), Shown( Saved( *changed ) ) );
                EXPECT_EQ( changed->CompareWith( *clone ), 0 ) << type.mKey << " " << key.mKey;
                EXPECT_NE( changed->CompareWith( *original ), 0 ) << type.mKey << " " << key.mKey;
                EXPECT_EQ( changed->CompareWith( *original ), -original->CompareWith( *changed ) );
            }
        }
    }
}

TEST( ConditionCatalogue, ValuesOfAWrongTypeAndFractionsForIntegersLeaveTheDefaults )
{
    for ( const CatalogueType& type : Catalogue() )
    {
        for ( const CatalogueKey& key : type.mKeys )
        {
            if ( key.IsRequired() or key.mKind == "deprecated" )
                continue;
            for ( const auto& value : { __SafeCFPropertyList( Array( { Str( u"x" ) } ) ), Str( u"No Such Name" ),
                      __SafeCFPropertyList::Real( 1.5 ), Int( std::int64_t( 1 ) << 40 ) } )
            {
                const bool mayBe =
                    ( key.mNames.empty() and value.AsString() and ( key.mKind == "text" or key.mKind == "new" ) ) or
                    ( key.mKind == "real" and value.AsNumber() ) or
                    ( ( key.mKind == "boolean" or key.mKind == "front" ) and value.AsNumber() );
                if ( mayBe )
                    continue;
                const auto read = ReloadedCondition( With( Bare( type ), key.mKey, value ) );
                EXPECT_EQ( Shown( read ), Shown( ExpectedSave( type, false ) ) )
                    << type.mKey << " " << key.mKey << Shown( value );
            }
        }
    }
}

TEST( ConditionCatalogue, EveryTypeHasWordsOfItsOwnAndAnIcon )
{
    std::set<Text> titles;
    for ( std::size_t i = 0; i < Catalogue().size(); ++i )
    {
        const auto condition = New( i );
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

// Each name of each vocabulary makes another description, and each of them has its text.
TEST( ConditionCatalogue, EveryNameIsToldInTheDescription )
{
    LogCapture log;
    for ( const CatalogueType& type : Catalogue() )
    {
        for ( const CatalogueKey& key : type.mKeys )
        {
            std::set<std::string> descriptions;
            for ( const std::string& name : key.mNames )
            {
                auto condition = With( ExpectedSave( type, true ), key.mKey, Str( TextFromUTF8( name ) ) );
                if ( key.mKey == "ScriptConditionSourceType" )
                    condition = With( condition, "Path", Str( u"/true" ) );
                descriptions.insert( DescribedCondition( condition ) );
            }
            EXPECT_EQ( descriptions.size(), key.mNames.size() ) << type.mKey << " " << key.mKey;
        }
    }
    EXPECT_TRUE( log.Lines().empty() ) << log.Lines()[0];
}

TEST( ConditionCatalogue, TheHelpDataHasALineForEachTypeSorted )
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

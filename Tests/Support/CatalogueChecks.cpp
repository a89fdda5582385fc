#include "Tests/Support/CatalogueChecks.h"

#include "Tests/Actions/ActionTestSupport.h"

#include <set>

namespace
{
using Value = __SafeCFPropertyList;

std::vector<std::pair<std::string, Value>> ValuesOfAllTypes()
{
    XMutableArray array;
    array.Append( Str( u"x" ) );
    return { { "boolean", Bool( true ) }, { "integer", Value::Integer( 7 ) }, { "fraction", Value::Real( 2.5 ) },
        { "whole real", Value::Real( 5 ) }, { "wide integer", Value::Integer( std::int64_t( 1 ) << 40 ) },
        { "text", Str( u"No Such Name" ) }, { "data", XPlistData::Make( std::vector<std::uint8_t>{ 1, 2 } ) },
        { "array", array.Seal() }, { "dictionary", Dict( { { "x", Str( u"y" ) } } ) },
        { "date", XPlistDate::Make( 12 ) } };
}

// Nothing is said of what a plain value is worth where another program's structure is kept, or a dictionary that
// tells no application.
bool IsSaid( const CatalogueRow& inRow, const Value& inValue )
{
    if ( inRow.mKind == "kept" )
        return bool( inRow.Read( inValue ) );
    return inRow.mKind != "application" or not inValue.AsDictionary();
}

// A list of actions of a wrong type is no list, and goes with its container.
bool DropsTheObject( const CatalogueRow& inRow, const Value& inValue )
{
    return inRow.mKind == "actions" and not inValue.AsArray();
}

std::string Where( const CatalogueType& inType, const CatalogueRow& inRow, const std::string& inWhat = {} )
{
    return inType.mKey + " " + inRow.mKey + ( inWhat.empty() ? "" : ": " ) + inWhat;
}

bool HasOwnUUID( const CatalogueRows& inRows )
{
    for ( const CatalogueRow& row : inRows )
    {
        if ( row.mKind == "own-uuid" or ( row.mPart and HasOwnUUID( *row.mPart ) ) )
            return true;
    }
    return false;
}

// Keys whose values differ, for a message that can be read at a glance.
std::string Differences( const Value& inExpected, const Value& inSaved )
{
    std::set<std::string> keys;
    for ( const Value& value : { inExpected, inSaved } )
    {
        for ( const XPlistDictionary::Entry& entry : value.AsDictionary()->GetEntries() )
            keys.insert( entry.mKey->GetUTF8() );
    }
    const auto shown = []( const Value& inValue ) {
        std::string text = Shown( inValue );
        const std::size_t start = text.find( "<plist" ), end = text.find( "</plist>" );
        return start == text.npos or end == text.npos ? text : text.substr( start, end - start );
    };
    std::string differences;
    for ( const std::string& key : keys )
    {
        const Value expected = At( inExpected, key ), saved = At( inSaved, key );
        if ( not( expected == saved ) )
            differences += "\n  " + key + ": expected " + shown( expected ) + ", saved " + shown( saved );
    }
    return differences;
}

Text JoinedWords( const CatalogueObject& inObject )
{
    StringSearchee searchee;
    inObject.AddMatchStrings( searchee );
    Text joined;
    for ( const StringSearchee::Element& element : searchee.GetElements() )
        joined += element.mText + u"\n";
    return joined;
}

// A key that has no text shows itself.
bool LooksLikeAKey( TextView inText )
{
    return inText.find( u' ' ) == TextView::npos and not inText.empty() and inText[0] >= u'a' and inText[0] <= u'z' and
        inText != u"iTunes";
}
} // namespace

TypeCatalogueTest::Value TypeCatalogueTest::Typed( const CatalogueType& inType, const Value& inDictionary ) const
{
    return With( inDictionary, Family().TypeKey(), Str( TextFromUTF8( inType.mKey ) ) );
}

TypeCatalogueTest::Value TypeCatalogueTest::Expected( const CatalogueType& inType, const Value& inDictionary ) const
{
    return Family().WithBase( inType, Typed( inType, CatalogueSaves( inType.mRows, inDictionary ) ) );
}

void TypeCatalogueTest::ExpectSaved(
    const CatalogueType& inType, const Value& inExpected, const Value& inSaved, const std::string& inWhat ) const
{
    const Value saved = WithoutWhatIsNew( inType.mRows, inExpected, inSaved );
    EXPECT_TRUE( inExpected == saved ) << inWhat << Differences( inExpected, saved );
}

std::unique_ptr<CatalogueObject> TypeCatalogueTest::ExpectRead(
    const CatalogueType& inType, const Value& inDictionary, const std::string& inWhat ) const
{
    try
    {
        auto object = Family().Read( Typed( inType, inDictionary ) );
        ExpectSaved( inType, Expected( inType, inDictionary ), object->Save(), inWhat );
        return object;
    }
    catch ( const XException& error )
    {
        ADD_FAILURE() << inWhat << ": can't be read, " << UTF8FromText( error.GetMessage() );
        return nullptr;
    }
}

std::string TypeCatalogueTest::ReadFailure( const Value& inDictionary ) const
{
    try
    {
        static_cast<void>( Family().Read( inDictionary ) );
    }
    catch ( const XException& error )
    {
        return UTF8FromText( error.GetMessage() );
    }
    return {};
}

TEST_P( TypeCatalogueTest, HasEveryTypeInTheOrderOfTheTypes )
{
    std::vector<std::string> keys;
    for ( const CatalogueType& type : Types() )
        keys.push_back( type.mKey );
    EXPECT_EQ( keys, Family().Types() );
}

TEST_P( TypeCatalogueTest, ANewObjectSavesTheKeysAndValuesOfItsType )
{
    for ( std::size_t i = 0; i < Types().size(); ++i )
    {
        const CatalogueType& type = Types()[i];
        const auto object = Family().New( i );
        ASSERT_TRUE( object ) << type.mKey;
        if ( type.mUpgradesTo.empty() )
            ExpectSaved( type, Expected( type, {} ), object->Save(), type.mKey + ", new" );
        EXPECT_EQ( object->IsUseless(), type.mNewIsUseless ) << type.mKey;
    }
}

TEST_P( TypeCatalogueTest, MissingKeysHaveTheirDefaults )
{
    for ( const CatalogueType& type : Types() )
    {
        if ( type.mUpgradesTo.empty() )
            ExpectRead( type, WithRequiredKeys( type.mRows, Dict( {} ) ), type.mKey + ", of nothing" );
    }
}

TEST_P( TypeCatalogueTest, RequiredKeysAreAskedForInTheWordsOfTheRead )
{
    for ( const CatalogueType& type : Types() )
    {
        for ( const CatalogueRow& row : type.mRows )
        {
            if ( not row.mRequiredAs )
                continue;
            const Value full = Typed( type, DictionaryUsing( type.mRows, row ) );
            EXPECT_EQ( ReadFailure( full ), "" ) << Where( type, row );
            const auto expectFailure = [&]( const Value& inValue, const std::string& inWhat ) {
                const std::string failure = ReadFailure( With( full, row.mKey, inValue ) );
                // What should be a dictionary may be missed as such.
                if ( not( row.mPart and inValue and failure == "dictionary && dictionary->IsCorrectTypeID()" ) )
                {
                    EXPECT_TRUE( failure.starts_with( *row.mRequiredAs ) )
                        << Where( type, row, inWhat + ", expected: " + *row.mRequiredAs + ", thrown: " + failure );
                }
            };
            expectFailure( {}, "missing" );
            for ( const auto& [kind, value] : ValuesOfAllTypes() )
            {
                if ( not row.Read( value ) )
                    expectFailure( value, kind );
            }
        }
    }
}

TEST_P( TypeCatalogueTest, WhatCantBeReadWithoutThrowingLeavesTheObjectUseless )
{
    for ( const CatalogueType& type : Types() )
    {
        for ( const CatalogueRow& row : type.mRows )
        {
            if ( row.mClears )
            {
                const Value read = With( Typed( type, DictionaryUsing( type.mRows, row ) ), row.mKey, {} );
                EXPECT_TRUE( Family().Read( read )->IsUseless() ) << Where( type, row, "missing" );
                EXPECT_TRUE( Family().Read( With( read, row.mKey, Bool( true ) ) )->IsUseless() ) << Where( type, row );
            }
        }
    }
}

TEST_P( TypeCatalogueTest, EachValueComesBackThroughLoadingCloningAndSaving )
{
    for ( const CatalogueType& type : Types() )
    {
        if ( not type.mUpgradesTo.empty() )
            continue;
        const bool hasOwnUUID = HasOwnUUID( type.mRows );
        const LogCapture log;
        for ( const CatalogueRow& row : type.mRows )
        {
            const Value full = DictionaryUsing( type.mRows, row );
            const auto original = row.mSpecial ? nullptr : ExpectRead( type, full, Where( type, row, "in use" ) );
            if ( not original )
                continue;
            for ( const Value& value : row.TypicalValues() )
            {
                const std::string where = Where( type, row, "changed" );
                auto changed = ExpectRead( type, WithRequiredKeys( type.mRows, With( full, row.mKey, value ) ), where );
                if ( not changed )
                    continue;
                auto clone = changed->Clone();
                const Value saved = changed->Save();
                EXPECT_TRUE( WithoutOwnUUIDs( type.mRows, saved ) == WithoutOwnUUIDs( type.mRows, clone->Save() ) )
                    << where << ", cloned" << Differences( saved, clone->Save() );
                if ( not hasOwnUUID )
                {
                    EXPECT_EQ( changed->Compare( *clone ), 0 ) << where;
                }
                EXPECT_EQ( changed->Compare( *original ), -original->Compare( *changed ) ) << where;
                if ( not row.mUncompared and not hasOwnUUID )
                {
                    EXPECT_EQ( changed->Compare( *original ) == 0, saved == original->Save() )
                        << where << " in comparing" << Differences( original->Save(), saved );
                }
                changed.reset(); // their UUIDs are free again
                clone.reset();
                EXPECT_EQ( Shown( Family().Read( saved )->Save() ), Shown( saved ) ) << where << ", saved twice";
            }
        }
        // Only a UUID that another object has is asserted, which here the original has.
        if ( not hasOwnUUID )
        {
            EXPECT_EQ( log.CountContaining( "Assertion Failed" ), 0u ) << type.mKey << ": " << log.Lines().front();
        }
    }
}

TEST_P( TypeCatalogueTest, AValueOfAWrongTypeGivesTheDefaultAndHarmsNoOtherKey )
{
    for ( const CatalogueType& type : Types() )
    {
        for ( const CatalogueRow& row : type.mRows )
        {
            if ( row.mSpecial or row.mRequiredAs or row.mClears )
                continue;
            const Value full = DictionaryUsing( type.mRows, row );
            for ( const auto& [kind, value] : ValuesOfAllTypes() )
            {
                const Value read = With( full, row.mKey, value );
                if ( not IsSaid( row, value ) )
                    continue;
                if ( DropsTheObject( row, value ) )
                {
                    EXPECT_EQ( ReadFailure( Typed( type, read ) ), "actions && actions->IsCorrectTypeID()" )
                        << Where( type, row, kind );
                }
                else if ( type.mUpgradesTo.empty() )
                    ExpectRead( type, read, Where( type, row, kind + " in its place" ) );
                else if ( not row.Read( value ) )
                {
                    EXPECT_EQ( Shown( Family().Read( Typed( type, read ) )->Save() ),
                        Shown( Family().Read( Typed( type, With( full, row.mKey, {} ) ) )->Save() ) )
                        << Where( type, row, kind + " in its place" );
                }
            }
        }
    }
}

TEST_P( TypeCatalogueTest, OlderKeysAreReadSecondAndNeverWritten )
{
    for ( const CatalogueType& type : Types() )
    {
        for ( const CatalogueRow& row : type.mRows )
        {
            if ( row.mOlderKey.empty() )
                continue;
            const Value full = DictionaryUsing( type.mRows, row );
            for ( const Value& value : row.OlderValues() )
            {
                const Value both = With( full, row.mOlderKey, value );
                ExpectRead( type, With( both, row.mKey, {} ), Where( type, row, row.mOlderKey + " alone" ) );
                ExpectRead( type, With( both, row.mKey, Value::Real( 0.5 ) ),
                    Where( type, row, row.mOlderKey + " beside a fraction" ) );
                ExpectRead( type, both, Where( type, row, row.mOlderKey + " beside it" ) );
            }
            const Value damaged = With( With( full, row.mKey, {} ), row.mOlderKey, Dict( {} ) );
            ExpectRead( type, damaged, Where( type, row, row.mOlderKey + " as a dictionary" ) );
        }
    }
}

TEST_P( TypeCatalogueTest, TheExamplesHold )
{
    for ( const CatalogueType& type : Types() )
    {
        const CatalogueType& result = type.mUpgradesTo.empty() ? type : Family().Catalogue().Find( type.mUpgradesTo );
        for ( const CatalogueExample& example : type.mExamples )
        {
            const std::string where = type.mKey + " " + example.mLine;
            const Value read = Typed( type, WithRequiredKeys( type.mRows, example.mReads ) );
            ASSERT_EQ( ReadFailure( read ), "" ) << where;
            const Value saved = Family().Read( read )->Save();
            ExpectSaved( result, Expected( result, example.mSaves ), saved, where );
            EXPECT_EQ( Shown( Family().Read( saved )->Save() ), Shown( saved ) ) << where << ", saved twice";
        }
    }
}

TEST_P( TypeCatalogueTest, WhatCanNeverFireIsUseless )
{
    for ( const CatalogueType& type : Types() )
    {
        for ( const CatalogueExample& example : type.mUseless )
            EXPECT_TRUE( Family().Read( Typed( type, example.mReads ) )->IsUseless() ) << type.mKey << example.mLine;
        for ( const CatalogueExample& example : type.mUseful )
            EXPECT_FALSE( Family().Read( Typed( type, example.mReads ) )->IsUseless() ) << type.mKey << example.mLine;
    }
}

TEST_P( TypeCatalogueTest, KeysOfNoTypeAreNotWritten )
{
    for ( const CatalogueType& type : Types() )
    {
        if ( not type.mUpgradesTo.empty() )
            continue;
        Value read = With( CatalogueSaves( type.mRows, {} ), "NoSuchKey", Dict( { { "x", Bool( true ) } } ) );
        for ( const std::string& key : type.mNever )
            read = With( read, key, Str( u"x" ) );
        ExpectRead( type, read, type.mKey + ", with keys of no type" );
    }
}

TEST_P( TypeCatalogueTest, EachTypeHasATitleADescriptionAndWordsToFindItBy )
{
    std::map<Text, std::string> titles;
    for ( std::size_t i = 0; i < Types().size(); ++i )
    {
        const std::string& type = Types()[i].mKey;
        const LogCapture log;
        const auto object = Family().New( i );
        const Text title = object->TypeTitle(), description = object->Description();
        for ( const Text& words : { title, description } )
        {
            EXPECT_FALSE( words.empty() ) << type;
            EXPECT_FALSE( LooksLikeAKey( words ) ) << type << ": " << UTF8FromText( words );
            EXPECT_EQ( words.find( u"%@" ), Text::npos ) << type << ": " << UTF8FromText( words );
        }
        EXPECT_EQ( log.CountContaining( "No localized text" ) + log.CountContaining( "Assertion Failed" ), 0u )
            << type << ": " << log.Lines().front();
        const auto [same, isNew] = titles.emplace( title, type );
        EXPECT_TRUE( isNew ) << type << " has the title of " << same->second << ": " << UTF8FromText( title );
        for ( const Text& words : object->WordsToFind() )
            EXPECT_NE( JoinedWords( *object ).find( words ), Text::npos ) << type << ": " << UTF8FromText( words );
    }
}
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST( TypeCatalogueTest );

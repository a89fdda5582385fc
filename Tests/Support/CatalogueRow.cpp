#include "Tests/Support/CatalogueValues.h"
#include "Tests/Support/TypeCatalogue.h"

#include <algorithm>
#include <fmt/format.h>

using namespace Catalogue;

namespace
{
Value DataOf( std::initializer_list<std::uint8_t> inBytes )
{
    return XPlistData::Make( std::vector<std::uint8_t>( inBytes ) );
}

Value DisabledAction()
{
    return Setting( Setting( {}, "MacroActionType", Value::String( u"BringWindowsForward" ) ), "IsActive",
        Value::Boolean( false ) );
}

Value DictionariesOf( const Value& inArray )
{
    XMutableArray array;
    for ( const XPlistNode* node : inArray.AsArray()->Nodes() )
    {
        if ( Value( node ).AsDictionary() )
            array.Append( Value( node ) );
    }
    return array.Seal();
}

Value DistinctTexts( const Value& inArray )
{
    std::vector<Value> found;
    XMutableArray array;
    for ( const XPlistNode* node : inArray.AsArray()->Nodes() )
    {
        const Value value( node );
        if ( not value.AsString() or std::find( found.begin(), found.end(), value ) != found.end() )
            continue;
        found.push_back( value );
        array.Append( value );
    }
    return found.empty() ? Value() : Value( array.Seal() );
}

// As calculations print: no decimals of a whole number, at most eight otherwise, and no zeros at the end.
Value NumberAsText( const Value& inValue )
{
    if ( not inValue.AsNumber() )
        return {};
    std::string text = fmt::format( "{:.8f}", inValue.AsNumber()->AsReal() );
    text.erase( text.find_last_not_of( '0' ) + 1 );
    if ( text.ends_with( '.' ) )
        text.pop_back();
    return UTF8( text );
}
} // namespace

bool CatalogueWhen::Has( const std::string& inWord ) const
{
    return std::find( mWords.begin(), mWords.end(), inWord ) != mWords.end();
}

bool CatalogueRow::IsText() const
{
    return mKind == "text" or mKind == "calculation" or mKind == "variable";
}

__SafeCFPropertyList CatalogueRow::Read( const __SafeCFPropertyList& inValue ) const
{
    if ( mAlsoKept and ( inValue.AsData() or inValue.AsArray() or inValue.AsDictionary() ) )
        return inValue;
    if ( IsText() or mKind == "uuid" )
        return inValue.AsString() ? inValue : Value();
    if ( mKind == "own-uuid" )
        return inValue.AsString() and inValue.AsString()->GetLength() > 0 ? inValue : Value();
    if ( mKind == "name" )
        return inValue.AsString() and CatalogueWhen{ {}, mNames }.Has( WordOf( inValue ) ) ? inValue : Value();
    if ( mKind == "boolean" )
        return inValue.AsBoolean() ? inValue : Value();
    std::int32_t number = 0;
    if ( mKind == "integer" )
        return inValue.AsNumber() and inValue.AsNumber()->Get( number ) and number >= mLow and number <= mHigh
            ? Value::Integer( number & mMask )
            : Value();
    if ( mKind == "real" )
        return inValue.AsNumber() ? Value::Real( inValue.AsNumber()->AsReal() ) : Value();
    if ( mKind == "data" )
        return inValue.AsData() ? inValue : Value();
    if ( mKind == "kept" )
        return inValue.AsData() or inValue.AsArray() or inValue.AsDictionary() ? inValue : Value();
    if ( mKind == "application" or mKind == "plugin-parameters" )
        return inValue.AsDictionary() ? inValue : Value();
    if ( mKind == "holds" )
        return inValue.AsDictionary() ? CatalogueSaves( *mPart, inValue ) : Value();
    if ( mKind == "uids" )
        return inValue.AsArray() ? DistinctTexts( inValue ) : Value();
    if ( mKind == "actions" )
        return inValue.AsArray() ? DictionariesOf( inValue ) : Value();
    if ( mKind == "entries" )
        return inValue.AsArray() and DictionariesOf( inValue ).AsArray()->GetCount() > 0 ? DictionariesOf( inValue )
                                                                                         : Value();
    // Whatever stands where conditions or collections are asked for will do; what they aren't is none of them.
    if ( mKind == "conditions" )
        return Lookup( inValue, "ConditionList" ) ? inValue : mNew;
    return Lookup( inValue, "CollectionList" ) ? inValue : mNew;
}

__SafeCFPropertyList CatalogueRow::ReadOlder( const __SafeCFPropertyList& inValue ) const
{
    return mOlderKind == "number" ? NumberAsText( inValue ) : Read( inValue );
}

std::vector<__SafeCFPropertyList> CatalogueRow::TypicalValues() const
{
    std::vector<Value> values = mValues;
    if ( not values.empty() )
        return values;
    if ( IsText() )
        return { Value::String( u"Changed" ), Value::String( u"" ),
            Value::String( u"Lines\nand\ttabs, \u2713 \xD834\xDD1E" ) };
    if ( mKind == "uuid" or mKind == "own-uuid" )
        return { Value::String( u"0F0E0D0C-0B0A-4908-8706-050403020100" ) };
    for ( const std::string& name : mNames )
        values.push_back( UTF8( name ) );
    if ( mKind == "boolean" )
        return { Value::Boolean( true ), Value::Boolean( false ) };
    if ( mKind == "integer" )
    {
        for ( const std::int64_t number : { std::int64_t( 7 ), std::int64_t( 768 ), mLow, mHigh } )
            values.push_back( Value::Integer( number & mMask ) );
    }
    if ( mKind == "data" )
        return { DataOf( {} ), DataOf( { 0, 1, 255 } ) };
    if ( mKind == "kept" )
        return { ArrayOf( { Value::Boolean( true ), ArrayOf( { UTF8( "x" ) } ) } ),
            Setting( {}, "Nested", Setting( {}, "Odd", Value::Real( 0.25 ) ) ), DataOf( { 7, 8 } ) };
    if ( mKind == "plugin-parameters" )
        return { Setting( Setting( {}, "Label", UTF8( "one" ) ), "Other", UTF8( "" ) ) };
    if ( mKind == "application" )
    {
        const Value application = Setting( {}, "Name", UTF8( "Notes" ) );
        return { application,
            Setting(
                Setting( application, "BundleIdentifier", UTF8( "com.example.notes" ) ), "Match", UTF8( "BundleID" ) ),
            Setting( application, "NewFile", DataOf( { 1, 2, 3 } ) ) };
    }
    if ( mKind == "uids" )
        return { ArrayOf( { UTF8( "B" ), UTF8( "A" ) } ), ArrayOf( { UTF8( "B" ), UTF8( "A" ), UTF8( "B" ) } ) };
    if ( mKind == "holds" )
    {
        for ( const CatalogueRow& row : *mPart )
        {
            for ( const Value& value : row.TypicalValues() )
                values.push_back( Setting( DictionaryUsing( *mPart, row ), row.mKey, value ) );
            values.push_back( Setting( DictionaryUsing( *mPart, row ), row.mKey, Value::Real( 0.5 ) ) );
        }
        return values;
    }
    if ( mKind == "actions" )
        return { ArrayOf( { DisabledAction() } ), ArrayOf( { DisabledAction(), DisabledAction() } ) };
    if ( mKind == "entries" )
        return { ArrayOf( { CaseEntry( u"Matches", u"7", ArrayOf( { DisabledAction() } ) ) } ),
            ArrayOf( { CaseEntry( u"Is", u"", ArrayOf( {} ) ),
                Setting( CaseEntry( u"Otherwise", u"", ArrayOf( {} ) ), "ActionListDisclosed",
                    Value::Boolean( false ) ) } ) };
    const Value volumes =
        Setting( Setting( {}, "CollectionType", UTF8( "Volumes" ) ), "AsPath", Value::Boolean( true ) );
    if ( mKind == "collections" )
        return { Setting( {}, "CollectionList", ArrayOf( { volumes } ) ) };
    const Value path = Setting( Setting( Setting( {}, "ConditionType", UTF8( "Path" ) ), "Path", UTF8( "/p" ) ),
        "PathConditionType", UTF8( "FileExists" ) );
    if ( mKind == "conditions" )
        return { ConditionsOf( u"Any" ), ConditionsOf( u"None" ), ConditionsOf( u"NotAll" ),
            ConditionsOf( u"All", ArrayOf( { path } ) ) };
    return values;
}

std::vector<__SafeCFPropertyList> CatalogueRow::OlderValues() const
{
    if ( mOlderKind != "number" )
        return TypicalValues();
    return { Value::Integer( 5 ), Value::Integer( -12 ), Value::Real( 2 ), Value::Real( 2.5 ), Value::Real( -0.125 ),
        Value::Real( 1.0 / 3 ), Value::Real( 120000 ) };
}

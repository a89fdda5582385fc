// Making and looking into the property-list values that the catalogues tell of.
#pragma once

#include "CFMethods/PropertyList.h"

#include <initializer_list>
#include <string>

namespace Catalogue
{
using Value = __SafeCFPropertyList;

inline Value UTF8( const std::string& inText )
{
    return Value::String( TextFromUTF8( inText ) );
}

inline Value Lookup( const Value& inDictionary, const std::string& inKey )
{
    return inDictionary.AsDictionary() ? Value( inDictionary.AsDictionary()->Find( XKey( inKey ) ) ) : Value();
}

inline Value Setting( const Value& inDictionary, const std::string& inKey, const Value& inValue )
{
    XMutableDictionary dictionary;
    if ( inDictionary )
        dictionary.SetAll( *inDictionary.AsDictionary() );
    dictionary.Set( XKey( inKey ), inValue );
    return dictionary.Seal();
}

inline Value ArrayOf( std::initializer_list<Value> inValues )
{
    XMutableArray array;
    for ( const Value& value : inValues )
        array.Append( value );
    return array.Seal();
}

/// Stand for what only has to be new.
inline Value AnyUUID()
{
    return UTF8( "(any UUID)" );
}

inline Value AnyNumber()
{
    return UTF8( "(any number)" );
}

/// A value as conditions of rows tell it.
inline std::string WordOf( const Value& inValue )
{
    if ( inValue.AsString() )
        return inValue.AsString()->GetUTF8();
    if ( inValue.AsBoolean() )
        return inValue.AsBoolean()->GetValue() ? "true" : "false";
    return {};
}

inline Value FromWord( const std::string& inWord )
{
    return inWord == "true" or inWord == "false" ? Value::Boolean( inWord == "true" ) : UTF8( inWord );
}

inline Value ConditionsOf( const char16_t* inMatch = u"All", const Value& inList = ArrayOf( {} ) )
{
    return Setting( Setting( {}, "ConditionListMatch", Value::String( inMatch ) ), "ConditionList", inList );
}

inline Value CaseEntry( const char16_t* inOperator, const char16_t* inValue, const Value& inActions )
{
    return Setting(
        Setting( Setting( {}, "TestValue", Value::String( inValue ) ), "ConditionType", Value::String( inOperator ) ),
        "Actions", inActions );
}
} // namespace Catalogue

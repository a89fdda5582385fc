// What the tests of actions share.
#pragma once

#include "Actions/HBaseAction.h"
#include "CFMethods/PropertyListCodec.h"
#include "Macros/MLoadObserver.h"
#include "Tests/Support/LogCapture.h"
#include "XCAF/XException.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <utility>

using PlistEntry = std::pair<const char*, __SafeCFPropertyList>;

inline __SafeCFPropertyList Str( TextView inText )
{
    return __SafeCFPropertyList::String( inText );
}

inline __SafeCFPropertyList Bool( bool inValue )
{
    return __SafeCFPropertyList::Boolean( inValue );
}

inline __SafeCFPropertyList Dict( std::initializer_list<PlistEntry> inEntries )
{
    XMutableDictionary dictionary;
    for ( const auto& [key, value] : inEntries )
        dictionary.Set( XKey( key ), value );
    return dictionary.Seal();
}

inline __SafeCFPropertyList Array( std::initializer_list<__SafeCFPropertyList> inValues )
{
    XMutableArray array;
    for ( const auto& value : inValues )
        array.Append( value );
    return array.Seal();
}

/// A dictionary of a type with more keys.
inline __SafeCFPropertyList ActionDict( TextView inType, std::initializer_list<PlistEntry> inEntries = {} )
{
    XMutableDictionary dictionary;
    dictionary.SetText( CFSTR( "MacroActionType" ), inType );
    for ( const auto& [key, value] : inEntries )
        dictionary.Set( XKey( key ), value );
    return dictionary.Seal();
}

/// The value of a key of a dictionary; null without it.
inline __SafeCFPropertyList At( const __SafeCFPropertyList& inDictionary, std::string_view inKey )
{
    return __SafeCFPropertyList( inDictionary.AsDictionary()->Find( XKey( inKey ) ) );
}

/// The dictionary with a key set, or removed by null.
inline __SafeCFPropertyList With(
    const __SafeCFPropertyList& inDictionary, std::string_view inKey, const __SafeCFPropertyList& inValue )
{
    XMutableDictionary dictionary;
    dictionary.SetAll( *inDictionary.AsDictionary() );
    dictionary.Set( XKey( inKey ), inValue );
    return dictionary.Seal();
}

inline __SafeCFPropertyList Saved( const HBaseAction& inAction )
{
    return inAction.CopyToPropertyList();
}

/// What saving gives after loading.
inline __SafeCFPropertyList Reloaded( const __SafeCFPropertyList& inAction )
{
    return Saved( *HBaseAction::CreateFromPropertyList( inAction ) );
}

/// The message of the exception that reading throws; "" when it throws none.
inline std::string ReadFailure( const __SafeCFPropertyList& inAction )
{
    try
    {
        static_cast<void>( HBaseAction::CreateFromPropertyList( inAction ) );
    }
    catch ( const XException& error )
    {
        return UTF8FromText( error.GetMessage() );
    }
    return {};
}

/// What an action that was read says of itself.
inline std::string Described( const __SafeCFPropertyList& inAction )
{
    return UTF8FromText( HBaseAction::CreateFromPropertyList( inAction )->GetActionDescriptionString() );
}

/// For messages of failing tests.
inline std::string Shown( const __SafeCFPropertyList& inValue )
{
    if ( not inValue )
        return "(null)";
    const auto text = kvr_toXMLString( inValue );
    return text ? UTF8FromText( *text ) : "(no XML form)";
}

// What the tests of conditions share.
#pragma once

#include "Conditions/CBaseCondition.h"
#include "Tests/Actions/ActionTestSupport.h"

inline __SafeCFPropertyList Int( std::int64_t inValue )
{
    return __SafeCFPropertyList::Integer( inValue );
}

/// A dictionary of a type with more keys.
inline __SafeCFPropertyList ConditionDict( TextView inType, std::initializer_list<PlistEntry> inEntries = {} )
{
    __SafeCFPropertyList dictionary = Dict( inEntries );
    return With( dictionary, "ConditionType", Str( inType ) );
}

inline std::unique_ptr<CBaseCondition> ReadCondition( const __SafeCFPropertyList& inCondition )
{
    return CBaseCondition::CreateFromPropertyList( inCondition );
}

inline __SafeCFPropertyList Saved( const CBaseCondition& inCondition )
{
    return inCondition.CopyToPropertyList();
}

/// What saving gives after loading.
inline __SafeCFPropertyList ReloadedCondition( const __SafeCFPropertyList& inCondition )
{
    return Saved( *ReadCondition( inCondition ) );
}

/// The message of the exception that reading throws; "" when it throws none.
inline std::string ConditionReadFailure( const __SafeCFPropertyList& inCondition )
{
    try
    {
        static_cast<void>( ReadCondition( inCondition ) );
    }
    catch ( const XException& error )
    {
        return UTF8FromText( error.GetMessage() );
    }
    return {};
}

inline std::string DescribedCondition( const __SafeCFPropertyList& inCondition )
{
    return UTF8FromText( ReadCondition( inCondition )->GetDescription() );
}

/// A list of conditions as files have it.
inline __SafeCFPropertyList ListDict( TextView inMatch, std::initializer_list<__SafeCFPropertyList> inConditions )
{
    return Dict( { { "ConditionListMatch", Str( inMatch ) }, { "ConditionList", Array( inConditions ) } } );
}

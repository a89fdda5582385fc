#include "Macros/StoredNames.h"

#include "Macros/MLoadObserver.h"
#include "Utility/Text/Format.h"

#include <algorithm>

std::optional<std::size_t> IndexOfStoredName( const XText& inName, std::span<const std::string_view> inNames )
{
    if ( inName.IsNull() or not inName.GetString()->IsASCII() )
        return {};
    const auto at = std::ranges::find( inNames, inName.GetString()->ASCII() );
    if ( at == inNames.end() )
        return {};
    return std::size_t( at - inNames.begin() );
}

std::optional<std::size_t> IndexOfStoredName( const XText& inName, std::span<const TextView> inNames )
{
    const auto at = std::ranges::find_if( inNames, [&inName]( TextView name ) { return inName.Equals( name ); } );
    if ( at == inNames.end() )
        return {};
    return std::size_t( at - inNames.begin() );
}

std::size_t GetStoredName( const XPlistDictionary& inDictionary, const XKey& inKey,
    std::span<const std::string_view> inNames, std::size_t inDefault )
{
    XText name;
    if ( inDictionary.Get( inKey, name ) )
    {
        if ( const auto index = IndexOfStoredName( name, inNames ) )
            return *index;
    }
    MLoadObserver* const observer = MLoadObserver::Current();
    if ( observer and inDictionary.Contains( inKey ) )
        observer->DidRepair( inDictionary, inKey,
            name.IsNull() ? MLoadRule::kWrongTypeDefaulted : MLoadRule::kEnumDefaulted,
            name.IsNull() ? Text( u"not a name" ) : kvr_format( u"“%@” is no name that is known here", name ) );
    return inDefault;
}

std::vector<XText> TextsOf( const XPlistArray& inArray )
{
    std::vector<XText> texts;
    for ( std::size_t i = 0; i < inArray.GetCount(); ++i )
    {
        const __SafeCFPropertyList value( inArray.NodeAt( i ) );
        if ( const XPlistString* const string = value.AsString() )
            texts.emplace_back( CFContainer<XPlistString>::Share( string ) );
        else if ( MLoadObserver* const observer = MLoadObserver::Current() )
            observer->DidDrop( inArray, i, u"not a string" );
    }
    return texts;
}

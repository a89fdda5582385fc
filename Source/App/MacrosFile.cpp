#include "App/MacrosFile.h"

#include "Actions/ActionLimits.h"
#include "App/Output.h"
#include "Macros/MMacro.h"
#include "XCAF/XException.h"

#include <algorithm>
#include <fmt/format.h>

MacrosFileInput ReadMacrosFile( const FileInput& inInput, const std::string& inPath )
{
    PropertyListInput input = ReadPropertyListFile( inInput, inPath, kActionsPlistLimits );
    const std::optional<MFileKind> kind = FileKindOf( input.mValue );
    if ( not kind )
        throw FileTrouble( fmt::format( "{} is a property list, but holds neither macros nor actions; “korvalen plist "
                                        "print” shows what it holds",
            QuotedPath( inPath ) ) );
    return { std::move( input ), *kind };
}

namespace
{
// Exports hold what a macros file holds under its one key.
__SafeCFPropertyList AsMacrosFile( const MacrosFileInput& inFile )
{
    if ( inFile.mKind == MFileKind::kMacrosFile )
        return inFile.mInput.mValue;
    __SafeCFPropertyList groups = inFile.mInput.mValue;
    if ( const XPlistDictionary* const library = groups.AsDictionary() )
        groups = __SafeCFPropertyList( library->Find( CFSTR( "Items" ) ) );
    XMutableDictionary dictionary;
    dictionary.Set( CFSTR( "MacroGroups" ), groups );
    return dictionary.Seal();
}

template<class Object>
void SortByName( std::vector<Object*>& ioObjects )
{
    std::sort( ioObjects.begin(), ioObjects.end(), []( const Object* a, const Object* b ) {
        const int order = MMacroSerializedObject::CompareAlphabetically( a, b );
        return order ? order < 0 : a->GetSerialNumber() < b->GetSerialNumber();
    } );
}
} // namespace

LoadedMacros::LoadedMacros( const FileInput& inInput, const std::string& inPath )
    : mFile( ReadMacrosFile( inInput, inPath ) )
{
    if ( mFile.mKind == MFileKind::kActionsExport )
        throw FileTrouble(
            fmt::format( "{} holds actions and no macros; “korvalen check” and “korvalen plist print” read it",
                QuotedPath( inPath ) ) );
    try
    {
        mDomain.LoadFromPropertyList( AsMacrosFile( mFile ) );
    }
    catch ( const XException& exception )
    {
        throw FileTrouble( fmt::format( "{} can't be loaded: {}; “korvalen plist print” shows what it holds",
            QuotedPath( inPath ), exception.what() ) );
    }
}

XPlistFormat LoadedMacros::GetFormat() const
{
    return mFile.mInput.mFormat == PropertyListInput::Format::kXML ? XPlistFormat::kXML : XPlistFormat::kBinary;
}

std::vector<MMacroGroup*> LoadedMacros::GetGroups() const
{
    std::vector<MMacroGroup*> groups;
    mDomain.DoForEveryMacroGroup( [&groups]( MMacroGroup& group ) { groups.push_back( &group ); } );
    SortByName( groups );
    return groups;
}

std::vector<MMacroSmartGroup*> LoadedMacros::GetSmartGroups() const
{
    std::vector<MMacroSmartGroup*> smartGroups;
    mDomain.DoForEveryMacroSmartGroup(
        [&smartGroups]( MMacroSmartGroup& smartGroup ) { smartGroups.push_back( &smartGroup ); } );
    SortByName( smartGroups );
    return smartGroups;
}

std::vector<MMacro*> LoadedMacros::GetMacros( const MMacroGroup& inGroup )
{
    std::vector<MMacro*> macros;
    inGroup.GetEveryMacro( macros );
    SortByName( macros );
    return macros;
}

std::vector<MMacroSerializedObject*> LoadedMacros::Find( const XText& inNameOrUID ) const
{
    std::vector<MMacroSerializedObject*> found;
    const auto test = [&]( MMacroSerializedObject& object ) {
        if ( object.NameOrUIDMatches( inNameOrUID ) )
            found.push_back( &object );
    };
    for ( MMacroSmartGroup* const smartGroup : GetSmartGroups() )
        test( *smartGroup );
    for ( MMacroGroup* const group : GetGroups() )
    {
        test( *group );
        group->DoForEveryMacro( test );
    }
    return found;
}

std::string PlaceOf( const MMacroSerializedObject& inObject )
{
    const MMacro* const macro = inObject.GetAsMacro();
    const MMacroGroup* const group = macro ? macro->GetOwningGroup() : nullptr;
    const std::string name = UTF8FromText( inObject.GetName() );
    return group ? UTF8FromText( group->GetName() ) + " › " + name : name;
}

std::string Counted( std::size_t inCount, const std::string& inSingular, std::string inPlural )
{
    if ( inPlural.empty() )
        inPlural = inSingular + "s";
    return fmt::format( "{} {}", inCount, inCount == 1 ? inSingular : inPlural );
}

#include "Macros/MMacroInsertion.h"

#include "Actions/HActionList.h"
#include "Actions/HBaseAction.h"
#include "Macros/MMacro.h"
#include "Macros/MMacroGroup.h"
#include "Macros/XTextHash.h"
#include "XCAF/XErrorHandler.h"

#include <optional>
#include <unordered_map>

namespace
{
using UIDToUID = std::unordered_map<XText, XText, XTextHash>;

struct Maps
{
    UIDToUID mNewByOld, mOldByNew;
};

// Absent outside an insertion.
std::optional<Maps>& CurrentMaps()
{
    static std::optional<Maps> gMaps;
    return gMaps;
}

void Log( const char* inFormat, const auto&... inArguments )
{
    XErrorHandler::PrivateMaybeLogFormat( "MacroInsertion", inFormat, inArguments... );
}

XText Lookup( UIDToUID Maps::*inMap, const XText& inUID )
{
    if ( not CurrentMaps() )
        return inUID;
    const UIDToUID& map = *CurrentMaps().*inMap;
    const auto entry = map.find( inUID );
    return entry == map.end() or IsEmpty( entry->second ) ? inUID : entry->second;
}
} // namespace

void MMacroInsertion::Start()
{
    XAssertText( not CurrentlyInserting(), "!CurrentlyInserting()" );
    Log( "Start insertion" );
    CurrentMaps().emplace();
}

bool MMacroInsertion::CurrentlyInserting()
{
    return CurrentMaps().has_value();
}

void MMacroInsertion::Finish()
{
    Log( "Finish insertion and ignore UIDs" );
    CurrentMaps().reset();
}

void MMacroInsertion::Finish( const std::vector<HBaseAction*>& inActions )
{
    Log( "Finish insertion of set of %lu actions", inActions.size() );
    for ( HBaseAction* const action : inActions )
    {
        action->UpdateForPasteOrAdd();
        action->DoForEverySubAction( []( HBaseAction& nested ) { nested.UpdateForPasteOrAdd(); } );
    }
    CurrentMaps().reset();
}

void MMacroInsertion::Finish( HActionList& inActionList )
{
    Log( "Finish insertion of set of %lu actions", inActionList.GetCount() );
    inActionList.DoForEveryActionAndSubAction( []( HBaseAction& action ) { action.UpdateForPasteOrAdd(); } );
    CurrentMaps().reset();
}

// Each macro once, in the order given, so that fresh UIDs come in the same order each time.
void MMacroInsertion::Finish( const std::vector<MMacro*>& inMacros )
{
    const std::set<MMacro*> unique( inMacros.begin(), inMacros.end() );
    Log( "Finish insertion of set of %lu macros", unique.size() );
    std::set<MMacro*> done;
    for ( MMacro* const macro : inMacros )
    {
        if ( not done.insert( macro ).second )
            continue;
        macro->SetTimesIfNotSet();
        macro->UpdateForPasteOrAdd();
    }
    CurrentMaps().reset();
}

void MMacroInsertion::Finish( const std::set<MMacro*>& inMacros )
{
    Finish( std::vector<MMacro*>( inMacros.begin(), inMacros.end() ) );
}

void MMacroInsertion::Finish( const std::vector<MMacroSerializedObject*>& inObjects )
{
    Log( "Finish insertion of set of %lu macro groups", inObjects.size() );
    for ( MMacroSerializedObject* const object : inObjects )
    {
        if ( MMacroGroup* const group = object->GetAsMacroGroup() )
            group->UpdateForPasteOrAdd();
    }
    CurrentMaps().reset();
}

XText MMacroInsertion::GetMapping( const XText& inOldUID )
{
    return Lookup( &Maps::mNewByOld, inOldUID );
}

XText MMacroInsertion::GetReverseMapping( const XText& inNewUID )
{
    return Lookup( &Maps::mOldByNew, inNewUID );
}

void MMacroInsertion::AddMapping( const XText& inOldUID, const XText& inNewUID )
{
    XAssert( CurrentlyInserting() );
    XAssertText( not IsEmpty( inOldUID ), "!IsEmpty( inOldUID )" );
    XAssertText( not IsEmpty( inNewUID ), "!IsEmpty( inNewUID )" );
    XAssertText( not inOldUID.Equals( inNewUID ), "![oldUID isEqualToString:newUID]" );
    if ( not CurrentlyInserting() or IsEmpty( inOldUID ) or IsEmpty( inNewUID ) )
        return;
    Maps& maps = *CurrentMaps();
    const auto [forward, isNew] = maps.mNewByOld.try_emplace( inOldUID, inNewUID );
    XAssertText(
        isNew or forward->second.Equals( inNewUID ), "!gUIDMap[oldUID] or [gUIDMap[oldUID] isEqualToString:newUID]" );
    const auto [backward, isNewBackward] = maps.mOldByNew.try_emplace( inNewUID, inOldUID );
    XAssertText( isNewBackward or backward->second.Equals( inOldUID ),
        "!gReverseUIDMap[newUID] or [gReverseUIDMap[newUID] isEqualToString:oldUID]" );
    Log( "MMacroInsertion AddMapping UID mapping from %@ to %@", inOldUID, inNewUID );
    forward->second = inNewUID;
    backward->second = inOldUID;
}

void MMacroInsertion::RemoveMapping( const XText& inOldUID, const XText& inNewUID )
{
    XAssert( CurrentlyInserting() );
    if ( not CurrentlyInserting() )
        return;
    Maps& maps = *CurrentMaps();
    XAssertText( maps.mNewByOld.contains( inOldUID ), "gUIDMap[oldUID]" );
    XAssertText( maps.mOldByNew.contains( inNewUID ), "gReverseUIDMap[newUID]" );
    Log( "MMacroInsertion RemoveMapping UID mapping from %@ to %@", inOldUID, inNewUID );
    maps.mNewByOld.erase( inOldUID );
    maps.mOldByNew.erase( inNewUID );
}

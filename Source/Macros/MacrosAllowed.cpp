#include "Macros/MacrosAllowed.h"

#include "Macros/MMacroSerializedObject.h"
#include "Macros/StoredNames.h"
#include "Macros/XTextHash.h"
#include "Utility/Search/StringSearchee.h"

#include <unordered_set>

void MacrosAllowed::LoadFromDictionary(
    const XPlistDictionary& inDictionary, const XKey& inTypeKey, const XKey& inUIDsKey )
{
    mType = GetStoredEnumerator<MacrosAllowedType>( inDictionary, inTypeKey, kMacrosAllowedTypeNames );
    mUIDs.clear();
    CFContainer<XPlistArray> uids;
    if ( inDictionary.Get( inUIDsKey, uids ) )
        mUIDs = TextsOf( *uids );
}

void MacrosAllowed::SaveToDictionary(
    XMutableDictionary& ioDictionary, const XKey& inTypeKey, const XKey& inUIDsKey ) const
{
    if ( mType != MacrosAllowedType::kNormal )
        ioDictionary.Set( inTypeKey, StoredName( kMacrosAllowedTypeNames, mType ) );
    XMutableArray uids;
    std::unordered_set<XText, XTextHash> seen;
    for ( const XText& uid : mUIDs )
    {
        if ( seen.insert( uid ).second )
            uids.Append( uid );
    }
    if ( uids.GetCount() > 0 )
        ioDictionary.Set( inUIDsKey, uids.Seal() );
}

void MacrosAllowed::AddMatchStrings( StringSearchee& ioSearchee ) const
{
    for ( const XText& uid : mUIDs )
    {
        ioSearchee.Add( uid );
        if ( const MMacroSerializedObject* const object = MMacroSerializedObject::FindObjectByUID( uid ) )
            ioSearchee.Add( object->GetName() );
    }
}

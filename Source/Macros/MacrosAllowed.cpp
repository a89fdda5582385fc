#include "Macros/MacrosAllowed.h"

#include "Actions/HFieldVisitors.h"
#include "Macros/MMacroInsertion.h"
#include "Macros/MMacroSerializedObject.h"
#include "Macros/StoredNames.h"
#include "Macros/XTextHash.h"
#include "Utility/Search/StringSearchee.h"

#include <unordered_set>

namespace
{
__SafeCFPropertyList EachOnce( const std::vector<XText>& inUIDs )
{
    XMutableArray uids;
    std::unordered_set<XText, XTextHash> seen;
    for ( const XText& uid : inUIDs )
    {
        if ( seen.insert( uid ).second )
            uids.Append( uid );
    }
    return uids.GetCount() > 0 ? __SafeCFPropertyList( uids.Seal() ) : nullptr;
}
} // namespace

void MacrosAllowed::DescribeFields( HFieldVisitor& inVisitor, HFieldKey inTypeKey, HFieldKey inUIDsKey )
{
    if ( StringSearchee* searchee = inVisitor.Searchee() )
    {
        AddMatchStrings( *searchee );
        return;
    }
    inVisitor.NameUnless( inTypeKey, mType, MacrosAllowedType::kNormal );
    __SafeCFPropertyList uids = inVisitor.IsReading() ? nullptr : EachOnce( mUIDs );
    inVisitor.Value( inUIDsKey, uids );
    if ( not inVisitor.IsReading() )
        return;
    if ( uids and not uids.AsArray() )
        inVisitor.NoteRepair( inUIDsKey, u"isn't an array; no macros stand", MLoadRule::kWrongTypeDefaulted );
    mUIDs = uids.AsArray() ? TextsOf( *uids.AsArray() ) : std::vector<XText>();
}

void MacrosAllowed::LoadFromDictionary(
    const XPlistDictionary& inDictionary, const XKey& inTypeKey, const XKey& inUIDsKey )
{
    HReadingVisitor visitor( inDictionary );
    DescribeFields( visitor, HFieldKey( inTypeKey ), HFieldKey( inUIDsKey ) );
}

void MacrosAllowed::SaveToDictionary(
    XMutableDictionary& ioDictionary, const XKey& inTypeKey, const XKey& inUIDsKey ) const
{
    HSavingVisitor visitor( ioDictionary ); // writes to no member
    const_cast<MacrosAllowed*>( this )->DescribeFields( visitor, HFieldKey( inTypeKey ), HFieldKey( inUIDsKey ) );
}

void MacrosAllowed::UpdateForPasteOrAdd()
{
    for ( XText& uid : mUIDs )
        uid = MMacroInsertion::GetMapping( uid );
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

#include "Actions/AStoredAction.h"

#include <algorithm>

namespace
{
// What the base reads and writes itself, under its own conditions.
bool IsBaseKey( const XPlistString& inKey )
{
    constexpr std::string_view kBaseKeys[] = { "IsActive", "IsDisclosed", "TimeOutPeriod", "TimeOutAbortsMacro",
        "NotifyOnTimeOut", "StopOnFailure", "NotifyOnFailure", "ActionColor", "ActionName", "ActionNotes",
        "MacroActionType" };
    return std::any_of( std::begin( kBaseKeys ), std::end( kBaseKeys ),
        [&]( std::string_view baseKey ) { return inKey.Equals( baseKey ); } );
}

const CFContainer<XPlistDictionary>& NoKeys()
{
    static const CFContainer<XPlistDictionary> gNoKeys = XMutableDictionary().Seal();
    return gNoKeys;
}
} // namespace

AStoredAction::AStoredAction( HActionType inType ) : mType( inType ), mKeys( NoKeys() ) {}

std::unique_ptr<HBaseAction> AStoredAction::Clone() const
{
    return std::make_unique<AStoredAction>( *this );
}

void AStoredAction::SaveToDictionary( XMutableDictionary& ioDictionary ) const
{
    ioDictionary.SetAll( *mKeys );
}

void AStoredAction::InitializeFromDictionary( const XPlistDictionary& inDictionary )
{
    XMutableDictionary keys;
    for ( const auto& [key, value] : inDictionary.GetEntries() )
    {
        if ( not IsBaseKey( *key ) )
            keys.Set( XText( CFContainer<XPlistString>::Share( key ) ), __SafeCFPropertyList( value ) );
    }
    mKeys = keys.Seal();
}

// For comparing alone: keys that are nobody's fields yet have no rows.
void AStoredAction::DescribeFields( HFieldVisitor& inVisitor )
{
    __SafeCFPropertyList keys( mKeys );
    inVisitor.Value( "", keys );
}

#include "MacrosWindow/EngineCommands.h"

#include "Defines/KVPreferences.h"
#include "Macros/KVMacroEnableOverrides.h"
#include "Macros/MMacroApplication.h"
#include "Macros/MMacroDomain.h"
#include "Macros/MMacroSerializedObject.h"
#include "MacrosWindow/SetEnable.h"
#include "Utility/Work/Sleep.h"
#include "Utility/Work/Work.h"
#include "XCAF/KVNotifications.h"
#include "XCAF/XNotificationCenter.h"

#include <algorithm>
#include <vector>

namespace
{
void PostExecuteMacro( const XText& inUID, const XText& inLastSaveUID )
{
    XMutableDictionary information;
    information.SetText( CFSTR( "UID" ), inUID );
    information.SetText( CFSTR( "LastSaveUID" ), inLastSaveUID ); // a null one is left out
    XNotificationCenter::PostNotification( KVNotifications::kExecuteMacro, information.Seal(), true );
}
} // namespace

void EngineCommands::ExecuteMacro( const XText& inUID )
{
    MMacroApplication& application = MMacroApplication::Current();
    if ( not application.NeedSaveAllMacros() )
    {
        PostExecuteMacro( inUID, {} );
        return;
    }
    application.SaveAllMacrosIfNecessary();
    // Named when it is sent: another save may come before, and the engine would wait for a file that is gone.
    XWork::Current().MainQueue()->Async( [inUID] { PostExecuteMacro( inUID, MMacroDomain::LastSaveUUID() ); } );
}

void EngineCommands::SetMacroEnable()
{
    const auto overrides =
        KVMacroEnableOverrides::Get( KVPreferences::FilePath( u"Korvalen Enable Overrides" ), XSleep::For );
    if ( not overrides )
        return;
    // By UID, so that the same file always makes the same edits.
    std::vector<std::pair<XText, bool>> states( overrides->GetStates().begin(), overrides->GetStates().end() );
    std::sort( states.begin(), states.end(),
        []( const auto& a, const auto& b ) { return a.first.GetString()->Compare( *b.first.GetString() ) < 0; } );
    for ( const auto& [uid, isEnabled] : states )
    {
        if ( MMacroSerializedObject* const object = MMacroSerializedObject::FindObjectByUID( uid ) )
            AppleScriptSetEnable( *object, isEnabled, u"Engine" );
    }
}

void EngineCommands::Poster::PostToEngine( TextView inName, CFContainer<XPlistDictionary> inInformation )
{
    XNotificationCenter::PostNotification( inName, inInformation, true );
}

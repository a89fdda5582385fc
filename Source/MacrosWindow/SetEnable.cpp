#include "MacrosWindow/SetEnable.h"

#include "Macros/MMacroSerializedObject.h"
#include "MacrosWindow/MacrosWindowInterface.h"
#include "Utility/Text/Format.h"

namespace
{
MacrosWindowChangeType ChangeTypeOf( MMacroSerializedObject& inObject )
{
    if ( inObject.GetAsMacro() )
        return MacrosWindowChangeType::kMacroChanged;
    return inObject.GetAsMacroSmartGroup() ? MacrosWindowChangeType::kMacroSmartGroupChanged
                                           : MacrosWindowChangeType::kMacroGroupChanged;
}
} // namespace

void AppleScriptSetEnable( MMacroSerializedObject& ioObject, bool inEnable, TextView inSource )
{
    if ( ioObject.IsActive() == inEnable )
        return;
    ioObject.SetIsActive( inEnable );
    MacrosWindowChange change;
    change.mType = ChangeTypeOf( ioObject );
    change.mObjects = { &ioObject };
    MacrosWindowInterface::NoteChange( kvr_format( ioObject.GetAsMacro() ? "%@ %@ Macro" : "%@ %@ Macro Group",
                                           inSource, TextView( inEnable ? u"Enable" : u"Disable" ) ),
        change );
}

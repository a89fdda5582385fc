// The modifiers of a trigger: a mask of which only command, shift, option and control count (Utility/Text/
// KeystrokeText.h has the bits). Whatever else a file holds there is left out when it is read.
#pragma once

#include "Actions/HFieldVisitor.h"
#include "Utility/Text/KeystrokeText.h"

inline void DescribeTriggerModifiers(
    HFieldVisitor& inVisitor, HFieldKey inKey, std::int32_t& ioModifiers, const HNumberOptions& inOptions = {} )
{
    inVisitor.Integer( inKey, ioModifiers, inOptions );
    if ( not inVisitor.IsReading() or ( ioModifiers & ~kModifiersMask ) == 0 )
        return;
    ioModifiers &= kModifiersMask;
    inVisitor.NoteRepair( inKey, u"only command, shift, option and control count", MLoadRule::kOutOfRange );
}

#include "Triggers/PlainTriggers.h"

#include "Utility/Text/Localization.h"

Text PlainTriggerDescription( TriggerType inType )
{
    return kvr_localized( u"t" + TextFromASCII( kTriggerTypeNames[std::size_t( inType )] ) + u"TriggerDesc" );
}

#include "Utility/Filter/FilterText.h"

#include "Utility/Text/Localization.h"
#include "XCAF/XErrorHandler.h"

const Text& FilterText::GetDescription( Action inAction )
{
    const Text key = kvr_format( "kFilter%@", kAFilterTextNames[std::size_t( inAction )] );
    const Text& name = kvr_localized( key );
    XAssertText( name != key, "name && ![name isEqualToString:key]" );
    return name;
}

#include "Macros/MUIDObject.h"

#include "Macros/MUIDEverSeen.h"
#include "Macros/XTextHash.h"
#include "Platform/Alerts.h"
#include "Platform/Platform.h"
#include "Utility/Work/Random.h"
#include "Utility/Work/Work.h"
#include "XCAF/XErrorHandler.h"

#include <unordered_set>

namespace
{
std::unordered_set<XText, XTextHash>& UIDSet()
{
    static auto& gUIDSet = *new std::unordered_set<XText, XTextHash>;
    return gUIDSet;
}
} // namespace

MUIDObject::MUIDObject()
{
    MUIDObject::RecreateUID();
}

MUIDObject::~MUIDObject()
{
    XAssertText( XIsMainThread(), "[NSThread isMainThread]" );
    XAssertText( not mUID.IsNull(), "mUID" );
    UIDSet().erase( mUID );
}

void MUIDObject::RecreateUID()
{
    SetUID( uuidString() );
}

void MUIDObject::SetUID( const XText& inUID )
{
    XAssertText( not inUID.IsNull(), "inUID" );
    XAssertText( not IsEmpty( inUID ), "!IsEmpty( inUID )" );
    if ( not mUID.IsNull() )
        UIDSet().erase( mUID );
    MUIDEverSeen::AddUID( inUID );
    if ( UIDInUse( inUID ) )
    {
        XAssertText( false, "!UIDInUse( inUID )" );
        constexpr char16_t kRefusal[] = u"Refusing to set conflicting UID to avoid conflict";
        Platform::Current().Alerts().SystemLog( kRefusal );
        XErrorHandler::PrivateMaybeLogFormat( "UID", "%@", kRefusal );
    }
    else if ( not IsEmpty( inUID ) )
        mUID = inUID;
    if ( not mUID.IsNull() )
        UIDSet().insert( mUID );
}

bool MUIDObject::UIDInUse( const XText& inUID )
{
    return not IsEmpty( inUID ) and UIDSet().contains( inUID );
}

#include "Macros/MUIDEverSeen.h"

#include "Macros/XTextHash.h"
#include "XCAF/XErrorHandler.h"

#include <mutex>
#include <unordered_set>

namespace
{
std::mutex gMutex;

std::unordered_set<XText, XTextHash>& Seen()
{
    static auto& gSeen = *new std::unordered_set<XText, XTextHash>;
    return gSeen;
}
} // namespace

void MUIDEverSeen::AddUID( const XText& inUID )
{
    XAssertText( not IsEmpty( inUID ), "uid and !IsEmpty( uid )" );
    if ( IsEmpty( inUID ) )
        return;
    const std::scoped_lock lock( gMutex );
    Seen().insert( inUID );
}

bool MUIDEverSeen::Contains( const XText& inUID )
{
    const std::scoped_lock lock( gMutex );
    return Seen().contains( inUID );
}

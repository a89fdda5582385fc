#include "Defines/TrashFile.h"

#include "Defines/SetAside.h"
#include "Platform/FileFacts.h"
#include "Platform/Platform.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XFileWriting.h"

#include <cerrno>
#include <cstring>

bool kvr_trashOrSetAside( const std::filesystem::path& inFile, TextView inReason )
{
    if ( Platform::Current().FileFacts().TrashFile( inFile ) )
        return true;
    // A link would have the bytes of another file set aside, and a folder has none.
    XFileCalls& calls = XFileCalls::Current();
    XFileStatus facts;
    if ( calls.GetLinkFacts( inFile, facts ) != 0 or facts.mKind != XFileStatus::Kind::kRegular )
    {
        XErrorHandler::PrivateMaybeLogFormat( "always", "Can't move %@ to the trash; it stays", inFile );
        return false;
    }
    if ( SetAside::KeepFile( SetAside::Kind::kOther, inFile, inReason ) )
        return false;
    if ( calls.Unlink( inFile ) == 0 )
        return true;
    XErrorHandler::PrivateMaybeLogFormat( "always", "Can't remove %@: %s", inFile, std::strerror( errno ) );
    return false;
}

#include "Defines/EntryReplacement.h"

#include "Platform/FileFacts.h"
#include "Platform/Platform.h"
#include "Utility/Work/Random.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XFileTree.h"

#include <cerrno>
#include <cstring>

namespace
{
bool Exists( const std::filesystem::path& inPath )
{
    XFileStatus facts;
    return XFileCalls::Current().GetLinkFacts( inPath, facts ) == 0;
}

bool Move( const std::filesystem::path& inFrom, const std::filesystem::path& inTo )
{
    if ( XFileCalls::Current().RenameToNew( inFrom, inTo ) == 0 )
        return true;
    XErrorHandler::PrivateMaybeLogFormat(
        "always", "Couldn't move %@ to %@: %s", inFrom, inTo, std::strerror( errno ) );
    return false;
}
} // namespace

EntryReplacement::EntryReplacement( std::filesystem::path inTarget ) : mTarget( std::move( inTarget ) )
{
    if ( not Exists( mTarget ) )
        return;
    std::filesystem::path aside = mTarget;
    aside += UTF8FromText( uuidString() );
    if ( Move( mTarget, aside ) )
        mOlder = std::move( aside );
}

bool EntryReplacement::IsTargetFree() const
{
    return not Exists( mTarget );
}

bool EntryReplacement::Take( const std::filesystem::path& inNew )
{
    if ( Move( inNew, mTarget ) )
        return true;
    if ( mOlder and Move( *mOlder, mTarget ) )
        mOlder.reset();
    return false;
}

void EntryReplacement::DiscardOlder()
{
    if ( not mOlder )
        return;
    if ( Platform::Current().FileFacts().TrashFile( *mOlder ) )
        mOlder.reset();
    else
        XErrorHandler::PrivateMaybeLogFormat(
            "always", "There is no trash for what %@ replaces; it lies at %@", mTarget, *mOlder );
}

void EntryReplacement::DiscardNew()
{
    if ( Platform::Current().FileFacts().TrashFile( mTarget ) )
        return;
    if ( const auto error = XFileTree::Remove( mTarget ) )
        XErrorHandler::PrivateMaybeLogFormat( "always", "Cleaning up failed: %@", error->Describe() );
}

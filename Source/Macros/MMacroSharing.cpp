#include "Macros/MMacroSharing.h"

#include "Defines/KVPreferences.h"
#include "Macros/MMacroFileLoading.h"
#include "Macros/MMacroPreferenceFile.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XFileWriting.h"
#include "XCAF/XNotificationCenter.h"

namespace
{
void StopIfSharing()
{
    using MMacroSharing::IsSharing;
    XAssert( !IsSharing() );
    if ( IsSharing() )
        MMacroSharing::StopSharing();
}

void Started( const std::filesystem::path& inPath )
{
    KVPreferences::Set( KVPreferences::kMacroSharingFileID, XText( TextFromUTF8( inPath.native() ) ) );
    XNotificationCenter::PostNotification( u"KV_StartSharing", {}, true );
}

/// The bytes of a file that can be joined; else null, and the error text.
MMacroFileDataPtr ReadShared( const std::filesystem::path& inPath, Text& outError )
{
    using enum MMacroFileLoading::SharedFile;
    XFileContent content = MMacroFileLoading::ReadFile( inPath );
    const bool isRead = not content.mError;
    std::string reason = isRead ? std::string() : content.mError->Describe();
    auto data = std::make_shared<const MMacroFileData>( std::move( content.mBytes ) );
    __SafeCFPropertyList properties;
    const auto verdict = isRead ? MMacroFileLoading::JudgeSharedFile( data, properties, reason ) : kUnreadable;
    if ( verdict == kTaken )
        return data;
    if ( verdict == kUnreadable )
        XErrorHandler::PrivateMaybeLogFormat( "always", "Can't share macros by %@: %@", inPath, reason );
    outError = verdict == kNewer ? u"shared file is from a newer version" : u"failed to read file";
    return nullptr;
}
} // namespace

XText MMacroSharing::SharedFile()
{
    return KVPreferences::Get( KVPreferences::kMacroSharingFileID, XText() );
}

bool MMacroSharing::IsSharing()
{
    return not IsEmpty( SharedFile() );
}

Text MMacroSharing::StartSharingOpen( const std::filesystem::path& inPath )
{
    StopIfSharing();

    Text error;
    const auto shared = ReadShared( inPath, error );
    if ( not shared )
        return error;
    if ( not MMacroPreferenceFile::SaveRemoteMacroShareFileData( shared ) )
        return u"failed to replace the macros of this computer";
    Started( inPath );
    return {};
}

bool MMacroSharing::StartSharingCreate( const std::filesystem::path& inPath )
{
    StopIfSharing();
    if ( not MMacroPreferenceFile::CopyMacroShareFileToRemote( inPath ) )
    {
        XErrorBeep( "CopyMacroShareFileToRemote failed" );
        return false;
    }
    Started( inPath );
    return true;
}

void MMacroSharing::StopSharing()
{
    KVPreferences::Remove( KVPreferences::kMacroSharingFileID );
    XNotificationCenter::PostNotification( u"KV_StopSharing", {}, true );
}

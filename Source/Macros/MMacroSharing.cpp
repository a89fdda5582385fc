#include "Macros/MMacroSharing.h"

#include "Actions/ActionLimits.h"
#include "Defines/KVPreferences.h"
#include "Defines/KVVersion.h"
#include "Defines/SetAside.h"
#include "Macros/MMacroApplication.h"
#include "Macros/MMacroDomain.h"
#include "Macros/MMacroPreferenceFile.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XNotificationCenter.h"

namespace
{
constexpr std::size_t kMostFileBytes = std::size_t( 512 ) << 20;

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

struct SharedMacros
{
    MMacroFileDataPtr mData;
    __SafeCFPropertyList mProperties;
};

/// What a file holds, if that is a dictionary; else nothing, logged.
std::optional<SharedMacros> ReadShared( const std::filesystem::path& inPath )
{
    XFileContent content = ReadWholeFile( inPath, kMostFileBytes );
    std::string fault;
    if ( content.mError )
        fault = content.mError->Describe();
    else if ( auto properties = ReadPropertyList( content.mBytes.Span(), kActionsPlistLimits ).mValue;
              properties.AsDictionary() )
        return SharedMacros{ std::make_shared<const MMacroFileData>( std::move( content.mBytes ) ), properties };
    else
        fault = "it isn't a dictionary in a property list";
    XErrorHandler::PrivateMaybeLogFormat( "always", "Can't share macros by %@: %@", inPath, fault );
    return {};
}

/// Would a load take it? A file of a newer version may have another form, so its version is asked first.
bool IsMacrosFile( const __SafeCFPropertyList& inProperties )
{
    CFContainer<XPlistArray> groups;
    return inProperties.AsDictionary()->Get( CFSTR( "MacroGroups" ), groups );
}

/// Our macros as they were saved last, and the macros file where that is something else. False when there is no copy,
/// so that nothing may be replaced.
bool SetOurMacrosAside()
{
    constexpr TextView kReason = u"macros that a shared file replaces";
    const auto saved = MMacroPreferenceFile::SavedData();
    if ( saved and SetAside::Keep( SetAside::Kind::kReceived, saved->Span(), kReason ) )
        return false;
    return not SetAside::KeepFile( SetAside::Kind::kReceived, MMacroPreferenceFile::MacrosFilePath(), kReason );
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

    const auto shared = ReadShared( inPath );
    if ( not shared )
        return u"failed to read file";

    const Text version = MMacroDomain::VersionFromFileData( shared->mData->Span() );
    if ( KVVersion::Compare( version, MMacroDomain::GetOurVersion() ) > 0 )
        return u"shared file is from a newer version";
    if ( not IsMacrosFile( shared->mProperties ) )
        return u"failed to read file";

    // Edits that wait for their save belong to what is set aside.
    MMacroApplication::Current().SaveAllMacrosIfNecessary();
    MMacroPreferenceFile::WaitForQueue();
    if ( not SetOurMacrosAside() )
        return u"failed to set aside the macros of this computer";

    MMacroPreferenceFile::SaveRemoteMacroShareFileData( shared->mData );
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

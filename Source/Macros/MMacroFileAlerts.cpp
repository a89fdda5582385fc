#include "Macros/MMacroFileAlerts.h"

#include "Defines/KVNotices.h"
#include "Macros/MMacroApplication.h"
#include "Macros/MMacroFileSaving.h"
#include "Macros/MMacroSharing.h"
#include "Platform/Alerts.h"
#include "Platform/Platform.h"
#include "Platform/Workspace.h"
#include "Utility/Text/Localization.h"
#include "Utility/Work/Work.h"
#include "XCAF/XNotificationCenter.h"

#include <atomic>
#include <cerrno>

namespace
{
// Each save while a disk is full fails; they tell it once as long as the user hasn't answered.
struct WriteAlert
{
    explicit WriteAlert( XWork& ) {}
    std::atomic<bool> mIsUp{ false };
};

enum class WriteFailedButton : std::size_t { kQuit, kContinue, kHelp };
enum class NewerButton : std::size_t { kCheckForUpdate, kStopSharing, kIgnore };

void DidAnswerWriteFailed( std::optional<std::size_t> inButton, const std::filesystem::path& inPath )
{
    XWork::Current().Shared<WriteAlert>().mIsUp = false;
    if ( not inButton or *inButton == std::size_t( WriteFailedButton::kContinue ) )
        return;
    MMacroFileSaving::SetFailedQuitting( true );
    XWorkspace& workspace = Platform::Current().Workspace();
    if ( not inPath.empty() )
        (void)workspace.Reveal( inPath );
    if ( *inButton == std::size_t( WriteFailedButton::kHelp ) )
        (void)workspace.OpenURL( kvr_localized( u"WarnPrefWriteFailedHelpURL" ) );
    MMacroApplication::Current().terminate();
}

void DidAnswerNewer( std::optional<std::size_t> inButton )
{
    if ( not inButton )
        return;
    if ( *inButton == std::size_t( NewerButton::kCheckForUpdate ) )
        XNotificationCenter::PostNotification( u"KV_ManualSIVCCheck", {}, true );
    else if ( *inButton == std::size_t( NewerButton::kStopSharing ) )
        MMacroSharing::StopSharing();
}
} // namespace

Text MMacroFileAlerts::RecoverySuggestion( const XFileError& inError )
{
    switch ( inError.mCode )
    {
    case ENOSPC:
    case EDQUOT:
        return kvr_localized( u"kvRecoveryFreeSpace" );
    case EACCES:
    case EPERM:
        return kvr_localized( u"kvRecoveryPermissions" );
    case EROFS:
        return kvr_localized( u"kvRecoveryReadOnly" );
    case EIO:
        return kvr_localized( u"kvRecoveryDiskFault" );
    default:
        return {};
    }
}

void MMacroFileAlerts::WriteFailed( const XFileError& inError, const std::filesystem::path& inPath )
{
    if ( XWork::Current().Shared<WriteAlert>().mIsUp.exchange( true ) )
        return;
    XAlert alert{ XAlertStyle::kWarning, kvr_localized( u"WarnPrefWriteFailedStr" ),
        kvr_localizedFormat( u"WarnPrefWriteFailedText", inError.Describe(), RecoverySuggestion( inError ) ),
        { kvr_localized( u"WarnPrefWriteFailedDefaultButton" ), kvr_localized( u"WarnPrefWriteFailedContineButton" ),
            kvr_localized( u"WarnPrefWriteFailedHelpButton" ) } };
    XWork::Current().MainQueue()->Async( [alert = std::move( alert ), inPath] {
        Platform::Current().Alerts().ShowAlert(
            alert, [inPath]( std::optional<std::size_t> button ) { DidAnswerWriteFailed( button, inPath ); } );
    } );
}

void MMacroFileAlerts::SharedFileIsNewer()
{
    XAlert alert{ XAlertStyle::kWarning, kvr_localized( u"SharingDisabledBecauseOfNewerWarningTitle" ),
        kvr_localized( u"SharingDisabledBecauseOfNewerWarningMessage" ),
        { kvr_localized( u"SharingDisabledBecauseOfNewerDefaultButton" ),
            kvr_localized( u"SharingDisabledBecauseOfNewerStopButton" ),
            kvr_localized( u"SharingDisabledBecauseOfNewerIgnoreButton" ) } };
    XWork::Current().MainQueue()->Async(
        [alert = std::move( alert )] { Platform::Current().Alerts().ShowAlert( alert, DidAnswerNewer ); } );
}

bool MMacroFileAlerts::AskToBeginAnew( const std::filesystem::path& inFile )
{
    bool beginsAnew = false;
    Platform::Current().Alerts().ShowAlert(
        { XAlertStyle::kCritical, kvr_localized( u"BeginAnewTitle" ),
            kvr_localizedFormat( u"BeginAnewText", inFile.native() ),
            { kvr_localized( u"BeginAnewQuitButton" ), kvr_localized( u"BeginAnewButton" ) } },
        [&beginsAnew]( std::optional<std::size_t> button ) { beginsAnew = button == 1; } );
    return beginsAnew;
}

void MMacroFileAlerts::Post( TextView inIdentifier, const std::filesystem::path& inFile, TextView inReason )
{
    const Text identifier( inIdentifier );
    KVNotices::Post( { identifier, kvr_localized( identifier + u"Title" ),
        kvr_localizedFormat( identifier + u"Text", inFile.native(), inReason ), inFile } );
}

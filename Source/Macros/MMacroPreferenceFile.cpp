#include "Macros/MMacroPreferenceFile.h"

#include "Defines/KVPreferences.h"
#include "Macros/ImportedLibraries.h"
#include "Macros/KVMacroEnableOverrides.h"
#include "Macros/MMacroApplication.h"
#include "Macros/MMacroDomain.h"
#include "Macros/MMacroFileAlerts.h"
#include "Macros/MMacroFileEncoder.h"
#include "Macros/MMacroFileLoading.h"
#include "Macros/MMacroFileSaving.h"
#include "Macros/MMacroFilesSeen.h"
#include "Macros/MMacroSharing.h"
#include "Macros/MRevisions.h"
#include "Macros/RevisionDates.h"
#include "Macros/SpotlightExport.h"
#include "Utility/Work/Work.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XFileWriting.h"

#include <cerrno>
#include <utility>

namespace
{
using namespace MMacroFileSaving;

constexpr char16_t kFromShared[] = u"Korvalen Macros From Shared.plist";

bool gLoadAllMacrosNeedsSave = false;
bool gBeginAnew = false;

/// The domain as the bytes of a macros file.
MMacroFileDataPtr EncodeDomain()
{
    return MMacroFileEncoder::EncodeMacroDomain( *MMacroDomain::Get() );
}

/// The same with the date that it bears. A midnight in between would leave bytes of the new day under the date of the old
/// one, and the next save would make a revision of the wrong day of them.
std::pair<MMacroFileDataPtr, Text> EncodeDomainOfToday()
{
    for ( int tries = 2;; --tries )
    {
        Text today = RevisionDates::GetCurrentSaveDate();
        MMacroFileDataPtr data = EncodeDomain();
        if ( tries == 1 or RevisionDates::GetCurrentSaveDate() == today )
            return { std::move( data ), std::move( today ) };
    }
}

class IncomingChangeQueue
{
public:
    explicit IncomingChangeQueue( XWork& inWork )
        : mQueue( inWork.MakeSerialQueue( u"com.tessarine.korvalen.ProcessSharingIncomingChange" ) )
    {}
    std::shared_ptr<XQueue> mQueue;
};

XFileContent TakeIncomingFile()
{
    const auto incomingPath = KVPreferences::FilePath( kFromShared );
    XAssertText( not incomingPath.empty(), "incomingPath" );
    const MMacroSharedIncomingFileLock lock;
    XFileContent content = MMacroFileLoading::ReadFile( incomingPath );
    if ( not content.mError )
        (void)XFileCalls::Current().Unlink( incomingPath );
    return content;
}

void IncomingReadFailed( const std::string& inDescription )
{
    XErrorHandler::PrivateMaybeLogFormat(
        "always", "Preference read share incoming failed with error: %@; %@", inDescription, u"" );
}

void TakeIncomingChange()
{
    // 1. and 2.
    XFileContent content = TakeIncomingFile();
    if ( content.mError )
        return IncomingReadFailed( content.mError->Describe() );
    const auto data = std::make_shared<const MMacroFileData>( std::move( content.mBytes ) );
    std::string reason;
    __SafeCFPropertyList properties;
    const auto verdict = MMacroFileLoading::JudgeSharedFile( data, properties, reason );
    if ( verdict == MMacroFileLoading::SharedFile::kUnreadable )
    {
        IncomingReadFailed( reason );
        SetAsideBeforeWriting( SetAside::Kind::kShareFile, data, u"a shared file that came in can't be read" );
        return MMacroFileAlerts::Post(
            MMacroFileAlerts::kShareFileUnreadable, KVPreferences::FilePath( kFromShared ), TextFromUTF8( reason ) );
    }
    // 3. and 4.
    if ( MMacroFileSaving::IsSharingDisabledBecauseOfNewerVersion() )
        return;
    if ( verdict == MMacroFileLoading::SharedFile::kNewer )
    {
        SetSharingDisabledBecauseOfNewerVersion( true );
        return MMacroFileAlerts::SharedFileIsNewer();
    }
    // 5.
    if ( MMacroFilesSeen::ContainsSeen( data, true ) )
        return XErrorHandler::PrivateMaybeLogFormat( "display", "Ignoring shared file we have already seen" );
    // 6. Edits that wait are saved first, or the reload that follows would throw them away. They stay on this computer:
    // on the share they would replace what comes in here, and each computer would end with the other's macros.
    XWork::Current().MainQueue()->Async( [data] {
        {
            const HoldCopiesBack hold;
            MMacroApplication::Current().SaveAllMacrosIfNecessary();
        }
        SaveMacroData( nullptr, data, Change::kReceived, Afterwards::kReload );
    } );
}
} // namespace

std::filesystem::path MMacroPreferenceFile::MacrosFilePath()
{
    return KVPreferences::FilePath( u"Korvalen Macros.plist" );
}

void MMacroPreferenceFile::SaveAllMacros()
{
    MMacroDomain* const domain = MMacroDomain::Get();
    XAssert( domain );
    if ( not domain )
        return;
    if ( IsSavingLatchedOff() )
    {
        XErrorBeep( "Nothing is saved, for the macros in memory are incomplete since a load failed" );
        return;
    }
    // 1. to 5. The first save of each day preserves the state of the day before.
    gLoadAllMacrosNeedsSave = false;
    SetFailedQuitting( false );
    const auto [data, today] = EncodeDomainOfToday();
    const XText previous = domain->GetLastSaveDate().Equals( today ) ? XText() : domain->GetLastSaveDate();
    SaveMacroData( previous, data, Change::kLocal, Afterwards::kNothing, KVMacroEnableOverrides::CountTaken() );
    MMacroFileLoading::NoteWhole( data );
    if ( not previous.IsNull() )
        domain->SetLastSaveDate( today );
    // 6.
    XWork::Current().MainQueue()->Async( [] {
        MMacroApplication::Current().macrosSavedClearAppleScriptCaches();
        if ( MMacroDomain::Get() )
            SpotlightExport::ExportToSpotlightIndex();
    } );
}

void MMacroPreferenceFile::FinalSaveAllMacros()
{
    if ( not IsFailedQuitting() )
    {
        // The last word: nothing that was kept is trusted.
        MMacroFileEncoder::Forget();
        SaveAllMacros();
    }
    WaitForQueue();
}

void MMacroPreferenceFile::WaitForQueue()
{
    Queue().Sync( [] {} );
}

MMacroFileDataPtr MMacroPreferenceFile::SavedData()
{
    return LastSaved();
}

void MMacroPreferenceFile::UndoRedoMacroData(
    const MMacroFileDataPtr& inData, const std::function<void()>& inMeanwhile )
{
    SaveMacroData( nullptr, inData, Change::kLocal, Afterwards::kNothing );
    if ( inMeanwhile )
        inMeanwhile();
    WaitForQueue();
}

bool MMacroPreferenceFile::SaveRemoteMacroShareFileData( const MMacroFileDataPtr& inData )
{
    MMacroApplication::Current().SaveAllMacrosIfNecessary();
    const auto before = LastSaved();
    SaveMacroData( nullptr, inData, Change::kReceived, Afterwards::kReload );
    WaitForQueue();
    if ( WasLastWritten() )
    {
        SetSharingDisabledBecauseOfNewerVersion( false );
        return true;
    }
    // Nobody joins a file that couldn't be taken, and a reload mustn't bring it all the same.
    SetLastSaved( before );
    return false;
}

bool MMacroPreferenceFile::CopyMacroShareFileToRemote( const std::filesystem::path& inPath )
{
    const auto data = LastSaved();
    bool isCopied = false;
    if ( data )
        Queue().Sync( [&] { isCopied = CopyToRemote( data, inPath ); } );
    if ( isCopied )
        SetSharingDisabledBecauseOfNewerVersion( false );
    return isCopied;
}

void MMacroPreferenceFile::ProcessSharingIncomingChange()
{
    XWork::Current().Shared<IncomingChangeQueue>().mQueue->Async( TakeIncomingChange );
}

bool MMacroPreferenceFile::RevertToRevision( TextView inDate )
{
    const auto data = MRevisions::Read( inDate );
    if ( not data )
        return false;
    std::string reason;
    if ( not MMacroFileLoading::ParseMacrosFile( data, reason ) )
    {
        XErrorHandler::PrivateMaybeLogFormat( "always", "Can't read revision %@: %@", inDate, reason );
        return false;
    }
    MMacroApplication::Current().SaveAllMacrosIfNecessary();
    SaveMacroData( RevisionDates::GetBeforeRevertSaveDate(), data, Change::kLocal, Afterwards::kReload );
    return true;
}

std::vector<Text> MMacroPreferenceFile::Revisions()
{
    return MRevisions::List();
}

std::filesystem::path MMacroPreferenceFile::RevisionPath( TextView inDate )
{
    return MRevisions::PathOf( inDate );
}

std::vector<MMacroPreferenceFile::RevertMenuItem> MMacroPreferenceFile::FillRevertMenu()
{
    std::vector<RevertMenuItem> items;
    for ( const Text& date : MRevisions::List() )
        items.push_back( { RevisionDates::DisplayNameForRevision( date ), date } );
    return items;
}

void MMacroPreferenceFile::SetLoadAllMacrosNeedsSave()
{
    gLoadAllMacrosNeedsSave = true;
}

bool MMacroPreferenceFile::TakeLoadAllMacrosNeedsSave()
{
    return std::exchange( gLoadAllMacrosNeedsSave, false );
}

void MMacroPreferenceFile::InitialEngineFinishedRelaunching()
{
    LetEngineKnow();
}

void MMacroPreferenceFile::SetBeginAnew( bool inBeginAnew )
{
    gBeginAnew = inBeginAnew;
}

bool MMacroPreferenceFile::BeginsAnew()
{
    return gBeginAnew;
}

bool MMacroPreferenceFile::IsSharingDisabledBecauseOfNewerVersion()
{
    return MMacroFileSaving::IsSharingDisabledBecauseOfNewerVersion();
}

bool MMacroPreferenceFile::IsSavingLatchedOff()
{
    return MMacroFileLoading::IsSavingLatchedOff();
}

void MMacroPreferenceFile::Reset()
{
    gLoadAllMacrosNeedsSave = gBeginAnew = false;
    MMacroFileSaving::Reset();
    MMacroFileLoading::Reset();
    ImportedLibraries::Reset();
}

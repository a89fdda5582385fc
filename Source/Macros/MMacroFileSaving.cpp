// What a write does, in this order, so that nothing is replaced that can be had nowhere else:
//   1. what must be in Set Aside first
//   2. the revision of the state before
//   3. the state before among the saved states, unless the file is so large that the save would wait for long
//   4. the macros file
//   5. the shared file, after a look at what it holds
//   6. the engine is told
#include "Macros/MMacroFileSaving.h"

#include "Defines/KVPreferences.h"
#include "Macros/KVMacroEnableOverrides.h"
#include "Macros/MMacroApplication.h"
#include "Macros/MMacroDomain.h"
#include "Macros/MMacroFileAlerts.h"
#include "Macros/MMacroFileLoading.h"
#include "Macros/MMacroFilesSeen.h"
#include "Macros/MMacroPreferenceFile.h"
#include "Macros/MRevisions.h"
#include "Macros/RevisionDates.h"
#include "Macros/SavedStates.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XFileWriting.h"
#include "XCAF/XNotificationCenter.h"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <mutex>
#include <vector>

namespace
{
using namespace MMacroFileSaving;

constexpr std::size_t kMostBytesKeptFirst = 20'000'000;

// Guards what is saved last together with the order of the queue, so that both agree whoever saves.
std::mutex gSavedMutex;
MMacroFileDataPtr gPrivateLastSavedData;
bool gPrivateLocalChange = false;

// One mutex around both tests: a write that finds the engine held back must not slip between the question and the
// answer of LetEngineKnow, or the engine would never hear of it.
std::mutex gEngineMutex;
bool gDontNotifyEngine = false; // despite its name: true once the engine may be told
bool gNeedNotifyEngine = false;

bool gSaveAllMacrosFailedQuitting = false;
int gCopiesHeldBack = 0;
std::atomic<bool> gSharingDisabledBecauseOfNewerVersion{ false };

struct Write
{
    XText mRevisionDate;
    MMacroFileDataPtr mOld, mNew;
    bool mWasLocal, mIsLocal, mIsCopied, mReload;
    std::uint64_t mOverridesTaken;
    XText mSaveUUID; ///< of the newest save of the model, perhaps this one
};

void PostLoadMacroFiles()
{
    XWork::Current().MainQueue()->Async(
        [] { XNotificationCenter::PostNotification( u"KV_LoadMacroFiles", {}, true ); } );
}

void TellEngine()
{
    {
        const std::scoped_lock lock( gEngineMutex );
        if ( not gDontNotifyEngine )
        {
            gNeedNotifyEngine = true;
            return;
        }
    }
    PostLoadMacroFiles();
}

bool IsSame( std::span<const std::uint8_t> a, std::span<const std::uint8_t> b )
{
    return a.size() == b.size() and ( a.empty() or std::memcmp( a.data(), b.data(), a.size() ) == 0 );
}

/// Two saves of one model on one day differ in nothing but the UUID of the save, which stands in its own object.
bool IsSaveOfTheSame(
    std::span<const std::uint8_t> inOld, std::span<const std::uint8_t> inNew, const XText& inSaveUUID )
{
    constexpr std::uint8_t kHead[] = { 0x5F, 0x10, 0x24 }; // 36 units of ASCII
    constexpr std::size_t kUUIDSize = 36;
    if ( inOld.size() != inNew.size() )
        return false;
    const std::size_t at =
        std::size_t( std::mismatch( inOld.begin(), inOld.end(), inNew.begin() ).first - inOld.begin() );
    if ( at == inOld.size() )
        return true;
    const auto before = inNew.first( at );
    const auto head = std::find_end( before.begin(), before.end(), std::begin( kHead ), std::end( kHead ) );
    if ( head == before.end() )
        return false;
    const std::size_t begin = std::size_t( head - before.begin() ) + std::size( kHead );
    if ( at >= begin + kUUIDSize or begin + kUUIDSize > inNew.size() or
        not IsSame( inOld.subspan( begin + kUUIDSize ), inNew.subspan( begin + kUUIDSize ) ) )
        return false;
    // Another object's UUID may have changed alone.
    return inSaveUUID.GetUTF8() == std::string( reinterpret_cast<const char*>( inNew.data() ) + begin, kUUIDSize );
}

// A process that is killed right after its save hasn't kept the state yet, and its macros file is all that has it. The next
// save mustn't replace that, be it of this process or of the next.
void KeepBeforeReplacing( const MMacroFileDataPtr& inOld )
{
    if ( not inOld or inOld->size() > kMostBytesKeptFirst )
        return;
    SavedStates::KeepSoonIfMissing( inOld );
    SavedStates::WaitForQueue();
}

/// The queue, and what only its blocks touch.
class MacroDataQueue
{
public:
    explicit MacroDataQueue( XWork& inWork ) : mQueue( inWork.MakeSerialQueue( u"com.tessarine.korvalen.MacroData" ) )
    {}
    [[nodiscard]] XQueue& Queue() const { return *mQueue; }

    void Run( const Write& inWrite );
    void Require( Precondition inPrecondition )
    {
        mPreconditions.push_back( std::move( inPrecondition ) );
        (void)MeetPreconditions();
    }
    [[nodiscard]] bool CopyToRemote( const MMacroFileDataPtr& inData, const std::filesystem::path& inPath );
    [[nodiscard]] bool HasFailed() const { return mHasFailed; }
    void AddShared( const MMacroFileDataPtr& inData ) { mShared.Add( MSeenDigests::Of( inData->Span() ) ); }

private:
    std::optional<XFileError> MeetPreconditions();
    [[nodiscard]] static std::optional<XFileError> KeepWhatReceivedBytesReplace( const Write& inWrite );
    [[nodiscard]] std::optional<XFileError> KeepUnseenShare( const std::filesystem::path& inPath ) const;
    void DidWrite( const Write& inWrite, bool inIsNewState );

    std::shared_ptr<XQueue> mQueue;
    std::vector<Precondition> mPreconditions;
    bool mHasFailed = false; // the last write
    MSeenDigests mShared;    // what the shared file has held, as far as we know
};

MacroDataQueue& TheQueue()
{
    return XWork::Current().Shared<MacroDataQueue>();
}

void MacroDataQueue::Run( const Write& inWrite )
{
    // Before the revisions, which may be what a precondition is about.
    auto error = MeetPreconditions();
    if ( not inWrite.mRevisionDate.IsNull() and inWrite.mOld )
        MRevisions::PrivateSaveRevision( inWrite.mRevisionDate.GetText(), inWrite.mOld );
    // A received file is about to replace local work.
    if ( inWrite.mWasLocal and not inWrite.mIsLocal and inWrite.mOld )
        MRevisions::PrivateSaveRevision( RevisionDates::GetBeforeSharingSyncSaveDate(), inWrite.mOld );
    MMacroFilesSeen::AddSeen( inWrite.mNew );
    // The last save, which comes without an edit too, would otherwise push states out that differ.
    const bool isNewState =
        not inWrite.mOld or not IsSaveOfTheSame( inWrite.mOld->Span(), inWrite.mNew->Span(), inWrite.mSaveUUID );
    if ( isNewState )
        KeepBeforeReplacing( inWrite.mOld );
    // After a write that failed the file has an older state, which a full disk may have kept from being kept.
    if ( mHasFailed )
    {
        XFileContent there = ReadWholeFile( MMacroPreferenceFile::MacrosFilePath(), kMostBytesKeptFirst );
        if ( not there.mError )
            KeepBeforeReplacing( std::make_shared<const MMacroFileData>( std::move( there.mBytes ) ) );
    }
    if ( not error and not inWrite.mIsLocal )
        error = KeepWhatReceivedBytesReplace( inWrite );
    if ( not error )
        error = XAtomicFile::Write( MMacroPreferenceFile::MacrosFilePath(), inWrite.mNew->Span() );
    if ( not error )
        return DidWrite( inWrite, isNewState );
    mHasFailed = true;
    XErrorHandler::PrivateMaybeLogFormat( "always", "Preference write failed with error: %@; %@", error->Describe(),
        MMacroFileAlerts::RecoverySuggestion( *error ) );
    MMacroFileAlerts::WriteFailed( *error, MMacroPreferenceFile::MacrosFilePath() );
}

std::optional<XFileError> MacroDataQueue::MeetPreconditions()
{
    std::optional<XFileError> first;
    std::erase_if( mPreconditions, [&first]( const Precondition& precondition ) {
        auto error = precondition();
        if ( error and not first )
            first = std::move( error );
        return not error;
    } );
    return first;
}

std::optional<XFileError> MacroDataQueue::KeepWhatReceivedBytesReplace( const Write& inWrite )
{
    const XFileContent there = MMacroFileLoading::ReadFile( MMacroPreferenceFile::MacrosFilePath() );
    if ( there.mError and there.mError->mCode != ENOENT )
        return there.mError;
    std::optional<XFileError> error;
    if ( not there.mError and not IsSame( there.mBytes.Span(), inWrite.mNew->Span() ) )
        error =
            SetAside::Keep( SetAside::Kind::kReceived, there.mBytes.Span(), u"a shared file replaces the macros file" );
    // They differ when a write has failed.
    if ( not error and inWrite.mOld and not IsSame( inWrite.mOld->Span(), inWrite.mNew->Span() ) and
        not IsSame( inWrite.mOld->Span(), there.mBytes.Span() ) )
        error = SetAside::Keep(
            SetAside::Kind::kReceived, inWrite.mOld->Span(), u"a shared file replaces what was saved last" );
    return error;
}

void MacroDataQueue::DidWrite( const Write& inWrite, bool inIsNewState )
{
    if ( std::exchange( mHasFailed, false ) or inIsNewState )
        SavedStates::KeepSoon( inWrite.mNew );
    KVMacroEnableOverrides::DidSave( inWrite.mOverridesTaken );
    if ( not inWrite.mIsLocal )
        AddShared( inWrite.mNew );
    else if ( inWrite.mIsCopied and not gSharingDisabledBecauseOfNewerVersion )
    {
        const XText shared = KVPreferences::Get( KVPreferences::kMacroSharingFileID, XText() );
        if ( not IsEmpty( shared ) )
            (void)CopyToRemote( inWrite.mNew, shared.GetUTF8() );
    }
    TellEngine();
    if ( inWrite.mReload )
        XWork::Current().MainQueue()->Async( [] {
            if ( not MMacroApplication::Current().isTerminating() )
                MMacroApplication::Current().HandleReloadMacros();
        } );
}

// Between the look and the write another computer may still save; there is no lock that all of them know.
std::optional<XFileError> MacroDataQueue::KeepUnseenShare( const std::filesystem::path& inPath ) const
{
    const XFileContent there = MMacroFileLoading::ReadFile( inPath );
    if ( there.mError )
        return there.mError->mCode == ENOENT ? std::nullopt : there.mError;
    if ( mShared.Contains( MSeenDigests::Of( there.mBytes.Span() ) ) )
        return {};
    return SetAside::Keep(
        SetAside::Kind::kShareFile, there.mBytes.Span(), u"the shared file held what was never seen here" );
}

bool MacroDataQueue::CopyToRemote( const MMacroFileDataPtr& inData, const std::filesystem::path& inPath )
{
    auto error = KeepUnseenShare( inPath );
    if ( not error )
        error = XAtomicFile::Write( inPath, inData->Span() );
    if ( error )
    {
        XErrorBeep( "Preference shared sync write failed\n" );
        XErrorHandler::PrivateMaybeLogFormat( "always", "Shared macros file: %@", error->Describe() );
        return false;
    }
    AddShared( inData );
    return true;
}
} // namespace

void MMacroFileSaving::SaveMacroData( const XText& inRevisionDate, const MMacroFileDataPtr& inData, Change inChange,
    Afterwards inAfterwards, std::uint64_t inOverridesTaken )
{
    XAssertText( inData, "inData" );
    if ( not inData )
        return;
    auto& queue = TheQueue();
    const std::scoped_lock lock( gSavedMutex );
    Write write{ inRevisionDate, std::exchange( gPrivateLastSavedData, inData ), inData,
        std::exchange( gPrivateLocalChange, inChange == Change::kLocal ), inChange == Change::kLocal,
        gCopiesHeldBack == 0, inAfterwards == Afterwards::kReload, inOverridesTaken, MMacroDomain::LastSaveUUID() };
    queue.Queue().Async( [&queue, write = std::move( write )] { queue.Run( write ); } );
}

MMacroFileSaving::HoldCopiesBack::HoldCopiesBack()
{
    ++gCopiesHeldBack;
}

MMacroFileSaving::HoldCopiesBack::~HoldCopiesBack()
{
    --gCopiesHeldBack;
}

bool MMacroFileSaving::WasLastWritten()
{
    auto& queue = TheQueue();
    bool wasWritten = false;
    queue.Queue().Sync( [&] { wasWritten = not queue.HasFailed(); } );
    return wasWritten;
}

MMacroFileDataPtr MMacroFileSaving::LastSaved()
{
    const std::scoped_lock lock( gSavedMutex );
    return gPrivateLastSavedData;
}

void MMacroFileSaving::SetLastSaved( const MMacroFileDataPtr& inData )
{
    const std::scoped_lock lock( gSavedMutex );
    gPrivateLastSavedData = inData;
}

void MMacroFileSaving::RequireBeforeWriting( Precondition inPrecondition )
{
    auto& queue = TheQueue();
    queue.Queue().Async( [&queue, precondition = std::move( inPrecondition )] { queue.Require( precondition ); } );
}

void MMacroFileSaving::SetAsideBeforeWriting( SetAside::Kind inKind, const MMacroFileDataPtr& inData, Text inReason )
{
    RequireBeforeWriting(
        [inKind, inData, reason = std::move( inReason )] { return SetAside::Keep( inKind, inData->Span(), reason ); } );
}

XQueue& MMacroFileSaving::Queue()
{
    return TheQueue().Queue();
}

bool MMacroFileSaving::CopyToRemote( const MMacroFileDataPtr& inData, const std::filesystem::path& inPath )
{
    return TheQueue().CopyToRemote( inData, inPath );
}

void MMacroFileSaving::NoteSharedFileRead( const MMacroFileDataPtr& inData )
{
    auto& queue = TheQueue();
    queue.Queue().Async( [&queue, inData] { queue.AddShared( inData ); } );
}

void MMacroFileSaving::HoldEngineBack()
{
    const std::scoped_lock lock( gEngineMutex );
    gDontNotifyEngine = gNeedNotifyEngine = false;
}

void MMacroFileSaving::LetEngineKnow()
{
    bool isNeeded = false;
    {
        const std::scoped_lock lock( gEngineMutex );
        gDontNotifyEngine = true;
        isNeeded = std::exchange( gNeedNotifyEngine, false );
    }
    if ( isNeeded )
        PostLoadMacroFiles();
}

void MMacroFileSaving::SetFailedQuitting( bool inFailed )
{
    gSaveAllMacrosFailedQuitting = inFailed;
}

bool MMacroFileSaving::IsFailedQuitting()
{
    return gSaveAllMacrosFailedQuitting;
}

void MMacroFileSaving::SetSharingDisabledBecauseOfNewerVersion( bool inDisabled )
{
    gSharingDisabledBecauseOfNewerVersion = inDisabled;
}

bool MMacroFileSaving::IsSharingDisabledBecauseOfNewerVersion()
{
    return gSharingDisabledBecauseOfNewerVersion;
}

void MMacroFileSaving::Reset()
{
    HoldEngineBack();
    const std::scoped_lock lock( gSavedMutex );
    gPrivateLastSavedData = nullptr;
    gPrivateLocalChange = gSaveAllMacrosFailedQuitting = false;
    gSharingDisabledBecauseOfNewerVersion = false;
}

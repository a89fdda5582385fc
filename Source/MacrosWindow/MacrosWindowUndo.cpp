#include "MacrosWindow/MacrosWindowUndo.h"

#include "Defines/KVPreferences.h"
#include "Defines/SetAside.h"
#include "Macros/MMacroApplication.h"
#include "Macros/MMacroPreferenceFile.h"
#include "Macros/RevisionDates.h"
#include "Macros/SavedStates.h"
#include "MacrosWindow/MacrosWindowInterface.h"
#include "MacrosWindow/RecoverySnapshot.h"
#include "MacrosWindow/UndoJournal.h"
#include "Utility/Text/Localization.h"
#include "Utility/Work/PerformCoalesced.h"
#include "XCAF/XErrorHandler.h"

#include <algorithm>
#include <deque>

namespace
{
using UndoStack = std::deque<UndoEntry>;

constexpr std::int64_t kDefaultMaximumUndoSize = 200000000;

/// The stacks of the last run, on their way from the disk.
struct Loading
{
    MMacroFileDataPtr mPresent;
    std::optional<UndoJournal::Stacks> mStacks;
};

struct State
{
    UndoStack gUndoStack, gRedoStack; ///< the newest last
    bool gNeedSaveAll = false;
    bool gReloadInProgress = false;
    std::optional<std::uint64_t> mMaximumUndoSize; ///< read once
    std::shared_ptr<Loading> mLoading;
    bool mIsJournalOld = false; ///< it wasn't written because the last run's is still being read
    std::shared_ptr<int> mTarget = std::make_shared<int>();
};
State gState;

class JournalReaderQueue
{
public:
    explicit JournalReaderQueue( XWork& inWork )
        : mQueue( inWork.MakeSerialQueue( u"com.tessarine.korvalen.UndoJournalReader" ) )
    {}
    [[nodiscard]] XQueue& Queue() const { return *mQueue; }

private:
    std::shared_ptr<XQueue> mQueue;
};

XQueue& ReaderQueue()
{
    return XWork::Current().Shared<JournalReaderQueue>().Queue();
}

class ReloadScope
{
public:
    ReloadScope() { gState.gReloadInProgress = true; }
    ~ReloadScope() { gState.gReloadInProgress = false; }
    ReloadScope( const ReloadScope& ) = delete;
    ReloadScope& operator=( const ReloadScope& ) = delete;
};

PerformCoalesced::Target Target()
{
    return PerformCoalesced::Target( gState.mTarget, u"MacrosWindowUndo" );
}

std::uint64_t MaximumUndoSize()
{
    if ( not gState.mMaximumUndoSize )
    {
        std::int64_t size = 0;
        (void)KVPreferences::Get( KVPreferences::kMaximumUndoSizeID, &size, kDefaultMaximumUndoSize );
        gState.mMaximumUndoSize = std::uint64_t( std::max<std::int64_t>( size, 0 ) );
    }
    return *gState.mMaximumUndoSize;
}

void LimitStack( UndoStack& ioStack )
{
    std::uint64_t size = 0;
    for ( const UndoEntry& entry : ioStack )
        size += entry.undoDataSize();
    // The newest may be the one that is too large.
    while ( size > MaximumUndoSize() and not ioStack.empty() )
    {
        size -= ioStack.front().undoDataSize();
        ioStack.pop_front();
    }
}

/// The state as last saved. Its bytes are kept, for the journal only names them.
UndoEntry Snapshot()
{
    UndoEntry entry;
    entry.mSelection = MacrosWindowInterface::SavedSelectionState();
    XAssertText( entry.mSelection, "i_savedSelectionState" );
    entry.mData = MMacroPreferenceFile::SavedData();
    if ( entry.mData )
        SavedStates::KeepSoonIfMissing( entry.mData );
    return entry;
}

void PushUndo( UndoEntry inEntry )
{
    gState.gUndoStack.push_back( std::move( inEntry ) );
    LimitStack( gState.gUndoStack );
    gState.gRedoStack.clear();
}

void WriteJournal()
{
    if ( gState.mLoading )
        gState.mIsJournalOld = true;
    else
        UndoJournal::WriteSoon( MMacroPreferenceFile::SavedData(), { gState.gUndoStack, gState.gRedoStack } );
}

void InstallLoaded( const Loading& inLoading )
{
    if ( not inLoading.mStacks )
        return;
    const auto& [undo, redo] = *inLoading.mStacks;
    // Edits may have come meanwhile. What can be redone is only valid without one.
    if ( not gState.gNeedSaveAll and MMacroPreferenceFile::SavedData() == inLoading.mPresent )
        gState.gRedoStack = redo;
    gState.gUndoStack.insert( gState.gUndoStack.begin(), undo.begin(), undo.end() );
    LimitStack( gState.gUndoStack );
}

void FinishLoading()
{
    if ( not gState.mLoading )
        return;
    ReaderQueue().Sync( [] {} );
    const auto loading = std::exchange( gState.mLoading, nullptr );
    InstallLoaded( *loading );
    if ( std::exchange( gState.mIsJournalOld, false ) )
        WriteJournal();
}

// The journal is written after each change of the state that is saved, not after each edit: until the save the disk has
// the state that the last journal tells of.
void DeferredSaveAllMacros()
{
    gState.gNeedSaveAll = false;
    MacrosWindowInterface::ShowNeedSaveView( false );
    PerformCoalesced::Cancel( Target(), u"DeferredSaveAllMacros" );
    MMacroPreferenceFile::SaveAllMacros();
    RecoverySnapshot::NoteSave();
    WriteJournal();
    MacrosWindowInterface::DidDeferredSaveAllMacros();
}

void AddUndo( TextView inTitle )
{
    if ( not gState.gNeedSaveAll )
        PushUndo( Snapshot() );
    gState.gNeedSaveAll = true;
    if ( gState.gUndoStack.empty() )
        return; // the entry was too large to be kept
    auto& title = gState.gUndoStack.back().mTitle;
    if ( not title )
        title = inTitle;
    else if ( *title != inTitle )
        title = u"";
}

/// Sees to the bytes of the last entry. When they are gone the entry goes too: the user decides whether to go back
/// further.
bool HasData( UndoStack& ioStack )
{
    UndoEntry& entry = ioStack.back();
    if ( not entry.mData and not entry.mDigest.empty() )
        entry.mData = SavedStates::Load( entry.mDigest );
    if ( entry.mData )
        return true;
    XErrorBeep( "A step of undo is gone: “%@”", entry.mTitle.value_or( Text() ) );
    ioStack.pop_back();
    WriteJournal();
    return false;
}

/// The edits that wait are in no snapshot, and the reload throws them away.
bool SetUnsavedAside( const char16_t* inReason )
{
    if ( not gState.gNeedSaveAll )
        return true;
    const auto error = SetAside::Keep( SetAside::Kind::kUnsaved, RecoverySnapshot::EncodeModel()->Span(), inReason );
    if ( error )
        XErrorBeep( "Edits that aren't saved can't be set aside, so they stay: %@", error->Describe() );
    return not error;
}

void Perform( const UndoEntry& inEntry )
{
    MMacroPreferenceFile::UndoRedoMacroData( inEntry.mData, [&inEntry] {
        MMacroPreferenceFile::ReloadAllMacros();
        MacrosWindowInterface::DidReloadMacros( __SafeCFPropertyList( inEntry.mSelection ) );
    } );
}

bool Step( UndoStack& ioFrom, UndoStack& ioTo, const char16_t* inReason )
{
    FinishLoading();
    if ( ioFrom.empty() or not HasData( ioFrom ) or not SetUnsavedAside( inReason ) )
        return false;
    {
        const ReloadScope reload;
        MacrosWindowInterface::StopRecording();
        ioTo.push_back( Snapshot() );
        ioTo.back().mTitle = ioFrom.back().mTitle;
        const UndoEntry entry = ioFrom.back();
        Perform( entry );
        ioFrom.pop_back();
    }
    WriteJournal();
    MMacroApplication::Current().macrosSavedClearAppleScriptCaches();
    return true;
}

MacrosWindowUndo::MenuItem Validate( const UndoStack& inStack, const char16_t* inPlain, const char* inFormat )
{
    FinishLoading();
    if ( inStack.empty() )
        return { inPlain, false };
    const Text title = inStack.back().mTitle.value_or( Text() );
    return { title.empty() ? Text( inPlain ) : kvr_format( inFormat, title ), true };
}
} // namespace

bool MacrosWindowUndo::NeedSaveAllMacros()
{
    return gState.gNeedSaveAll;
}

void MacrosWindowUndo::PrivateSaveAllMacrosSoon( TextView inTitle )
{
    AddUndo( inTitle );
    MacrosWindowInterface::ShowNeedSaveView( true );
    PerformCoalesced::Perform(
        Target(), u"DeferredSaveAllMacros", 1.0, []( const std::shared_ptr<void>& ) { DeferredSaveAllMacros(); } );
    RecoverySnapshot::NoteEdit();
    MMacroApplication::Current().macrosSavedClearAppleScriptCaches();
}

void MacrosWindowUndo::SaveAllMacrosIfNecessary()
{
    if ( gState.gNeedSaveAll )
        DeferredSaveAllMacros();
}

// The entry holds what is saved now, so it is made before the revert, and counts once that has worked. No edit waits
// afterwards, so the next one makes a step of its own.
bool MacrosWindowUndo::RevertToRevision( TextView inRevision )
{
    SaveAllMacrosIfNecessary();
    UndoEntry entry = Snapshot();
    entry.mTitle = kvr_localizedFormat( u"RevertChange", RevisionDates::DisplayNameForRevision( inRevision ) );
    if ( not MMacroPreferenceFile::RevertToRevision( inRevision ) )
        return false;
    PushUndo( std::move( entry ) );
    WriteJournal();
    return true;
}

bool MacrosWindowUndo::ReloadInProgress()
{
    return gState.gReloadInProgress;
}

void MacrosWindowUndo::HandleReloadMacros()
{
    if ( gState.gNeedSaveAll )
    {
        // What came from outside is replaced by the edits, but not lost.
        if ( const auto outside = MMacroPreferenceFile::SavedData() )
            SavedStates::KeepSoonIfMissing( outside );
        SaveAllMacrosIfNecessary();
    }
    const ReloadScope reload;
    MMacroPreferenceFile::ReloadAllMacros();
    MacrosWindowInterface::DidReloadMacros( {} );
    WriteJournal();
}

MacrosWindowUndo::MenuItem MacrosWindowUndo::ValidateUndo()
{
    return Validate( gState.gUndoStack, u"Undo", "Undo %@" );
}

MacrosWindowUndo::MenuItem MacrosWindowUndo::ValidateRedo()
{
    return Validate( gState.gRedoStack, u"Redo", "Redo %@" );
}

void MacrosWindowUndo::SetMacroUndoMenu( EditMenu& ioMenu )
{
    const bool isMacros = ioMenu.IsMacroContextFront();
    ioMenu.UndoItem().SetAction( isMacros ? EditMenuAction::kMacrosUndo : EditMenuAction::kOriginal );
    ioMenu.RedoItem().SetAction( isMacros ? EditMenuAction::kMacrosRedo : EditMenuAction::kOriginal );
}

bool MacrosWindowUndo::ValidateMenuItem( EditMenuItem& ioItem, bool& outIsEnabled )
{
    const EditMenuAction action = ioItem.GetAction();
    if ( action == EditMenuAction::kOriginal )
        return false;
    const MenuItem item = action == EditMenuAction::kMacrosUndo ? ValidateUndo() : ValidateRedo();
    ioItem.SetTitle( item.mTitle );
    outIsEnabled = item.mIsEnabled;
    return true;
}

bool MacrosWindowUndo::Undo()
{
    return Step( gState.gUndoStack, gState.gRedoStack, u"edits that weren't saved when a change was undone" );
}

bool MacrosWindowUndo::Redo()
{
    return Step( gState.gRedoStack, gState.gUndoStack, u"edits that weren't saved when a change was redone" );
}

void MacrosWindowUndo::LoadPersistentStacks()
{
    const auto present = MMacroPreferenceFile::SavedData();
    if ( not present )
        return;
    const auto loading = std::make_shared<Loading>( Loading{ present, {} } );
    gState.mLoading = loading;
    ReaderQueue().Async( [loading] {
        loading->mStacks = UndoJournal::Read( *loading->mPresent );
        XWork::Current().MainQueue()->Async( [loading] {
            if ( gState.mLoading == loading )
                FinishLoading();
        } );
    } );
}

void MacrosWindowUndo::FinalSaveAllMacros()
{
    FinishLoading();
    MMacroPreferenceFile::FinalSaveAllMacros();
    RecoverySnapshot::NoteSave();
    // The queues end soon, and a copy that stays would be told at the next start as edits that were lost.
    RecoverySnapshot::WaitForQueue();
    WriteJournal();
}

void MacrosWindowUndo::DebugClearUnnecessaryState()
{
    FinishLoading();
    gState.gUndoStack.clear();
    gState.gRedoStack.clear();
    WriteJournal();
}

std::size_t MacrosWindowUndo::UndoCount()
{
    FinishLoading();
    return gState.gUndoStack.size();
}

std::size_t MacrosWindowUndo::RedoCount()
{
    FinishLoading();
    return gState.gRedoStack.size();
}

void MacrosWindowUndo::Reset()
{
    gState = State();
    RecoverySnapshot::Reset();
}

#include "MacrosWindow/MacrosWindowUndo.h"

#include "Macros/MMacroApplication.h"
#include "Macros/MMacroPreferenceFile.h"
#include "MacrosWindow/MacrosWindowInterface.h"
#include "Utility/Work/PerformCoalesced.h"

#include <deque>

namespace
{
struct UndoEntry
{
    std::optional<Text> mTitle; ///< absent at first; empty for a mix of edits
    CFContainer<XPlistDictionary> mSelection;
    MMacroFileDataPtr mData;
};

struct State
{
    std::deque<UndoEntry> mUndo, mRedo;
    bool mNeedSaveAll = false;
    bool mReloadInProgress = false;
    std::shared_ptr<int> mTarget = std::make_shared<int>();
};
State gState;

PerformCoalesced::Target Target()
{
    return PerformCoalesced::Target( gState.mTarget, u"MacrosWindowUndo" );
}

UndoEntry Snapshot()
{
    return { {}, MacrosWindowInterface::SavedSelectionState(), MMacroPreferenceFile::SavedData() };
}

void DeferredSaveAllMacros()
{
    gState.mNeedSaveAll = false;
    MacrosWindowInterface::ShowNeedSaveView( false );
    PerformCoalesced::Cancel( Target(), u"DeferredSaveAllMacros" );
    MMacroPreferenceFile::SaveAllMacros();
    MacrosWindowInterface::DidDeferredSaveAllMacros();
}

void AddUndo( TextView inTitle )
{
    if ( not gState.mNeedSaveAll )
    {
        gState.mUndo.push_back( Snapshot() );
        gState.mRedo.clear();
    }
    gState.mNeedSaveAll = true;
    auto& title = gState.mUndo.back().mTitle;
    if ( not title )
        title = inTitle;
    else if ( *title != inTitle )
        title = u"";
}

bool Move( std::deque<UndoEntry>& ioFrom, std::deque<UndoEntry>& ioTo )
{
    if ( ioFrom.empty() )
        return false;
    gState.mReloadInProgress = true;
    MacrosWindowInterface::StopRecording();
    ioTo.push_back( Snapshot() );
    ioTo.back().mTitle = ioFrom.back().mTitle;
    const UndoEntry entry = std::move( ioFrom.back() );
    ioFrom.pop_back();
    MMacroPreferenceFile::UndoRedoMacroData( entry.mData );
    MMacroPreferenceFile::ReloadAllMacros();
    MacrosWindowInterface::DidReloadMacros( entry.mSelection );
    gState.mReloadInProgress = false;
    MMacroApplication::Current().macrosSavedClearAppleScriptCaches();
    return true;
}
} // namespace

bool MacrosWindowUndo::NeedSaveAllMacros()
{
    return gState.mNeedSaveAll;
}

void MacrosWindowUndo::PrivateSaveAllMacrosSoon( TextView inTitle )
{
    AddUndo( inTitle );
    MacrosWindowInterface::ShowNeedSaveView( true );
    PerformCoalesced::Perform(
        Target(), u"DeferredSaveAllMacros", 1.0, []( const std::shared_ptr<void>& ) { DeferredSaveAllMacros(); } );
    MMacroApplication::Current().macrosSavedClearAppleScriptCaches();
}

void MacrosWindowUndo::SaveAllMacrosIfNecessary()
{
    if ( gState.mNeedSaveAll )
        DeferredSaveAllMacros();
}

bool MacrosWindowUndo::ReloadInProgress()
{
    return gState.mReloadInProgress;
}

void MacrosWindowUndo::HandleReloadMacros()
{
    gState.mReloadInProgress = true;
    MMacroPreferenceFile::ReloadAllMacros();
    MacrosWindowInterface::DidReloadMacros( {} );
    gState.mReloadInProgress = false;
}

bool MacrosWindowUndo::Undo()
{
    return Move( gState.mUndo, gState.mRedo );
}

bool MacrosWindowUndo::Redo()
{
    return Move( gState.mRedo, gState.mUndo );
}

void MacrosWindowUndo::DebugClearUnnecessaryState()
{
    gState.mUndo.clear();
    gState.mRedo.clear();
}

std::size_t MacrosWindowUndo::UndoCount()
{
    return gState.mUndo.size();
}

std::size_t MacrosWindowUndo::RedoCount()
{
    return gState.mRedo.size();
}

void MacrosWindowUndo::Reset()
{
    gState = State();
}

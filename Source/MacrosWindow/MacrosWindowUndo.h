// Undo of everything: an entry is the whole macros file as it was last saved, and the selection of each window. Undoing
// writes it back as the macros file and loads the model anew. The stacks outlive the process in a journal (see UndoJournal). Main
// thread.
#pragma once

#include "CFMethods/Text.h"
#include "Macros/MMacroFileData.h"
#include "MacrosWindow/MacroUndoMenu.h"

#include <cstddef>
#include <optional>

namespace MacrosWindowUndo
{
/// Do edits wait for their save?
[[nodiscard]] bool NeedSaveAllMacros();
/// An edit was made: keeps the state before the first one since the last save, and has everything saved when no edit has
/// come for a second. For MacrosWindowInterface::NoteChange.
void PrivateSaveAllMacrosSoon( TextView inTitle );
/// Saves now if edits wait.
void SaveAllMacrosIfNecessary();
/// Goes back to a revision, as an undoable step. False when it can't be read.
bool RevertToRevision( TextView inRevision );
[[nodiscard]] bool ReloadInProgress();
/// The macros file was replaced from outside. Edits that wait are saved first.
void HandleReloadMacros();

/// Whether there is something to undo or redo, and what the command shows: "Undo Rename", or "Undo" for a mix of edits.
struct MenuItem
{
    Text mTitle;
    bool mIsEnabled = false;
};
[[nodiscard]] MenuItem ValidateUndo();
[[nodiscard]] MenuItem ValidateRedo();
/// Makes the two items those of macros, or gives them their own actions back.
void SetMacroUndoMenu( EditMenu& ioMenu );
/// Titles an item whose action is one of the two, and says whether it is enabled. False for another item, which is left
/// alone.
bool ValidateMenuItem( EditMenuItem& ioItem, bool& outIsEnabled );

/// One step back or forth. False, with nothing changed, when there is none, when its bytes are gone, or when edits wait
/// that can't be set aside; the last two beep.
bool Undo();
bool Redo();

/// Takes up the stacks of the last run. A macros file that was changed since is one step more. Once, after the first load;
/// the work is done on a queue, and whoever needs the stacks before it has ended waits.
void LoadPersistentStacks();

/// The last save of the application, after which the stacks belong to what it has written. At termination.
void FinalSaveAllMacros();

/// Empties both stacks.
void DebugClearUnnecessaryState();
[[nodiscard]] std::size_t UndoCount();
[[nodiscard]] std::size_t RedoCount();

/// Forgets everything, as before the start; for the end of the application and for tests. The journal stays.
void Reset();
} // namespace MacrosWindowUndo

// Undo of everything: an entry is the whole macros file as it was last saved, and the selection of each window. Undoing
// writes it back as the macros file and loads the model anew. Main thread.
#pragma once

#include "CFMethods/Text.h"
#include "Macros/MMacroFileData.h"

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
/// The macros file was replaced from outside.
void HandleReloadMacros();

/// Whether there is something to undo or redo, and what the command shows: "Undo Rename", or "Undo" for a mix of edits.
struct MenuItem
{
    Text mTitle;
    bool mIsEnabled = false;
};
[[nodiscard]] MenuItem ValidateUndo();
[[nodiscard]] MenuItem ValidateRedo();

/// One step back or forth; nothing happens, and the result is false, when there is none.
bool Undo();
bool Redo();

/// Empties both stacks.
void DebugClearUnnecessaryState();
[[nodiscard]] std::size_t UndoCount();
[[nodiscard]] std::size_t RedoCount();

/// Forgets everything, as before the start; for the end of the application and for tests.
void Reset();
} // namespace MacrosWindowUndo

// The edits of macros, groups and smart groups that windows, scripts and the program's verbs share. Each changes
// the model and then tells it through MacrosWindowInterface::NoteChange under one title, so that however many objects it
// touches it is one undo step and one save. An edit that would change nothing tells nothing. Main thread.
#pragma once

#include "Macros/MMacroFileData.h"
#include "Macros/MMacroSerializedObject.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace MacroEditing
{
using Objects = std::vector<MMacroSerializedObject*>;

enum class Edit : std::uint8_t { kAdd, kDelete, kDuplicate, kEnable, kDisable, kMove, kRename, kRestore };

/// What Undo shows for an edit of these: "Delete Macro", "Delete Macro Group", or "Delete" for a mix.
[[nodiscard]] Text UndoTitle( Edit inEdit, const Objects& inObjects );

/// Each once, in the order given, and no macro whose group is among them: what happens to a group happens to its macros.
[[nodiscard]] Objects WithoutNested( const Objects& inObjects );

// New objects; their times are set.
MMacroGroup& AddGroup( const XText& inName );
MMacroSmartGroup& AddSmartGroup( const XText& inName, std::vector<XText> inSearchStrings );
MMacro& AddMacro( const XText& inName, MMacroGroup& ioGroup );

/// Objects with their new names. A macro counts as modified. Those that are called so already are left alone; the result
/// has the others.
Objects Rename( const std::vector<std::pair<MMacroSerializedObject*, XText>>& inNames );
/// The result has those that were otherwise before.
Objects SetActive( const Objects& inObjects, bool inActive );
/// Destroys them, with the macros of groups. The default group can't go: passing it is an assertion, and it stays.
void Delete( const Objects& inObjects );
/// The result has those that weren't in the group before.
Objects Move( const std::vector<MMacro*>& inMacros, MMacroGroup& ioGroup );
/// Copies with " copy" at the end of their names, macros beside the original. References among what is copied lead to
/// the copies. The result has them in the order of the originals, without nested ones.
Objects Duplicate( const Objects& inObjects );

/// An object of an older state: its dictionary, and, of a macro, that of its group.
struct Restorable
{
    __SafeCFPropertyList mValue;
    __SafeCFPropertyList mGroup; ///< null unless it is a macro
};
/// Brings it back: in place of the object that has its UID now, or as a new one. A macro goes to the group that it is in
/// now, else to the one that it was in, which is made anew, without its other macros, when it has gone. UIDs stay as they
/// were unless another object has them now. Null, with nothing changed, for a value that can't be understood.
MMacroSerializedObject* Restore( const Restorable& inObject );

/// Makes these bytes the macros file, and the model what they say, as one undo step of that title. The result says why not:
/// then nothing has changed.
[[nodiscard]] std::optional<std::string> ReplaceAllMacros( const MMacroFileDataPtr& inData, const Text& inTitle );
} // namespace MacroEditing

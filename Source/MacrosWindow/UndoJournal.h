// The stacks of undo on disk, "Korvalen Undo.plist", so that a restart doesn't end undo. It names states by their digest; their
// bytes lie among the saved states. Written off the main thread, where the newest wins.
#pragma once

#include "CFMethods/PropertyList.h"
#include "Macros/MMacroFileData.h"

#include <deque>
#include <filesystem>
#include <optional>
#include <string>

/// A step of undo or redo: the whole macros file as it was last saved, and what was selected in each window.
struct UndoEntry
{
    std::optional<Text> mTitle; ///< absent at first; empty for a mix of edits
    CFContainer<XPlistDictionary> mSelection;
    MMacroFileDataPtr mData; ///< null in one that was restored, until it is needed
    std::string mDigest;     ///< of one that was restored
    std::size_t mDataSize = 0;

    [[nodiscard]] std::size_t undoDataSize() const { return mData ? mData->size() : mDataSize; }
    [[nodiscard]] const std::string& Digest() const { return mData ? mData->Digest() : mDigest; }
};

namespace UndoJournal
{
struct Stacks
{
    std::deque<UndoEntry> mUndo, mRedo; ///< the newest last
};

[[nodiscard]] std::filesystem::path Path();
/// Writes the stacks that belong to this present state. Returns at once.
void WriteSoon( const MMacroFileDataPtr& inPresent, Stacks inStacks );
/// The stacks as they lead to this present state: with a step more, which is logged, when the macros file was changed since
/// they were written. Entries whose bytes are gone are left out. Absent when there is no journal that can be
/// read. Takes as long as the digest. Any thread.
[[nodiscard]] std::optional<Stacks> Read( const MMacroFileData& inPresent );
} // namespace UndoJournal

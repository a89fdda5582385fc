// Revisions: whole copies of the macros file, one for each day on which there was another state, and a few with
// reserved dates; see RevisionDates. Saving is for the queue of the macros file; the rest may be called from any thread.
#pragma once

#include "Macros/MMacroFileData.h"

#include <filesystem>
#include <vector>

namespace MRevisions
{
[[nodiscard]] std::filesystem::path Folder();
[[nodiscard]] std::filesystem::path PathOf( TextView inDate );
/// "dddd_dd_dd", digits of any value; other names aren't revisions.
[[nodiscard]] bool IsDate( TextView inDate );
/// The dates of the revisions that there are, ascending.
[[nodiscard]] std::vector<Text> List();
/// The bytes; null, logged, when they can't be read. They may be anything.
[[nodiscard]] MMacroFileDataPtr Read( TextView inDate );

/// Writes a revision, durably, and replaces one of the same date; the reserved ones that start with "0000" are never
/// replaced. A replaced one of a day goes to Set Aside when its bytes are others. On failure it beeps and logs.
void PrivateSaveRevision( TextView inDate, const MMacroFileDataPtr& inData );

enum class Keep { kNothing, kInSetAside };
/// One that is to be kept, and can't, stays.
void DeleteRevision( TextView inDate, Keep inKeep = Keep::kNothing );

/// Deletes the oldest: at most three at a time while there are eight or more, and all that are above 21. Those of today
/// and the reserved ones stay, and aren't counted among them.
void Cull( Keep inKeep );

/// The revisions of the version before are taken over, once.
void CopyFromVersion8();
} // namespace MRevisions

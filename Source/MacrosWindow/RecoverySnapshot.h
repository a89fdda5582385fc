// While edits wait for their save, which each further edit pushes back, the model is copied to Set Aside: two seconds after
// the first edit that no copy has (five for a large file), and again as long as edits go on. So an unbroken run
// of edits never risks more than that. The save removes the copy. A copy that is found at start is told, and
// never loaded by itself. Main thread.
#pragma once

#include "Macros/MMacroFileData.h"

#include <cstddef>

namespace RecoverySnapshot
{
inline constexpr double kDelay = 2.0, kLargeDelay = 5.0;
inline constexpr std::size_t kLargeBytes = 20000000; ///< above it the file is large

/// The model as the bytes of a macros file; not a save, so the UUID of the last one stays.
[[nodiscard]] MMacroFileDataPtr EncodeModel();

/// An edit was made that waits for its save.
void NoteEdit();
/// Everything was handed to the writer: the copy goes when the macros file has these bytes.
void NoteSave();

/// Returns when what was asked for is written or removed.
void WaitForQueue();

/// At start, after the load: a copy whose edits aren't in the macros file is kept as edits that weren't saved, and
/// becomes a notice.
void FoundAtStart();

/// Forgets everything but what is on disk; for the end of the application and for tests.
void Reset();
} // namespace RecoverySnapshot

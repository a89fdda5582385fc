// The writing half of MMacroPreferenceFile, for its own sources: what was saved last, the queue that writes, and what
// must be in Set Aside before anything is written. Any thread, unless told otherwise.
#pragma once

#include "CFMethods/PropertyList.h"
#include "Defines/SetAside.h"
#include "Macros/MMacroFileData.h"
#include "Utility/Work/Work.h"

#include <filesystem>
#include <functional>
#include <optional>

namespace MMacroFileSaving
{
enum class Change : std::uint8_t {
    kLocal,
    kReceived, ///< from a shared file; it isn't copied there again, and what it replaces is set aside
};
enum class Afterwards : std::uint8_t { kNothing, kReload };

/// Makes the data the last saved one, and has it written. With a date, the data that was the last saved one becomes that
/// revision first. Data that was made of the model says how many of the engine's overrides are in it: see
/// KVMacroEnableOverrides::CountTaken. Doesn't wait.
void SaveMacroData( const XText& inRevisionDate, const MMacroFileDataPtr& inData, Change inChange,
    Afterwards inAfterwards, std::uint64_t inOverridesTaken = 0 );

/// As long as one lives, local changes are written but not copied to the shared file. Main thread.
class HoldCopiesBack
{
public:
    HoldCopiesBack();
    ~HoldCopiesBack();
    HoldCopiesBack( const HoldCopiesBack& ) = delete;
    HoldCopiesBack& operator=( const HoldCopiesBack& ) = delete;
};

/// Did the last write that has run succeed? For who has just waited for the queue.
[[nodiscard]] bool WasLastWritten();

[[nodiscard]] MMacroFileDataPtr LastSaved();
/// Bytes that were read from the macros file, or that the model was loaded from: nothing is written.
void SetLastSaved( const MMacroFileDataPtr& inData );

/// Something that has to succeed before the macros file may be replaced, for bytes that can be had nowhere else. It is
/// tried on the queue at once, and again before each write, which fails with the same error until it has succeeded.
using Precondition = std::function<std::optional<XFileError>()>;
void RequireBeforeWriting( Precondition inPrecondition );
/// The usual one. The reason is a clause in English.
void SetAsideBeforeWriting( SetAside::Kind inKind, const MMacroFileDataPtr& inData, Text inReason );

/// "com.tessarine.korvalen.MacroData". Whatever waits for its writes calls Sync with an empty block.
[[nodiscard]] XQueue& Queue();

/// Replaces a shared file. What it holds is set aside if this process has neither written nor read it. False, logged, when
/// that or the write failed. On the queue.
bool CopyToRemote( const MMacroFileDataPtr& inData, const std::filesystem::path& inPath );
/// The shared file held this when we read it.
void NoteSharedFileRead( const MMacroFileDataPtr& inData );

/// From the start of the load until the engine is known to run, it isn't told of changes.
void HoldEngineBack();
void LetEngineKnow();

// The user chose to quit after a failed write. Main thread.
void SetFailedQuitting( bool inFailed );
[[nodiscard]] bool IsFailedQuitting();

void SetSharingDisabledBecauseOfNewerVersion( bool inDisabled );
[[nodiscard]] bool IsSharingDisabledBecauseOfNewerVersion();

void Reset();
} // namespace MMacroFileSaving

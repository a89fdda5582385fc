// The reading half of MMacroPreferenceFile, for its own sources: bytes become the model, and what a load couldn't take
// over is kept. Main thread, unless told otherwise.
#pragma once

#include "CFMethods/PropertyList.h"
#include "Macros/MMacroFileData.h"
#include "XCAF/XFileWriting.h"

#include <filesystem>
#include <string>

namespace MMacroFileLoading
{
/// The bytes of a macros file, wherever it lies. What isn't a regular file is an error: a pipe would be waited for until
/// somebody writes into it. Any thread.
[[nodiscard]] XFileContent ReadFile( const std::filesystem::path& inPath );

/// The bytes as a value; null, with the reason as a clause, when they don't parse. Any thread.
[[nodiscard]] __SafeCFPropertyList Parse( const MMacroFileDataPtr& inData, std::string& outReason );
/// The same for bytes that come from elsewhere or from long ago: what isn't the dictionary of a macros file counts as
/// unreadable too. Any thread.
[[nodiscard]] __SafeCFPropertyList ParseMacrosFile( const MMacroFileDataPtr& inData, std::string& outReason );

/// What is to be done with bytes that another computer has written.
enum class SharedFile : std::uint8_t {
    kTaken,
    kNewer, ///< written by a newer version, whose files may have another form
    kUnreadable,
};
/// The reason is a clause for kUnreadable; the value that was parsed is for whoever loads it. Any thread.
[[nodiscard]] SharedFile JudgeSharedFile(
    const MMacroFileDataPtr& inData, __SafeCFPropertyList& outProperties, std::string& outReason );

/// Replaces the model, with the engine's overrides taken. Whatever was left out is set aside before the next save, and
/// the user is told. True when nothing was. Throws XException, and the model is as before, for a value that is no macros
/// file. After any other exception nothing is saved until a load has succeeded: the model may be half there.
bool Load( const __SafeCFPropertyList& inValue, const MMacroFileDataPtr& inData, const std::filesystem::path& inFile );
/// Bytes that the model equals: what a load goes back to that failed in the middle.
void NoteWhole( const MMacroFileDataPtr& inData );
[[nodiscard]] bool IsSavingLatchedOff();
/// Until a load has succeeded.
void LatchSavingOff();

void Reset();
} // namespace MMacroFileLoading

// What the macros file has to tell the user: alerts that ask, and notices that stay until they are answered. Any
// thread; alerts come up in a later turn of the main loop, and where nobody can be asked the work goes on.
#pragma once

#include "CFMethods/Text.h"
#include "XCAF/XFileWriting.h"

#include <filesystem>
#include <functional>

namespace MMacroFileAlerts
{
/// What the user can do about it, as a sentence; "" when nothing is known.
[[nodiscard]] Text RecoverySuggestion( const XFileError& inError );

/// A write failed. The user may carry on, or quit; the path is shown in the file manager then. One alert at a time.
void WriteFailed( const XFileError& inError, const std::filesystem::path& inPath );
/// Sharing stands still because the shared file comes from a newer version.
void SharedFileIsNewer();
/// Asks whether to begin as with no file. True only when the user says so. Main thread; waits.
[[nodiscard]] bool AskToBeginAnew( const std::filesystem::path& inFile );

// The identifiers of notices.
inline constexpr char16_t kMacrosFileUnreadable[] = u"MacrosFileUnreadable";
inline constexpr char16_t kMacrosFileInPart[] = u"MacrosFileInPart";
inline constexpr char16_t kMacrosFileNewer[] = u"MacrosFileNewer";
inline constexpr char16_t kMacrosFileWrongRoot[] = u"MacrosFileWrongRoot";
inline constexpr char16_t kMacrosLoadFailed[] = u"MacrosLoadFailed";
inline constexpr char16_t kShareFileUnreadable[] = u"ShareFileUnreadable";

/// Posts a notice whose title and text have the localised keys of the identifier with "Title" and "Text" behind it. The
/// text is a format for the path and the reason.
void Post( TextView inIdentifier, const std::filesystem::path& inFile, TextView inReason );
} // namespace MMacroFileAlerts

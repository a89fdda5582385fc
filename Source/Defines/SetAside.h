// The folder "Set Aside" among the data files: before bytes are replaced that weren't fully understood, or edits that
// aren't saved are about to go, they are copied there. No rule of loading or saving reads it; people list,
// compare and restore what it holds. A name says what it was, the UTC time, a number that rises from one to the next, so
// that a clock that was set wrong changes no order, and a digest. Equal bytes of one kind are kept once. Any
// thread, and several processes.
#pragma once

#include "CFMethods/Text.h"
#include "Utility/Work/Clock.h"
#include "XCAF/XFileWriting.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace SetAside
{
/// What the bytes were.
enum class Kind : std::uint8_t {
    kMacrosFile,  ///< the macros file, before it is replaced
    kShareFile,   ///< a shared file that can't be read, or that we never saw
    kReceived,    ///< local work that a received file replaces
    kRevision,    ///< a revision that is culled, or that can't be read
    kUnsaved,     ///< the model when an undo or a reload throws edits away
    kRecovery,    ///< the model while edits wait for their save; one at a time, see Keep
    kSaved,       ///< each state that was saved
    kOverrides,   ///< the engine's enable overrides before they are emptied
    kPreferences, ///< a settings file that can't be understood
    kOther,
};
inline constexpr std::string_view kKindNames[] = { "Macros", "Share", "Before Received", "Revision", "Unsaved",
    "Recovery", "Saved", "Overrides", "Preferences", "Other" };
static_assert( std::size( kKindNames ) == std::size_t( Kind::kOther ) + 1 );

struct Entry
{
    std::filesystem::path mPath;
    Kind mKind = Kind::kOther;
    XAbsoluteTime mTime = 0;
    std::string
        mDigest; ///< the first 16 hexadecimal digits of the SHA-256 of the bytes; all 0 of a file that was moved
    std::uint64_t mSize = 0;
    std::uint64_t mNumber = 0; ///< rises from one to the next
};

/// "Set Aside" in the data folder. The first Keep makes it.
[[nodiscard]] std::filesystem::path Folder();

/// Keeps the bytes, durably: when it returns without an error, a power cut can't take them. Bytes of this
/// kind that are there already get the new time and number. Logs what was kept and why; the reason is a clause in English.
/// On failure the error is logged and returned: the caller mustn't replace anything then that can be had nowhere else.
///
/// A recovery snapshot takes the place of the one before. One that an earlier run has left wasn't saved by anybody: it
/// becomes one of kUnsaved.
[[nodiscard]] std::optional<XFileError> Keep(
    Kind inKind, std::span<const std::uint8_t> inBytes, TextView inReason, Entry* outEntry = nullptr );
/// The same with a file's bytes; a file that doesn't exist is success. What isn't a file is an error.
[[nodiscard]] std::optional<XFileError> KeepFile( Kind inKind, const std::filesystem::path& inFile, TextView inReason );
/// For a file whose bytes can't be read: moves it there as it is. A link is moved, and what it names stays. What isn't a
/// regular file isn't listed, and never culled.
[[nodiscard]] std::optional<XFileError> MoveFile( Kind inKind, const std::filesystem::path& inFile, TextView inReason );

/// What is there, the newest first.
[[nodiscard]] std::vector<Entry> List();
/// Of one kind.
[[nodiscard]] std::vector<Entry> List( Kind inKind );
/// Takes one out; for a recovery snapshot whose edits were saved, and for overrides that were.
void Remove( const Entry& inEntry );

// What stays: the newest kFewest, and everything younger than kKeepSeconds while all together are at most kMostBytes;
// above that the oldest go first. States that were saved are kept likewise, kFewestSaved of them at least.
inline constexpr std::size_t kFewest = 10, kFewestSaved = 50;
inline constexpr double kKeepSeconds = 7 * 86400.0;
inline constexpr std::uint64_t kMostBytes = std::uint64_t( 1 ) << 30;
/// What one Cull takes at most of those that are only old: a clock that is wrong once mustn't cost everything.
inline constexpr std::size_t kMostAgedAtOnce = 10;
/// Takes out what is old, and temporary files that a crash has left. At start-up; Keep by itself sees to the bytes alone.
void Cull();
} // namespace SetAside

// Bringing in what strangers and other computers made: "kvmacros", "kvactions" and "kvlibrary" files, and arrays of
// the same form. All or nothing: what has a bad element changes neither the model nor the disk nor undo. What came is one
// undo step. Main thread.
#pragma once

#include "CFMethods/PropertyList.h"
#include "Macros/ImportAbilities.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <vector>

class MMacro;

/// How imported macros come in; scripts use the numbers.
enum class ImportMacrosDisabledType : std::int32_t {
    kDisabled = 0,
    kAsTheyAre = 1,
    kByOptionKey = 2, ///< disabled, unless the Option key and no other modifier is held
};

namespace MacroImport
{
inline constexpr std::size_t kMostBytes = std::size_t( 256 ) << 20;
inline constexpr std::size_t kMostMacros = 100'000;

struct Options
{
    ImportMacrosDisabledType mDisabled = ImportMacrosDisabledType::kByOptionKey;
    std::optional<bool> mIsOptionKeyHeld; ///< absent asks the keyboard, at this moment
    MMacro* mEditedMacro = nullptr;       ///< the one that takes actions; null when none is being edited
    bool mImportsLibraryAgain = false;    ///< without asking
    const void* mSource = nullptr;        ///< the window that imports, which then selects what came; may be null
};

struct Named
{
    XText mUID;
    Text mName;
};

/// Macros that joined a group that was there.
struct Joined
{
    Named mGroup;
    std::size_t mMacros = 0;
};

struct Result
{
    std::optional<Text> mError; ///< a sentence; nothing came, and nothing was changed

    bool mCameInDisabled = false;
    std::vector<Named> mMacros; ///< in the order of the file
    std::vector<Named> mGroups; ///< new ones
    std::vector<Named> mSmartGroups;
    std::vector<Joined> mMerged; ///< by group
    /// Groups that are off and took in macros that are on: these come alive when the user turns the group on.
    std::vector<Joined> mEnabledInGroupsThatAreOff;
    std::size_t mActions = 0;   ///< of a "kvactions" file
    std::vector<Text> mLeftOut; ///< elements within macros that aren't understood, as "My Macro › action 3: why"
    ImportAbilities mAbilities;

    explicit operator bool() const { return not mError; }
    /// What came, for the user: a line for each fact; or the error.
    [[nodiscard]] std::vector<Text> Describe() const;
};

/// By the extension. The URL is one of a local file ("file:...") or a path; another one is refused.
Result importFromURL( TextView inURL, const Options& inOptions );
Result ImportFile( const std::filesystem::path& inFile, const Options& inOptions );

/// An array of groups and smart groups; it must not be empty.
Result importMacrosFromArray( const __SafeCFPropertyList& inArray, const Options& inOptions );
/// An action or an array of them, to the end of the macro that is being edited.
Result ImportActions( const __SafeCFPropertyList& inValue, const Options& inOptions );
/// Asks before a library that was imported already comes in once more.
Result ImportLibrary( const __SafeCFPropertyList& inLibrary, const Options& inOptions );

/// As the application does it for files that it is asked to open: imports, and tells the user what came or what was wrong.
Result ImportFromURL( TextView inURL, ImportMacrosDisabledType inDisabled = ImportMacrosDisabledType::kByOptionKey );
void TellUser( const Result& inResult );

/// The path of a "file:" URL on this computer, or the path as it stands; absent for anything else.
[[nodiscard]] std::optional<std::filesystem::path> LocalFileOfURL( TextView inURL );
} // namespace MacroImport

// Settings: named values in three preference domains, which the editor and the engine both read
// and write, so that they are a second channel between the two. Each domain is a property-list
// file in the configuration folder. Every read first looks at the file, so it sees what another process
// wrote a moment ago. Defaults aren't in the table: each caller passes its own. Any thread.
#pragma once

#include "CFMethods/PropertyList.h"

#include <concepts>
#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <span>
#include <string_view>

namespace KVPreferences
{
/// The domain and key of a setting. Both are constants that live as long as the program.
class PreferenceID
{
public:
    constexpr PreferenceID( std::string_view inDomain, std::string_view inKey ) : mDomain( inDomain ), mKey( inKey ) {}

    [[nodiscard]] constexpr std::string_view Domain() const { return mDomain; }
    [[nodiscard]] constexpr const XKey& Key() const { return mKey; }

private:
    std::string_view mDomain;
    XKey mKey;
};

inline constexpr std::string_view kEditorDomain = "com.tessarine.korvalen.editor";
inline constexpr std::string_view kEngineDomain = "com.tessarine.korvalen.engine";
inline constexpr std::string_view kLicenceDomain = "com.tessarine.korvalen";

// A constant for each setting: kAppearanceID and so on.
#define KV_EDITOR( inWord, inType, inDefault ) inline constexpr PreferenceID k##inWord##ID{ kEditorDomain, #inWord };
#define KV_ENGINE( inWord, inType, inDefault ) KV_ENGINE_KEY( inWord, #inWord, inType, inDefault )
#define KV_ENGINE_KEY( inWord, inKey, inType, inDefault )                                                              \
    inline constexpr PreferenceID k##inWord##ID{ kEngineDomain, inKey };
#include "Defines/KVPreferenceIDs.def"
#undef KV_EDITOR
#undef KV_ENGINE
#undef KV_ENGINE_KEY

/// What is known of a setting beside its name, for people who look at them.
enum class PreferenceType : std::uint8_t { kAny, kBoolean, kInteger, kReal, kText, kArray };
inline constexpr std::string_view kPreferenceTypeNames[] = { "any", "boolean", "integer", "real", "text", "array" };
static_assert( std::size( kPreferenceTypeNames ) == std::size_t( PreferenceType::kArray ) + 1 );
struct PreferenceRow
{
    std::string_view mConstant; ///< "kAppearanceID"
    PreferenceID mID;
    PreferenceType mType;
    std::string_view mDefault; ///< as text; "" when its readers share none
};
/// Those of the editor and then those of the engine, each by key without regard to case.
[[nodiscard]] std::span<const PreferenceRow> AllPreferences();
/// The row of a key, or null. No two domains share a key.
[[nodiscard]] const PreferenceRow* FindPreference( std::string_view inKey );

/// The values of kStatusMenuDisplayType2ID; the number that was stored before them is the index.
inline constexpr TextView kStatusMenuDisplayTypeNames[] = { u"Alphabetical", u"ByGroup", u"Hierarchical" };

/// The result of a read with a target: kFound, or a negative code, and then the target has the default.
using ErrorCode = int;
inline constexpr ErrorCode kFound = 0;
inline constexpr ErrorCode kNotFound = -1;  ///< missing, of another type, or a number that doesn't fit
inline constexpr ErrorCode kBadTarget = -2; ///< the target is null, which is an assertion

/// The text, or the default when the setting is missing or of another type.
[[nodiscard]] XText Get( const PreferenceID& inID, const XText& inDefault );
void Copy( const PreferenceID& inID, CFContainer<XPlistString>& outText, const XText& inDefault );

ErrorCode Get( const PreferenceID& inID, bool* outValue, bool inDefault );
/// A value above 32 bits, or below 0, counts as missing.
ErrorCode Get( const PreferenceID& inID, std::uint32_t* outValue, std::uint32_t inDefault );
ErrorCode Get( const PreferenceID& inID, std::int64_t* outValue, std::int64_t inDefault );
ErrorCode Get( const PreferenceID& inID, float* outValue, float inDefault );
ErrorCode Get( const PreferenceID& inID, double* outValue, double inDefault );
[[nodiscard]] bool GetBoolean( const PreferenceID& inID, bool inDefault );

/// Null when missing or of another type.
[[nodiscard]] CFContainer<XPlistArray> GetArray( const PreferenceID& inID );
[[nodiscard]] CFContainer<XPlistDictionary> GetDictionary( const PreferenceID& inID );
/// The texts of an array, without anything else that may be in it; absent when missing or no array.
[[nodiscard]] std::optional<std::set<Text>> GetSet( const PreferenceID& inID );
/// Any value; null when missing.
[[nodiscard]] __SafeCFPropertyList GetPropertyList( const PreferenceID& inID );
/// The same; false, with null, when missing.
bool Copy( const PreferenceID& inID, __SafeCFPropertyList& outValue );

// Each stores at once. False, after a log line, when the file couldn't be written: then the value holds for this process
// alone, until a later write takes it along, or one of the tries that follow by themselves.
bool Remove( const PreferenceID& inID );
bool Set( const PreferenceID& inID, const XText& inText ); ///< null removes
bool SetBoolean( const PreferenceID& inID, bool inValue );
bool Set( const PreferenceID& inID, std::int64_t inValue );
bool Set( const PreferenceID& inID, double inValue );
bool Set( const PreferenceID& inID, const std::set<Text>& inSet );         ///< as an array, sorted by unit
bool Set( const PreferenceID& inID, const __SafeCFPropertyList& inValue ); ///< array, dictionary or any value
template<std::integral Integer>
bool Set( const PreferenceID& inID, Integer inValue )
{
    static_assert( not std::same_as<Integer, bool>, "SetBoolean stores a flag" );
    return Set( inID, std::int64_t( inValue ) );
}

/// Reads and stores in one step, so that two processes can't both find a value missing and each make one. The
/// function gives the new value, or the old one to leave it; it mustn't log or read settings. The result is the value that
/// stands. What can't be written is tried again, as after Set.
__SafeCFPropertyList Change( const PreferenceID& inID,
    const std::function<__SafeCFPropertyList( const __SafeCFPropertyList& inOld )>& inChange );

/// Lets the log read its own settings, "Debug" and "AssertBeep". Once, at start-up, when the folder is known.
void Start();

/// Tries again what couldn't be written. True when nothing is left.
bool WriteUnsaved();
/// At the end: tries a last time, and tells the user if settings are lost. Main thread.
void Finish();

/// The folder of all data files; made if needed. In the user's data folder, it is named by "PreferenceFolderName",
/// which is read once; KORVALEN_HOME or UseFolder is the folder itself.
[[nodiscard]] std::filesystem::path FolderPath();
/// Where it is or would be; makes nothing.
[[nodiscard]] std::filesystem::path PlannedFolderPath();
/// KORVALEN_HOME or UseFolder names it.
[[nodiscard]] bool FolderIsGiven();
/// Where the data lie when the system has an older place for them and a newer one: the newer one, to which a folder at
/// the older one is moved unless the newer one exists. If it can't be moved, the data stay in use where they are.
[[nodiscard]] std::filesystem::path FolderOfKinds(
    const std::filesystem::path& inOlder, const std::filesystem::path& inNewer );
/// Clears the data folder, with all folders in it, of files that unfinished writes left, those of which the name's
/// second to fourth characters are "dat". Our own temporary files go for good; others, which may be somebody's own, to
/// the trash. Links are left alone. At start-up, before anything is written.
void RemoveBogusDotDatFiles();
/// A path in that folder.
[[nodiscard]] std::filesystem::path FilePath( TextView inName );
/// A path in a folder of that folder, which is made if needed.
[[nodiscard]] std::filesystem::path FilePath( TextView inFolderName, TextView inName );
/// Where the domains' files are. The same folder where KORVALEN_HOME or UseFolder rules.
[[nodiscard]] std::filesystem::path ConfigurationFolder();

/// Does KORVALEN_HOME or UseFolder name it?
[[nodiscard]] bool IsFolderGiven();
/// Takes this one folder for data and configuration and forgets all that was read; an empty path goes back to the
/// environment. Main thread, while no other thread is in here.
void UseFolder( const std::filesystem::path& inFolder );

/// The identity of this computer, which macros name to be disabled on it; made at first use, kept in the settings, and
/// cached. A stored one that isn't 8 to 64 ASCII letters, digits and hyphens is replaced, and a notice tells the old one:
/// what was disabled by it isn't any more.
[[nodiscard]] XText MacUUID();
/// The same for use by remote triggers.
[[nodiscard]] XText MacRemoteUUID();

/// What appears when a user begins to add an action: one setting over two booleans.
enum class AutoShow : std::uint8_t { kActions = 0, kInsertActionByName = 1, kNothing = 2 };
[[nodiscard]] AutoShow GetAutoShow();
void SetAutoShow( AutoShow inAutoShow );
} // namespace KVPreferences

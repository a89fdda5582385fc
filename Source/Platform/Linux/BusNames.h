// What the programs of the suite call themselves on the session bus. Names and paths carry the data folder, so that
// editors and engines of different folders on one bus neither hear nor end each other.
#pragma once

#include <filesystem>
#include <string>

namespace BusNames
{
inline constexpr const char* kNotificationInterface = "com.tessarine.korvalen.notification";
inline constexpr const char* kEditorInterface = "com.tessarine.korvalen.editor";
inline constexpr const char* kEditor = "com.tessarine.korvalen.editor";
inline constexpr const char* kEngine = "com.tessarine.korvalen.engine";

/// The first 16 hexadecimal digits of the SHA-256 of the folder's path, with links resolved as far as it exists.
[[nodiscard]] std::string DigitsOf( const std::filesystem::path& inFolder );

/// "com.tessarine.korvalen.editor.f<digits>", for a name begins with no digit.
[[nodiscard]] std::string EditorOf( const std::filesystem::path& inFolder );
[[nodiscard]] std::string EngineOf( const std::filesystem::path& inFolder );
/// "/com/tessarine/korvalen/<digits>"
[[nodiscard]] std::string PathOf( const std::filesystem::path& inFolder );
} // namespace BusNames

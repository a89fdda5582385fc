// Macros and actions as files for others: "kvmacros", an array of groups that hold the chosen macros, and "kvactions",
// an array of actions, both as XML. What was encoded is read back before a file is touched, and a file is replaced
// whole or not at all. Main thread.
#pragma once

#include "CFMethods/PropertyListCodec.h"
#include "Platform/Alerts.h"

#include <filesystem>
#include <optional>
#include <set>
#include <vector>

class HActionList;
class MMacro;
class MMacroSerializedObject;

namespace MacroExport
{
/// The groups of the macros, each with those that were chosen.
[[nodiscard]] CFContainer<XPlistArray> macrosToExportForMacroSet( const std::set<MMacro*>& inMacros );
/// The same of any objects: a group stands for all its macros, and smart groups come along as they are.
[[nodiscard]] CFContainer<XPlistArray> EntriesToExport( const std::vector<MMacroSerializedObject*>& inObjects );

struct Encoded
{
    XBytes mBytes;
    std::optional<Text> mError; ///< a sentence; there are no bytes then
};
/// The XML. A macro with a text that no file can hold, half of a character, is refused by its name.
[[nodiscard]] Encoded EncodeMacros( const __SafeCFPropertyList& inEntries );
[[nodiscard]] Encoded EncodeActions( const HActionList& inActions );

/// Writes such a file. A sentence that says what went wrong, or absent; the file is as it was then.
[[nodiscard]] std::optional<Text> WriteMacros(
    const std::filesystem::path& inFile, const __SafeCFPropertyList& inEntries );
[[nodiscard]] std::optional<Text> WriteActions( const std::filesystem::path& inFile, const HActionList& inActions );

/// How many macros such an array holds.
[[nodiscard]] std::size_t CountMacros( const __SafeCFPropertyList& inEntries );

// As the commands of a window do it: the file is written, and the user told that it was, or that it failed. False when it
// failed.
bool ExportMacros(
    const std::filesystem::path& inFile, const __SafeCFPropertyList& inEntries, XPlatformWindow* inWindow = nullptr );
bool ExportActions(
    const std::filesystem::path& inFile, const HActionList& inActions, XPlatformWindow* inWindow = nullptr );
/// The name that is proposed for a file of actions.
[[nodiscard]] Text DefaultActionsFileName();
} // namespace MacroExport

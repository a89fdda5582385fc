// What macros can do to the computer and to the user's things, told from the types of their actions: for the notice
// after an import, so that people know what strangers' macros are able to before they enable them. Main thread.
#pragma once

#include "Actions/HActionType.h"
#include "CFMethods/Text.h"

#include <map>
#include <span>
#include <vector>

class HActionList;
class MMacro;

enum class MacroAbility : std::uint8_t {
    kRunScripts,      ///< scripts, shell commands and plug-ins
    kReadFiles,       ///< files, their attributes, and opening them
    kWriteFiles,      ///< files made, changed or deleted
    kUseNetwork,      ///< web pages and other addresses
    kSendMessages,    ///< mail and text messages
    kUsePasswords,    ///< the keychain and password programs
    kTypeAndClick,    ///< keystrokes, clicks, menus and buttons
    kUseClipboard,    ///< reading and changing the clipboards
    kControlPrograms, ///< starting, ending, hiding, and what is sent to them
    kSeeScreen,       ///< captures of the screen
    kChangeSystem,    ///< settings, volume, users, sleep and shutting down
    kChangeMacros,    ///< enabling and disabling, and triggers by name
};
inline constexpr std::size_t kMacroAbilityCount = std::size_t( MacroAbility::kChangeMacros ) + 1;

/// What an action of the type can do by itself, in the order of the enumeration; what it holds doesn't count.
[[nodiscard]] std::vector<MacroAbility> AbilitiesOf( HActionType inType );

class ImportAbilities
{
public:
    /// Counts all actions of the macro, nested ones too, disabled ones too: they can be enabled with a click.
    void Add( const MMacro& inMacro );
    void Add( const HActionList& inActions, const Text& inMacroName );

    [[nodiscard]] bool IsEmpty() const { return mMacros.empty(); }
    [[nodiscard]] bool Contains( MacroAbility inAbility ) const { return mMacros.contains( inAbility ); }
    /// The names of the macros with an ability, in the order in which they came, each once.
    [[nodiscard]] const std::map<MacroAbility, std::vector<Text>>& Macros() const { return mMacros; }
    /// A line for each ability: "Run scripts and commands: Backup, Cleanup and 3 more".
    [[nodiscard]] std::vector<Text> Describe() const;

private:
    std::map<MacroAbility, std::vector<Text>> mMacros;
};

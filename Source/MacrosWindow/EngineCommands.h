// What the editor asks of the engine about macros, and what the engine asks of the editor. Main thread.
#pragma once

#include "Actions/HEngineNotificationPoster.h"
#include "CFMethods/PropertyList.h"

namespace EngineCommands
{
/// Has the engine run a macro. When an edit waits for its save, the save is made first, and the engine, which is told in
/// the next turn of the main queue, waits for the version of the file that has it.
void ExecuteMacro( const XText& inUID );

/// Takes over the enabled states that the engine has left in its file: for "KV_SetMacroEnable".
void SetMacroEnable();

/// The model's way to the engine, to be installed at start-up.
class Poster final : public HEngineNotificationPoster
{
public:
    void PostToEngine( TextView inName, CFContainer<XPlistDictionary> inInformation ) override;
};
} // namespace EngineCommands

// Enabling and disabling macros and groups as an edit: for the engine's wishes and for scripts. Main thread.
#pragma once

#include "CFMethods/Text.h"

class MMacroSerializedObject;

/// Sets the state as one undoable edit that is saved like any other. Undo shows who did it: "Engine Enable Macro",
/// "Engine Disable Macro Group". Nothing happens when the object is in that state already.
void AppleScriptSetEnable( MMacroSerializedObject& ioObject, bool inEnable, TextView inSource );

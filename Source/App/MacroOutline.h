// A group, smart group or macro as an outline: what it is, when it runs, what it does, nested actions indented.
// Main thread.
#pragma once

#include "App/Output.h"
#include "Macros/MMacroSerializedObject.h"

/// Prints the outline.
void PrintOutline( const MMacroSerializedObject& inObject, Output& ioOutput );

/// The same facts as a value, for JSON: "kind", "name", "uid", "active", and by kind "group", "triggers", "actions",
/// "macros" or "searchStrings". An action has "type", "title", "description", "active" and, where there is such a
/// thing: "does", the description that a name of the user's hides; "conditions" or "collections", when there are several;
/// "details", what else is worth telling; "notes"; "colour"; and "lists" of the actions that it holds.
[[nodiscard]] __SafeCFPropertyList OutlineAsValue( const MMacroSerializedObject& inObject );

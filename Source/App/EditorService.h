// A verb that another process runs for us, because it is the editor of the folder; and the other side of it. Main thread.
#pragma once

#include "App/Verb.h"
#include "Platform/EditorService.h"

#include <cstdint>
#include <optional>

/// Has the folder's editor run the verb that this process was started with, and prints what it says. Absent when no
/// editor answers. The platform has to be started, as EditorSession does. Standard input goes along only if the verb
/// reads it, for it is waited for to its end.
[[nodiscard]] std::optional<ExitStatus> AskTheEditor( VerbContext& ioContext, bool inWithStandardInput = false );

/// The same for a verb that only looks: the platform is started for the moment, and no folder is made.
[[nodiscard]] std::optional<ExitStatus> AskAnyEditor( VerbContext& ioContext );

/// Tells that the folder's editor can't be reached. The holder is its process, if that is known.
[[nodiscard]] ExitStatus ComplainOfSilentEditor( Output& ioOutput, std::optional<std::int64_t> inHolder );

/// Runs a verb for another process, within the editor.
[[nodiscard]] XEditorService::Reply RunForOther( const XEditorService::Request& inRequest, EditorHost& ioHost );

// A verb that another process runs for us, because it is the editor of the folder; and the other side of it. Main thread.
#pragma once

#include "App/Verb.h"
#include "Platform/EditorService.h"

#include <cstdint>
#include <optional>

/// Has the folder's editor run the verb, and prints what it says. Complains when it can't be reached.
[[nodiscard]] ExitStatus AskTheEditor( VerbContext& ioContext, std::optional<std::int64_t> inHolder );

/// Runs a verb for another process, within the editor.
[[nodiscard]] XEditorService::Reply RunForOther( const XEditorService::Request& inRequest, EditorHost& ioHost );

// Handing a verb to the editor that has the data folder. Main thread.
#pragma once

#include "App/Verb.h"

#include <optional>

/// Has the folder's editor run the verb that this process was started with, and hands its words on. Absent when no editor
/// answers.
[[nodiscard]] std::optional<ExitStatus> AskEditor( VerbContext& ioContext );

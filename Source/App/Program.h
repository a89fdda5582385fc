// The program as a function: arguments and streams in, exit status out. `main` calls it with the process's own, tests
// with their own. Main thread.
#pragma once

#include "App/FileInput.h"
#include "App/Output.h"
#include "App/Verb.h"

#include <string>
#include <vector>

/// Runs the program with arguments that don't include its name. It never throws. Standard output isn't flushed.
[[nodiscard]] ExitStatus RunKorvalen( const std::vector<std::string>& inArguments, const FileInput& inInput,
    Output& ioOutput, bool inIsInEditor = false );

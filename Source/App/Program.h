// The program as a function: arguments and streams in, exit status out. `main` calls it with the process's own, tests
// with their own. Main thread.
#pragma once

#include "App/FileInput.h"
#include "App/Output.h"
#include "App/Verb.h"

#include <filesystem>
#include <string>
#include <vector>

/// Where the program runs.
struct ProgramPlace
{
    EditorHost* mHost = nullptr;          ///< null: the editor runs without the desktop's services
    bool mIsInEditor = false;             ///< see VerbContext
    std::filesystem::path mWorkingFolder; ///< empty: the process's
};

/// Runs the program with arguments that don't include its name; none at all means "run" where there is a host. It never
/// throws. Standard output
/// isn't flushed.
[[nodiscard]] ExitStatus RunKorvalen( const std::vector<std::string>& inArguments, const FileInput& inInput,
    Output& ioOutput, const ProgramPlace& inPlace = {} );

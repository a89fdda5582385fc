// The program that $KORVALEN_PROGRAM names, running as the editor of a folder, and its verbs as processes of their own.
// Needs a session bus of its own: dbus-run-session.
#pragma once

#include "CFMethods/PropertyListCodec.h"

#include <filesystem>
#include <string>
#include <sys/types.h>
#include <vector>

class RunningEditor
{
public:
    /// Null when the variable isn't set.
    [[nodiscard]] static const char* Program();

    /// Returns when the editor is ready.
    explicit RunningEditor( const std::filesystem::path& inFolder );
    /// Ends it by SIGTERM, and waits for the end.
    ~RunningEditor();
    RunningEditor( const RunningEditor& ) = delete;
    RunningEditor& operator=( const RunningEditor& ) = delete;

    [[nodiscard]] explicit operator bool() const { return mIsReady; }
    /// From the start of the verb's process until its end; what it answers, or -1.
    [[nodiscard]] int Run( const std::vector<std::string>& inArguments ) const;
    /// Processor seconds of the editor and of the verbs so far, which a busy machine changes little.
    [[nodiscard]] double ProcessorSeconds() const;
    /// The UID of a macro in the middle of the file.
    [[nodiscard]] static std::string AnyMacro( const XBytes& inMacrosFile );

private:
    const std::filesystem::path mFolder;
    pid_t mProcess = -1;
    bool mIsReady = false;
};

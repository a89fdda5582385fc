// A verb of the program, as "plist print". To add one: derive from Verb, declare the options in the constructor, and
// make the object in a function Add...Verbs that Program.cpp calls. Verbs are made at each run, so that
// nothing happens at start-up; making one must be cheap, and whatever costs time belongs into Run. Main thread.
#pragma once

#include "App/FileInput.h"
#include "App/Output.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace CLI
{
class App;
}

class EditorHost;

/// The exit status of the program.
enum class ExitStatus : int {
    kDone = 0,
    kFailed = 1,     ///< failed, differs, is invalid, or would have lost something
    kWrongUsage = 2, ///< the arguments make no sense; nothing was done
};

/// What a verb works with.
struct VerbContext
{
    Output& mOutput;
    const FileInput& mInput;
    /// The arguments as they were given, the verb's name first; for handing them to another process.
    const std::vector<std::string>& mArguments;
    /// Set when this process is the editor already, and does for another process what that was asked for.
    bool mIsInEditor = false;
    /// What relative paths begin at.
    std::filesystem::path mWorkingFolder;
    /// The process around the editor.
    EditorHost* mHost = nullptr;

    /// A path among the arguments, made absolute; "-" stays.
    [[nodiscard]] std::string Resolve( const std::string& inPath ) const
    {
        return inPath == "-" ? inPath : ( mWorkingFolder / inPath ).string();
    }
};

class Verb
{
public:
    /// The command has to outlive the verb.
    explicit Verb( CLI::App& ioCommand ) : mCommand( ioCommand ) {}
    virtual ~Verb() = default;
    Verb( const Verb& ) = delete;
    Verb& operator=( const Verb& ) = delete;

    /// After parsing: is this the verb that was asked for?
    [[nodiscard]] bool WasAskedFor() const;

    /// Does the work. Failures are told through Output::Complain, one sentence each; an exception that gets
    /// out is told likewise by the caller.
    [[nodiscard]] virtual ExitStatus Run( VerbContext& ioContext ) = 0;

private:
    CLI::App& mCommand;
};

/// A verb that works on the macros of the data folder. When an editor has the folder, that one runs it; otherwise this
/// process is the editor for that moment: it takes the folder, starts without engine and windows, runs the
/// verb, and stops in order, so that everything is saved when the program ends.
class EditorVerb : public Verb
{
public:
    using Verb::Verb;
    [[nodiscard]] ExitStatus Run( VerbContext& ioContext ) final;

protected:
    /// Comes first, before this process becomes the editor: its start replaces the revision of the last start and removes the
    /// one of before a revert, so a verb that is asked for these reads them here.
    virtual void Prepare( VerbContext& /*ioContext*/ ) {}
    /// Does the work in the editor: the domain is loaded, and every change goes through
    /// MacrosWindowInterface::NoteChange. Paths among the arguments go through
    /// VerbContext::Resolve.
    [[nodiscard]] virtual ExitStatus RunInEditor( VerbContext& ioContext ) = 0;
    /// Does "-" among its arguments mean standard input? It goes to a running editor with the arguments, and is read to
    /// its end for that: a verb that doesn't read it must not wait for it.
    [[nodiscard]] virtual bool ReadsStandardInput() const { return false; }
};

using VerbList = std::vector<std::unique_ptr<Verb>>;

/// "plist print", "plist convert", "plist verify" and "plist compare".
void AddPropertyListVerbs( CLI::App& ioProgram, VerbList& ioVerbs );

/// "check".
void AddCheckVerb( CLI::App& ioProgram, VerbList& ioVerbs );

/// "cron".
void AddCronVerb( CLI::App& ioProgram, VerbList& ioVerbs );

/// "list", "show" and "convert".
void AddMacrosFileVerbs( CLI::App& ioProgram, VerbList& ioVerbs );

/// "run".
void AddRunVerb( CLI::App& ioProgram, VerbList& ioVerbs );

/// "search" and "smart".
void AddSearchVerbs( CLI::App& ioProgram, VerbList& ioVerbs );

/// "new", "rename", "enable", "disable", "move", "duplicate" and "delete".
void AddEditVerbs( CLI::App& ioProgram, VerbList& ioVerbs );

/// "undo", "redo", "save", "status" and "paths".
void AddStatusVerbs( CLI::App& ioProgram, VerbList& ioVerbs );

/// "revisions".
void AddRevisionVerbs( CLI::App& ioProgram, VerbList& ioVerbs );

/// "set-aside".
void AddSetAsideVerbs( CLI::App& ioProgram, VerbList& ioVerbs );

/// "share".
void AddShareVerb( CLI::App& ioProgram, VerbList& ioVerbs );

/// "prefs".
void AddPrefsVerb( CLI::App& ioProgram, VerbList& ioVerbs );

/// "import".
void AddImportVerb( CLI::App& ioProgram, VerbList& ioVerbs );

/// "export".
void AddExportVerb( CLI::App& ioProgram, VerbList& ioVerbs );

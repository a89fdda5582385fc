#include "App/Program.h"

#include "Defines/KVPreferences.h"
#include "XCAF/XErrorHandler.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <new>

bool Verb::WasAskedFor() const
{
    return mCommand.parsed();
}

namespace
{
/// The verbs for somebody who looks for one, on one screen: related ones share a line.
constexpr struct
{
    const char* mVerbs; ///< null for a heading
    const char* mText;
} kOverview[] = {
    { nullptr, "A file of macros" },
    { "list, show, smart", "Its groups and macros; one of them as an outline; what a smart group holds" },
    { "search", "Find macros by a query, and say why each was found" },
    { "check, convert", "What loading would drop or change; the file as the next save would write it" },
    { "plist, cron", "Any property list or JSON; the times that a cron line means" },
    { nullptr, "The macros of your data folder" },
    { "new", "Add a macro, a group or a smart group" },
    { "rename, move", "Give another name; put macros into another group" },
    { "enable, disable", "Turn macros and groups on or off" },
    { "duplicate, delete", "Copy macros and groups, or delete them" },
    { "import, export", "Take macros in from files, or write some into one" },
    { "undo, redo, save", "Take the last edit back, or make it again; write what waits" },
    { nullptr, "The editor and its files" },
    { "run", "Be the editor until told to end; what “korvalen” alone does" },
    { "status, paths", "What is loaded, waits or went wrong; every path in use, and why" },
    { "revisions", "Earlier states: compare, go back to one, or bring one macro back" },
    { "set-aside", "What was kept before it was replaced: show, compare, restore" },
    { "share, prefs", "One macros file for several computers; settings" },
};

/// The program's own help shows the overview in place of a line for each verb.
class OverviewFormatter final : public CLI::Formatter
{
public:
    std::string make_subcommands( const CLI::App* inCommand, CLI::AppFormatMode inMode ) const override
    {
        if ( inCommand->get_parent() )
            return CLI::Formatter::make_subcommands( inCommand, inMode );
        std::string text;
        for ( const auto& [verbs, line] : kOverview )
            text += verbs ? fmt::format( "  {:<19}{}\n", verbs, line ) : fmt::format( "{}:\n", line );
        return text;
    }
};

/// What every command has.
void SetUp( CLI::App& ioProgram, std::string& ioFolder )
{
    ioProgram.name( "korvalen" );
    ioProgram.description( "Shows, checks and edits macros." );
    ioProgram.formatter( std::make_shared<OverviewFormatter>() );
    ioProgram.get_formatter()->label( "SUBCOMMAND", "VERB" );
    ioProgram.get_formatter()->label( "REQUIRED", "(required)" );
    // So that the program's own options may stand behind a verb, too.
    ioProgram.fallthrough();
    ioProgram.add_option( "--folder", ioFolder, "The data folder, in place of KORVALEN_HOME or your own" )
        ->type_name( "DIR" );
    ioProgram.set_help_flag( "-h,--help", "Explain the program, or a verb, and exit" );
    ioProgram.set_version_flag( "--version", "korvalen " KORVALEN_VERSION, "Print the version and exit" );
    ioProgram.require_subcommand( 1 );
    ioProgram.footer( "“-” as a file is standard input, or standard output.\n"
                      "Status: 0 done; 1 failed, differs or would lose something; 2 wrong usage.\n"
                      "Try: korvalen check --help" );
}

/// Before anything asks for a path. In an editor that does another process's work the folder is the editor's own.
void UseFolder( const std::string& inFolder )
{
    const std::filesystem::path folder = std::filesystem::absolute( inFolder );
    XErrorHandler::SetLogsFolder( folder / "Logs" );
    KVPreferences::UseFolder( folder );
}

/// The innermost command that was named: what a complaint about the arguments should point to.
const CLI::App& InnermostCommand( const CLI::App& inProgram )
{
    const CLI::App* command = &inProgram;
    while ( not command->get_subcommands().empty() )
        command = command->get_subcommands().front();
    return *command;
}

std::string FullName( const CLI::App& inCommand )
{
    const CLI::App* const parent = inCommand.get_parent();
    return parent ? FullName( *parent ) + " " + inCommand.get_name() : inCommand.get_name();
}

/// What is wrong. A verb that is missing or unknown is told in our words: the parser only knows that none came.
std::string UsageMessage( const CLI::App& inCommand, const CLI::ParseError& inError )
{
    if ( inError.get_exit_code() != int( CLI::ExitCodes::RequiredError ) or
        inCommand.get_subcommands( []( const CLI::App* ) { return true; } ).empty() )
        return inError.what();
    const std::vector<std::string> unknown = inCommand.remaining();
    if ( unknown.empty() )
        return "a verb is missing";
    const char* const kind = unknown.front().starts_with( '-' ) ? "option" : "verb";
    return fmt::format( "there is no {} “{}” here", kind, unknown.front() );
}

ExitStatus ComplainAboutUsage( const CLI::App& inProgram, const CLI::ParseError& inError, Output& ioOutput )
{
    const CLI::App& command = InnermostCommand( inProgram );
    std::string message = UsageMessage( command, inError );
    std::replace( message.begin(), message.end(), '\n', ' ' );
    ioOutput.Complain( message + "; see “" + FullName( command ) + " --help”" );
    return ExitStatus::kWrongUsage;
}

ExitStatus RunVerb( const VerbList& inVerbs, VerbContext& ioContext )
{
    for ( const auto& verb : inVerbs )
    {
        if ( verb->WasAskedFor() )
            return verb->Run( ioContext );
    }
    return ExitStatus::kWrongUsage;
}
} // namespace

ExitStatus RunKorvalen( const std::vector<std::string>& inArguments, const FileInput& inInput, Output& ioOutput,
    const ProgramPlace& inPlace )
{
    try
    {
        CLI::App program;
        VerbList verbs;
        std::string folder;
        SetUp( program, folder );
        for ( const auto add : { AddRunVerb, AddCheckVerb, AddMacrosFileVerbs, AddCronVerb, AddSearchVerbs,
                  AddPropertyListVerbs, AddEditVerbs, AddImportVerb, AddExportVerb, AddStatusVerbs, AddRevisionVerbs,
                  AddSetAsideVerbs, AddShareVerb, AddPrefsVerb } )
            add( program, verbs );
        try
        {
            // The parser takes the arguments from the back.
            program.parse( inArguments.empty() ? std::vector<std::string>{ "run" }
                                               : std::vector<std::string>( inArguments.rbegin(), inArguments.rend() ) );
        }
        catch ( const CLI::CallForHelp& )
        {
            ioOutput.Bytes( program.help() );
            return ExitStatus::kDone;
        }
        catch ( const CLI::CallForVersion& version )
        {
            ioOutput.Line( version.what() );
            return ExitStatus::kDone;
        }
        catch ( const CLI::ParseError& error )
        {
            return ComplainAboutUsage( program, error, ioOutput );
        }
        if ( not folder.empty() and not inPlace.mIsInEditor )
            UseFolder( folder );
        VerbContext context{ ioOutput, inInput, inArguments, inPlace.mIsInEditor, inPlace.mWorkingFolder,
            inPlace.mHost };
        if ( context.mWorkingFolder.empty() )
            context.mWorkingFolder = std::filesystem::current_path();
        return RunVerb( verbs, context );
    }
    catch ( const FileTrouble& trouble )
    {
        ioOutput.Complain( trouble.what() );
    }
    catch ( const std::bad_alloc& )
    {
        ioOutput.Complain( "there isn't enough memory for this; close other programs, or try a smaller file" );
    }
    catch ( const std::exception& exception )
    {
        ioOutput.Complain( std::string( "an unexpected failure stopped the work: " ) + exception.what() );
    }
    return ExitStatus::kFailed;
}

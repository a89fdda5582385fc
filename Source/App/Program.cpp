#include "App/Program.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fmt/format.h>
#include <new>

bool Verb::WasAskedFor() const
{
    return mCommand.parsed();
}

namespace
{
/// What every command has.
void SetUp( CLI::App& ioProgram )
{
    ioProgram.name( "korvalen" );
    ioProgram.description( "Shows, checks, converts and compares the files of macros." );
    ioProgram.get_formatter()->label( "SUBCOMMAND", "VERB" );
    ioProgram.get_formatter()->label( "REQUIRED", "(required)" );
    ioProgram.set_help_flag( "-h,--help", "Explain the program, or a verb, and exit" );
    ioProgram.set_version_flag( "--version", "korvalen " KORVALEN_VERSION, "Print the version and exit" );
    ioProgram.require_subcommand( 1 );
    ioProgram.footer( "“-” as a file is standard input, or standard output.\n"
                      "Status: 0 done; 1 failed, differs or would lose something; 2 wrong usage.\n"
                      "Try: korvalen check --help" );
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
        SetUp( program );
        AddCheckVerb( program, verbs );
        AddMacrosFileVerbs( program, verbs );
        AddCronVerb( program, verbs );
        AddSearchVerbs( program, verbs );
        AddPropertyListVerbs( program, verbs );
        try
        {
            // The parser takes the arguments from the back.
            program.parse( std::vector<std::string>( inArguments.rbegin(), inArguments.rend() ) );
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

// "run": the editor itself, until it is told to end.
#include "App/EditorHost.h"
#include "App/EditorService.h"
#include "App/EditorSession.h"
#include "App/MacrosFile.h"
#include "App/Verb.h"
#include "Defines/KVPreferences.h"
#include "Platform/Platform.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XException.h"
#include "XCAF/XFileWriting.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace
{
class RunVerb final : public Verb
{
public:
    explicit RunVerb( CLI::App& ioCommand ) : Verb( ioCommand )
    {
        ioCommand.add_option( "FILE", mFiles, "Files to open: kvmacros, kvactions, kvlibrary or zip" );
        ioCommand.add_flag( "--no-engine", mNoEngine, "Launch no engine, and quit one that runs" );
        ioCommand.add_flag( "--begin-anew", mBeginAnew,
            "Set a macros file aside that is no macros file, and begin with the default macros" );
        ioCommand.footer( "Ends with SIGTERM, SIGHUP or SIGINT, and saves everything first.\n"
                          "Example: korvalen run Shortcuts.kvmacros" );
    }

    [[nodiscard]] ExitStatus Run( VerbContext& ioContext ) override
    {
        if ( ioContext.mIsInEditor )
            return OpenFiles( ioContext );
        try
        {
            EditorSession session( ioContext.mHost );
            if ( not session.TakeFolder() )
            {
                const auto status = AskTheEditor( ioContext );
                return status ? *status : ComplainOfSilentEditor( ioContext.mOutput, session.Holder() );
            }
            RunEditor( ioContext, session );
            return ExitStatus::kDone;
        }
        catch ( const EditorTrouble& trouble )
        {
            ioContext.mOutput.Complain( trouble.what() );
            return ExitStatus::kFailed;
        }
    }

private:
    /// In the editor that has the folder: another start has come.
    [[nodiscard]] ExitStatus OpenFiles( VerbContext& ioContext ) const
    {
        ExitStatus status = ExitStatus::kDone;
        if ( mFiles.empty() )
            ioContext.mOutput.Line( "the editor runs already" );
        for ( const std::string& file : mFiles )
        {
            // The editor would tell it in its own terminal, where whoever typed this doesn't look.
            XFileStatus facts;
            if ( XFileCalls::Current().GetPathFacts( ioContext.Resolve( file ), facts ) != 0 )
            {
                ioContext.mOutput.Complain(
                    "there is no file " + QuotedPath( file ) + "; check the name and the folder" );
                status = ExitStatus::kFailed;
                continue;
            }
            if ( KVAppDelegate::appDelegate()->application( ioContext.Resolve( file ) ) )
            {
                ioContext.mOutput.Line( "the editor that runs opens " + QuotedPath( file ) );
                continue;
            }
            ioContext.mOutput.Complain( QuotedPath( file ) +
                " isn't opened; the editor opens kvmacros, kvactions, "
                "kvlibrary and zip files" );
            status = ExitStatus::kFailed;
        }
        return status;
    }

    void RunEditor( VerbContext& ioContext, EditorSession& ioSession ) const
    {
        const auto claim = Platform::Current().EditorService().ClaimFolder(
            KVPreferences::FolderPath(), [&ioSession]( const XEditorService::Request& request ) {
                return RunForOther( request, ioSession.Host() );
            } );
        KVAppDelegate::Options options;
        options.mMayLaunchEngine = not mNoEngine;
        options.mBeginAnew = mBeginAnew;
        ioSession.Start( options );
        for ( const std::string& file : mFiles )
            (void)ioSession.Delegate().application( ioContext.Resolve( file ) );
        if ( claim == XEditorService::Claim::kAlone )
        {
            XErrorHandler::PrivateMaybeLogFormat(
                "always", "There is no session bus: no engine and no other program is heard" );
            ioContext.mOutput.Complain(
                "there is no session bus: this editor is alone, and neither other programs nor an "
                "engine hear of it" );
        }
        SayReady( ioContext.mOutput );
        RunMainLoop( ioSession );
        Platform::Current().EditorService().ReleaseFolder();
        ioSession.Stop();
    }

    /// After an exception the process ends, and the session still saves what it has.
    static void RunMainLoop( EditorSession& ioSession )
    {
        try
        {
            ioSession.Host().RunMainLoop( [&ioSession] { ioSession.Delegate().terminate(); } );
        }
        catch ( const XException& exception )
        {
            exception.WarnUncaught( u"Main Application" );
            throw;
        }
    }

    static void SayReady( Output& ioOutput )
    {
        std::size_t macros = 0;
        MMacroDomain& domain = *MMacroDomain::Get();
        domain.DoForEveryMacro( [&macros]( MMacroGroup&, MMacro& ) { ++macros; } );
        ioOutput.Line( fmt::format( "korvalen is ready: {} in {}, {}", Counted( macros, "macro" ),
            Counted( domain.GetMacroGroupCount(), "group" ), QuotedPath( KVPreferences::FolderPath().string() ) ) );
        ioOutput.Flush();
    }

    std::vector<std::string> mFiles;
    bool mNoEngine = false, mBeginAnew = false;
};
} // namespace

void AddRunVerb( CLI::App& ioProgram, VerbList& ioVerbs )
{
    CLI::App& command = *ioProgram.add_subcommand( "run", "Be the editor of the data folder, until told to end" );
    ioVerbs.push_back( std::make_unique<RunVerb>( command ) );
}

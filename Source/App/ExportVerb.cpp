// "export": macros into a "kvmacros" file for others.
#include "App/MacrosFile.h"
#include "App/ObjectSelection.h"
#include "App/Verb.h"
#include "Macros/MacroExport.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace
{
class ExportVerb final : public EditorVerb
{
public:
    explicit ExportVerb( CLI::App& ioCommand ) : EditorVerb( ioCommand ), mSelection( kSelectAll )
    {
        mSelection.AddOptions( ioCommand );
        ioCommand.add_option( "-o,--output", mPath, "The kvmacros file to write; “-” is standard output" )
            ->required()
            ->type_name( "FILE" );
        ioCommand.add_flag( "--json", mJSON, "Print the facts about a file as JSON" );
        ioCommand.footer( "A group stands for all its macros; a macro comes with its group's name and rules.\n"
                          "Example: korvalen export --query group:Editing -o Editing.kvmacros" );
    }

private:
    ExitStatus RunInEditor( VerbContext& ioContext ) override
    {
        Output& output = ioContext.mOutput;
        const std::string path = ioContext.Resolve( mPath );
        if ( mSelection.IsEmpty() )
        {
            output.Complain( "nothing is selected; give names or UIDs, or --query" );
            return ExitStatus::kWrongUsage;
        }
        if ( path == "-" and mJSON )
        {
            output.Complain( "--json tells of a file; standard output has the export itself" );
            return ExitStatus::kWrongUsage;
        }
        if ( path != "-" and std::filesystem::path( path ).extension() != ".kvmacros" )
        {
            output.Complain( "an export's name ends in “.kvmacros”, by which it is known when it is imported" );
            return ExitStatus::kWrongUsage;
        }
        const auto objects = mSelection.Resolve( output );
        if ( not objects )
            return ExitStatus::kFailed;
        const __SafeCFPropertyList entries = MacroExport::EntriesToExport( *objects );
        return path == "-" ? Print( entries, output ) : Write( path, entries, output );
    }

    static ExitStatus Print( const __SafeCFPropertyList& inEntries, Output& ioOutput )
    {
        const MacroExport::Encoded encoded = MacroExport::EncodeMacros( inEntries );
        if ( encoded.mError )
            throw FileTrouble( UTF8FromText( *encoded.mError ) );
        ioOutput.Bytes( encoded.mBytes.View() );
        return ExitStatus::kDone;
    }

    ExitStatus Write( const std::string& inPath, const __SafeCFPropertyList& inEntries, Output& ioOutput ) const
    {
        if ( const auto error = MacroExport::WriteMacros( inPath, inEntries ) )
            throw FileTrouble( UTF8FromText( *error ) + " Check the folder and its permissions, or choose another." );
        if ( mJSON )
        {
            XMutableDictionary facts;
            facts.SetText( CFSTR( "file" ), TextFromUTF8( inPath ) );
            facts.SetInteger( CFSTR( "macros" ), std::int64_t( MacroExport::CountMacros( inEntries ) ) );
            ioOutput.JSON( facts.Seal() );
            return ExitStatus::kDone;
        }
        ioOutput.Line( fmt::format(
            "exported {} to {}", Counted( MacroExport::CountMacros( inEntries ), "macro" ), QuotedPath( inPath ) ) );
        return ExitStatus::kDone;
    }

    ObjectSelection mSelection;
    std::string mPath;
    bool mJSON = false;
};
} // namespace

void AddExportVerb( CLI::App& ioProgram, VerbList& ioVerbs )
{
    ioVerbs.push_back(
        std::make_unique<ExportVerb>( *ioProgram.add_subcommand( "export", "Write macros into a file for others" ) ) );
}

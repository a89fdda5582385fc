// "import" and "export".
#include "Actions/ActionLimits.h"
#include "App/MacrosFile.h"
#include "App/ObjectSelection.h"
#include "App/Verb.h"
#include "Macros/ImportAbilities.h"
#include "Macros/MMacro.h"
#include "Macros/MMacroDomain.h"
#include "Macros/MMacroInsertion.h"
#include "Macros/MacroExport.h"
#include "MacrosWindow/MacroImport.h"
#include "XCAF/XException.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace
{
/// What a file would bring, found out on objects that never reach the model.
class ImportPreview
{
public:
    explicit ImportPreview( const FileInput& inInput, const std::string& inPath )
    {
        const MacrosFileInput file = ReadMacrosFile( inInput, inPath );
        __SafeCFPropertyList items = file.mInput.mValue;
        if ( const XPlistDictionary* const library = items.AsDictionary() )
            items = __SafeCFPropertyList( library->Find( CFSTR( "Items" ) ) );
        const XPlistArray* const array = items.AsArray();
        if ( not array or file.mKind == MFileKind::kActionsExport or file.mKind == MFileKind::kMacrosFile )
            throw FileTrouble( QuotedPath( inPath ) + " is no export of macros and no library" );
        MMacroInsertion::Start();
        try
        {
            for ( std::size_t i = 0; i < array->GetCount(); ++i )
                Add( array->GetValueAt( i ) );
            MMacroInsertion::Finish();
        }
        catch ( const XException& exception )
        {
            MMacroInsertion::Finish();
            throw FileTrouble( fmt::format( "{} can't be imported: {}", QuotedPath( inPath ), exception.what() ) );
        }
    }

    [[nodiscard]] const std::vector<std::string>& Lines() const { return mLines; }
    [[nodiscard]] const ImportAbilities& Abilities() const { return mAbilities; }

private:
    void Add( const __SafeCFPropertyList& inItem )
    {
        if ( not MMacroDomain::LooksLikeMacroGroupAndNotMacroSmartGroup( inItem ) )
        {
            mLines.push_back( "smart group " + PlaceOf( MMacroSmartGroup( inItem ) ) );
            return;
        }
        const MMacroGroup group( inItem, nullptr );
        bool joins = false;
        MMacroDomain::Get()->DoForEveryMacroGroup( [&]( const MMacroGroup& present ) {
            joins = joins or
                ( present.NameMatches( group.GetName() ) and
                    present.GetTarget().CompareWithSame( group.GetTarget() ) == 0 );
        } );
        mLines.push_back( fmt::format( "{} {} group {}", Counted( group.GetMacroCount(), "macro" ),
            joins ? "into the present" : "with the new", PlaceOf( group ) ) );
        group.DoForEveryMacro( [this]( const MMacro& macro ) { mAbilities.Add( macro ); } );
    }

    std::vector<std::string> mLines;
    ImportAbilities mAbilities;
};

class ImportVerb final : public EditorVerb
{
public:
    explicit ImportVerb( CLI::App& ioCommand ) : EditorVerb( ioCommand )
    {
        ioCommand.add_option( "FILE", mPaths, "kvmacros and kvlibrary files" )->required()->type_name( "" );
        ioCommand.add_flag( "--enabled", mEnabled, "Leave macros enabled that are; else they come in disabled" );
        ioCommand.add_flag( "--again", mAgain, "Take a library that was imported before once more" );
        ioCommand.add_flag( "--dry-run,-n", mDryRun, "Say what would come, and change nothing" );
        ioCommand.add_flag( "--json", mJSON, "Print the facts as JSON" );
        ioCommand.footer( "Macros join a group of the same name and target; what they are able to do is told. A file\n"
                          "with a fault brings nothing at all, and the files behind it still come.\n"
                          "Example: korvalen import Downloads/Shortcuts.kvmacros --dry-run" );
    }

private:
    ExitStatus RunInEditor( VerbContext& ioContext ) override
    {
        ExitStatus status = ExitStatus::kDone;
        XMutableArray facts;
        for ( const std::string& given : mPaths )
        {
            const std::string path = ioContext.Resolve( given );
            try
            {
                const bool isGood =
                    mDryRun ? Preview( path, ioContext, facts ) : Import( path, ioContext.mOutput, facts );
                if ( not isGood )
                    status = ExitStatus::kFailed;
            }
            catch ( const FileTrouble& trouble )
            {
                ioContext.mOutput.Complain( trouble.what() );
                status = ExitStatus::kFailed;
            }
        }
        if ( mJSON )
            ioContext.mOutput.JSON( facts.Seal() );
        return status;
    }

    [[nodiscard]] bool Preview( const std::string& inPath, VerbContext& ioContext, XMutableArray& ioFacts ) const
    {
        const ImportPreview preview( ioContext.mInput, inPath );
        std::vector<Text> lines;
        for ( const std::string& line : preview.Lines() )
            lines.push_back( TextFromUTF8( "would import " + line ) );
        for ( const Text& line : preview.Abilities().Describe() )
            lines.push_back( u"    " + line );
        Tell( inPath, lines, nullptr, preview.Abilities(), ioContext.mOutput, ioFacts );
        return true;
    }

    [[nodiscard]] bool Import( const std::string& inPath, Output& ioOutput, XMutableArray& ioFacts ) const
    {
        MacroImport::Options options;
        options.mDisabled = mEnabled ? ImportMacrosDisabledType::kAsTheyAre : ImportMacrosDisabledType::kDisabled;
        options.mImportsLibraryAgain = mAgain;
        const MacroImport::Result result = MacroImport::ImportFile( inPath, options );
        if ( result.mError )
        {
            ioOutput.Complain(
                fmt::format( "{} wasn't imported: {}", QuotedPath( inPath ), UTF8FromText( *result.mError ) ) );
            return false;
        }
        Tell( inPath, result.Describe(), &result, result.mAbilities, ioOutput, ioFacts );
        return true;
    }

    void Tell( const std::string& inPath, const std::vector<Text>& inLines, const MacroImport::Result* inResult,
        const ImportAbilities& inAbilities, Output& ioOutput, XMutableArray& ioFacts ) const
    {
        if ( mJSON )
        {
            ioFacts.Append( Facts( inPath, inLines, inResult, inAbilities ) );
            return;
        }
        if ( mPaths.size() > 1 )
            ioOutput.Line( inPath, Colour::kBold );
        for ( const Text& line : inLines )
            ioOutput.Line( UTF8FromText( line ) );
    }

    __SafeCFPropertyList Facts( const std::string& inPath, const std::vector<Text>& inLines,
        const MacroImport::Result* inResult, const ImportAbilities& inAbilities ) const
    {
        XMutableDictionary facts;
        facts.SetText( CFSTR( "file" ), TextFromUTF8( inPath ) );
        facts.SetBoolean( CFSTR( "dryRun" ), mDryRun );
        facts.Set( CFSTR( "lines" ), ArrayOf( inLines ) );
        XMutableArray abilities;
        for ( const Text& line : inAbilities.Describe() )
            abilities.Append( __SafeCFPropertyList::String( line ) );
        facts.Set( CFSTR( "abilities" ), abilities.Seal() );
        if ( inResult )
        {
            facts.Set( CFSTR( "macros" ), ArrayOf( inResult->mMacros ) );
            facts.Set( CFSTR( "groups" ), ArrayOf( inResult->mGroups ) );
            facts.Set( CFSTR( "smartGroups" ), ArrayOf( inResult->mSmartGroups ) );
            facts.Set( CFSTR( "leftOut" ), ArrayOf( inResult->mLeftOut ) );
        }
        return facts.Seal();
    }
    static __SafeCFPropertyList ArrayOf( const std::vector<Text>& inTexts )
    {
        XMutableArray array;
        for ( const Text& text : inTexts )
            array.Append( __SafeCFPropertyList::String( text ) );
        return array.Seal();
    }
    static __SafeCFPropertyList ArrayOf( const std::vector<MacroImport::Named>& inNamed )
    {
        XMutableArray array;
        for ( const MacroImport::Named& named : inNamed )
        {
            XMutableDictionary fact;
            fact.SetText( CFSTR( "uid" ), named.mUID );
            fact.SetText( CFSTR( "name" ), named.mName );
            array.Append( fact.Seal() );
        }
        return array.Seal();
    }

    std::vector<std::string> mPaths;
    bool mEnabled = false, mAgain = false, mDryRun = false, mJSON = false;
};

class ExportVerb final : public EditorVerb
{
public:
    explicit ExportVerb( CLI::App& ioCommand ) : EditorVerb( ioCommand ), mSelection( kSelectAll )
    {
        mSelection.AddOptions( ioCommand );
        ioCommand.add_option( "-o,--output", mPath, "The kvmacros file to write; “-” is standard output" )
            ->required()
            ->type_name( "FILE" );
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

    static ExitStatus Write( const std::string& inPath, const __SafeCFPropertyList& inEntries, Output& ioOutput )
    {
        if ( const auto error = MacroExport::WriteMacros( inPath, inEntries ) )
            throw FileTrouble( UTF8FromText( *error ) );
        ioOutput.Line( fmt::format(
            "exported {} to {}", Counted( MacroExport::CountMacros( inEntries ), "macro" ), QuotedPath( inPath ) ) );
        return ExitStatus::kDone;
    }

    ObjectSelection mSelection;
    std::string mPath;
};
} // namespace

void AddTransferVerbs( CLI::App& ioProgram, VerbList& ioVerbs )
{
    ioVerbs.push_back( std::make_unique<ImportVerb>(
        *ioProgram.add_subcommand( "import", "Take macros in from files, disabled unless told otherwise" ) ) );
    ioVerbs.push_back(
        std::make_unique<ExportVerb>( *ioProgram.add_subcommand( "export", "Write macros into a file for others" ) ) );
}

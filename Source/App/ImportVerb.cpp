// "import": macros, actions and libraries of others, and zip files. What a file is, its content says, so that standard input
// needs no name; only a zip file is known by its name. Each file is an undo step of its own.
#include "Actions/HActionList.h"
#include "Actions/HBaseAction.h"
#include "App/MacrosFile.h"
#include "App/ObjectSelection.h"
#include "App/Verb.h"
#include "Macros/ImportAbilities.h"
#include "Macros/ImportZipExtension.h"
#include "Macros/ImportedLibraries.h"
#include "Macros/MMacro.h"
#include "Macros/MMacroDomain.h"
#include "Macros/MMacroInsertion.h"
#include "MacrosWindow/MacroImport.h"
#include "Utility/Text/PathHelpers.h"
#include "Utility/Text/TextCompare.h"
#include "XCAF/XException.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fmt/format.h>

namespace
{
/// What a file would bring, found out on objects that never reach the model.
class ImportPreview
{
public:
    /// The macro is the one that actions go into. Throws XException for what an import would refuse.
    ImportPreview( const MacrosFileInput& inFile, const MMacro* inInto )
    {
        MMacroInsertion::Start();
        try
        {
            if ( inFile.mKind == MFileKind::kActionsExport and inInto )
                AddActions( inFile.mInput.mValue, *inInto );
            else
                AddEntries( inFile.mInput.mValue );
            MMacroInsertion::Finish();
        }
        catch ( const XException& )
        {
            MMacroInsertion::Finish();
            throw;
        }
    }

    [[nodiscard]] const std::vector<std::string>& Lines() const { return mLines; }
    [[nodiscard]] const ImportAbilities& Abilities() const { return mAbilities; }

private:
    void AddEntries( __SafeCFPropertyList inValue )
    {
        if ( const XPlistDictionary* const library = inValue.AsDictionary() )
            inValue = __SafeCFPropertyList( library->Find( CFSTR( "Items" ) ) );
        const XPlistArray* const array = inValue.AsArray();
        for ( std::size_t i = 0; array and i < array->GetCount(); ++i )
            AddEntry( array->GetValueAt( i ) );
    }

    void AddEntry( const __SafeCFPropertyList& inItem )
    {
        if ( not MMacroDomain::LooksLikeMacroGroupAndNotMacroSmartGroup( inItem ) )
        {
            mLines.push_back( "smart group " + PlaceOf( MMacroSmartGroup( inItem ) ) );
            return;
        }
        const MMacroGroup group( inItem, nullptr );
        mLines.push_back( fmt::format( "{} {} group {}", Counted( group.GetMacroCount(), "macro" ),
            MMacroDomain::Get()->FindMergeTarget( group ) ? "into the present" : "with the new", PlaceOf( group ) ) );
        group.DoForEveryMacro( [this]( const MMacro& macro ) { mAbilities.Add( macro ); } );
    }

    void AddActions( const __SafeCFPropertyList& inValue, const MMacro& inInto )
    {
        HActionList actions;
        const XPlistArray* const array = inValue.AsArray();
        for ( std::size_t i = 0; array and i < array->GetCount(); ++i )
            actions.AppendAction( HBaseAction::CreateFromPropertyList( array->GetValueAt( i ) ) );
        if ( not array )
            actions.AppendAction( HBaseAction::CreateFromPropertyList( inValue ) );
        mLines.push_back(
            fmt::format( "{} into {}", Counted( std::size_t( actions.GetCount() ), "action" ), PlaceOf( inInto ) ) );
        mAbilities.Add( actions, inInto.GetName() );
    }

    std::vector<std::string> mLines;
    ImportAbilities mAbilities;
};

class ImportVerb final : public EditorVerb
{
public:
    explicit ImportVerb( CLI::App& ioCommand ) : EditorVerb( ioCommand )
    {
        ioCommand.add_option( "FILE", mPaths, "Files: kvmacros, kvlibrary, kvactions or zip" )
            ->required()
            ->type_name( "" );
        ioCommand.add_flag( "--enabled", mEnabled, "Leave macros enabled that are; else they come in disabled" );
        ioCommand.add_option( "--into", mInto, "The name or UID of the macro that a kvactions file goes to" )
            ->type_name( "MACRO" );
        ioCommand.add_flag( "--again", mAgain, "Take a library that was imported before once more" );
        ioCommand.add_flag( "--dry-run,-n", mDryRun, "Say what would come, and change nothing" );
        ioCommand.add_flag( "--json", mJSON, "Print the facts as JSON" );
        ioCommand.footer( "Macros join a group of the same name and target; what they are able to do is told. A file\n"
                          "with a fault brings nothing at all, and the files behind it still come. Each file is an\n"
                          "undo step of its own.\n"
                          "Example: korvalen import Downloads/Shortcuts.kvmacros --dry-run" );
    }

private:
    ExitStatus RunInEditor( VerbContext& ioContext ) override
    {
        if ( mInto and not FindMacroForActions( ioContext.mOutput ) )
            return ExitStatus::kFailed;
        ExitStatus status = ExitStatus::kDone;
        std::size_t imported = 0;
        for ( const std::string& given : mPaths )
        {
            const std::string path = ioContext.Resolve( given );
            try
            {
                imported += Take( path, ioContext );
            }
            catch ( const FileTrouble& trouble )
            {
                ioContext.mOutput.Complain( trouble.what() );
                status = ExitStatus::kFailed;
            }
        }
        if ( mJSON )
            ioContext.mOutput.JSON( mFacts.Seal() );
        else if ( imported > 1 )
            ioContext.mOutput.Line(
                fmt::format( "{} undo steps: “korvalen undo” takes back one file at a time", imported ) );
        return status;
    }

    [[nodiscard]] bool ReadsStandardInput() const override { return std::ranges::find( mPaths, "-" ) != mPaths.end(); }

    bool FindMacroForActions( Output& ioOutput )
    {
        const MMacroSerializedObject* const macro = ResolveObject( *mInto, kSelectMacros, ioOutput );
        if ( not macro )
            return false;
        mIntoUID = macro->GetUID();
        if ( mEnabled or mDryRun or not macro->IsActive() )
            return true;
        // Actions can't come in disabled, as macros do.
        ioOutput.Complain(
            fmt::format( "“{}” is enabled, so a stranger's actions would run with it at once; disable it "
                         "first, or say --enabled",
                PlaceOf( *macro ) ) );
        return false;
    }

    /// The one that actions go to, if it is named. An import that fails may load all macros anew, so it is asked for each time.
    [[nodiscard]] MMacro* MacroForActions() const
    {
        return IsEmpty( mIntoUID ) ? nullptr : MMacroSerializedObject::FindMacroByUID( mIntoUID );
    }

    /// True when it made an undo step. Throws FileTrouble, with nothing changed.
    bool Take( const std::string& inPath, VerbContext& ioContext )
    {
        Output& output = ioContext.mOutput;
        if ( kvr_caseInsensitiveIsEqualToString( pathExtension( TextFromUTF8( inPath ) ), u"zip" ) )
        {
            TakeZip( inPath, output );
            return false;
        }
        const MacrosFileInput file = ReadMacrosFile( ioContext.mInput, inPath );
        if ( const auto reason = WhyNot( file ) )
            throw FileTrouble( fmt::format( "{} wasn't imported: {}", QuotedPath( inPath ), *reason ) );
        if ( mDryRun )
            Preview( inPath, file, output );
        else
            Import( inPath, file, output );
        return not mDryRun;
    }

    [[nodiscard]] std::optional<std::string> WhyNot( const MacrosFileInput& inFile ) const
    {
        if ( inFile.mKind == MFileKind::kMacrosFile )
            return "it is a whole macros file; write what you want of it with “korvalen --folder ITS-FOLDER export”, "
                   "and "
                   "import that";
        if ( inFile.mKind == MFileKind::kActionsExport and not MacroForActions() )
            return "it holds actions, which go into a macro; name that by --into MACRO";
        if ( inFile.mKind != MFileKind::kLibrary or mAgain )
            return {};
        XText uid;
        (void)inFile.mInput.mValue.AsDictionary()->Get( CFSTR( "UID" ), uid );
        if ( uid.IsEmpty() or not ImportedLibraries::WasImported( uid.GetText() ) )
            return {};
        return "this library was imported before, and its macros would be there twice; --again imports it all the same";
    }

    void Preview( const std::string& inPath, const MacrosFileInput& inFile, Output& ioOutput )
    {
        try
        {
            const ImportPreview preview( inFile, MacroForActions() );
            std::vector<Text> lines;
            for ( const std::string& line : preview.Lines() )
                lines.push_back( TextFromUTF8( "would import " + line ) );
            for ( const Text& line : preview.Abilities().Describe() )
                lines.push_back( u"    " + line );
            Tell( inPath, lines, nullptr, preview.Abilities(), ioOutput );
        }
        catch ( const XException& exception )
        {
            throw FileTrouble( fmt::format( "{} can't be imported: {}", QuotedPath( inPath ), exception.what() ) );
        }
    }

    void Import( const std::string& inPath, const MacrosFileInput& inFile, Output& ioOutput )
    {
        MacroImport::Options options;
        options.mDisabled = mEnabled ? ImportMacrosDisabledType::kAsTheyAre : ImportMacrosDisabledType::kDisabled;
        options.mEditedMacro = MacroForActions();
        options.mImportsLibraryAgain = mAgain;
        const auto import = inFile.mKind == MFileKind::kActionsExport ? MacroImport::ImportActions
            : inFile.mKind == MFileKind::kLibrary                     ? MacroImport::ImportLibrary
                                                                      : MacroImport::importMacrosFromArray;
        const MacroImport::Result result = import( inFile.mInput.mValue, options );
        if ( result.mError )
            throw FileTrouble(
                fmt::format( "{} wasn't imported: {}", QuotedPath( inPath ), UTF8FromText( *result.mError ) ) );
        Tell( inPath, result.Describe(), &result, result.mAbilities, ioOutput );
    }

    /// A plug-in action or an icon. It is unpacked beside the macros, so undo knows nothing of it.
    void TakeZip( const std::string& inPath, Output& ioOutput )
    {
        XFileStatus facts;
        if ( XFileCalls::Current().GetPathFacts( inPath, facts ) != 0 or facts.mKind != XFileStatus::Kind::kRegular )
            throw FileTrouble(
                fmt::format( "there is no file {}; check the name and the folder", QuotedPath( inPath ) ) );
        if ( not mDryRun and not ImportZipExtension::Import( inPath ) )
            throw FileTrouble(
                fmt::format( "{} wasn't imported: it is neither a plug-in action nor a status menu icon, or "
                             "it is damaged or unsafe; the log says which",
                    QuotedPath( inPath ) ) );
        Tell( inPath,
            { mDryRun ? u"would unpack it, if it is a plug-in action or a status menu icon"
                      : u"unpacked a plug-in action or a status menu icon; undo doesn't take it back" },
            nullptr, {}, ioOutput );
    }

    void Tell( const std::string& inPath, const std::vector<Text>& inLines, const MacroImport::Result* inResult,
        const ImportAbilities& inAbilities, Output& ioOutput )
    {
        if ( mJSON )
        {
            mFacts.Append( Facts( inPath, inLines, inResult, inAbilities ) );
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
        facts.Set( CFSTR( "abilities" ), ArrayOf( inAbilities.Describe() ) );
        if ( inResult )
        {
            facts.Set( CFSTR( "macros" ), ArrayOf( inResult->mMacros ) );
            facts.Set( CFSTR( "groups" ), ArrayOf( inResult->mGroups ) );
            facts.Set( CFSTR( "smartGroups" ), ArrayOf( inResult->mSmartGroups ) );
            facts.SetInteger( CFSTR( "actions" ), std::int64_t( inResult->mActions ) );
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
    std::optional<std::string> mInto;
    bool mEnabled = false, mAgain = false, mDryRun = false, mJSON = false;
    XText mIntoUID;
    XMutableArray mFacts;
};
} // namespace

void AddImportVerb( CLI::App& ioProgram, VerbList& ioVerbs )
{
    ioVerbs.push_back( std::make_unique<ImportVerb>(
        *ioProgram.add_subcommand( "import", "Take macros in from files, disabled unless told otherwise" ) ) );
}

// "set-aside": what was kept before it was replaced. Looking reads files only; restoring is an edit that can be undone.
#include "App/MacrosFile.h"
#include "App/SavedMacros.h"
#include "App/TimeText.h"
#include "App/Verb.h"
#include "Defines/KVPreferences.h"
#include "Defines/SetAside.h"
#include "MacrosWindow/MacroEditing.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <fmt/format.h>

namespace
{
// What each kind was, for people, in the order of SetAside::Kind.
constexpr const char* kKindTexts[] = { "macros file before it was replaced", "shared file",
    "macros before a received file", "revision", "unsaved edits", "edits that waited for their save", "saved state",
    "the engine's overrides", "settings file", "other" };
static_assert( std::size( kKindTexts ) == std::size( SetAside::kKindNames ) );

// Asking for the list makes the data folder, which looking mustn't do.
std::vector<SetAside::Entry> Entries()
{
    XFileStatus facts;
    if ( XFileCalls::Current().GetPathFacts( KVPreferences::PlannedFolderPath(), facts ) != 0 )
        return {};
    return SetAside::List();
}

/// By the name of its file, or by the beginning of its digest. Throws FileTrouble.
SetAside::Entry FindEntry( const std::string& inWord )
{
    std::string digest = inWord;
    std::transform( digest.begin(), digest.end(), digest.begin(), []( unsigned char c ) { return std::tolower( c ); } );
    std::vector<SetAside::Entry> found;
    for ( SetAside::Entry& entry : Entries() )
    {
        if ( entry.mPath.filename() == inWord )
            return std::move( entry );
        if ( not digest.empty() and entry.mDigest.starts_with( digest ) )
            found.push_back( std::move( entry ) );
    }
    if ( found.size() == 1 )
        return std::move( found.front() );
    if ( found.empty() )
        throw FileTrouble( fmt::format( "nothing that was set aside is called “{}”; “korvalen set-aside list” shows "
                                        "what there is",
            inWord ) );
    std::string names;
    for ( const SetAside::Entry& entry : found )
        names += ( names.empty() ? "" : ", " ) + QuotedPath( entry.mPath.filename().native() );
    throw FileTrouble( fmt::format( "“{}” fits {} files; name one: {}", inWord, found.size(), names ) );
}

MMacroFileDataPtr BytesOf( const SetAside::Entry& inEntry )
{
    XFileContent content = ReadWholeFile( inEntry.mPath, FileInput::kMostBytes );
    if ( content.mError )
        throw FileTrouble(
            fmt::format( "{} can't be read: {}", QuotedPath( inEntry.mPath.native() ), content.mError->Describe() ) );
    return std::make_shared<MMacroFileData>( std::move( content.mBytes ) );
}

SavedMacros MacrosOf( const SetAside::Entry& inEntry )
{
    return { BytesOf( inEntry )->Span(), QuotedPath( inEntry.mPath.native() ) };
}

void AddEntryOption( CLI::App& ioCommand, std::string& ioEntry )
{
    ioCommand.add_option( "WHAT", ioEntry, "Its first digits, as “set-aside list” shows them, or the file's name" )
        ->required()
        ->type_name( "" );
}

class ListSetAsideVerb final : public Verb
{
public:
    explicit ListSetAsideVerb( CLI::App& ioCommand ) : Verb( ioCommand )
    {
        ioCommand.add_flag( "--json", mJSON, "Print the facts as JSON" );
        ioCommand.footer( "The newest first.\nExample: korvalen set-aside list" );
    }

    ExitStatus Run( VerbContext& ioContext ) override
    {
        Output& output = ioContext.mOutput;
        const std::vector<SetAside::Entry> entries = Entries();
        XMutableArray list;
        for ( const SetAside::Entry& entry : entries )
        {
            if ( mJSON )
                list.Append( Facts( entry ) );
            else
            {
                output.Text( entry.mDigest, Colour::kBold );
                output.Line( fmt::format( "  {}  {}  ({})", LocalTimeText( entry.mTime ),
                    kKindTexts[std::size_t( entry.mKind )], Counted( std::size_t( entry.mSize ), "byte" ) ) );
            }
        }
        if ( mJSON )
            output.JSON( list.Seal() );
        else if ( entries.empty() )
            output.Complain( "nothing is set aside" );
        return ExitStatus::kDone;
    }

private:
    static __SafeCFPropertyList Facts( const SetAside::Entry& inEntry )
    {
        XMutableDictionary facts;
        facts.SetText( CFSTR( "digest" ), TextFromUTF8( inEntry.mDigest ) );
        facts.SetText(
            CFSTR( "kind" ), TextFromUTF8( std::string( SetAside::kKindNames[std::size_t( inEntry.mKind )] ) ) );
        facts.SetText( CFSTR( "time" ), TextFromUTF8( LocalTimeText( inEntry.mTime ) ) );
        facts.SetText( CFSTR( "path" ), TextFromUTF8( inEntry.mPath.native() ) );
        facts.SetInteger( CFSTR( "bytes" ), std::int64_t( inEntry.mSize ) );
        return facts.Seal();
    }

    bool mJSON = false;
};

class ShowSetAsideVerb final : public Verb
{
public:
    explicit ShowSetAsideVerb( CLI::App& ioCommand ) : Verb( ioCommand )
    {
        AddEntryOption( ioCommand, mEntry );
        ioCommand.add_flag( "--json", mJSON, "Print the facts as JSON" );
        ioCommand.footer( "Example: korvalen set-aside show 3f2a" );
    }

    ExitStatus Run( VerbContext& ioContext ) override
    {
        MacrosOf( FindEntry( mEntry ) ).Print( mJSON, ioContext.mOutput );
        return ExitStatus::kDone;
    }

private:
    std::string mEntry;
    bool mJSON = false;
};

class CompareSetAsideVerb final : public Verb
{
public:
    explicit CompareSetAsideVerb( CLI::App& ioCommand ) : Verb( ioCommand )
    {
        AddEntryOption( ioCommand, mEntry );
        ioCommand.add_flag( "--json", mJSON, "Print the differences as JSON, with both values whole" );
        ioCommand.footer( "What the macros file has otherwise, by path. Status 0: nothing; 1: something.\n"
                          "Example: korvalen set-aside compare 3f2a" );
    }

    ExitStatus Run( VerbContext& ioContext ) override
    {
        const SavedMacros then = MacrosOf( FindEntry( mEntry ) );
        return then.PrintDifferencesTo( ReadPresentMacros(), mJSON, ioContext.mOutput ) == 0 ? ExitStatus::kDone
                                                                                             : ExitStatus::kFailed;
    }

private:
    std::string mEntry;
    bool mJSON = false;
};

class RestoreSetAsideVerb final : public EditorVerb
{
public:
    explicit RestoreSetAsideVerb( CLI::App& ioCommand ) : EditorVerb( ioCommand )
    {
        AddEntryOption( ioCommand, mEntry );
        ioCommand.add_flag( "--dry-run,-n", mDryRun, "Only say whether it can be restored" );
        ioCommand.add_flag( "--json", mJSON, "Print the facts as JSON" );
        ioCommand.footer( "It becomes the macros file. “korvalen undo” takes that back, and the copy stays.\n"
                          "Example: korvalen set-aside restore 3f2a" );
    }

private:
    ExitStatus RunInEditor( VerbContext& ioContext ) override
    {
        const SetAside::Entry entry = FindEntry( mEntry );
        const MMacroFileDataPtr data = BytesOf( entry );
        // Says by itself what is wrong with bytes that can't be loaded.
        const std::size_t objects = SavedMacros( data->Span(), QuotedPath( entry.mPath.native() ) ).Objects().size();
        if ( not mDryRun )
        {
            if ( const auto fault = MacroEditing::ReplaceAllMacros( data, u"Restore" ) )
                throw FileTrouble( fmt::format( "{} isn't restored: {}", QuotedPath( entry.mPath.native() ), *fault ) );
        }
        if ( mJSON )
        {
            XMutableDictionary facts;
            facts.SetBoolean( CFSTR( "dryRun" ), mDryRun );
            facts.SetText( CFSTR( "digest" ), TextFromUTF8( entry.mDigest ) );
            facts.SetInteger( CFSTR( "objects" ), std::int64_t( objects ) );
            ioContext.mOutput.JSON( facts.Seal() );
            return ExitStatus::kDone;
        }
        ioContext.mOutput.Line( fmt::format( "{} {} of {}  ({})", mDryRun ? "would restore" : "restored",
            kKindTexts[std::size_t( entry.mKind )], LocalTimeText( entry.mTime ),
            Counted( objects, "group or macro", "groups and macros" ) ) );
        return ExitStatus::kDone;
    }

    std::string mEntry;
    bool mDryRun = false, mJSON = false;
};
} // namespace

void AddSetAsideVerbs( CLI::App& ioProgram, VerbList& ioVerbs )
{
    CLI::App& setAside =
        *ioProgram.add_subcommand( "set-aside", "Look at what was kept before it was replaced, and restore it" );
    setAside.require_subcommand( 1 );
    setAside.footer( "Example: korvalen set-aside list" );
    const auto command = [&setAside]( const char* name, const char* description ) -> CLI::App& {
        return *setAside.add_subcommand( name, description )->group( "Verbs" );
    };
    ioVerbs.push_back( std::make_unique<ListSetAsideVerb>( command( "list", "List what there is" ) ) );
    ioVerbs.push_back( std::make_unique<ShowSetAsideVerb>( command( "show", "List its groups and macros" ) ) );
    ioVerbs.push_back(
        std::make_unique<CompareSetAsideVerb>( command( "compare", "Show what the macros file has otherwise" ) ) );
    ioVerbs.push_back( std::make_unique<RestoreSetAsideVerb>( command( "restore", "Make it the macros file" ) ) );
}

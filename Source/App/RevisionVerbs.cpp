// "revisions": the earlier states of the macros. There are two kinds: one of each day and of some events, named by their
// date, and every state that was saved lately, named by its digest.
#include "App/MacrosFile.h"
#include "App/ObjectSelection.h"
#include "App/SavedMacros.h"
#include "App/TimeText.h"
#include "App/Verb.h"
#include "Macros/MMacro.h"
#include "Macros/MMacroPreferenceFile.h"
#include "Macros/RevisionDates.h"
#include "Macros/SavedStates.h"
#include "MacrosWindow/MacroEditing.h"
#include "MacrosWindow/MacrosWindowUndo.h"
#include "Utility/Text/Localization.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fmt/format.h>
#include <set>

namespace
{
constexpr std::string_view kStatePrefix = "state:";
constexpr std::size_t kShownDigits = 12;

constexpr struct
{
    const char* mWord;
    const char16_t* mDate;
} kEvents[] = { { "before-version", u"0000_01_02" }, { "launch", u"9999_01_01" }, { "before-revert", u"9999_01_02" },
    { "before-sync", u"9999_01_03" } };

/// "launch" of "9999_01_01", "2024-03-01" of "2024_03_01".
std::string WordOf( const Text& inDate )
{
    for ( const auto& [word, date] : kEvents )
    {
        if ( inDate == date )
            return word;
    }
    std::string word = UTF8FromText( inDate );
    std::replace( word.begin(), word.end(), '_', '-' );
    return word;
}

/// A state that there is, of either kind.
struct Revision
{
    std::string mWord; ///< what it is called by in arguments
    std::string mTitle;
    Text mDate;          ///< empty for a saved state
    std::string mDigest; ///< of a saved state
    std::optional<std::uint64_t> mSize;

    [[nodiscard]] std::string Words() const { return fmt::format( "the revision “{}”", mWord ); }
};

std::vector<Revision> DatedRevisions()
{
    std::vector<Revision> revisions;
    for ( const Text& date : MMacroPreferenceFile::Revisions() )
    {
        XFileStatus facts;
        const bool isThere =
            XFileCalls::Current().GetPathFacts( MMacroPreferenceFile::RevisionPath( date ), facts ) == 0;
        revisions.push_back( { WordOf( date ), UTF8FromText( RevisionDates::DisplayNameForRevision( date ) ), date, {},
            isThere ? std::optional( facts.mSize ) : std::nullopt } );
    }
    return revisions;
}

std::vector<Revision> StateRevisions()
{
    std::vector<Revision> revisions;
    for ( const SavedStates::State& state : SavedStates::List() )
        revisions.push_back( { std::string( kStatePrefix ) + state.mDigest.substr( 0, kShownDigits ),
            "Saved " + LocalTimeText( state.mTime ), {}, state.mDigest, state.mSize } );
    return revisions;
}

Revision FindState( const std::string& inWord )
{
    std::string prefix = inWord.substr( kStatePrefix.size() );
    std::transform( prefix.begin(), prefix.end(), prefix.begin(), []( unsigned char c ) { return std::tolower( c ); } );
    std::vector<Revision> found = StateRevisions();
    std::erase_if(
        found, [&prefix]( const Revision& revision ) { return not revision.mDigest.starts_with( prefix ); } );
    if ( prefix.empty() )
        found.clear();
    if ( found.size() == 1 )
        return std::move( found.front() );
    throw FileTrouble( found.empty()
            ? fmt::format( "there is no saved state “{}”; “korvalen revisions list” shows what there is", inWord )
            : fmt::format( "{} saved states begin with “{}”; give more digits", found.size(), inWord ) );
}

/// Throws FileTrouble when there is none.
Revision FindRevision( const std::string& inWord )
{
    if ( inWord.starts_with( kStatePrefix ) )
        return FindState( inWord );
    std::string word = inWord;
    std::replace( word.begin(), word.end(), '_', '-' );
    for ( Revision& revision : DatedRevisions() )
    {
        std::string date = UTF8FromText( revision.mDate );
        std::replace( date.begin(), date.end(), '_', '-' );
        if ( revision.mWord == word or date == word )
            return std::move( revision );
    }
    throw FileTrouble(
        fmt::format( "there is no revision “{}”; “korvalen revisions list” shows what there is", inWord ) );
}

MMacroFileDataPtr BytesOf( const Revision& inRevision )
{
    if ( inRevision.mDate.empty() )
    {
        MMacroFileDataPtr data = SavedStates::Load( inRevision.mDigest );
        if ( not data )
            throw FileTrouble( inRevision.Words() + " is damaged or gone; the log says which" );
        return data;
    }
    const auto path = MMacroPreferenceFile::RevisionPath( inRevision.mDate );
    XFileContent content = ReadWholeFile( path, FileInput::kMostBytes );
    if ( content.mError )
        throw FileTrouble( fmt::format( "{} can't be read: {}", inRevision.Words(), content.mError->Describe() ) );
    return std::make_shared<MMacroFileData>( std::move( content.mBytes ) );
}

SavedMacros MacrosOf( const Revision& inRevision )
{
    return { BytesOf( inRevision )->Span(), inRevision.Words() };
}

void AddDateOption( CLI::App& ioCommand, std::string& ioDate )
{
    ioCommand.add_option( "DATE", ioDate, "As “korvalen revisions list” shows it: 2024-03-01, launch, state:…" )
        ->required()
        ->type_name( "" );
}

class ListRevisionsVerb final : public Verb
{
public:
    explicit ListRevisionsVerb( CLI::App& ioCommand ) : Verb( ioCommand )
    {
        ioCommand.add_flag( "--json", mJSON, "Print the facts as JSON" );
        ioCommand.footer( "Days and events, then every state that was saved lately, the newest first.\n"
                          "Example: korvalen revisions list" );
    }

    ExitStatus Run( VerbContext& ioContext ) override
    {
        std::vector<Revision> revisions = DatedRevisions();
        for ( Revision& state : StateRevisions() )
            revisions.push_back( std::move( state ) );
        if ( mJSON )
            ioContext.mOutput.JSON( Facts( revisions ) );
        else if ( revisions.empty() )
            ioContext.mOutput.Complain( "there are no revisions yet; each day's first save makes one" );
        for ( const Revision& revision : revisions )
        {
            if ( mJSON )
                break;
            ioContext.mOutput.Text( fmt::format( "{:<20}", revision.mWord ), Colour::kBold );
            ioContext.mOutput.Line( revision.mTitle +
                ( revision.mSize ? fmt::format( "  ({})", Counted( std::size_t( *revision.mSize ), "byte" ) ) : "" ) );
        }
        return ExitStatus::kDone;
    }

private:
    static __SafeCFPropertyList Facts( const std::vector<Revision>& inRevisions )
    {
        XMutableArray list;
        for ( const Revision& revision : inRevisions )
        {
            XMutableDictionary facts;
            facts.SetText( CFSTR( "date" ), TextFromUTF8( revision.mWord ) );
            facts.SetText( CFSTR( "title" ), TextFromUTF8( revision.mTitle ) );
            if ( not revision.mDigest.empty() )
                facts.SetText( CFSTR( "digest" ), TextFromUTF8( revision.mDigest ) );
            if ( revision.mSize )
                facts.SetInteger( CFSTR( "bytes" ), std::int64_t( *revision.mSize ) );
            list.Append( facts.Seal() );
        }
        return list.Seal();
    }

    bool mJSON = false;
};

class ShowRevisionVerb final : public Verb
{
public:
    explicit ShowRevisionVerb( CLI::App& ioCommand ) : Verb( ioCommand )
    {
        AddDateOption( ioCommand, mDate );
        ioCommand.add_flag( "--json", mJSON, "Print the facts as JSON" );
        ioCommand.footer( "Example: korvalen revisions show 2024-03-01" );
    }

    ExitStatus Run( VerbContext& ioContext ) override
    {
        MacrosOf( FindRevision( mDate ) ).Print( mJSON, ioContext.mOutput );
        return ExitStatus::kDone;
    }

private:
    std::string mDate;
    bool mJSON = false;
};

class CompareRevisionVerb final : public Verb
{
public:
    explicit CompareRevisionVerb( CLI::App& ioCommand ) : Verb( ioCommand )
    {
        AddDateOption( ioCommand, mDate );
        ioCommand.add_flag( "--json", mJSON, "Print the differences as JSON, with both values whole" );
        ioCommand.footer( "What has changed since then in the macros file, by path. Status 0: nothing; 1: something.\n"
                          "Example: korvalen revisions compare launch" );
    }

    ExitStatus Run( VerbContext& ioContext ) override
    {
        const SavedMacros then = MacrosOf( FindRevision( mDate ) );
        return then.PrintDifferencesTo( ReadPresentMacros(), mJSON, ioContext.mOutput ) == 0 ? ExitStatus::kDone
                                                                                             : ExitStatus::kFailed;
    }

private:
    std::string mDate;
    bool mJSON = false;
};

class RevertVerb final : public EditorVerb
{
public:
    explicit RevertVerb( CLI::App& ioCommand ) : EditorVerb( ioCommand )
    {
        AddDateOption( ioCommand, mDate );
        ioCommand.add_flag( "--json", mJSON, "Print the facts as JSON" );
        ioCommand.footer(
            "All macros become what they were then. “korvalen undo” takes it back, and “before-revert” is\n"
            "the state of before.\n"
            "Example: korvalen revisions revert 2024-03-01" );
    }

private:
    void Prepare( VerbContext& ) override
    {
        mRevision = FindRevision( mDate );
        mData = BytesOf( mRevision );
    }

    /// Is it what it was before the editor started?
    [[nodiscard]] bool IsStillThere() const
    {
        if ( mRevision.mDate.empty() )
            return false;
        const XFileContent now =
            ReadWholeFile( MMacroPreferenceFile::RevisionPath( mRevision.mDate ), FileInput::kMostBytes );
        return not now.mError and std::ranges::equal( now.mBytes.Span(), mData->Span() );
    }

    ExitStatus RunInEditor( VerbContext& ioContext ) override
    {
        const Revision& revision = mRevision;
        if ( not IsStillThere() )
        {
            const Text title = kvr_localizedFormat( u"RevertChange", TextFromUTF8( revision.mTitle ) );
            if ( const auto fault = MacroEditing::ReplaceAllMacros( mData, title ) )
                throw FileTrouble( fmt::format( "{} isn't gone back to: {}", revision.Words(), *fault ) );
        }
        else if ( not MacrosWindowUndo::RevertToRevision( revision.mDate ) )
            throw FileTrouble( revision.Words() + " can't be read as a macros file, so nothing was changed" );
        if ( not mJSON )
        {
            ioContext.mOutput.Line( fmt::format( "reverted to {}  ({})", revision.mWord, revision.mTitle ) );
            return ExitStatus::kDone;
        }
        XMutableDictionary facts;
        facts.SetText( CFSTR( "date" ), TextFromUTF8( revision.mWord ) );
        facts.SetText( CFSTR( "title" ), TextFromUTF8( revision.mTitle ) );
        ioContext.mOutput.JSON( facts.Seal() );
        return ExitStatus::kDone;
    }

    std::string mDate;
    bool mJSON = false;
    Revision mRevision;
    MMacroFileDataPtr mData;
};

class RestoreVerb final : public EditorVerb
{
public:
    explicit RestoreVerb( CLI::App& ioCommand ) : EditorVerb( ioCommand )
    {
        AddDateOption( ioCommand, mDate );
        ioCommand.add_option( "NAME", mName, "The name or UID of a macro, group or smart group, as it was then" )
            ->required()
            ->type_name( "" );
        ioCommand.add_flag( "--dry-run,-n", mDryRun, "Say what would change, and change nothing" );
        ioCommand.add_flag( "--json", mJSON, "Print the facts as JSON" );
        ioCommand.footer( "It takes the place of what has its UID now, or is added. “korvalen undo” takes it back.\n"
                          "Example: korvalen revisions restore launch \"Paste plain\"" );
    }

private:
    void Prepare( VerbContext& ) override { mThen.emplace( MacrosOf( FindRevision( mDate ) ) ); }

    ExitStatus RunInEditor( VerbContext& ioContext ) override
    {
        const SavedMacros& then = *mThen;
        const std::vector<SavedObject> found = then.Find( mName );
        if ( found.size() != 1 )
        {
            ioContext.mOutput.Complain( found.empty() ? fmt::format( "{} has nothing called “{}”; “korvalen revisions "
                                                                     "show {}” shows what it has",
                                                            then.GetWords(), mName, mDate )
                                                      : AmbiguousName( then, found ) );
            return ExitStatus::kFailed;
        }
        const SavedObject& object = found.front();
        const MMacroSerializedObject* const present = MMacroSerializedObject::FindObjectByUID( object.mUID );
        const bool replaces = present != nullptr;
        const std::vector<std::string> newer = present ? NewerMacros( *present, then ) : std::vector<std::string>();
        if ( not mDryRun and not MacroEditing::Restore( object.ForRestoring() ) )
            throw FileTrouble( fmt::format(
                "“{}” in {} can't be understood, so nothing was changed; the log says why", mName, then.GetWords() ) );
        Tell( object, replaces, newer, ioContext.mOutput );
        return ExitStatus::kDone;
    }

    [[nodiscard]] std::string AmbiguousName( const SavedMacros& inThen, const std::vector<SavedObject>& inFound ) const
    {
        std::string choices;
        for ( const SavedObject& object : inFound )
            choices += fmt::format( "{}{} {}", choices.empty() ? "" : ", ", object.Place(), object.mUID.GetUTF8() );
        return fmt::format( "{} things in {} are called “{}”; name one by its UID: {}", inFound.size(),
            inThen.GetWords(), mName, choices );
    }

    /// The macros of a group that go with its replacement, for they weren't in it then.
    static std::vector<std::string> NewerMacros( const MMacroSerializedObject& inPresent, const SavedMacros& inThen )
    {
        std::vector<std::string> newer;
        const MMacroGroup* const group = inPresent.GetAsMacroGroup();
        if ( not group )
            return newer;
        std::set<Text> uids;
        for ( const SavedObject& object : inThen.Objects() )
        {
            if ( not object.mUID.IsNull() )
                uids.insert( object.mUID.GetText() );
        }
        group->DoForEveryMacro( [&]( const MMacro& macro ) {
            if ( not uids.contains( macro.GetUID().GetText() ) )
                newer.push_back( UTF8FromText( macro.GetName() ) );
        } );
        return newer;
    }

    void Tell(
        const SavedObject& inObject, bool inReplaces, const std::vector<std::string>& inNewer, Output& ioOutput ) const
    {
        if ( mJSON )
        {
            XMutableDictionary facts = inObject.Facts();
            XMutableArray newer;
            for ( const std::string& name : inNewer )
                newer.Append( XPlistString::MakeUTF8( name ) );
            facts.SetBoolean( CFSTR( "dryRun" ), mDryRun );
            facts.SetBoolean( CFSTR( "replaces" ), inReplaces );
            facts.Set( CFSTR( "removes" ), newer.Seal() );
            ioOutput.JSON( facts.Seal() );
            return;
        }
        ioOutput.Text( mDryRun ? "would restore " : "restored ", mDryRun ? Colour::kYellow : Colour::kGreen );
        ioOutput.Line( inObject.Place() + ( inReplaces ? "  (in place of the present one)" : "" ) );
        for ( const std::string& name : inNewer )
            ioOutput.Line(
                fmt::format( "  {} {}: it wasn't in the group then", mDryRun ? "would delete" : "deleted", name ) );
    }

    std::string mDate, mName;
    bool mDryRun = false, mJSON = false;
    std::optional<SavedMacros> mThen;
};
} // namespace

void AddRevisionVerbs( CLI::App& ioProgram, VerbList& ioVerbs )
{
    CLI::App& revisions = *ioProgram.add_subcommand( "revisions", "Look at earlier states, and go back to them" );
    revisions.require_subcommand( 1 );
    revisions.footer( "Example: korvalen revisions compare launch" );
    const auto command = [&revisions]( const char* name, const char* description ) -> CLI::App& {
        return *revisions.add_subcommand( name, description )->group( "Verbs" );
    };
    ioVerbs.push_back( std::make_unique<ListRevisionsVerb>( command( "list", "List the states that there are" ) ) );
    ioVerbs.push_back(
        std::make_unique<ShowRevisionVerb>( command( "show", "List the groups and macros of a state" ) ) );
    ioVerbs.push_back(
        std::make_unique<CompareRevisionVerb>( command( "compare", "Show what has changed since a state" ) ) );
    ioVerbs.push_back( std::make_unique<RevertVerb>( command( "revert", "Go back to a state with all macros" ) ) );
    ioVerbs.push_back(
        std::make_unique<RestoreVerb>( command( "restore", "Bring one macro or group back out of a state" ) ) );
}

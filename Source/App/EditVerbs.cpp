// "new", "rename", "enable", "disable", "delete", "move" and "duplicate": edits of the macros of the data folder. What a verb is
// about is resolved whole first, so that a name that doesn't fit changes nothing; then it is told, and with --dry-run that
// is all.
#include "App/MacrosFile.h"
#include "App/ObjectSelection.h"
#include "App/Verb.h"
#include "Macros/MMacro.h"
#include "Macros/MMacroDomain.h"
#include "MacrosWindow/MacroEditing.h"
#include "Utility/Text/Localization.h"
#include "Utility/Text/StringHelpers.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fmt/format.h>

namespace
{
using MacroEditing::Edit;
using MacroEditing::Objects;

/// What an edit does, told as it goes: lines for people, or one value at the end.
class EditReport
{
public:
    struct Words
    {
        const char* mDone;  ///< "deleted"
        const char* mWould; ///< "would delete"
    };

    EditReport( Output& ioOutput, Words inWords, bool inDryRun, bool inJSON )
        : mOutput( ioOutput ),
          mWords( inWords ),
          mDryRun( inDryRun ),
          mJSON( inJSON )
    {}

    /// The detail stands behind the object, the facts beside its own.
    void Tell( const MMacroSerializedObject& inObject, const std::string& inDetail, XMutableDictionary inFacts )
    {
        if ( mJSON )
            mFacts.Append( inFacts.Seal() );
        else
            Line( fmt::format( "{} {}{}", KindWord( inObject ), PlaceOf( inObject ), inDetail ) );
    }
    void Tell( const MMacroSerializedObject& inObject, const std::string& inDetail = {} )
    {
        Tell( inObject, inDetail, FactsOf( inObject ) );
    }
    /// Of an object that there isn't yet.
    void TellNew( const std::string& inText, XMutableDictionary inFacts )
    {
        if ( mJSON )
            mFacts.Append( inFacts.Seal() );
        else
            Line( inText );
    }
    /// The undo title is empty when nothing changes.
    void Finish( const Text& inTitle )
    {
        if ( not mJSON )
            return;
        XMutableDictionary facts;
        facts.SetBoolean( CFSTR( "dryRun" ), mDryRun );
        if ( not inTitle.empty() )
            facts.SetText( CFSTR( "undoTitle" ), inTitle );
        facts.Set( CFSTR( "objects" ), mFacts.Seal() );
        mOutput.JSON( facts.Seal() );
    }
    void Remark( const std::string& inText )
    {
        if ( not mJSON )
            mOutput.Line( inText );
    }

private:
    void Line( const std::string& inText )
    {
        mOutput.Text( mDryRun ? mWords.mWould : mWords.mDone, mDryRun ? Colour::kYellow : Colour::kGreen );
        mOutput.Line( " " + inText );
    }

    Output& mOutput;
    const Words mWords;
    const bool mDryRun, mJSON;
    XMutableArray mFacts;
};

/// What every verb here has.
class EditingVerb : public EditorVerb
{
public:
    EditingVerb( CLI::App& ioCommand, EditReport::Words inWords ) : EditorVerb( ioCommand ), mWords( inWords ) {}

protected:
    void AddOptions( CLI::App& ioCommand )
    {
        ioCommand.add_flag( "--dry-run,-n", mDryRun, "Say what would change, and change nothing" );
        ioCommand.add_flag( "--json", mJSON, "Print the facts as JSON" );
    }
    [[nodiscard]] EditReport MakeReport( Output& ioOutput ) const { return { ioOutput, mWords, mDryRun, mJSON }; }

    bool mDryRun = false, mJSON = false;

private:
    const EditReport::Words mWords;
};

const Text& DefaultGroupName()
{
    return kvr_localized( u"hkDefaultMacroGroupName" );
}

/// The only way to name a second group so would be to lose its settings: loading makes them those of the default group.
constexpr const char* kDefaultNameTaken =
    "“{}” is the name of the default group, which is always active everywhere; choose another name";

// ---------------------------------------------------------------- new

class NewVerb : public EditingVerb
{
public:
    explicit NewVerb( CLI::App& ioCommand ) : EditingVerb( ioCommand, { "added", "would add" } )
    {
        ioCommand.add_option( "NAME", mName, "The name" )->required()->type_name( "" );
    }

protected:
    ExitStatus RunInEditor( VerbContext& ioContext ) final
    {
        // Names have no line breaks: what is checked and told has to be what it will be called.
        const Text name = kvr_cleanName( TextFromUTF8( mName ) );
        if ( name.empty() )
        {
            ioContext.mOutput.Complain( "a name can't be empty; give the new thing a name" );
            return ExitStatus::kWrongUsage;
        }
        mName = UTF8FromText( name );
        EditReport report = MakeReport( ioContext.mOutput );
        return Add( name, report, ioContext.mOutput );
    }
    [[nodiscard]] virtual ExitStatus Add( const Text& inName, EditReport& ioReport, Output& ioOutput ) = 0;

    void TellAdded( MMacroSerializedObject& inObject, EditReport& ioReport ) const
    {
        ioReport.Tell( inObject, "  " + inObject.GetUID().GetUTF8() );
        ioReport.Finish( MacroEditing::UndoTitle( Edit::kAdd, { &inObject } ) );
    }
    void TellWouldAdd( const char16_t* inKind, const std::string& inText, EditReport& ioReport ) const
    {
        XMutableDictionary facts;
        facts.SetText( CFSTR( "kind" ), kvr_localized( inKind ) );
        facts.SetText( CFSTR( "name" ), TextFromUTF8( mName ) );
        ioReport.TellNew( inText, std::move( facts ) );
        ioReport.Finish( {} );
    }

    std::string mName;
};

class NewGroupVerb final : public NewVerb
{
public:
    explicit NewGroupVerb( CLI::App& ioCommand ) : NewVerb( ioCommand )
    {
        AddOptions( ioCommand );
        ioCommand.footer( "Example: korvalen new group \"Editing\"" );
    }

private:
    ExitStatus Add( const Text& inName, EditReport& ioReport, Output& ioOutput ) override
    {
        if ( inName == DefaultGroupName() )
        {
            ioOutput.Complain( fmt::format( kDefaultNameTaken, mName ) );
            return ExitStatus::kFailed;
        }
        if ( mDryRun )
            TellWouldAdd( u"SOKMacroGroup", "group " + mName, ioReport );
        else
            TellAdded( MacroEditing::AddGroup( inName ), ioReport );
        return ExitStatus::kDone;
    }
};

class NewSmartGroupVerb final : public NewVerb
{
public:
    explicit NewSmartGroupVerb( CLI::App& ioCommand ) : NewVerb( ioCommand )
    {
        ioCommand.add_option( "--search", mSearches, "What it looks for; several are alternatives" )
            ->type_name( "QUERY" )
            ->expected( 1 )
            ->take_all();
        AddOptions( ioCommand );
        ioCommand.footer( "Without a search it holds nothing.\n"
                          "Example: korvalen new smart-group \"Lately Changed\" --search modified:2d" );
    }

private:
    ExitStatus Add( const Text& inName, EditReport& ioReport, Output& ) override
    {
        std::vector<XText> searches;
        for ( const std::string& search : mSearches )
            searches.emplace_back( TextFromUTF8( search ) );
        if ( mDryRun )
            TellWouldAdd( u"SOKSmartGroup", "smart group " + mName, ioReport );
        else
            TellAdded( MacroEditing::AddSmartGroup( inName, std::move( searches ) ), ioReport );
        return ExitStatus::kDone;
    }

    std::vector<std::string> mSearches;
};

class NewMacroVerb final : public NewVerb
{
public:
    explicit NewMacroVerb( CLI::App& ioCommand ) : NewVerb( ioCommand )
    {
        ioCommand.add_option( "--group", mGroup, "The name or UID of its group; the default group if none is named" )
            ->type_name( "GROUP" );
        AddOptions( ioCommand );
        ioCommand.footer( "Example: korvalen new macro \"Paste plain\" --group Editing" );
    }

private:
    ExitStatus Add( const Text& inName, EditReport& ioReport, Output& ioOutput ) override
    {
        MMacroSerializedObject* const group =
            mGroup ? ResolveObject( *mGroup, kSelectGroups, ioOutput ) : MMacroDomain::Get()->GetDefaultMacroGroup();
        if ( not group )
            return ExitStatus::kFailed;
        if ( mDryRun )
            TellWouldAdd( u"SOKMacro", fmt::format( "macro {} › {}", PlaceOf( *group ), mName ), ioReport );
        else
            TellAdded( MacroEditing::AddMacro( inName, *group->GetAsMacroGroup() ), ioReport );
        return ExitStatus::kDone;
    }

    std::optional<std::string> mGroup;
};

// ---------------------------------------------------------------- what works on a selection

class SelectionVerb : public EditingVerb
{
public:
    SelectionVerb( CLI::App& ioCommand, EditReport::Words inWords, std::uint8_t inKinds )
        : EditingVerb( ioCommand, inWords ),
          mSelection( inKinds )
    {
        mSelection.AddOptions( ioCommand );
    }

protected:
    ExitStatus RunInEditor( VerbContext& ioContext ) final
    {
        if ( mSelection.IsEmpty() )
        {
            ioContext.mOutput.Complain( "nothing is selected; give names or UIDs, or --query" );
            return ExitStatus::kWrongUsage;
        }
        const auto objects = mSelection.Resolve( ioContext.mOutput );
        if ( not objects )
            return ExitStatus::kFailed;
        EditReport report = MakeReport( ioContext.mOutput );
        return Change( *objects, report, ioContext.mOutput );
    }
    [[nodiscard]] virtual ExitStatus Change( const Objects& inObjects, EditReport& ioReport, Output& ioOutput ) = 0;

private:
    ObjectSelection mSelection;
};

class EnableVerb final : public SelectionVerb
{
public:
    EnableVerb( CLI::App& ioCommand, bool inActive )
        : SelectionVerb( ioCommand,
              inActive ? EditReport::Words{ "enabled", "would enable" }
                       : EditReport::Words{ "disabled", "would disable" },
              kSelectAll ),
          mActive( inActive )
    {
        AddOptions( ioCommand );
        ioCommand.footer( inActive ? "Example: korvalen enable \"Paste plain\""
                                   : "Example: korvalen disable --query 'group:Games -name:Quit' --dry-run" );
    }

private:
    ExitStatus Change( const Objects& inObjects, EditReport& ioReport, Output& ioOutput ) override
    {
        Objects changing;
        for ( MMacroSerializedObject* const object : inObjects )
        {
            const MMacroGroup* const group = object->GetAsMacroGroup();
            if ( not mActive and group and group->IsDefaultMacroGroup() )
            {
                ioOutput.Complain( fmt::format(
                    "“{}” is the default group, which is always active; disable its macros, or move them to "
                    "another group",
                    PlaceOf( *group ) ) );
                return ExitStatus::kFailed;
            }
            if ( object->IsActive() != mActive )
                changing.push_back( object );
        }
        for ( const MMacroSerializedObject* const object : changing )
            ioReport.Tell( *object );
        if ( const std::size_t others = inObjects.size() - changing.size() )
            ioReport.Remark( fmt::format( "{} so already", others == 1 ? "1 is" : fmt::format( "{} are", others ) ) );
        ioReport.Finish(
            changing.empty() ? Text() : MacroEditing::UndoTitle( mActive ? Edit::kEnable : Edit::kDisable, changing ) );
        if ( not mDryRun )
            MacroEditing::SetActive( changing, mActive );
        return ExitStatus::kDone;
    }

    const bool mActive;
};

class DeleteVerb final : public SelectionVerb
{
public:
    explicit DeleteVerb( CLI::App& ioCommand ) : SelectionVerb( ioCommand, { "deleted", "would delete" }, kSelectAll )
    {
        AddOptions( ioCommand );
        ioCommand.footer( "A group takes its macros with it. “korvalen undo” brings everything back.\n"
                          "Example: korvalen delete --query 'enabled:no -used:52w' --kind macro --dry-run" );
    }

private:
    ExitStatus Change( const Objects& inObjects, EditReport& ioReport, Output& ioOutput ) override
    {
        const Objects objects = MacroEditing::WithoutNested( inObjects );
        for ( const MMacroSerializedObject* const object : objects )
        {
            if ( const MMacroGroup* const group = object->GetAsMacroGroup(); group and group->IsDefaultMacroGroup() )
            {
                ioOutput.Complain( fmt::format( "“{}” is the default group, which can't be deleted; nothing was; "
                                                "its macros can be deleted or moved",
                    PlaceOf( *group ) ) );
                return ExitStatus::kFailed;
            }
        }
        for ( const MMacroSerializedObject* const object : objects )
            Tell( *object, ioReport );
        ioReport.Finish( MacroEditing::UndoTitle( Edit::kDelete, objects ) );
        if ( not mDryRun )
            MacroEditing::Delete( objects );
        return ExitStatus::kDone;
    }

    static void Tell( const MMacroSerializedObject& inObject, EditReport& ioReport )
    {
        const MMacroGroup* const group = inObject.GetAsMacroGroup();
        if ( not group )
        {
            ioReport.Tell( inObject );
            return;
        }
        XMutableDictionary facts = FactsOf( inObject );
        facts.SetInteger( CFSTR( "macros" ), std::int64_t( group->GetMacroCount() ) );
        ioReport.Tell(
            inObject, fmt::format( "  (with {})", Counted( group->GetMacroCount(), "macro" ) ), std::move( facts ) );
    }
};

class MoveVerb final : public SelectionVerb
{
public:
    explicit MoveVerb( CLI::App& ioCommand ) : SelectionVerb( ioCommand, { "moved", "would move" }, kSelectMacros )
    {
        ioCommand.add_option( "--to", mGroup, "The name or UID of the group that the macros go to" )
            ->required()
            ->type_name( "GROUP" );
        AddOptions( ioCommand );
        ioCommand.footer( "Example: korvalen move \"Paste plain\" \"Paste quoted\" --to Editing" );
    }

private:
    ExitStatus Change( const Objects& inObjects, EditReport& ioReport, Output& ioOutput ) override
    {
        MMacroSerializedObject* const found = ResolveObject( mGroup, kSelectGroups, ioOutput );
        if ( not found )
            return ExitStatus::kFailed;
        MMacroGroup& group = *found->GetAsMacroGroup();
        std::vector<MMacro*> moving;
        for ( MMacroSerializedObject* const object : inObjects )
        {
            if ( object->GetAsMacro()->GetOwningGroup() != &group )
                moving.push_back( object->GetAsMacro() );
        }
        for ( const MMacro* const macro : moving )
        {
            XMutableDictionary facts = FactsOf( *macro );
            facts.SetText( CFSTR( "to" ), group.GetName() );
            ioReport.Tell( *macro, " → " + PlaceOf( group ), std::move( facts ) );
        }
        if ( const std::size_t others = inObjects.size() - moving.size() )
            ioReport.Remark( fmt::format(
                "{} in {} already", others == 1 ? "1 is" : fmt::format( "{} are", others ), PlaceOf( group ) ) );
        ioReport.Finish(
            moving.empty() ? Text() : MacroEditing::UndoTitle( Edit::kMove, Objects( moving.begin(), moving.end() ) ) );
        if ( not mDryRun )
            MacroEditing::Move( moving, group );
        return ExitStatus::kDone;
    }

    std::string mGroup;
};

class DuplicateVerb final : public SelectionVerb
{
public:
    explicit DuplicateVerb( CLI::App& ioCommand )
        : SelectionVerb( ioCommand, { "duplicated", "would duplicate" }, kSelectAll )
    {
        AddOptions( ioCommand );
        ioCommand.footer(
            "A copy gets “ copy” at the end of its name, and what was copied together and refers to each\n"
            "other does so among the copies.\n"
            "Example: korvalen duplicate \"Paste plain\"" );
    }

private:
    ExitStatus Change( const Objects& inObjects, EditReport& ioReport, Output& ) override
    {
        const Objects objects = MacroEditing::WithoutNested( inObjects );
        const Objects copies = mDryRun ? Objects() : MacroEditing::Duplicate( objects );
        for ( std::size_t i = 0; i < objects.size(); ++i )
        {
            XMutableDictionary facts = FactsOf( *objects[i] );
            std::string detail;
            if ( i < copies.size() )
            {
                facts.Set( CFSTR( "copy" ), FactsOf( *copies[i] ).Seal() );
                detail =
                    fmt::format( " → {}  {}", UTF8FromText( copies[i]->GetName() ), copies[i]->GetUID().GetUTF8() );
            }
            ioReport.Tell( *objects[i], detail, std::move( facts ) );
        }
        ioReport.Finish( MacroEditing::UndoTitle( Edit::kDuplicate, objects ) );
        return ExitStatus::kDone;
    }
};

// ---------------------------------------------------------------- rename

class RenameVerb final : public EditingVerb
{
public:
    explicit RenameVerb( CLI::App& ioCommand )
        : EditingVerb( ioCommand, { "renamed", "would rename" } ),
          mSelection( kSelectAll )
    {
        ioCommand.add_option( "NAME", mNames, "The name or UID, and the new name; with --replace names or UIDs" )
            ->type_name( "" );
        mSelection.AddOptions( ioCommand, false );
        CLI::Option* const replace =
            ioCommand.add_option( "--replace", mReplace, "Replace this text wherever it stands in the names" )
                ->type_name( "TEXT" );
        CLI::Option* const with =
            ioCommand.add_option( "--with", mWith, "What to put in its place; may be empty" )->type_name( "TEXT" );
        replace->needs( with );
        with->needs( replace );
        AddOptions( ioCommand );
        ioCommand.footer( "A macro whose new name is empty is called by its first action again.\n"
                          "Example: korvalen rename \"Paste plain\" \"Paste as Plain Text\"\n"
                          "         korvalen rename --query name:Mail --replace Mail --with Post" );
    }

private:
    using Names = std::vector<std::pair<MMacroSerializedObject*, XText>>;

    ExitStatus RunInEditor( VerbContext& ioContext ) override
    {
        Output& output = ioContext.mOutput;
        if ( const auto fault = WrongUsage() )
        {
            output.Complain( *fault );
            return ExitStatus::kWrongUsage;
        }
        mSelection.SetNames( mReplace ? mNames : std::vector{ mNames.front() } );
        const auto objects = mSelection.Resolve( output );
        return objects ? Rename( NewNames( *objects ), output ) : ExitStatus::kFailed;
    }

    [[nodiscard]] std::optional<std::string> WrongUsage() const
    {
        if ( not mReplace and ( mNames.size() != 2 or not mSelection.IsEmpty() ) )
            return "rename takes one name or UID, and the new name; for several at once use --replace and --with";
        if ( mReplace and mReplace->empty() )
            return "--replace needs a text to look for";
        if ( mReplace and mNames.empty() and mSelection.IsEmpty() )
            return "nothing is selected; give names or UIDs, or --query";
        return {};
    }

    [[nodiscard]] Names NewNames( const Objects& inObjects ) const
    {
        Names names;
        for ( MMacroSerializedObject* const object : inObjects )
        {
            const Text before = object->GetName();
            const Text after = kvr_cleanName( mReplace ? Replaced( before ) : TextFromUTF8( mNames.back() ) );
            if ( after != before )
                names.emplace_back( object, after );
        }
        return names;
    }

    [[nodiscard]] Text Replaced( Text inName ) const
    {
        const Text from = TextFromUTF8( *mReplace ), to = TextFromUTF8( *mWith );
        for ( std::size_t at = inName.find( from ); at != Text::npos; at = inName.find( from, at + to.size() ) )
            inName.replace( at, from.size(), to );
        return inName;
    }

    /// Why a thing can't have the name.
    static std::optional<std::string> WhyNot( const MMacroSerializedObject& inObject, const Text& inName )
    {
        const MMacroGroup* const group = inObject.GetAsMacroGroup();
        if ( group and group->IsDefaultMacroGroup() )
            return fmt::format( "“{}” is the default group and keeps its name", PlaceOf( inObject ) );
        if ( group and inName == DefaultGroupName() )
            return fmt::format( kDefaultNameTaken, UTF8FromText( inName ) );
        if ( inName.empty() and not inObject.GetAsMacro() )
            return fmt::format( "the {} “{}” needs a name", KindWord( inObject ), PlaceOf( inObject ) );
        return {};
    }

    ExitStatus Rename( const Names& inNames, Output& ioOutput ) const
    {
        for ( const auto& [object, name] : inNames )
        {
            if ( const auto reason = WhyNot( *object, name.GetText() ) )
            {
                ioOutput.Complain( *reason + "; nothing was renamed" );
                return ExitStatus::kFailed;
            }
        }
        EditReport report = MakeReport( ioOutput );
        Objects objects;
        for ( const auto& [object, name] : inNames )
        {
            XMutableDictionary facts = FactsOf( *object );
            facts.SetText( CFSTR( "newName" ), name );
            report.Tell( *object, " → " + name.GetUTF8(), std::move( facts ) );
            objects.push_back( object );
        }
        if ( inNames.empty() )
            report.Remark( "every name is so already" );
        report.Finish( objects.empty() ? Text() : MacroEditing::UndoTitle( Edit::kRename, objects ) );
        if ( not mDryRun )
            MacroEditing::Rename( inNames );
        return ExitStatus::kDone;
    }

    ObjectSelection mSelection;
    std::vector<std::string> mNames;
    std::optional<std::string> mReplace, mWith;
};
} // namespace

void AddEditVerbs( CLI::App& ioProgram, VerbList& ioVerbs )
{
    CLI::App& newCommand = *ioProgram.add_subcommand( "new", "Add a macro, a group or a smart group" );
    newCommand.require_subcommand( 1 );
    newCommand.footer( "Example: korvalen new macro \"Paste plain\" --group Editing" );
    ioVerbs.push_back(
        std::make_unique<NewMacroVerb>( *newCommand.add_subcommand( "macro", "Add a macro" )->group( "Verbs" ) ) );
    ioVerbs.push_back(
        std::make_unique<NewGroupVerb>( *newCommand.add_subcommand( "group", "Add a group" )->group( "Verbs" ) ) );
    ioVerbs.push_back( std::make_unique<NewSmartGroupVerb>(
        *newCommand.add_subcommand( "smart-group", "Add a smart group, which holds what its searches find" )
             ->group( "Verbs" ) ) );
    const auto command = [&ioProgram]( const char* name, const char* description ) -> CLI::App& {
        return *ioProgram.add_subcommand( name, description );
    };
    ioVerbs.push_back( std::make_unique<RenameVerb>( command( "rename", "Give macros and groups another name" ) ) );
    ioVerbs.push_back( std::make_unique<EnableVerb>( command( "enable", "Turn macros and groups on" ), true ) );
    ioVerbs.push_back( std::make_unique<EnableVerb>( command( "disable", "Turn macros and groups off" ), false ) );
    ioVerbs.push_back( std::make_unique<MoveVerb>( command( "move", "Put macros into another group" ) ) );
    ioVerbs.push_back( std::make_unique<DuplicateVerb>( command( "duplicate", "Copy macros and groups" ) ) );
    ioVerbs.push_back( std::make_unique<DeleteVerb>( command( "delete", "Delete macros and groups" ) ) );
}

// "undo", "redo" and "save" work in the editor. "status" asks a running editor, and else reads the files; "paths" only
// tells where things are. Neither of the two changes anything.
#include "App/EditorService.h"
#include "App/MacrosFile.h"
#include "App/SavedMacros.h"
#include "App/TimeText.h"
#include "App/Verb.h"
#include "Defines/KVFolderLock.h"
#include "Defines/KVNotices.h"
#include "Defines/KVPreferences.h"
#include "Defines/SetAside.h"
#include "Macros/MMacroDomain.h"
#include "Macros/MMacroPreferenceFile.h"
#include "Macros/MMacroSharing.h"
#include "MacrosWindow/MacrosWindowUndo.h"
#include "XCAF/XErrorHandler.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fmt/format.h>

namespace
{
struct Counts
{
    std::size_t mGroups = 0, mSmartGroups = 0, mMacros = 0;

    [[nodiscard]] std::string Words() const
    {
        return fmt::format( "{} in {}, {}", Counted( mMacros, "macro" ), Counted( mGroups, "group" ),
            Counted( mSmartGroups, "smart group" ) );
    }
    void AddTo( XMutableDictionary& ioFacts ) const
    {
        ioFacts.SetInteger( CFSTR( "groups" ), std::int64_t( mGroups ) );
        ioFacts.SetInteger( CFSTR( "smartGroups" ), std::int64_t( mSmartGroups ) );
        ioFacts.SetInteger( CFSTR( "macros" ), std::int64_t( mMacros ) );
    }
};

Counts CountModel()
{
    const MMacroDomain& domain = *MMacroDomain::Get();
    Counts counts{ domain.GetMacroGroupCount(), domain.GetMacroSmartGroupCount(), 0 };
    domain.DoForEveryMacroGroup( [&counts]( MMacroGroup& group ) { counts.mMacros += group.GetMacroCount(); } );
    return counts;
}

Counts CountFile( const SavedMacros& inFile )
{
    Counts counts;
    for ( const SavedObject& object : inFile.Objects() )
    {
        counts.mGroups += object.mKind == SavedObject::Kind::kGroup;
        counts.mSmartGroups += object.mKind == SavedObject::Kind::kSmartGroup;
        counts.mMacros += object.mKind == SavedObject::Kind::kMacro;
    }
    return counts;
}

// ---------------------------------------------------------------- undo, redo, save

class UndoVerb final : public EditorVerb
{
public:
    UndoVerb( CLI::App& ioCommand, bool inIsRedo ) : EditorVerb( ioCommand ), mIsRedo( inIsRedo )
    {
        ioCommand.add_flag( "--json", mJSON, "Print the facts as JSON" );
        ioCommand.footer( inIsRedo ? "Example: korvalen redo"
                                   : "One step is one edit, or several that came within a second of each other.\n"
                                     "Example: korvalen undo" );
    }

private:
    ExitStatus RunInEditor( VerbContext& ioContext ) override
    {
        // Whoever types "undo" right behind an edit wants to have it back by "redo": it has to be saved for that.
        MacrosWindowUndo::SaveAllMacrosIfNecessary();
        const auto item = mIsRedo ? MacrosWindowUndo::ValidateRedo() : MacrosWindowUndo::ValidateUndo();
        const Counts before = CountModel();
        if ( not item.mIsEnabled or not( mIsRedo ? MacrosWindowUndo::Redo() : MacrosWindowUndo::Undo() ) )
        {
            ioContext.mOutput.Complain( mIsRedo
                    ? "there is nothing to redo; an edit made after an undo takes that away"
                    : "there is nothing to undo; “korvalen revisions list” shows the earlier states" );
            return ExitStatus::kFailed;
        }
        const Counts now = CountModel();
        if ( mJSON )
        {
            XMutableDictionary facts;
            facts.SetText( CFSTR( "done" ), item.mTitle );
            now.AddTo( facts );
            ioContext.mOutput.JSON( facts.Seal() );
            return ExitStatus::kDone;
        }
        ioContext.mOutput.Text( UTF8FromText( item.mTitle ), Colour::kBold );
        ioContext.mOutput.Line( fmt::format( ": {} now{}", now.Words(), Difference( before, now ) ) );
        return ExitStatus::kDone;
    }

    static std::string Difference( const Counts& inBefore, const Counts& inNow )
    {
        if ( inNow.mMacros == inBefore.mMacros )
            return {};
        return inNow.mMacros > inBefore.mMacros
            ? fmt::format( " ({} more)", Counted( inNow.mMacros - inBefore.mMacros, "macro" ) )
            : fmt::format( " ({} fewer)", Counted( inBefore.mMacros - inNow.mMacros, "macro" ) );
    }

    const bool mIsRedo;
    bool mJSON = false;
};

class SaveVerb final : public EditorVerb
{
public:
    explicit SaveVerb( CLI::App& ioCommand ) : EditorVerb( ioCommand )
    {
        ioCommand.add_flag( "--json", mJSON, "Print the facts as JSON" );
        ioCommand.footer( "Edits are saved by themselves a second after the last one; this doesn't wait for that.\n"
                          "Example: korvalen save" );
    }

private:
    ExitStatus RunInEditor( VerbContext& ioContext ) override
    {
        const bool waits = MacrosWindowUndo::NeedSaveAllMacros();
        MacrosWindowUndo::SaveAllMacrosIfNecessary();
        MMacroPreferenceFile::WaitForQueue();
        const auto path = MMacroPreferenceFile::MacrosFilePath();
        // A write that fails is told to the user of the editor's windows, not to us.
        const auto saved = MMacroPreferenceFile::SavedData();
        const XFileContent content = ReadWholeFile( path, FileInput::kMostBytes );
        if ( content.mError or ( saved and not std::ranges::equal( content.mBytes.Span(), saved->Span() ) ) )
        {
            ioContext.mOutput.Complain( fmt::format( "the macros file {} isn't what was to be saved{}; check that the "
                                                     "disk has room and that the folder can be written",
                QuotedPath( path.native() ), content.mError ? ": " + content.mError->Describe() : "" ) );
            return ExitStatus::kFailed;
        }
        if ( not mJSON )
        {
            ioContext.mOutput.Line( waits ? "saved" : "everything was saved already" );
            return ExitStatus::kDone;
        }
        XMutableDictionary facts;
        facts.SetBoolean( CFSTR( "waited" ), waits );
        facts.SetText( CFSTR( "file" ), TextFromUTF8( path.native() ) );
        ioContext.mOutput.JSON( facts.Seal() );
        return ExitStatus::kDone;
    }

    bool mJSON = false;
};

// ---------------------------------------------------------------- status

std::optional<XAbsoluteTime> LastSave()
{
    constexpr double kSecondsFrom1970 = 978307200.0;
    XFileStatus facts;
    if ( XFileCalls::Current().GetPathFacts( MMacroPreferenceFile::MacrosFilePath(), facts ) != 0 )
        return {};
    return double( facts.mModifiedSeconds ) - kSecondsFrom1970;
}

class StatusVerb final : public Verb
{
public:
    explicit StatusVerb( CLI::App& ioCommand ) : Verb( ioCommand )
    {
        ioCommand.add_flag( "--answer", mAnswer, "Take the notices as read: they aren't shown again" );
        ioCommand.add_flag( "--json", mJSON, "Print the facts as JSON" );
        ioCommand.footer( "Without --answer nothing is changed, and no editor is started.\n"
                          "Example: korvalen status" );
    }

    ExitStatus Run( VerbContext& ioContext ) override
    {
        if ( not ioContext.mIsInEditor )
        {
            if ( const auto status = AskAnyEditor( ioContext ) )
                return *status;
        }
        Output& output = ioContext.mOutput;
        const bool hasFolder = ioContext.mIsInEditor or FolderExists();
        Tell( CFSTR( "folder" ), "Folder", KVPreferences::PlannedFolderPath().native(), output );
        const bool isSilent = not ioContext.mIsInEditor and hasFolder and KVFolderLock::IsHeldNow();
        TellFact( CFSTR( "editor" ), "Editor", ioContext.mIsInEditor or isSilent,
            isSilent ? "running, but it can't be asked: the facts are those of the file" : "running", "not running",
            output );
        if ( ioContext.mIsInEditor )
            TellModel( output );
        else if ( hasFolder )
            TellFile( output );
        else
            Remark( "Macros", "none yet: the first start makes the folder", output );
        if ( hasFolder )
        {
            TellSharing( output );
            TellNotices( output );
        }
        if ( mJSON )
            output.JSON( mFacts.Seal() );
        if ( mAnswer and hasFolder )
            KVNotices::AnswerAll();
        return ExitStatus::kDone;
    }

private:
    static bool FolderExists()
    {
        XFileStatus facts;
        return XFileCalls::Current().GetPathFacts( KVPreferences::PlannedFolderPath(), facts ) == 0;
    }

    void Remark( const char* inLabel, const std::string& inText, Output& ioOutput ) const
    {
        if ( mJSON )
            return;
        ioOutput.Text( fmt::format( "{:<10}", std::string( inLabel ) + ":" ), Colour::kBold );
        ioOutput.Line( inText );
    }
    void Tell( const XKey& inKey, const char* inLabel, const std::string& inText, Output& ioOutput )
    {
        mFacts.SetText( inKey, TextFromUTF8( inText ) );
        Remark( inLabel, inText, ioOutput );
    }
    void TellFact(
        const XKey& inKey, const char* inLabel, bool inValue, const char* inYes, const char* inNo, Output& ioOutput )
    {
        mFacts.SetBoolean( inKey, inValue );
        Remark( inLabel, inValue ? inYes : inNo, ioOutput );
    }

    void TellModel( Output& ioOutput )
    {
        TellCounts( CountModel(), ioOutput );
        TellFact( CFSTR( "unsaved" ), "Saved", MacrosWindowUndo::NeedSaveAllMacros(), "edits wait for their save",
            "everything", ioOutput );
        TellLastSave( ioOutput );
        const auto undo = MacrosWindowUndo::ValidateUndo(), redo = MacrosWindowUndo::ValidateRedo();
        if ( undo.mIsEnabled )
            Tell( CFSTR( "undo" ), "Undo", UTF8FromText( undo.mTitle ), ioOutput );
        if ( redo.mIsEnabled )
            Tell( CFSTR( "redo" ), "Redo", UTF8FromText( redo.mTitle ), ioOutput );
        if ( MMacroPreferenceFile::IsSavingLatchedOff() )
            Tell( CFSTR( "savingStopped" ), "Saving",
                "stopped, for a reload has failed: nothing is written until one succeeds; try “korvalen undo”",
                ioOutput );
    }

    void TellFile( Output& ioOutput )
    {
        try
        {
            TellCounts( CountFile( ReadPresentMacros() ), ioOutput );
        }
        catch ( const FileTrouble& trouble )
        {
            Tell( CFSTR( "trouble" ), "Macros", trouble.what(), ioOutput );
        }
        TellLastSave( ioOutput );
    }

    void TellCounts( const Counts& inCounts, Output& ioOutput )
    {
        inCounts.AddTo( mFacts );
        Remark( "Macros", inCounts.Words(), ioOutput );
    }

    void TellLastSave( Output& ioOutput )
    {
        if ( const auto time = LastSave() )
            Tell( CFSTR( "lastSave" ), "Saved at", LocalTimeText( *time ), ioOutput );
    }

    void TellSharing( Output& ioOutput )
    {
        const XText file = MMacroSharing::SharedFile();
        if ( IsEmpty( file ) )
            Remark( "Sharing", "off", ioOutput );
        else if ( MMacroPreferenceFile::IsSharingDisabledBecauseOfNewerVersion() )
            Tell( CFSTR( "sharedFile" ), "Sharing",
                file.GetUTF8() + "  (stands still: the file comes from a newer version)", ioOutput );
        else
            Tell( CFSTR( "sharedFile" ), "Sharing", file.GetUTF8(), ioOutput );
    }

    void TellNotices( Output& ioOutput )
    {
        XMutableArray list;
        for ( const KVNotices::Notice& notice : KVNotices::Unanswered() )
        {
            XMutableDictionary facts;
            facts.SetText( CFSTR( "title" ), notice.mTitle );
            facts.SetText( CFSTR( "text" ), notice.mText );
            facts.SetText( CFSTR( "time" ), TextFromUTF8( LocalTimeText( notice.mTime ) ) );
            if ( not notice.mPath.empty() )
                facts.SetText( CFSTR( "path" ), TextFromUTF8( notice.mPath.native() ) );
            list.Append( facts.Seal() );
            Remark( "Notice", fmt::format( "{}  {}", LocalTimeText( notice.mTime ), UTF8FromText( notice.mTitle ) ),
                ioOutput );
            Remark( "", UTF8FromText( notice.mText ), ioOutput );
        }
        mFacts.Set( CFSTR( "notices" ), list.Seal() );
    }

    bool mAnswer = false, mJSON = false;
    XMutableDictionary mFacts;
};

// ---------------------------------------------------------------- paths

class PathsVerb final : public Verb
{
public:
    explicit PathsVerb( CLI::App& ioCommand ) : Verb( ioCommand )
    {
        ioCommand.add_flag( "--json", mJSON, "Print the facts as JSON" );
        ioCommand.footer( "Example: korvalen paths" );
    }

    ExitStatus Run( VerbContext& ioContext ) override
    {
        Output& output = ioContext.mOutput;
        const std::filesystem::path folder = KVPreferences::PlannedFolderPath();
        const bool isGiven = KVPreferences::FolderIsGiven();
        Tell( "data folder", folder,
            isGiven ? "named by --folder or KORVALEN_HOME"
                    : "in XDG_DATA_HOME or ~/.local/share; the setting PreferenceFolderName names it",
            output );
        for ( const auto& [name, file, why] : kDataFiles )
            Tell( name, folder / file, why, output );
        const std::filesystem::path configuration = KVPreferences::ConfigurationFolder();
        Tell( "settings", configuration,
            isGiven ? "the data folder, as that is named" : "in XDG_CONFIG_HOME or ~/.config", output );
        for ( const std::string_view domain :
            { KVPreferences::kEditorDomain, KVPreferences::kEngineDomain, KVPreferences::kLicenceDomain } )
            Tell( "settings file", configuration / ( std::string( domain ) + ".plist" ), "one of the three domains",
                output );
        // Asking the log makes its folder.
        Tell( "log", isGiven ? folder / "Logs" : XErrorHandler::LogsFolder(),
            isGiven ? "in the data folder, as that is named" : "the user's folder for logs", output );
        if ( const XText file = MMacroSharing::SharedFile(); not IsEmpty( file ) )
            Tell( "shared file", file.GetUTF8(), "the setting MacroSharingFile", output );
        if ( mJSON )
            output.JSON( mFacts.Seal() );
        return ExitStatus::kDone;
    }

private:
    static constexpr struct
    {
        const char *mName, *mFile, *mWhy;
    } kDataFiles[] = {
        { "macros file", "Korvalen Macros.plist", "all groups and macros" },
        { "revisions", "Revisions Version 9", "a state of each day, and before some events" },
        { "older revisions", "Revisions Version 8", "read once, to take them over" },
        { "set aside", "Set Aside", "what was kept before it was replaced, and every saved state" },
        { "overrides", "Korvalen Enable Overrides", "what the engine turned on or off" },
        { "incoming share", "Korvalen Macros From Shared.plist", "where the engine puts what it fetched" },
        { "notices", "Korvalen Notices.plist", "what you haven't answered yet" },
        { "editor's lock", ".Korvalen Editor Lock", "held by the editor of this folder" },
    };

    void Tell( const char* inName, const std::filesystem::path& inPath, const char* inWhy, Output& ioOutput )
    {
        XFileStatus facts;
        const bool exists = XFileCalls::Current().GetPathFacts( inPath, facts ) == 0;
        if ( not mJSON )
        {
            ioOutput.Text( fmt::format( "{:<16}", inName ), Colour::kBold );
            ioOutput.Text( inPath.native() );
            ioOutput.Text( exists ? "" : "  (not there)", Colour::kYellow );
            ioOutput.EndLine();
            ioOutput.Line( fmt::format( "{:<16}{}", "", inWhy ) );
            return;
        }
        XMutableDictionary fact;
        fact.SetText( CFSTR( "name" ), TextFromUTF8( inName ) );
        fact.SetText( CFSTR( "path" ), TextFromUTF8( inPath.native() ) );
        fact.SetText( CFSTR( "why" ), TextFromUTF8( inWhy ) );
        fact.SetBoolean( CFSTR( "exists" ), exists );
        mFacts.Append( fact.Seal() );
    }

    bool mJSON = false;
    XMutableArray mFacts;
};
} // namespace

void AddStatusVerbs( CLI::App& ioProgram, VerbList& ioVerbs )
{
    const auto command = [&ioProgram]( const char* name, const char* description ) -> CLI::App& {
        return *ioProgram.add_subcommand( name, description );
    };
    ioVerbs.push_back( std::make_unique<UndoVerb>( command( "undo", "Take the last edit back" ), false ) );
    ioVerbs.push_back( std::make_unique<UndoVerb>( command( "redo", "Make an edit again that was undone" ), true ) );
    ioVerbs.push_back( std::make_unique<SaveVerb>( command( "save", "Write edits that wait for their save" ) ) );
    ioVerbs.push_back(
        std::make_unique<StatusVerb>( command( "status", "Tell what is loaded, waits or went wrong" ) ) );
    ioVerbs.push_back( std::make_unique<PathsVerb>( command( "paths", "Tell every path in use, and why" ) ) );
}

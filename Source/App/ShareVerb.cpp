// "share": one macros file for several computers.
#include "App/EditorService.h"
#include "App/Verb.h"
#include "Macros/MMacroPreferenceFile.h"
#include "Macros/MMacroSharing.h"
#include "MacrosWindow/MacrosWindowUndo.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace
{
/// True, with a sentence, when sharing is on already: a second one would end the first without a word.
bool ComplainOfSharing( Output& ioOutput )
{
    if ( MMacroSharing::IsSharing() )
        ioOutput.Complain( fmt::format( "macros are shared already, with {}; stop that first: korvalen share stop",
            QuotedPath( MMacroSharing::SharedFile().GetUTF8() ) ) );
    return MMacroSharing::IsSharing();
}

/// What every verb that changes sharing tells.
ExitStatus TellSharing( const std::string& inPath, bool inIsSharing, bool inAsJSON, Output& ioOutput )
{
    if ( inAsJSON )
    {
        XMutableDictionary facts;
        facts.SetBoolean( CFSTR( "sharing" ), inIsSharing );
        facts.SetText( CFSTR( "file" ), TextFromUTF8( inPath ) );
        ioOutput.JSON( facts.Seal() );
    }
    else
        ioOutput.Line( ( inIsSharing ? "sharing " : "no longer sharing " ) + inPath );
    return ExitStatus::kDone;
}

class ShareCreateVerb final : public EditorVerb
{
public:
    explicit ShareCreateVerb( CLI::App& ioCommand ) : EditorVerb( ioCommand )
    {
        ioCommand.add_option( "PATH", mPath, "The file to make, on a disk that the other computers reach" )
            ->required()
            ->type_name( "" );
        ioCommand.add_flag( "--replace", mReplace, "Write over a file that is there" );
        ioCommand.add_flag( "--json", mJSON, "Print the facts as JSON" );
        ioCommand.footer( "Example: korvalen share create /mnt/team/Macros.kvsync" );
    }

private:
    ExitStatus RunInEditor( VerbContext& ioContext ) override
    {
        Output& output = ioContext.mOutput;
        const std::string path = ioContext.Resolve( mPath );
        if ( ComplainOfSharing( output ) )
            return ExitStatus::kFailed;
        XFileStatus facts;
        if ( not mReplace and XFileCalls::Current().GetLinkFacts( path, facts ) == 0 )
        {
            output.Complain( fmt::format( "{} is there already; “korvalen share join” takes its macros, and --replace "
                                          "writes over it",
                QuotedPath( path ) ) );
            return ExitStatus::kFailed;
        }
        MacrosWindowUndo::SaveAllMacrosIfNecessary();
        if ( not MMacroSharing::StartSharingCreate( path ) )
        {
            output.Complain(
                fmt::format( "{} couldn't be written, so nothing is shared; check the folder and your permissions",
                    QuotedPath( path ) ) );
            return ExitStatus::kFailed;
        }
        return TellSharing( path, true, mJSON, output );
    }

    std::string mPath;
    bool mReplace = false, mJSON = false;
};

class ShareJoinVerb final : public EditorVerb
{
public:
    explicit ShareJoinVerb( CLI::App& ioCommand ) : EditorVerb( ioCommand )
    {
        ioCommand.add_option( "PATH", mPath, "The file that another computer shares" )->required()->type_name( "" );
        ioCommand.add_flag( "--json", mJSON, "Print the facts as JSON" );
        ioCommand.footer( "Its macros take the place of yours, of which a copy is set aside.\n"
                          "Example: korvalen share join /mnt/team/Macros.kvsync" );
    }

private:
    ExitStatus RunInEditor( VerbContext& ioContext ) override
    {
        Output& output = ioContext.mOutput;
        const std::string path = ioContext.Resolve( mPath );
        if ( ComplainOfSharing( output ) )
            return ExitStatus::kFailed;
        MacrosWindowUndo::SaveAllMacrosIfNecessary();
        const Text trouble = MMacroSharing::StartSharingOpen( path );
        if ( not trouble.empty() )
        {
            output.Complain(
                fmt::format( "{} can't be shared, and your macros are as they were: {}; check that another "
                             "computer shares this file, or begin with “korvalen share create”",
                    QuotedPath( path ), UTF8FromText( trouble ) ) );
            return ExitStatus::kFailed;
        }
        return TellSharing( path, true, mJSON, output );
    }

    std::string mPath;
    bool mJSON = false;
};

class ShareStopVerb final : public EditorVerb
{
public:
    explicit ShareStopVerb( CLI::App& ioCommand ) : EditorVerb( ioCommand )
    {
        ioCommand.add_flag( "--json", mJSON, "Print the facts as JSON" );
        ioCommand.footer( "Your macros and the file stay as they are.\nExample: korvalen share stop" );
    }

private:
    ExitStatus RunInEditor( VerbContext& ioContext ) override
    {
        if ( not MMacroSharing::IsSharing() )
        {
            ioContext.mOutput.Complain( "nothing is shared, so there is nothing to stop" );
            return ExitStatus::kFailed;
        }
        const std::string path = MMacroSharing::SharedFile().GetUTF8();
        // What waits belongs to the shared macros still.
        MacrosWindowUndo::SaveAllMacrosIfNecessary();
        MMacroPreferenceFile::WaitForQueue();
        MMacroSharing::StopSharing();
        return TellSharing( path, false, mJSON, ioContext.mOutput );
    }

    bool mJSON = false;
};

class ShareStatusVerb final : public Verb
{
public:
    explicit ShareStatusVerb( CLI::App& ioCommand ) : Verb( ioCommand )
    {
        ioCommand.add_flag( "--json", mJSON, "Print the facts as JSON" );
        ioCommand.footer( "Example: korvalen share status" );
    }

    ExitStatus Run( VerbContext& ioContext ) override
    {
        // Only a running editor knows whether sharing stands still.
        if ( not ioContext.mIsInEditor )
        {
            if ( const auto status = AskAnyEditor( ioContext ) )
                return *status;
        }
        const XText file = MMacroSharing::SharedFile();
        const bool isSharing = not IsEmpty( file );
        const bool standsStill = MMacroPreferenceFile::IsSharingDisabledBecauseOfNewerVersion();
        XFileStatus facts;
        const bool exists = isSharing and XFileCalls::Current().GetPathFacts( file.GetUTF8(), facts ) == 0;
        if ( mJSON )
        {
            XMutableDictionary value;
            value.SetBoolean( CFSTR( "sharing" ), isSharing );
            if ( isSharing )
            {
                value.SetText( CFSTR( "file" ), file );
                value.SetBoolean( CFSTR( "exists" ), exists );
                value.SetBoolean( CFSTR( "newerVersion" ), standsStill );
            }
            ioContext.mOutput.JSON( value.Seal() );
        }
        else if ( not isSharing )
            ioContext.mOutput.Line( "nothing is shared" );
        else
            ioContext.mOutput.Line( "sharing " + file.GetUTF8() +
                ( not exists          ? "  (not reachable now)"
                        : standsStill ? "  (stands still: the file comes from a newer version)"
                                      : "" ) );
        return ExitStatus::kDone;
    }

private:
    bool mJSON = false;
};
} // namespace

void AddShareVerb( CLI::App& ioProgram, VerbList& ioVerbs )
{
    CLI::App& share = *ioProgram.add_subcommand( "share", "Use one macros file on several computers" );
    share.require_subcommand( 1 );
    share.footer( "Example: korvalen share join /mnt/team/Macros.kvsync" );
    const auto command = [&share]( const char* name, const char* description ) -> CLI::App& {
        return *share.add_subcommand( name, description )->group( "Verbs" );
    };
    ioVerbs.push_back( std::make_unique<ShareCreateVerb>( command( "create", "Begin with your macros" ) ) );
    ioVerbs.push_back( std::make_unique<ShareJoinVerb>( command( "join", "Take the macros of a shared file" ) ) );
    ioVerbs.push_back( std::make_unique<ShareStopVerb>( command( "stop", "Go on with macros of your own" ) ) );
    ioVerbs.push_back( std::make_unique<ShareStatusVerb>( command( "status", "Tell whether macros are shared" ) ) );
}

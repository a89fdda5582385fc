// "check": what files hold, and everything that a load and a save would change in them.
#include "App/MacrosFile.h"
#include "App/Verb.h"
#include "XCAF/XException.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fmt/format.h>

namespace
{
constexpr XKey kFileKey{ "file" };

std::string KindList( const std::map<std::string, std::size_t>& inCounts )
{
    std::vector<std::pair<std::string, std::size_t>> sorted( inCounts.begin(), inCounts.end() );
    std::stable_sort(
        sorted.begin(), sorted.end(), []( const auto& a, const auto& b ) { return a.second > b.second; } );
    std::string text;
    for ( const auto& [name, count] : sorted )
        text += fmt::format( "{}{} {}", text.empty() ? "" : ", ", count, name );
    return text;
}

__SafeCFPropertyList CountsAsValue( const std::map<std::string, std::size_t>& inCounts )
{
    XMutableDictionary dictionary;
    for ( const auto& [name, count] : inCounts )
        dictionary.SetInteger( XKey( name ), std::int64_t( count ) );
    return dictionary.Seal();
}

class CheckVerb final : public Verb
{
public:
    explicit CheckVerb( CLI::App& ioCommand ) : Verb( ioCommand )
    {
        ioCommand.add_option( "FILE", mPaths, "Macros files, kvmacros, kvactions or kvlibrary; “-” is standard input" )
            ->required()
            ->type_name( "" );
        ioCommand.add_flag( "--json", mJSON, "Print the facts as JSON" );
        ioCommand.footer( "Reports what a file holds, and all that loading and saving it would change. Marks:\n"
                          "! would be lost; ~ would be written otherwise, with nothing lost. Status 1 for a !.\n"
                          "Example: korvalen check \"Korvalen Macros.plist\"" );
    }

    ExitStatus Run( VerbContext& ioContext ) override
    {
        ExitStatus status = ExitStatus::kDone;
        XMutableArray facts;
        for ( const std::string& path : mPaths )
        {
            try
            {
                const MacrosFileInput file = ReadMacrosFile( ioContext.mInput, path );
                MFileCheck check = CheckFile( file.mInput.mValue );
                AddNotes( file.mInput, check );
                if ( check.LosesSomething() )
                    status = ExitStatus::kFailed;
                if ( mJSON )
                    facts.Append( AsValue( path, file, check ) );
                else
                    Print( path, file, check, ioContext.mOutput );
            }
            catch ( const FileTrouble& trouble )
            {
                status = Failed( path, trouble.what(), facts, ioContext.mOutput );
            }
            catch ( const XException& exception )
            {
                status = Failed( path,
                    fmt::format( "{} can't be loaded: {}; “korvalen plist print” shows what it holds",
                        QuotedPath( path ), exception.what() ),
                    facts, ioContext.mOutput );
            }
        }
        if ( mJSON )
            ioContext.mOutput.JSON( facts.Seal() );
        return status;
    }

private:
    // What the bytes hold and the value doesn't is lost before loading begins.
    static void AddNotes( const PropertyListInput& inInput, MFileCheck& ioCheck )
    {
        for ( const XPlistNote& note : inInput.mNotes )
            ioCheck.mFindings.insert( ioCheck.mFindings.begin(),
                { MFinding::Rule::kDropped, true, {}, {},
                    TextFromUTF8( fmt::format( "{}, at byte {}", note.mMessage, note.mOffset ) ) } );
    }

    ExitStatus Failed(
        const std::string& inPath, const std::string& inSentence, XMutableArray& ioFacts, Output& ioOutput ) const
    {
        ioOutput.Complain( inSentence );
        XMutableDictionary fact;
        fact.SetText( kFileKey, TextFromUTF8( inPath ) );
        fact.SetText( CFSTR( "fault" ), TextFromUTF8( inSentence ) );
        ioFacts.Append( fact.Seal() );
        return ExitStatus::kFailed;
    }

    static void Print(
        const std::string& inPath, const MacrosFileInput& inFile, const MFileCheck& inCheck, Output& ioOutput )
    {
        const MFileContents& contents = inCheck.mContents;
        ioOutput.Line( fmt::format( "{}: {}, {}", inPath == "-" ? "standard input" : inPath, NameOf( inCheck.mKind ),
                           NameOf( inFile.mInput.mFormat ) ),
            Colour::kBold );
        if ( inCheck.mKind != MFileKind::kActionsExport )
            ioOutput.Line( fmt::format( "  {}, {}, {}", Counted( contents.mGroups, "group" ),
                Counted( contents.mSmartGroups, "smart group" ), Counted( contents.mMacros, "macro" ) ) );
        if ( contents.mTriggers > 0 )
            ioOutput.Line( fmt::format(
                "  {}: {}", Counted( contents.mTriggers, "trigger" ), KindList( contents.mTriggersByKind ) ) );
        ioOutput.Line( fmt::format( "  {}{}{}", Counted( contents.mActions, "action" ), contents.mActions ? ": " : "",
            KindList( contents.mActionsByType ) ) );

        const auto losses = std::size_t( std::ranges::count_if( inCheck.mFindings, &MFinding::mIsLoss ) );
        const std::size_t others = inCheck.mFindings.size() - losses;
        for ( const bool isLoss : { true, false } )
        {
            for ( const MFinding& finding : inCheck.mFindings )
            {
                if ( finding.mIsLoss == isLoss )
                    PrintFinding( finding, ioOutput );
            }
        }
        if ( inCheck.mFindings.empty() )
            ioOutput.Line( "Loading and saving it would change nothing.", Colour::kGreen );
        else if ( losses > 0 )
            ioOutput.Line( fmt::format( "Loading and saving it would lose {}{}.", Counted( losses, "thing" ),
                               others ? ", and write " + Counted( others, "thing" ) + " otherwise" : "" ),
                Colour::kRed );
        else
            ioOutput.Line( fmt::format( "Loading and saving it would lose nothing, and write {} otherwise.",
                               Counted( others, "thing" ) ),
                Colour::kYellow );
    }

    static void PrintFinding( const MFinding& inFinding, Output& ioOutput )
    {
        ioOutput.Text( inFinding.mIsLoss ? "  ! " : "  ~ ", inFinding.mIsLoss ? Colour::kRed : Colour::kYellow );
        std::string place = UTF8FromText( inFinding.mPath );
        if ( not inFinding.mKey.empty() )
            place += ( place.empty() ? "" : " · " ) + UTF8FromText( inFinding.mKey );
        ioOutput.Line( fmt::format( "{}{}{} ({})", place, place.empty() ? "" : ": ", UTF8FromText( inFinding.mText ),
            NameOf( inFinding.mRule ) ) );
    }

    static __SafeCFPropertyList AsValue(
        const std::string& inPath, const MacrosFileInput& inFile, const MFileCheck& inCheck )
    {
        XMutableArray findings;
        for ( const MFinding& finding : inCheck.mFindings )
        {
            XMutableDictionary fact;
            fact.SetText( CFSTR( "rule" ), TextFromASCII( NameOf( finding.mRule ) ) );
            fact.SetBoolean( CFSTR( "loss" ), finding.mIsLoss );
            fact.SetText( CFSTR( "path" ), finding.mPath );
            fact.SetText( CFSTR( "key" ), finding.mKey );
            fact.SetText( CFSTR( "text" ), finding.mText );
            findings.Append( fact.Seal() );
        }
        const MFileContents& contents = inCheck.mContents;
        XMutableDictionary facts;
        facts.SetText( kFileKey, TextFromUTF8( inPath ) );
        facts.SetText( CFSTR( "kind" ), TextFromASCII( NameOf( inCheck.mKind ) ) );
        facts.SetText( CFSTR( "format" ), TextFromASCII( NameOf( inFile.mInput.mFormat ) ) );
        facts.SetInteger( CFSTR( "groups" ), std::int64_t( contents.mGroups ) );
        facts.SetInteger( CFSTR( "smartGroups" ), std::int64_t( contents.mSmartGroups ) );
        facts.SetInteger( CFSTR( "macros" ), std::int64_t( contents.mMacros ) );
        facts.SetInteger( CFSTR( "triggers" ), std::int64_t( contents.mTriggers ) );
        facts.SetInteger( CFSTR( "actions" ), std::int64_t( contents.mActions ) );
        facts.Set( CFSTR( "triggersByKind" ), CountsAsValue( contents.mTriggersByKind ) );
        facts.Set( CFSTR( "actionsByType" ), CountsAsValue( contents.mActionsByType ) );
        facts.SetBoolean( CFSTR( "losesSomething" ), inCheck.LosesSomething() );
        facts.Set( CFSTR( "findings" ), findings.Seal() );
        return facts.Seal();
    }

    std::vector<std::string> mPaths;
    bool mJSON = false;
};
} // namespace

void AddCheckVerb( CLI::App& ioProgram, VerbList& ioVerbs )
{
    CLI::App* const command =
        ioProgram.add_subcommand( "check", "Report what files hold, and all that a load and save would change" );
    command->group( "Verbs" );
    ioVerbs.push_back( std::make_unique<CheckVerb>( *command ) );
}

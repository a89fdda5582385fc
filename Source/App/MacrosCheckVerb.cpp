// "check": what files hold, and everything that a load and a save would change in them.
#include "App/CheckSARIF.h"
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

enum class CheckFormat { kText, kJSON, kSARIF };

// A validator for identifiers of rules: what it returns is the complaint.
std::string ComplaintAboutRule( const std::string& inID )
{
    if ( MLoadRuleNamed( inID ) )
        return {};
    std::string near;
    for ( const std::string& id : MLoadRulesNear( inID ) )
        near += fmt::format( "{}“{}”", near.empty() ? "; near it " : ", ", id );
    return fmt::format( "there is no rule “{}”{}; “korvalen check --rules” lists all", inID, near );
}

class CheckVerb final : public Verb
{
public:
    explicit CheckVerb( CLI::App& ioCommand ) : Verb( ioCommand )
    {
        CLI::Option* const files = ioCommand.add_option(
            "FILE", mPaths, "Macros files, kvmacros, kvactions or kvlibrary; “-” is standard input" );
        files->type_name( "" );
        ioCommand.add_flag( "--rules", mListsRules, "List the rules that findings go by, instead of checking" )
            ->excludes( files );
        ioCommand
            .add_option( "--ignore", mIgnored, "Leave out what goes by a rule; repeatable, or with commas between" )
            ->type_name( "ID" )
            ->delimiter( ',' )
            ->allow_extra_args( false )
            ->check( CLI::Validator( ComplaintAboutRule, "" ) );
        CLI::Option* const format = ioCommand.add_option( "--format", mFormatName, "text, json or sarif (2.1.0)" );
        format->type_name( "FORMAT" )->check( CLI::IsMember( { "text", "json", "sarif" } ).description( "" ) );
        ioCommand.add_flag( "--json", mJSON, "The same as --format json" )->excludes( format );
        ioCommand.callback( [this] {
            if ( mPaths.empty() and not mListsRules )
                throw CLI::RequiredError( "FILE" );
        } );
        ioCommand.footer( "Reports what a file holds, and all that loading and saving it would change. Marks:\n"
                          "! would be lost; ~ would be written otherwise, with nothing lost. Each finding ends with\n"
                          "the rule that it goes by; rules are errors, warnings or notes. Status: 0 nothing would be\n"
                          "lost; 1 something would, or a file can't be checked. What is ignored doesn't count.\n"
                          "Example: korvalen check --ignore older-key \"Korvalen Macros.plist\"" );
    }

    ExitStatus Run( VerbContext& ioContext ) override
    {
        const CheckFormat format = Format();
        if ( mListsRules )
        {
            ListRules( format, ioContext.mOutput );
            return ExitStatus::kDone;
        }
        ExitStatus status = ExitStatus::kDone;
        for ( const std::string& path : mPaths )
        {
            if ( not CheckOne( path, format, ioContext ) )
                status = ExitStatus::kFailed;
        }
        if ( format == CheckFormat::kJSON )
            ioContext.mOutput.JSON( mFacts.Seal() );
        else if ( format == CheckFormat::kSARIF )
            ioContext.mOutput.JSON( mSARIF.Take() );
        return status;
    }

private:
    [[nodiscard]] CheckFormat Format() const
    {
        return mJSON or mFormatName == "json" ? CheckFormat::kJSON
            : mFormatName == "sarif"          ? CheckFormat::kSARIF
                                              : CheckFormat::kText;
    }

    // Whether it could be checked and would lose nothing.
    bool CheckOne( const std::string& inPath, CheckFormat inFormat, VerbContext& ioContext )
    {
        try
        {
            const MacrosFileInput file = ReadMacrosFile( ioContext.mInput, inPath );
            MFileCheck check = CheckFile( file.mInput.mValue );
            AddNotes( file.mInput, check );
            const std::size_t all = check.mFindings.size();
            std::erase_if( check.mFindings, [this]( const MFinding& finding ) {
                return std::ranges::find( mIgnored, RowOf( finding.mRule ).mID ) != mIgnored.end();
            } );
            if ( inFormat == CheckFormat::kJSON )
                mFacts.Append( AsValue( inPath, file, check ) );
            else if ( inFormat == CheckFormat::kSARIF )
                mSARIF.AddFindings( inPath, check );
            else
                Print( inPath, file, check, all - check.mFindings.size(), ioContext.mOutput );
            return not check.LosesSomething();
        }
        catch ( const FileTrouble& trouble )
        {
            Failed( inPath, trouble.what(), ioContext.mOutput );
        }
        catch ( const XException& exception )
        {
            Failed( inPath,
                fmt::format( "{} can't be loaded: {}; “korvalen plist print” shows what it holds", QuotedPath( inPath ),
                    exception.what() ),
                ioContext.mOutput );
        }
        return false;
    }

    // What the bytes hold and the value doesn't is lost before loading begins.
    static void AddNotes( const PropertyListInput& inInput, MFileCheck& ioCheck )
    {
        for ( const XPlistNote& note : inInput.mNotes )
            ioCheck.mFindings.insert( ioCheck.mFindings.begin(),
                { MLoadRule::kNotInValue, {}, {},
                    TextFromUTF8( fmt::format( "{}, at byte {}", note.mMessage, note.mOffset ) ) } );
    }

    void Failed( const std::string& inPath, const std::string& inSentence, Output& ioOutput )
    {
        ioOutput.Complain( inSentence );
        mSARIF.AddFailure( inPath, inSentence );
        XMutableDictionary fact;
        fact.SetText( kFileKey, TextFromUTF8( inPath ) );
        fact.SetText( CFSTR( "fault" ), TextFromUTF8( inSentence ) );
        mFacts.Append( fact.Seal() );
    }

    void ListRules( CheckFormat inFormat, Output& ioOutput )
    {
        if ( inFormat == CheckFormat::kSARIF )
            ioOutput.JSON( mSARIF.Take() );
        else if ( inFormat == CheckFormat::kJSON )
            ioOutput.JSON( RulesAsValue() );
        else
            PrintRules( ioOutput );
    }

    static __SafeCFPropertyList RulesAsValue()
    {
        XMutableArray rules;
        for ( const MLoadRuleRow& row : MLoadRules() )
        {
            XMutableDictionary rule;
            rule.SetText( CFSTR( "rule" ), TextFromASCII( row.mID ) );
            rule.SetText( CFSTR( "severity" ), TextFromASCII( NameOf( row.mSeverity ) ) );
            rule.SetBoolean( CFSTR( "loss" ), row.mLoses );
            rule.SetText( CFSTR( "explanation" ), TextFromASCII( row.mExplanation ) );
            rules.Append( rule.Seal() );
        }
        return rules.Seal();
    }

    static void PrintRules( Output& ioOutput )
    {
        for ( const MLoadRuleRow& row : MLoadRules() )
        {
            ioOutput.Text( row.mLoses ? "! " : "~ ", row.mLoses ? Colour::kRed : Colour::kYellow );
            ioOutput.Text( fmt::format( "{:<27} ", row.mID ), Colour::kBold );
            ioOutput.Line( fmt::format( "{:<8} {}", NameOf( row.mSeverity ), row.mExplanation ) );
        }
    }

    static void Print( const std::string& inPath, const MacrosFileInput& inFile, const MFileCheck& inCheck,
        std::size_t inIgnored, Output& ioOutput )
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

        for ( const bool isLoss : { true, false } )
        {
            for ( const MFinding& finding : inCheck.mFindings )
            {
                if ( finding.IsLoss() == isLoss )
                    PrintFinding( finding, ioOutput );
            }
        }
        PrintSum( inCheck, inIgnored, ioOutput );
    }

    static void PrintSum( const MFileCheck& inCheck, std::size_t inIgnored, Output& ioOutput )
    {
        const auto losses = std::size_t( std::ranges::count_if( inCheck.mFindings, &MFinding::IsLoss ) );
        const std::size_t others = inCheck.mFindings.size() - losses;
        const std::string ignored = inIgnored ? fmt::format( " ({} ignored)", Counted( inIgnored, "finding" ) ) : "";
        if ( inCheck.mFindings.empty() )
            ioOutput.Line(
                fmt::format( "Loading and saving it would change nothing{}.", inIgnored ? " else" + ignored : "" ),
                Colour::kGreen );
        else if ( losses > 0 )
            ioOutput.Line( fmt::format( "Loading and saving it would lose {}{}{}.", Counted( losses, "thing" ),
                               others ? ", and write " + Counted( others, "thing" ) + " otherwise" : "", ignored ),
                Colour::kRed );
        else
            ioOutput.Line( fmt::format( "Loading and saving it would lose nothing{}, and write {} otherwise{}.",
                               inIgnored ? " else" : "", Counted( others, "thing" ), ignored ),
                Colour::kYellow );
    }

    static void PrintFinding( const MFinding& inFinding, Output& ioOutput )
    {
        ioOutput.Text( inFinding.IsLoss() ? "  ! " : "  ~ ", inFinding.IsLoss() ? Colour::kRed : Colour::kYellow );
        std::string place = UTF8FromText( inFinding.mPath );
        if ( not inFinding.mKey.empty() )
            place += ( place.empty() ? "" : " · " ) + UTF8FromText( inFinding.mKey );
        ioOutput.Line( fmt::format( "{}{}{} ({})", place, place.empty() ? "" : ": ", UTF8FromText( inFinding.mText ),
            RowOf( inFinding.mRule ).mID ) );
    }

    static __SafeCFPropertyList AsValue(
        const std::string& inPath, const MacrosFileInput& inFile, const MFileCheck& inCheck )
    {
        XMutableArray findings;
        for ( const MFinding& finding : inCheck.mFindings )
        {
            XMutableDictionary fact;
            const MLoadRuleRow& row = RowOf( finding.mRule );
            fact.SetText( CFSTR( "rule" ), TextFromASCII( row.mID ) );
            fact.SetText( CFSTR( "severity" ), TextFromASCII( NameOf( row.mSeverity ) ) );
            fact.SetBoolean( CFSTR( "loss" ), row.mLoses );
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
    std::vector<std::string> mIgnored;
    std::string mFormatName;
    bool mJSON = false, mListsRules = false;
    XMutableArray mFacts; ///< of all files, for JSON
    CheckSARIF mSARIF;
};
} // namespace

void AddCheckVerb( CLI::App& ioProgram, VerbList& ioVerbs )
{
    CLI::App* const command =
        ioProgram.add_subcommand( "check", "Report what files hold, and all that a load and save would change" );
    command->group( "Verbs" );
    ioVerbs.push_back( std::make_unique<CheckVerb>( *command ) );
}

// "list", "show" and "convert": a macros file as people look at it, and as the next save would write it.
#include "Actions/HActionList.h"
#include "App/MacroOutline.h"
#include "App/MacrosFile.h"
#include "App/Verb.h"
#include "Macros/MMacro.h"
#include "Utility/Text/TextCompare.h"
#include "XCAF/XException.h"
#include "XCAF/XFileWriting.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fmt/format.h>

namespace
{
class ListVerb final : public Verb
{
public:
    explicit ListVerb( CLI::App& ioCommand ) : Verb( ioCommand )
    {
        ioCommand.add_option( "FILE", mPath, "A macros file, kvmacros or kvlibrary; “-” is standard input" )
            ->required()
            ->type_name( "" );
        ioCommand
            .add_option( "QUERY", mQuery, "Only what has each of these words in its name, or in that of its group" )
            ->type_name( "" );
        ioCommand.add_flag( "--groups", mGroups, "Only groups" );
        ioCommand.add_flag( "--macros", mMacros, "Only macros, a line each with their group" );
        ioCommand.add_flag( "--smart-groups", mSmartGroups, "Only smart groups" );
        ioCommand.add_flag( "--json", mJSON, "Print the facts as JSON" );
        ioCommand.footer( "Example: korvalen list \"Korvalen Macros.plist\" paste" );
    }

    ExitStatus Run( VerbContext& ioContext ) override
    {
        const LoadedMacros file( ioContext.mInput, mPath );
        const bool wantsAll = not mGroups and not mMacros and not mSmartGroups;
        XMutableArray facts;
        if ( wantsAll or mSmartGroups )
        {
            for ( const MMacroSmartGroup* const smartGroup : file.GetSmartGroups() )
            {
                if ( Matches( smartGroup->GetName() ) )
                    Tell( *smartGroup,
                        fmt::format( "  (smart group, {})",
                            Counted( smartGroup->GetSearchStrings().size(), "search", "searches" ) ),
                        facts, ioContext.mOutput );
            }
        }
        for ( const MMacroGroup* const group : file.GetGroups() )
            ListGroup( *group, wantsAll, facts, ioContext.mOutput );
        if ( mJSON )
            ioContext.mOutput.JSON( facts.Seal() );
        else if ( mTold == 0 )
            ioContext.mOutput.Complain( fmt::format( "nothing in {} {}", QuotedPath( mPath ),
                mQuery.empty() ? "is of that kind" : "has all of these words in its name" ) );
        return ExitStatus::kDone;
    }

private:
    [[nodiscard]] bool Matches( const Text& inName, const Text& inGroupName = {} ) const
    {
        return std::ranges::all_of( mQuery, [&]( const std::string& word ) {
            const Text text = TextFromUTF8( word );
            return kvr_caseInsensitiveContainsString( inName, text ) or
                kvr_caseInsensitiveContainsString( inGroupName, text );
        } );
    }

    void ListGroup( const MMacroGroup& inGroup, bool inWantsAll, XMutableArray& ioFacts, Output& ioOutput )
    {
        std::vector<const MMacro*> macros;
        for ( const MMacro* const macro : LoadedMacros::GetMacros( inGroup ) )
        {
            if ( Matches( macro->GetName(), inGroup.GetName() ) )
                macros.push_back( macro );
        }
        const bool groupMatches = Matches( inGroup.GetName() );
        if ( ( inWantsAll and ( groupMatches or not macros.empty() ) ) or ( mGroups and groupMatches ) )
            Tell( inGroup, fmt::format( "  ({})", Counted( inGroup.GetMacroCount(), "macro" ) ), ioFacts, ioOutput );
        if ( not inWantsAll and not mMacros )
            return;
        for ( const MMacro* const macro : macros )
            TellMacro( *macro, inWantsAll, ioFacts, ioOutput );
    }

    void Tell(
        const MMacroSerializedObject& inObject, const std::string& inDetail, XMutableArray& ioFacts, Output& ioOutput )
    {
        ++mTold;
        if ( mJSON )
        {
            ioFacts.Append( Facts( inObject ).Seal() );
            return;
        }
        ioOutput.Text( UTF8FromText( inObject.GetName() ), Colour::kBold );
        ioOutput.Text( inDetail );
        ioOutput.Line( inObject.IsActive() ? "" : " (disabled)", Colour::kYellow );
    }

    void TellMacro( const MMacro& inMacro, bool inTree, XMutableArray& ioFacts, Output& ioOutput )
    {
        ++mTold;
        const std::size_t triggers = inMacro.GetTriggerList().GetCount();
        const auto actions = std::size_t( inMacro.GetActionList()->GetCount() );
        if ( mJSON )
        {
            XMutableDictionary facts = Facts( inMacro );
            facts.SetText( CFSTR( "group" ), inMacro.GetOwningGroup()->GetName() );
            facts.SetInteger( CFSTR( "triggers" ), std::int64_t( triggers ) );
            facts.SetInteger( CFSTR( "actions" ), std::int64_t( actions ) );
            ioFacts.Append( facts.Seal() );
            return;
        }
        ioOutput.Text( inTree ? "    " + UTF8FromText( inMacro.GetName() ) : PlaceOf( inMacro ) );
        ioOutput.Text( fmt::format( "  ({}, {})", Counted( triggers, "trigger" ), Counted( actions, "action" ) ) );
        ioOutput.Line( inMacro.IsActive() ? "" : " (disabled)", Colour::kYellow );
    }

    static XMutableDictionary Facts( const MMacroSerializedObject& inObject )
    {
        XMutableDictionary facts;
        facts.SetText( CFSTR( "kind" ), inObject.SerializedObjectKindName() );
        facts.SetText( CFSTR( "name" ), inObject.GetName() );
        facts.SetText( CFSTR( "uid" ), inObject.GetUID() );
        facts.SetBoolean( CFSTR( "active" ), inObject.IsActive() );
        return facts;
    }

    std::string mPath;
    std::vector<std::string> mQuery;
    std::size_t mTold = 0;
    bool mGroups = false, mMacros = false, mSmartGroups = false, mJSON = false;
};

class ShowVerb final : public Verb
{
public:
    explicit ShowVerb( CLI::App& ioCommand ) : Verb( ioCommand )
    {
        ioCommand.add_option( "FILE", mPath, "A macros file, kvmacros or kvlibrary; “-” is standard input" )
            ->required()
            ->type_name( "" );
        ioCommand.add_option( "NAME", mName, "The name or UID of a macro, group or smart group" )
            ->required()
            ->type_name( "" );
        CLI::Option* const xml = ioCommand.add_flag( "--xml", mXML, "Print its property list as XML" );
        ioCommand.add_flag( "--json", mJSON, "Print the outline as JSON" )->excludes( xml );
        ioCommand.footer( "Example: korvalen show \"Korvalen Macros.plist\" \"Paste plain\"" );
    }

    ExitStatus Run( VerbContext& ioContext ) override
    {
        const LoadedMacros file( ioContext.mInput, mPath );
        const std::vector<MMacroSerializedObject*> found = file.Find( TextFromUTF8( mName ) );
        Output& output = ioContext.mOutput;
        if ( found.empty() )
        {
            output.Complain( fmt::format( "{} has no macro, group or smart group called “{}”; {}", QuotedPath( mPath ),
                mName, Suggestion( file ) ) );
            return ExitStatus::kFailed;
        }
        if ( found.size() > 1 )
        {
            std::string choices;
            for ( const MMacroSerializedObject* const object : found )
                choices += fmt::format(
                    "{}{} {}", choices.empty() ? "" : ", ", PlaceOf( *object ), object->GetUID().GetUTF8() );
            output.Complain( fmt::format( "{} things in {} are called “{}”; name one by its UID: {}", found.size(),
                QuotedPath( mPath ), mName, choices ) );
            return ExitStatus::kFailed;
        }
        return Show( *found.front(), output );
    }

private:
    // Names that hold what was asked for, if there are a few.
    [[nodiscard]] std::string Suggestion( const LoadedMacros& inFile ) const
    {
        constexpr std::size_t kMost = 5;
        std::vector<std::string> near;
        const auto test = [&]( const MMacroSerializedObject& object ) {
            if ( kvr_caseInsensitiveContainsString( object.GetName(), TextFromUTF8( mName ) ) )
                near.push_back( "“" + PlaceOf( object ) + "”" );
        };
        for ( const MMacroGroup* const group : inFile.GetGroups() )
        {
            test( *group );
            for ( const MMacro* const macro : LoadedMacros::GetMacros( *group ) )
                test( *macro );
        }
        if ( near.empty() or near.size() > kMost )
            return "“korvalen list” shows what it has";
        return fmt::format( "did you mean {}?", fmt::join( near, " or " ) );
    }

    [[nodiscard]] ExitStatus Show( const MMacroSerializedObject& inObject, Output& ioOutput ) const
    {
        if ( mJSON )
            ioOutput.JSON( OutlineAsValue( inObject ) );
        else if ( not mXML )
            PrintOutline( inObject, ioOutput );
        else
        {
            const XPlistWriteResult xml = WriteXMLPropertyList( inObject.CopyToPropertyList() );
            if ( xml.mFault )
            {
                ioOutput.Complain( fmt::format( "“{}” has no XML form: {}; --json shows it", mName, *xml.mFault ) );
                return ExitStatus::kFailed;
            }
            ioOutput.Bytes( xml.mBytes.View() );
        }
        return ExitStatus::kDone;
    }

    std::string mPath, mName;
    bool mXML = false, mJSON = false;
};

class MacrosConvertVerb final : public Verb
{
public:
    explicit MacrosConvertVerb( CLI::App& ioCommand ) : Verb( ioCommand )
    {
        ioCommand.add_option( "IN", mInPath, "A macros file; “-” is standard input" )->required()->type_name( "" );
        ioCommand.add_option( "OUT", mOutPath, "Where to write; may be IN; “-” is standard output" )
            ->required()
            ->type_name( "" );
        ioCommand.add_option( "--format,--to", mFormat, "binary (the default) or xml" )
            ->type_name( "FORM" )
            ->check( CLI::IsMember( { "binary", "xml" } ).description( "" ) );
        ioCommand.footer(
            "Loads the file and writes it as the next save would; what a load drops is gone, so look with\n"
            "“korvalen check” first. The date and identity of the save are new each time.\n"
            "Example: korvalen convert \"Korvalen Macros.plist\" macros.xml --format xml" );
    }

    ExitStatus Run( VerbContext& ioContext ) override
    {
        LoadedMacros file( ioContext.mInput, mInPath );
        if ( file.GetKind() != MFileKind::kMacrosFile )
            throw FileTrouble( fmt::format( "{} is a {}, not a macros file; “korvalen plist convert” changes its form",
                QuotedPath( mInPath ), NameOf( file.GetKind() ) ) );
        const __SafeCFPropertyList saved = file.GetDomain().GetPropertyList();
        if ( mFormat == "binary" )
            return Write( WriteBinaryPropertyList( saved ), ioContext.mOutput );
        XPlistWriteResult xml = WriteXMLPropertyList( saved );
        if ( xml.mFault )
            throw FileTrouble( fmt::format( "{} has no XML form, so nothing was written: {}; write it as binary",
                QuotedPath( mInPath ), *xml.mFault ) );
        return Write( xml.mBytes, ioContext.mOutput );
    }

private:
    ExitStatus Write( const XBytes& inBytes, Output& ioOutput ) const
    {
        if ( mOutPath == "-" )
        {
            if ( mFormat == "binary" and ioOutput.IsTerminal() )
            {
                ioOutput.Complain( "the binary form isn't written to a terminal; name a file as OUT" );
                return ExitStatus::kWrongUsage;
            }
            ioOutput.Bytes( inBytes.View() );
            return ExitStatus::kDone;
        }
        if ( const auto error = XAtomicFile::Write( mOutPath, inBytes.Span() ) )
            throw FileTrouble( error->Describe() +
                "; check that the folder is there, that you may write to it and that it has room, or name another file "
                "as OUT" );
        return ExitStatus::kDone;
    }

    std::string mInPath, mOutPath, mFormat = "binary";
};
} // namespace

void AddMacrosFileVerbs( CLI::App& ioProgram, VerbList& ioVerbs )
{
    const auto command = [&ioProgram]( const char* name, const char* description ) -> CLI::App& {
        return *ioProgram.add_subcommand( name, description )->group( "Verbs" );
    };
    ioVerbs.push_back( std::make_unique<ListVerb>( command( "list", "List groups and their macros" ) ) );
    ioVerbs.push_back(
        std::make_unique<ShowVerb>( command( "show", "Show one macro, group or smart group as an outline" ) ) );
    ioVerbs.push_back( std::make_unique<MacrosConvertVerb>(
        command( "convert", "Load a macros file and write it as the next save would" ) ) );
}

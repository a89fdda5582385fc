// "search" and "smart": what a query finds and why, and what a smart group holds now.
#include "Actions/HActionList.h"
#include "Actions/HBaseAction.h"
#include "App/MacrosFile.h"
#include "App/ObjectSelection.h"
#include "App/Verb.h"
#include "Macros/MMacro.h"
#include "Macros/MMacroDomain.h"
#include "Utility/Search/StringSearcher.h"
#include "Utility/Text/NSStringRegularExpressions.h"
#include "Utility/Text/StringHelpers.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <ctime>
#include <fmt/format.h>

namespace
{
using Kind = StringSearchee::Kind;

constexpr std::size_t kExcerptAround = 32; // units shown on each side of a match
constexpr double kSecondsFrom1970 = 978307200.0;
constexpr double kNever = 1314000000.0; // what a search says that no time can change

// What people call a kind of fact, in its order.
constexpr const char* kElementNames[] = { "text", "UID", "trigger", "hot key", "name", "group", "application", "global",
    "enabled", "created", "modified", "used", "all" };
static_assert( std::size( kElementNames ) == std::size_t( Kind::kAll ) + 1 );

// "3 hours": the largest unit of which there is one, rounded down.
std::string InWords( double inSeconds )
{
    constexpr struct
    {
        double mSeconds;
        const char* mName;
    } kUnits[] = { { 604800, "week" }, { 86400, "day" }, { 3600, "hour" }, { 60, "minute" } };
    for ( const auto& [seconds, name] : kUnits )
    {
        if ( inSeconds >= seconds )
            return Counted( std::size_t( inSeconds / seconds ), name );
    }
    return Counted( std::size_t( std::max( 0.0, inSeconds ) ), "second" );
}

std::string DateInUTC( XAbsoluteTime inTime )
{
    const auto time = std::time_t( std::ceil( inTime + kSecondsFrom1970 ) );
    std::tm parts{};
    char text[32] = "";
    if ( gmtime_r( &time, &parts ) )
        (void)std::strftime( text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts );
    return text;
}

/// Terms that a search has no room for are left out, so that it finds more than was asked for: that has to be said.
void ComplainOfTooManyTerms( const StringSearcher& inSearcher, Output& ioOutput )
{
    if ( inSearcher.GetTerms().size() == StringSearcher::kMaxTerms )
        ioOutput.Complain(
            fmt::format( "a search has at most {} terms; any that follow don't count", StringSearcher::kMaxTerms ) );
}

/// Why something was found: the fact that one term of the query matches.
struct Reason
{
    std::string mElement; ///< "name", or "action" with its title
    Text mAction;
    Text mBefore, mMatch, mAfter; ///< an excerpt of the text, if it is one
};

Text OnOneLine( TextView inText )
{
    Text line( inText );
    std::ranges::replace_if(
        line, []( char16_t unit ) { return unit < 0x20; }, u' ' );
    return line;
}

void AddExcerpt( TextView inText, const SearchTerm& inTerm, Reason& ioReason )
{
    const auto range = rangeOfRegex( inText, inTerm.mPattern.GetExpression(), RegexOptions::kCaseInsensitive );
    // An empty term matches the text as a whole.
    const std::size_t begin = range ? range->mLocation : 0;
    const std::size_t end = range ? range->End() : std::min( inText.size(), 2 * kExcerptAround );
    std::size_t from = begin > kExcerptAround ? begin - kExcerptAround : 0;
    std::size_t to = std::min( inText.size(), end + kExcerptAround );
    from += from > 0 and IsLowSurrogate( inText[from] );
    to -= to < inText.size() and IsLowSurrogate( inText[to] );
    ioReason.mBefore = ( from > 0 ? u"…" : u"" ) + OnOneLine( inText.substr( from, begin - from ) );
    ioReason.mMatch = OnOneLine( inText.substr( begin, end - begin ) );
    ioReason.mAfter = OnOneLine( inText.substr( end, to - end ) ) + ( to < inText.size() ? u"…" : u"" );
}

// The first action with the text among its own words, which is where the text came from.
const HBaseAction* ActionWithText( const MMacro& inMacro, const Text& inText )
{
    const HBaseAction* found = nullptr;
    inMacro.GetActionList()->DoForEveryActionAndSubAction( [&]( const HBaseAction& action ) {
        if ( found )
            return;
        StringSearchee words;
        action.AddMatchStrings( words );
        const auto isIt = [&]( const auto& element ) {
            return element.mKind == Kind::kText and element.mText == inText;
        };
        if ( std::ranges::any_of( words.GetElements(), isIt ) )
            found = &action;
    } );
    return found;
}

Reason ReasonFor(
    const SearchTerm& inTerm, const StringSearchee::Element& inElement, const MMacroSerializedObject& inObject )
{
    Reason reason;
    reason.mElement = kElementNames[std::size_t( inElement.mKind )];
    switch ( inElement.mKind )
    {
    case Kind::kGlobal:
        reason.mMatch = u"active everywhere";
        return reason;
    case Kind::kEnabled:
        reason.mMatch = inElement.mText == u"1" ? u"yes" : u"no";
        return reason;
    case Kind::kCreated:
    case Kind::kModified:
    case Kind::kUsed:
        reason.mMatch = TextFromUTF8( InWords( inElement.mAge ) + " ago" );
        return reason;
    default:
        break;
    }
    const MMacro* const macro = inObject.GetAsMacro();
    if ( const HBaseAction* const action =
             macro and inElement.mKind == Kind::kText ? ActionWithText( *macro, inElement.mText ) : nullptr )
    {
        reason.mElement = "action";
        reason.mAction = action->GetActionTitle();
    }
    AddExcerpt( inElement.mText, inTerm, reason );
    return reason;
}

std::vector<Reason> ReasonsFor( const StringSearcher& inSearcher, const MMacroSerializedObject& inObject )
{
    StringSearchee searchee;
    inObject.AddMatchStrings( searchee );
    std::vector<Reason> reasons;
    auto element = inSearcher.Reasons( searchee );
    auto at = element.begin();
    for ( const SearchTerm& term : inSearcher.GetTerms() )
    {
        if ( term.mNegated )
            continue;
        if ( *at )
            reasons.push_back( ReasonFor( term, **at, inObject ) );
        ++at;
    }
    return reasons;
}

class SearchVerb final : public Verb
{
public:
    explicit SearchVerb( CLI::App& ioCommand ) : Verb( ioCommand )
    {
        ioCommand.add_option( "FILE", mPath, "A macros file, kvmacros or kvlibrary; “-” is standard input" )
            ->required()
            ->type_name( "" );
        ioCommand.add_option( "QUERY", mQuery, "What to look for, as in the search field" )
            ->required()
            ->type_name( "" );
        ioCommand.add_flag( "--json", mJSON, "Print the facts as JSON" );
        ioCommand.footer(
            "All terms must hold: words, \"phrases\", -negations, and these tags, which may be cut short:\n"
            "  name: trigger: hotkey: group: application: enabled: disabled: global: all:\n"
            "  created: modified: used: within a time such as 90, 30m, 8h, 1d or 2w\n"
            "Words find macros by their names, triggers and actions; group: finds groups and smart groups too.\n"
            "Each find says why: the fact, and where in it each term stands. Finding nothing is no error.\n"
            "Behind “--” a query may begin with a minus.\n"
            "Example: korvalen search \"Korvalen Macros.plist\" 'paste \"plain text\" -app:Finder'" );
    }

    ExitStatus Run( VerbContext& ioContext ) override
    {
        const LoadedMacros file( ioContext.mInput, mPath );
        std::string query;
        for ( const std::string& word : mQuery )
            query += ( query.empty() ? "" : " " ) + word;
        StringSearcher searcher( TextView( TextFromUTF8( query ) ) );
        ComplainOfTooManyTerms( searcher, ioContext.mOutput );
        XMutableArray facts;
        std::size_t told = 0;
        const auto tell = [&]( const MMacroSerializedObject& object ) {
            ++told;
            if ( mJSON )
                facts.Append( FactsWithReasons( object, ReasonsFor( searcher, object ) ) );
            else
                Tell( object, ReasonsFor( searcher, object ), ioContext.mOutput );
        };
        const auto matches = [&searcher]( const MMacroSerializedObject& object ) {
            StringSearchee searchee;
            object.AddMatchStrings( searchee );
            return searcher.Matches( searchee );
        };
        for ( const MMacroSmartGroup* const smartGroup : file.GetSmartGroups() )
        {
            if ( matches( *smartGroup ) )
                tell( *smartGroup );
        }
        for ( const MMacroGroup* const group : file.GetGroups() )
        {
            if ( matches( *group ) )
                tell( *group );
            for ( const MMacro* const macro : LoadedMacros::GetMacros( *group ) )
            {
                if ( macro->MatchesTextSearch( searcher ) )
                    tell( *macro );
            }
        }
        if ( mJSON )
            ioContext.mOutput.JSON( facts.Seal() );
        else if ( told == 0 )
            ioContext.mOutput.Complain( fmt::format( "nothing in {} matches “{}”", QuotedPath( mPath ), query ) );
        return ExitStatus::kDone;
    }

private:
    static void Tell( const MMacroSerializedObject& inObject, const std::vector<Reason>& inReasons, Output& ioOutput )
    {
        ioOutput.Text( PlaceOf( inObject ), Colour::kBold );
        ioOutput.Text( inObject.GetAsMacro() ? "" : inObject.GetAsMacroGroup() ? "  (group)" : "  (smart group)" );
        ioOutput.Line( inObject.IsActive() ? "" : " (disabled)", Colour::kYellow );
        for ( const Reason& reason : inReasons )
        {
            const std::string action = reason.mAction.empty() ? "" : " " + UTF8FromText( reason.mAction );
            ioOutput.Text( fmt::format( "    {}{}: {}", reason.mElement, action, UTF8FromText( reason.mBefore ) ) );
            ioOutput.Text( UTF8FromText( reason.mMatch ), Colour::kGreen );
            ioOutput.Line( UTF8FromText( reason.mAfter ) );
        }
    }

    static __SafeCFPropertyList FactsWithReasons(
        const MMacroSerializedObject& inObject, const std::vector<Reason>& inReasons )
    {
        XMutableArray why;
        for ( const Reason& reason : inReasons )
        {
            XMutableDictionary fact;
            fact.SetText( CFSTR( "element" ), TextFromUTF8( reason.mElement ) );
            if ( not reason.mAction.empty() )
                fact.SetText( CFSTR( "action" ), reason.mAction );
            fact.SetText( CFSTR( "match" ), reason.mMatch );
            fact.SetText( CFSTR( "text" ), reason.mBefore + reason.mMatch + reason.mAfter );
            why.Append( fact.Seal() );
        }
        XMutableDictionary facts = FactsOf( inObject );
        facts.Set( CFSTR( "why" ), why.Seal() );
        return facts.Seal();
    }

    std::string mPath;
    std::vector<std::string> mQuery;
    bool mJSON = false;
};

/// Seconds until a macro may come to a smart group by getting too old for a negated time, of which its search gives
/// no notice: the same time, asked for plainly, does.
double NextArrival( const MMacroSmartGroup& inSmartGroup )
{
    MMacroSmartGroup::Searchers searchers, plain;
    inSmartGroup.GetStringSearchers( searchers );
    for ( const StringSearcher& searcher : searchers )
    {
        for ( const SearchTerm& term : searcher.GetTerms() )
        {
            if ( term.mNegated and term.mKind >= Kind::kCreated and term.mKind <= Kind::kUsed )
                plain.emplace_back( TextView(
                    TextFromUTF8( fmt::format( "{}:{:.0f}", kElementNames[std::size_t( term.mKind )], term.mAge ) ) ) );
        }
    }
    double next = kNever;
    for ( StringSearcher& searcher : plain )
    {
        MMacroDomain::Get()->DoForEveryMacro(
            [&searcher]( const MMacroGroup&, const MMacro& macro ) { (void)macro.MatchesTextSearch( searcher ); } );
        next = std::min( next, searcher.NextChange() );
    }
    return next;
}

class SmartVerb final : public Verb
{
public:
    explicit SmartVerb( CLI::App& ioCommand ) : Verb( ioCommand )
    {
        ioCommand.add_option( "FILE", mPath, "A macros file, kvmacros or kvlibrary; “-” is standard input" )
            ->required()
            ->type_name( "" );
        ioCommand.add_option( "NAME", mName, "The name or UID of a smart group" )->required()->type_name( "" );
        ioCommand.add_flag( "--json", mJSON, "Print the facts as JSON" );
        ioCommand.footer( "Its searches are alternatives. Where one asks for a time, what it holds may change by\n"
                          "itself: then the last line says until when it can't.\n"
                          "Example: korvalen smart \"Korvalen Macros.plist\" \"Changed Today\"" );
    }

    ExitStatus Run( VerbContext& ioContext ) override
    {
        const LoadedMacros file( ioContext.mInput, mPath );
        std::vector<MMacroSmartGroup*> found = file.GetSmartGroups();
        std::erase_if( found, [name = XText( TextFromUTF8( mName ) )]( const MMacroSmartGroup* smartGroup ) {
            return not smartGroup->NameOrUIDMatches( name );
        } );
        if ( found.size() != 1 )
        {
            ioContext.mOutput.Complain( found.empty() ? UnknownName( file ) : AmbiguousName( found ) );
            return ExitStatus::kFailed;
        }
        Tell( *found.front(), ioContext.mOutput );
        return ExitStatus::kDone;
    }

private:
    [[nodiscard]] std::string UnknownName( const LoadedMacros& inFile ) const
    {
        constexpr std::size_t kMost = 12;
        const std::vector<MMacroSmartGroup*> all = inFile.GetSmartGroups();
        std::string sentence = fmt::format( "{} has no smart group called “{}”; ", QuotedPath( mPath ), mName );
        if ( all.empty() )
            return sentence + "it has none at all";
        sentence += "it has ";
        for ( std::size_t i = 0; i < all.size() and i < kMost; ++i )
            sentence += fmt::format( "{}“{}”", i ? ", " : "", UTF8FromText( all[i]->GetName() ) );
        return all.size() > kMost ? sentence + fmt::format( " and {} more", all.size() - kMost ) : sentence;
    }

    [[nodiscard]] std::string AmbiguousName( const std::vector<MMacroSmartGroup*>& inFound ) const
    {
        std::string choices;
        for ( const MMacroSmartGroup* const smartGroup : inFound )
            choices += ( choices.empty() ? "" : ", " ) + smartGroup->GetUID().GetUTF8();
        return fmt::format( "{} smart groups in {} are called “{}”; name one by its UID: {}", inFound.size(),
            QuotedPath( mPath ), mName, choices );
    }

    void Tell( const MMacroSmartGroup& inSmartGroup, Output& ioOutput ) const
    {
        std::vector<MMacro*> macros;
        double next = NextArrival( inSmartGroup );
        inSmartGroup.GetEveryMacro( macros, next );
        MMacroSmartGroup::Searchers searchers;
        inSmartGroup.GetStringSearchers( searchers );
        for ( const StringSearcher& searcher : searchers )
            ComplainOfTooManyTerms( searcher, ioOutput );
        const XAbsoluteTime now = XClock::Current().Now();
        std::sort( macros.begin(), macros.end(),
            []( const MMacro* a, const MMacro* b ) { return MMacro::CompareAlphabetically( a, b ) < 0; } );
        if ( mJSON )
        {
            ioOutput.JSON(
                AsValue( inSmartGroup, macros, next < kNever ? std::optional( now + next ) : std::nullopt ) );
            return;
        }
        ioOutput.Text( UTF8FromText( inSmartGroup.GetName() ), Colour::kBold );
        ioOutput.Line( fmt::format( "  ({})", Counted( macros.size(), "macro" ) ) );
        for ( const XText& string : inSmartGroup.GetSearchStrings() )
            ioOutput.Line( "  search: " + string.GetUTF8() );
        for ( const MMacro* const macro : macros )
        {
            ioOutput.Text( "    " + PlaceOf( *macro ) );
            ioOutput.Line( macro->IsActive() ? "" : " (disabled)", Colour::kYellow );
        }
        if ( next < kNever )
            ioOutput.Line( fmt::format( "Holds these until {}, in {}, unless a macro is edited or used.",
                DateInUTC( now + next ), InWords( next ) ) );
        else if ( inSmartGroup.IsTimeSensitive() )
            ioOutput.Line( "Its search asks for a time, but no macro comes or goes as time goes by." );
    }

    static __SafeCFPropertyList AsValue( const MMacroSmartGroup& inSmartGroup, const std::vector<MMacro*>& inMacros,
        std::optional<XAbsoluteTime> inUntil )
    {
        XMutableArray strings, macros;
        for ( const XText& string : inSmartGroup.GetSearchStrings() )
            strings.Append( string );
        for ( const MMacro* const macro : inMacros )
            macros.Append( FactsOf( *macro ).Seal() );
        XMutableDictionary facts = FactsOf( inSmartGroup );
        facts.Set( CFSTR( "searchStrings" ), strings.Seal() );
        facts.Set( CFSTR( "macros" ), macros.Seal() );
        facts.SetBoolean( CFSTR( "timeSensitive" ), inSmartGroup.IsTimeSensitive() );
        if ( inUntil )
            facts.SetText( CFSTR( "until" ), TextFromUTF8( DateInUTC( *inUntil ) ) );
        return facts.Seal();
    }

    std::string mPath, mName;
    bool mJSON = false;
};
} // namespace

void AddSearchVerbs( CLI::App& ioProgram, VerbList& ioVerbs )
{
    const auto command = [&ioProgram]( const char* name, const char* description ) -> CLI::App& {
        return *ioProgram.add_subcommand( name, description )->group( "Verbs" );
    };
    ioVerbs.push_back( std::make_unique<SearchVerb>(
        command( "search", "Find macros, groups and smart groups, and say why each was found" ) ) );
    ioVerbs.push_back(
        std::make_unique<SmartVerb>( command( "smart", "Show what a smart group holds now, and until when" ) ) );
}

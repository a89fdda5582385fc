// A term is made regex-safe before its tag is looked for, so that all that follows, the tags' values too, deals
// with the escaped form.
#include "Utility/Search/StringSearcher.h"

#include "Utility/Search/CaseFolding.h"
#include "Utility/Text/StringHelpers.h"
#include "Utility/Work/Random.h"
#include "XCAF/XErrorHandler.h"

#include <algorithm>
#include <optional>

namespace
{
using Kind = StringSearchee::Kind;

constexpr bool IsLetter( char16_t inUnit )
{
    return ( inUnit >= u'a' and inUnit <= u'z' ) or ( inUnit >= u'A' and inUnit <= u'Z' );
}

// The values that a tag takes.
enum class ValueRule { kAny, kHotKey, kNone, kYes, kNo, kTime };

struct Tag
{
    TextView mKeyword;
    ValueRule mRule;
    Kind mKind;
    TextView mText = {}; // of the term, where the value gives none
};

// The first row that takes both tag and value wins, so that an abbreviation means the most usual tag.
constexpr Tag kTags[] = {
    { u"group", ValueRule::kAny, Kind::kGroup },
    { u"name", ValueRule::kAny, Kind::kName },
    { u"trigger", ValueRule::kHotKey, Kind::kTrigger },
    { u"hotkey", ValueRule::kHotKey, Kind::kHotKey },
    { u"application", ValueRule::kAny, Kind::kApplication },
    { u"global", ValueRule::kNone, Kind::kGlobal },
    { u"universal", ValueRule::kNone, Kind::kGlobal },
    { u"enabled", ValueRule::kYes, Kind::kEnabled, u"1" },
    { u"enabled", ValueRule::kNo, Kind::kEnabled, u"0" },
    { u"disabled", ValueRule::kYes, Kind::kEnabled, u"0" },
    { u"disabled", ValueRule::kNo, Kind::kEnabled, u"1" },
    { u"created", ValueRule::kTime, Kind::kCreated },
    { u"modified", ValueRule::kTime, Kind::kModified },
    { u"used", ValueRule::kTime, Kind::kUsed },
    { u"all", ValueRule::kNone, Kind::kAll },
};

bool StartsWithAnyOf( TextView inText, TextView inUnits )
{
    return not inText.empty() and inUnits.find( inText.front() ) != TextView::npos;
}

// "^[0-9]+[smhdw]?$" in seconds.
std::optional<double> TimeFor( TextView inValue )
{
    const std::size_t digits = std::min( inValue.find_first_not_of( u"0123456789" ), inValue.size() );
    const TextView suffix = inValue.substr( digits );
    if ( digits == 0 or suffix.size() > 1 )
        return {};
    double number = 0;
    for ( const char16_t digit : inValue.substr( 0, digits ) )
        number = number * 10 + ( digit - u'0' );
    switch ( suffix.empty() ? u's' : suffix.front() )
    {
    case u's':
        return number;
    case u'm':
        return number * 60;
    case u'h':
        return number * 3600;
    case u'd':
        return number * 86400;
    case u'w':
        return number * 604800;
    default:
        return {};
    }
}

bool RuleTakes( ValueRule inRule, TextView inValue )
{
    switch ( inRule )
    {
    case ValueRule::kAny:
    case ValueRule::kHotKey:
        return true;
    case ValueRule::kNone:
        return inValue.empty();
    case ValueRule::kYes:
        return inValue.empty() or StartsWithAnyOf( inValue, u"1YyTt" );
    case ValueRule::kNo:
        return StartsWithAnyOf( inValue, u"0NnFf" );
    case ValueRule::kTime:
        return TimeFor( inValue ).has_value();
    }
    return false;
}

// The modifiers that weren't typed may be there, so that a key is found with any beside those that were.
Text GeneralizeHotKey( TextView inValue )
{
    constexpr TextView kModifiers[] = { u"\\x{2303}", u"\\x{2325}", u"\\x{21E7}", u"\\x{2318}" };
    Text general;
    TextView rest = inValue;
    for ( const TextView modifier : kModifiers )
    {
        general += modifier;
        if ( rest.starts_with( modifier ) )
            rest.remove_prefix( modifier.size() );
        else
            general += u'?';
    }
    const bool hasModifier = rest.size() < inValue.size();
    return hasModifier ? general + Text( rest ) : Text( inValue );
}

// "([^"]*)" becomes what is in it, as one term.
Text WithPhrasesJoined( TextView inText )
{
    Text result;
    result.reserve( inText.size() );
    for ( std::size_t at = 0; at < inText.size(); )
    {
        const std::size_t open = inText.find( u'"', at );
        const std::size_t close = open == TextView::npos ? open : inText.find( u'"', open + 1 );
        if ( close == TextView::npos )
            return result + Text( inText.substr( at ) );
        result += inText.substr( at, open - at );
        for ( const char16_t unit : inText.substr( open + 1, close - open - 1 ) )
            result += unit == u' ' ? char16_t( 0x00A0 ) : unit;
        at = close + 1;
    }
    return result;
}

bool IsTime( Kind inKind )
{
    return inKind == Kind::kCreated or inKind == Kind::kModified or inKind == Kind::kUsed;
}

// A plain word finds a UID too, but only if it can be meant as one: "^[-a-fA-F0-9]{4,}$".
bool LooksLikeUID( TextView inExpression )
{
    return inExpression.size() >= 4 and
        std::ranges::all_of( inExpression, []( char16_t unit ) { return unit == u'-' or kvr_hexValue( unit ) >= 0; } );
}

// Younger than the term's limit? Tells when it won't be any more.
bool AgeMatches( const SearchTerm& inTerm, double inAge, double& ioNextChange )
{
    if ( not( inAge < inTerm.mAge ) )
        return false;
    if ( not inTerm.mNegated )
        ioNextChange = std::min( ioNextChange, inTerm.mAge - inAge );
    return true;
}

bool TermMatchesElement( const SearchTerm& inTerm, const StringSearchee::Element& inElement, double& ioNextChange )
{
    switch ( inTerm.mKind )
    {
    case Kind::kText:
        switch ( inElement.mKind )
        {
        case Kind::kText:
        case Kind::kTrigger:
        case Kind::kHotKey:
        case Kind::kName:
            return inTerm.mPattern.Matches( inElement.mText );
        case Kind::kUID:
            return LooksLikeUID( inTerm.mText ) and inTerm.mPattern.Matches( inElement.mText );
        default:
            return false;
        }
    case Kind::kUID:
        XAssertText( false, "false" );
        return false;
    case Kind::kTrigger:
    case Kind::kHotKey:
    case Kind::kName:
    case Kind::kGroup:
    case Kind::kApplication:
        return inElement.mKind == inTerm.mKind and inTerm.mPattern.Matches( inElement.mText );
    case Kind::kGlobal:
        return inElement.mKind == Kind::kGlobal;
    case Kind::kEnabled:
        return inElement.mKind == Kind::kEnabled and inElement.mText == inTerm.mText;
    case Kind::kCreated:
    case Kind::kModified:
    case Kind::kUsed:
        return inElement.mKind == inTerm.mKind and AgeMatches( inTerm, inElement.mAge, ioNextChange );
    case Kind::kAll:
        return true;
    }
    return false;
}

bool TermMatchesSource( const SearchTerm& inTerm, const SearchSource& inSource, double& ioNextChange )
{
    switch ( inTerm.mKind )
    {
    case Kind::kText:
        return inSource.AnyTextMatches( inTerm.mPattern, Kind::kText ) or
            ( LooksLikeUID( inTerm.mText ) and inSource.AnyTextMatches( inTerm.mPattern, Kind::kUID ) );
    case Kind::kUID:
        XAssertText( false, "false" );
        return false;
    case Kind::kTrigger:
    case Kind::kHotKey:
    case Kind::kName:
    case Kind::kGroup:
    case Kind::kApplication:
        return inSource.AnyTextMatches( inTerm.mPattern, inTerm.mKind );
    case Kind::kGlobal:
        return inSource.IsGlobal();
    case Kind::kEnabled:
        return inSource.GetEnabled() == ( inTerm.mText == u"1" );
    case Kind::kCreated:
    case Kind::kModified:
    case Kind::kUsed:
    {
        const std::optional<double> age = inSource.GetAge( inTerm.mKind );
        return age and AgeMatches( inTerm, *age, ioNextChange );
    }
    case Kind::kAll:
        return true;
    }
    return false;
}
} // namespace

StringSearcher::StringSearcher( TextView inText )
{
    const Text text = WithPhrasesJoined( inText );
    for ( TextView rest = text; not rest.empty(); )
    {
        const std::size_t length = std::min( rest.find( u' ' ), rest.size() );
        Add( rest.substr( 0, length ) );
        rest.remove_prefix( std::min( length + 1, rest.size() ) );
    }
}

void StringSearcher::Add( TextView inTerm )
{
    // 1. and 2.
    Text term = canonicalOrderMenuGlyphs( kvr_viewByTrimmingWhitespace( inTerm ) );
    const bool negated = term.starts_with( u'-' );
    term.erase( 0, negated );
    if ( term.empty() )
        return;
    if ( mTerms.size() == kMaxTerms )
    {
        XErrorHandler::PrivateMaybeLogFormat( "Search", "Search terms beyond the first %lu ignored", kMaxTerms );
        return;
    }

    // 3. and 4.
    Text expression = SearchPattern::SafeExpression( term );
    const auto end = std::ranges::find_if_not( expression, IsLetter );
    if ( end == expression.begin() or end == expression.end() or *end != u':' )
        return AddTerm( Kind::kText, negated, std::move( expression ) );
    const Text tag = FoldedCase( Text( expression.begin(), end ) );
    const TextView value( &*end + 1, std::size_t( expression.end() - end - 1 ) );

    // 5.
    const auto row = std::ranges::find_if( kTags, [&]( const Tag& candidate ) {
        return candidate.mKeyword.starts_with( tag ) and RuleTakes( candidate.mRule, value );
    } );
    if ( row == std::end( kTags ) )
        return AddTerm( Kind::kText, negated, std::move( expression ) );
    switch ( row->mRule )
    {
    case ValueRule::kHotKey:
        return AddTerm( row->mKind, negated, GeneralizeHotKey( value ) );
    case ValueRule::kTime:
        return AddTerm( row->mKind, negated, {}, *TimeFor( value ) );
    case ValueRule::kAny:
        return AddTerm( row->mKind, negated, Text( value ) );
    default:
        return AddTerm( row->mKind, negated, Text( row->mText ) );
    }
}

void StringSearcher::AddTerm( Kind inKind, bool inNegated, Text inText, double inAge )
{
    SearchTerm term;
    term.mNegated = inNegated;
    term.mKind = inKind;
    if ( inKind <= Kind::kApplication )
        term.mPattern = SearchPattern( inText );
    term.mText = std::move( inText );
    term.mAge = inAge;
    mTerms.push_back( std::move( term ) );
}

bool StringSearcher::HasSpecial() const
{
    return std::ranges::any_of( mTerms, []( const SearchTerm& term ) { return term.mKind != Kind::kText; } );
}

bool StringSearcher::MatchesAll() const
{
    return std::ranges::all_of(
        mTerms, []( const SearchTerm& term ) { return term.mKind == Kind::kAll and not term.mNegated; } );
}

bool StringSearcher::IsTimeSensitive() const
{
    return std::ranges::any_of( mTerms, []( const SearchTerm& term ) { return IsTime( term.mKind ); } );
}

bool StringSearchee::PrivateMatches( std::span<const SearchTerm> inTerms, double& nextChange ) const
{
    return std::ranges::all_of( inTerms, [&]( const SearchTerm& term ) {
        const bool matches = term.mKind == Kind::kAll or std::ranges::any_of( mElements, [&]( const Element& element ) {
            return TermMatchesElement( term, element, nextChange );
        } );
        return matches != term.mNegated;
    } );
}

bool StringSearcher::Matches( const StringSearchee& inSearchee )
{
    return inSearchee.PrivateMatches( mTerms, mNextChange );
}

bool StringSearcher::Matches( const SearchSource& inSource )
{
    if ( std::ranges::any_of( mTerms, []( const SearchTerm& term ) { return term.mPattern.NeedsEngine(); } ) )
    {
        StringSearchee searchee;
        inSource.Collect( searchee );
        return Matches( searchee );
    }
    return std::ranges::all_of( mTerms,
        [&]( const SearchTerm& term ) { return TermMatchesSource( term, inSource, mNextChange ) != term.mNegated; } );
}

std::vector<const StringSearchee::Element*> StringSearcher::Reasons( const StringSearchee& inSearchee ) const
{
    std::vector<const StringSearchee::Element*> reasons;
    for ( const SearchTerm& term : mTerms )
    {
        if ( term.mNegated )
            continue;
        const auto elements = inSearchee.GetElements();
        const auto found = std::ranges::find_if( elements, [&term]( const StringSearchee::Element& element ) {
            double ignored = 0;
            return term.mKind != Kind::kAll and TermMatchesElement( term, element, ignored );
        } );
        reasons.push_back( found == elements.end() ? nullptr : &*found );
    }
    return reasons;
}

Text StringSearcher::RandomInitialSearchString()
{
    constexpr TextView kSamples[] = { u"all:", u"group:\"Global Macro Group\"", u"global: universal: gl: u:",
        u"application:Finder a:Finder", u"enabled:0 e:no e:false", u"disabled:1 d:yes d:true", u"paste", u"-copy",
        u"application: a:", u"g:\"Switcher Group\"", u"-application:Finder", u"created:1d", u"modified:1w", u"used:1h",
        u"trigger:\u2318Tab", u"hotkey:\u2318Tab" };
    return Text( kSamples[XRandom::Bits() % std::size( kSamples )] );
}

std::vector<Text> StringSearcher::SearchStringCompletions()
{
    return { u"all:", u"global:", u"universal:", u"gl:", u"u:", u"application:Finder", u"app:Finder", u"application:",
        u"app:", u"enabled:", u"e:", u"enabled:no", u"e:no", u"disabled:", u"d:" };
}

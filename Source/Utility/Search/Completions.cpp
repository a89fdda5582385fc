#include "Utility/Search/Completions.h"

#include "Utility/Search/StringSearcher.h"
#include "Utility/Text/NSStringRegularExpressions.h"
#include "Utility/Text/TextCompare.h"

#include <algorithm>

namespace
{
// Names are short: patterns that look backwards look no farther than this, so that no text makes them slow.
constexpr std::size_t kLookBack = 512;

constexpr TextView kNameAndBlank = u"\\b\\p{Alpha}[\\p{alnum}_ ]+ \\z";
constexpr TextView kVariableAndDot = u"(^|\\b)\\p{Alpha}[\\p{alnum}\\s]+\\s*\\.\\s*\\z";
constexpr TextView kVariableToken = u"(%Variable%Variable%|%(Variable)%)\\z";
constexpr TextView kCalculateToken = u"%(Calculate|PastClipboard)%[^%]*\\z";
constexpr TextView kWordAtEnd = u"[\\p{alnum}_]+\\z";
constexpr TextView kFunctionAtEnd = u"\\b[A-Z]{2,}[(]\\z";
constexpr TextView kFunctionStart = u"\\A[A-Z]{2,}[(]?";

const CompletionSource* gSource = nullptr;

TextView End( TextView inText )
{
    std::size_t from = inText.size() > kLookBack ? inText.size() - kLookBack : 0;
    from += from > 0 and IsLowSurrogate( inText[from] );
    return inText.substr( from );
}

/// Where a match that reaches the end begins; the end itself without one.
std::size_t StartOfMatchAtEnd( TextView inText, TextView inPattern )
{
    const TextView end = End( inText );
    const auto range = rangeOfRegex( end, inPattern );
    return range ? inText.size() - end.size() + range->mLocation : inText.size();
}

bool IsCalculation( FieldKind inKind, TextView inBefore )
{
    return inKind == FieldKind::kCalculation or
        ( inKind == FieldKind::kToken and Completions::WithinCalculate( inBefore ) );
}

bool StartsWithLetter( TextView inText )
{
    return not inText.empty() and
        ( ( inText[0] >= u'A' and inText[0] <= u'Z' ) or ( inText[0] >= u'a' and inText[0] <= u'z' ) );
}

std::vector<Text> OfferedForCalculation( TextView inBefore, TextView inPartial )
{
    if ( isMatchedByRegex( inPartial, kFunctionStart ) )
        return gSource->FunctionCatalogue();
    if ( isMatchedByRegex( End( inBefore ), kVariableAndDot ) )
        return gSource->CoordinateCompletions();
    return StartsWithLetter( inPartial ) ? gSource->VariableNames() : std::vector<Text>();
}

std::vector<Text> Offered( FieldKind inKind, TextView inBefore, TextView inPartial )
{
    if ( inKind == FieldKind::kSearch )
        return StringSearcher::SearchStringCompletions();
    if ( not gSource )
        return {};
    if ( IsCalculation( inKind, inBefore ) )
        return OfferedForCalculation( inBefore, inPartial );
    if ( inKind == FieldKind::kVariable )
        return StartsWithLetter( inPartial ) ? gSource->VariableNames() : std::vector<Text>();
    if ( inKind != FieldKind::kToken )
        return {};
    if ( inPartial.starts_with( u'%' ) )
        return gSource->Tokens();
    return isMatchedByRegex( End( inBefore ), kVariableToken ) ? gSource->VariableNames() : std::vector<Text>();
}
} // namespace

void Completions::SetSource( const CompletionSource* inSource )
{
    gSource = inSource;
}

std::vector<Text> Completions::ForTextView( FieldKind inKind, TextView inText, TextRange inRange )
{
    const TextRange range = inRange.ClippedTo( inText.size() );
    const TextView partial = inText.substr( range.mLocation, range.mLength );
    std::vector<Text> offered = Offered( inKind, inText.substr( 0, range.mLocation ), partial );
    std::erase_if(
        offered, [partial]( const Text& text ) { return not kvr_caseInsensitiveHasPrefix( text, partial ); } );
    return offered;
}

TextRange Completions::RangeForCompletion( FieldKind inKind, TextView inText, std::size_t inInsertionPoint )
{
    const TextView before = inText.substr( 0, inInsertionPoint );
    const auto from = [&before]( std::size_t inStart ) { return TextRange{ inStart, before.size() - inStart }; };
    if ( inKind == FieldKind::kSearch )
        return from( before.find_last_of( u' ' ) + 1 ); // npos + 1 is the start
    const std::size_t word = StartOfMatchAtEnd( before, kWordAtEnd );
    if ( inKind == FieldKind::kToken and not WithinCalculate( before ) )
    {
        const TextView beforeWord = before.substr( 0, word );
        const bool isToken = beforeWord.ends_with( u'%' ) and not isMatchedByRegex( End( beforeWord ), kVariableToken );
        return from( isToken ? word - 1 : word );
    }
    const std::size_t name = StartOfMatchAtEnd( before, kNameAndBlank );
    const bool isCalculation = IsCalculation( inKind, before );
    const std::size_t function = isCalculation ? StartOfMatchAtEnd( before, kFunctionAtEnd ) : before.size();
    return from( std::min( { word, name, function } ) );
}

bool Completions::WithinCalculate( TextView inTextBefore )
{
    return isMatchedByRegex( inTextBefore, kCalculateToken, RegexOptions::kCaseInsensitive );
}

TextView Completions::KindToString( FieldKind inKind )
{
    const auto kind = std::size_t( inKind );
    return kind < std::size( kFieldKindNames ) ? kFieldKindNames[kind] : TextView();
}

FieldKind Completions::StringToKind( TextView inText )
{
    constexpr TextView kLetters = u"UNCTVS";
    if ( inText.empty() )
        return FieldKind::kUnset;
    const char16_t first = inText.front();
    const std::size_t kind = kLetters.find( first >= u'a' and first <= u'z' ? char16_t( first - 32 ) : first );
    return kind == TextView::npos ? FieldKind::kUnset : FieldKind( kind );
}

#include "Utility/Text/StringHelpers.h"

#include "Utility/Text/Format.h"

#include <algorithm>
#include <memory>
#include <unicode/brkiter.h>
#include <unicode/ustring.h>
#include <vector>

namespace
{
constexpr char16_t kEllipsis = 0x2026;
constexpr char16_t kConcealingCharacter = 0x25CF;
constexpr std::size_t kMaxRepeatedLength = std::size_t( 1 ) << 26;

// True where a cut would part a surrogate pair.
bool CutsPair( TextView inText, std::size_t inAt )
{
    return inAt > 0 and inAt < inText.size() and IsHighSurrogate( inText[inAt - 1] ) and IsLowSurrogate( inText[inAt] );
}

using CaseMapping = std::int32_t ( * )( UChar*, std::int32_t, const UChar*, std::int32_t, const char*, UErrorCode* );

Text MappedCase( TextView inText, CaseMapping inMapping )
{
    Text result( inText.size(), u'\0' );
    for ( ;; )
    {
        // The root locale: a Turkish system must not turn a keyword's I into a dotless one.
        UErrorCode status = U_ZERO_ERROR;
        const auto length = std::size_t( inMapping(
            result.data(), std::int32_t( result.size() ), inText.data(), std::int32_t( inText.size() ), "", &status ) );
        const bool fits = length <= result.size();
        result.resize( length );
        if ( fits )
            return result;
    }
}

void MapCaseOfRange( Text& ioText, TextRange inRange, TextRange& outUpdatedRange, CaseMapping inMapping )
{
    const TextRange range = inRange.ClippedTo( ioText.size() );
    const Text mapped = MappedCase( TextView( ioText ).substr( range.mLocation, range.mLength ), inMapping );
    ioText.replace( range.mLocation, range.mLength, mapped );
    outUpdatedRange = { range.mLocation, mapped.size() };
}

std::int32_t ToTitle( UChar* outResult, std::int32_t inCapacity, const UChar* inText, std::int32_t inLength,
    const char* inLocale, UErrorCode* ioStatus )
{
    return u_strToTitle( outResult, inCapacity, inText, inLength, nullptr, inLocale, ioStatus );
}

bool IsLineBreak( char16_t inUnit )
{
    return ( inUnit >= 0x0A and inUnit <= 0x0D ) or inUnit == 0x85 or inUnit == 0x2028 or inUnit == 0x2029;
}

// The place of a modifier glyph in a menu, from 1; 0 for another character.
int ModifierRank( char16_t inUnit )
{
    switch ( inUnit )
    {
    case 0x2303:
        return 1; // Control
    case 0x2325:
        return 2; // Option
    case 0x21E7:
        return 3; // Shift
    case 0x2318:
        return 4; // Command
    default:
        return 0;
    }
}

Text WithoutEllipses( TextView inText )
{
    Text result = stringBySimplifyingDotDotDot( inText );
    std::erase( result, kEllipsis );
    return result;
}
} // namespace

char32_t kvr_nextCharacter( TextView inText, std::size_t& ioAt )
{
    const char16_t unit = inText[ioAt++];
    if ( IsHighSurrogate( unit ) and ioAt < inText.size() and IsLowSurrogate( inText[ioAt] ) )
        return 0x10000 + ( ( char32_t( unit ) - 0xD800 ) << 10 ) + ( inText[ioAt++] - 0xDC00u );
    return unit;
}

void kvr_appendCharacter( Text& ioText, char32_t inCharacter )
{
    if ( inCharacter > 0x10FFFF )
        inCharacter = 0xFFFD;
    if ( inCharacter < 0x10000 )
        ioText += char16_t( inCharacter );
    else
    {
        ioText += char16_t( 0xD7C0 + ( inCharacter >> 10 ) );
        ioText += char16_t( 0xDC00 + ( inCharacter & 0x3FF ) );
    }
}

Text stringByRemovingPrefix( TextView inText, TextView inPrefix )
{
    return Text( inText.starts_with( inPrefix ) ? inText.substr( inPrefix.size() ) : inText );
}

Text stringByRemovingSuffix( TextView inText, TextView inSuffix )
{
    return Text( inText.ends_with( inSuffix ) ? inText.substr( 0, inText.size() - inSuffix.size() ) : inText );
}

// The method of Knuth, Morris and Pratt. The library's search compares the part anew at each place, which for
// repetitive texts is a product of two lengths.
bool kvr_containsString( TextView inText, TextView inPart )
{
    constexpr std::size_t kShort = 32;
    if ( inPart.size() <= kShort or inPart.size() > inText.size() )
        return inText.find( inPart ) != TextView::npos;

    // For each end in the part: how much of the part's beginning stands right before it too.
    std::vector<std::size_t> repeats( inPart.size(), 0 );
    std::size_t matched = 0;
    for ( std::size_t i = 1; i < inPart.size(); ++i )
    {
        while ( matched > 0 and inPart[i] != inPart[matched] )
            matched = repeats[matched - 1];
        matched += inPart[i] == inPart[matched];
        repeats[i] = matched;
    }
    matched = 0;
    for ( const char16_t unit : inText )
    {
        while ( matched > 0 and unit != inPart[matched] )
            matched = repeats[matched - 1];
        matched += unit == inPart[matched];
        if ( matched == inPart.size() )
            return true;
    }
    return false;
}

Text stringByRepeating( TextView inText, std::int64_t inCount )
{
    Text result;
    if ( inText.empty() or inCount < 1 )
        return result;
    const auto count =
        std::size_t( std::min<std::uint64_t>( std::uint64_t( inCount ), kMaxRepeatedLength / inText.size() ) );
    result.reserve( count * inText.size() );
    for ( std::size_t i = 0; i < count; ++i )
        result += inText;
    return result;
}

bool kvr_isWhitespace( char16_t inUnit )
{
    return inUnit == u' ' or ( inUnit >= 0x09 and inUnit <= 0x0D ) or
        ( inUnit >= 0x85 and
            ( inUnit == 0x85 or inUnit == 0xA0 or inUnit == 0x1680 or ( inUnit >= 0x2000 and inUnit <= 0x200A ) or
                inUnit == 0x2028 or inUnit == 0x2029 or inUnit == 0x202F or inUnit == 0x205F or inUnit == 0x3000 ) );
}

TextView kvr_viewByTrimmingWhitespace( TextView inText )
{
    while ( not inText.empty() and kvr_isWhitespace( inText.front() ) )
        inText.remove_prefix( 1 );
    while ( not inText.empty() and kvr_isWhitespace( inText.back() ) )
        inText.remove_suffix( 1 );
    return inText;
}

Text kvr_stringByTrimmingWhitespace( TextView inText )
{
    return Text( kvr_viewByTrimmingWhitespace( inText ) );
}

Text stringWithLongInt( std::int64_t inValue )
{
    return kvr_format( u"%ld", inValue );
}

Text kvr_capitalizeFirstString( TextView inText )
{
    if ( inText.empty() )
        return {};
    std::size_t rest = 0;
    static_cast<void>( kvr_nextCharacter( inText, rest ) );
    Text result = MappedCase( inText.substr( 0, rest ), ToTitle );
    result += inText.substr( rest );
    return result;
}

Text kvr_stringByReversingCharacters( TextView inText )
{
    // In ASCII only CR LF is more than one unit; the break iterator is some hundred times slower.
    if ( std::all_of( inText.begin(), inText.end(), []( char16_t c ) { return c < 0x80 and c != u'\r'; } ) )
        return Text( inText.rbegin(), inText.rend() );

    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::BreakIterator> characters(
        icu::BreakIterator::createCharacterInstance( icu::Locale::getRoot(), status ) );
    if ( U_FAILURE( status ) )
        return Text( inText );
    const icu::UnicodeString text( false, inText.data(), std::int32_t( inText.size() ) ); // an alias, no copy
    characters->setText( text );
    // Forwards, and filled from the end: going back, the iterator looks at a run of flags from its start again and
    // again, so that a long one takes the square of its length.
    Text result( inText.size(), u'\0' );
    std::size_t start = 0;
    for ( std::int32_t next = characters->next(); next != icu::BreakIterator::DONE; next = characters->next() )
    {
        const auto end = std::size_t( next );
        inText.copy( result.data() + ( result.size() - end ), end - start, start );
        start = end;
    }
    return result;
}

Text kvr_cleanName( TextView inText )
{
    Text result( inText );
    std::erase_if( result, IsLineBreak );
    return result;
}

Text kvr_summaryText( TextView inText, std::size_t inMaximumLength )
{
    Text result;
    bool pendingBlank = false;
    for ( const char16_t unit : inText )
    {
        if ( kvr_isWhitespace( unit ) )
        {
            pendingBlank = not result.empty();
            continue;
        }
        if ( pendingBlank )
            result += u' ';
        pendingBlank = false;
        result += unit;
        if ( result.size() > inMaximumLength ) // enough to know that it is too long
            break;
    }
    if ( result.size() <= inMaximumLength )
        return result;
    if ( inMaximumLength == 0 )
        return {};
    std::size_t length = inMaximumLength - 1;
    if ( CutsPair( result, length ) )
        --length;
    result.resize( length );
    if ( result.ends_with( u' ' ) )
        result.pop_back();
    return result + kEllipsis;
}

Text concealPassword( TextView inText )
{
    Text result( inText );
    if ( inText.size() < 3 )
        return result;
    const std::size_t shown = CutsPair( inText, 2 ) ? 1 : 2;
    std::fill( result.begin() + std::ptrdiff_t( shown ), result.end(), kConcealingCharacter );
    return result;
}

void kvr_uppercaseRange( Text& ioText, TextRange inRange, TextRange& outUpdatedRange )
{
    MapCaseOfRange( ioText, inRange, outUpdatedRange, u_strToUpper );
}

void kvr_lowercaseRange( Text& ioText, TextRange inRange, TextRange& outUpdatedRange )
{
    MapCaseOfRange( ioText, inRange, outUpdatedRange, u_strToLower );
}

Text canonicalOrderMenuGlyphs( TextView inText )
{
    Text result( inText );
    const auto isModifier = []( char16_t inUnit ) { return ModifierRank( inUnit ) > 0; };
    for ( auto start = result.begin(); start != result.end(); )
    {
        start = std::find_if( start, result.end(), isModifier );
        const auto end = std::find_if_not( start, result.end(), isModifier );
        // Counted, not sorted: four kinds, and a run may be as long as the text.
        std::size_t counts[5] = {};
        for ( auto at = start; at != end; ++at )
            ++counts[ModifierRank( *at )];
        constexpr char16_t kInOrder[] = { 0, 0x2303, 0x2325, 0x21E7, 0x2318 };
        for ( int rank = 1; rank <= 4; ++rank )
            start = std::fill_n( start, counts[rank], kInOrder[rank] );
    }
    return result;
}

Text stringBySimplifyingDotDotDot( TextView inText )
{
    Text result;
    result.reserve( inText.size() );
    for ( std::size_t i = 0; i < inText.size(); ++i )
    {
        const bool dots = inText.substr( i, 3 ) == u"...";
        result += dots ? kEllipsis : inText[i];
        i += dots ? 2 : 0;
    }
    return result;
}

bool equalToStringIgnoringDotDotDot( TextView inText, TextView inOther )
{
    return WithoutEllipses( inText ) == WithoutEllipses( inOther );
}

bool containsStringIgnoringDotDotDot( TextView inText, TextView inPart )
{
    return kvr_containsString( WithoutEllipses( inText ), WithoutEllipses( inPart ) );
}

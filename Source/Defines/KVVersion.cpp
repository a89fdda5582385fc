#include "Defines/KVVersion.h"

#include "XCAF/XErrorHandler.h"

#include <algorithm>

namespace
{
constexpr bool IsDigit( char16_t inUnit )
{
    return inUnit >= u'0' and inUnit <= u'9';
}

std::size_t DigitsAt( TextView inText, std::size_t inFrom )
{
    std::size_t at = inFrom;
    while ( at < inText.size() and IsDigit( inText[at] ) )
        ++at;
    return at - inFrom;
}

// How much of the text is its numbers, and how many there are; 0 when it has another form.
struct Form
{
    std::size_t mNumbers = 0, mNumbersEnd = 0;
    bool mHasLetter = false;
};

Form FormOf( TextView inText )
{
    constexpr std::size_t kMostNumbers = 3;
    Form form;
    std::size_t at = 0;
    for ( std::size_t digits = 0; ( digits = DigitsAt( inText, at ) ) > 0; )
    {
        at += digits;
        if ( ++form.mNumbers == kMostNumbers or at == inText.size() or inText[at] != u'.' )
            break;
        ++at;
        if ( DigitsAt( inText, at ) == 0 )
            return {};
    }
    form.mNumbersEnd = at;
    if ( form.mNumbers == 0 or at == inText.size() )
        return form;
    const std::size_t digits = DigitsAt( inText, at + 1 );
    if ( TextView( u"dabf" ).find( inText[at] ) == TextView::npos or digits == 0 or at + 1 + digits != inText.size() )
        return {};
    form.mHasLetter = true;
    return form;
}

Text Normalise( TextView inVersion )
{
    const Form form = FormOf( inVersion );
    XAssertText( form.mNumbers > 0, "IsVersion( version )" );
    Text version( inVersion.substr( 0, form.mNumbersEnd ) );
    if ( form.mNumbers == 1 )
        version += u".0.0";
    else if ( form.mNumbers == 2 )
        version += u".0";
    version += inVersion.substr( form.mNumbersEnd );
    if ( form.mNumbers > 0 and not form.mHasLetter )
        version += u"f0";

    Text result;
    for ( const char16_t unit : version )
    {
        const std::size_t rank = TextView( u"dabf" ).find( unit );
        if ( rank == TextView::npos )
            result += unit;
        else
            result += { u'.', char16_t( u'1' + rank ), u'.' };
    }
    return result;
}

// Runs of digits by value, everything else by units.
std::weak_ordering CompareNumerically( TextView inA, TextView inB )
{
    std::size_t a = 0, b = 0;
    while ( a < inA.size() and b < inB.size() )
    {
        if ( not IsDigit( inA[a] ) or not IsDigit( inB[b] ) )
        {
            if ( inA[a] != inB[b] )
                return inA[a] <=> inB[b];
            ++a, ++b;
            continue;
        }
        const std::size_t digitsOfA = DigitsAt( inA, a ), digitsOfB = DigitsAt( inB, b );
        TextView valueA = inA.substr( a, digitsOfA ), valueB = inB.substr( b, digitsOfB );
        valueA.remove_prefix( std::min( valueA.find_first_not_of( u'0' ), valueA.size() ) );
        valueB.remove_prefix( std::min( valueB.find_first_not_of( u'0' ), valueB.size() ) );
        if ( valueA.size() != valueB.size() )
            return valueA.size() <=> valueB.size();
        if ( const int order = valueA.compare( valueB ) )
            return order <=> 0;
        a += digitsOfA, b += digitsOfB;
    }
    return ( inA.size() - a ) <=> ( inB.size() - b );
}
} // namespace

std::weak_ordering KVVersion::Compare( TextView inA, TextView inB )
{
    return CompareNumerically( Normalise( inA ), Normalise( inB ) );
}

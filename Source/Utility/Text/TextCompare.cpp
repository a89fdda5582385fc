#include "Utility/Text/TextCompare.h"

#include "Utility/Text/StringHelpers.h"
#include "XCAF/XErrorHandler.h"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <unicode/coll.h>
#include <unicode/ustring.h>

namespace
{
bool IsASCII( TextView inText )
{
    return std::all_of( inText.begin(), inText.end(), []( char16_t inUnit ) { return inUnit < 0x80; } );
}

constexpr char16_t ASCIILower( char16_t inUnit )
{
    return inUnit >= u'A' and inUnit <= u'Z' ? char16_t( inUnit + 32 ) : inUnit;
}

// Full folding makes a text at most three times as long.
Text Folded( TextView inText )
{
    Text result( inText.size(), u'\0' );
    if ( IsASCII( inText ) )
    {
        std::transform( inText.begin(), inText.end(), result.begin(), ASCIILower );
        return result;
    }
    for ( ;; )
    {
        UErrorCode status = U_ZERO_ERROR;
        const auto length = u_strFoldCase( result.data(), std::int32_t( result.size() ), inText.data(),
            std::int32_t( inText.size() ), U_FOLD_CASE_DEFAULT, &status );
        const bool fits = std::size_t( length ) <= result.size();
        result.resize( std::size_t( length ) );
        if ( fits )
            return result;
    }
}

int Sign( int inOrder )
{
    return inOrder < 0 ? -1 : inOrder > 0 ? 1 : 0;
}

class Collation
{
public:
    Collation( UColAttributeValue inStrength, UColAttributeValue inNumeric, UColAttributeValue inAlternate )
    {
        UErrorCode status = U_ZERO_ERROR;
        mCollator.reset( icu::Collator::createInstance( icu::Locale::getRoot(), status ) );
        if ( mCollator )
        {
            mCollator->setAttribute( UCOL_STRENGTH, inStrength, status );
            mCollator->setAttribute( UCOL_NUMERIC_COLLATION, inNumeric, status );
            mCollator->setAttribute( UCOL_ALTERNATE_HANDLING, inAlternate, status );
        }
        if ( U_FAILURE( status ) )
            mCollator.reset();
        XAssertText( mCollator, "collation data" );
    }

    int Compare( TextView inText, TextView inOther ) const
    {
        // Without data there is still an order.
        if ( not mCollator )
            return caseInsensitiveCompare( inText, inOther );
        UErrorCode status = U_ZERO_ERROR;
        return mCollator->compare(
            inText.data(), std::int32_t( inText.size() ), inOther.data(), std::int32_t( inOther.size() ), status );
    }

private:
    std::unique_ptr<icu::Collator> mCollator; // its const members may be used by several threads at once
};

const Collation& StandardCollation()
{
    static const Collation gCollation( UCOL_IDENTICAL, UCOL_ON, UCOL_NON_IGNORABLE );
    return gCollation;
}

constexpr bool IsDigit( char16_t inUnit )
{
    return inUnit >= u'0' and inUnit <= u'9';
}

// Names are mostly printable ASCII, and lists are sorted often. For such texts the collation's answer
// is worked out from a table of the characters' order, which the collation itself fills in.
class ASCIIOrder
{
public:
    ASCIIOrder()
    {
        const Collation primary( UCOL_PRIMARY, UCOL_OFF, UCOL_NON_IGNORABLE );
        Text characters;
        for ( char16_t unit = kFirst; unit <= kLast; ++unit )
            characters += unit;
        const auto before = [&]( char16_t a, char16_t b ) {
            return primary.Compare( TextView( &a, 1 ), TextView( &b, 1 ) ) < 0;
        };
        std::stable_sort( characters.begin(), characters.end(), before );
        std::uint8_t rank = 0;
        for ( std::size_t i = 0; i < characters.size(); ++i )
        {
            rank = std::uint8_t( rank + ( i > 0 and before( characters[i - 1], characters[i] ) ) );
            mRanks[characters[i] - kFirst] = rank;
        }
    }

    /// Absent when the texts aren't for this table.
    std::optional<int> Compare( TextView inText, TextView inOther ) const
    {
        if ( not IsPrintable( inText ) or not IsPrintable( inOther ) )
            return {};
        int byCase = 0; // decides when nothing else does
        std::size_t i = 0, j = 0;
        while ( i < inText.size() and j < inOther.size() )
        {
            if ( IsDigit( inText[i] ) and IsDigit( inOther[j] ) )
            {
                const TextView number = TakeNumber( inText, i ), other = TakeNumber( inOther, j );
                if ( std::max( number.size(), other.size() ) > kLongestNumber )
                    return {};
                if ( number.size() != other.size() )
                    return number.size() < other.size() ? -1 : 1;
                if ( const int order = number.compare( other ) )
                    return Sign( order );
                continue;
            }
            const char16_t a = inText[i++], b = inOther[j++];
            if ( const int order = int( Rank( a ) ) - int( Rank( b ) ) )
                return Sign( order );
            if ( byCase == 0 )
                byCase = int( b ) - int( a ); // capitals have the smaller code, and sort behind
        }
        if ( i < inText.size() or j < inOther.size() )
            return i < inText.size() ? 1 : -1;
        return byCase ? Sign( byCase ) : Sign( inText.compare( inOther ) );
    }

private:
    static constexpr char16_t kFirst = u' ', kLast = u'~';
    // The collation cuts longer numbers into several.
    static constexpr std::size_t kLongestNumber = 250;

    static bool IsPrintable( TextView inText )
    {
        return std::all_of(
            inText.begin(), inText.end(), []( char16_t inUnit ) { return inUnit >= kFirst and inUnit <= kLast; } );
    }

    std::uint8_t Rank( char16_t inUnit ) const { return mRanks[inUnit - kFirst]; }

    // The digits of a number without its leading zeros.
    static TextView TakeNumber( TextView inText, std::size_t& ioAt )
    {
        while ( ioAt < inText.size() and inText[ioAt] == u'0' )
            ++ioAt;
        const std::size_t start = ioAt;
        while ( ioAt < inText.size() and IsDigit( inText[ioAt] ) )
            ++ioAt;
        return inText.substr( start, ioAt - start );
    }

    std::array<std::uint8_t, kLast - kFirst + 1> mRanks;
};
} // namespace

bool kvr_caseInsensitiveIsEqualToString( TextView inText, TextView inOther )
{
    return caseInsensitiveCompare( inText, inOther ) == 0;
}

bool kvr_caseInsensitiveContainsString( TextView inText, TextView inPart )
{
    return kvr_containsString( Folded( inText ), Folded( inPart ) );
}

bool kvr_caseInsensitiveHasPrefix( TextView inText, TextView inPrefix )
{
    return Folded( inText ).starts_with( Folded( inPrefix ) );
}

bool kvr_caseInsensitiveHasSuffix( TextView inText, TextView inSuffix )
{
    return Folded( inText ).ends_with( Folded( inSuffix ) );
}

int caseInsensitiveCompare( TextView inText, TextView inOther )
{
    const std::size_t common = std::min( inText.size(), inOther.size() );
    std::size_t i = 0;
    for ( ; i < common and inText[i] < 0x80 and inOther[i] < 0x80; ++i )
    {
        if ( const int order = int( ASCIILower( inText[i] ) ) - int( ASCIILower( inOther[i] ) ) )
            return Sign( order );
    }
    if ( i == inText.size() or i == inOther.size() )
        return Sign( int( i < inText.size() ) - int( i < inOther.size() ) );
    UErrorCode status = U_ZERO_ERROR;
    return Sign( u_strCaseCompare( inText.data() + i, std::int32_t( inText.size() - i ), inOther.data() + i,
        std::int32_t( inOther.size() - i ), U_FOLD_CASE_DEFAULT, &status ) );
}

int localizedStandardCompare( TextView inText, TextView inOther )
{
    static const ASCIIOrder gOrder;
    if ( const auto order = gOrder.Compare( inText, inOther ) )
        return *order;
    return StandardCollation().Compare( inText, inOther );
}

int localizedCaseInsensitiveCompare( TextView inText, TextView inOther )
{
    static const Collation gCollation( UCOL_SECONDARY, UCOL_OFF, UCOL_NON_IGNORABLE );
    return gCollation.Compare( inText, inOther );
}

bool vaguelyEqualToString( TextView inText, TextView inOther )
{
    static const Collation gCollation( UCOL_PRIMARY, UCOL_OFF, UCOL_SHIFTED );
    if ( gCollation.Compare( inText, u"" ) == 0 or gCollation.Compare( inOther, u"" ) == 0 )
        return inText == inOther;
    return gCollation.Compare( inText, inOther ) == 0;
}

#include "Utility/Text/StringRange.h"

#include "XCAF/XErrorHandler.h"

#include <cmath>

namespace
{
// Beyond any text, and small enough that sums of three stay exact.
constexpr double kFarAway = 4503599627370496.0; // 2^52

std::optional<std::int64_t> CalculateRounded(
    const std::optional<TextView>& inCalculation, TextView inText, const StringRange::Calculator& inCalculator )
{
    if ( not inCalculation )
        return {};
    const auto value = inCalculator( *inCalculation, double( inText.size() ) );
    if ( not value or std::isnan( *value ) )
        return {};
    return std::llround( std::clamp( *value, -kFarAway, kFarAway ) );
}

TextRange RangeInside( std::int64_t inStart, std::int64_t inLength, std::int64_t inTextLength )
{
    if ( inLength < 1 )
        return {};
    if ( inStart < 0 )
    {
        inLength = std::max<std::int64_t>( inLength + inStart, 0 );
        inStart = 0;
    }
    return TextRange{ std::size_t( inStart ), std::size_t( inLength ) }.ClippedTo( std::size_t( inTextLength ) );
}
} // namespace

int CountTypeValues( StringRangeType inType )
{
    switch ( inType )
    {
    case StringRangeType::kAll:
        return 0;
    case StringRangeType::kTo:
    case StringRangeType::kFrom:
    case StringRangeType::kLast:
        return 1;
    case StringRangeType::kRange:
    case StringRangeType::kFromTo:
        return 2;
    }
    return 0;
}

bool StringRange::FindMatch( TextRange& outRange, StringRangeType inType, TextView inText,
    std::optional<TextView> first, std::optional<TextView> second, const Calculator& inCalculator )
{
    const StringRangeType t = inType;
    XAssertText( CountTypeValues( t ) < 1 or first, "CountTypeValues( t ) < 1 || first" );
    XAssertText( CountTypeValues( t ) < 2 or second, "CountTypeValues( t ) < 2 || second" );

    std::int64_t n = 0, m = 0;
    if ( CountTypeValues( t ) >= 1 )
    {
        const auto value = CalculateRounded( first, inText, inCalculator );
        if ( not value )
            return false;
        n = *value;
    }
    if ( CountTypeValues( t ) >= 2 )
    {
        const auto value = CalculateRounded( second, inText, inCalculator );
        if ( not value )
            return false;
        m = *value;
    }

    const auto length = std::int64_t( inText.size() );
    switch ( t )
    {
    case StringRangeType::kAll:
        outRange = RangeInside( 0, length, length );
        break;
    case StringRangeType::kTo:
        outRange = RangeInside( 0, n, length );
        break;
    case StringRangeType::kFrom:
        outRange = RangeInside( n - 1, length - n + 1, length );
        break;
    case StringRangeType::kLast:
        outRange = RangeInside( length - n, n, length );
        break;
    case StringRangeType::kRange:
        outRange = RangeInside( n - 1, m, length );
        break;
    case StringRangeType::kFromTo:
        outRange = RangeInside( n - 1, m - n + 1, length );
        break;
    }
    return true;
}

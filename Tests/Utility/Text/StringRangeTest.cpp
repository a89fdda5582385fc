#include "Utility/Text/StringRange.h"

#include <cmath>
#include <gtest/gtest.h>

namespace
{
// "LENGTH", or a number; anything else fails.
std::optional<double> Calculate( TextView inCalculation, double inLENGTH )
{
    if ( inCalculation == u"LENGTH" )
        return inLENGTH;
    char* end = nullptr;
    const std::string text = UTF8FromText( inCalculation );
    const double value = std::strtod( text.c_str(), &end );
    return end != text.c_str() and *end == 0 ? std::optional( value ) : std::nullopt;
}

std::optional<TextRange> Match( StringRangeType inType, const char16_t* inFirst, const char16_t* inSecond )
{
    TextRange range{ 77, 77 };
    const auto calculation = []( const char16_t* inText ) {
        return inText ? std::optional<TextView>( inText ) : std::nullopt;
    };
    const bool found = StringRange::FindMatch(
        range, inType, u"0123456789", calculation( inFirst ), calculation( inSecond ), Calculate );
    EXPECT_TRUE( found or range == ( TextRange{ 77, 77 } ) );
    return found ? std::optional( range ) : std::nullopt;
}
} // namespace

TEST( StringRange, EachTypeSelectsItsPartAndStaysInside )
{
    using enum StringRangeType;
    const struct
    {
        StringRangeType mType;
        const char16_t *mFirst, *mSecond;
        TextRange mRange;
    } kCases[] = {
        { kAll, nullptr, nullptr, { 0, 10 } },
        { kTo, u"3", nullptr, { 0, 3 } },
        { kTo, u"99", nullptr, { 0, 10 } },
        { kTo, u"0", nullptr, { 0, 0 } },
        { kTo, u"-5", nullptr, { 0, 0 } },
        { kTo, u"LENGTH", nullptr, { 0, 10 } },
        { kTo, u"2.5", nullptr, { 0, 3 } },
        { kFrom, u"3", nullptr, { 2, 8 } },
        { kFrom, u"0", nullptr, { 0, 10 } },
        { kFrom, u"11", nullptr, { 0, 0 } },
        { kFrom, u"-3", nullptr, { 0, 10 } },
        { kLast, u"3", nullptr, { 7, 3 } },
        { kLast, u"30", nullptr, { 0, 10 } },
        { kRange, u"3", u"4", { 2, 4 } },
        { kRange, u"0", u"4", { 0, 3 } },
        { kRange, u"-9", u"4", { 0, 0 } },
        { kRange, u"9", u"4", { 8, 2 } },
        { kRange, u"11", u"4", { 10, 0 } },
        { kRange, u"30", u"4", { 10, 0 } },
        { kRange, u"3", u"0", { 0, 0 } },
        { kFromTo, u"3", u"5", { 2, 3 } },
        { kFromTo, u"5", u"3", { 0, 0 } },
        { kFromTo, u"5", u"1e300", { 4, 6 } },
        { kFromTo, u"-inf", u"inf", { 0, 10 } },
        { kRange, u"inf", u"inf", { 10, 0 } },
        { kRange, u"-inf", u"inf", { 0, 0 } },
    };
    for ( const auto& [type, first, second, range] : kCases )
        EXPECT_EQ( Match( type, first, second ), range )
            << UTF8FromText( NamesOf( type )[std::size_t( type )] ) << ' ' << ( first ? UTF8FromText( first ) : "" )
            << ' ' << ( second ? UTF8FromText( second ) : "" );
}

TEST( StringRange, AFailedOrMissingCalculationIsFalse )
{
    EXPECT_FALSE( Match( StringRangeType::kTo, u"x", nullptr ) );
    EXPECT_FALSE( Match( StringRangeType::kTo, u"nan", nullptr ) );
    EXPECT_FALSE( Match( StringRangeType::kRange, u"1", u"x" ) );
    EXPECT_FALSE( Match( StringRangeType::kTo, nullptr, nullptr ) );
    EXPECT_FALSE( Match( StringRangeType::kFromTo, u"1", nullptr ) );
}

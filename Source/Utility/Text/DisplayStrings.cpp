#include "Utility/Text/DisplayStrings.h"

#include "Utility/Text/Localization.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>

namespace
{
struct Unit
{
    std::int64_t mSeconds;
    TextView mOneKey, mManyKey;
};

// From the largest. A year has 365 days here: who counts saved time doesn't count leap days.
constexpr Unit kUnits[] = {
    { 365 * 86400, u"kvTimeOneYear", u"kvTimeYearsFormat" },
    { 86400, u"kvTimeOneDay", u"kvTimeDaysFormat" },
    { 3600, u"kvTimeOneHour", u"kvTimeHoursFormat" },
    { 60, u"kvTimeOneMinute", u"kvTimeMinutesFormat" },
    { 1, u"kvTimeOneSecond", u"kvTimeSecondsFormat" },
};

std::int64_t WholeSeconds( double inSeconds )
{
    // Not a number fails every comparison. The bound keeps the conversion defined, 30 million years away.
    return inSeconds > 0 ? std::llround( std::min( inSeconds, 1e15 ) ) : 0;
}

std::size_t LargestUnit( std::int64_t inSeconds )
{
    std::size_t index = 0;
    while ( index + 1 < std::size( kUnits ) and inSeconds < kUnits[index].mSeconds )
        ++index;
    return index;
}

Text Counted( const Unit& inUnit, std::int64_t inCount )
{
    return inCount == 1 ? kvr_localized( inUnit.mOneKey ) : kvr_localizedFormat( inUnit.mManyKey, inCount );
}
} // namespace

Text stringWithTimeInSeconds( double inSeconds )
{
    const std::int64_t seconds = WholeSeconds( inSeconds );
    const std::size_t index = LargestUnit( seconds );
    const Text first = Counted( kUnits[index], seconds / kUnits[index].mSeconds );
    if ( index + 1 == std::size( kUnits ) )
        return first;
    const std::int64_t rest = seconds % kUnits[index].mSeconds / kUnits[index + 1].mSeconds;
    if ( rest == 0 )
        return first;
    return kvr_localizedFormat( u"kvTimeTwoUnitsFormat", first, Counted( kUnits[index + 1], rest ) );
}

Text stringWithTimeSaved( double inSeconds )
{
    const std::int64_t seconds = WholeSeconds( std::floor( inSeconds ) );
    const Unit& unit = kUnits[LargestUnit( seconds )];
    return Counted( unit, seconds / unit.mSeconds );
}

Text stringWithRatingStars( double inRating, bool inFull )
{
    // Halves of a star, to the nearest.
    const double rating = inRating > 0 ? std::min( inRating, 100.0 ) : 0.0;
    const auto halves = std::size_t( std::lround( rating / 10 ) );
    const bool half = halves % 2 != 0;
    Text result( halves / 2, u'\u2605' );
    if ( half )
        result += u'\u00BD';
    if ( inFull )
        result.append( 5 - halves / 2 - ( half ? 1 : 0 ), u'\u2606' );
    return result;
}

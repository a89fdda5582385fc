#include "Utility/Cron/XTimeZone.h"

#include <sys/stat.h>
#include <unicode/basictz.h>
#include <unicode/timezone.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <mutex>
#include <string>
#include <utility>

namespace
{
constexpr double kReferenceDateInUnixSeconds = 978307200.0; // 2001-01-01 00:00:00 UTC
constexpr double kDay = 86400.0;
constexpr double kFarthest = 1e14; // seconds, some three million years: beyond lies no date that a person means

UDate ICUTime( XAbsoluteTime inTime )
{
    return ( inTime + kReferenceDateInUnixSeconds ) * 1000.0;
}

const icu::TimeZone& ICUZone( const std::shared_ptr<const void>& inZone )
{
    return *static_cast<const icu::TimeZone*>( inZone.get() );
}

std::shared_ptr<const void> Own( icu::TimeZone* inZone )
{
    return std::shared_ptr<const icu::TimeZone>( inZone );
}

// Finding out which zone the machine is in can mean comparing files, so it is done again only when
// something that decides it has changed.
struct LocalZone
{
    std::mutex mMutex;
    std::string mVariable;
    struct stat mFile = {};
    std::shared_ptr<const void> mZone;
    std::shared_ptr<const void> mSubstitute;
};

LocalZone& TheLocalZone()
{
    static auto* const gLocalZone = new LocalZone;
    return *gLocalZone;
}

bool IsSameFile( const struct stat& a, const struct stat& b )
{
    return a.st_dev == b.st_dev and a.st_ino == b.st_ino and a.st_mtime == b.st_mtime;
}
} // namespace

XTimeZone XTimeZone::GMT()
{
    static const std::shared_ptr<const void> gGMT = Own( icu::TimeZone::getGMT()->clone() );
    return XTimeZone( gGMT );
}

XTimeZone XTimeZone::Local()
{
    LocalZone& local = TheLocalZone();
    const std::scoped_lock lock( local.mMutex );
    if ( local.mSubstitute )
        return XTimeZone( local.mSubstitute );
    const char* const value = std::getenv( "TZ" );
    const std::string variable = value ? value : "";
    struct stat file = {};
    ::stat( "/etc/localtime", &file );
    if ( not local.mZone or variable != local.mVariable or not IsSameFile( file, local.mFile ) )
    {
        local.mZone = Own( icu::TimeZone::detectHostTimeZone() );
        local.mVariable = variable;
        local.mFile = file;
    }
    return XTimeZone( local.mZone );
}

std::optional<XTimeZone> XTimeZone::FromName( TextView inName )
{
    const icu::UnicodeString name( inName.data(), std::int32_t( inName.size() ) );
    std::unique_ptr<icu::TimeZone> zone( icu::TimeZone::createTimeZone( name ) );
    // What stands for a name that nobody knows has a name too, by which it can be asked for.
    icu::UnicodeString found, unknown;
    if ( zone->getID( found ) == icu::TimeZone::getUnknown().getID( unknown ) )
        return {};
    return XTimeZone( Own( zone.release() ) );
}

Text XTimeZone::GetName() const
{
    icu::UnicodeString name;
    ICUZone( mZone ).getID( name );
    return Text( name.getBuffer(), std::size_t( name.length() ) );
}

double XTimeZone::OffsetAt( XAbsoluteTime inTime ) const
{
    std::int32_t raw = 0, saving = 0;
    UErrorCode status = U_ZERO_ERROR;
    ICUZone( mZone ).getOffset( ICUTime( inTime ), false, raw, saving, status );
    return ( raw + saving ) / 1000.0;
}

XCivilTime XTimeZone::CivilTime( XAbsoluteTime inTime ) const
{
    const double time = std::isnan( inTime ) ? 0 : std::clamp( inTime, -kFarthest, kFarthest );
    const double local = time + OffsetAt( time );
    const auto day = std::int64_t( std::floor( local / kDay ) );
    // Next to midnight the quotient can be rounded up to the day that is about to begin, and the difference up to a
    // whole day.
    const double second = std::clamp( local - double( day ) * kDay, 0.0, std::nextafter( kDay, 0.0 ) );

    // Years of 400 count from the first of March, so that the leap day is a year's last.
    constexpr std::int64_t kDaysIn400Years = 146097;
    const std::int64_t shifted = day + 730791; // days since 0000-03-01
    const std::int64_t era = ( shifted >= 0 ? shifted : shifted - kDaysIn400Years + 1 ) / kDaysIn400Years;
    const std::int64_t inEra = shifted - era * kDaysIn400Years;
    const std::int64_t year = ( inEra - inEra / 1460 + inEra / 36524 - inEra / 146096 ) / 365;
    const std::int64_t inYear = inEra - ( 365 * year + year / 4 - year / 100 );
    const std::int64_t month = ( 5 * inYear + 2 ) / 153;

    XCivilTime civil;
    civil.mDay = int( inYear - ( 153 * month + 2 ) / 5 + 1 );
    civil.mMonth = int( month < 10 ? month + 3 : month - 9 );
    civil.mYear = int( year + era * 400 + ( civil.mMonth <= 2 ? 1 : 0 ) );
    civil.mHour = int( second / 3600 );
    civil.mMinute = int( second / 60 ) % 60;
    civil.mSecond = std::fmod( second, 60.0 );
    civil.mWeekday = int( ( ( day + 1 ) % 7 + 7 ) % 7 ) + 1; // 2001 began on a Monday
    return civil;
}

std::optional<XAbsoluteTime> XTimeZone::AbsoluteTime( const XCivilTime& inTime ) const
{
    const double local = double( kvr_dayNumber( inTime.mYear, inTime.mMonth, inTime.mDay ) ) * kDay +
        inTime.mHour * 3600.0 + inTime.mMinute * 60.0 + inTime.mSecond;
    // Clocks jump by at most a day; of the offsets on both sides, those count that hold at the time that they give.
    // Offsets are compared, as they are exact: a time with a fraction can be rounded on the way to GMT and back.
    const double before = OffsetAt( local - kDay ), after = OffsetAt( local + kDay );
    std::optional<XAbsoluteTime> first;
    for ( const double offset : { before, after } )
    {
        const double time = local - offset;
        if ( OffsetAt( time ) == offset and ( not first or time < *first ) )
            first = time;
    }
    if ( first or before != after )
        return first;
    // Two jumps within two days.
    for ( double offset = -kDay; offset <= kDay; offset += 900 )
    {
        if ( OffsetAt( local + offset ) == -offset )
            first = std::min( first.value_or( local + offset ), local + offset );
    }
    return first;
}

XTimeZone::Substitute::Substitute( const XTimeZone& inZone )
{
    LocalZone& local = TheLocalZone();
    const std::scoped_lock lock( local.mMutex );
    mPrevious = std::exchange( local.mSubstitute, inZone.mZone );
}

XTimeZone::Substitute::~Substitute()
{
    LocalZone& local = TheLocalZone();
    const std::scoped_lock lock( local.mMutex );
    local.mSubstitute = std::move( mPrevious );
}

std::int64_t kvr_dayNumber( int inYear, int inMonth, int inDay )
{
    std::int64_t year = std::int64_t( inYear ) + ( inMonth - 1 ) / 12;
    int month = ( inMonth - 1 ) % 12;
    if ( month < 0 )
    {
        month += 12;
        --year;
    }
    ++month;
    year -= month <= 2;
    const std::int64_t era = ( year >= 0 ? year : year - 399 ) / 400;
    const std::int64_t inEra = year - era * 400;
    const std::int64_t inYearDays = ( 153 * ( month > 2 ? month - 3 : month + 9 ) + 2 ) / 5 + inDay - 1;
    return era * 146097 + inEra * 365 + inEra / 4 - inEra / 100 + inYearDays - 730791;
}

int kvr_daysInMonth( int inYear, int inMonth )
{
    return int( kvr_dayNumber( inYear, inMonth + 1, 1 ) - kvr_dayNumber( inYear, inMonth, 1 ) );
}

// A time zone, and the dates on its calendar. Any thread.
#pragma once

#include "CFMethods/Text.h"
#include "Utility/Work/Clock.h"

#include <memory>
#include <optional>

/// A date and time as a wall clock in some zone shows it; Gregorian.
struct XCivilTime
{
    int mYear = 2001;
    int mMonth = 1;     ///< 1 to 12
    int mDay = 1;       ///< 1 to 31
    int mHour = 0;      ///< 0 to 23
    int mMinute = 0;    ///< 0 to 59
    double mSecond = 0; ///< 0 to below 60
    int mWeekday = 2;   ///< 1 is Sunday; only of results

    [[nodiscard]] bool operator==( const XCivilTime& ) const = default;
};

class XTimeZone
{
public:
    [[nodiscard]] static XTimeZone GMT();
    /// The zone that the user's machine is in now. Changes of it are seen at the next call.
    [[nodiscard]] static XTimeZone Local();
    /// A zone by its name, such as "Europe/Berlin"; absent when there is none of it.
    [[nodiscard]] static std::optional<XTimeZone> FromName( TextView inName );

    [[nodiscard]] Text GetName() const;
    /// Seconds to add to GMT at that time.
    [[nodiscard]] double OffsetAt( XAbsoluteTime inTime ) const;
    /// A time farther than 1e14 seconds from 2001 counts as that far.
    [[nodiscard]] XCivilTime CivilTime( XAbsoluteTime inTime ) const;
    /// When the zone's clocks show that. Absent when they never do, as they are put forward over it; the first of
    /// the two times when they show it twice.
    [[nodiscard]] std::optional<XAbsoluteTime> AbsoluteTime( const XCivilTime& inTime ) const;

    /// Makes Local() a fixed zone for as long as this object lives. Main thread, while nothing else runs.
    class Substitute
    {
    public:
        explicit Substitute( const XTimeZone& inZone );
        ~Substitute();
        Substitute( const Substitute& ) = delete;
        Substitute& operator=( const Substitute& ) = delete;

    private:
        std::shared_ptr<const void> mPrevious;
    };

private:
    explicit XTimeZone( std::shared_ptr<const void> inZone ) : mZone( std::move( inZone ) ) {}

    std::shared_ptr<const void> mZone; // one of the ICU library's, whose header stays out of here
};

/// Days since 2001-01-01 of a date; months and days beyond their ranges count on.
[[nodiscard]] std::int64_t kvr_dayNumber( int inYear, int inMonth, int inDay );
/// The days of a month, 28 to 31.
[[nodiscard]] int kvr_daysInMonth( int inYear, int inMonth );

#include "Triggers/TimeTriggers.h"

#include "Macros/MLoadObserver.h"
#include "Utility/Text/DisplayStrings.h"
#include "Utility/Text/Localization.h"
#include "XCAF/XException.h"

#include <algorithm>
#include <limits>

using ExecuteType = TimeTriggerExecuteType;

namespace
{
// A part of a time of day; what doesn't fit is as good as absent.
void DescribeSmall( HFieldVisitor& inVisitor, HFieldKey inKey, std::int8_t& ioValue )
{
    using Limits = std::numeric_limits<std::int8_t>;
    auto value = std::int32_t( ioValue );
    inVisitor.Integer( inKey, value );
    if ( not inVisitor.IsReading() )
        return;
    if ( value >= Limits::min() and value <= Limits::max() )
        ioValue = std::int8_t( value );
    else
        inVisitor.NoteRepair( inKey, u"it is no part of a time of day; the default stands", MLoadRule::kOutOfRange );
}
} // namespace

// Time

void TTimeTrigger::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "ExecuteType", mExecuteType );
    DescribeSmall( inVisitor, "TimeHour", mHour );
    DescribeSmall( inVisitor, "TimeMinutes", mMinutes );
    DescribeSmall( inVisitor, "TimeFinishHour", mFinishHour );
    DescribeSmall( inVisitor, "TimeFinishMinutes", mFinishMinutes );
    DescribeRepeat( inVisitor );
    DescribeDays( inVisitor );
}

void TTimeTrigger::DescribeRepeat( HFieldVisitor& inVisitor )
{
    bool repeats = mExecuteType == ExecuteType::kWhile;
    inVisitor.Boolean( "Repeat", repeats );
    inVisitor.Integer( "RepeatTime", mRepeatTime );
    if ( not inVisitor.IsReading() )
        return;
    if ( repeats )
        mExecuteType = ExecuteType::kWhile;
    if ( mExecuteType == ExecuteType::kWhile and mRepeatTime <= 0 )
    {
        mRepeatTime = 60;
        inVisitor.NoteRepair(
            "RepeatTime", u"it repeats after a time above 0; 60 seconds stand", MLoadRule::kOutOfRange );
    }
}

void TTimeTrigger::DescribeDays( HFieldVisitor& inVisitor )
{
    std::int32_t mask = mWhichDays;
    inVisitor.Integer( "WhichDays", mask );
    if ( not inVisitor.IsReading() )
        return;
    if ( mask < 0 or mask > std::numeric_limits<std::uint16_t>::max() )
    {
        inVisitor.NoteRepair( "WhichDays", u"it is no mask of days; the default stands", MLoadRule::kOutOfRange );
        return;
    }
    SetWhichDaysBits( std::uint16_t( mask ) );
    if ( mWhichDays != mask )
        inVisitor.NoteRepair( "WhichDays", u"a week has seven days", MLoadRule::kOutOfRange );
}

void TTimeTrigger::LoadSubclassFromDictionary( const XPlistDictionary& inDictionary )
{
    XText type;
    (void)inDictionary.Get( CFSTR( "ExecuteType" ), type );
    const bool gotExecuteType =
        std::ranges::any_of( NamesOf( mExecuteType ), [&type]( TextView name ) { return type.Equals( name ); } );
    XThrowIfNot( gotExecuteType );
    TBaseTrigger::LoadSubclassFromDictionary( inDictionary );
    // Earlier versions had no type for what repeats, only the flag.
    MLoadObserver* const observer = MLoadObserver::Current();
    if ( observer and not type.Equals( StoredName( mExecuteType ) ) )
        observer->DidUpgradeValue( inDictionary, CFSTR( "ExecuteType" ), u"what repeats does so between two times" );
}

void TTimeTrigger::SetExecuteTime( std::int8_t inHour, std::int8_t inMinute )
{
    mHour = inHour;
    mMinutes = inMinute;
}

void TTimeTrigger::SetExecuteFinishTime( std::int8_t inHour, std::int8_t inMinute )
{
    mFinishHour = inHour;
    mFinishMinutes = inMinute;
}

namespace
{
constexpr TextView kDayTextKeys[] = { u"tTimeTrigger_Monday", u"tTimeTrigger_Tuesday", u"tTimeTrigger_Wednesday",
    u"tTimeTrigger_Thursday", u"tTimeTrigger_Friday", u"tTimeTrigger_Saturday", u"tTimeTrigger_Sunday" };

// Of a mask of one day.
Text DayName( std::uint16_t inDay )
{
    for ( std::size_t i = 0; i < std::size( kDayTextKeys ); ++i )
    {
        if ( inDay == 1u << i )
            return kvr_localized( kDayTextKeys[i] );
    }
    return u"Unknown";
}

// The runs of weekdays that are told by their first and last.
constexpr struct
{
    std::uint16_t mDays, mFirst, mLast;
} kWeekdayRanges[] = {
    { 0b00111, 0b00001, 0b00100 },
    { 0b01111, 0b00001, 0b01000 },
    { 0b11111, 0b00001, 0b10000 },
    { 0b01110, 0b00010, 0b01000 },
    { 0b11110, 0b00010, 0b10000 },
    { 0b11100, 0b00100, 0b10000 },
};

// "" when the weekdays are no such run.
Text WeekdayRange( std::uint16_t inDays )
{
    const std::uint16_t weekdays = inDays & TTimeTrigger::kWeekdays;
    for ( const auto& [days, first, last] : kWeekdayRanges )
    {
        if ( weekdays == days )
            return kvr_localizedFormat( u"tTimeTrigger_WeekdayRange", DayName( first ), DayName( last ) );
    }
    return {};
}

Text CertainDays( std::uint16_t inDays )
{
    Text names;
    for ( std::uint16_t day = 1; day <= TTimeTrigger::kEveryDay; day = std::uint16_t( day << 1 ) )
    {
        if ( inDays & day )
            names.append( names.empty() ? TextView() : TextView( kvr_localized( u"tTimeTrigger_DaySep" ) ) )
                .append( DayName( day ) );
    }
    return kvr_localizedFormat( u"tTimeTrigger_CertainDaysFormat", names );
}

Text TimeOfDay( std::int8_t inHour, std::int8_t inMinutes )
{
    return kvr_format( u"%d:%02d", std::int32_t( inHour ), std::int32_t( inMinutes ) );
}
} // namespace

Text TTimeTrigger::GetDaysDescription() const
{
    if ( mWhichDays == 0 )
        return kvr_localized( u"tTimeTrigger_NoDays" );
    if ( mWhichDays == kWeekends )
        return kvr_localized( u"tTimeTrigger_Weekends" );
    if ( mWhichDays == kEveryDay )
        return kvr_localized( u"tTimeTrigger_EveryDay" );
    Text range = WeekdayRange( mWhichDays );
    if ( range.empty() )
        return CertainDays( mWhichDays );
    const std::uint16_t weekend = mWhichDays & kWeekends;
    if ( weekend == 0 )
        return range;
    return kvr_localizedFormat( u"tTimeTrigger_WorkdaysAndWekendDays", range, // the key is spelt so
        weekend == kWeekends ? kvr_localized( u"tTimeTrigger_Weekends" ) : DayName( weekend ) );
}

Text TTimeTrigger::GetTriggerTypeDescription() const
{
    constexpr TextView kTitleKeys[] = { u"tLoginTriggerTitle", u"tLaunchTriggerTitle", u"tTimeTriggerTitle",
        u"tWhileLoggedInTriggerTitle" };
    static_assert( std::size( kTitleKeys ) == std::size( kTimeTriggerExecuteTypeNames ) );
    return kvr_localized( kTitleKeys[std::size_t( mExecuteType )] );
}

Text TTimeTrigger::GetDescription() const
{
    const Text start = TimeOfDay( mHour, mMinutes );
    switch ( mExecuteType )
    {
    case ExecuteType::kLogin:
        return kvr_localized( u"tTimeTrigger_LoginDescription" );
    case ExecuteType::kLaunch:
        return kvr_localized( u"tTimeTrigger_LaunchDescription" );
    case ExecuteType::kTime:
        break;
    case ExecuteType::kWhile:
        return kvr_localizedFormat( u"tTimeTrigger_WhileLoggedInDescFormat", stringWithTimeInSeconds( mRepeatTime ),
            kvr_localizedFormat( u"tTimeTrigger_TimeBetweenFormat", start, TimeOfDay( mFinishHour, mFinishMinutes ) ),
            GetDaysDescription() );
    }
    return kvr_localizedFormat( u"tTimeTrigger_ExecuteAyDescFormat", start, GetDaysDescription() ); // spelt so
}

Text TTimeTrigger::GetShortDescription() const
{
    if ( mExecuteType == ExecuteType::kLogin )
        return kvr_localized( u"tTimeTrigger_Login" );
    if ( mExecuteType == ExecuteType::kLaunch )
        return kvr_localized( u"tTimeTrigger_Launch" );
    return kvr_localizedFormat( u"tTimeTrigger_TimeFormat", TimeOfDay( mHour, mMinutes ) );
}

// Cron

void TCronTrigger::DescribeFields( HFieldVisitor& inVisitor )
{
    // A new trigger shows what an expression looks like; a file without one has none.
    inVisitor.Text( "Cron", mCron, { .mWhenMissing = u"" } );
}

Text TCronTrigger::GetDescription() const
{
    return kvr_localizedFormat( u"tCronTriggerFormat", mCron.GetText() );
}

Text TCronTrigger::GetShortDescription() const
{
    return kvr_localized( u"tCronTriggerShortDesc" );
}

// Idle

void TIdleTrigger::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Integer( "Idle", mIdle, { .mRequiredAs = "mIdle" } );
    inVisitor.Integer( "AndAfter", mAndAfter );
}

Text TIdleTrigger::GetDescription() const
{
    return kvr_localizedFormat( kvr_format( u"tIdleTriggerDesc%dFormat", mAndAfter > 0 ),
        stringWithTimeInSeconds( mIdle ), stringWithTimeInSeconds( mAndAfter ) );
}

Text TIdleTrigger::GetShortDescription() const
{
    return kvr_localized( u"tIdleTriggerShortDesc" );
}

// The triggers of time: at a time of day, by a cron expression, after idling. The firing is the engine's.
#pragma once

#include "Actions/HFieldVisitor.h"
#include "Actions/SharedText.h"
#include "Triggers/TBaseTrigger.h"

enum class TimeTriggerExecuteType { kLogin, kLaunch, kTime, kWhile };
inline constexpr TextView kTimeTriggerExecuteTypeNames[] = { u"Login", u"Launch", u"Time", u"While" };
static_assert( std::size( kTimeTriggerExecuteTypeNames ) == std::size_t( TimeTriggerExecuteType::kWhile ) + 1 );
constexpr auto NamesOf( TimeTriggerExecuteType )
{
    return std::span( kTimeTriggerExecuteTypeNames );
}

/// At login, at launch, at a time of day, or repeatedly between two.
class TTimeTrigger final : public TTriggerOf<TTimeTrigger, TriggerType::kTime>
{
public:
    // The bits of the day mask: Monday is the lowest of seven.
    static constexpr std::uint16_t kEveryDay = 127;
    static constexpr std::uint16_t kWeekends = 96;
    static constexpr std::uint16_t kWeekdays = 31;

    void DescribeFields( HFieldVisitor& inVisitor ) override;
    /// Throws "gotExecuteType" without a known execute type.
    void LoadSubclassFromDictionary( const XPlistDictionary& inDictionary ) override;
    [[nodiscard]] Text GetTriggerTypeDescription() const override;
    [[nodiscard]] Text GetDescription() const override;
    [[nodiscard]] Text GetShortDescription() const override;

    [[nodiscard]] TimeTriggerExecuteType GetExecuteType() const { return mExecuteType; }
    void SetExecuteType( TimeTriggerExecuteType inType ) { mExecuteType = inType; }
    void SetExecuteTime( std::int8_t inHour, std::int8_t inMinute );
    void SetExecuteFinishTime( std::int8_t inHour, std::int8_t inMinute );
    void SetRepeatTime( std::int32_t inSeconds ) { mRepeatTime = inSeconds; }
    [[nodiscard]] std::int32_t GetRepeatTime() const { return mRepeatTime; }
    /// The low seven bits count.
    void SetWhichDaysBits( std::uint16_t inMask ) { mWhichDays = inMask & kEveryDay; }
    [[nodiscard]] std::uint16_t GetWhichDaysBits() const { return mWhichDays; }
    /// The days in words, as part of the description.
    [[nodiscard]] Text GetDaysDescription() const;

private:
    void DescribeRepeat( HFieldVisitor& inVisitor );
    void DescribeDays( HFieldVisitor& inVisitor );

    TimeTriggerExecuteType mExecuteType = TimeTriggerExecuteType::kTime;
    std::int8_t mHour = 8, mMinutes = 30;
    std::int8_t mFinishHour = 17, mFinishMinutes = 30;
    std::int32_t mRepeatTime = 60; // seconds
    std::uint16_t mWhichDays = kEveryDay;
};

/// By a cron expression, which is kept as it was typed, whether or not it can be understood.
class TCronTrigger final : public TTriggerOf<TCronTrigger, TriggerType::kCron>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;
    [[nodiscard]] Text GetShortDescription() const override;

    [[nodiscard]] const XText& GetCron() const { return mCron; }
    void SetCron( const XText& inCron ) { mCron = inCron; }

private:
    XText mCron = SharedText<u"0 0 -1 1 +1 2017">();
};

/// When nobody has touched the computer for a while, and again after each further while.
class TIdleTrigger final : public TTriggerOf<TIdleTrigger, TriggerType::kIdle>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;
    [[nodiscard]] Text GetShortDescription() const override;

private:
    std::int32_t mIdle = 10;    // seconds
    std::int32_t mAndAfter = 0; // seconds; 0 doesn't fire again
};

// Cron expressions: minutes, hours, days, months, weekdays and perhaps years, each a list of numbers, ranges
// and steps. Parsed into bit sets, and told as an English sentence. The sentences and errors are not
// localised. Any thread.
#pragma once

#include "CFMethods/Text.h"

#include <bitset>
#include <optional>

class CronParser
{
public:
    struct Entry
    {
        std::bitset<60> mMinutes;
        std::bitset<24> mHours;
        std::bitset<31> mDays;   ///< bit 0 is day 1, or the last day of a month, if counted from its end
        std::bitset<12> mMonths; ///< bit 0 is January
        /// Bit 0 is Sunday, and so is bit 7. "@weekly" sets bit 0 only, so that bit 0 is the one to ask.
        std::bitset<8> mDOWs;
        std::bitset<100> mYears; ///< bit 0 is 2000
        bool mFromEndOfMonth = false;
        /// True: a date matches by its day or by its weekday. False: it has to match by both.
        bool mDayOrDOW = true;

        [[nodiscard]] bool operator==( const Entry& ) const = default;
    };

    static constexpr int kFirstYear = 2000;
    static constexpr int kLastYear = 2099;

    /// Fills the entry; or returns what is wrong with the text, and the entry is as a new one. Nothing is
    /// checked across fields: the 31st of February parses, and never comes.
    [[nodiscard]] static std::optional<Text> ParseString( TextView inText, Entry& outEntry );

    /// "At 4:05 on Mon or day 1 in every month"
    [[nodiscard]] static Text DisplayEntryValue( const Entry& inEntry );
};

// What is known of a macro's use: when it last ran, how often, and how much time it saved. The statistics
// store answers; without one, and for a macro that has none, everything is 0. Main thread.
#pragma once

#include "CFMethods/PropertyList.h"
#include "Utility/Work/Clock.h"

#include <cstdint>

class HMacroStats
{
public:
    virtual ~HMacroStats() = default;
    [[nodiscard]] virtual XAbsoluteTime LastExecution( const XText& inMacroUID ) const = 0;
    [[nodiscard]] virtual std::uint64_t ExecutionCount( const XText& inMacroUID ) const = 0;
    [[nodiscard]] virtual double TimeSaved( const XText& inMacroUID ) const = 0; ///< seconds

    /// The entry of all macros together, among those by UID.
    static constexpr TextView kAllKey = u"All";
    /// What the engine has stored: a dictionary for each UID, with any of "LastExecuted", in seconds since 2001,
    /// "ExecutedCount" and "TimeSaved", in seconds. Without the file it has what older versions have left: the total, and
    /// when macros ran last. Empty, after a log line, when the file can't be understood. Never null.
    [[nodiscard]] static CFContainer<XPlistDictionary> ReadFile();

    /// The store in use; one that knows nothing until another is installed.
    [[nodiscard]] static const HMacroStats& Current();
    /// Not owned; null goes back to the one that knows nothing.
    static void SetCurrent( const HMacroStats* inStats );
};

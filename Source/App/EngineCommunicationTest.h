// The two questions by which the assistance window sees whether the engine is there and knows a macro: each is asked
// again and again, at times that aren't regular, until the test goes. Main thread.
#pragma once

#include "CFMethods/PropertyList.h"
#include "Utility/Work/Work.h"
#include "XCAF/XNotificationCenter.h"

#include <cstdint>
#include <functional>
#include <optional>

/// Asks whether the engine hears us.
class EngineCommunicationTest
{
public:
    using Report = std::function<void( bool inCanCommunicate )>;

    /// The report is called after each test. It may end this object.
    explicit EngineCommunicationTest( Report inReport );

    /// Begins a test, in place of one that is under way.
    void checkEngineCanCommunicate();

private:
    void Finish();

    Report mReport;
    std::int64_t mTest = 0; ///< the number of the present one: an answer to an earlier one proves nothing
    bool mGotReply = false;
    XTimer mTimer;
    BlockNotificationObserver mObserver;
};

/// Asks whether the group of a macro is active.
class EngineMacroActiveTest
{
public:
    using Report = std::function<void( bool inActive )>;

    /// The report is called at each answer of the engine about this macro.
    EngineMacroActiveTest( XText inMacroUID, Report inReport );

    void checkCheckMacro();

private:
    void GotReply( const XNotificationCenter::Notification& inReply );

    XText mMacroUID;
    Report mReport;
    XTimer mTimer;
    BlockNotificationObserver mObserver;
};

// What the user has to know and may not have seen: kept in a file among the data files until it is answered, shown
// once when it comes up, and listed by "korvalen status". Any thread, and several processes.
#pragma once

#include "CFMethods/Text.h"
#include "Utility/Work/Clock.h"

#include <filesystem>
#include <vector>

namespace KVNotices
{
struct Notice
{
    Text mIdentifier; ///< which kind of event; one notice of each identifier and path stands at a time
    Text mTitle, mText;
    std::filesystem::path mPath; ///< the file that it is about, or empty
    XAbsoluteTime mTime = 0;
};

/// Shows the notice, and keeps it until it is answered. A second one of the same identifier and path replaces the
/// first, and is shown only when its text is another. What can't be written is kept in memory until it can.
void Post( Notice inNotice );
/// Those that nobody has answered, the oldest first.
[[nodiscard]] std::vector<Notice> Unanswered();
[[nodiscard]] bool IsUnanswered( TextView inIdentifier );
void Answer( TextView inIdentifier );
void AnswerAll();
} // namespace KVNotices

// The dates that name revisions: "yyyy_MM_dd" on the local clock, and five reserved ones that sort at the ends.
// Any thread.
#pragma once

#include "CFMethods/PropertyList.h"

#include <vector>

namespace RevisionDates
{
[[nodiscard]] Text GetCurrentSaveDate();                 ///< today
inline constexpr char16_t kNoSaveDate[] = u"0000_01_01"; ///< of a file that has none

[[nodiscard]] Text BeforeCurrentVersionSaveDate(); ///< the state found before this version first ran
[[nodiscard]] Text GetThisLaunchSaveDate();        ///< the state at this launch
[[nodiscard]] Text GetBeforeRevertSaveDate();      ///< the state before a revert
[[nodiscard]] Text GetBeforeSharingSyncSaveDate(); ///< the state before a share sync replaced it
[[nodiscard]] bool IsBeforeVersionSaveDate( TextView inDate );

/// For people: the long date, or the localised words for a reserved one. "" for a day that doesn't exist.
[[nodiscard]] Text DisplayNameForRevision( TextView inDate );

/// Takes out today's date and the reserved ones, which are never culled.
void RemoveAnyUncullableRevisions( std::vector<Text>& ioDates );
} // namespace RevisionDates

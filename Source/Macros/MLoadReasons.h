// Why an element of a list was left out: the rule and the words for people, from what the failed read said in the
// words of the code. A part of MLoadCheck. Any thread.
#pragma once

#include "CFMethods/PropertyList.h"
#include "Macros/MLoadRules.h"

struct MDropReason
{
    MLoadRule mRule;
    Text mText; ///< one clause
};

/// The element stood in the list of this key, and a load left it out with this reason.
[[nodiscard]] MDropReason DropReasonOf( const __SafeCFPropertyList& inElement, TextView inListKey, TextView inReason );

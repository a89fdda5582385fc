// Why an object is being cloned.
#pragma once

enum class CloneFor {
    kDuplicate,            ///< a real, persistent copy; only during an insertion
    kDisplayOnlyReference, ///< a throw-away copy for display; allowed outside an insertion
};

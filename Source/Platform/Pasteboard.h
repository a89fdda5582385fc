// What was copied last, for pasting: one item with a value for each of its types. Main thread.
#pragma once

#include "CFMethods/PropertyList.h"

#include <optional>

class XPasteboard
{
public:
    virtual ~XPasteboard() = default;

    [[nodiscard]] virtual bool HasType( TextView inType ) const = 0;
    /// The value of a type as a property list; null when the type isn't there or holds something else.
    [[nodiscard]] virtual __SafeCFPropertyList GetPropertyList( TextView inType ) const = 0;
    /// The plain text, absent when there is none.
    [[nodiscard]] virtual std::optional<Text> GetString() const = 0;

    /// An empty one.
    [[nodiscard]] static const XPasteboard& Absent();
};

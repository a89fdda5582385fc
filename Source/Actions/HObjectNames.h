// The names of macros and groups by their UIDs, for the descriptions of actions that refer to them. The
// macro store installs itself at start-up. Main thread.
#pragma once

#include "CFMethods/PropertyList.h"

#include <optional>

class HObjectNames
{
public:
    virtual ~HObjectNames() = default;
    /// The name with the object's kind, such as "Macro “Tidy Up”"; absent when no object has the UID.
    [[nodiscard]] virtual std::optional<Text> GetUnambiguousName( const XText& inUID ) const = 0;

    /// Null takes it away. The object must outlive its use.
    static void Install( const HObjectNames* inNames );
    /// What the installed one answers; absent without one.
    [[nodiscard]] static std::optional<Text> UnambiguousNameOf( const XText& inUID );
};

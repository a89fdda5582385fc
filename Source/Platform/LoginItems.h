// What starts when the user logs in. Main thread.
#pragma once

#include "CFMethods/Text.h"

#include <filesystem>
#include <functional>
#include <vector>

struct XLoginItem
{
    Text mName;
    std::filesystem::path mTarget; ///< what it starts
    Text mIdentifier;              ///< for the platform to find it again
};

class XLoginItems
{
public:
    virtual ~XLoginItems() = default;
    [[nodiscard]] virtual std::vector<XLoginItem> GetLoginItems() const = 0;
    /// False when it couldn't be made; nothing was changed then.
    virtual bool AddLoginItem( TextView inName, const std::filesystem::path& inTarget ) = 0;
    virtual bool DeleteLoginItem( const XLoginItem& inItem ) = 0;
    /// Calls the observer, on the main thread, after the list has changed; empty for nobody.
    virtual void SetObserver( std::function<void()> inObserver ) = 0;

    /// An empty list that takes nothing.
    [[nodiscard]] static XLoginItems& Absent();
};

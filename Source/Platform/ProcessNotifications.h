// Notifications between processes: the editor, its engine, and other programs of the suite on
// this user's session. The platform's set carries them; without one they go nowhere.
#pragma once

#include "CFMethods/PropertyList.h"
#include "CFMethods/Text.h"

#include <cstdint>
#include <functional>

class XProcessNotifier
{
public:
    enum class Audience : std::uint8_t {
        kEverybody,
        kEngineOnly, ///< the engine and nobody else; dropped when no engine is there
    };
    /// Takes what another process posted, and whether that process is the engine. Called on the main thread.
    using Receiver =
        std::function<void( TextView inName, const CFContainer<XPlistDictionary>& inUserInfo, bool inFromEngine )>;

    virtual ~XProcessNotifier() = default;

    /// Posts to other processes, without waiting, delivery or order being sure only while they run. The
    /// payload is a flat dictionary of property-list values, or null for none. Main thread.
    virtual void Post( TextView inName, const CFContainer<XPlistDictionary>& inUserInfo, Audience inAudience ) = 0;
    /// Hands what other processes post to the receiver, never what this process posted; empty for nobody.
    /// Main thread.
    virtual void SetReceiver( Receiver inReceiver ) = 0;

    /// Posts and hears nothing.
    [[nodiscard]] static XProcessNotifier& Absent();
};

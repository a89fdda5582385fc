// Notifications by name. A distributed notification goes to the other processes of the suite and to
// this one's observers; an internal one stays in this process. Observers are called on the main
// thread, in the order in which they were added. An owner is named by its address, or by a
// BlockNotificationObserver, which observes as long as it lives.
#pragma once

#include "CFMethods/PropertyList.h"
#include "CFMethods/Text.h"

#include <cstdint>
#include <functional>

namespace XNotificationCenter
{
struct Notification
{
    Text mName;
    const void* mObject = nullptr;           ///< of an internal notification: what it is about, never looked into
    CFContainer<XPlistDictionary> mUserInfo; ///< may be null
};
using Block = std::function<void( const Notification& inNotification )>;

enum class Reach { kDistributed, kInternal };

/// Observes a distributed name on behalf of a target. A second registration of the same target and name is
/// logged and still made. An empty name is an assertion and nothing is observed. Main thread.
void AddCocoaObserver( const void* inTarget, TextView inName, Block inBlock );
/// Ends every registration of the target for the name; logged when there is none. Main thread.
void RemoveCocoaObserver( const void* inTarget, TextView inName );
/// Ends all registrations of the target. Main thread.
void RemoveEveryCocoaObserver( const void* inTarget );

/// Posts to other processes at once, and to this one's observers in the next turn of the main
/// queue. What makes something run goes to the engine alone, and a payload that KVNotifications doesn't let pass
/// to nobody but our observers. Main thread; from another it is an assertion, and posted all the same, in the next
/// turn.
void PostNotification( TextView inName, const CFContainer<XPlistDictionary>& inUserInfo, bool inDeliverImmediately );
/// Calls the internal observers before it returns. Main thread; from another it is an assertion, and they are
/// called all the same, in the next turn of the main queue.
void PostApplicationInternalNotification(
    TextView inName, const void* inObject, const CFContainer<XPlistDictionary>& inUserInfo );

/// Has what other processes post brought to the observers, as far as KVNotifications lets it pass; the rest is logged. At start-up, after the platform's set was
/// installed. Main thread.
void ListenToOtherProcesses();
} // namespace XNotificationCenter

/// Observes one name for as long as it lives. Main thread.
class BlockNotificationObserver
{
public:
    BlockNotificationObserver(
        XNotificationCenter::Reach inReach, TextView inName, XNotificationCenter::Block inBlock );
    ~BlockNotificationObserver();
    BlockNotificationObserver( const BlockNotificationObserver& ) = delete;
    BlockNotificationObserver& operator=( const BlockNotificationObserver& ) = delete;

private:
    std::uint64_t mRegistration;
};

// The session bus as this process is connected to it, once for all services. Connecting happens on a queue of its own, so
// that a bus that doesn't answer holds nobody up; a bus that went away is looked for again. A bus is never launched, and
// only local sockets are tried. Private to this folder. Main thread.
#pragma once

#include "Platform/Linux/GLibHolders.h"
#include "Utility/Work/Work.h"

#include <memory>
#include <vector>

class BusConnection
{
public:
    /// Hears of the bus. Called on the main thread.
    class Client
    {
    public:
        virtual ~Client() = default;
        virtual void BusCame( GDBusConnection& inBus ) = 0;
        virtual void BusWent() = 0;
    };

    /// Nothing is connected yet.
    explicit BusConnection( XWork& inWork );
    /// Closes.
    ~BusConnection();
    BusConnection( const BusConnection& ) = delete;
    BusConnection& operator=( const BusConnection& ) = delete;

    /// Connects if that wasn't tried yet, and waits at most kConnectSeconds. Whether there is a bus now.
    bool Connect();
    /// The connection, or null.
    [[nodiscard]] GDBusConnection* Get() const { return mBus.get(); }
    /// Whether a bus is known of at all: without one, what is posted needn't be kept for its return.
    [[nodiscard]] bool HasAddress() const { return mHasAddress; }
    /// Our own name on the bus, or "".
    [[nodiscard]] std::string UniqueName() const;
    /// Lets go of the bus, after everything that was sent has reached it or kConnectSeconds have passed. The clients are
    /// told; nothing reconnects until Connect.
    void Close();

    /// The client must be removed before it goes. One that is added while there is a bus is told of it at once.
    void AddClient( Client& inClient );
    void RemoveClient( Client& inClient );

    /// Calls a method of the bus itself, and waits; null after the timeout or an error.
    [[nodiscard]] GVariantPtr CallBus( const char* inMethod, GVariant* inArguments, const char* inReplyType ) const;

    static constexpr double kConnectSeconds = 1.0;
    static constexpr double kFirstRetrySeconds = 0.05, kLongestRetrySeconds = 1.0;

private:
    struct Attempt;

    void BeginAttempt();
    void Take( GObjectPtr<GDBusConnection> inBus );
    void Lost();
    void Retry();

    XWork& mWork;
    std::shared_ptr<XQueue> mQueue;
    XTimer mRetryTimer;
    double mRetryDelay = kFirstRetrySeconds;
    std::shared_ptr<Attempt> mAttempt; // under way
    GObjectPtr<GDBusConnection> mBus;
    gulong mClosedHandler = 0;
    bool mHasAddress = false, mWasTried = false;
    std::vector<Client*> mClients;
    std::shared_ptr<BusConnection*> mAlive; // emptied when this object goes; callbacks hold it
};

/// The address of the session bus: the local sockets of DBUS_SESSION_BUS_ADDRESS, or the user's own socket in
/// XDG_RUNTIME_DIR; "" when there is none. Nothing that would start a program or go over a network.
[[nodiscard]] std::string SessionBusAddress();

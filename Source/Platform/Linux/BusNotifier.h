// Notifications between processes as signals on the session bus: the member is the notification's name, the object path
// names the data folder, the one argument is the payload. What only the engine may hear is addressed to whoever owns
// the engine's name at that moment. Private to this folder. Main thread.
//
// While the bus is away or reads nothing, and until it is known who the engine is, posts wait; "KV_LoadMacroFiles" besides is told again to
// each engine that comes, for one that was just ending when it was posted has not heard it.
#pragma once

#include "Platform/Linux/BusConnection.h"
#include "Platform/ProcessNotifications.h"

#include <deque>
#include <filesystem>

class BusNotifier final : public XProcessNotifier, private BusConnection::Client
{
public:
    /// The connection must outlive this object.
    BusNotifier( BusConnection& inBus, XWork& inWork );
    ~BusNotifier() override;
    BusNotifier( const BusNotifier& ) = delete;
    BusNotifier& operator=( const BusNotifier& ) = delete;

    /// Before, and after Stop, nothing is posted and nothing heard.
    void Start( const std::filesystem::path& inFolder );
    /// Sends what waits, for which it asks the bus who the engine is; waits for at most a second.
    void Stop();

    void Post( TextView inName, const CFContainer<XPlistDictionary>& inUserInfo, Audience inAudience ) override;
    void SetReceiver( Receiver inReceiver ) override;

    static constexpr std::size_t kMaxWaiting = 1000;

private:
    struct Posting
    {
        std::string mName;
        GVariantPtr mPayload;
        Audience mAudience;
    };
    // What the callbacks of the bus hold; emptied when the bus went or this object goes.
    struct Link;

    void BusCame( GDBusConnection& inBus ) override;
    void BusWent() override;
    void EngineIs( const std::string& inUniqueName );
    [[nodiscard]] bool CanSend() const;
    void SendWaiting();
    void Send( const Posting& inPosting );
    bool Emit( const Posting& inPosting, const char* inDestination );
    void CountUnsent();
    void Drop( const Posting& inPosting, const char* inWhy );
    void Heard( const char* inSender, const char* inMember, GVariant* inParameters );
    void Deliver( const std::string& inName, const CFContainer<XPlistDictionary>& inPayload, bool inFromEngine );

    BusConnection& mConnection;
    XWork& mWork;
    Receiver mReceiver;
    std::string mEngineName, mPath; // empty while not started
    std::shared_ptr<Link> mLink;    // null while there is no bus
    bool mKnowsEngine = false;      // whether there is one, that is
    std::string mEngine;            // its unique name; empty for none
    std::deque<Posting> mWaiting;
    std::size_t mDropped = 0;
    bool mHasLoadToTell = false; // the macros were changed since the start
    std::string mToldOfLoad;     // the engine that heard of the last change
    std::size_t mUnsent = 0;     // handed to GLib, and maybe not yet to the bus
};

#include "Platform/Linux/BusConnection.h"

#include "XCAF/XErrorHandler.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sys/stat.h>

std::string SessionBusAddress()
{
    const char* const given = std::getenv( "DBUS_SESSION_BUS_ADDRESS" );
    if ( given and *given )
    {
        // "autolaunch:" and "unixexec:" start programs, "tcp:" leaves the machine.
        std::string local;
        for ( std::string_view rest = given; not rest.empty(); )
        {
            const std::string_view entry = rest.substr( 0, rest.find( ';' ) );
            rest.remove_prefix( std::min( entry.size() + 1, rest.size() ) );
            if ( entry.starts_with( "unix:" ) )
                ( local += local.empty() ? "" : ";" ) += entry;
        }
        return local;
    }
    const char* const folder = std::getenv( "XDG_RUNTIME_DIR" );
    if ( not folder or *folder != '/' )
        return {};
    const std::string path = std::string( folder ) + "/bus";
    struct stat facts;
    if ( ::stat( path.c_str(), &facts ) != 0 or not S_ISSOCK( facts.st_mode ) or facts.st_uid != ::getuid() )
        return {};
    const GString_ escaped( g_dbus_address_escape_value( path.c_str() ) );
    return std::string( "unix:path=" ) + escaped.get();
}

// One try to connect. The queue's thread fills it in, the main thread takes the result.
struct BusConnection::Attempt
{
    std::mutex mMutex;
    std::condition_variable mChanged;
    bool mIsDone = false, mIsTaken = false;
    GObjectPtr<GDBusConnection> mBus; // null when it failed
    GObjectPtr<GCancellable> mCancellable{ g_cancellable_new() };

    void Connect( const std::string& inAddress )
    {
        GErrorHolder error;
        GObjectPtr<GDBusConnection> bus( g_dbus_connection_new_for_address_sync( inAddress.c_str(),
            GDBusConnectionFlags(
                G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION ),
            nullptr, mCancellable.get(), error.Out() ) );
        if ( not bus )
            XErrorHandler::PrivateMaybeLogFormat( "bus", "No session bus: %s", error.Message() );
        const std::scoped_lock lock( mMutex );
        mBus = std::move( bus );
        mIsDone = true;
        mChanged.notify_all();
    }
};

BusConnection::BusConnection( XWork& inWork )
    : mWork( inWork ),
      mQueue( inWork.MakeConcurrentQueue( u"com.tessarine.korvalen.SessionBus" ) ),
      mRetryTimer( inWork.MainQueue(), [this] { Retry(); } ),
      mAlive( std::make_shared<BusConnection*>( this ) )
{}

BusConnection::~BusConnection()
{
    Close();
    *mAlive = nullptr;
}

bool BusConnection::Connect()
{
    if ( mWasTried )
        return mBus != nullptr;
    mWasTried = true;
    BeginAttempt();
    if ( not mAttempt )
        return false;
    const std::shared_ptr<Attempt> attempt = mAttempt;
    GObjectPtr<GDBusConnection> bus;
    {
        std::unique_lock lock( attempt->mMutex );
        attempt->mChanged.wait_for(
            lock, std::chrono::duration<double>( kConnectSeconds ), [&] { return attempt->mIsDone; } );
        if ( not attempt->mIsDone )
            return false; // it goes on, and is taken when it succeeds
        attempt->mIsTaken = true;
        bus = std::move( attempt->mBus );
    }
    mAttempt.reset();
    Take( std::move( bus ) );
    return mBus != nullptr;
}

void BusConnection::BeginAttempt()
{
    const std::string address = SessionBusAddress();
    // A folder of the user that had no socket at first may get one, but nobody waits for that.
    mHasAddress = mHasAddress or not address.empty();
    if ( address.empty() )
    {
        Lost();
        return;
    }
    mAttempt = std::make_shared<Attempt>();
    mQueue->Async( [attempt = mAttempt, address, alive = mAlive, mainQueue = mWork.MainQueue()] {
        attempt->Connect( address );
        mainQueue->Async( [attempt, alive] {
            if ( not *alive or ( *alive )->mAttempt != attempt )
                return;
            GObjectPtr<GDBusConnection> bus;
            {
                const std::scoped_lock lock( attempt->mMutex );
                if ( attempt->mIsTaken )
                    return;
                bus = std::move( attempt->mBus );
            }
            ( *alive )->mAttempt.reset();
            ( *alive )->Take( std::move( bus ) );
        } );
    } );
}

void BusConnection::Take( GObjectPtr<GDBusConnection> inBus )
{
    if ( not inBus or g_dbus_connection_is_closed( inBus.get() ) )
    {
        Lost();
        return;
    }
    mBus = std::move( inBus );
    mRetryDelay = kFirstRetrySeconds;
    // The bus may end, and this process has more to do than to go with it.
    g_dbus_connection_set_exit_on_close( mBus.get(), FALSE );
    const auto closed =
        +[]( GDBusConnection*, gboolean, GError*, gpointer inSelf ) { static_cast<BusConnection*>( inSelf )->Lost(); };
    mClosedHandler = g_signal_connect( mBus.get(), "closed", G_CALLBACK( closed ), this );
    for ( Client* const client : std::vector( mClients ) )
        client->BusCame( *mBus );
}

// There is no bus now, whether one was there or not.
void BusConnection::Lost()
{
    if ( const GObjectPtr<GDBusConnection> bus = std::move( mBus ) )
    {
        g_signal_handler_disconnect( bus.get(), mClosedHandler );
        XErrorHandler::PrivateMaybeLogFormat( "display", "The session bus has gone; looking for it again" );
        for ( Client* const client : std::vector( mClients ) )
            client->BusWent();
    }
    if ( not mHasAddress )
        return;
    mRetryTimer.SetAt( mWork.Clock().MonotonicSeconds() + mRetryDelay );
    // A bus that is back is joined within a second, and what is told again then is still told in time.
    mRetryDelay = std::min( 2 * mRetryDelay, kLongestRetrySeconds / 2 );
}

void BusConnection::Retry()
{
    if ( not mBus and not mAttempt )
        BeginAttempt();
}

std::string BusConnection::UniqueName() const
{
    const char* const name = mBus ? g_dbus_connection_get_unique_name( mBus.get() ) : nullptr;
    return name ? name : "";
}

GVariantPtr BusConnection::CallBus( const char* inMethod, GVariant* inArguments, const char* inReplyType ) const
{
    const GVariantPtr arguments = Owned( inArguments );
    if ( not mBus )
        return nullptr;
    GErrorHolder error;
    GVariantPtr reply( g_dbus_connection_call_sync( mBus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus",
        "org.freedesktop.DBus", inMethod, arguments.get(), G_VARIANT_TYPE( inReplyType ), G_DBUS_CALL_FLAGS_NONE,
        int( kConnectSeconds * 1000 ), nullptr, error.Out() ) );
    if ( not reply )
        XErrorHandler::PrivateMaybeLogFormat( "bus", "%s of the bus: %s", inMethod, error.Message() );
    return reply;
}

void BusConnection::Close()
{
    mRetryTimer.Cancel();
    mWasTried = false;
    if ( const std::shared_ptr<Attempt> attempt = std::move( mAttempt ) )
        g_cancellable_cancel( attempt->mCancellable.get() ); // or the queue's end would wait for it
    if ( not mBus )
        return;
    // The bus answers in order: with this answer it has everything that was sent before.
    (void)CallBus( "GetId", g_variant_new( "()" ), "(s)" );
    const GObjectPtr<GDBusConnection> bus = std::move( mBus );
    g_signal_handler_disconnect( bus.get(), mClosedHandler );
    for ( Client* const client : std::vector( mClients ) )
        client->BusWent();
    g_dbus_connection_close( bus.get(), nullptr, nullptr, nullptr );
}

void BusConnection::AddClient( Client& inClient )
{
    mClients.push_back( &inClient );
    if ( mBus )
        inClient.BusCame( *mBus );
}

void BusConnection::RemoveClient( Client& inClient )
{
    std::erase( mClients, &inClient );
}

#include "Platform/Linux/BusNotifier.h"

#include "Platform/Linux/BusNames.h"
#include "Platform/Linux/PropertyListVariant.h"
#include "XCAF/XErrorHandler.h"

#include <algorithm>

namespace
{
constexpr std::string_view kLoadMacroFiles = "KV_LoadMacroFiles";
}

struct BusNotifier::Link
{
    BusNotifier* mNotifier;
    GObjectPtr<GDBusConnection> mBus;
    guint mWatch = 0, mSubscription = 0;

    void Subscribe();
    void End()
    {
        mNotifier = nullptr;
        if ( mWatch )
            g_bus_unwatch_name( std::exchange( mWatch, 0 ) );
        if ( mSubscription )
            g_dbus_connection_signal_unsubscribe( mBus.get(), std::exchange( mSubscription, 0 ) );
    }
    // GLib frees what a callback was registered with later, in a turn of the loop: so each holds the link by itself.
    using Holder = std::shared_ptr<Link>;
    static void FreeHolder( gpointer inHolder ) { delete static_cast<Holder*>( inHolder ); }
};

void BusNotifier::Link::Subscribe()
{
    const auto heard = +[]( GDBusConnection*, const gchar* inSender, const gchar*, const gchar*, const gchar* inMember,
                            GVariant* inParameters, gpointer inHolder ) {
        if ( BusNotifier* const notifier = ( *static_cast<Holder*>( inHolder ) )->mNotifier )
            notifier->Heard( inSender, inMember, inParameters );
    };
    mSubscription = g_dbus_connection_signal_subscribe( mBus.get(), nullptr, BusNames::kNotificationInterface, nullptr,
        mNotifier->mPath.c_str(), nullptr, G_DBUS_SIGNAL_FLAGS_NONE, heard, new Holder( mNotifier->mLink ),
        FreeHolder );
}

BusNotifier::BusNotifier( BusConnection& inBus, XWork& inWork ) : mConnection( inBus ), mWork( inWork ) {}

BusNotifier::~BusNotifier()
{
    Stop();
}

void BusNotifier::Start( const std::filesystem::path& inFolder )
{
    Stop();
    mEngineName = BusNames::EngineOf( inFolder );
    mPath = BusNames::PathOf( inFolder );
    mConnection.AddClient( *this );
}

void BusNotifier::Stop()
{
    if ( mPath.empty() )
        return;
    // A short-lived process posts and ends before the bus has said who the engine is.
    if ( mLink and not mWaiting.empty() )
    {
        const GVariantPtr owner =
            mConnection.CallBus( "GetNameOwner", g_variant_new( "(s)", mEngineName.c_str() ), "(s)" );
        const char* name = "";
        if ( owner )
            g_variant_get( owner.get(), "(&s)", &name );
        mUnsent = 0; // with its answer the bus has everything that was sent before
        EngineIs( name );
    }
    mConnection.RemoveClient( *this );
    BusWent();
    mWaiting.clear();
    mEngineName.clear();
    mPath.clear();
    mHasLoadToTell = false;
}

void BusNotifier::SetReceiver( Receiver inReceiver )
{
    mReceiver = std::move( inReceiver );
}

void BusNotifier::BusCame( GDBusConnection& inBus )
{
    mLink = std::make_shared<Link>( Link{ .mNotifier = this, .mBus = Shared( &inBus ) } );
    mUnsent = 0;
    const auto appeared = +[]( GDBusConnection*, const gchar*, const gchar* inOwner, gpointer inHolder ) {
        if ( BusNotifier* const notifier = ( *static_cast<Link::Holder*>( inHolder ) )->mNotifier )
            notifier->EngineIs( inOwner );
    };
    const auto vanished = +[]( GDBusConnection*, const gchar*, gpointer inHolder ) {
        if ( BusNotifier* const notifier = ( *static_cast<Link::Holder*>( inHolder ) )->mNotifier )
            notifier->EngineIs( "" );
    };
    // First the engine, so that nothing of its is ever heard before it is known to be it.
    mLink->mWatch = g_bus_watch_name_on_connection( &inBus, mEngineName.c_str(), G_BUS_NAME_WATCHER_FLAGS_NONE,
        appeared, vanished, new Link::Holder( mLink ), Link::FreeHolder );
    mLink->Subscribe();
}

void BusNotifier::BusWent()
{
    if ( mLink )
        std::exchange( mLink, nullptr )->End();
    mKnowsEngine = false;
    mEngine.clear();
    mToldOfLoad.clear(); // another bus gives its names anew
}

void BusNotifier::EngineIs( const std::string& inUniqueName )
{
    mEngine = inUniqueName;
    mKnowsEngine = true;
    XErrorHandler::PrivateMaybeLogFormat( "engine", "The engine on the bus is \"%s\"", mEngine );
    SendWaiting();
}

// GLib keeps what the bus doesn't take; a bus that has stopped reading mustn't fill our memory.
bool BusNotifier::CanSend() const
{
    return mLink and mKnowsEngine and mUnsent < kMaxWaiting;
}

void BusNotifier::SendWaiting()
{
    if ( mDropped > 0 and CanSend() )
        XErrorHandler::PrivateMaybeLogFormat(
            "always", "While the session bus took none, %lu notifications were dropped", std::exchange( mDropped, 0 ) );
    while ( CanSend() and not mWaiting.empty() )
    {
        const Posting posting = std::move( mWaiting.front() );
        mWaiting.pop_front();
        Send( posting );
    }
    // To an engine that is new, and when it was among those that were dropped.
    std::string nothing;
    if ( CanSend() and mHasLoadToTell and not mEngine.empty() and mToldOfLoad != mEngine )
        Send( { std::string( kLoadMacroFiles ), PropertyListVariant::FromPayload( nullptr, nothing ),
            Audience::kEngineOnly } );
}

void BusNotifier::Post( TextView inName, const CFContainer<XPlistDictionary>& inUserInfo, Audience inAudience )
{
    if ( mPath.empty() )
        return;
    Posting posting{ UTF8FromText( inName ), nullptr, inAudience };
    if ( not g_dbus_is_member_name( posting.mName.c_str() ) )
    {
        Drop( posting, "its name isn't one for the bus" );
        return;
    }
    std::string fault;
    posting.mPayload = PropertyListVariant::FromPayload( inUserInfo, fault );
    if ( not posting.mPayload )
    {
        Drop( posting, fault.c_str() );
        return;
    }
    const bool isLoad = posting.mName == kLoadMacroFiles;
    if ( isLoad )
    {
        mHasLoadToTell = true;
        mToldOfLoad.clear();
    }
    if ( CanSend() and mWaiting.empty() )
        Send( posting );
    else if ( not mConnection.HasAddress() ) // alone, which was said at the start
        XErrorHandler::PrivateMaybeLogFormat( "bus", "Notification %s has nobody to hear it", posting.mName );
    else if ( mWaiting.size() < kMaxWaiting )
        mWaiting.push_back( std::move( posting ) );
    else if ( ++mDropped == 1 )
        Drop( posting, "the session bus takes none, and 1000 wait for it already" );
}

void BusNotifier::Drop( const Posting& inPosting, const char* inWhy )
{
    XErrorHandler::PrivateMaybeLogFormat( "always", "Notification %s is dropped: %s", inPosting.mName, inWhy );
}

void BusNotifier::Send( const Posting& inPosting )
{
    const bool isToEngine = inPosting.mAudience == Audience::kEngineOnly, isLoad = inPosting.mName == kLoadMacroFiles;
    if ( isLoad and mEngine.empty() )
        return; // the engine that comes is told then, and only once
    if ( isToEngine and mEngine.empty() )
    {
        // The usual state of an editor that runs without one.
        XErrorHandler::PrivateMaybeLogFormat(
            "engine", "Notification %s is dropped: there is no engine", inPosting.mName );
        return;
    }
    if ( Emit( inPosting, isToEngine ? mEngine.c_str() : nullptr ) and isLoad )
        mToldOfLoad = mEngine;
}

bool BusNotifier::Emit( const Posting& inPosting, const char* inDestination )
{
    GErrorHolder error;
    if ( not g_dbus_connection_emit_signal( mLink->mBus.get(), inDestination, mPath.c_str(),
             BusNames::kNotificationInterface, inPosting.mName.c_str(),
             g_variant_new( "(@a{sv})", inPosting.mPayload.get() ), error.Out() ) )
    {
        Drop( inPosting, error.Message().c_str() );
        return false;
    }
    if ( ++mUnsent % ( kMaxWaiting / 10 ) == 0 )
        CountUnsent();
    return true;
}

// Asks for word when everything up to here has been written.
void BusNotifier::CountUnsent()
{
    struct Mark
    {
        std::shared_ptr<Link> mLink;
        std::size_t mCount;
    };
    const auto written = +[]( GObject* inBus, GAsyncResult* inResult, gpointer inMark ) {
        const std::unique_ptr<Mark> mark( static_cast<Mark*>( inMark ) );
        GErrorHolder error;
        (void)g_dbus_connection_flush_finish( G_DBUS_CONNECTION( inBus ), inResult, error.Out() );
        BusNotifier* const notifier = mark->mLink->mNotifier;
        if ( not notifier )
            return;
        notifier->mUnsent -= std::min( notifier->mUnsent, mark->mCount );
        notifier->SendWaiting();
    };
    g_dbus_connection_flush( mLink->mBus.get(), nullptr, written, new Mark{ mLink, std::size_t( kMaxWaiting / 10 ) } );
}

void BusNotifier::Heard( const char* inSender, const char* inMember, GVariant* inParameters )
{
    if ( not inSender or not inMember or inSender == mConnection.UniqueName() )
        return;
    std::string fault;
    CFContainer<XPlistDictionary> payload;
    if ( g_variant_is_of_type( inParameters, G_VARIANT_TYPE( "(a{sv})" ) ) )
    {
        const GVariantPtr argument( g_variant_get_child_value( inParameters, 0 ) );
        payload = PropertyListVariant::ToPayload( argument.get(), fault );
    }
    else
        fault = std::string( "its arguments are \"" ) + g_variant_get_type_string( inParameters ) + "\"";
    if ( not payload )
    {
        XErrorHandler::PrivateMaybeLogFormat(
            "always", "Notification %s from %s is refused: %s", inMember, inSender, fault );
        return;
    }
    // In a block of the main queue, in whose order everything else happens, and where an exception is caught.
    mWork.MainQueue()->Async( [link = mLink, name = std::string( inMember ), payload, isEngine = mEngine == inSender] {
        if ( link->mNotifier )
            link->mNotifier->Deliver( name, payload, isEngine );
    } );
}

void BusNotifier::Deliver(
    const std::string& inName, const CFContainer<XPlistDictionary>& inPayload, bool inFromEngine )
{
    const Receiver receiver = mReceiver; // it may set another
    if ( receiver )
        receiver( TextFromUTF8( inName ), inPayload, inFromEngine );
}

#include "Platform/Linux/BusEditorService.h"

#include "Platform/Linux/BusNames.h"
#include "XCAF/XErrorHandler.h"

#include <algorithm>
#include <unistd.h>
#include <utility>

namespace
{
constexpr const char* kMethod = "Run";
constexpr const char* kReplyType = "(iayay)";
// The request wasn't run, and never will be: whoever asked may do it himself.
constexpr const char* kNotRunError = "com.tessarine.korvalen.Error.NotRun";

constexpr const char* kLimitsError = "org.freedesktop.DBus.Error.LimitsExceeded";
constexpr const char* kAccessError = "org.freedesktop.DBus.Error.AccessDenied";
// What the bus says when the editor had ended before the request reached it, and GLib when the object had gone.
constexpr std::string_view kNobodyErrors[] = { "org.freedesktop.DBus.Error.ServiceUnknown",
    "org.freedesktop.DBus.Error.NameHasNoOwner", "org.freedesktop.DBus.Error.UnknownMethod",
    "org.freedesktop.DBus.Error.UnknownObject", kNotRunError };

constexpr const char* kIntrospection = R"(<node><interface name="com.tessarine.korvalen.editor"><method name="Run">
<arg name="arguments" type="aay" direction="in"/><arg name="folder" type="ay" direction="in"/>
<arg name="input" type="ay" direction="in"/><arg name="terminal" type="b" direction="in"/>
<arg name="colours" type="b" direction="in"/><arg name="status" type="i" direction="out"/>
<arg name="output" type="ay" direction="out"/><arg name="errors" type="ay" direction="out"/>
</method></interface></node>)";

GDBusInterfaceInfo* Interface()
{
    static GDBusNodeInfo* const gNode = g_dbus_node_info_new_for_xml( kIntrospection, nullptr );
    return gNode->interfaces[0];
}

GVariant* BytesVariant( std::string_view inBytes )
{
    return g_variant_new_fixed_array( G_VARIANT_TYPE_BYTE, inBytes.data(), inBytes.size(), 1 );
}

std::string BytesAt( GVariant* inTuple, gsize inIndex )
{
    const GVariantPtr bytes( g_variant_get_child_value( inTuple, inIndex ) );
    gsize count = 0;
    const void* const data = g_variant_get_fixed_array( bytes.get(), &count, 1 );
    return { static_cast<const char*>( data ), count };
}

bool BooleanAt( GVariant* inTuple, gsize inIndex )
{
    const GVariantPtr value( g_variant_get_child_value( inTuple, inIndex ) );
    return g_variant_get_boolean( value.get() );
}

GVariant* RequestVariant( const XEditorService::Request& inRequest )
{
    GVariantBuilder arguments;
    g_variant_builder_init( &arguments, G_VARIANT_TYPE( "aay" ) );
    for ( const std::string& argument : inRequest.mArguments )
        g_variant_builder_add_value( &arguments, BytesVariant( argument ) );
    return g_variant_new( "(@aay@ay@aybb)", g_variant_builder_end( &arguments ),
        BytesVariant( inRequest.mWorkingFolder.native() ), BytesVariant( inRequest.mStandardInput ),
        gboolean( inRequest.mOutputIsTerminal ), gboolean( inRequest.mColours ) );
}

XEditorService::Request RequestOf( GVariant* inVariant )
{
    XEditorService::Request request;
    const GVariantPtr arguments( g_variant_get_child_value( inVariant, 0 ) );
    for ( gsize i = 0; i < g_variant_n_children( arguments.get() ); ++i )
        request.mArguments.push_back( BytesAt( arguments.get(), i ) );
    request.mWorkingFolder = BytesAt( inVariant, 1 );
    request.mStandardInput = BytesAt( inVariant, 2 );
    request.mOutputIsTerminal = BooleanAt( inVariant, 3 );
    request.mColours = BooleanAt( inVariant, 4 );
    return request;
}

XEditorService::Reply ReplyOf( GVariant* inVariant )
{
    const GVariantPtr status( g_variant_get_child_value( inVariant, 0 ) );
    return { g_variant_get_int32( status.get() ), BytesAt( inVariant, 1 ), BytesAt( inVariant, 2 ) };
}

XEditorService::Reply Failure( const std::string& inSentence )
{
    return { 1, {}, "korvalen: " + inSentence + "\n" };
}

// Whether the bus gave us the name, or why not.
enum class Owning { kOurs, kTaken, kFailed };

Owning OwnName( const BusConnection& inConnection, const std::string& inName )
{
    constexpr guint32 kDoNotQueue = 4;
    const GVariantPtr reply =
        inConnection.CallBus( "RequestName", g_variant_new( "(su)", inName.c_str(), kDoNotQueue ), "(u)" );
    if ( not reply )
        return Owning::kFailed;
    guint32 result = 0;
    g_variant_get( reply.get(), "(u)", &result );
    constexpr guint32 kPrimaryOwner = 1, kAlreadyOwner = 4;
    return result == kPrimaryOwner or result == kAlreadyOwner ? Owning::kOurs : Owning::kTaken;
}
} // namespace

struct BusEditorService::Link
{
    BusEditorService* mService;
    GObjectPtr<GDBusConnection> mBus;
    guint mObject = 0;

    using Holder = std::shared_ptr<Link>;
    static void FreeHolder( gpointer inHolder ) { delete static_cast<Holder*>( inHolder ); }
};

// One request under way. Whatever becomes of it, it is answered.
struct BusEditorService::Call
{
    Call( std::shared_ptr<Link> inLink, GDBusMethodInvocation* inInvocation )
        : mLink( std::move( inLink ) ),
          mInvocation( inInvocation )
    {}
    ~Call() { Refuse( kNotRunError, "the editor is quitting" ); }

    void Refuse( const char* inError, const char* inWhy )
    {
        if ( mInvocation )
            g_dbus_method_invocation_return_dbus_error( std::exchange( mInvocation, nullptr ), inError, inWhy );
    }
    void Answer( Reply inReply )
    {
        if ( inReply.mOutput.size() + inReply.mErrors.size() > kMaxReplyBytes )
        {
            inReply.mOutput.clear();
            inReply.mErrors = "korvalen: it was done, but what it printed is too long to hand over\n";
        }
        g_dbus_method_invocation_return_value( std::exchange( mInvocation, nullptr ),
            g_variant_new( "(i@ay@ay)", gint32( inReply.mStatus ), BytesVariant( inReply.mOutput ),
                BytesVariant( inReply.mErrors ) ) );
    }

    std::shared_ptr<Link> mLink;
    GDBusMethodInvocation* mInvocation; // the answer takes it over
};

BusEditorService::BusEditorService( BusConnection& inBus, XWork& inWork ) : mConnection( inBus ), mWork( inWork ) {}

BusEditorService::~BusEditorService()
{
    ReleaseFolder();
}

XEditorService::Claim BusEditorService::ClaimFolder( const std::filesystem::path& inFolder, Handler inHandler )
{
    ReleaseFolder();
    mFolder = inFolder;
    mHandler = std::move( inHandler );
    (void)mConnection.Connect();
    GDBusConnection* const bus = mConnection.Get();
    Claim claim = Claim::kAlone;
    if ( bus )
    {
        // The object first: whoever sees the name may call at once.
        const bool isOffered = OfferObject( *bus );
        const Owning owning = isOffered ? OwnName( mConnection, BusNames::EditorOf( inFolder ) ) : Owning::kFailed;
        if ( owning == Owning::kTaken )
        {
            BusWent();
            mFolder.clear();
            mHandler = {};
            return Claim::kTaken;
        }
        if ( owning == Owning::kOurs )
        {
            claim = Claim::kOwned;
            // The plain name serves people at a prompt; another folder's editor may have it.
            (void)OwnName( mConnection, BusNames::kEditor );
        }
    }
    mConnection.AddClient( *this );
    return claim;
}

void BusEditorService::ReleaseFolder()
{
    if ( mFolder.empty() )
        return;
    mConnection.RemoveClient( *this );
    if ( mConnection.Get() )
    {
        (void)mConnection.CallBus(
            "ReleaseName", g_variant_new( "(s)", BusNames::EditorOf( mFolder ).c_str() ), "(u)" );
        (void)mConnection.CallBus( "ReleaseName", g_variant_new( "(s)", BusNames::kEditor ), "(u)" );
    }
    BusWent();
    mFolder.clear();
    mHandler = {};
}

void BusEditorService::BusCame( GDBusConnection& inBus )
{
    if ( mLink ) // claimed just now
        return;
    if ( not OfferObject( inBus ) )
        return;
    if ( OwnName( mConnection, BusNames::EditorOf( mFolder ) ) != Owning::kOurs )
        XErrorHandler::PrivateMaybeLogFormat(
            "always", "The session bus is back, but the name of this folder's editor isn't ours there" );
    (void)OwnName( mConnection, BusNames::kEditor );
}

void BusEditorService::BusWent()
{
    if ( const std::shared_ptr<Link> link = std::exchange( mLink, nullptr ) )
    {
        link->mService = nullptr;
        g_dbus_connection_unregister_object( link->mBus.get(), link->mObject );
    }
}

bool BusEditorService::OfferObject( GDBusConnection& inBus )
{
    static const GDBusInterfaceVTable kTable{
        []( GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*, GVariant*,
            GDBusMethodInvocation* inInvocation, gpointer inHolder ) {
            const Link::Holder link = *static_cast<Link::Holder*>( inHolder );
            if ( link->mService )
                link->mService->Heard( inInvocation );
            else
                g_dbus_method_invocation_return_dbus_error( inInvocation, kNotRunError, "the editor is quitting" );
        },
        nullptr, nullptr, {}
    };
    mLink = std::make_shared<Link>( Link{ .mService = this, .mBus = Shared( &inBus ) } );
    GErrorHolder error;
    mLink->mObject = g_dbus_connection_register_object( &inBus, BusNames::PathOf( mFolder ).c_str(), Interface(),
        &kTable, new Link::Holder( mLink ), Link::FreeHolder, error.Out() );
    if ( mLink->mObject != 0 )
        return true;
    XErrorHandler::PrivateMaybeLogFormat( "always", "Can't offer this editor on the bus: %s", error.Message() );
    mLink.reset();
    return false;
}

void BusEditorService::Heard( GDBusMethodInvocation* inInvocation )
{
    const auto call = std::make_shared<Call>( mLink, inInvocation );
    if ( g_variant_get_size( g_dbus_method_invocation_get_parameters( inInvocation ) ) > kMaxRequestBytes )
        call->Refuse( kLimitsError, "the request is larger than 64 MiB" );
    else
        AskWhoCalls( call );
}

// The session's bus is open to this user alone as a rule, but it may have been set up otherwise.
void BusEditorService::AskWhoCalls( const std::shared_ptr<Call>& inCall )
{
    g_dbus_connection_call( inCall->mLink->mBus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus",
        "org.freedesktop.DBus", "GetConnectionUnixUser",
        g_variant_new( "(s)", g_dbus_method_invocation_get_sender( inCall->mInvocation ) ), G_VARIANT_TYPE( "(u)" ),
        G_DBUS_CALL_FLAGS_NONE, -1, nullptr, TakeAnswerWhoCalls, new std::shared_ptr<Call>( inCall ) );
}

void BusEditorService::TakeAnswerWhoCalls( GObject* inBus, GAsyncResult* inResult, gpointer inHolder )
{
    const std::unique_ptr<std::shared_ptr<Call>> holder( static_cast<std::shared_ptr<Call>*>( inHolder ) );
    const std::shared_ptr<Call> call = *holder;
    GErrorHolder error;
    const GVariantPtr reply( g_dbus_connection_call_finish( G_DBUS_CONNECTION( inBus ), inResult, error.Out() ) );
    guint32 user = ~guint32( 0 );
    if ( reply )
        g_variant_get( reply.get(), "(u)", &user );
    BusEditorService* const service = call->mLink->mService;
    if ( not reply or user != ::getuid() )
    {
        XErrorHandler::PrivateMaybeLogFormat( "always", "A request to this editor is refused: it isn't its user's" );
        call->Refuse( kAccessError, "only the same user may ask this editor" );
    }
    else if ( service )
        service->mWork.MainQueue()->Async( [call] {
            if ( BusEditorService* const still = call->mLink->mService )
                still->Run( call );
        } );
}

void BusEditorService::Run( const std::shared_ptr<Call>& inCall )
{
    const Handler handler = mHandler; // it may release the folder
    Reply reply;
    try
    {
        reply = handler( RequestOf( g_dbus_method_invocation_get_parameters( inCall->mInvocation ) ) );
    }
    catch ( const std::exception& exception )
    {
        reply = Failure( std::string( "the editor failed: " ) + exception.what() );
    }
    inCall->Answer( std::move( reply ) );
}

std::optional<XEditorService::Reply> BusEditorService::Ask(
    const std::filesystem::path& inFolder, const Request& inRequest )
{
    if ( not mConnection.Connect() )
        return {};
    const std::string name = BusNames::EditorOf( inFolder );
    const GVariantPtr owner = mConnection.CallBus( "GetNameOwner", g_variant_new( "(s)", name.c_str() ), "(s)" );
    if ( not owner )
        return {};
    const char* editor = "";
    g_variant_get( owner.get(), "(&s)", &editor );
    const bool isAnother = mConnection.UniqueName() != editor;
    XAssert( isAnother ); // it would wait for itself
    if ( not isAnother )
        return {};
    const GVariantPtr request = Owned( RequestVariant( inRequest ) );
    if ( g_variant_get_size( request.get() ) > kMaxRequestBytes )
        return Failure( "the input is larger than 64 MiB, which is more than a running editor takes; quit it first" );

    GErrorHolder error;
    const GVariantPtr reply( g_dbus_connection_call_sync( mConnection.Get(), editor,
        BusNames::PathOf( inFolder ).c_str(), BusNames::kEditorInterface, kMethod, request.get(),
        G_VARIANT_TYPE( kReplyType ), G_DBUS_CALL_FLAGS_NO_AUTO_START, kReplySeconds * 1000, nullptr, error.Out() ) );
    if ( reply )
        return ReplyOf( reply.get() );
    const GString_ remote( g_dbus_error_get_remote_error( error.Get() ) );
    if ( std::ranges::count( kNobodyErrors, std::string_view( remote ? remote.get() : "" ) ) > 0 )
        return {};
    return Failure( "the running editor didn't answer, and may or may not have done it (" + error.Message() +
        "); look before you try again" );
}

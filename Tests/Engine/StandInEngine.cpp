// A stand-in for the engine, for tests with real processes: it owns the engine's name on the session bus for the folder in
// KORVALEN_HOME, hears what an editor posts, answers its checks, and does what it is told to by lines.
//
// Lines come on standard input and through the named pipe that KORVALEN_ENGINE_COMMANDS names, which is made if missing:
//
//   toggle UID 0|1      as an engine that changed a macro: the overrides file, then "KV_SetMacroEnable"
//   incoming FILE       as one that got a shared file: places a copy, then "KV_SharingIncomingChange"
//   quit-editor         posts "KV_QuitEditor"
//   post NAME           posts any name
//   refuse-quit 0|1     whether it goes on after "KV_QuitEngine" and SIGTERM; so from the start with
//                       KORVALEN_ENGINE_REFUSES=1
//   quit
//
// Each thing that it heard or did is a line in the file KORVALEN_ENGINE_LOG, or on standard output without one:
// "ready PID", "name taken", "load COUNT GROUPS groups MACROS macros", "heard NAME", "did COMMAND", "quit".
#include "CFMethods/PropertyListCodec.h"
#include "Defines/KVPreferences.h"
#include "Platform/Linux/BusConnection.h"
#include "Platform/Linux/BusNames.h"
#include "Platform/Linux/GLibMainLoop.h"
#include "Platform/Linux/PropertyListVariant.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XFileWriting.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <glib-unix.h>
#include <sstream>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
namespace fs = std::filesystem;

constexpr KVPreferences::PreferenceID kHasAssistiveDevicesID{ KVPreferences::kEngineDomain,
    "EngineHasAssistiveDevices" };
constexpr std::size_t kLongestFile = std::size_t( 512 ) << 20;

std::string Variable( const char* inName )
{
    const char* const value = std::getenv( inName );
    return value ? value : "";
}

// One write for each line, so that a test that reads meanwhile sees whole ones.
void Tell( std::string inLine )
{
    inLine += '\n';
    static const int gLog = [] {
        const std::string path = Variable( "KORVALEN_ENGINE_LOG" );
        return path.empty() ? STDOUT_FILENO : ::open( path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600 );
    }();
    (void)!::write( gLog, inLine.data(), inLine.size() );
}

// What an editor compares, to know an engine of another version: time and size of the executable.
void WriteDetails()
{
    XFileStatus facts;
    if ( XFileCalls::Current().GetPathFacts( "/proc/self/exe", facts ) != 0 )
        return;
    constexpr double kSecondsTo2001 = 978307200.0;
    const double time = double( facts.mModifiedSeconds ) - kSecondsTo2001 + double( facts.mModifiedNanoseconds ) * 1e-9;
    const std::int64_t size = std::int64_t( facts.mSize );
    std::uint8_t bytes[sizeof( time ) + sizeof( size )];
    std::memcpy( bytes, &time, sizeof( time ) );
    std::memcpy( bytes + sizeof( time ), &size, sizeof( size ) );
    const Text number = TextFromASCII( std::to_string( ::getpid() ) );
    if ( const auto error = XAtomicFile::Write( KVPreferences::FilePath( u"Running Engine Details", number ), bytes ) )
        Tell( "failed: " + error->Describe() );
}

// The record is appended under the lock that the editor takes to read and empty the file.
bool WriteOverride( const std::string& inUID, const std::string& inState )
{
    const fs::path path = KVPreferences::FilePath( u"Korvalen Enable Overrides" );
    const int file = ::open( path.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC | O_NOFOLLOW, 0660 );
    if ( file < 0 or ::flock( file, LOCK_EX ) != 0 )
        return false;
    std::string record = inState + ":" + inUID;
    record += '\0';
    const bool isWritten = ::write( file, record.data(), record.size() ) == ssize_t( record.size() );
    ::close( file );
    return isWritten;
}

class Engine final : private BusConnection::Client
{
public:
    Engine()
    {
        mRefuses = Variable( "KORVALEN_ENGINE_REFUSES" ) == "1";
        mLoop.OnSignals( { SIGTERM, SIGINT, SIGHUP }, [this] { QuitUnlessRefused( "SIGTERM" ); } );
        (void)mBus.Connect();
        mBus.AddClient( *this );
        HearCommands( STDIN_FILENO );
        if ( const std::string pipe = Variable( "KORVALEN_ENGINE_COMMANDS" ); not pipe.empty() )
        {
            (void)::mkfifo( pipe.c_str(), 0600 );
            // For writing as well: else the end of one writer would be the end of the pipe.
            HearCommands( ::open( pipe.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC ) );
        }
        WriteDetails();
    }
    ~Engine() override { mBus.RemoveClient( *this ); }

    void Run()
    {
        Tell( "ready " + std::to_string( ::getpid() ) );
        mLoop.Run();
        Tell( "quit" );
    }

private:
    void BusCame( GDBusConnection& inBus ) override
    {
        const auto heard = +[]( GDBusConnection*, const gchar* inSender, const gchar*, const gchar*,
                                const gchar* inMember, GVariant* inParameters, gpointer inSelf ) {
            Engine* const engine = static_cast<Engine*>( inSelf );
            if ( engine->mBus.UniqueName() != inSender )
                engine->Heard( inMember, inParameters );
        };
        g_dbus_connection_signal_subscribe( &inBus, nullptr, BusNames::kNotificationInterface, nullptr, mPath.c_str(),
            nullptr, G_DBUS_SIGNAL_FLAGS_NONE, heard, this, nullptr );
        constexpr guint32 kDoNotQueue = 4;
        const GVariantPtr reply = mBus.CallBus(
            "RequestName", g_variant_new( "(su)", BusNames::EngineOf( mFolder ).c_str(), kDoNotQueue ), "(u)" );
        guint32 result = 0;
        if ( reply )
            g_variant_get( reply.get(), "(u)", &result );
        if ( result != 1 )
            Tell( "name taken" );
    }
    void BusWent() override { Tell( "bus went" ); }

    void Heard( const std::string& inName, GVariant* inParameters )
    {
        std::string fault;
        const GVariantPtr argument( g_variant_get_child_value( inParameters, 0 ) );
        const CFContainer<XPlistDictionary> payload = PropertyListVariant::ToPayload( argument.get(), fault );
        if ( not payload )
        {
            Tell( "refused " + inName + ": " + fault );
            return;
        }
        if ( inName == "KV_LoadMacroFiles" )
            LoadMacros();
        else
            Tell( "heard " + inName );
        if ( inName == "KV_QuitEngine" )
            QuitUnlessRefused( inName );
        else
            Answer( inName, *payload );
    }

    void Answer( const std::string& inName, const XPlistDictionary& inPayload )
    {
        XMutableDictionary answer;
        __SafeCFPropertyList value;
        if ( inName == "KV_CheckCommunication" and inPayload.Get( CFSTR( "ID" ), value ) )
        {
            answer.Set( CFSTR( "ID" ), value );
            Post( "KV_CheckCommunicationReply", answer.Seal() );
        }
        else if ( inName == "KV_CheckMacroActive" and inPayload.Get( CFSTR( "UID" ), value ) )
        {
            answer.Set( CFSTR( "UID" ), value );
            answer.SetBoolean( CFSTR( "Active" ), true );
            Post( "KV_CheckMacroActiveReply", answer.Seal() );
        }
        else if ( inName == "KV_CheckAssistiveDevicesEnabled" )
            KVPreferences::SetBoolean( kHasAssistiveDevicesID, true );
    }

    void LoadMacros()
    {
        const XFileContent content = ReadWholeFile( KVPreferences::FilePath( u"Korvalen Macros.plist" ), kLongestFile );
        std::size_t groupCount = 0, macroCount = 0;
        const XPlistReadResult result = ReadPropertyList( content.mBytes.Span() );
        CFContainer<XPlistArray> groups, macros;
        const XPlistDictionary* const root = result.mValue.AsDictionary();
        if ( root and root->Get( CFSTR( "MacroGroups" ), groups ) )
        {
            groupCount = groups->GetCount();
            for ( const XPlistNode* const node : groups->Nodes() )
            {
                const __SafeCFPropertyList group( node );
                if ( group.AsDictionary() and group.AsDictionary()->Get( CFSTR( "Macros" ), macros ) )
                    macroCount += macros->GetCount();
            }
        }
        std::ostringstream line;
        line << "load " << ++mLoads << ' ' << groupCount << " groups " << macroCount << " macros";
        Tell( root ? line.str() : line.str() + " unreadable" );
    }

    void QuitUnlessRefused( const std::string& inWhy )
    {
        if ( mRefuses )
            Tell( "refused to quit by " + inWhy );
        else
            mLoop.Stop();
    }

    void Post( const std::string& inName, const CFContainer<XPlistDictionary>& inPayload )
    {
        std::string fault;
        const GVariantPtr payload = PropertyListVariant::FromPayload( inPayload, fault );
        if ( mBus.Get() and payload )
            g_dbus_connection_emit_signal( mBus.Get(), nullptr, mPath.c_str(), BusNames::kNotificationInterface,
                inName.c_str(), g_variant_new( "(@a{sv})", payload.get() ), nullptr );
    }

    void HearCommands( int inDescriptor )
    {
        if ( inDescriptor < 0 )
            return;
        const auto readable = +[]( gint inFile, GIOCondition, gpointer inSelf ) -> gboolean {
            char bytes[4096];
            const ssize_t count = ::read( inFile, bytes, sizeof( bytes ) );
            if ( count <= 0 )
                return count < 0 and ( errno == EAGAIN or errno == EINTR );
            static_cast<Engine*>( inSelf )->TakeInput( { bytes, std::size_t( count ) } );
            return G_SOURCE_CONTINUE;
        };
        g_unix_fd_add( inDescriptor, GIOCondition( G_IO_IN | G_IO_HUP | G_IO_ERR ), readable, this );
    }

    void TakeInput( std::string_view inBytes )
    {
        mInput += inBytes;
        for ( std::size_t end; ( end = mInput.find( '\n' ) ) != std::string::npos; )
        {
            const std::string line = mInput.substr( 0, end );
            mInput.erase( 0, end + 1 );
            Tell( ( Do( line ) ? "did " : "failed " ) + line );
        }
    }

    bool Do( const std::string& inLine )
    {
        std::istringstream words( inLine );
        std::string command, first, second;
        words >> command >> first >> second;
        if ( command == "toggle" and ( second == "0" or second == "1" ) )
        {
            const bool isWritten = WriteOverride( first, second );
            Post( "KV_SetMacroEnable", nullptr );
            return isWritten;
        }
        if ( command == "incoming" )
            return PlaceIncoming( inLine.substr( std::min( inLine.size(), command.size() + 1 ) ) );
        if ( command == "refuse-quit" )
            mRefuses = first == "1";
        else if ( command == "quit-editor" )
            Post( "KV_QuitEditor", nullptr );
        else if ( command == "post" and g_dbus_is_member_name( first.c_str() ) )
            Post( first, nullptr );
        else if ( command == "quit" )
            mLoop.Stop();
        else
            return false;
        return true;
    }

    bool PlaceIncoming( const fs::path& inFile )
    {
        const XFileContent content = ReadWholeFile( inFile, kLongestFile );
        if ( content.mError or
            XAtomicFile::Write(
                KVPreferences::FilePath( u"Korvalen Macros From Shared.plist" ), content.mBytes.Span() ) )
            return false;
        Post( "KV_SharingIncomingChange", nullptr );
        return true;
    }

    const fs::path mFolder = KVPreferences::FolderPath();
    const std::string mPath = BusNames::PathOf( mFolder );
    GLibMainLoop mLoop;
    BusConnection mBus{ XWork::Current() };
    bool mRefuses = false;
    int mLoads = 0;
    std::string mInput;
};
} // namespace

int main()
{
    XDeclareMainThread();
    if ( Variable( "KORVALEN_HOME" ).empty() )
    {
        // Or it would take part in whatever this user's own editor does.
        std::fputs( "korvalen-engine: this stand-in needs KORVALEN_HOME\n", stderr );
        return 2;
    }
    XErrorHandler::SetLogsFolder( KVPreferences::FilePath( u"Engine Logs" ) );
    std::signal( SIGPIPE, SIG_IGN );
    Engine().Run();
    XErrorHandler::Quitting();
    return 0;
}

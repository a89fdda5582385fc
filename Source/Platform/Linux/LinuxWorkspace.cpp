#include "Platform/Linux/LinuxWorkspace.h"

#include "XCAF/XErrorHandler.h"

namespace
{
bool Launch( const char* inURI )
{
    GErrorHolder error;
    if ( g_app_info_launch_default_for_uri( inURI, nullptr, error.Out() ) )
        return true;
    XErrorHandler::PrivateMaybeLogFormat( "always", "Can't open %s: %s", inURI, error.Message() );
    return false;
}

GString_ URIOf( const std::filesystem::path& inPath )
{
    return inPath.is_absolute() ? GString_( g_filename_to_uri( inPath.c_str(), nullptr, nullptr ) ) : nullptr;
}
} // namespace

bool LinuxWorkspace::OpenURL( TextView inURL )
{
    const std::string url = UTF8FromText( inURL );
    // A NUL would cut it to another address.
    if ( url.find( '\0' ) != std::string::npos or not GString_( g_uri_parse_scheme( url.c_str() ) ) )
        return false;
    return Launch( url.c_str() );
}

bool LinuxWorkspace::OpenFile( const std::filesystem::path& inPath )
{
    const GString_ uri = URIOf( inPath );
    return uri and Launch( uri.get() );
}

bool LinuxWorkspace::Reveal( const std::filesystem::path& inPath )
{
    const GString_ uri = URIOf( inPath );
    if ( not uri )
        return false;
    if ( mConnection.Get() )
    {
        const char* const uris[] = { uri.get(), nullptr };
        constexpr int kMilliseconds = 3000; // it may have to be started
        const GVariantPtr reply( g_dbus_connection_call_sync( mConnection.Get(), "org.freedesktop.FileManager1",
            "/org/freedesktop/FileManager1", "org.freedesktop.FileManager1", "ShowItems",
            g_variant_new( "(^ass)", uris, "" ), nullptr, G_DBUS_CALL_FLAGS_NONE, kMilliseconds, nullptr, nullptr ) );
        if ( reply )
            return true;
    }
    return OpenFile( inPath.parent_path() );
}

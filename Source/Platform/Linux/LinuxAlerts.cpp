#include "Platform/Linux/LinuxAlerts.h"

#include <cerrno>
#include <syslog.h>
#include <unistd.h>

namespace
{
// Unbuffered, and not in pieces: other threads and processes may be writing there.
void WriteToStandardError( std::string_view inBytes )
{
    while ( not inBytes.empty() )
    {
        const ssize_t count = ::write( STDERR_FILENO, inBytes.data(), inBytes.size() );
        if ( count < 0 and errno == EINTR )
            continue;
        if ( count <= 0 )
            return; // nobody is there to read it
        inBytes.remove_prefix( std::size_t( count ) );
    }
}
} // namespace

std::string AlertLine( TextView inTitle, TextView inText )
{
    Text line( u"korvalen: " );
    line += inTitle;
    if ( not inTitle.empty() and not inText.empty() )
        line += u": ";
    line += inText;
    for ( char16_t& unit : line )
    {
        const bool steers = unit < 0x20 or ( unit >= 0x7F and unit < 0xA0 ) or unit == 0x2028 or unit == 0x2029 or
            ( unit >= 0x202A and unit <= 0x202E ) or ( unit >= 0x2066 and unit <= 0x2069 );
        if ( steers )
            unit = u' ';
    }
    return UTF8FromText( line ) + "\n";
}

void LinuxAlerts::SystemLog( TextView inMessage )
{
    ::syslog( LOG_USER | LOG_NOTICE, "%s", UTF8FromText( inMessage ).c_str() );
}

void LinuxAlerts::PlayAlertSound( int /*inSound*/ )
{
    if ( ::isatty( STDERR_FILENO ) )
        WriteToStandardError( "\a" );
}

void LinuxAlerts::ShowAlert( const XAlert& inAlert, const Answer& inAnswer )
{
    WriteToStandardError( AlertLine( inAlert.mTitle, inAlert.mText ) );
    NotifyDesktop( inAlert.mTitle, inAlert.mText, inAlert.mStyle == XAlertStyle::kCritical );
    if ( not inAnswer )
        return;
    // The asker of a sheet counts on being called later.
    if ( inAlert.mWindow )
        mWork.MainQueue()->Async( [inAnswer] { inAnswer( {} ); } );
    else
        inAnswer( {} );
}

void LinuxAlerts::Notify( TextView inTitle, TextView inText )
{
    WriteToStandardError( AlertLine( inTitle, inText ) );
    NotifyDesktop( inTitle, inText, false );
}

bool LinuxAlerts::IsApplicationActive()
{
    return ::isatty( STDERR_FILENO ) and ::tcgetpgrp( STDERR_FILENO ) == ::getpgrp();
}

void LinuxAlerts::NotifyDesktop( TextView inTitle, TextView inText, bool inIsCritical )
{
    if ( not mConnection.Get() )
        return;
    // The text is markup there, the title isn't.
    const std::string text = UTF8FromText( inText ), title = UTF8FromText( inTitle );
    const GString_ markup( g_markup_escape_text( text.data(), gssize( text.size() ) ) );
    constexpr guchar kNormal = 1, kCritical = 2;
    GVariantBuilder hints;
    g_variant_builder_init( &hints, G_VARIANT_TYPE_VARDICT );
    g_variant_builder_add( &hints, "{sv}", "urgency", g_variant_new_byte( inIsCritical ? kCritical : kNormal ) );
    constexpr gint32 kUsualTime = -1;
    g_dbus_connection_call( mConnection.Get(), "org.freedesktop.Notifications", "/org/freedesktop/Notifications",
        "org.freedesktop.Notifications", "Notify",
        g_variant_new( "(susss@asa{sv}i)", "Korvalen", guint32( 0 ), "", title.c_str(), markup.get(),
            g_variant_new_strv( nullptr, 0 ), &hints, kUsualTime ),
        nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr, nullptr );
}

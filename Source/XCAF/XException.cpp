#include "XCAF/XException.h"

#include "XCAF/ErrorAlert.h"
#include "XCAF/XErrorHandler.h"

#include "Platform/Alerts.h"
#include "Platform/Platform.h"

XException::XException( TextView inMessage, const char* inFile, long inLine )
    : mLocation( kvr_format( "%s:%d", inFile, inLine ) ),
      mMessage( inMessage ),
      mWhat( UTF8FromText( inMessage ) )
{}

XException::XException( const char* inMessage, const char* inFile, long inLine )
    : XException( TextView( TextFromUTF8( inMessage ) ), inFile, inLine )
{}

void XException::Log( TextView inWhere ) const
{
    XErrorHandler::PrivateLogMessage(
        true, kvr_format( "WARNING: Uncaught Exception in %@: %@, %@", inWhere, mMessage, mLocation ) );
}

void XException::WarnUncaught( TextView inWhere ) const
{
    if ( Platform::Current().Alerts().IsApplicationActive() )
        ErrorAlert::ShowText( XAlertStyle::kCritical, nullptr,
            kvr_format( "WARNING: Uncaught Exception in %@", inWhere ), kvr_format( "%@ \n%@", mLocation, mMessage ) );
    Log( inWhere );
}

void XException::LogCurrent( TextView inWhere ) noexcept
{
    try
    {
        try
        {
            throw;
        }
        catch ( const XException& exception )
        {
            exception.Log( inWhere );
        }
        catch ( const std::exception& exception )
        {
            XException( exception.what(), "unknown", 0 ).Log( inWhere );
        }
        catch ( ... )
        {
            XException( "an exception of unknown type", "unknown", 0 ).Log( inWhere );
        }
    }
    catch ( const std::exception& )
    {
        // Out of memory for the line itself.
    }
}

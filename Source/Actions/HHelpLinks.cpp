#include "Actions/HHelpLinks.h"

#include "Utility/Text/Localization.h"

Text HHelpLinks::EncodedField( TextView inName )
{
    constexpr std::string_view kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
    Text field;
    for ( const char byte : UTF8FromText( inName ) )
    {
        if ( kPlain.find( byte ) != std::string_view::npos )
            field += char16_t( byte );
        else
            field += kvr_format( "%%%02X", unsigned( static_cast<unsigned char>( byte ) ) );
    }
    return field;
}

Text HHelpLinks::Link( TextView inKind, TextView inName )
{
    return kvr_localizedFormat( u"kvHelpLinkFormat", inKind, EncodedField( inName ) );
}

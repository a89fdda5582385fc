#include "Platform/Linux/BusNames.h"

#include "Platform/Linux/GLibHolders.h"

std::string BusNames::DigitsOf( const std::filesystem::path& inFolder )
{
    std::error_code error;
    std::filesystem::path path = std::filesystem::weakly_canonical( inFolder, error );
    if ( error )
        path = inFolder.lexically_normal();
    std::string text = path.native();
    // "folder/" and "folder" are one folder, also while it doesn't exist yet.
    while ( text.size() > 1 and text.back() == '/' )
        text.pop_back();
    const GString_ digits(
        g_compute_checksum_for_data( G_CHECKSUM_SHA256, reinterpret_cast<const guchar*>( text.data() ), text.size() ) );
    return std::string( digits.get(), 16 );
}

std::string BusNames::EditorOf( const std::filesystem::path& inFolder )
{
    return std::string( kEditor ).append( ".f" ).append( DigitsOf( inFolder ) );
}

std::string BusNames::EngineOf( const std::filesystem::path& inFolder )
{
    return std::string( kEngine ).append( ".f" ).append( DigitsOf( inFolder ) );
}

std::string BusNames::PathOf( const std::filesystem::path& inFolder )
{
    return std::string( "/com/tessarine/korvalen/" ).append( DigitsOf( inFolder ) );
}

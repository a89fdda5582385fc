#include "Platform/Linux/LinuxFileFacts.h"

#include "Platform/Linux/GLibHolders.h"
#include "XCAF/XErrorHandler.h"

namespace
{
// Local files only, without the desktop's services for remote ones, which would be started for this.
GObjectPtr<GFile> FileOf( const std::filesystem::path& inFile )
{
    return GObjectPtr<GFile>( g_vfs_get_file_for_path( g_vfs_get_local(), inFile.c_str() ) );
}

GObjectPtr<GFileInfo> FactsOf( const std::filesystem::path& inFile, const char* inAttribute )
{
    return GObjectPtr<GFileInfo>(
        g_file_query_info( FileOf( inFile ).get(), inAttribute, G_FILE_QUERY_INFO_NONE, nullptr, nullptr ) );
}

std::optional<Text> TextOf( const char* inText )
{
    if ( not inText )
        return {};
    return TextFromUTF8( inText );
}
} // namespace

bool LinuxFileFacts::TrashFile( const std::filesystem::path& inFile )
{
    GErrorHolder error;
    if ( g_file_trash( FileOf( inFile ).get(), nullptr, error.Out() ) )
        return true;
    XErrorHandler::PrivateMaybeLogFormat( "always", "%@ can't be moved to the trash: %s", inFile, error.Message() );
    return false;
}

std::optional<Text> LinuxFileFacts::GetFileKind( const std::filesystem::path& inFile ) const
{
    const std::optional<Text> type = GetType( inFile );
    if ( not type )
        return {};
    const GString_ kind( g_content_type_get_description( UTF8FromText( *type ).c_str() ) );
    return TextOf( kind.get() );
}

std::optional<Text> LinuxFileFacts::GetDisplayName( const std::filesystem::path& inFile ) const
{
    const GObjectPtr<GFileInfo> facts = FactsOf( inFile, G_FILE_ATTRIBUTE_STANDARD_DISPLAY_NAME );
    return facts ? TextOf( g_file_info_get_display_name( facts.get() ) ) : std::nullopt;
}

std::optional<Text> LinuxFileFacts::GetType( const std::filesystem::path& inFile ) const
{
    const GObjectPtr<GFileInfo> facts = FactsOf( inFile, G_FILE_ATTRIBUTE_STANDARD_CONTENT_TYPE );
    return facts ? TextOf( g_file_info_get_content_type( facts.get() ) ) : std::nullopt;
}

bool LinuxFileFacts::TypeConformsTo( TextView inType, TextView inOther ) const
{
    return inType == inOther or g_content_type_is_a( UTF8FromText( inType ).c_str(), UTF8FromText( inOther ).c_str() );
}

#include "Platform/Linux/LinuxLoginItems.h"

#include "Platform/Linux/DesktopEntry.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XFileWriting.h"

#include <cerrno>

namespace
{
constexpr std::string_view kExtension = ".desktop";
constexpr std::size_t kLongestEntry = std::size_t( 1 ) << 20;

// What may stand in every file system's names, from the item's.
std::string FileNameFor( const std::string& inName )
{
    std::string name;
    for ( const char character : inName )
    {
        if ( g_ascii_isalnum( character ) )
            name += g_ascii_tolower( character );
        else if ( not name.empty() and name.back() != '-' )
            name += '-';
    }
    while ( name.ends_with( '-' ) )
        name.pop_back();
    return name.empty() ? "item" : name;
}

bool Failed( const XFileError& inError )
{
    XErrorHandler::PrivateMaybeLogFormat( "always", "Login items: %s", inError.Describe() );
    return false;
}
} // namespace

LinuxLoginItems::LinuxLoginItems( std::filesystem::path inFolder, XWork& inWork )
    : mFolder( std::move( inFolder ) ),
      mWork( inWork )
{}

LinuxLoginItems::~LinuxLoginItems()
{
    SetObserver( {} );
}

std::vector<XLoginItem> LinuxLoginItems::GetLoginItems() const
{
    std::vector<std::string> names;
    if ( XFileCalls::Current().ReadFolder( mFolder, names ) != 0 )
        return {};
    std::vector<XLoginItem> items;
    for ( const std::string& name : names )
    {
        if ( not name.ends_with( kExtension ) )
            continue;
        const XFileContent content = ReadWholeFile( mFolder / name, kLongestEntry );
        if ( content.mError )
            continue;
        if ( const std::optional<DesktopEntry> entry = DesktopEntry::Read( content.mBytes.View() ) )
            items.push_back( { TextFromUTF8( entry->mName ), entry->mCommand.front(), TextFromUTF8( name ) } );
    }
    return items;
}

bool LinuxLoginItems::AddLoginItem( TextView inName, const std::filesystem::path& inTarget )
{
    const std::string name = UTF8FromText( inName );
    const std::optional<std::string> bytes = DesktopEntry{ name, { inTarget.native() } }.Write();
    if ( not bytes or not inTarget.is_absolute() )
        return false;
    if ( const auto error = MakeFolders( mFolder ) )
        return Failed( *error );
    // An entry of that name may be somebody else's; it isn't replaced.
    const std::string base = FileNameFor( name );
    std::filesystem::path file = mFolder / ( base + std::string( kExtension ) );
    XFileStatus facts;
    for ( int i = 2; XFileCalls::Current().GetLinkFacts( file, facts ) == 0; ++i )
        file = mFolder / ( base + "-" + std::to_string( i ) + std::string( kExtension ) );
    const std::span content( reinterpret_cast<const std::uint8_t*>( bytes->data() ), bytes->size() );
    if ( const auto error = XAtomicFile::Write( file, content ) )
        return Failed( *error );
    return true;
}

bool LinuxLoginItems::DeleteLoginItem( const XLoginItem& inItem )
{
    const std::string name = UTF8FromText( inItem.mIdentifier );
    if ( not name.ends_with( kExtension ) or name.find( '/' ) != std::string::npos )
        return false;
    if ( XFileCalls::Current().Unlink( mFolder / name ) == 0 )
        return true;
    return Failed( { "remove", mFolder / name, errno, std::generic_category().message( errno ), {} } );
}

void LinuxLoginItems::SetObserver( std::function<void()> inObserver )
{
    if ( mMonitor )
    {
        g_signal_handlers_disconnect_by_data( mMonitor.get(), this );
        g_file_monitor_cancel( mMonitor.get() );
        mMonitor.reset();
    }
    *mObserver = {};
    mObserver = std::make_shared<std::function<void()>>( std::move( inObserver ) );
    if ( not *mObserver )
        return;
    // A folder that isn't there would be looked for every few seconds.
    if ( const auto error = MakeFolders( mFolder ) )
        (void)Failed( *error );
    const GObjectPtr<GFile> folder( g_vfs_get_file_for_path( g_vfs_get_local(), mFolder.c_str() ) );
    mMonitor.reset( g_file_monitor_directory( folder.get(), G_FILE_MONITOR_NONE, nullptr, nullptr ) );
    const auto changed = +[]( GFileMonitor*, GFile*, GFile*, GFileMonitorEvent, gpointer inSelf ) {
        static_cast<LinuxLoginItems*>( inSelf )->Changed();
    };
    if ( mMonitor )
        g_signal_connect( mMonitor.get(), "changed", G_CALLBACK( changed ), this );
}

// One write is several events.
void LinuxLoginItems::Changed()
{
    if ( std::exchange( *mIsTold, true ) )
        return;
    mWork.MainQueue()->Async( [observer = mObserver, isTold = mIsTold] {
        *isTold = false;
        if ( const std::function<void()> block = *observer )
            block();
    } );
}

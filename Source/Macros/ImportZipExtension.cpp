// The layout decides what may be unpacked and under which names; the archive library only unpacks, entry by entry in
// the same order, and has to come to the sizes that were promised. Files are made new, one by one, in folders that
// were made here a moment ago and that nobody else can write to: so there is no link that could be followed.
#include "Macros/ImportZipExtension.h"

#include "Actions/PlugInFolder.h"
#include "Defines/KVPreferences.h"
#include "Macros/StatusMenuIcon.h"
#include "Macros/ZipLayout.h"
#include "Platform/FileFacts.h"
#include "Platform/Platform.h"
#include "Utility/Work/Random.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XFileTree.h"

#include <algorithm>
#include <archive.h>
#include <archive_entry.h>
#include <cerrno>
#include <cstring>
#include <memory>
#include <set>

namespace
{
using Path = std::filesystem::path;
using Importer = bool ( * )( const Path& inEntry );

constexpr std::string_view kFolderPrefix = "Import-";
// Packed bytes may outweigh what they hold, but not by much.
constexpr std::size_t kMostFileBytes = std::size_t( ZipLayout::kMostBytes ) + ( std::size_t( 8 ) << 20 );

// What the archiver of another system adds to each file, and its file manager to each folder: nobody's content.
bool IsBallast( const std::string& inName )
{
    return inName == "__MACOSX" or inName.starts_with( "__MACOSX/" ) or inName == ".DS_Store" or
        inName.ends_with( "/.DS_Store" );
}

Text ListingOf( const ZipLayout& inLayout )
{
    Text listing;
    for ( const ZipEntry& entry : inLayout.mEntries )
    {
        if ( not entry.mIsFolder and not IsBallast( entry.mName ) )
            listing += TextFromUTF8( entry.mName ) + u'\n';
    }
    return listing;
}

bool Refuse( const Path& inPath, std::string_view inReason )
{
    XErrorHandler::PrivateMaybeLogFormat( "always", "Zip file %@ was not imported: %@", inPath, inReason );
    return false;
}

class Unpacker
{
public:
    Unpacker( std::span<const std::uint8_t> inBytes, const ZipLayout& inLayout, Path inFolder )
        : mBytes( inBytes ),
          mLayout( inLayout ),
          mFolder( std::move( inFolder ) ),
          mArchive( archive_read_new() )
    {}

    /// The reason why it failed; absent when all is there.
    [[nodiscard]] std::optional<std::string> Run();

private:
    struct Free
    {
        void operator()( archive* inArchive ) const { archive_read_free( inArchive ); }
    };

    [[nodiscard]] std::optional<std::string> UnpackEntry( const ZipEntry& inEntry );
    [[nodiscard]] std::optional<std::string> UnpackFile( const ZipEntry& inEntry );
    [[nodiscard]] std::optional<std::string> CopyData( const ZipEntry& inEntry, int inFile );
    [[nodiscard]] bool WriteAll( int inFile, std::span<const std::uint8_t> inBytes );
    [[nodiscard]] bool MakeFoldersAbove( const std::string& inName );
    [[nodiscard]] bool MakeFolderOnce( const std::string& inName );
    [[nodiscard]] std::string Trouble() const
    {
        const char* const text = archive_error_string( mArchive.get() );
        return text ? text : "it is damaged";
    }

    std::span<const std::uint8_t> mBytes;
    const ZipLayout& mLayout;
    Path mFolder;
    std::unique_ptr<archive, Free> mArchive;
    XFileCalls& mCalls = XFileCalls::Current();
    std::set<std::string> mFolders; // that were made
};

std::string SystemTrouble()
{
    return std::strerror( errno );
}

std::optional<std::string> Unpacker::Run()
{
    archive* const zip = mArchive.get();
    if ( not zip or archive_read_support_format_zip_seekable( zip ) != ARCHIVE_OK or
        archive_read_open_memory( zip, mBytes.data(), mBytes.size() ) != ARCHIVE_OK )
        return zip ? Trouble() : "there is no memory for it";
    for ( const ZipEntry& entry : mLayout.mEntries )
    {
        if ( auto trouble = UnpackEntry( entry ) )
            return trouble;
    }
    archive_entry* beyond = nullptr;
    if ( archive_read_next_header( zip, &beyond ) != ARCHIVE_EOF )
        return "it holds more than its directory says";
    return {};
}

std::optional<std::string> Unpacker::UnpackEntry( const ZipEntry& inEntry )
{
    archive_entry* header = nullptr;
    const int result = archive_read_next_header( mArchive.get(), &header );
    // A warning is about a name that the locale has no letters for; the names come from the layout.
    if ( result != ARCHIVE_OK and result != ARCHIVE_WARN )
        return result == ARCHIVE_EOF ? "it holds less than its directory says" : Trouble();
    const auto kind = archive_entry_filetype( header );
    const bool isAsSaid = kind == ( inEntry.mIsFolder ? AE_IFDIR : AE_IFREG ) and
        not archive_entry_hardlink( header ) and not archive_entry_symlink( header ) and
        not archive_entry_is_encrypted( header ) and std::uint64_t( archive_entry_size( header ) ) == inEntry.mSize;
    if ( not isAsSaid )
        return "an entry isn't what its directory says";
    if ( IsBallast( inEntry.mName ) )
        return {};
    if ( not MakeFoldersAbove( inEntry.mName ) or ( inEntry.mIsFolder and not MakeFolderOnce( inEntry.mName ) ) )
        return SystemTrouble();
    return inEntry.mIsFolder ? std::nullopt : UnpackFile( inEntry );
}

std::optional<std::string> Unpacker::UnpackFile( const ZipEntry& inEntry )
{
    constexpr std::uint32_t kPrivateProgram = 0700;
    XOpenFile file = XOpenFile::Open( mFolder / inEntry.mName, XFileCalls::OpenFor::kCreateNew, mCalls );
    if ( not file )
        return SystemTrouble();
    if ( auto trouble = CopyData( inEntry, file.Get() ) )
        return trouble;
    const bool isWritten = ( not inEntry.mIsExecutable or mCalls.ChangeMode( file.Get(), kPrivateProgram ) == 0 ) and
        mCalls.FSync( file.Get() ) == 0 and file.Close();
    return isWritten ? std::nullopt : std::optional( SystemTrouble() );
}

// The end is where the data ends, not where the sizes say: each is checked against the other.
std::optional<std::string> Unpacker::CopyData( const ZipEntry& inEntry, int inFile )
{
    std::uint8_t buffer[65536];
    for ( std::uint64_t done = 0;; )
    {
        const la_ssize_t count = archive_read_data( mArchive.get(), buffer, sizeof( buffer ) );
        if ( count < 0 )
            return Trouble();
        if ( count == 0 )
            return done == inEntry.mSize ? std::nullopt : std::optional( std::string( "its sizes disagree" ) );
        done += std::uint64_t( count );
        if ( done > inEntry.mSize )
            return "its sizes disagree";
        if ( not WriteAll( inFile, { buffer, std::size_t( count ) } ) )
            return SystemTrouble();
    }
}

bool Unpacker::WriteAll( int inFile, std::span<const std::uint8_t> inBytes )
{
    while ( not inBytes.empty() )
    {
        const std::ptrdiff_t written = mCalls.Write( inFile, inBytes );
        if ( written < 0 and errno == EINTR )
            continue;
        if ( written <= 0 )
            return false;
        inBytes = inBytes.subspan( std::size_t( written ) );
    }
    return true;
}

bool Unpacker::MakeFoldersAbove( const std::string& inName )
{
    for ( std::size_t slash = inName.find( '/' ); slash != std::string::npos; slash = inName.find( '/', slash + 1 ) )
    {
        if ( not MakeFolderOnce( inName.substr( 0, slash ) ) )
            return false;
    }
    return true;
}

bool Unpacker::MakeFolderOnce( const std::string& inName )
{
    return not mFolders.insert( inName ).second or mCalls.MakeFolder( mFolder / inName ) == 0;
}

void Clear( const Path& inFolder )
{
    if ( const auto error = XFileTree::Remove( inFolder ) )
        XErrorHandler::PrivateMaybeLogFormat( "always", "Cleaning up failed: %@", error->Describe() );
}

// What nobody took may be of use to the user: it goes to the trash, an empty folder needn't.
void DiscardFolder( const Path& inFolder )
{
    if ( XFileCalls::Current().RemoveFolder( inFolder ) != 0 and
        not Platform::Current().FileFacts().TrashFile( inFolder ) )
        Clear( inFolder );
}

bool UnzipFile(
    const Path& inPath, std::span<const std::uint8_t> inBytes, const ZipLayout& inLayout, Importer inImporter )
{
    const Path folder = KVPreferences::FolderPath() / ( std::string( kFolderPrefix ) + UTF8FromText( uuidString() ) );
    if ( XFileCalls::Current().MakeFolder( folder ) != 0 )
        return Refuse( inPath, SystemTrouble() );
    if ( const auto trouble = Unpacker( inBytes, inLayout, folder ).Run() )
    {
        Clear( folder );
        return Refuse( inPath, *trouble );
    }
    std::vector<std::string> names;
    bool any = false;
    if ( XFileCalls::Current().ReadFolder( folder, names ) != 0 )
        names.clear();
    for ( const std::string& name : names )
        any = inImporter( folder / name ) or any;
    DiscardFolder( folder );
    return any;
}

// "Import-" and a UUID: no name of the user's own.
bool IsLeftover( const std::string& inName )
{
    constexpr std::size_t kUUIDLength = 36;
    if ( not inName.starts_with( kFolderPrefix ) or inName.size() != kFolderPrefix.size() + kUUIDLength )
        return false;
    for ( std::size_t i = 0; i < kUUIDLength; ++i )
    {
        const char unit = inName[kFolderPrefix.size() + i];
        const bool isHyphen = i == 8 or i == 13 or i == 18 or i == 23;
        if ( isHyphen ? unit != '-' : not( ( unit >= '0' and unit <= '9' ) or ( unit >= 'A' and unit <= 'F' ) ) )
            return false;
    }
    return true;
}
} // namespace

bool ImportZipExtension::Import( const Path& inPath )
{
    XAssertText( not inPath.empty(), "path" );
    XFileStatus facts;
    if ( XFileCalls::Current().GetPathFacts( inPath, facts ) != 0 )
        return Refuse( inPath, SystemTrouble() );
    if ( facts.mKind != XFileStatus::Kind::kRegular )
        return Refuse( inPath, "it is no file" );
    const XFileContent content = ReadWholeFile( inPath, kMostFileBytes );
    if ( content.mError )
        return Refuse( inPath, content.mError->Describe() );
    const ZipLayout layout = ReadZipLayout( content.mBytes.Span() );
    if ( layout.mFault )
        return Refuse( inPath, *layout.mFault );
    const Text listing = ListingOf( layout );
    if ( StatusMenuIcon::UnzipLikelyContains( listing ) )
        return UnzipFile( inPath, content.mBytes.Span(), layout, StatusMenuIcon::ImportUnzipped );
    if ( PlugInFolder::UnzipLikelyContains( listing ) )
        return UnzipFile( inPath, content.mBytes.Span(), layout, PlugInFolder::ImportUnzipped );
    return false;
}

void ImportZipExtension::RemoveLeftovers()
{
    XFileCalls& calls = XFileCalls::Current();
    const Path data = KVPreferences::FolderPath();
    std::vector<std::string> names;
    if ( calls.ReadFolder( data, names ) != 0 )
        return;
    for ( const std::string& name : names )
    {
        XFileStatus facts;
        if ( IsLeftover( name ) and calls.GetLinkFacts( data / name, facts ) == 0 and
            facts.mKind == XFileStatus::Kind::kFolder )
        {
            XErrorHandler::PrivateMaybeLogFormat( "always", "Removing %s, which an import left behind", name );
            Clear( data / name );
        }
    }
}

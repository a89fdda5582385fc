#include "Actions/PlugInFolder.h"

#include "CFMethods/PropertyListCodec.h"
#include "Defines/EntryReplacement.h"
#include "Defines/KVPreferences.h"
#include "Utility/Text/FileHelpers.h"
#include "Utility/Text/TextCompare.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XFileWriting.h"
#include "XCAF/XNotificationCenter.h"

#include <algorithm>
#include <map>
#include <mutex>

namespace
{
constexpr TextView kFolderName = u"Korvalen Actions";
constexpr TextView kInformationFileName = u"Korvalen Action.plist";
constexpr std::size_t kMostInformationBytes = std::size_t( 4 ) << 20;

class Cache
{
public:
    struct Found
    {
        CFContainer<XPlistDictionary> mInformation; // null: not here
        std::uint64_t mClearings;                   // how often the cache was cleared by then
    };

    [[nodiscard]] Found Find( const Text& inName )
    {
        const std::lock_guard lock( mMutex );
        const auto found = mInformation.find( inName );
        return { found == mInformation.end() ? nullptr : found->second, mClearings };
    }
    /// Nothing if the cache was cleared since the search: what was read before it may be out of date.
    void Insert( const Text& inName, const CFContainer<XPlistDictionary>& inInformation, std::uint64_t inClearings )
    {
        const std::lock_guard lock( mMutex );
        if ( inClearings == mClearings )
            mInformation.insert_or_assign( inName, inInformation );
    }
    void Forget( const Text& inName )
    {
        const std::lock_guard lock( mMutex );
        mInformation.erase( inName );
        ++mClearings;
    }
    void Clear()
    {
        const std::lock_guard lock( mMutex );
        mInformation.clear();
        ++mClearings;
    }

private:
    std::mutex mMutex;
    std::map<Text, CFContainer<XPlistDictionary>> mInformation; // none is null
    std::uint64_t mClearings = 0;
};

Cache& gCache()
{
    static Cache gTheCache;
    return gTheCache;
}

std::filesystem::path InformationFile( const std::filesystem::path& inFolder )
{
    return inFolder / UTF8FromText( kInformationFileName );
}

CFContainer<XPlistDictionary> ReadInformation( const XText& inName )
{
    const auto folder = PlugInFolder::FolderForName( inName );
    if ( not folder )
        return nullptr;
    // A plug-in is a stranger's: a link could lead anywhere, and a pipe would wait for somebody to write into it.
    XFileStatus facts;
    const std::filesystem::path file = InformationFile( *folder );
    if ( XFileCalls::Current().GetLinkFacts( file, facts ) != 0 or facts.mKind != XFileStatus::Kind::kRegular )
        return nullptr;
    const XFileContent content = ReadWholeFile( file, kMostInformationBytes );
    if ( content.mError )
        return nullptr;
    const XPlistReadResult result = ReadPropertyList( content.mBytes.Span() );
    return CFContainer<XPlistDictionary>::Share( result.mValue.AsDictionary() );
}

constexpr bool IsNameUnit( char16_t inUnit )
{
    return ( inUnit >= u'A' and inUnit <= u'Z' ) or ( inUnit >= u'a' and inUnit <= u'z' ) or
        ( inUnit >= u'0' and inUnit <= u'9' ) or inUnit == u'_';
}

bool IsName( TextView inText )
{
    return not inText.empty() and std::all_of( inText.begin(), inText.end(), IsNameUnit );
}
} // namespace

CFContainer<XPlistDictionary> PlugInFolder::InformationForFolderName( const XText& inName )
{
    const Text name = inName.GetText();
    const Cache::Found found = gCache().Find( name );
    if ( found.mInformation )
        return found.mInformation;
    // Read outside of the lock: nobody waits for somebody else's disk.
    auto information = ReadInformation( inName );
    if ( information )
        gCache().Insert( name, information, found.mClearings );
    else
        XErrorHandler::PrivateMaybeLogFormat( "always", "Invalid Plug In Action with Name %@", name );
    return information;
}

void PlugInFolder::ClearCache()
{
    gCache().Clear();
}

std::vector<Text> PlugInFolder::ListPlugIns()
{
    XFileCalls& calls = XFileCalls::Current();
    const std::filesystem::path folder = KVPreferences::FilePath( kFolderName );
    std::vector<std::string> entries;
    if ( calls.ReadFolder( folder, entries ) != 0 )
        return {};
    std::vector<Text> names;
    for ( const std::string& entry : entries )
    {
        // A folder without an information file is somebody's, but no broken plug-in.
        XFileStatus facts;
        const auto name = TextFromStrictUTF8( entry );
        if ( name and calls.GetLinkFacts( InformationFile( folder / entry ), facts ) == 0 and
            InformationForFolderName( *name ) )
            names.push_back( *name );
    }
    std::sort( names.begin(), names.end(),
        []( const Text& a, const Text& b ) { return localizedStandardCompare( a, b ) < 0; } );
    return names;
}

bool PlugInFolder::ImportUnzipped( const std::filesystem::path& inPath )
{
    // 1. The target; a name that can't be one of a plug-in is one whose information doesn't load.
    const auto name = TextFromStrictUTF8( inPath.filename().native() );
    const auto target = name ? FolderForName( *name ) : std::nullopt;
    if ( not target )
    {
        XErrorBeep( "Imported action invalid" );
        return false;
    }
    if ( const auto error = MakeFolders( target->parent_path() ) )
        XErrorHandler::PrivateMaybeLogFormat( "always", "Importing a plug-in failed: %@", error->Describe() );
    // 2. and 3.
    EntryReplacement replacement( *target );
    if ( not replacement.IsTargetFree() )
    {
        XErrorBeep( "Imported action already exists" );
        return false;
    }
    // 4. The cache would answer for the older folder.
    const bool isMoved = replacement.Take( inPath );
    gCache().Forget( *name );
    if ( not isMoved )
    {
        XAssertText( false, "false" );
        return false;
    }
    // 5.
    if ( InformationForFolderName( *name ) )
    {
        replacement.DiscardOlder();
        XNotificationCenter::PostApplicationInternalNotification(
            kReloadThirdPartyActionsNotification, nullptr, nullptr );
        return true;
    }
    // 6.
    replacement.DiscardNew();
    XErrorBeep( "Imported action invalid" );
    if ( replacement.Older() )
        XErrorHandler::PrivateMaybeLogFormat(
            "always", "The older plug-in %@ lies at %@", *name, *replacement.Older() );
    return false;
}

bool PlugInFolder::UnzipLikelyContains( TextView inListing )
{
    return inListing.find( kInformationFileName ) != TextView::npos;
}

std::optional<std::filesystem::path> PlugInFolder::FolderForName( const XText& inName )
{
    const Text name = inName.GetText();
    const bool isOutside = name.find( u'/' ) != Text::npos or name == u"." or name == u"..";
    const auto path = kvr_fileSystemPath( name );
    if ( isOutside or not path or FindLoneSurrogate( name ) )
        return {};
    return KVPreferences::FilePath( kFolderName ) / *path;
}

bool PlugInFolder::IsSafeFileName( TextView inName )
{
    const std::size_t dot = inName.find( u'.' );
    if ( dot == TextView::npos )
        return IsName( inName );
    return IsName( inName.substr( 0, dot ) ) and IsName( inName.substr( dot + 1 ) );
}

#include "Macros/StatusMenuIcon.h"

#include "Actions/PlugInFolder.h"
#include "Defines/EntryReplacement.h"
#include "Defines/KVPreferences.h"
#include "Utility/Text/PathHelpers.h"
#include "Utility/Text/TextCompare.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XFileTree.h"

#include <algorithm>

namespace
{
constexpr TextView kFolderName = u"Status Menu Icons";

bool IsIconFile( TextView inPath )
{
    constexpr TextView kExtensions[] = { u"png", u"tif", u"tiff", u"pdf", u"icns", u"svg" };
    const Text extension = pathExtension( inPath );
    return lastPathComponent( inPath ).starts_with( u"StatusMenuIcon" ) and
        std::ranges::any_of( kExtensions,
            [&extension]( TextView known ) { return kvr_caseInsensitiveIsEqualToString( extension, known ); } );
}

bool HoldsIcons( const std::filesystem::path& inPath )
{
    XFileStatus facts;
    if ( XFileCalls::Current().GetLinkFacts( inPath, facts ) != 0 )
        return false;
    if ( facts.mKind == XFileStatus::Kind::kRegular )
        return IsIconFile( TextFromUTF8( inPath.native() ) );
    return facts.mKind == XFileStatus::Kind::kFolder and
        std::ranges::any_of( XFileTree::Files( inPath ),
            []( const std::filesystem::path& file ) { return IsIconFile( TextFromUTF8( file.native() ) ); } );
}
} // namespace

bool StatusMenuIcon::UnzipLikelyContains( TextView inListing )
{
    // A plug-in may have an image of any name.
    if ( PlugInFolder::UnzipLikelyContains( inListing ) )
        return false;
    for ( std::size_t begin = 0; begin < inListing.size(); )
    {
        const std::size_t end = std::min( inListing.find( u'\n', begin ), inListing.size() );
        if ( IsIconFile( inListing.substr( begin, end - begin ) ) )
            return true;
        begin = end + 1;
    }
    return false;
}

bool StatusMenuIcon::ImportUnzipped( const std::filesystem::path& inPath )
{
    if ( not HoldsIcons( inPath ) )
        return false;
    const std::filesystem::path folder = KVPreferences::FilePath( kFolderName );
    if ( const auto error = MakeFolders( folder ) )
    {
        XErrorBeep( "Status menu icon not imported: %@", error->Describe() );
        return false;
    }
    EntryReplacement replacement( folder / inPath.filename() );
    if ( not replacement.IsTargetFree() or not replacement.Take( inPath ) )
    {
        XErrorBeep( "Status menu icon not imported: %@ can't be replaced", folder / inPath.filename() );
        return false;
    }
    replacement.DiscardOlder();
    return true;
}

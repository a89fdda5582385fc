#include "Actions/WikiHelpData.h"

#include "Utility/Text/TextCompare.h"
#include "XCAF/XFileWriting.h"

#include <algorithm>

bool kvr_writeWikiHelpData( const std::filesystem::path& inFile, std::vector<WikiHelpLine> inLines )
{
    std::ranges::stable_sort( inLines, []( const WikiHelpLine& a, const WikiHelpLine& b ) {
        return localizedStandardCompare( a.mSortTitle, b.mSortTitle ) < 0;
    } );
    Text text;
    for ( const WikiHelpLine& line : inLines )
        text += line.mPage + u'\t' + line.mTitle + u'\t' + line.mSubject + u'\t' + line.mExample + u'\n';
    const std::string bytes = UTF8FromText( text );
    return not XAtomicFile::Write( inFile, { reinterpret_cast<const std::uint8_t*>( bytes.data() ), bytes.size() } );
}

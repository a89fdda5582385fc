#include "Utility/Search/CaseFolding.h"

#include "Utility/Text/StringHelpers.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <unicode/uchar.h>
#include <unicode/ustring.h>

namespace
{
// Blocks without letters that have a case, which stand in nearly every text that isn't ASCII: quotes, dashes and
// ellipses; arrows and the glyphs of keys; kana and ideographs.
bool IsCaseless( char16_t inUnit )
{
    return ( inUnit >= 0x2000 and inUnit < 0x2100 ) or ( inUnit >= 0x2190 and inUnit < 0x2400 ) or
        ( inUnit >= 0x3000 and inUnit < 0xA000 );
}
} // namespace

bool IsASCII( TextView inText )
{
    // Four units at once, as most texts are ASCII to their end.
    std::uint64_t all = 0, four = 0;
    for ( ; inText.size() >= 4; inText.remove_prefix( 4 ) )
    {
        std::memcpy( &four, inText.data(), sizeof four );
        all |= four;
    }
    for ( const char16_t unit : inText )
        all |= unit;
    return ( all & 0xFF80FF80FF80FF80 ) == 0;
}

Text FoldedCase( TextView inText )
{
    std::vector<std::uint32_t> innerPlaces;
    Text folded;
    AppendFoldedCase( inText, folded, innerPlaces );
    return folded;
}

void AppendFoldedCase( TextView inText, Text& ioFolded, std::vector<std::uint32_t>& ioInnerPlaces )
{
    ioFolded.reserve( ioFolded.size() + inText.size() );
    for ( std::size_t at = 0; at < inText.size(); )
    {
        // In one piece what folds unit by unit.
        std::size_t end = at;
        while ( end < inText.size() and ( inText[end] < 0x80 or IsCaseless( inText[end] ) ) )
            ++end;
        if ( end > at )
        {
            const std::size_t begin = ioFolded.size();
            ioFolded.append( inText.substr( at, end - at ) );
            for ( char16_t& unit : std::span( ioFolded ).subspan( begin ) )
                unit = unit >= u'A' and unit <= u'Z' ? char16_t( unit + 32 ) : unit;
            at = end;
            continue;
        }
        const std::size_t start = at;
        (void)kvr_nextCharacter( inText, at );
        UErrorCode status = U_ZERO_ERROR;
        char16_t folded[8]; // the longest folding has three units
        const std::int32_t length = u_strFoldCase( folded, std::int32_t( std::size( folded ) ), inText.data() + start,
            std::int32_t( at - start ), U_FOLD_CASE_DEFAULT, &status );
        const std::size_t before = ioFolded.size();
        ioFolded.append( folded, std::size_t( std::max( 0, length ) ) );
        const std::size_t firstUnits = length > 1 and IsHighSurrogate( folded[0] ) ? 2 : 1;
        for ( std::size_t inner = before + firstUnits; inner < ioFolded.size(); ++inner )
            ioInnerPlaces.push_back( std::uint32_t( inner ) );
    }
}

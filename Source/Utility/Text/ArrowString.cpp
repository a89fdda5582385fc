#include "Utility/Text/ArrowString.h"

#include "Utility/Text/Localization.h"

#include <iterator>

namespace
{
constexpr TextView kStyleKeys[] = { u"WidthCharacter", u"HeightCharacter", u"RightArrowCharacter",
    u"RightToCenterArrowCharacter", u"DownArrowCharacter", u"DownToCenterArrowCharacter", u"LeftArrowCharacter",
    u"UpArrowCharacter" };
static_assert( std::size( kStyleKeys ) == std::size_t( ArrowString::Style::Up ) + 1 );
} // namespace

const Text& ArrowString::String( Style inStyle )
{
    return kvr_localized( kStyleKeys[std::size_t( inStyle )] );
}

// Which of the places where an image was found is meant.
#pragma once

#include "Actions/HFieldVisitor.h"

enum class ImageSelection { kUnique, kBest, kTop, kLeft, kBottom, kRight };
inline constexpr TextView kImageSelectionNames[] = { u"Unique", u"Best", u"Top", u"Left", u"Bottom", u"Right" };
static_assert( std::size( kImageSelectionNames ) == std::size_t( ImageSelection::kRight ) + 1 );
constexpr auto NamesOf( ImageSelection )
{
    return std::span( kImageSelectionNames );
}

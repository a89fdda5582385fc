// Texts of the program itself that many objects hold, as the default values of fields: each is made
// once, so that a new object costs no allocation for it. Any thread.
#pragma once

#include "CFMethods/PropertyList.h"

#include <algorithm>

template<std::size_t kSize>
struct XLiteral
{
    char16_t mUnits[kSize];
    consteval XLiteral( const char16_t ( &inText )[kSize] ) { std::copy_n( inText, kSize, mUnits ); }
};

/// SharedText<u"VarName">()
template<XLiteral kLiteral>
[[nodiscard]] const XText& SharedText()
{
    static const XText gText( TextView( kLiteral.mUnits, std::size( kLiteral.mUnits ) - 1 ) );
    return gText;
}

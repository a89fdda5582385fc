// A colour as macros store it: the text "KVCOLOR:red,green,blue,alpha". The text itself is
// kept, so that what other versions write comes back unchanged, even where we can't read it.
#pragma once

#include "CFMethods/PropertyList.h"

#include <array>
#include <optional>

class XColor
{
public:
    /// The default text colour of a custom icon has 257 in all four places; numbers beyond the usual range are kept.
    using Components = std::array<double, 4>; ///< red, green, blue, alpha

    XColor() = default; ///< no colour: the text is ""
    explicit XColor( const Components& inComponents );
    /// Any text; whether it can be read, GetComponents says.
    [[nodiscard]] static XColor FromText( TextView inText );

    [[nodiscard]] Text GetText() const { return mText.GetText(); }
    /// Absent when the text isn't "KVCOLOR:" and four finite numbers with commas between.
    [[nodiscard]] std::optional<Components> GetComponents() const;

    /// By text: "1" and "1.0" differ.
    friend bool operator==( const XColor& a, const XColor& b ) { return a.GetText() == b.GetText(); }

private:
    XText mText;
};

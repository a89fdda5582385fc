// Walks the lines of a text, each up to CR LF, CR or LF: what the collection of that name runs over. A last
// line break begins no further line. Linear in the length of the text. One thread.
#pragma once

#include "CFMethods/PropertyList.h"

#include <optional>

class LinesIn
{
public:
    /// Keeps a copy of the text. Null is an assertion at the first line that is asked for.
    explicit LinesIn( const XText& initWithString );

    [[nodiscard]] bool includeBlank() const { return mIncludeBlank; }
    void setIncludeBlank( bool inInclude ) { mIncludeBlank = inInclude; }

    /// The next line, blank or not, without its break; absent at the end.
    [[nodiscard]] std::optional<Text> nextLine();
    /// The next line; the next that isn't empty, unless blank lines are included. White space isn't empty.
    [[nodiscard]] std::optional<Text> nextObject();

private:
    bool mHasString;
    Text mString;
    std::size_t mPosition = 0; // in UTF-16 units
    bool mIncludeBlank = false;
};

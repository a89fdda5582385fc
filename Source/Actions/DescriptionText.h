// What descriptions of actions, conditions and collections share.
#pragma once

#include "CFMethods/PropertyList.h"

/// The beginning of a text on one line, to stand within a description: at most 60 units, "…" behind it if more follows.
[[nodiscard]] Text kvr_excerpt( const XText& inText );
/// The last component of a path; the path itself when it has none.
[[nodiscard]] Text kvr_fileName( const XText& inPath );
/// The name of the page that the help has under a title: "Cut, Copy/Paste" is at "Cut_Copy_or_Paste".
[[nodiscard]] Text kvr_wikiName( Text inTitle );
/// A line under an action's title: the format of a key with the value made safe for a page; "" without a value.
[[nodiscard]] Text kvr_extraHTMLLine( TextView inFormatKey, TextView inValue );
/// The line of a key, if it applies.
[[nodiscard]] Text kvr_extraHTMLLineIf( bool inApplies, TextView inKey );

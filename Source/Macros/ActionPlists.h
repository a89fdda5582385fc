// Actions as text and on the pasteboard: an XML property list of an action, or of an array of actions, as scripts
// hand them over and as copying leaves them. Main thread.
#pragma once

#include "CFMethods/PropertyList.h"
#include "Platform/Pasteboard.h"

class HActionList;

namespace ActionPlists
{
inline constexpr TextView kPasteboardType = u"com.tessarine.korvalen.actionarray";

/// Does the text hold an action or actions? It must begin with a tag of a property list, without anything before it.
[[nodiscard]] bool StringIsActionPlist( TextView inText );
/// Appends the actions of the text to the list; false with the reason when there are none to be had. Actions of
/// an array that can't be understood are left out. The insertion that is running is the caller's to finish;
/// without one this is an insertion of its own.
bool GetStringActionPlist( TextView inText, HActionList& ioActionList, Text& outError );

[[nodiscard]] bool PasteboardHasActions( const XPasteboard& inPasteboard );
/// Appends what is on the pasteboard; false when it has no actions.
bool GetPasteboardActions( const XPasteboard& inPasteboard, HActionList& ioActionList );
} // namespace ActionPlists

// What descriptions of actions, conditions and collections share.
#pragma once

#include "CFMethods/PropertyList.h"

class ApplicationTarget;
class ActionTextDestination;

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
/// The description of an action with the application that it is sent to, unless that is the one in front.
[[nodiscard]] Text kvr_withApplication( const Text& inDescription, const ApplicationTarget& inTarget );
/// The macro of a UID as people tell macros apart; "Unknown Macro" when there is none.
[[nodiscard]] Text kvr_macroName( const XText& inUID );
/// The same of a macro group.
[[nodiscard]] Text kvr_macroGroupName( const XText& inUID );
/// What an action does, with the place that its result goes to, unless that is where its text came from.
[[nodiscard]] Text kvr_withDestination( TextView inDescription, const ActionTextDestination& inDestination );
/// What a command with an argument does: the text of "<family><command>ArgumentDescriptionFormat", if the command
/// takes an argument and has one, else of "<family><command>Description".
[[nodiscard]] Text kvr_commandDescription( TextView inFamily, TextView inCommand, const XText& inArgument );

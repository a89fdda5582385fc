// What becomes of the text that an action gives: shown, typed, put into a variable or a clipboard.
#pragma once

#include "Actions/ClipboardTarget.h"
#include "Actions/SharedText.h"

enum class ActionDisplayKind : std::int32_t {
    kNone,
    kWindow,
    kBriefly,
    kLarge,
    kTyping,
    kPasting,
    kVariable,
    kAppendVar,
    kClipboard,
    kAsynchronously,
};
inline constexpr TextView kActionDisplayKindNames[] = { u"None", u"Window", u"Briefly", u"Large", u"Typing", u"Pasting",
    u"Variable", u"AppendVar", u"Clipboard", u"Asynchronously" };
static_assert( std::size( kActionDisplayKindNames ) == std::size_t( ActionDisplayKind::kAsynchronously ) + 1 );
constexpr auto NamesOf( ActionDisplayKind )
{
    return std::span( kActionDisplayKindNames );
}

class ActionResult
{
public:
    /// "DisplayKind" always; "Variable" with the two kinds of a variable, "ClipboardTarget" with that of a clipboard.
    void DescribeFields( HFieldVisitor& inVisitor, ActionDisplayKind inWhenMissing = ActionDisplayKind::kNone );

    [[nodiscard]] ActionDisplayKind GetKind() const { return mKind; }
    void SetKind( ActionDisplayKind inKind ) { mKind = inKind; }
    [[nodiscard]] const XText& GetVariable() const { return mVariable; }
    /// What is done with the result, to stand behind what the action does: " and Display Briefly"; "" for nothing.
    [[nodiscard]] Text GetDescription() const;
    void UpdateToDefaultValues( bool inForce );

private:
    ActionDisplayKind mKind = ActionDisplayKind::kNone;
    XText mVariable = SharedText<u"VarName">();
    ClipboardTarget mClipboard;
};

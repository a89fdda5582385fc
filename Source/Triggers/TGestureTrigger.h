// The trigger of a gesture: a path drawn with the mouse, usually while modifiers or a mouse button are down.
#pragma once

#include "Actions/HFieldVisitor.h"
#include "Actions/SharedText.h"
#include "Triggers/TBaseTrigger.h"

/// What must be down while a gesture is drawn.
enum class GestureRequirement { kNothing, kUseModifiers, kUseMouse, kUseModifiersOrMouse, kUseModifiersAndMouse };
inline constexpr TextView kGestureRequirementNames[] = { u"Nothing", u"UseModifiers", u"UseMouse",
    u"UseModifiersOrMouse", u"UseModifiersAndMouse" };
static_assert( std::size( kGestureRequirementNames ) == std::size_t( GestureRequirement::kUseModifiersAndMouse ) + 1 );
constexpr auto NamesOf( GestureRequirement )
{
    return std::span( kGestureRequirementNames );
}

class TGestureTrigger final : public TTriggerOf<TGestureTrigger, TriggerType::kGesture>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    /// Nothing is drawn, or a single stroke that would fire all the time.
    [[nodiscard]] bool TriggerIsUseless() const override;
    [[nodiscard]] Text GetDescription() const override;
    [[nodiscard]] Text GetShortDescription() const override;

    /// The modifiers, the button and the gesture: "⌥+🖱2+RDL".
    [[nodiscard]] Text GetGestureDescription() const;
    [[nodiscard]] bool UsesModifiers() const;
    [[nodiscard]] bool UsesMouseButton() const;

private:
    XText mGesture = SharedText<u"">();
    GestureRequirement mRequirement = GestureRequirement::kUseModifiers;
    std::int32_t mModifiers = 0;
    std::int32_t mButton = 0; // 0: none
    bool mAllowReverse = false;
};

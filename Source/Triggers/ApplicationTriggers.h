// The triggers of applications and their windows.
#pragma once

#include "Actions/ActionFieldParts.h"
#include "Triggers/ApplicationTriggerFireType.h"
#include "Triggers/TBaseTrigger.h"

class TApplicationTrigger final : public TTriggerOf<TApplicationTrigger, TriggerType::kApplication>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;

    [[nodiscard]] const ApplicationTarget& GetTarget() const { return mTarget; }
    void SetTarget( ApplicationTarget inTarget ) { mTarget = std::move( inTarget ); }
    [[nodiscard]] ApplicationTriggerFireType GetFireType() const { return mFireType; }
    void SetFireType( ApplicationTriggerFireType inFireType ) { mFireType = inFireType; }
    /// Seconds, of the two fire types that go on.
    [[nodiscard]] std::int32_t GetRepeatTime() const { return mRepeatTime; }
    void SetRepeatTime( std::int32_t inSeconds ) { mRepeatTime = inSeconds; }

private:
    void ReadOlderFireType( HFieldVisitor& inVisitor );

    ApplicationTarget mTarget;
    ApplicationTriggerFireType mFireType = ApplicationTriggerFireType::kActivate;
    std::int32_t mRepeatTime = 60;
};

/// What about the focused window changes. The spelling is that of the files.
enum class FocusedWindowChangeType {
    kFocussedWindowChanges,
    kFocussedWindowTitleChanges, ///< it changes, or its title does
    kFocussedWindowsTitleChanged,
    kFocussedWindowsFrameChanged,
};
inline constexpr TextView kFocusedWindowChangeTypeNames[] = { u"FocussedWindowChanges", u"FocussedWindowTitleChanges",
    u"FocussedWindowsTitleChanged", u"FocussedWindowsFrameChanged" }; // as stored
static_assert( std::size( kFocusedWindowChangeTypeNames ) ==
    std::size_t( FocusedWindowChangeType::kFocussedWindowsFrameChanged ) + 1 );
constexpr auto NamesOf( FocusedWindowChangeType )
{
    return std::span( kFocusedWindowChangeTypeNames );
}

class TFocusedWindowTrigger final : public TTriggerOf<TFocusedWindowTrigger, TriggerType::kFocussedWindow>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;
    [[nodiscard]] Text GetShortDescription() const override;

private:
    FocusedWindowChangeType mChangeType = FocusedWindowChangeType::kFocussedWindowTitleChanges;
};

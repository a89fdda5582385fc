// The actions that open a switcher: a window in which the user chooses an application, a window or a clipboard.
#pragma once

#include "Actions/HBaseAction.h"

enum class ProgramSortOrder { kSortAlphabetical, kSortByLaunch, kSortByUse };
inline constexpr TextView kProgramSortOrderNames[] = { u"SortAlphabetical", u"SortByLaunch", u"SortByUse" };
static_assert( std::size( kProgramSortOrderNames ) == std::size_t( ProgramSortOrder::kSortByUse ) + 1 );
constexpr auto NamesOf( ProgramSortOrder )
{
    return std::span( kProgramSortOrderNames );
}

/// How a switcher lays out what it offers.
enum class SwitcherWindowType { kVerticalList, kHorizontalIcons, kIconGrid, kCoverFlow };
inline constexpr TextView kSwitcherWindowTypeNames[] = { u"VerticalList", u"HorizontalIcons", u"IconGrid",
    u"CoverFlow" };
static_assert( std::size( kSwitcherWindowTypeNames ) == std::size_t( SwitcherWindowType::kCoverFlow ) + 1 );
constexpr auto NamesOf( SwitcherWindowType )
{
    return std::span( kSwitcherWindowTypeNames );
}

/// Among running applications.
class AProgramSwitcher final : public HActionOf<AProgramSwitcher, HActionType::kProgramSwitcher>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetActionExtraHTML() const override;

private:
    void DescribeSortOrder( HFieldVisitor& inVisitor );

    ProgramSortOrder mSortOrder = ProgramSortOrder::kSortAlphabetical;
    SwitcherWindowType mWindowType = SwitcherWindowType::kVerticalList;
    std::int32_t mIconSize = 0; // 0: as the switcher likes
    bool mSwitcherUnderMouse = false;
    bool mHideOthers = false;
    bool mMouseRollover = false;
    __SafeCFPropertyList mIncludedApplications; // as the file has it
};

class AWindowSwitcher final : public HActionOf<AWindowSwitcher, HActionType::kWindowSwitcher>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetActionExtraHTML() const override;

private:
    bool mSwitcherUnderMouse = false;
    bool mMouseRollover = false;
    bool mSortAlphabetically = false;
};

/// Among installed applications.
class AApplicationLauncher final : public HActionOf<AApplicationLauncher, HActionType::kApplicationLauncher>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetActionExtraHTML() const override;

private:
    bool mSwitcherUnderMouse = false;
    bool mHideOthers = false;
    bool mExcludeRunning = false;
    std::int32_t mApplicationMask = 0;
    __SafeCFPropertyList mIncludedApplications, mExcludedApplications; // as the file has them
};

/// Copies, cuts or pastes by way of a named clipboard: three types that differ in nothing else.
class AClipboardSwitcher final : public HBaseAction
{
public:
    explicit AClipboardSwitcher( HActionType inType ) : mType( inType ) {}
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] HActionType GetActionType() const override { return mType; }
    [[nodiscard]] std::unique_ptr<HBaseAction> Clone() const override;
    [[nodiscard]] Text GetActionExtraHTML() const override;

private:
    HActionType mType;
    bool mSwitcherUnderMouse = false;
};

class AClipboardHistorySwitcher final
    : public HActionOf<AClipboardHistorySwitcher, HActionType::kClipboardHistorySwitcher>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetActionExtraHTML() const override;

private:
    bool mSwitcherUnderMouse = false;
};

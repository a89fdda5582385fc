// The actions on windows and on what windows show: menus and buttons.
#pragma once

#include "Actions/ActionFieldParts.h"
#include "Actions/HBaseAction.h"

enum class WindowAction {
    kResizeWindowByPercent,
    kResizeWindowBy,
    kResizeWindowTo,
    kMoveWindowBy,
    kMoveWindowTo,
    kMoveAndResize,
    kCenterWindow,
    kCenterWindowAt,
    kCloseWindow,
    kZoomWindow,
    kReallyMinimizeWindow,
    kUnminimizeWindow,
    kMinimizeWindow,
    kSelectWindow,
};
inline constexpr TextView kWindowActionNames[] = { u"ResizeWindowByPercent", u"ResizeWindowBy", u"ResizeWindowTo",
    u"MoveWindowBy", u"MoveWindowTo", u"MoveAndResize", u"CenterWindow", u"CenterWindowAt", u"CloseWindow",
    u"ZoomWindow", u"ReallyMinimizeWindow", u"UnminimizeWindow", u"MinimizeWindow", u"SelectWindow" };
static_assert( std::size( kWindowActionNames ) == std::size_t( WindowAction::kSelectWindow ) + 1 );
constexpr auto NamesOf( WindowAction )
{
    return std::span( kWindowActionNames );
}

enum class WindowTargeting { kFrontWindow, kNamedWindow, kWindowNameContaining, kWindowNameMatching, kWindowIndex };
inline constexpr TextView kWindowTargetingNames[] = { u"FrontWindow", u"NamedWindow", u"WindowNameContaining",
    u"WindowNameMatching", u"WindowIndex" };
static_assert( std::size( kWindowTargetingNames ) == std::size_t( WindowTargeting::kWindowIndex ) + 1 );
constexpr auto NamesOf( WindowTargeting )
{
    return std::span( kWindowTargetingNames );
}

class AManipulateWindow final : public HActionOf<AManipulateWindow, HActionType::kManipulateWindow>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    /// Two moves or sizes of one window become the last, or both at once; plain distances are added up.
    [[nodiscard]] std::unique_ptr<HBaseAction> Merge( const HBaseAction& inNext ) const override;
    [[nodiscard]] bool CanBeInstigatedByClickAction() const override { return true; }
    [[nodiscard]] std::vector<Text> ActionCouldBeRegExStrings() const override;
    [[nodiscard]] std::vector<Text> GetAddActionByNameExtraSearchString() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    /// Two expressions: a place, a size or a distance.
    struct Pair
    {
        XText mHorizontal, mVertical;
        [[nodiscard]] bool IsPlain() const;
    };

    [[nodiscard]] bool IsOnSameWindow( const AManipulateWindow& inOther ) const;
    [[nodiscard]] std::optional<Pair> GetNewPlace() const;
    [[nodiscard]] std::optional<Pair> GetNewSize() const;
    [[nodiscard]] std::unique_ptr<HBaseAction> MergeDistances( const AManipulateWindow& inNext ) const;
    [[nodiscard]] std::unique_ptr<HBaseAction> MergeFrames( const AManipulateWindow& inNext ) const;
    [[nodiscard]] Text GetWindowDescription() const;

    WindowTargeting mTargeting = WindowTargeting::kFrontWindow;
    WindowAction mAction = WindowAction::kResizeWindowByPercent;
    XText mWindowName = SharedText<u"">();
    XText mHorizontal = SharedText<u"125">(); // the size of a resize, else the place or distance
    XText mVertical = SharedText<u"125">();
    XText mWidth = SharedText<u"300">(); // of a move and resize
    XText mHeight = SharedText<u"300">();
    XText mWindowIndex = SharedText<u"2">();
    ApplicationTarget mTarget;
};

class ASelectMenuItem final : public HActionOf<ASelectMenuItem, HActionType::kSelectMenuItem>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] bool CanBeInstigatedByClickAction() const override { return true; }

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    [[nodiscard]] Text GetMenuPath() const;

    ApplicationTarget mTarget;
    __SafeCFPropertyList mMenu; // the titles from the menu bar down, kept as it stands
};

class APressButton final : public HActionOf<APressButton, HActionType::kPressButton>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mButtonName = SharedText<u"">();
};

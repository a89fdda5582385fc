// The actions of the mouse.
#pragma once

#include "Actions/ActionImageSource.h"
#include "Actions/HBaseAction.h"
#include "Actions/ImageSelection.h"

/// How a file says whether the mouse clicks, and whether it then goes back to where it was.
enum class MouseAction { kMove, kClick, kMoveAndClick };
inline constexpr TextView kMouseActionNames[] = { u"Move", u"Click", u"MoveAndClick" };
static_assert( std::size( kMouseActionNames ) == std::size_t( MouseAction::kMoveAndClick ) + 1 );
constexpr auto NamesOf( MouseAction )
{
    return std::span( kMouseActionNames );
}

enum class MouseRelative { kScreen, kWindow, kMouse, kImage, kAbsolute };
inline constexpr TextView kMouseRelativeNames[] = { u"Screen", u"Window", u"Mouse", u"Image", u"Absolute" };
static_assert( std::size( kMouseRelativeNames ) == std::size_t( MouseRelative::kAbsolute ) + 1 );
constexpr auto NamesOf( MouseRelative )
{
    return std::span( kMouseRelativeNames );
}

enum class RelativeCorner { kTopLeft, kTopRight, kBottomLeft, kBottomRight, kCenter };
inline constexpr TextView kRelativeCornerNames[] = { u"TopLeft", u"TopRight", u"BottomLeft", u"BottomRight",
    u"Center" };
static_assert( std::size( kRelativeCornerNames ) == std::size_t( RelativeCorner::kCenter ) + 1 );
constexpr auto NamesOf( RelativeCorner )
{
    return std::span( kRelativeCornerNames );
}

enum class MouseDrag { kNone, kTo, kAbsolute, kRelative, kHold };
inline constexpr TextView kMouseDragNames[] = { u"None", u"To", u"Absolute", u"Relative", u"Hold" };
static_assert( std::size( kMouseDragNames ) == std::size_t( MouseDrag::kHold ) + 1 );
constexpr auto NamesOf( MouseDrag )
{
    return std::span( kMouseDragNames );
}

class AMouseMoveAndClick final : public HActionOf<AMouseMoveAndClick, HActionType::kMouseMoveAndClick>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    using HActionOf::SaveToDictionary;
    /// The recorded details are only written when asked for.
    void SaveToDictionary( XMutableDictionary& ioDictionary, RecordedDetails inDetails ) const override;
    /// A move goes up in what comes after it, and the clicks of a double-click in one.
    [[nodiscard]] std::unique_ptr<HBaseAction> Merge( const HBaseAction& inNext ) const override;
    void UpdateToDefaultValues( bool inForce ) override;
    [[nodiscard]] bool IsClickAction() const override { return true; }
    [[nodiscard]] std::vector<Text> ActionCouldBeRegExStrings() const override;
    [[nodiscard]] std::vector<Text> GetAddActionByNameExtraSearchString() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    [[nodiscard]] MouseAction GetAction() const;
    void DescribeAction( HFieldVisitor& inVisitor );
    [[nodiscard]] bool IsPlainMove() const;
    [[nodiscard]] bool IsNextClickOf( const AMouseMoveAndClick& inFirst ) const;
    [[nodiscard]] std::unique_ptr<AMouseMoveAndClick> MergedWith( const AMouseMoveAndClick& inNext ) const;
    [[nodiscard]] std::unique_ptr<AMouseMoveAndClick> MovedBy( const AMouseMoveAndClick& inNext ) const;
    [[nodiscard]] Text GetPlaceDescription() const;
    [[nodiscard]] Text GetClickDescription() const;

    bool mClick = false;
    bool mRestoreMouseLocation = false;
    std::int32_t mClickCount = 1;
    std::int32_t mButton = 0;
    MouseRelative mRelative = MouseRelative::kScreen;
    RelativeCorner mRelativeCorner = RelativeCorner::kTopLeft;
    HScreenArea mScreenArea; // where the image is looked for
    XText mHorizontalPosition = SharedText<u"0">();
    XText mVerticalPosition = SharedText<u"0">();
    std::int32_t mModifiers = 0;
    MouseDrag mDrag = MouseDrag::kNone;
    XText mDragHorizontalPosition = SharedText<u"0">();
    XText mDragVerticalPosition = SharedText<u"0">();
    __SafeCFPropertyList mRecordedDetails; // as a recording left them
    ActionImageSource mImage;
    ImageSelection mImageSelection = ImageSelection::kUnique;
    std::int32_t mFuzz = 15;
    bool mDisplayMatches = false;
};

enum class ScrollDirection { kUp, kDown, kLeft, kRight, kHorizontal, kVertical };
inline constexpr TextView kScrollDirectionNames[] = { u"Up", u"Down", u"Left", u"Right", u"Horizontal", u"Vertical" };
static_assert( std::size( kScrollDirectionNames ) == std::size_t( ScrollDirection::kVertical ) + 1 );
constexpr auto NamesOf( ScrollDirection )
{
    return std::span( kScrollDirectionNames );
}

class AScrollWheelEvent final : public HActionOf<AScrollWheelEvent, HActionType::kScrollWheelEvent>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    /// Two plain amounts in one direction are added up.
    [[nodiscard]] std::unique_ptr<HBaseAction> Merge( const HBaseAction& inNext ) const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    ScrollDirection mDirection = ScrollDirection::kUp;
    XText mAmount = SharedText<u"60">();
};

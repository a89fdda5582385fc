// The actions that look at the screen and show things on it.
#pragma once

#include "Actions/ActionImageSource.h"
#include "Actions/ActionResult.h"
#include "Actions/ClipboardTarget.h"
#include "Actions/HBaseAction.h"
#include "Actions/ImageSelection.h"

enum class HiliteStyle { kRectangle, kOval, kTarget };
inline constexpr TextView kHiliteStyleNames[] = { u"Rectangle", u"Oval", u"Target" };
static_assert( std::size( kHiliteStyleNames ) == std::size_t( HiliteStyle::kTarget ) + 1 );
constexpr auto NamesOf( HiliteStyle )
{
    return std::span( kHiliteStyleNames );
}

class AHiliteLocation final : public HActionOf<AHiliteLocation, HActionType::kHiliteLocation>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    HiliteStyle mStyle = HiliteStyle::kRectangle;
    XText mLeft = SharedText<u"MOUSEX()">();
    XText mTop = SharedText<u"MOUSEY()">();
    XText mWidth = SharedText<u"100">();
    XText mHeight = SharedText<u"100">();
    bool mAnimate = false;
    XText mDisplayTime = SharedText<u"5">(); // seconds
};

class AScreenCapture final : public HActionOf<AScreenCapture, HActionType::kScreenCapture>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateToDefaultValues( bool inForce ) override { mClipboard.UpdateToDefaultValues( inForce ); }
    [[nodiscard]] std::vector<Text> ActionCouldBeRegExStrings() const override;
    [[nodiscard]] std::vector<Text> GetAddActionByNameExtraSearchString() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    bool mIncludeShadows = false;
    bool mAlwaysNominalResolution = false;
    HScreenArea mScreenArea;
    XText mPath = SharedText<u"">();
    ClipboardTarget mClipboard; // goes before the path, unless it is the system's
};

class AFindImage final : public HActionOf<AFindImage, HActionType::kFindImage>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateToDefaultValues( bool inForce ) override { mImage.UpdateToDefaultValues( inForce ); }
    [[nodiscard]] std::vector<Text> ActionCouldBeRegExStrings() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    ActionImageSource mImage;
    std::int32_t mFuzz = 15;
    ImageSelection mSelection = ImageSelection::kUnique;
    bool mUnique = false;
    XText mVariable = SharedText<u"VarName">();
    bool mDisplayMatches = false;
    HScreenArea mScreenArea;
};

class AOCRImage final : public HActionOf<AOCRImage, HActionType::kOCRImage>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateToDefaultValues( bool inForce ) override;
    [[nodiscard]] std::vector<Text> ActionCouldBeRegExStrings() const override { return mImage.CouldBeRegExStrings(); }
    [[nodiscard]] std::vector<Text> GetAddActionByNameExtraSearchString() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mLanguage = SharedText<u"eng">();
    ActionImageSource mImage;
    ActionResult mResult;
};

enum class DesktopImageScaling { kFillScreen, kFitToScreen, kStretchToFillScreen, kCenterUnscaled };
inline constexpr TextView kDesktopImageScalingNames[] = { u"FillScreen", u"FitToScreen", u"StretchToFillScreen",
    u"CenterUnscaled" };
static_assert( std::size( kDesktopImageScalingNames ) == std::size_t( DesktopImageScaling::kCenterUnscaled ) + 1 );
constexpr auto NamesOf( DesktopImageScaling )
{
    return std::span( kDesktopImageScalingNames );
}

class ASetDesktopImage final : public HActionOf<ASetDesktopImage, HActionType::kSetDesktopImage>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] std::vector<Text> ActionCouldBeRegExStrings() const override;
    [[nodiscard]] std::vector<Text> GetAddActionByNameExtraSearchString() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    DesktopImageScaling mScaling = DesktopImageScaling::kFillScreen;
    XText mPath = SharedText<u"">();
    HScreenArea mScreenArea;
};

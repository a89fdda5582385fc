// The actions on an image in a clipboard.
#pragma once

#include "Actions/ActionFieldParts.h"
#include "Actions/ActionImageSource.h"
#include "Actions/HBaseAction.h"

/// What an action on the image in a clipboard gets: the clipboard.
template<class Action, HActionType kType>
class HClipboardImageActionOf : public HActionOf<Action, kType>
{
public:
    void UpdateToDefaultValues( bool inForce ) override { mTarget.UpdateToDefaultValues( inForce ); }

protected:
    ClipboardTarget mTarget;
};

enum class TransformAction { kFlipHorizontal, kFlipVertical, kRotateCW, kRotate180, kRotateCCW, kFreeRotate };
inline constexpr TextView kTransformActionNames[] = { u"FlipHorizontal", u"FlipVertical", u"RotateCW", u"Rotate180",
    u"RotateCCW", u"FreeRotate" };
static_assert( std::size( kTransformActionNames ) == std::size_t( TransformAction::kFreeRotate ) + 1 );
constexpr auto NamesOf( TransformAction )
{
    return std::span( kTransformActionNames );
}

class ATransformImage final : public HClipboardImageActionOf<ATransformImage, HActionType::kTransformImage>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] std::vector<Text> GetAddActionByNameExtraSearchString() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    TransformAction mAction = TransformAction::kFlipHorizontal;
    XText mRotation = SharedText<u"45">(); // degrees
};

enum class ResizeAction { kScaleTo, kScaleToFit, kResizeTo, kAddMargin, kCrop, kSetDPI };
inline constexpr TextView kResizeActionNames[] = { u"ScaleTo", u"ScaleToFit", u"ResizeTo", u"AddMargin", u"Crop",
    u"SetDPI" };
static_assert( std::size( kResizeActionNames ) == std::size_t( ResizeAction::kSetDPI ) + 1 );
constexpr auto NamesOf( ResizeAction )
{
    return std::span( kResizeActionNames );
}

class AResizeImage final : public HClipboardImageActionOf<AResizeImage, HActionType::kResizeImage>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] std::vector<Text> GetAddActionByNameExtraSearchString() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    ResizeAction mAction = ResizeAction::kScaleTo;
    XText mLeft = SharedText<u"100">();
    XText mTop = SharedText<u"100">();
    XText mWidth = SharedText<u"100">();
    XText mHeight = SharedText<u"100">();
};

class ACompositeImage final : public HClipboardImageActionOf<ACompositeImage, HActionType::kCompositeImage>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateToDefaultValues( bool inForce ) override;
    [[nodiscard]] std::vector<Text> ActionCouldBeRegExStrings() const override { return mImage.CouldBeRegExStrings(); }

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    [[nodiscard]] Text GetSourceDescription() const;

    XText mLeft = SharedText<u"100">();
    XText mTop = SharedText<u"100">();
    XText mWidth = SharedText<u"0">(); // 0: as wide as what is composited
    XText mHeight = SharedText<u"0">();
    ClipboardTarget mSource; // where the image comes from while mImage has none of its own
    ActionImageSource mImage;
    StyledTextSource mText;
    bool mUseText = false;
};

enum class DrawAction { kLine, kRectangle, kOval };
inline constexpr TextView kDrawActionNames[] = { u"Line", u"Rectangle", u"Oval" };
static_assert( std::size( kDrawActionNames ) == std::size_t( DrawAction::kOval ) + 1 );
constexpr auto NamesOf( DrawAction )
{
    return std::span( kDrawActionNames );
}

class ADrawImage final : public HClipboardImageActionOf<ADrawImage, HActionType::kDrawImage>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    DrawAction mAction = DrawAction::kLine;
    XText mLeft = SharedText<u"100">();
    XText mTop = SharedText<u"100">();
    XText mWidth = SharedText<u"200">();
    XText mHeight = SharedText<u"200">();
    __SafeCFPropertyList mFill; // colours, kept as they stand
    __SafeCFPropertyList mStroke;
    XText mThickness = SharedText<u"5">();
    XText mCorner = SharedText<u"0">(); // radius
};

enum class ImageSizeAttribute { kPixelSize, kPixelWidth, kPixelHeight, kPointSize, kPointWidth, kPointHeight, kDPI };
inline constexpr TextView kImageSizeAttributeNames[] = { u"PixelSize", u"PixelWidth", u"PixekHeight", // as stored
    u"PointSize", u"PointWidth", u"PointHeight", u"DPI" };
static_assert( std::size( kImageSizeAttributeNames ) == std::size_t( ImageSizeAttribute::kDPI ) + 1 );
constexpr auto NamesOf( ImageSizeAttribute )
{
    return std::span( kImageSizeAttributeNames );
}

class AGetImageSize final : public HClipboardImageActionOf<AGetImageSize, HActionType::kGetImageSize>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    ImageSizeAttribute mAttribute = ImageSizeAttribute::kPixelSize;
    XText mVariable = SharedText<u"VarName">();
};

class ATrimImage final : public HClipboardImageActionOf<ATrimImage, HActionType::kTrimImage>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;
};

class ADisplayImage final : public HClipboardImageActionOf<ADisplayImage, HActionType::kDisplayImage>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;
};

class ANewImage final : public HClipboardImageActionOf<ANewImage, HActionType::kNewImage>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mWidth = SharedText<u"100">();
    XText mHeight = SharedText<u"100">();
};

class ASetClipboardToImage final
    : public HClipboardImageActionOf<ASetClipboardToImage, HActionType::kSetClipboardToImage>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateToDefaultValues( bool inForce ) override;
    [[nodiscard]] std::vector<Text> ActionCouldBeRegExStrings() const override { return mImage.CouldBeRegExStrings(); }

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    ActionImageSource mImage;
};

#include "Actions/ImageActions.h"

#include "Actions/DescriptionText.h"
#include "Utility/Text/Localization.h"

// Transform Image

void ATransformImage::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "TransformAction", mAction );
    inVisitor.Part( "Target", mTarget );
    inVisitor.Calculation( "Rotation", mRotation );
}

std::vector<Text> ATransformImage::GetAddActionByNameExtraSearchString() const
{
    return { u"flip", u"rotate" };
}

Text ATransformImage::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat( kvr_format( "kvTransformImage%@DescriptionFormat", StoredName( mAction ) ),
        mTarget.GetDisplayName(), mRotation.GetText() );
}

// Resize Image

void AResizeImage::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "ResizeAction", mAction );
    inVisitor.Part( "Target", mTarget );
    inVisitor.Calculation( "Left", mLeft );
    inVisitor.Calculation( "Top", mTop );
    inVisitor.Calculation( "Width", mWidth );
    inVisitor.Calculation( "Height", mHeight );
}

std::vector<Text> AResizeImage::GetAddActionByNameExtraSearchString() const
{
    return { u"scale", u"crop", u"margin", u"DPI" };
}

Text AResizeImage::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat( kvr_format( "kvResizeImage%@DescriptionFormat", StoredName( mAction ) ),
        mTarget.GetDisplayName(), mLeft.GetText(), mTop.GetText(), mWidth.GetText(), mHeight.GetText() );
}

// Composite Image

void ACompositeImage::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Part( "Target", mTarget );
    inVisitor.Calculation( "Left", mLeft );
    inVisitor.Calculation( "Top", mTop );
    inVisitor.Calculation( "Width", mWidth );
    inVisitor.Calculation( "Height", mHeight );
    inVisitor.Part( "Source", mSource );
    mImage.DescribeFields( inVisitor );
    mText.DescribeFields( inVisitor, "Text", "StyledText" );
    inVisitor.Boolean( "UseText", mUseText );
}

void ACompositeImage::UpdateToDefaultValues( bool inForce )
{
    HClipboardImageActionOf::UpdateToDefaultValues( inForce );
    mSource.UpdateToDefaultValues( inForce );
    mImage.UpdateToDefaultValues( inForce );
}

Text ACompositeImage::GetSourceDescription() const
{
    if ( mUseText )
        return kvr_localizedFormat( u"kvCompositeImageTextFormat", kvr_excerpt( mText.GetText() ) );
    if ( mImage.GetSourceType() == ActionImageSourceType::kImage and not mImage.GetImage() )
        return kvr_localizedFormat( u"kvCompositeImageImageFormat", mSource.GetDisplayName() );
    return mImage.GetDescription();
}

Text ACompositeImage::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat( u"kvCompositeImageDescriptionFormat", GetSourceDescription(), mTarget.GetDisplayName(),
        mLeft.GetText(), mTop.GetText() );
}

// Draw on Image

void ADrawImage::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "DrawAction", mAction );
    inVisitor.Part( "Target", mTarget );
    inVisitor.Calculation( "Left", mLeft );
    inVisitor.Calculation( "Top", mTop );
    inVisitor.Calculation( "Width", mWidth );
    inVisitor.Calculation( "Height", mHeight );
    inVisitor.Value( "Fill", mFill );
    inVisitor.Value( "Stroke", mStroke );
    inVisitor.Calculation( "Thickness", mThickness );
    inVisitor.Calculation( "Corner", mCorner );
}

Text ADrawImage::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat( kvr_format( "kvDrawImage%@DescriptionFormat", StoredName( mAction ) ),
        mTarget.GetDisplayName(), mLeft.GetText(), mTop.GetText(), mWidth.GetText(), mHeight.GetText() );
}

// Get Image Size

void AGetImageSize::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "Attribute", mAttribute );
    inVisitor.Part( "Target", mTarget );
    inVisitor.Variable( "Variable", mVariable );
}

Text AGetImageSize::InternalGetActionDescriptionString() const
{
    const Text& attribute = kvr_localized( kvr_format( "kvGetImageSize%@Name", StoredName( mAttribute ) ) );
    return kvr_localizedFormat(
        u"kvGetImageSizeDescriptionFormat", mVariable.GetText(), attribute, mTarget.GetDisplayName() );
}

// Trim Image

void ATrimImage::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Part( "Target", mTarget );
}

Text ATrimImage::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat( u"kvTrimImageDescriptionFormat", mTarget.GetDisplayName() );
}

// Display Image

void ADisplayImage::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Part( "Target", mTarget );
}

Text ADisplayImage::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat( u"kvDisplayImageDescriptionFormat", mTarget.GetDisplayName() );
}

// New Image

void ANewImage::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Part( "Target", mTarget );
    inVisitor.Calculation( "Width", mWidth );
    inVisitor.Calculation( "Height", mHeight );
}

Text ANewImage::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat(
        u"kvNewImageDescriptionFormat", mTarget.GetDisplayName(), mWidth.GetText(), mHeight.GetText() );
}

// Set Clipboard to Image

void ASetClipboardToImage::DescribeFields( HFieldVisitor& inVisitor )
{
    mImage.DescribeFields( inVisitor );
    inVisitor.Part( "Target", mTarget );
}

void ASetClipboardToImage::UpdateToDefaultValues( bool inForce )
{
    HClipboardImageActionOf::UpdateToDefaultValues( inForce );
    mImage.UpdateToDefaultValues( inForce );
}

Text ASetClipboardToImage::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat(
        u"kvSetClipboardToImageDescriptionFormat", mTarget.GetDisplayName(), mImage.GetDescription() );
}

#include "Actions/ScreenActions.h"

#include "Actions/DescriptionText.h"
#include "Utility/Text/Localization.h"

// Highlight Location

void AHiliteLocation::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "Style", mStyle );
    inVisitor.Calculation( "Left", mLeft );
    inVisitor.Calculation( "Top", mTop );
    inVisitor.Calculation( "Width", mWidth );
    inVisitor.Calculation( "Height", mHeight );
    inVisitor.Boolean( "Animate", mAnimate );
    inVisitor.Calculation( "DisplayTime", mDisplayTime );
}

Text AHiliteLocation::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat( kvr_format( "kvHiliteLocation%@DescriptionFormat", StoredName( mStyle ) ),
        mLeft.GetText(), mTop.GetText(), mWidth.GetText(), mHeight.GetText(), mDisplayTime.GetText() );
}

// Screen Capture

void AScreenCapture::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Boolean( "IncludeShadows", mIncludeShadows );
    inVisitor.Boolean( "AlwaysNominalResolution", mAlwaysNominalResolution );
    if ( inVisitor.IsReading() and not inVisitor.HasKey( "ScreenArea" ) )
        mScreenArea.ReadOlderKeys( inVisitor );
    else
        mScreenArea.DescribeIn( inVisitor, "ScreenArea" );
    inVisitor.Text( "Destination", mPath, { .mWrite = XWrite::kWhenSet } ); // a path, where a file has one
    inVisitor.Part( "Destination", mClipboard );
}

std::vector<Text> AScreenCapture::ActionCouldBeRegExStrings() const
{
    return mScreenArea.CouldBeRegExStrings();
}

std::vector<Text> AScreenCapture::GetAddActionByNameExtraSearchString() const
{
    return { u"screenshot" };
}

Text AScreenCapture::InternalGetActionDescriptionString() const
{
    const bool isToFile = mClipboard.GetKind() == ClipboardTarget::Kind::kSystem and not mPath.IsEmpty();
    return kvr_localizedFormat( u"kvScreenCaptureDescriptionFormat", mScreenArea.GetDescription(),
        isToFile ? mPath.GetText() : mClipboard.GetDisplayName() );
}

// Find Image on Screen

void AFindImage::DescribeFields( HFieldVisitor& inVisitor )
{
    mImage.DescribeFields( inVisitor );
    inVisitor.Integer( "Fuzz", mFuzz );
    inVisitor.Name( "Selection", mSelection );
    inVisitor.Boolean( "Unique", mUnique );
    inVisitor.Variable( "Variable", mVariable );
    inVisitor.Boolean( "DisplayMatches", mDisplayMatches );
    mScreenArea.DescribeIn( inVisitor, "ScreenArea" );
}

std::vector<Text> AFindImage::ActionCouldBeRegExStrings() const
{
    return mScreenArea.CouldBeRegExStrings();
}

Text AFindImage::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat(
        u"kvFindImageDescriptionFormat", mImage.GetDescription(), mScreenArea.GetDescription(), mVariable.GetText() );
}

// OCR Image

void AOCRImage::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Language", mLanguage );
    mImage.DescribeFields( inVisitor );
    mResult.DescribeFields( inVisitor );
}

std::vector<Text> AOCRImage::GetAddActionByNameExtraSearchString() const
{
    return { u"recognize text" };
}

Text AOCRImage::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat( u"kvOCRImageDescriptionFormat", mImage.GetDescription() ) + mResult.GetDescription();
}

// Set Desktop Image

void ASetDesktopImage::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "Scaling", mScaling );
    inVisitor.Text( "Path", mPath );
    mScreenArea.DescribeIn( inVisitor, "ScreenArea" );
}

std::vector<Text> ASetDesktopImage::ActionCouldBeRegExStrings() const
{
    return mScreenArea.CouldBeRegExStrings();
}

std::vector<Text> ASetDesktopImage::GetAddActionByNameExtraSearchString() const
{
    return { u"wallpaper", u"background" };
}

Text ASetDesktopImage::InternalGetActionDescriptionString() const
{
    if ( mPath.IsEmpty() )
        return GetActionTitle();
    return kvr_localizedFormat(
        u"kvSetDesktopImageDescriptionFormat", mScreenArea.GetDescription(), kvr_fileName( mPath ) );
}

#include "Actions/ScreenActions.h"

#include "Actions/DescriptionText.h"
#include "Utility/Text/Localization.h"

#include <algorithm>
#include <iterator>

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
    const Text& seconds =
        kvr_localized( mDisplayTime.Equals( u"1" ) ? u"PauseUnitSecondsSingular" : u"PauseUnitSecondsPlural" );
    return kvr_localizedFormat( kvr_format( "kvHiliteLocation%@DescriptionFormat", StoredName( mStyle ) ),
        mLeft.GetText(), mTop.GetText(), mWidth.GetText(), mHeight.GetText(), mDisplayTime.GetText(), seconds );
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
    if ( isToFile )
        return kvr_localizedFormat(
            u"kvScreenCaptureToFileDescriptionFormat", mScreenArea.GetDescription(), kvr_fileName( mPath ) );
    return kvr_localizedFormat(
        u"kvScreenCaptureDescriptionFormat", mScreenArea.GetDescription(), mClipboard.GetDisplayName() );
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
    std::vector<Text> strings = mImage.CouldBeRegExStrings();
    std::ranges::move( mScreenArea.CouldBeRegExStrings(), std::back_inserter( strings ) );
    return strings;
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

void AOCRImage::UpdateToDefaultValues( bool inForce )
{
    mImage.UpdateToDefaultValues( inForce );
    mResult.UpdateToDefaultValues( inForce );
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

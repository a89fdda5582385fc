#include "Actions/ActionImageSource.h"

#include "Actions/ClipboardTarget.h"
#include "Actions/DescriptionText.h"
#include "Utility/Text/Localization.h"

void ActionImageSource::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "ImageSource", mType );
    switch ( mType )
    {
    case ActionImageSourceType::kImage:
        inVisitor.Data( "Image", mImage );
        break;
    case ActionImageSourceType::kNamedClipboard:
        DescribeClipboard(
            inVisitor, "ImageNamedClipboardName", "ImageNamedClipboardRedundandDisplayName", mClipboard ); // so spelt
        break;
    case ActionImageSourceType::kFile:
        inVisitor.Text( "ImagePath", mPath );
        break;
    case ActionImageSourceType::kScreen:
        mScreenArea.DescribeIn( inVisitor, "ImageScreenArea" );
        break;
    default: // the kind says it all
        break;
    }
}

void ActionImageSource::SetImage( CFContainer<XPlistData> inImage )
{
    mType = ActionImageSourceType::kImage;
    mImage = std::move( inImage );
}

void ActionImageSource::SetPath( const XText& inPath )
{
    mType = ActionImageSourceType::kFile;
    mPath = inPath;
}

Text ActionImageSource::GetDescription() const
{
    Text value;
    if ( mType == ActionImageSourceType::kNamedClipboard )
        value = mClipboard.GetClipboardName().GetText();
    else if ( mType == ActionImageSourceType::kFile )
        value = kvr_fileName( mPath );
    else if ( mType == ActionImageSourceType::kScreen )
        value = mScreenArea.GetDescription();
    return kvr_localizedFormat(
        kvr_format( "kvActionImageSource%@Description", StoredName( mType ) ), TextView( value ) );
}

std::vector<Text> ActionImageSource::CouldBeRegExStrings() const
{
    return mType == ActionImageSourceType::kScreen ? mScreenArea.CouldBeRegExStrings() : std::vector<Text>();
}

void ActionImageSource::UpdateToDefaultValues( bool inForce )
{
    if ( mType == ActionImageSourceType::kNamedClipboard )
        mClipboard.UpdateClipboardReference( inForce );
}

#include "Actions/StreamDeckActions.h"

#include "Actions/DescriptionText.h"
#include "Utility/Text/Localization.h"

void AStreamDeckShow::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "ButtonID", mButtonID );
    inVisitor.Boolean( "Alert", mAlert );
}

Text AStreamDeckShow::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat(
        mAlert ? u"kvStreamDeckShowAlertDescriptionFormat" : u"kvStreamDeckShowOKDescriptionFormat",
        mButtonID.GetText() );
}

void AStreamDeckSetTitle::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "ButtonID", mButtonID );
    inVisitor.Text( "Title", mTitle );
}

Text AStreamDeckSetTitle::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat( u"kvStreamDeckSetTitleDescriptionFormat", mButtonID.GetText(), kvr_excerpt( mTitle ) );
}

void AStreamDeckSetImage::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "ButtonID", mButtonID );
    inVisitor.Name( "FromType", mFrom );
    inVisitor.Text( "MacroUID", mMacroUID, { .mIsUID = true } );
    inVisitor.Part( "Target", mClipboard ); // of other kinds too: no save drops a reference to a named clipboard
    inVisitor.Value( "Icon", mIcon );
}

Text AStreamDeckSetImage::InternalGetActionDescriptionString() const
{
    Text source;
    if ( mFrom == StreamDeckFromType::kMacro )
        source = kvr_macroName( mMacroUID );
    else if ( mFrom == StreamDeckFromType::kClipboard )
        source = mClipboard.GetDisplayName();
    return kvr_localizedFormat(
        kvr_format( "kvStreamDeckSetImage%@DescriptionFormat", StoredName( mFrom ) ), mButtonID.GetText(), source );
}

#include "Actions/MailActions.h"

#include "Actions/DescriptionText.h"
#include "Utility/Text/Localization.h"

// Status

void ASetMailStatus::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "Command", mCommand );
    inVisitor.Text( "Value", mValue );
}

XText ASetMailStatus::GetTransformationResult( CalculateError*, float*, bool ) const
{
    return mValue;
}

Text ASetMailStatus::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat(
        kvr_format( "kvSetMailStatus%@DescriptionFormat", StoredName( mCommand ) ), TextView( kvr_excerpt( mValue ) ) );
}

// Mail

void AMailSendMessage::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "Operation", mOperation );
    inVisitor.Boolean( "SendNow", mSendNow );
    inVisitor.Text( "To", mTo );
    inVisitor.Text( "Cc", mCc );
    inVisitor.Text( "Bcc", mBcc );
    inVisitor.Text( "Subject", mSubject );
    inVisitor.Text( "From", mFrom );
    inVisitor.Text( "Content", mContent );
    inVisitor.Text( "Attachment", mAttachment );
    inVisitor.Text( "Signature", mSignature );
}

std::vector<Text> AMailSendMessage::GetAddActionByNameExtraSearchString() const
{
    return { u"email" };
}

Text AMailSendMessage::GetActionExtraHTML() const
{
    return kvr_extraHTMLLine( u"kvMailSendMessageCcExtraHTMLFormat", mCc.GetText() ) +
        kvr_extraHTMLLine( u"kvMailSendMessageBccExtraHTMLFormat", mBcc.GetText() ) +
        kvr_extraHTMLLine( u"kvMailSendMessageFromExtraHTMLFormat", mFrom.GetText() ) +
        kvr_extraHTMLLine( u"kvMailSendMessageContentExtraHTMLFormat", kvr_excerpt( mContent ) ) +
        kvr_extraHTMLLine( u"kvMailSendMessageAttachmentExtraHTMLFormat", mAttachment.GetText() );
}

Text AMailSendMessage::InternalGetActionDescriptionString() const
{
    const Text family = kvr_format( "kvMailSendMessageSendNow%d", int( mSendNow ) );
    const Text description = kvr_commandDescription( family, StoredName( mOperation ), mTo );
    if ( mSubject.IsEmpty() )
        return description;
    return kvr_localizedFormat(
        u"kvMailSendMessageSubjectFormat", TextView( description ), TextView( kvr_excerpt( mSubject ) ) );
}

// Messages

void ASendSMS::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "To", mTo );
    inVisitor.Text( "Content", mContent );
    inVisitor.Boolean( "SendiMessage", mSendiMessage );
}

std::vector<Text> ASendSMS::GetAddActionByNameExtraSearchString() const
{
    return { u"SMS", u"iMessage" };
}

Text ASendSMS::InternalGetActionDescriptionString() const
{
    if ( mTo.IsEmpty() and mContent.IsEmpty() )
        return GetActionTitle();
    return kvr_localizedFormat( mSendiMessage ? u"kvSendSMSiMessageDescriptionFormat" : u"kvSendSMSDescriptionFormat",
        TextView( kvr_excerpt( mContent ) ), TextView( kvr_excerpt( mTo ) ) );
}

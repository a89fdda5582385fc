// The actions that send messages, and those about messages in Mail.
#pragma once

#include "Actions/HBaseAction.h"
#include "Actions/SharedText.h"
#include "Actions/VariableTransformationAction.h"

enum class MailStatusCommand : std::int32_t {
    kFlagIndex,
    kFlagged,
    kRead,
    kJunk,
};
inline constexpr TextView kMailStatusCommandNames[] = { u"FlagIndex", u"Flagged", u"Read", u"Junk" };
static_assert( std::size( kMailStatusCommandNames ) == std::size_t( MailStatusCommand::kJunk ) + 1 );
constexpr auto NamesOf( MailStatusCommand )
{
    return std::span( kMailStatusCommandNames );
}

class ASetMailStatus final : public HActionOf<ASetMailStatus, HActionType::kSetMailStatus>,
                             public VariableTransformationAction
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

    [[nodiscard]] XText GetVariable() const override { return {}; }
    void SetVariableText( const XText& inText ) override { mValue = inText; }
    [[nodiscard]] XText GetVariableText() const override { return mValue; }
    /// The value as it stands.
    [[nodiscard]] XText GetTransformationResult(
        CalculateError* outError, float* outNumber, bool inLive ) const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    MailStatusCommand mCommand = MailStatusCommand::kFlagIndex;
    XText mValue = SharedText<u"1">();
};

enum class MailSendOperation : std::int32_t {
    kNew,
    kReply,
    kReplyAll,
    kForward,
    kRedirect,
};
inline constexpr TextView kMailSendOperationNames[] = { u"New", u"Reply", u"ReplyAll", u"Forward", u"Redirect" };
static_assert( std::size( kMailSendOperationNames ) == std::size_t( MailSendOperation::kRedirect ) + 1 );
constexpr auto NamesOf( MailSendOperation )
{
    return std::span( kMailSendOperationNames );
}

class AMailSendMessage final : public HActionOf<AMailSendMessage, HActionType::kMailSendMessage>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] std::vector<Text> GetAddActionByNameExtraSearchString() const override;
    [[nodiscard]] Text GetActionExtraHTML() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    MailSendOperation mOperation = MailSendOperation::kNew;
    bool mSendNow = false;
    XText mTo = SharedText<u"">();
    XText mCc = SharedText<u"">();
    XText mBcc = SharedText<u"">();
    XText mSubject = SharedText<u"">();
    XText mFrom = SharedText<u"">();
    XText mContent = SharedText<u"">();
    XText mAttachment = SharedText<u"">();
    XText mSignature = SharedText<u"">();
};

class ASendSMS final : public HActionOf<ASendSMS, HActionType::kSendSMS>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] std::vector<Text> GetAddActionByNameExtraSearchString() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mTo = SharedText<u"">();
    XText mContent = SharedText<u"">();
    bool mSendiMessage = false;
};

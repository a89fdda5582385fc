// The actions that tell the user something in passing.
#pragma once

#include "Actions/HBaseAction.h"
#include "Actions/SharedText.h"

class AAlert final : public HActionOf<AAlert, HActionType::kAlert>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetActionExtraHTML() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mTitle = SharedText<u"">();
    XText mText = SharedText<u"">();
    XText mSoundPath = SharedText<u"">();
};

class ALog final : public HActionOf<ALog, HActionType::kLog>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mText = SharedText<u"">();
};

class ANotification final : public HActionOf<ANotification, HActionType::kNotification>
{
public:
    ANotification();
    void DescribeFields( HFieldVisitor& inVisitor ) override;

    void SetTitle( const XText& inTitle ) { mTitle = inTitle; }
    void SetText( const XText& inText ) { mText = inText; }
    [[nodiscard]] Text GetActionExtraHTML() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mTitle, mSubtitle, mText;
    XText mSoundName = SharedText<u"">();
};

/// Of older files only: reading makes a notification of it.
class AGrowl final : public HActionOf<AGrowl, HActionType::kGrowl>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] std::unique_ptr<HBaseAction> CleanActionAfterInitialization(
        const XPlistDictionary& inDictionary ) override;

private:
    XText mTitle = SharedText<u"">();
    XText mText = SharedText<u"">();
};

// The actions that this program and the engine send each other. They run like any other, but no editor offers them.
#pragma once

#include "Actions/HBaseAction.h"
#include "Actions/SharedText.h"

/// Tells the editor that the engine came to this action, and with which result.
class ASendMessageToEditor final : public HActionOf<ASendMessageToEditor, HActionType::kSendMessageToEditor>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override
    {
        inVisitor.Text( "MessageUID", mMessageUID );
        inVisitor.Text( "MessageResult", mMessageResult );
    }

private:
    XText mMessageUID = SharedText<u"">();
    XText mMessageResult = SharedText<u"">();
};

/// Stands before actions that are to run without being noticed.
class ADontRotateStatusMenu final : public HActionOf<ADontRotateStatusMenu, HActionType::kDontRotateStatusMenu>
{};

/// Lets the user choose among the macros of one typed string.
class ATypedStringDuplicatePalette final
    : public HActionOf<ATypedStringDuplicatePalette, HActionType::kTypedStringDuplicatePalette>
{};

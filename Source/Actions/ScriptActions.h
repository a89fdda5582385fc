// The actions that run scripts and workflows.
#pragma once

#include "Actions/ActionFieldParts.h"
#include "Actions/ActionResult.h"
#include "Actions/HBaseAction.h"

/// What is run from outside of this program: scripts, workflows and plug-ins.
class AExecuteRootScript : public HBaseAction
{
protected:
    /// What is run: the title, the file's name behind it if there is one, and what becomes of the result.
    [[nodiscard]] Text DescribeExecution( const XText& inPath, const Text& inResult ) const;
};

/// A script in a file or in a text of the action, whose input is a text and whose output is used.
class AExecuteBaseScript : public AExecuteRootScript
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateToDefaultValues( bool inForce ) override;

    [[nodiscard]] const XText& GetPath() const { return mPath; }
    /// The script is then the one in that file.
    void SetPath( const XText& inPath );
    [[nodiscard]] const XText& GetText() const { return mText; }
    /// The script is then that text.
    void SetText( const XText& inText );
    [[nodiscard]] bool UsesText() const { return mUseText; }
    [[nodiscard]] Text GetActionExtraHTML() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mPath = SharedText<u"">();
    XText mText = SharedText<u"">();
    bool mUseText = false;
    ActionTextSource mInput{ ActionTextSource::Keys::kPrefixed }; // "Text" is the script
    ActionResult mResult;
    bool mTrimResults = true;
    bool mIncludeStdErr = true;
    bool mHonourFailureSettings = true;
};

class AExecuteAppleScript final
    : public HActionOf<AExecuteAppleScript, HActionType::kExecuteAppleScript, AExecuteBaseScript>
{};

class AExecuteShellScript final
    : public HActionOf<AExecuteShellScript, HActionType::kExecuteShellScript, AExecuteBaseScript>
{};

class AExecuteJavaScriptForAutomation final : public HActionOf<AExecuteJavaScriptForAutomation,
                                                  HActionType::kExecuteJavaScriptForAutomation, AExecuteBaseScript>
{};

class AExecuteSwiftScript final : public HActionOf<AExecuteSwiftScript, HActionType::kExecuteSwift, AExecuteBaseScript>
{};

/// In the browser that is in front.
class AExecuteJavaScript final
    : public HActionOf<AExecuteJavaScript, HActionType::kExecuteJavaScript, AExecuteBaseScript>
{};

/// In the window of a custom prompt that is open.
class AExecuteJavaScriptForCustomPrompt final
    : public HActionOf<AExecuteJavaScriptForCustomPrompt, HActionType::kExecuteJavaScriptForCustomPrompt>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateToDefaultValues( bool inForce ) override;
    [[nodiscard]] Text GetActionExtraHTML() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mPath = SharedText<u"">();
    XText mWindowID = SharedText<u"">();
    XText mText = SharedText<u"">();
    bool mUseText = false;
    ActionResult mResult;
};

class AExecuteWorkflow final : public HActionOf<AExecuteWorkflow, HActionType::kExecuteWorkflow, AExecuteRootScript>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

    [[nodiscard]] const XText& GetPath() const { return mPath; }
    void SetPath( const XText& inPath ) { mPath = inPath; }
    [[nodiscard]] Text GetActionExtraHTML() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mPath = SharedText<u"">();
};

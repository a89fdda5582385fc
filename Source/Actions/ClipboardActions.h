// The actions that cut, copy, paste and fill clipboards.
#pragma once

#include "Actions/ActionFieldParts.h"
#include "Actions/HBaseAction.h"

enum class CutCopyPasteAction { kCut, kCopy, kPaste };
inline constexpr TextView kCutCopyPasteActionNames[] = { u"Cut", u"Copy", u"Paste" };
static_assert( std::size( kCutCopyPasteActionNames ) == std::size_t( CutCopyPasteAction::kPaste ) + 1 );
constexpr auto NamesOf( CutCopyPasteAction )
{
    return std::span( kCutCopyPasteActionNames );
}

class ACutCopyPaste final : public HActionOf<ACutCopyPaste, HActionType::kCutCopyPaste>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    CutCopyPasteAction mAction = CutCopyPasteAction::kCopy;
};

/// Cuts or copies to a named clipboard, or pastes from it.
class AClipboardSwitcherMacroAction final
    : public HActionOf<AClipboardSwitcherMacroAction, HActionType::kClipboardSwitcherMacroAction>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateToDefaultValues( bool inFlag ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    CutCopyPasteAction mAction = CutCopyPasteAction::kCut;
    ClipboardReference mClipboard;
};

class ASetClipboardToText final : public HActionOf<ASetClipboardToText, HActionType::kSetClipboardToText>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateToDefaultValues( bool inFlag ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    StyledTextSource mText;
    bool mJustDisplay = false;
    ClipboardTarget mTarget;
};

class ASetClipboardToPastClipboard final
    : public HActionOf<ASetClipboardToPastClipboard, HActionType::kSetClipboardToPastClipboard>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateToDefaultValues( bool inFlag ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mPastExpression = SharedText<u"1">();
    ClipboardTarget mTarget;
};

class ADeletePastClipboard final : public HActionOf<ADeletePastClipboard, HActionType::kDeletePastClipboard>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mPastExpression = SharedText<u"1">();
};

class ACopyClipboard final : public HActionOf<ACopyClipboard, HActionType::kCopyClipboard>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateToDefaultValues( bool inFlag ) override;

    void SetSource( const ClipboardTarget& inSource ) { mSource = inSource; }
    void SetTarget( const ClipboardTarget& inTarget ) { mTarget = inTarget; }

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    ClipboardTarget mSource, mTarget;
};

class ASetClipboardToFileReference final
    : public HActionOf<ASetClipboardToFileReference, HActionType::kSetClipboardToFileReference>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateToDefaultValues( bool inFlag ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mPath = SharedText<u"">();
    ClipboardTarget mTarget;
};

// Of older files only: reading makes an action that copies a clipboard of each.

class ASetClipboardToNamedClipboard final
    : public HActionOf<ASetClipboardToNamedClipboard, HActionType::kSetClipboardToNamedClipboard>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] std::unique_ptr<HBaseAction> CleanActionAfterInitialization(
        const XPlistDictionary& inDictionary ) override;

private:
    ClipboardReference mClipboard;
};

class ASaveClipboardToNamedClipboard final
    : public HActionOf<ASaveClipboardToNamedClipboard, HActionType::kSaveClipboardToNamedClipboard>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] std::unique_ptr<HBaseAction> CleanActionAfterInitialization(
        const XPlistDictionary& inDictionary ) override;

private:
    ClipboardReference mClipboard;
};

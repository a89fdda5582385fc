// The actions that control Safari and the fields of the page in front.
#pragma once

#include "Actions/HBaseAction.h"
#include "Actions/SharedText.h"
#include "Actions/VariableTransformationAction.h"

enum class SafariCommand : std::int32_t {
    kNewWindow,
    kNewTab,
    kNextTab,
    kPreviousTab,
    kSelectTab,
    kSetTitle,
    kWaitForComplete,
    kSetDocumentURL,
    kClickLink,
    kSubmitForm,
    kResetForm,
    kFocusField,
    kSelectField,
};
inline constexpr TextView kSafariCommandNames[] = { u"NewWindow", u"NewTab", u"NextTab", u"PreviousTab", u"SelectTab",
    u"SetTitle", u"WaitForComplete", u"SetDocumentURL", u"ClickLink", u"SubmitForm", u"ResetForm", u"FocusField",
    u"SelectField" };
static_assert( std::size( kSafariCommandNames ) == std::size_t( SafariCommand::kSelectField ) + 1 );
constexpr auto NamesOf( SafariCommand )
{
    return std::span( kSafariCommandNames );
}

class ASafariControl final : public HActionOf<ASafariControl, HActionType::kSafariControl>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    SafariCommand mCommand = SafariCommand();
    XText mArgument = SharedText<u"">();
};

class ASetVariableToSafariField final
    : public HActionOf<ASetVariableToSafariField, HActionType::kSetVariableToSafariField>,
      public VariableTransformationAction
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

    [[nodiscard]] XText GetVariable() const override { return mVariable; }
    void SetVariableText( const XText& inText ) override { mField = inText; }
    [[nodiscard]] XText GetVariableText() const override { return mField; }
    /// Null: only the browser knows what the field holds.
    [[nodiscard]] XText GetTransformationResult(
        CalculateError* outError, float* outNumber, bool inLive ) const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mVariable = SharedText<u"VarName">();
    XText mField = SharedText<u"document.forms[0][0]">();
};

/// An action that puts a text or a value into a field of the page.
class HSetSafariFieldAction : public HBaseAction, public VariableTransformationAction
{
public:
    [[nodiscard]] XText GetVariable() const override { return {}; }
    void SetVariableText( const XText& inText ) override { mValue = inText; }
    [[nodiscard]] XText GetVariableText() const override { return mValue; }
    /// The text as it stands.
    [[nodiscard]] XText GetTransformationResult(
        CalculateError* outError, float* outNumber, bool inLive ) const override;

protected:
    void DescribeValueAndField( HFieldVisitor& inVisitor, HFieldKey inValueKey );
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mValue = SharedText<u"">();
    XText mField = SharedText<u"document.forms[0][0]">();
};

class ASetSafariFieldToText final
    : public HActionOf<ASetSafariFieldToText, HActionType::kSetSafariFieldToText, HSetSafariFieldAction>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override { DescribeValueAndField( inVisitor, "Text" ); }
};

class ASetSafariCheckbox final
    : public HActionOf<ASetSafariCheckbox, HActionType::kSetSafariCheckbox, HSetSafariFieldAction>
{
public:
    ASetSafariCheckbox() { SetVariableText( SharedText<u"1">() ); }
    void DescribeFields( HFieldVisitor& inVisitor ) override { DescribeValueAndField( inVisitor, "Value" ); }
};

class ASetSafariRadio final : public HActionOf<ASetSafariRadio, HActionType::kSetSafariRadio, HSetSafariFieldAction>
{
public:
    ASetSafariRadio() { SetVariableText( SharedText<u"1">() ); }
    void DescribeFields( HFieldVisitor& inVisitor ) override { DescribeValueAndField( inVisitor, "Value" ); }
};

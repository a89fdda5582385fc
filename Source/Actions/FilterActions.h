// The actions that put a text through a filter.
#pragma once

#include "Actions/ActionFieldParts.h"
#include "Actions/HBaseAction.h"
#include "Actions/VariableTransformationAction.h"
#include "Utility/Filter/FilterText.h"

class AFilter final : public HActionOf<AFilter, HActionType::kFilter>, public VariableTransformationAction
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateToDefaultValues( bool inFlag ) override;

    [[nodiscard]] ActionTextSource& GetSource() { return mSource; }
    void SetAction( FilterText::Action inAction ) { mAction = inAction; }

    /// The variable that the result goes to; null when it goes elsewhere.
    [[nodiscard]] XText GetVariable() const override;
    void SetVariableText( const XText& inText ) override { mSource.SetText( inText ); }
    /// Null when the source isn't a text of the action's own.
    [[nodiscard]] XText GetVariableText() const override;
    /// Null: the filters aren't this layer's.
    [[nodiscard]] XText GetTransformationResult( CalculateError*, float*, bool ) const override { return {}; }

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    ActionTextSource mSource;
    ActionTextDestination mDestination;
    FilterText::Action mAction = FilterText::Action::kCapitalize;
};

class AApplyTextFactory final : public HActionOf<AApplyTextFactory, HActionType::kApplyTextFactory>
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

// Of older files only: reading makes a filter of either.

class AFilterClipboard final : public HActionOf<AFilterClipboard, HActionType::kFilterClipboard>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] std::unique_ptr<HBaseAction> CleanActionAfterInitialization(
        const XPlistDictionary& inDictionary ) override;

private:
    ClipboardTarget mTarget;
    FilterText::Action mAction = FilterText::Action::kCapitalize;
};

class AFilterVariable final : public HActionOf<AFilterVariable, HActionType::kFilterVariable>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] std::unique_ptr<HBaseAction> CleanActionAfterInitialization(
        const XPlistDictionary& inDictionary ) override;

private:
    XText mVariable = SharedText<u"VarName">();
    FilterText::Action mAction = FilterText::Action::kCapitalize;
};

// The conditions that compare texts: clipboards, variables, texts themselves; and calculations.
#pragma once

#include "Actions/ClipboardTarget.h"
#include "Conditions/CBaseCondition.h"
#include "Conditions/GenericCondition.h"

class CClipboardCondition final : public CConditionOf<CClipboardCondition, ConditionType::kClipboard>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateToDefaultValues( bool inForce ) override { mSource.UpdateToDefaultValues( inForce ); }
    [[nodiscard]] Text GetDescription() const override;

private:
    ClipboardTarget mSource;
    GenericConditionType mType = GenericConditionType::kContains;
    XText mText = SharedText<u"">();
};

class CVariableCondition final : public CConditionOf<CVariableCondition, ConditionType::kVariable>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;

private:
    XText mVariable = SharedText<u"VarName">();
    XText mValue = SharedText<u"value">();
    GenericConditionType mType = GenericConditionType::kContains;
};

class CTextCondition final : public CConditionOf<CTextCondition, ConditionType::kText>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;

private:
    XText mText = SharedText<u"">();
    XText mValue = SharedText<u"">();
    GenericConditionType mType = GenericConditionType::kContains;
};

/// Holds when the calculation gives another number than 0.
class CCalculationCondition final : public CConditionOf<CCalculationCondition, ConditionType::kCalculation>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;

private:
    XText mCalculation = SharedText<u"1">();
};

class CEnvironmentVariableCondition final
    : public CConditionOf<CEnvironmentVariableCondition, ConditionType::kEnvironmentVariable>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;

private:
    XText mName = SharedText<u"USER">();
    XText mText = SharedText<u"sampleuser">();
    GenericConditionType mType = GenericConditionType::kContains;
};

// The actions on dictionaries and JSON.
#pragma once

#include "Actions/HBaseAction.h"
#include "Actions/SharedText.h"
#include "Actions/VariableTransformationAction.h"
#include "Utility/JSON/KVJSON.h"

/// The side of editors that the actions on JSON share: the text is theirs, but the result needs the JSON of the moment.
class JSONTransformationAction : public VariableTransformationAction
{
public:
    [[nodiscard]] XText GetVariable() const override { return {}; }
    void SetVariableText( const XText& inText ) override { mText = inText; }
    [[nodiscard]] XText GetVariableText() const override { return mText; }
    [[nodiscard]] XText GetTransformationResult( CalculateError*, float*, bool ) const override { return {}; }

protected:
    void DescribeOutputFormat( HFieldVisitor& inVisitor );

    XText mText = SharedText<u"">();

private:
    KVJSON::OutputFormat mOutputFormat = KVJSON::OutputFormat::kCompact;
};

class ASetVariablesToJSON final : public HActionOf<ASetVariablesToJSON, HActionType::kSetVariablesToJSON>,
                                  public JSONTransformationAction
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mPrefix = SharedText<u"JSON">();
    bool mReplaceAllKeys = false;
};

class ASetJSONValue final : public HActionOf<ASetJSONValue, HActionType::kSetJSONValue>, public JSONTransformationAction
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mTarget = SharedText<u"VariableName.field{field}[1]">();
};

class ASetDictionaryToJSON final : public HActionOf<ASetDictionaryToJSON, HActionType::kSetDictionaryToJSON>,
                                   public JSONTransformationAction
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mDictionary = SharedText<u"DictionaryName">();
    bool mReplaceAllKeys = false;
};

class ASetDictionaryValue final : public HActionOf<ASetDictionaryValue, HActionType::kSetDictionaryValue>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mDictionary = SharedText<u"DictionaryName">();
    XText mKey = SharedText<u"">();
    XText mValue = SharedText<u"">();
};

// Sets one of the engine's delays, or sets it back to its default.
#pragma once

#include "Actions/HBaseAction.h"
#include "Actions/HDelayPreference.h"
#include "Actions/SharedText.h"
#include "Actions/VariableTransformationAction.h"

class ASetActionDelay final : public HActionOf<ASetActionDelay, HActionType::kSetActionDelay>,
                              public VariableTransformationAction
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

    [[nodiscard]] XText GetVariable() const override { return {}; }
    void SetVariableText( const XText& inText ) override { mValue = inText; }
    [[nodiscard]] XText GetVariableText() const override { return mValue; }
    /// Null: the value is worked out by the engine.
    [[nodiscard]] XText GetTransformationResult( CalculateError*, float*, bool ) const override { return {}; }

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    HDelayPreference::Delay mPreference = HDelayPreference::Delay::kClipboard;
    XText mValue = SharedText<u"">(); // seconds
    bool mReset = false;
    bool mPermanent = false;
};

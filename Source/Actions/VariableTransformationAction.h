// An action that makes a text out of a text and puts it somewhere, as seen by editors that preview the
// result.
#pragma once

#include "CFMethods/PropertyList.h"

struct CalculateError;

class VariableTransformationAction
{
public:
    virtual ~VariableTransformationAction() = default;
    /// The variable's name; null when the target isn't a variable.
    [[nodiscard]] virtual XText GetVariable() const = 0;
    virtual void SetVariableText( const XText& inText ) = 0;
    [[nodiscard]] virtual XText GetVariableText() const = 0;
    /// What the action would give now. The error and the number are those of a calculation and stay as they
    /// are otherwise; each may be null. A live result may read variables and clipboards.
    [[nodiscard]] virtual XText GetTransformationResult(
        CalculateError* outError, float* outNumber, bool inLive ) const = 0;
};

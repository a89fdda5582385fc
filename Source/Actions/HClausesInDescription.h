// An action whose description strings several conditions or collections together. Who has room for more than one line
// shows them under each other.
#pragma once

#include "CFMethods/Text.h"

#include <vector>

class HClausesInDescription
{
public:
    virtual ~HClausesInDescription() = default;
    /// The description without the clauses: "If All of the Following Are True".
    [[nodiscard]] virtual Text GetDescriptionBeforeClauses() const = 0;
    /// The clauses in order; none unless there are several, as the description is short enough then.
    [[nodiscard]] virtual std::vector<Text> GetClauses() const = 0;
};

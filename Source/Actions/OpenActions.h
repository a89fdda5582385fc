// The actions that open things.
#pragma once

#include "Actions/ActionFieldParts.h"
#include "Actions/HBaseAction.h"

class AOpenURL final : public HActionOf<AOpenURL, HActionType::kOpenURL>
{
public:
    AOpenURL();
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mURL;
    bool mIsDefaultApplication = true;
    std::optional<XApplicationIdentifier> mApplication; // kept when the default one is chosen
    bool mOpenInBackground = false;
};

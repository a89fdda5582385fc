// How scripting reaches the one list of actions of a container or a macro.
#pragma once

#include <memory>

class HActionList;

class HAppleScriptActionList
{
public:
    virtual ~HAppleScriptActionList() = default;
    [[nodiscard]] virtual std::shared_ptr<HActionList> GetActionList() const = 0;
    [[nodiscard]] virtual bool GetActionListDisclosed() const = 0;
    virtual void SetActionListDisclosed( bool inDisclosed ) = 0;
};

// The actions that refer to macros.
#pragma once

#include "Actions/HBaseAction.h"
#include "Actions/SharedText.h"
#include "Macros/MacrosAllowed.h"

class AExecuteMacro final : public HActionOf<AExecuteMacro, HActionType::kExecuteMacro>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateForPasteOrAdd() override;
    /// A macro may call itself.
    [[nodiscard]] bool IsLoop() const override { return true; }
    [[nodiscard]] std::vector<Text> GetAddActionByNameExtraSearchString() const override;

    [[nodiscard]] const XText& GetMacroUID() const { return mMacroUID; }
    void SetMacroUID( const XText& inUID ) { mMacroUID = inUID; }

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mMacroUID = SharedText<u"">();
    bool mUseParameter = false;
    XText mParameter = SharedText<u"">();
    bool mAsynchronously = false;
};

/// Asks for a macro by its name, and triggers it.
class ATriggerByName final : public HActionOf<ATriggerByName, HActionType::kTriggerByName>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] MacrosAllowed& GetMacrosAllowed() { return mAllowed; }

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mInitialSearch = SharedText<u"">();
    MacrosAllowed mAllowed;
};

// Runs the actions of the first branch whose test holds for a text. It always has a branch.
#pragma once

#include "Actions/ActionFieldParts.h"
#include "Actions/HBaseAction.h"
#include "Actions/HCaseEntry.h"

class ASwitch final : public HActionOf<ASwitch, HActionType::kSwitch>
{
public:
    ASwitch();
    ASwitch( const ASwitch& inOther );

    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] bool HasSubActions() const override { return true; }
    /// With two branches there is something to keep, even when neither has actions.
    [[nodiscard]] bool IsEmptyOfActions() const override;
    void DoForEverySubActionList( const HActionList::ListBlock& inBlock ) const override;
    void UpdateToDefaultValues( bool inFlag ) override { mSource.UpdateToDefaultValues( inFlag ); }
    void AddMatchStrings( StringSearchee& ioSearchee ) const override;
    [[nodiscard]] std::vector<Text> ActionCouldBeRegExStrings() const override;

    [[nodiscard]] std::shared_ptr<HCaseEntryList> AppleScriptGetCaseEntryList() const { return mCaseEntries; }
    [[nodiscard]] ActionTextSource& GetSource() { return mSource; }

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    ActionTextSource mSource;
    std::shared_ptr<HCaseEntryList> mCaseEntries; // shared with scripts
};

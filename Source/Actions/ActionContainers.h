// What actions share that hold one list of actions, or conditions.
#pragma once

#include "Actions/HAppleScriptActionList.h"
#include "Actions/HBaseAction.h"
#include "Actions/HClausesInDescription.h"
#include "Conditions/CConditionList.h"

class HOneListAction : public HBaseAction, public HAppleScriptActionList
{
public:
    [[nodiscard]] bool HasSubActions() const override { return true; }
    [[nodiscard]] bool IsEmptyOfActions() const override;
    void DoForEverySubActionList( const HActionList::ListBlock& inBlock ) const override;

    [[nodiscard]] std::shared_ptr<HActionList> GetActionList() const override { return mActions.GetShared(); }
    [[nodiscard]] bool GetActionListDisclosed() const override { return mActions.mDisclosed; }
    void SetActionListDisclosed( bool inDisclosed ) override { mActions.mDisclosed = inDisclosed; }

protected:
    /// "Actions" and "ActionListDisclosed".
    void DescribeActions( HFieldVisitor& inVisitor );

    HActions mActions;
};

/// One that is run more than once, and is found as a loop.
class HLoopAction : public HOneListAction
{
public:
    [[nodiscard]] bool IsLoop() const override { return true; }
    [[nodiscard]] std::vector<Text> GetAddActionByNameExtraSearchString() const override { return { u"loop" }; }
};

/// One that is decided by conditions.
template<class Base>
class HConditionalAction : public Base, public HClausesInDescription
{
public:
    void UpdateToDefaultValues( bool inFlag ) override { mConditions.UpdateToDefaultValues( inFlag ); }
    void UpdateForPasteOrAdd() override { mConditions.UpdateForPasteOrAdd(); }
    [[nodiscard]] CConditionList& GetConditions() { return mConditions; }

    [[nodiscard]] Text GetDescriptionBeforeClauses() const override
    {
        return DescriptionWith( mConditions.GetConditionDisplayText() );
    }
    [[nodiscard]] std::vector<Text> GetClauses() const override { return mConditions.GetClauses(); }

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override
    {
        return DescriptionWith( mConditions.GetDescription() );
    }
    /// The description with the conditions in these words, which are "" when there are none.
    [[nodiscard]] virtual Text DescriptionWith( const Text& inConditions ) const = 0;

    CConditionList mConditions;
};

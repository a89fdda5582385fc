// The actions that hold other actions, decide, or loop, but for the switch (ASwitch.h).
#pragma once

#include "Actions/ActionContainers.h"
#include "Actions/SharedText.h"
#include "Collections/CCollectionList.h"

class AIfThenElse final : public HActionOf<AIfThenElse, HActionType::kIfThenElse, HConditionalAction<HBaseAction>>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] bool HasSubActions() const override { return true; }
    [[nodiscard]] bool IsEmptyOfActions() const override;
    void DoForEverySubActionList( const HActionList::ListBlock& inBlock ) const override;

    [[nodiscard]] HActionList& AppleScriptGetThenActionList() const { return mThenActions.GetList(); }
    [[nodiscard]] HActionList& AppleScriptGetElseActionList() const { return mElseActions.GetList(); }
    [[nodiscard]] std::shared_ptr<HActionList> GetThenActionList() const { return mThenActions.GetShared(); }
    [[nodiscard]] std::shared_ptr<HActionList> GetElseActionList() const { return mElseActions.GetShared(); }

protected:
    [[nodiscard]] Text DescriptionWith( const Text& inConditions ) const override;

private:
    HActions mThenActions, mElseActions;
};

class AWhile final : public HActionOf<AWhile, HActionType::kWhile, HConditionalAction<HLoopAction>>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text DescriptionWith( const Text& inConditions ) const override;
};

class AUntil final : public HActionOf<AUntil, HActionType::kUntil, HConditionalAction<HLoopAction>>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text DescriptionWith( const Text& inConditions ) const override;
};

class ARepeat final : public HActionOf<ARepeat, HActionType::kRepeat, HLoopAction>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] const XText& GetCountExpression() const { return mCountExpression; }
    void SetCountExpression( const XText& inExpression ) { mCountExpression = inExpression; }

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mCountExpression = SharedText<u"1">();
};

class AFor final : public HActionOf<AFor, HActionType::kFor, HLoopAction>, public HClausesInDescription
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void SetVariable( const XText& inVariable ) { mVariable = inVariable; }
    [[nodiscard]] const XText& GetVariable() const { return mVariable; }
    [[nodiscard]] CCollectionList& GetCollections() { return mCollections; }
    void UpdateToDefaultValues( bool inFlag ) override { mCollections.UpdateToDefaultValues( inFlag ); }

    [[nodiscard]] Text GetDescriptionBeforeClauses() const override;
    [[nodiscard]] std::vector<Text> GetClauses() const override { return mCollections.GetClauses(); }

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;
    [[nodiscard]] Text InternalGetActionHTMLDescriptionString() const override;

private:
    XText mVariable = SharedText<u"VarName">();
    CCollectionList mCollections;
};

class AGroup final : public HActionOf<AGroup, HActionType::kGroup, HOneListAction>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;
};

class AAssert final : public HActionOf<AAssert, HActionType::kAssert, HConditionalAction<HBaseAction>>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text DescriptionWith( const Text& inConditions ) const override;
};

class APauseUntil final : public HActionOf<APauseUntil, HActionType::kPauseUntil, HConditionalAction<HBaseAction>>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text DescriptionWith( const Text& inConditions ) const override;
};

enum class CancelAction {
    kCancelAllMacros,
    kCancelAllOtherMacros,
    kCancelThisMacro,
    kCancelJustThisMacro,
    kCancelSpecificMacro,
    kRetryThisLoop,
    kContinueLoop,
    kBreakFromLoop,
};
inline constexpr TextView kCancelActionNames[] = { u"CancelAllMacros", u"CancelAllOtherMacros", u"CancelThisMacro",
    u"CancelJustThisMacro", u"CancelSpecificMacro", u"RetryThisLoop", u"ContinueLoop", u"BreakFromLoop" };
static_assert( std::size( kCancelActionNames ) == std::size_t( CancelAction::kBreakFromLoop ) + 1 );
constexpr auto NamesOf( CancelAction )
{
    return std::span( kCancelActionNames );
}

class ACancel final : public HActionOf<ACancel, HActionType::kCancel>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] std::vector<Text> GetAddActionByNameExtraSearchString() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    CancelAction mAction = CancelAction::kCancelAllMacros;
    XText mInstance = SharedText<u"">();
};

enum class PauseUnit { kHundredths, kSeconds, kMinutes, kHours };
inline constexpr TextView kPauseUnitNames[] = { u"Hundredths", u"Seconds", u"Minutes", u"Hours" };
static_assert( std::size( kPauseUnitNames ) == std::size_t( PauseUnit::kHours ) + 1 );
constexpr auto NamesOf( PauseUnit )
{
    return std::span( kPauseUnitNames );
}

class APause final : public HActionOf<APause, HActionType::kPause>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    /// One pause as long as both, if both times are plain numbers of the same unit.
    [[nodiscard]] std::unique_ptr<HBaseAction> Merge( const HBaseAction& inNext ) const override;
    [[nodiscard]] std::vector<Text> GetAddActionByNameExtraSearchString() const override;
    [[nodiscard]] const XText& GetTime() const { return mTime; }
    void SetTime( const XText& inTime ) { mTime = inTime; }
    [[nodiscard]] PauseUnit GetUnit() const { return mUnit; }

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mTime = SharedText<u"1.5">(); // a calculation
    PauseUnit mUnit = PauseUnit::kSeconds;
};

enum class SemaphoreAction { kLock, kUnlock, kReset };
inline constexpr TextView kSemaphoreActionNames[] = { u"Lock", u"Unlock", u"Reset" };
static_assert( std::size( kSemaphoreActionNames ) == std::size_t( SemaphoreAction::kReset ) + 1 );
constexpr auto NamesOf( SemaphoreAction )
{
    return std::span( kSemaphoreActionNames );
}

class ASemaphore final : public HActionOf<ASemaphore, HActionType::kSemaphore>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    // Only locking waits, and only unlocking can find that there is nothing to unlock.
    [[nodiscard]] bool HasTimeOut() const override { return mAction == SemaphoreAction::kLock; }
    [[nodiscard]] bool ActionCanFail() const override { return mAction == SemaphoreAction::kUnlock; }
    [[nodiscard]] Text GetActionTitle() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    SemaphoreAction mAction = SemaphoreAction::kLock;
    XText mName = SharedText<u"Semaphore Name">();
};

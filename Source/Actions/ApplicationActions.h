// The actions that activate, quit, hide and show applications.
#pragma once

#include "Actions/ActionFieldParts.h"
#include "Actions/HBaseAction.h"
#include "Actions/VariableTransformationAction.h"

class ABringWindowsForward final : public HActionOf<ABringWindowsForward, HActionType::kBringWindowsForward>
{};

class ALastApplication final : public HActionOf<ALastApplication, HActionType::kSwitchToLastApplication>
{};

class ANextApplication final : public HActionOf<ANextApplication, HActionType::kSwitchToNextApplication>
{};

/// What becomes of an application that is to be activated and is in front already.
enum class AlreadyActivatedActionType { kNormal, kSwitchToLast, kHide, kQuit };
inline constexpr TextView kAlreadyActivatedActionTypeNames[] = { u"Normal", u"SwitchToLast", u"Hide", u"Quit" };
static_assert( std::size( kAlreadyActivatedActionTypeNames ) == std::size_t( AlreadyActivatedActionType::kQuit ) + 1 );
constexpr auto NamesOf( AlreadyActivatedActionType )
{
    return std::span( kAlreadyActivatedActionTypeNames );
}

class AActivateApplication final : public HActionOf<AActivateApplication, HActionType::kActivateApplication>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

    void SetApplication( XApplicationIdentifier inApplication ) { mApplication = std::move( inApplication ); }
    [[nodiscard]] bool CanBeInstigatedByClickAction() const override { return true; }
    [[nodiscard]] Text GetActionExtraHTML() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    std::optional<XApplicationIdentifier> mApplication;
    bool mReopenWindows = false;
    bool mAllWindows = false;
    AlreadyActivatedActionType mAlreadyActivated = AlreadyActivatedActionType::kNormal;
};

class AApplyModifiersToApplication final
    : public HActionOf<AApplyModifiersToApplication, HActionType::kApplyModifiersToApplication>,
      public VariableTransformationAction
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

    // What it changes is an application, which no editor can preview as a text.
    [[nodiscard]] XText GetVariable() const override { return {}; }
    void SetVariableText( const XText& ) override {}
    [[nodiscard]] XText GetVariableText() const override { return {}; }
    [[nodiscard]] XText GetTransformationResult( CalculateError*, float*, bool ) const override { return {}; }

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    std::optional<XApplicationIdentifier> mApplication;
    std::int32_t mModifiers = 0;
};

/// Quits many applications at once. The scope is the type, not a field.
class AQuitApplications final : public HBaseAction
{
public:
    enum class Scope { kAll, kOthers };

    explicit AQuitApplications( Scope inScope ) : mScope( inScope ) {}
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] HActionType GetActionType() const override;
    [[nodiscard]] std::unique_ptr<HBaseAction> Clone() const override;
    [[nodiscard]] Text GetActionExtraHTML() const override;

private:
    Scope mScope;
    bool mHonorExcluded = false;
};

/// Hides many applications at once, or the one in front. The scope is the type, not a field.
class AHideApplications final : public HBaseAction
{
public:
    enum class Scope { kAll, kOthers, kCurrent };

    explicit AHideApplications( Scope inScope ) : mScope( inScope ) {}
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] HActionType GetActionType() const override;
    [[nodiscard]] std::unique_ptr<HBaseAction> Clone() const override;
    [[nodiscard]] Text GetActionExtraHTML() const override;

private:
    Scope mScope;
    bool mHonorExcluded = false;
};

enum class QuitApplicationAction { kQuit, kQuitRelaunch, kForceQuit, kForceQuitRelaunch };
inline constexpr TextView kQuitApplicationActionNames[] = { u"Quit", u"QuitRelaunch", u"ForceQuit",
    u"ForceQuitRelaunch" };
static_assert(
    std::size( kQuitApplicationActionNames ) == std::size_t( QuitApplicationAction::kForceQuitRelaunch ) + 1 );
constexpr auto NamesOf( QuitApplicationAction )
{
    return std::span( kQuitApplicationActionNames );
}

class AQuitSpecificApplication final : public HActionOf<AQuitSpecificApplication, HActionType::kQuitSpecificApp>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] bool CanBeInstigatedByClickAction() const override { return true; }

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    ApplicationTarget mTarget;
    QuitApplicationAction mAction = QuitApplicationAction::kQuit;
};

class AHideSpecificApplication final : public HActionOf<AHideSpecificApplication, HActionType::kHideSpecificApp>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    std::optional<XApplicationIdentifier> mApplication;
};

class AShowApplications final : public HActionOf<AShowApplications, HActionType::kShowAll>
{};

class AShowSpecificApplication final : public HActionOf<AShowSpecificApplication, HActionType::kShowSpecificApp>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    std::optional<XApplicationIdentifier> mApplication;
};

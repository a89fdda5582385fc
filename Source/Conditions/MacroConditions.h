// The conditions about macros and their actions.
#pragma once

#include "Conditions/CBaseCondition.h"
#include "Conditions/GenericCondition.h"

enum class MacroConditionType : std::int32_t { kIsEnabled, kIsDisabled, kIsActive, kIsInactive };
inline constexpr TextView kMacroConditionTypeNames[] = { u"IsEnabled", u"IsDisabled", u"IsActive", u"IsInactive" };
static_assert( std::size( kMacroConditionTypeNames ) == std::size_t( MacroConditionType::kIsInactive ) + 1 );
constexpr auto NamesOf( MacroConditionType )
{
    return std::span( kMacroConditionTypeNames );
}

class CMacroCondition final : public CConditionOf<CMacroCondition, ConditionType::kMacro>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateForPasteOrAdd() override;
    [[nodiscard]] Text GetDescription() const override;

private:
    XText mMacroUID = SharedText<u"">(); // of a macro or a group
    MacroConditionType mType = MacroConditionType::kIsEnabled;
};

/// How the last action that gave a result fared.
class CActionResultCondition final : public CConditionOf<CActionResultCondition, ConditionType::kActionResult>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;

private:
    XText mText = SharedText<u"OK">();
    GenericConditionType mType = GenericConditionType::kIsOK;
};

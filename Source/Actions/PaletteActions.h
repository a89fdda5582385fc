// The actions that show palettes and other choices, and those that hide them.
#pragma once

#include "Actions/ActionResult.h"
#include "Actions/HBaseAction.h"
#include "Macros/MacrosAllowed.h"

class AShowPaletteOfMacros final : public HActionOf<AShowPaletteOfMacros, HActionType::kShowPaletteOfMacros>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateForPasteOrAdd() override { mMacros.UpdateForPasteOrAdd(); }

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    MacrosAllowed mMacros;
    bool mIncludeInTouchBar = false;
};

class AGetTouchBarSelection final : public HActionOf<AGetTouchBarSelection, HActionType::kGetTouchBarSelection>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateToDefaultValues( bool inForce ) override { mResult.UpdateToDefaultValues( inForce ); }

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    void DescribeButtons( HFieldVisitor& inVisitor );

    __SafeCFPropertyList mButtons = SharedText<u"none">(); // a text, or a container or data, kept as they stand
    ActionResult mResult;
};

enum class ConcealAction { kConceal, kReveal, kToggle, kConcealUntilAppSwitch, kConcealUntilAppSwitchOrReveal };
inline constexpr TextView kConcealActionNames[] = { u"Conceal", u"Reveal", u"Toggle", u"ConcealUntilAppSwitch",
    u"ConcealUntilAppSwitchOrReveal" };
static_assert( std::size( kConcealActionNames ) == std::size_t( ConcealAction::kConcealUntilAppSwitchOrReveal ) + 1 );
constexpr auto NamesOf( ConcealAction )
{
    return std::span( kConcealActionNames );
}

class AConcealMacroPalettes final : public HActionOf<AConcealMacroPalettes, HActionType::kConcealMacroPalettes>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    ConcealAction mAction = ConcealAction::kConceal;
};

enum class PaletteToggleAction { kShow, kHide, kToggle };
inline constexpr TextView kPaletteToggleActionNames[] = { u"Show", u"Hide", u"Toggle" };
static_assert( std::size( kPaletteToggleActionNames ) == std::size_t( PaletteToggleAction::kToggle ) + 1 );
constexpr auto NamesOf( PaletteToggleAction )
{
    return std::span( kPaletteToggleActionNames );
}

class AApplicationsPaletteToggle final
    : public HActionOf<AApplicationsPaletteToggle, HActionType::kApplicationsPaletteToggle>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    PaletteToggleAction mAction = PaletteToggleAction::kShow;
};

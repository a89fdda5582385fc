// The actions that ask something of the system as a whole, or of the debugger of macros.
#pragma once

#include "Actions/HBaseAction.h"

enum class SystemActionCommand : std::int32_t {
    kSleep,
    kRestart,
    kShutdown,
    kLogOut,
    kLoginWindow,
    kOpenCloseCDROM,
    kMuteVolume,
    kIncreaseVolume,
    kIncreaseVolumeQuarter,
    kDecreaseVolume,
    kDecreaseVolumeQuarter,
    kIncreaseBrightness,
    kIncreaseBrightnessQuarter,
    kDecreaseBrightness,
    kDecreaseBrightnessQuarter,
    kActivateScreenSaver,
    kStopScreenSaver,
    kSleepDisplay,
    kWakeDisplay,
    kSystemBeep,
    kShowMacroPalette,
    kHideMacroPalette,
    kToggleMacroPalette,
    kShowStatusMenu,
    kClearTypedString,
};
inline constexpr TextView kSystemActionCommandNames[] = { u"Sleep", u"Restart", u"Shutdown", u"LogOut", u"LoginWindow",
    u"OpenCloseCDROM", u"MuteVolume", u"IncreaseVolume", u"IncreaseVolumeQuarter", u"DecreaseVolume",
    u"DecreaseVolumeQuarter", u"IncreaseBrightness", u"IncreaseBrightnessQuarter", u"DecreaseBrightness",
    u"DecreaseBrightnessQuarter", u"ActivateScreenSaver", u"StopScreenSaver", u"SleepDisplay", u"WakeDisplay",
    u"SystemBeep", u"ShowMacroPalette", u"HideMacroPalette", u"ToggleMacroPalette", u"ShowStatusMenu",
    u"ClearTypedString" };
static_assert( std::size( kSystemActionCommandNames ) == std::size_t( SystemActionCommand::kClearTypedString ) + 1 );
constexpr auto NamesOf( SystemActionCommand )
{
    return std::span( kSystemActionCommandNames );
}

class ASystemAction final : public HActionOf<ASystemAction, HActionType::kSystemAction>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    SystemActionCommand mCommand = SystemActionCommand::kSystemBeep;
};

enum class DebuggerActionCommand : std::int32_t {
    kStart,
    kFinish,
    kToggle,
    kNewMacrosPaused,
    kNewMacrosRun,
    kBreakpoint,
    kBreakpointOthers,
    kBreakpointEvery,
    kStepOverOthers,
    kStepIntoOthers,
    kStepOutOthers,
    kContinue,
    kContinueEvery,
};
inline constexpr TextView kDebuggerActionCommandNames[] = { u"Start", u"Finish", u"Toggle", u"NewMacrosPaused",
    u"NewMacrosRun", u"Breakpoint", u"BreakpointOthers", u"BreakpointEvery", u"StepOverOthers", u"StepIntoOthers",
    u"StepOutOthers", u"Continue", u"ContinueEvery" };
static_assert( std::size( kDebuggerActionCommandNames ) == std::size_t( DebuggerActionCommand::kContinueEvery ) + 1 );
constexpr auto NamesOf( DebuggerActionCommand )
{
    return std::span( kDebuggerActionCommandNames );
}

class ADebuggerAction final : public HActionOf<ADebuggerAction, HActionType::kDebuggerAction>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    DebuggerActionCommand mCommand = DebuggerActionCommand::kStart;
};

// The actions of the keyboard: keystrokes, modifiers and keys of the hardware.
#pragma once

#include "Actions/ActionFieldParts.h"
#include "Actions/HBaseAction.h"
#include "Utility/Text/KeystrokeText.h"

enum class KeyPress { kPressAndRelease, kPressAndHold, kPressAndRepeat, kRelease };
inline constexpr TextView kKeyPressNames[] = { u"PressAndRelease", u"PressAndHold", u"PressAndRepeat", u"Release" };
static_assert( std::size( kKeyPressNames ) == std::size_t( KeyPress::kRelease ) + 1 );
constexpr auto NamesOf( KeyPress )
{
    return std::span( kKeyPressNames );
}

class ASimulateKeystroke final : public HActionOf<ASimulateKeystroke, HActionType::kSimulateKeystroke>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    /// A key that is held and then released becomes one press; two keystrokes that type characters, or one before a
    /// typed text, become a text.
    [[nodiscard]] std::unique_ptr<HBaseAction> Merge( const HBaseAction& inNext ) const override;
    [[nodiscard]] std::vector<Text> GetAddActionByNameExtraSearchString() const override;

    /// The character that the keystroke typed where it was recorded, which only the keyboard layout of that moment
    /// knows. Not stored; 0 when it typed none.
    void SetRecordedCharacter( char16_t inCharacter ) { mRecordedCharacter = inCharacter; }
    /// The character that one plain press types: the recorded one, else that of the ANSI layout; 0 for none.
    [[nodiscard]] char16_t GetTypedCharacter() const;
    [[nodiscard]] const ApplicationTarget& GetTarget() const { return mTarget; }

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    std::int32_t mModifiers = 0; // not masked: what else a recording had is the engine's to judge
    std::int32_t mKeyCode = kNoKeyCode;
    KeyPress mPress = KeyPress::kPressAndRelease;
    bool mReleaseAll = false;
    ApplicationTarget mTarget;
    char16_t mRecordedCharacter = 0;
};

class ATriggerMacroByHotKey final : public HActionOf<ATriggerMacroByHotKey, HActionType::kTriggerMacroByHotKey>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    std::int32_t mModifiers = 0;
    std::int32_t mKeyCode = kNoKeyCode;
};

class ASimulateModifiers final : public HActionOf<ASimulateModifiers, HActionType::kSimulateModifiers>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    std::int32_t mModifiers = 0;
    KeyPress mPress = KeyPress::kPressAndRelease;
};

enum class HardwareKey {
    kSoundUp,
    kSoundDown,
    kBrightnessUp,
    kBrightnessDown,
    kCapsLock,
    kHelp,
    kPowerKey,
    kMute,
    kNumLock,
    kContrastUp,
    kContrastDown,
    kLaunchPanel,
    kEject,
    kVidMirror,
    kPlay,
    kNext,
    kPrevious,
    kFast,
    kRewind,
    kIlluminationUp,
    kIlluminationDown,
    kIlluminationToggle,
};
inline constexpr TextView kHardwareKeyNames[] = { u"SOUND_UP", u"SOUND_DOWN", u"BRIGHTNESS_UP", u"BRIGHTNESS_DOWN",
    u"CAPS_LOCK", u"HELP", u"POWER_KEY", u"MUTE", u"NUM_LOCK", u"CONTRAST_UP", u"CONTRAST_DOWN", u"LAUNCH_PANEL",
    u"EJECT", u"VIDMIRROR", u"PLAY", u"NEXT", u"PREVIOUS", u"FAST", u"REWIND", u"ILLUMINATION_UP", u"ILLUMINATION_DOWN",
    u"ILLUMINATION_TOGGLE" };
static_assert( std::size( kHardwareKeyNames ) == std::size_t( HardwareKey::kIlluminationToggle ) + 1 );
constexpr auto NamesOf( HardwareKey )
{
    return std::span( kHardwareKeyNames );
}

class ASimulateHardwareKey final : public HActionOf<ASimulateHardwareKey, HActionType::kSimulateHardwareKey>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    HardwareKey mKey = HardwareKey::kPlay;
    KeyPress mPress = KeyPress::kPressAndRelease;
    std::int32_t mModifiers = 0;
};

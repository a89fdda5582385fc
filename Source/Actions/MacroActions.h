// The actions that refer to macros.
#pragma once

#include "Actions/HBaseAction.h"
#include "Actions/SharedText.h"
#include "Macros/MUIDObject.h"
#include "Macros/MacrosAllowed.h"
#include "Utility/Text/KeystrokeText.h"

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
    void UpdateForPasteOrAdd() override { mAllowed.UpdateForPasteOrAdd(); }

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mInitialSearch = SharedText<u"">();
    MacrosAllowed mAllowed;
};

enum class MarkMacroAction { kMark, kUnmark, kToggle };
inline constexpr TextView kMarkMacroActionNames[] = { u"Mark", u"Unmark", u"Toggle" };
static_assert( std::size( kMarkMacroActionNames ) == std::size_t( MarkMacroAction::kToggle ) + 1 );
constexpr auto NamesOf( MarkMacroAction )
{
    return std::span( kMarkMacroActionNames );
}

class AMarkMacro final : public HActionOf<AMarkMacro, HActionType::kMarkMacro>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateForPasteOrAdd() override;

    [[nodiscard]] const XText& GetMacroUID() const { return mMacroUID; }

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mMacroUID = SharedText<u"">();
    MarkMacroAction mAction = MarkMacroAction::kMark;
};

enum class MacroEnableAction { kEnable, kDisable, kToggle };
inline constexpr TextView kMacroEnableActionNames[] = { u"Enable", u"Disable", u"Toggle" };
static_assert( std::size( kMacroEnableActionNames ) == std::size_t( MacroEnableAction::kToggle ) + 1 );
constexpr auto NamesOf( MacroEnableAction )
{
    return std::span( kMacroEnableActionNames );
}

class ASetMacroEnable final : public HActionOf<ASetMacroEnable, HActionType::kSetMacroEnable>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateForPasteOrAdd() override;

    [[nodiscard]] const XText& GetMacroUID() const { return mMacroUID; }

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    MacroEnableAction mAction = MacroEnableAction::kEnable;
    XText mMacroUID = SharedText<u"">(); // of a macro or a group
};

enum class MacroGroupToggleMode {
    kInternalAutomatic,
    kOnce,
    kActivate,
    kDeactivate,
    kToggle,
    kOnceWithPalette,
    kShowPalette,
    kHidePalette,
    kTogglePalette,
};
inline constexpr TextView kMacroGroupToggleModeNames[] = { u"InternalAutomatic", u"Once", u"Activate", u"Deactivate",
    u"Toggle", u"OnceWithPalette", u"ShowPalette", u"HidePalette", u"TogglePalette" };
static_assert( std::size( kMacroGroupToggleModeNames ) == std::size_t( MacroGroupToggleMode::kTogglePalette ) + 1 );
constexpr auto NamesOf( MacroGroupToggleMode )
{
    return std::span( kMacroGroupToggleModeNames );
}

class AMacroGroupToggle final : public HActionOf<AMacroGroupToggle, HActionType::kMacroGroupToggle>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateForPasteOrAdd() override;

    [[nodiscard]] const XText& GetMacroGroupUID() const { return mMacroGroupUID; }

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mMacroGroupUID = SharedText<u"">();
    MacroGroupToggleMode mMode = MacroGroupToggleMode::kOnceWithPalette;
    bool mDisplayToggle = false;
};

/// Records a macro at a hot key, to be run by it afterwards. The engine knows it by a UID, which clones share: they
/// are the same quick macro. Only one that is pasted or added becomes another.
class AQuickMacro final : public HActionOf<AQuickMacro, HActionType::kQuickMacro>
{
public:
    AQuickMacro();
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateForPasteOrAdd() override;

    [[nodiscard]] const XText& GetQuickMacroUID() const { return mUID->GetUID(); }

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    std::int32_t mKeyCode = kNoKeyCode;
    std::int32_t mModifiers = 0;
    bool mEnableRepeat = false;
    bool mAddToMacroPalette = false;
    bool mAddToStatusMenu = false;
    std::shared_ptr<MUIDObject> mUID;
};

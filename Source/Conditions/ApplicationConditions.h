// The conditions about applications, their windows, buttons and menus.
#pragma once

#include "Actions/ActionFieldParts.h"
#include "Conditions/CBaseCondition.h"
#include "Conditions/ConditionParts.h"
#include "Conditions/GenericCondition.h"
#include "Macros/MMacroAppTarget.h"
#include "Utility/Text/KeystrokeText.h"

enum class ApplicationConditionType : std::int32_t {
    kRunning,
    kNotRunning,
    kActive,
    kNotActive,
    kRunningButNotActive,
    kHidden,
    kRunningButHidden,
    kNotHidden,
};
inline constexpr TextView kApplicationConditionTypeNames[] = { u"Running", u"NotRunning", u"Active", u"NotActive",
    u"RunningButNotActive", u"Hidden", u"RunningButHidden", u"NotHidden" };
static_assert( std::size( kApplicationConditionTypeNames ) == std::size_t( ApplicationConditionType::kNotHidden ) + 1 );
constexpr auto NamesOf( ApplicationConditionType )
{
    return std::span( kApplicationConditionTypeNames );
}

class CApplicationCondition final : public CConditionOf<CApplicationCondition, ConditionType::kApplication>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;

private:
    std::optional<XApplicationIdentifier> mApplication;
    ApplicationConditionType mType = ApplicationConditionType::kRunning;
};

/// The application in front, or a certain one.
class FrontOrCertainApplication
{
public:
    /// "IsFrontApplication", and "Application" when that is false. Without a usable one it is the one in front.
    void DescribeFields( HFieldVisitor& inVisitor );
    /// For descriptions, such as "the Front Application".
    [[nodiscard]] Text GetDescription() const;

private:
    bool mIsFront = true;
    std::optional<XApplicationIdentifier> mApplication; // when it isn't the one in front
};

class CFrontWindowCondition final : public CConditionOf<CFrontWindowCondition, ConditionType::kFrontWindow>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;

private:
    FrontOrCertainApplication mApplication;
    FrontWindowConditionType mType = FrontWindowConditionType::kAlways;
    XText mTitle = SharedText<u"">();
};

class CAnyWindowCondition final : public CConditionOf<CAnyWindowCondition, ConditionType::kAnyWindow>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;

private:
    FrontOrCertainApplication mApplication;
    GenericConditionType mType = GenericConditionType::kContains;
    XText mTitle = SharedText<u"">();
};

enum class ButtonConditionType : std::int32_t {
    kExists,
    kDoesNotExist,
    kIsEnabled,
    kIsNotEnabled,
    kExistsButIsNotEnabled,
    kIsOff,
    kIsOn,
    kIsMixed,
};
inline constexpr TextView kButtonConditionTypeNames[] = { u"Exists", u"DoesNotExist", u"IsEnabled", u"IsNotEnabled",
    u"ExistsButIsNotEnabled", u"IsOff", u"IsOn", u"IsMixed" };
static_assert( std::size( kButtonConditionTypeNames ) == std::size_t( ButtonConditionType::kIsMixed ) + 1 );
constexpr auto NamesOf( ButtonConditionType )
{
    return std::span( kButtonConditionTypeNames );
}

class CButtonCondition final : public CConditionOf<CButtonCondition, ConditionType::kButton>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;

private:
    XText mTitle = SharedText<u"OK">();
    ConditionSelectionType mSelection = ConditionSelectionType::kIs;
    ButtonConditionType mType = ButtonConditionType::kExists;
};

/// How a menu item is found.
enum class MenuConditionSelectionType : std::int32_t { kIs, kContains, kMatches, kPath, kShortcut };
inline constexpr TextView kMenuConditionSelectionTypeNames[] = { u"Is", u"Contains", u"Matches", u"Path", u"Shortcut" };
static_assert(
    std::size( kMenuConditionSelectionTypeNames ) == std::size_t( MenuConditionSelectionType::kShortcut ) + 1 );
constexpr auto NamesOf( MenuConditionSelectionType )
{
    return std::span( kMenuConditionSelectionTypeNames );
}

enum class MenuConditionType : std::int32_t {
    kExists,
    kDoesNotExist,
    kIsEnabled,
    kIsNotEnabled,
    kExistsButIsNotEnabled,
    kIsMarked,
    kIsNotMarked,
    kExistsButIsNotMarked,
};
inline constexpr TextView kMenuConditionTypeNames[] = { u"Exists", u"DoesNotExist", u"IsEnabled", u"IsNotEnabled",
    u"ExistsButIsNotEnabled", u"IsMarked", u"IsNotMarked", u"ExistsButIsNotMarked" };
static_assert( std::size( kMenuConditionTypeNames ) == std::size_t( MenuConditionType::kExistsButIsNotMarked ) + 1 );
constexpr auto NamesOf( MenuConditionType )
{
    return std::span( kMenuConditionTypeNames );
}

class CMenuCondition final : public CConditionOf<CMenuCondition, ConditionType::kMenu>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;

private:
    XText mTitle = SharedText<u"Copy">(); // of the item, or the path to it
    MenuConditionSelectionType mSelection = MenuConditionSelectionType::kIs;
    MenuConditionType mType = MenuConditionType::kExists;
    XText mShortcut = SharedText<u"C">();
    std::int32_t mModifiers = kModifierCommand;
};

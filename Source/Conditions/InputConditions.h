// The conditions about keyboard and mouse.
#pragma once

#include "Conditions/CBaseCondition.h"
#include "Utility/Text/KeystrokeText.h"

class CModifiersCondition final : public CConditionOf<CModifiersCondition, ConditionType::kModifiers>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;

private:
    // Masks of the modifiers that must be held and of those that mustn't. The others don't matter.
    std::int32_t mDown = kModifierCommand;
    std::int32_t mUp = 0;
};

enum class KeyConditionType : std::int32_t { kDown, kUp };
inline constexpr TextView kKeyConditionTypeNames[] = { u"Down", u"Up" };
static_assert( std::size( kKeyConditionTypeNames ) == std::size_t( KeyConditionType::kUp ) + 1 );
constexpr auto NamesOf( KeyConditionType )
{
    return std::span( kKeyConditionTypeNames );
}

class CKeyCondition final : public CConditionOf<CKeyCondition, ConditionType::kKey>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;

private:
    std::int32_t mKeyCode = kNoKeyCode;
    KeyConditionType mType = KeyConditionType::kDown;
};

/// How the typed string that triggered the macro was typed.
enum class TrippedCaseBehaviour : std::int32_t { kNone, kTitleCase, kUppercase };
inline constexpr TextView kTrippedCaseBehaviourNames[] = { u"None", u"TitleCase", u"Uppercase" };
static_assert( std::size( kTrippedCaseBehaviourNames ) == std::size_t( TrippedCaseBehaviour::kUppercase ) + 1 );
constexpr auto NamesOf( TrippedCaseBehaviour )
{
    return std::span( kTrippedCaseBehaviourNames );
}

class CTypedStringCondition final : public CConditionOf<CTypedStringCondition, ConditionType::kTypedString>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;

private:
    TrippedCaseBehaviour mCase = TrippedCaseBehaviour::kNone;
};

class CMouseButtonCondition final : public CConditionOf<CMouseButtonCondition, ConditionType::kMouseButton>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;

private:
    std::int32_t mButton = 0; // the first one
    bool mPressed = true;
};

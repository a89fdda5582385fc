// The rules that a check of a file knows: every kind of loss, repair, default and upgrade that loading and saving can
// do. Loaders name the rule of a repair; the check finds the rest. Scripts and settings hold the identifiers, so that
// one that was given is never taken for something else. Any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

enum class MLoadRule : std::uint8_t {
    // Something is lost.
    kDroppedUnknownGroup,
    kDroppedUnknownAction,
    kDroppedUnknownCondition,
    kDroppedUnknownCollection,
    kDroppedUnknownTrigger,
    kDroppedRequiredKey,
    kDroppedWrongType,
    kDroppedUselessTrigger,
    kNotInValue,
    kUnknownKey,
    kUnusedSetting,
    kChangedValue,
    // Something is set right, or a default stands for it.
    kWrongTypeDefaulted,
    kEnumDefaulted,
    kOutOfRange,
    kValueCorrected,
    kDefaultGroupReset,
    kEmptyTarget,
    kUIDReplaced,
    kUIDAdded,
    kElementsAdded,
    // The same is said in another way.
    kOlderKey,
    kOlderType,
    kOlderValue,
    kDefaultWritten,
    kKeyWithoutEffect,
    kNumberForm,
};
inline constexpr std::size_t kMLoadRuleCount = std::size_t( MLoadRule::kNumberForm ) + 1;

enum class MSeverity : std::uint8_t { kError, kWarning, kNote };

/// "error", "warning" and "note".
[[nodiscard]] const char* NameOf( MSeverity inSeverity );

struct MLoadRuleRow
{
    MLoadRule mRule;
    std::string_view mID; ///< "older-key"
    MSeverity mSeverity;
    bool mLoses; ///< what the file said would be gone
    std::string_view mExplanation;
};

/// In the order of the enumeration.
[[nodiscard]] std::span<const MLoadRuleRow, kMLoadRuleCount> MLoadRules();
[[nodiscard]] const MLoadRuleRow& RowOf( MLoadRule inRule );
/// By its identifier, exactly.
[[nodiscard]] std::optional<MLoadRule> MLoadRuleNamed( std::string_view inID );
/// The identifiers that somebody who wrote this may have meant, the likeliest first; at most three, maybe none.
[[nodiscard]] std::vector<std::string> MLoadRulesNear( std::string_view inID );

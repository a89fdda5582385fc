#include "Macros/MLoadRules.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <utility>

namespace
{
using Rule = MLoadRule;

constexpr const char* kSeverityNames[] = { "error", "warning", "note" };
static_assert( std::size( kSeverityNames ) == std::size_t( MSeverity::kNote ) + 1 );

constexpr auto kError = MSeverity::kError, kWarning = MSeverity::kWarning, kNote = MSeverity::kNote;

// To add a rule: an enumerator, a row, and something in Examples that shows it.
constexpr MLoadRuleRow kRules[] = {
    { Rule::kDroppedUnknownGroup, "dropped-unknown-group", kError, true,
        "An entry that is neither a group nor a smart group is left out." },
    { Rule::kDroppedUnknownAction, "dropped-unknown-action", kError, true,
        "An action of a type that isn't known is left out." },
    { Rule::kDroppedUnknownCondition, "dropped-unknown-condition", kError, true,
        "A condition of a type that isn't known is left out." },
    { Rule::kDroppedUnknownCollection, "dropped-unknown-collection", kError, true,
        "A collection of a type that isn't known is left out." },
    { Rule::kDroppedUnknownTrigger, "dropped-unknown-trigger", kError, true,
        "A trigger of a kind that isn't known is left out." },
    { Rule::kDroppedRequiredKey, "dropped-required-key", kError, true,
        "An element is left out because a key that it needs is missing or of the wrong type." },
    { Rule::kDroppedWrongType, "dropped-wrong-type", kError, true,
        "An element of a list is left out because it isn't of the type that the list holds." },
    { Rule::kDroppedUselessTrigger, "dropped-useless-trigger", kError, true,
        "A trigger that could never fire is left out." },
    { Rule::kNotInValue, "not-in-value", kError, true,
        "The file's bytes hold something beside its value, such as a key that stands twice." },
    { Rule::kUnknownKey, "unknown-key", kError, true, "A key that nothing reads isn't kept." },
    { Rule::kUnusedSetting, "unused-setting", kError, true,
        "A setting of time-outs or failures isn't kept by a type that can't have it." },
    { Rule::kChangedValue, "changed-value", kError, true, "A value would be written otherwise, for no other reason." },
    { Rule::kWrongTypeDefaulted, "wrong-type-defaulted", kWarning, true,
        "A value has the wrong type, and its default stands." },
    { Rule::kEnumDefaulted, "enum-defaulted", kWarning, true,
        "A value is none of the names that its key knows, and the default stands." },
    { Rule::kOutOfRange, "out-of-range", kWarning, true,
        "A number is none that its key can hold, and the default or a part of it stands." },
    { Rule::kValueCorrected, "value-corrected", kWarning, true,
        "A value can't stand beside the others, and was set right." },
    { Rule::kDefaultGroupReset, "default-group-reset", kWarning, true,
        "The default group is always active, everywhere, whatever the file says." },
    { Rule::kEmptyTarget, "empty-target", kWarning, true,
        "A group's target names no application; it becomes All, and the group is off if it meant those alone." },
    { Rule::kUIDReplaced, "uid-replaced", kWarning, true,
        "Another object of the file holds the UID; this one gets a fresh one." },
    { Rule::kUIDAdded, "uid-added", kWarning, false,
        "An object without a UID gets a fresh one, another one with each load." },
    { Rule::kElementsAdded, "elements-added", kWarning, false, "A list gets elements that the file doesn't have." },
    { Rule::kOlderKey, "older-key", kNote, false,
        "A key of an earlier version is read, and the current one is written." },
    { Rule::kOlderType, "older-type", kNote, false,
        "A type of an earlier version is read as the one that followed it." },
    { Rule::kOlderValue, "older-value", kNote, false,
        "A value in an earlier form is read, and the current form is written." },
    { Rule::kDefaultWritten, "default-written", kNote, false, "A key that is missing is written with its default." },
    { Rule::kKeyWithoutEffect, "key-without-effect", kNote, false,
        "A key that repeats a default, or that the chosen kind doesn't use, isn't written." },
    { Rule::kNumberForm, "number-form", kNote, false, "The same number is written in another form." },
};

constexpr bool IsInEnumeratorOrder()
{
    for ( std::size_t i = 0; i < std::size( kRules ); ++i )
    {
        if ( kRules[i].mRule != Rule( i ) )
            return false;
    }
    return true;
}
static_assert( std::size( kRules ) == kMLoadRuleCount );
static_assert( IsInEnumeratorOrder(), "one row for each MLoadRule, in its order" );

// How many letters have to be put in, taken out or replaced.
std::size_t Distance( std::string_view inA, std::string_view inB )
{
    std::vector<std::size_t> row( inB.size() + 1 );
    std::iota( row.begin(), row.end(), std::size_t( 0 ) );
    for ( std::size_t i = 0; i < inA.size(); ++i )
    {
        std::size_t before = std::exchange( row[0], i + 1 );
        for ( std::size_t j = 0; j < inB.size(); ++j )
        {
            const std::size_t replaced = before + ( inA[i] == inB[j] ? 0 : 1 );
            before = row[j + 1];
            row[j + 1] = std::min( { replaced, before + 1, row[j] + 1 } );
        }
    }
    return row.back();
}
} // namespace

const char* NameOf( MSeverity inSeverity )
{
    return kSeverityNames[std::size_t( inSeverity )];
}

std::span<const MLoadRuleRow, kMLoadRuleCount> MLoadRules()
{
    return kRules;
}

const MLoadRuleRow& RowOf( MLoadRule inRule )
{
    return kRules[std::size_t( inRule )];
}

std::optional<MLoadRule> MLoadRuleNamed( std::string_view inID )
{
    const auto* const row = std::ranges::find( kRules, inID, &MLoadRuleRow::mID );
    return row == std::end( kRules ) ? std::nullopt : std::optional( row->mRule );
}

std::vector<std::string> MLoadRulesNear( std::string_view inID )
{
    constexpr std::size_t kMost = 3, kLongest = 64;
    if ( inID.empty() or inID.size() > kLongest )
        return {};
    std::vector<std::pair<std::size_t, std::string_view>> near;
    for ( const MLoadRuleRow& row : kRules )
    {
        const std::size_t distance = Distance( inID, row.mID );
        // A part of an identifier is what people remember, so it counts however much is missing.
        if ( row.mID.find( inID ) != std::string_view::npos )
            near.emplace_back( 0, row.mID );
        else if ( distance <= std::max<std::size_t>( 2, row.mID.size() / 3 ) )
            near.emplace_back( distance, row.mID );
    }
    std::ranges::stable_sort( near, {}, &std::pair<std::size_t, std::string_view>::first );
    std::vector<std::string> result;
    for ( const auto& [distance, id] : near )
    {
        if ( result.size() < kMost )
            result.emplace_back( id );
    }
    return result;
}

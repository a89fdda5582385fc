// What decides a flow-control action: conditions, and how many of them must hold. A value, which owns its conditions
// and clones them when it is copied. Main thread.
#pragma once

#include "CFMethods/ClonePtr.h"
#include "Conditions/CBaseCondition.h"

#include <iterator>
#include <span>
#include <vector>

enum class ConditionListMatch : std::int32_t { kAny, kAll, kNone, kNotAll };
inline constexpr TextView kConditionListMatchNames[] = { u"Any", u"All", u"None", u"NotAll" };
static_assert( std::size( kConditionListMatchNames ) == std::size_t( ConditionListMatch::kNotAll ) + 1 );
constexpr auto NamesOf( ConditionListMatch )
{
    return std::span( kConditionListMatchNames );
}

class CConditionList
{
public:
    /// As a required field of its holder, under "Conditions". What a search can find is that of each condition.
    void DescribeIn( HFieldVisitor& inVisitor );
    /// A value that is no dictionary leaves no conditions, of which all must hold. A condition that can't be understood
    /// is left out, and no log line speaks of it.
    void LoadFromPropertyList( const __SafeCFPropertyList& inValue );
    [[nodiscard]] CFContainer<XPlistDictionary> CopyToPropertyList() const;

    [[nodiscard]] std::size_t GetCount() const { return mConditions.size(); }
    [[nodiscard]] bool Empty() const { return mConditions.empty(); }
    [[nodiscard]] ConditionListMatch GetMatch() const { return mMatch; }
    void SetMatch( ConditionListMatch inMatch ) { mMatch = inMatch; }

    // An index that is none, or no condition, is asserted, and nothing happens.
    [[nodiscard]] CBaseCondition* GetConditionAtIndex( std::size_t inIndex ) const;
    /// The condition that stood there is freed.
    void SetConditionAtIndex( std::size_t inIndex, std::unique_ptr<CBaseCondition> inCondition );
    void AppendCondition( std::unique_ptr<CBaseCondition> inCondition );
    void RemoveConditionAtIndex( std::size_t inIndex );

    /// The localised title of the match mode.
    [[nodiscard]] Text GetConditionDisplayText() const;
    /// For each condition a dictionary of "description", "icon" and, for one that holds an image, "extraicon": the last
    /// two in the form that icons are saved in.
    [[nodiscard]] CFContainer<XPlistArray> GetConditionDisplayContent() const;
    /// The conditions in words, to stand behind "If" or "While": the only one itself, or the title of the match
    /// mode and each of them. "" without any.
    [[nodiscard]] Text GetDescription() const;
    /// The description of each condition; none unless there are several.
    [[nodiscard]] std::vector<Text> GetClauses() const;

    // Handed on to each condition, in order.
    void UpdateToDefaultValues( bool inForce );
    void UpdateForPasteOrAdd();
    void AddMatchStrings( StringSearchee& ioSearchee ) const;

private:
    void LoadConditions( const XPlistArray& inConditions );
    [[nodiscard]] bool IsIndex( std::size_t inIndex ) const;

    std::vector<ClonePtr<CBaseCondition>> mConditions;
    ConditionListMatch mMatch = ConditionListMatch::kAll;
};

// What decides a flow-control action: conditions and how many of them must hold. The conditions
// themselves are kept as the file has them until their classes are written, so that whatever is read is
// written back as it stood. A value of the main thread.
#pragma once

#include "CFMethods/PropertyList.h"

#include <iterator>
#include <span>

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
    /// No conditions, of which all must hold.
    CConditionList();

    void LoadFromPropertyList( const __SafeCFPropertyList& inValue ) { mValue = inValue; }
    [[nodiscard]] __SafeCFPropertyList CopyToPropertyList() const { return mValue; }

    [[nodiscard]] std::size_t GetCount() const;
    [[nodiscard]] bool Empty() const { return GetCount() == 0; }
    /// All, unless the list says otherwise.
    [[nodiscard]] ConditionListMatch GetMatch() const;
    /// The localised title of the match mode.
    [[nodiscard]] Text GetConditionDisplayText() const;

private:
    __SafeCFPropertyList mValue; // never null
};

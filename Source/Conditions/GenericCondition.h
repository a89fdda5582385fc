// The operators that all text-like tests share: of conditions, and of the cases of a switch. Stored by
// name. Values.
#pragma once

#include "CFMethods/PropertyList.h"

#include <iterator>
#include <span>
#include <vector>

enum class GenericConditionType : std::int32_t {
    kReturnsSuccess,
    kReturnsError,
    kReturnsStatus,
    kIsOK,
    kIsNotOK,
    kHasText,
    kDoesNotHaveText,
    kHasImage,
    kDoesNotHaveImage,
    kExists,
    kDoesNotExist,
    kIsEmpty,
    kIsNotEmpty,
    kIs,
    kIsNot,
    kContains,
    kDoesNotContain,
    kStartsWith,
    kEndsWith,
    kIsBefore,
    kIsAfter,
    kMatches,
    kDoesNotMatch,
    kLessThan,
    kLessThanOrEqual,
    kEqual,
    kGreaterThanOrEqual,
    kGreaterThan,
    kNotEqual,
    kConformsTo,
    kDoesNotConformTo,
    kOtherwise, ///< the catch-all of a case entry; never a condition's own operator
};
inline constexpr TextView kGenericConditionNames[] = { u"ReturnsSuccess", u"ReturnsError", u"ReturnsStatus", u"IsOK",
    u"IsNotOK", u"HasText", u"DoesNotHaveText", u"HasImage", u"DoesNotHaveImage", u"Exists", u"DoesNotExist",
    u"IsEmpty", u"IsNotEmpty", u"Is", u"IsNot", u"Contains", u"DoesNotContain", u"StartsWith", u"EndsWith", u"IsBefore",
    u"IsAfter", u"Matches", u"DoesNotMatch", u"LessThan", u"LessThanOrEqual", u"Equal", u"GreaterThanOrEqual",
    u"GreaterThan", u"NotEqual", u"ConformsTo", u"DoesNotConformTo", u"Otherwise" };
static_assert( std::size( kGenericConditionNames ) == std::size_t( GenericConditionType::kOtherwise ) + 1 );
constexpr auto NamesOf( GenericConditionType )
{
    return std::span( kGenericConditionNames );
}

/// What stands before the operator in a description.
enum class GenericConditionAddText : std::int32_t { kNothing, kText, kResult };

/// Where a text comes from; Actions/ActionFieldParts.h.
enum class ActionTextSourceType : std::int32_t;

class GenericCondition
{
public:
    constexpr GenericCondition( GenericConditionType inType ) : mType( inType ) {}

    [[nodiscard]] constexpr GenericConditionType GetType() const { return mType; }
    [[nodiscard]] bool RequiresValue() const;
    [[nodiscard]] bool RequiresStatus() const { return mType == GenericConditionType::kReturnsStatus; }
    /// Is the operator offered for texts from such a source? Asking for one that no source has, or for a source that
    /// is none, is asserted.
    [[nodiscard]] static bool AppliesTo( GenericCondition inCondition, ActionTextSourceType inSource );

    /// By name.
    void SaveToDictionary( XMutableDictionary& ioDictionary, const XKey& inKey ) const;
    /// The default for a value that is absent or no name.
    void LoadFromDictionary( const XPlistDictionary& inDictionary, const XKey& inKey, GenericConditionType inDefault );

    /// The operator's item in a menu.
    [[nodiscard]] Text GetMenuTitle() const;
    /// The operator with the value or the status that it compares with.
    [[nodiscard]] Text GetDescription( const XText& inValue, std::int64_t inStatus = 0,
        GenericConditionAddText inAdd = GenericConditionAddText::kNothing ) const;
    /// The value, if it could be meant as a regular expression.
    [[nodiscard]] std::vector<Text> CouldBeIntendedRegExStrings( const XText& inValue ) const;

private:
    GenericConditionType mType;
};

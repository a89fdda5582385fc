// For which applications a group is available, and what the front window must be like. Main thread.
#pragma once

#include "CFMethods/PropertyList.h"
#include "Triggers/ApplicationTriggerFireType.h"
#include "XCAF/XApplicationIdentifier.h"

#include <span>
#include <string_view>

enum class MacroAppTargetType { kAll, kIncluded, kExcluded, kRunning, kRunningNotActive, kNotRunning };

inline constexpr std::string_view kMacroAppTargetTypeNames[] = { "All", "Included", "Excluded", "Running",
    "RunningNotActive", "NotRunning" };
static_assert( std::size( kMacroAppTargetTypeNames ) == std::size_t( MacroAppTargetType::kNotRunning ) + 1 );

class MMacroAppTarget
{
public:
    MMacroAppTarget() = default;

    [[nodiscard]] MacroAppTargetType GetType() const { return mType; }
    void SetType( MacroAppTargetType inType ) { mType = inType; }
    [[nodiscard]] const XApplicationList& GetApplications() const { return mApplications; }
    void SetApplications( XApplicationList inApplications ) { mApplications = std::move( inApplications ); }

    /// An unknown type is All; a list that is no array is empty. Throws when the value is no dictionary.
    void LoadFromPropertyList( const __SafeCFPropertyList& inValue );
    [[nodiscard]] __SafeCFPropertyList CopyToPropertyList() const;

    /// 0 when the types are the same and, for a type other than All, the application lists are too.
    [[nodiscard]] int CompareWithSame( const MMacroAppTarget& inOther ) const;
    /// Can an application trigger of this kind, for this application, ever fire in such a group?
    [[nodiscard]] bool CanTriggerFor(
        ApplicationTriggerFireType inFireType, const XApplicationIdentifier& inApplication ) const;
    /// True, with the application, when the target is exactly one included application.
    [[nodiscard]] bool TargetOneApplication( XApplicationIdentifier& outApplication ) const;
    /// The sentence for people, with the names of the applications.
    [[nodiscard]] Text GetDescription() const;
    void AddMatchStrings( class StringSearchee& ioSearchee ) const;

private:
    MacroAppTargetType mType = MacroAppTargetType::kAll;
    XApplicationList mApplications;
};

enum class FrontWindowConditionType {
    kAlways,
    kExists,
    kDoesNotExist,
    kTitleIs,
    kTitleIsNot,
    kExistsButTitleIsNot,
    kTitleContains,
    kTitleDoesNotContain,
    kExistsButTitleDoesNotContain,
    kTitleMatches,
    kTitleDoesNotMatch,
    kExistsButTitleDoesNotMatch,
    kIsFullScreen,
    kIsNotFullScreen,
    kExistsButIsNotFullScreen,
};

inline constexpr TextView kFrontWindowConditionTypeNames[] = { u"Always", u"Exists", u"DoesNotExist", u"TitleIs",
    u"TitleIsNot", u"ExistsButTitleIsNot", u"TitleContains", u"TitleDoesNotContain", u"ExistsButTitleDoesNotContain",
    u"TitleMatches", u"TitleDoesNotMatch", u"ExistsButTitleDoesNotMatch", u"IsFullScreen", u"IsNotFullScreen",
    u"ExistsButIsNotFullScreen" };
static_assert( std::size( kFrontWindowConditionTypeNames ) ==
    std::size_t( FrontWindowConditionType::kExistsButIsNotFullScreen ) + 1 );
constexpr auto NamesOf( FrontWindowConditionType )
{
    return std::span( kFrontWindowConditionTypeNames );
}

class MFrontWindowCondition
{
public:
    MFrontWindowCondition() = default;
    MFrontWindowCondition( FrontWindowConditionType inType, const XText& inTitle );

    [[nodiscard]] FrontWindowConditionType GetType() const { return mType; }
    [[nodiscard]] const XText& GetTitle() const { return mTitle; } ///< "" when the type needs none
    /// Does the type ask for a title? Only then is one kept.
    [[nodiscard]] bool NeedsFrontWindowTitle() const { return NeedsFrontWindowTitle( mType ); }
    [[nodiscard]] static bool NeedsFrontWindowTitle( FrontWindowConditionType inType );
    /// A condition that stands for "none given" may only be Always or Exists.
    [[nodiscard]] static bool ValidDefault( FrontWindowConditionType inType );

    /// Reads the two keys; an absent or unknown type gives the default.
    void LoadFromDictionary( const XPlistDictionary& inDictionary, const XKey& inTypeKey, const XKey& inTitleKey,
        FrontWindowConditionType inDefault );
    /// Writes the type unless it is the default, and the title where the type needs one.
    void SaveToDictionary( XMutableDictionary& ioDictionary, const XKey& inTypeKey, const XKey& inTitleKey,
        FrontWindowConditionType inDefault ) const;
    /// By type, then by title where one counts: -1, 0 or 1.
    [[nodiscard]] int CompareWithSame( const MFrontWindowCondition& inOther ) const;
    [[nodiscard]] Text GetDescription() const;

private:
    FrontWindowConditionType mType = FrontWindowConditionType::kAlways;
    XText mTitle = u"";
};

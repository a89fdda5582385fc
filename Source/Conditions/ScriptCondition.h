// The condition that runs a script, and looks at how it ended or what it gave.
#pragma once

#include "Conditions/CBaseCondition.h"
#include "Conditions/GenericCondition.h"

/// Each language comes as a text and as a file.
enum class ScriptConditionSourceType : std::int32_t {
    kAppleScriptText,
    kAppleScriptFile,
    kShellScriptText,
    kShellScriptFile,
    kSwiftScriptText,
    kSwiftScriptFile,
    kJavaScriptText,
    kJavaScriptFile,
    kJavaScriptBrowserText,
    kJavaScriptBrowserFile,
};
inline constexpr TextView kScriptConditionSourceTypeNames[] = { u"AppleScriptText", u"AppleScriptFile",
    u"ShellScriptText", u"ShellScriptFile", u"SwiftScriptText", u"SwiftScriptFile", u"JavaScriptText",
    u"JavaScriptFile", u"JavaScriptBrowserText", u"JavaScriptBrowserFile" };
static_assert( std::size( kScriptConditionSourceTypeNames ) ==
    std::size_t( ScriptConditionSourceType::kJavaScriptBrowserFile ) + 1 );
constexpr auto NamesOf( ScriptConditionSourceType )
{
    return std::span( kScriptConditionSourceTypeNames );
}

class CScriptCondition final : public CConditionOf<CScriptCondition, ConditionType::kScript>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;

private:
    [[nodiscard]] bool IsFile() const { return std::int32_t( mSource ) % 2 == 1; }

    ScriptConditionSourceType mSource = ScriptConditionSourceType::kAppleScriptText;
    GenericConditionType mType = GenericConditionType::kReturnsSuccess;
    XText mScript = SharedText<u"true">();
    XText mPath = SharedText<u"">();
    XText mResult = SharedText<u"">(); // what the result is compared with
    std::int32_t mTerminationStatus = 0;
};

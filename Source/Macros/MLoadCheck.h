// What loading a file and saving it again would do to it: what would be lost, and what would be written otherwise.
// It doesn't predict: it loads into a domain of its own making, saves, and compares, so that nothing can be
// overlooked; what the loaders tell an observer gives the reasons. Main thread, while no domain exists.
#pragma once

#include "CFMethods/PropertyList.h"
#include "Macros/MLoadRules.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

/// What a file holds, told by its content.
enum class MFileKind { kMacrosFile, kMacrosExport, kActionsExport, kLibrary };

/// "macros file", "kvmacros" and so on, for people.
[[nodiscard]] const char* NameOf( MFileKind inKind );

struct MFinding
{
    MLoadRule mRule;
    Text mPath; ///< for people: "Global Macro Group › Paste plain › action 3"
    Text mKey;  ///< "" when the finding is about the element itself
    Text mText; ///< the reason or the change, one clause

    /// Something that the file said would be gone.
    [[nodiscard]] bool IsLoss() const { return RowOf( mRule ).mLoses; }
};

struct MFileContents
{
    std::size_t mGroups = 0, mSmartGroups = 0, mMacros = 0, mTriggers = 0, mActions = 0;
    std::map<std::string, std::size_t> mTriggersByKind, mActionsByType; ///< by stored name
};

struct MFileCheck
{
    MFileKind mKind = MFileKind::kMacrosFile;
    MFileContents mContents;
    std::vector<MFinding> mFindings; ///< in the order of the file

    [[nodiscard]] bool LosesSomething() const;
};

/// Absent when the value is none of the kinds of file that hold macros or actions.
[[nodiscard]] std::optional<MFileKind> FileKindOf( const __SafeCFPropertyList& inValue );

/// Throws XException when the value can't be loaded at all.
[[nodiscard]] MFileCheck CheckFile( const __SafeCFPropertyList& inValue );

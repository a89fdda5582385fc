// The bytes of a macros file, such as a revision or what was set aside, looked at without a domain: the running editor may
// look, too, and nothing is upgraded, dropped or logged as a load would. Main thread.
#pragma once

#include "App/Output.h"
#include "MacrosWindow/MacroEditing.h"

#include <span>
#include <string>
#include <vector>

struct SavedObject
{
    enum class Kind : std::uint8_t { kSmartGroup, kGroup, kMacro };

    Kind mKind = Kind::kGroup;
    Text mName; ///< of a macro without one, what it would be called
    XText mUID;
    bool mIsActive = true;
    __SafeCFPropertyList mValue;
    __SafeCFPropertyList mGroup; ///< of a macro
    Text mGroupName;             ///< of a macro
    std::size_t mMacroCount = 0; ///< of a group

    /// "Group › Macro", or the name; UTF-8.
    [[nodiscard]] std::string Place() const;
    [[nodiscard]] XMutableDictionary Facts() const;
    [[nodiscard]] MacroEditing::Restorable ForRestoring() const { return { mValue, mGroup }; }
};

class SavedMacros
{
public:
    /// Throws FileTrouble for bytes that are no macros file. The words say what it is, for sentences.
    SavedMacros( std::span<const std::uint8_t> inBytes, std::string inWords );

    [[nodiscard]] const __SafeCFPropertyList& GetValue() const { return mValue; }
    [[nodiscard]] const std::string& GetWords() const { return mWords; }
    /// Smart groups, then each group with its macros, in the file's order.
    [[nodiscard]] std::vector<SavedObject> Objects() const;
    /// Those with this name or UID, without regard to case; the one with the UID alone if there is one.
    [[nodiscard]] std::vector<SavedObject> Find( const std::string& inNameOrUID ) const;

    void Print( bool inAsJSON, Output& ioOutput ) const;
    /// Compares with a later state, leaving out what every save writes anew; by path, in which groups and macros are named.
    /// The result is the number of differences.
    std::uint64_t PrintDifferencesTo( const SavedMacros& inLater, bool inAsJSON, Output& ioOutput ) const;

private:
    __SafeCFPropertyList mValue;
    std::string mWords;
};

/// The macros file as it is on disk. Throws FileTrouble.
[[nodiscard]] SavedMacros ReadPresentMacros();

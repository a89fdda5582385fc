// What can be searched of one macro, group or smart group: collected when it is first asked for, and kept until
// the object says that its words changed. Words also name other objects ("Execute Macro “Tea”"), so each
// collection remembers whose names it asked for, and is void once one of them has another name. The object
// owns it. Main thread.
#pragma once

#include "CFMethods/PropertyList.h"
#include "Utility/Search/SearchableTexts.h"

#include <memory>
#include <vector>

class MMacroSerializedObject;

class MSearchTexts
{
public:
    /// Until the next change of anything.
    [[nodiscard]] const SearchableTexts& Get( const MMacroSerializedObject& inObject ) const;
    void Forget() { mTexts = {}; }

    /// An object was looked up by its UID, found or not: a collection that goes on depends on it.
    static void DidLookUp( const XText& inUID );
    /// The object of the UID appeared, went, or is called otherwise.
    static void DidChange( const XText& inUID );
    /// Everything is collected anew, as when a change can't be laid to an object.
    static void ForgetAll();

    /// How often anything was collected.
    [[nodiscard]] static std::uint64_t GetCollectionCount();

    /// The object of a UID, by the count of its changes, and what that was when it was looked up.
    struct Dependency
    {
        const std::uint32_t* mCount;
        std::uint32_t mSeen;
    };
    using Dependencies = std::vector<Dependency>;

private:
    [[nodiscard]] bool IsValid() const;
    void Collect( const MMacroSerializedObject& inObject ) const;

    // Beside each other and within the object, as a search has to look at them for each one.
    mutable SearchableTexts mTexts;
    mutable std::unique_ptr<const Dependencies> mDependencies; // null for none
    mutable std::uint32_t mChangesSeen = 0, mForgottenSeen = 0;
};

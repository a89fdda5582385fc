// What can be searched of one macro, group or smart group: collected when it is first asked for, and kept until
// the object says that its words changed. Words also name other objects ("Execute Macro “Tea”"), so each
// collection remembers whose names it asked for, and is void once one of them has another name. The object
// owns it; an object that nobody searches pays a pointer. Main thread.
#pragma once

#include "CFMethods/PropertyList.h"

#include <memory>

class MMacroSerializedObject;
class SearchableTexts;

class MSearchTexts
{
public:
    MSearchTexts();
    ~MSearchTexts();

    /// Until the next change of anything.
    [[nodiscard]] const SearchableTexts& Get( const MMacroSerializedObject& inObject ) const;
    void Forget();

    /// An object was looked up by its UID, found or not: a collection that goes on depends on it.
    static void DidLookUp( const XText& inUID );
    /// The object of the UID appeared, went, or is called otherwise.
    static void DidChange( const XText& inUID );
    /// Everything is collected anew, as when a change can't be laid to an object.
    static void ForgetAll();

private:
    struct Collected;
    [[nodiscard]] static bool IsValid( Collected& ioCollected );

    mutable std::unique_ptr<Collected> mCollected;
};

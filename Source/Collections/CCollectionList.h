// What a For action runs over: collections, one after another. They are kept as the file has them until
// their classes are written, so that whatever is read is written back as it stood. A value of the main
// thread.
#pragma once

#include "CFMethods/PropertyList.h"

class CCollectionList
{
public:
    /// No collections.
    CCollectionList();

    void LoadFromPropertyList( const __SafeCFPropertyList& inValue ) { mValue = inValue; }
    [[nodiscard]] __SafeCFPropertyList CopyToPropertyList() const { return mValue; }

    [[nodiscard]] std::size_t GetCount() const;

private:
    __SafeCFPropertyList mValue; // never null
};

// What a For action runs over: collections, one after another. A value of the main thread; a copy holds
// clones.
#pragma once

#include "CFMethods/ClonePtr.h"
#include "Collections/CBaseCollection.h"

#include <vector>

class CCollectionList
{
public:
    /// A dictionary with the one key "CollectionList".
    [[nodiscard]] __SafeCFPropertyList CopyToPropertyList() const;
    /// Replaces the list. A collection that can't be understood is left out, silently but for the load observer; a
    /// value that is no such dictionary gives an empty list.
    void LoadFromPropertyList( const __SafeCFPropertyList& inValue );

    [[nodiscard]] std::size_t GetCount() const { return mCollections.size(); }
    [[nodiscard]] bool Empty() const { return mCollections.empty(); }
    // An index beyond the end is an assertion; nothing is changed then.
    /// Null beyond the end.
    [[nodiscard]] CBaseCollection* GetCollectionAtIndex( std::size_t inIndex ) const;
    void SetCollectionAtIndex( std::size_t inIndex, std::unique_ptr<CBaseCollection> inCollection );
    void AppendCollection( std::unique_ptr<CBaseCollection> inCollection );
    void RemoveCollectionAtIndex( std::size_t inIndex );

    void UpdateToDefaultValues( bool inForce );
    /// What an editor shows: a dictionary of "description" and "icon" (its saved form) for each collection.
    [[nodiscard]] CFContainer<XPlistArray> GetCollectionDisplayContent() const;
    /// The descriptions as one clause: "The Numbers from 1 to 10 and The Variables".
    [[nodiscard]] Text GetDescription() const;
    void AddMatchStrings( StringSearchee& ioSearchee ) const;

private:
    std::vector<ClonePtr<CBaseCollection>> mCollections; // none is null
};

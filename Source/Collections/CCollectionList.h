// What a For action runs over: collections, one after another. A value of the main thread; a copy holds
// clones.
#pragma once

#include "CFMethods/ClonePtr.h"
#include "Collections/CBaseCollection.h"

#include <vector>

class CCollectionList
{
public:
    /// As a required field of its holder, under "Collections". What a search can find is that of each collection.
    void DescribeIn( HFieldVisitor& inVisitor );
    /// A dictionary with the one key "CollectionList".
    [[nodiscard]] CFContainer<XPlistDictionary> CopyToPropertyList() const;
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
    /// The collections in words, to stand behind "in": "The Numbers from 1 to 10, Then The Running Applications". ""
    /// without any.
    [[nodiscard]] Text GetDescription() const;
    /// The description of each collection; none unless there are several.
    [[nodiscard]] std::vector<Text> GetClauses() const;
    void AddMatchStrings( StringSearchee& ioSearchee ) const;

private:
    void LoadCollections( const XPlistArray& inCollections );

    std::vector<ClonePtr<CBaseCollection>> mCollections; // none is null
};

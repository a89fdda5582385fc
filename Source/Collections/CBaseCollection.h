// What a For action runs its actions over: a sequence of values. This program stores, edits, describes and
// searches collections; walking them is the engine's, but for the lines and substrings of a text (LinesIn.h,
// SubstringsIn.h). A concrete collection derives from CCollectionOf and states its fields in DescribeFields.
// Owned by one list. Main thread.
#pragma once

#include "Actions/HFieldVisitor.h"
#include "Collections/CollectionType.h"

#include <memory>

class StringSearchee;
class XIcon;

class CBaseCollection
{
public:
    virtual ~CBaseCollection() = default;

    /// A new collection with default values; null for a number that is no type.
    [[nodiscard]] static std::unique_ptr<CBaseCollection> Create( CollectionType inType );
    /// The type's own fields are read from the dictionary, whatever type that names.
    [[nodiscard]] static std::unique_ptr<CBaseCollection> Create(
        CollectionType inType, const XPlistDictionary& inDictionary );
    /// Throws XException for what can't be understood: no dictionary, an unknown type.
    [[nodiscard]] static std::unique_ptr<CBaseCollection> CreateFromPropertyList( const __SafeCFPropertyList& inValue );
    /// The type and its fields.
    [[nodiscard]] CFContainer<XPlistDictionary> CopyToPropertyList() const;
    [[nodiscard]] virtual std::unique_ptr<CBaseCollection> Clone() const = 0;

    /// Each field once, with its key.
    virtual void DescribeFields( HFieldVisitor& inVisitor );
    virtual void SaveSubclassToDictionary( XMutableDictionary& ioDictionary ) const;
    virtual void LoadSubclassFromDictionary( const XPlistDictionary& inDictionary );

    /// Negative, 0 or positive: by type, then by fields.
    [[nodiscard]] int CompareWith( const CBaseCollection& inOther ) const;
    /// The same among collections of one type.
    [[nodiscard]] virtual int CompareWithSame( const CBaseCollection& inOther ) const;

    [[nodiscard]] virtual CollectionType GetCollectionType() const = 0;
    /// Follows renamed clipboards of the text or image that is looked at.
    virtual void UpdateToDefaultValues( bool inForce );

    /// What stands above the fields of such a collection while it is edited.
    [[nodiscard]] virtual Text GetCollectionEditorDescription() const;
    /// The name of the type.
    [[nodiscard]] virtual Text GetCollectionTypeDescription() const;
    /// What this collection holds: "The Numbers from 1 to 10".
    [[nodiscard]] virtual Text GetDescription() const;
    [[nodiscard]] virtual XIcon GetXIcon() const;
    virtual void AddMatchStrings( StringSearchee& ioSearchee ) const;
    /// The name of the type's page in the help.
    [[nodiscard]] virtual Text WikiName() const;

protected:
    CBaseCollection() = default;
    CBaseCollection( const CBaseCollection& ) = default;
    CBaseCollection& operator=( const CBaseCollection& ) = default;
};

/// What a concrete class gets for naming itself and its type.
template<class Collection, CollectionType kType>
class CCollectionOf : public CBaseCollection
{
public:
    [[nodiscard]] CollectionType GetCollectionType() const override { return kType; }
    [[nodiscard]] std::unique_ptr<CBaseCollection> Clone() const override
    {
        return std::make_unique<Collection>( static_cast<const Collection&>( *this ) );
    }
};

// What a For action runs its actions over: a sequence of values. This program stores, edits, describes and
// searches collections; walking them is the engine's, but for the lines and substrings of a text (LinesIn.h,
// SubstringsIn.h). A concrete collection derives from CCollectionOf and states its fields in DescribeFields; what is
// known of its type beside them is a row of the table in CBaseCollection.cpp. A collection is owned by exactly one list,
// or by the caller that received it. Main thread.
#pragma once

#include "Actions/HFieldVisitor.h"
#include "Collections/CollectionType.h"

#include <filesystem>
#include <memory>

class StringSearchee;
class XIcon;

class CBaseCollection
{
public:
    // What a type says. The defaults go by the described fields and by the type's row and texts.

    /// The type's own keys.
    virtual void SaveSubclassToDictionary( XMutableDictionary& ioDictionary ) const;
    /// Fills a fresh collection. No key is required.
    virtual void LoadSubclassFromDictionary( const XPlistDictionary& inDictionary );
    /// Orders two collections of one type, by the first field that differs: negative, 0 or positive.
    [[nodiscard]] virtual int CompareWithSame( const CBaseCollection& inOther ) const;
    virtual ~CBaseCollection() = default;
    [[nodiscard]] virtual std::unique_ptr<CBaseCollection> Clone() const = 0;
    [[nodiscard]] virtual CollectionType GetCollectionType() const = 0;
    /// Refreshes what refers to other objects, such as a named clipboard.
    virtual void UpdateToDefaultValues( bool ) {}
    /// What stands above the fields of such a collection while it is edited.
    [[nodiscard]] virtual Text GetCollectionEditorDescription() const;
    /// The name of the type.
    [[nodiscard]] virtual Text GetCollectionTypeDescription() const;
    /// What this collection holds: "The Numbers from 1 to 10".
    [[nodiscard]] virtual Text GetDescription() const;
    [[nodiscard]] virtual XIcon GetXIcon() const;
    /// What the editor is headed with, the type's name, the description, and the values that the latter leaves out or
    /// cuts off.
    virtual void AddMatchStrings( StringSearchee& ioSearchee ) const;
    /// The name of the type's page in the help.
    [[nodiscard]] virtual Text WikiName() const;
    /// Each field once, with its key.
    virtual void DescribeFields( HFieldVisitor& inVisitor );

    // Making

    /// A new collection with default values; null for a number that is no type.
    [[nodiscard]] static std::unique_ptr<CBaseCollection> Create( CollectionType inType );
    /// The type's own fields are read from the dictionary, whatever type that names.
    [[nodiscard]] static std::unique_ptr<CBaseCollection> Create(
        CollectionType inType, const XPlistDictionary& inDictionary );
    /// Throws XException for what can't be understood: no dictionary, an unknown type.
    [[nodiscard]] static std::unique_ptr<CBaseCollection> CreateFromPropertyList( const __SafeCFPropertyList& inValue );

    /// "CollectionType" and the type's own keys.
    [[nodiscard]] CFContainer<XPlistDictionary> CopyToPropertyList() const;
    /// By type, -1 or 1, then by CompareWithSame.
    [[nodiscard]] int CompareWith( const CBaseCollection& inOther ) const;

    /// The catalogue of collections for those who write the help: "Collections.txt" in the folder, in the form that
    /// Actions/WikiHelpData.h tells. False when it can't be written.
    static bool WriteWikiHelpData( const std::filesystem::path& inFolder );

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

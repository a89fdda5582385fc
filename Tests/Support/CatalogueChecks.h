// What every family of stored types has to keep, by its catalogue: a family says how its objects are made, and
// instantiates TypeCatalogueTest with itself.
#pragma once

#include "Tests/Support/TypeCatalogue.h"
#include "Utility/Search/StringSearchee.h"

#include <gtest/gtest.h>
#include <span>

/// An object of a family.
class CatalogueObject
{
public:
    virtual ~CatalogueObject() = default;
    [[nodiscard]] virtual __SafeCFPropertyList Save() const = 0;
    [[nodiscard]] virtual std::unique_ptr<CatalogueObject> Clone() const = 0;
    /// The other is of the same family.
    [[nodiscard]] virtual int Compare( const CatalogueObject& inOther ) const = 0;
    [[nodiscard]] virtual Text TypeTitle() const = 0;
    [[nodiscard]] virtual Text Description() const = 0;
    virtual void AddMatchStrings( StringSearchee& ioSearchee ) const = 0;
    /// What a search must find it by.
    [[nodiscard]] virtual std::vector<Text> WordsToFind() const { return { TypeTitle(), Description() }; }
    [[nodiscard]] virtual bool IsUseless() const { return false; }
};

class CatalogueFamily
{
public:
    /// The key that tells the type, the file below the folder of the tests, and the types in their order.
    CatalogueFamily( const char* inTypeKey, const char* inFile, std::vector<std::string> ( *inTypes )() )
        : mTypeKey( inTypeKey ),
          mFile( inFile ),
          mTypes( inTypes )
    {}
    virtual ~CatalogueFamily() = default;

    [[nodiscard]] const std::string& TypeKey() const { return mTypeKey; }
    [[nodiscard]] std::vector<std::string> Types() const { return mTypes(); }
    [[nodiscard]] const TypeCatalogue& Catalogue() const
    {
        if ( not mCatalogue )
            mCatalogue.emplace( mFile );
        return *mCatalogue;
    }
    [[nodiscard]] virtual std::unique_ptr<CatalogueObject> New( std::size_t inType ) const = 0;
    /// Throws XException.
    [[nodiscard]] virtual std::unique_ptr<CatalogueObject> Read( const __SafeCFPropertyList& inValue ) const = 0;
    /// What the family itself adds to what an object of a type saves.
    [[nodiscard]] virtual __SafeCFPropertyList WithBase(
        const CatalogueType&, const __SafeCFPropertyList& inSaved ) const
    {
        return inSaved;
    }

private:
    std::string mTypeKey, mFile;
    std::vector<std::string> ( *mTypes )(); // asked for late: tables of other files may not be made yet
    mutable std::optional<TypeCatalogue> mCatalogue;
};

class TypeCatalogueTest : public testing::TestWithParam<const CatalogueFamily*>
{
protected:
    using Value = __SafeCFPropertyList;

    [[nodiscard]] const CatalogueFamily& Family() const { return *GetParam(); }
    [[nodiscard]] const std::vector<CatalogueType>& Types() const { return Family().Catalogue().Types(); }
    /// The dictionary as that of an object of the type.
    [[nodiscard]] Value Typed( const CatalogueType& inType, const Value& inDictionary ) const;
    /// What the catalogue says that reading the dictionary saves; of null, what a new object saves.
    [[nodiscard]] Value Expected( const CatalogueType& inType, const Value& inDictionary ) const;
    void ExpectSaved(
        const CatalogueType& inType, const Value& inExpected, const Value& inSaved, const std::string& inWhat ) const;
    /// Reads the keys and expects that saving gives what the catalogue says. Null when they can't be read.
    std::unique_ptr<CatalogueObject> ExpectRead(
        const CatalogueType& inType, const Value& inDictionary, const std::string& inWhat ) const;
    [[nodiscard]] std::string ReadFailure( const Value& inDictionary ) const;
};

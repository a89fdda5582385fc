// The catalogues of types, as data files that a person wrote from the rules for stored files, and what they say
// of any dictionary: what reading and saving it must give. FieldCatalogue.txt tells their form.
#pragma once

#include "CFMethods/PropertyList.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct CatalogueRow;
using CatalogueRows = std::vector<CatalogueRow>;

/// A key and the words that its value may be: stored names, or "true" and "false".
struct CatalogueWhen
{
    std::string mKey;
    std::vector<std::string> mWords;

    [[nodiscard]] bool Has( const std::string& inWord ) const;
};

struct CatalogueRow
{
    std::string mKey, mKind;
    __SafeCFPropertyList mNew;                    ///< of a new object; null where the key isn't there at first
    std::optional<__SafeCFPropertyList> mMissing; ///< where that differs
    std::vector<std::string> mNames;
    std::shared_ptr<const CatalogueRows> mPart; ///< of a dictionary of its own
    std::string mOlderKey, mOlderKind;
    std::vector<CatalogueWhen> mWhens;
    std::optional<std::string> mUnless;
    std::optional<std::string> mRequiredAs; ///< the beginning of the message, or all of it
    CatalogueWhen mNotRequired;
    std::int32_t mMask = -1;
    std::int64_t mLow = INT32_MIN, mHigh = INT32_MAX;
    std::vector<__SafeCFPropertyList> mValues;
    bool mSpecial = false, mUncompared = false, mClears = false, mAlsoKept = false;

    [[nodiscard]] __SafeCFPropertyList Missing() const { return mMissing.value_or( mNew ); }
    [[nodiscard]] bool IsText() const;
    /// What is stored for a value of the file; null when it is none for this key.
    [[nodiscard]] __SafeCFPropertyList Read( const __SafeCFPropertyList& inValue ) const;
    [[nodiscard]] __SafeCFPropertyList ReadOlder( const __SafeCFPropertyList& inValue ) const;
    /// Values that must come back when they are stored: each name of a vocabulary, for one.
    [[nodiscard]] std::vector<__SafeCFPropertyList> TypicalValues() const;
    [[nodiscard]] std::vector<__SafeCFPropertyList> OlderValues() const;
};

struct CatalogueExample
{
    std::string mLine;
    __SafeCFPropertyList mReads, mSaves;
};

struct CatalogueType
{
    std::string mKey;
    std::vector<std::string> mWords; ///< what stands behind the key
    CatalogueRows mRows;
    std::vector<CatalogueExample> mExamples;
    std::string mUpgradesTo;
    std::vector<std::vector<std::string>> mTraits;
    std::vector<std::string> mNever, mOlderNames;
    std::vector<CatalogueExample> mUseless, mUseful;
    bool mNewIsUseless = false, mNewIsUseful = false;
};

class TypeCatalogue
{
public:
    /// The file below the folder of the tests. Throws std::runtime_error with the line that it can't read.
    explicit TypeCatalogue( const std::string& inFile );

    [[nodiscard]] const std::vector<CatalogueType>& Types() const { return mTypes; }
    [[nodiscard]] const CatalogueType& Find( std::string_view inKey ) const;

private:
    class Reader;
    std::vector<CatalogueType> mTypes;
};

/// What reading the dictionary saves, by the rows; of null, what a new object saves. Required keys that are
/// missing have the values of a new object.
[[nodiscard]] __SafeCFPropertyList CatalogueSaves(
    const CatalogueRows& inRows, const __SafeCFPropertyList& inDictionary );
/// The dictionary with the required keys that it lacks.
[[nodiscard]] __SafeCFPropertyList WithRequiredKeys(
    const CatalogueRows& inRows, const __SafeCFPropertyList& inDictionary );
/// The dictionary of a new object in which the row's key is in use.
[[nodiscard]] __SafeCFPropertyList DictionaryUsing( const CatalogueRows& inRows, const CatalogueRow& inRow );
/// The saved dictionary with the catalogue's word in place of what only has to be new, a UUID or a colour.
[[nodiscard]] __SafeCFPropertyList WithoutWhatIsNew(
    const CatalogueRows& inRows, const __SafeCFPropertyList& inExpected, const __SafeCFPropertyList& inSaved );
/// The dictionary without the UUIDs that no other object may have.
[[nodiscard]] __SafeCFPropertyList WithoutOwnUUIDs(
    const CatalogueRows& inRows, const __SafeCFPropertyList& inDictionary );

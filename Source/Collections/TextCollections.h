// The collections that are made out of a text.
#pragma once

#include "Actions/ActionFieldParts.h"
#include "Collections/CBaseCollection.h"
#include "Collections/SubstringsIn.h"

class CLinesInCollection final : public CCollectionOf<CLinesInCollection, CollectionType::kLinesIn>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateToDefaultValues( bool inForce ) override { mSource.UpdateToDefaultValues( inForce ); }
    [[nodiscard]] Text GetDescription() const override;

    [[nodiscard]] ActionTextSource& GetSource() { return mSource; }

private:
    ActionTextSource mSource;
    bool mIncludeBlankLines = false;
};

class CSubstringsInCollection final : public CCollectionOf<CSubstringsInCollection, CollectionType::kSubstringsIn>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateToDefaultValues( bool inForce ) override { mSource.UpdateToDefaultValues( inForce ); }
    [[nodiscard]] Text GetDescription() const override;

    [[nodiscard]] ActionTextSource& GetSource() { return mSource; }

private:
    ActionTextSource mSource;
    SubstringsInMatchType mSearchKind = SubstringsInMatchType::kCaseSensitive;
    SubstringsInResultType mResultType = SubstringsInResultType::kString;
    XText mSearch = SharedText<u"">();
};

/// What is given of each element of a JSON array or object.
enum class JSONResultType : std::int32_t { kKey, kStrictKey, kJSON, kPrettyJSON };
inline constexpr TextView kJSONResultTypeNames[] = { u"Key", u"StrictKey", u"JSON", u"PrettyJSON" };
static_assert( std::size( kJSONResultTypeNames ) == std::size_t( JSONResultType::kPrettyJSON ) + 1 );
constexpr auto NamesOf( JSONResultType )
{
    return std::span( kJSONResultTypeNames );
}

class CJSONCollection final : public CCollectionOf<CJSONCollection, CollectionType::kJSON>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;

private:
    XText mText = SharedText<u"">();
    JSONResultType mResultType = JSONResultType::kKey;
};

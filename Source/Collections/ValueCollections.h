// The collections of numbers, of images on the screen, and of what the system and the stores hold.
#pragma once

#include "Actions/ActionImageSource.h"
#include "Collections/CBaseCollection.h"

class CRangeCollection final : public CCollectionOf<CRangeCollection, CollectionType::kRange>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;

private:
    XText mStart = SharedText<u"1">(); // calculations
    XText mEnd = SharedText<u"10">();
    bool mUpwards = true;
};

class CApplicationsCollection final : public CCollectionOf<CApplicationsCollection, CollectionType::kApplications>
{};

class CPastClipboardsCollection final : public CCollectionOf<CPastClipboardsCollection, CollectionType::kPastClipboards>
{};

class CDictionariesCollection final : public CCollectionOf<CDictionariesCollection, CollectionType::kDictionaries>
{};

class CDictionaryKeysCollection final : public CCollectionOf<CDictionaryKeysCollection, CollectionType::kDictionaryKeys>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;

private:
    XText mDictionary = SharedText<u"DictionaryName">();
};

class CVariablesCollection final : public CCollectionOf<CVariablesCollection, CollectionType::kVariables>
{};

enum class FoundImagesSortOrder : std::int32_t { kBestFirst, kTopToBottom, kLeftToRight, kBottomToTop, kRightToLeft };
inline constexpr TextView kFoundImagesSortOrderNames[] = { u"BestFirst", u"TopToBottom", u"LeftToRight", u"BottomToTop",
    u"RightToLeft" };
static_assert( std::size( kFoundImagesSortOrderNames ) == std::size_t( FoundImagesSortOrder::kRightToLeft ) + 1 );
constexpr auto NamesOf( FoundImagesSortOrder )
{
    return std::span( kFoundImagesSortOrderNames );
}

class CFoundImagesCollection final : public CCollectionOf<CFoundImagesCollection, CollectionType::kFoundImages>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateToDefaultValues( bool inForce ) override { mImage.UpdateToDefaultValues( inForce ); }
    [[nodiscard]] Text GetDescription() const override;

private:
    ActionImageSource mImage;
    std::int32_t mFuzz = 15;
    bool mDisplayMatches = false;
    HScreenArea mScreenArea;
    FoundImagesSortOrder mSortOrder = FoundImagesSortOrder::kBestFirst;
};

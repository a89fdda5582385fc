// The collections of files and volumes.
#pragma once

#include "Actions/SharedText.h"
#include "Collections/CBaseCollection.h"

enum class FilesSortOrder : std::int32_t {
    kAlphabetical,
    kFileSize,
    kCreationDate,
    kModificationDate,
    kAddedDate,
    kDownloadedDate,
    kLastUsedDate,
    kRecursive, ///< the files of the folders within as well
};
inline constexpr TextView kFilesSortOrderNames[] = { u"Alphabetical", u"FileSize", u"CreationDate", u"ModificationDate",
    u"AddedDate", u"DownloadedDate", u"LastUsedDate", u"Recursive" };
static_assert( std::size( kFilesSortOrderNames ) == std::size_t( FilesSortOrder::kRecursive ) + 1 );
constexpr auto NamesOf( FilesSortOrder )
{
    return std::span( kFilesSortOrderNames );
}

class CFilesCollection final : public CCollectionOf<CFilesCollection, CollectionType::kFiles>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;

private:
    bool ReadOlderRecursive( HFieldVisitor& inVisitor );

    XText mPath = SharedText<u"">();
    FilesSortOrder mSortOrder = FilesSortOrder::kAlphabetical;
    bool mReverse = false;
    bool mIncludeInvisibles = false;
};

class CFinderSelectionCollection final
    : public CCollectionOf<CFinderSelectionCollection, CollectionType::kFinderSelection>
{};

class CVolumesCollection final : public CCollectionOf<CVolumesCollection, CollectionType::kVolumes>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;

private:
    bool mAsPath = false;
};

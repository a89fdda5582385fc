// The tags that people give to files. A tag keeps the case in which it was written, but is the same in any.
// Values of the main thread; reading and writing a file's tags is the platform's.
#pragma once

#include "CFMethods/Text.h"

#include <filesystem>
#include <unordered_set>
#include <vector>

class TagName
{
public:
    explicit TagName( TextView inName );

    [[nodiscard]] const Text& visibleName() const { return mVisibleName; }
    [[nodiscard]] const Text& comparableName() const { return mComparableName; } ///< in lower case
    [[nodiscard]] Text description() const;
    bool operator==( const TagName& inOther ) const { return mComparableName == inOther.mComparableName; }

private:
    Text mVisibleName, mComparableName;
};

class TagSet
{
public:
    TagSet() = default;
    /// Names between commas, without the blanks around them; empty ones are left out.
    [[nodiscard]] static TagSet tagsForString( TextView inText );
    /// The names in alphabetical order, with commas.
    [[nodiscard]] Text stringForTags() const;

    /// A tag that is there already keeps its case.
    void Add( const TagName& inTag ) { mTags.insert( inTag ); }
    void Remove( const TagName& inTag ) { mTags.erase( inTag ); }
    [[nodiscard]] bool Contains( const TagName& inTag ) const { return mTags.contains( inTag ); }
    [[nodiscard]] std::size_t GetCount() const { return mTags.size(); }
    /// By name, in alphabetical order.
    [[nodiscard]] std::vector<TagName> GetTags() const;

    [[nodiscard]] static TagSet tagsForFile( const std::filesystem::path& inFile );
    // False when the platform can't: nothing was changed then.
    bool saveTagsForFile( const std::filesystem::path& inFile ) const; ///< these and no others
    bool addTagsForFile( const std::filesystem::path& inFile ) const;
    bool removeTagsForFile( const std::filesystem::path& inFile ) const;
    /// Each of these that the file has is taken away, each other is added.
    bool toggleTagsForFile( const std::filesystem::path& inFile ) const;

private:
    struct Hash
    {
        std::size_t operator()( const TagName& inTag ) const { return std::hash<Text>()( inTag.comparableName() ); }
    };
    std::unordered_set<TagName, Hash> mTags;
};

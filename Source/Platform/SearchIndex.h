// The desktop's search index, in which macros and groups can be found by name. Calls are made on
// the main thread; a completion comes once for each call, on any thread, and may come before the
// call returns.
#pragma once

#include "CFMethods/Text.h"

#include <functional>
#include <optional>
#include <span>
#include <vector>

/// What the index knows of one object. Empty texts and absent times aren't exported.
struct XSearchableItem
{
    Text mUniqueIdentifier; ///< the object's UID
    Text mDomainIdentifier; ///< the application's bundle identifier
    Text mContentType;
    Text mContentDescription;
    Text mTitle;
    Text mCreator;
    std::vector<Text> mKeywords;
    // Of a macro that stands in a group: the group's name, its name again, and its UID.
    Text mContainerDisplayName, mContainerTitle, mContainerIdentifier;
    Text mTextContent;
    std::optional<double> mContentCreationDate, mContentModificationDate, mLastUsedDate; ///< seconds since 2001
};

class XSearchIndex
{
public:
    using Completion = std::function<void( const std::optional<Text>& inError )>;

    virtual ~XSearchIndex() = default;
    [[nodiscard]] virtual bool isIndexingAvailable() const = 0;
    /// Takes out everything that this application put in.
    virtual void deleteAllSearchableItems( Completion inCompletion ) = 0;
    virtual void deleteSearchableItemsWithIdentifiers(
        std::span<const Text> inIdentifiers, Completion inCompletion ) = 0;
    /// Puts items in; one with an identifier that is there already replaces that one.
    virtual void indexSearchableItems( std::vector<XSearchableItem> inItems, Completion inCompletion ) = 0;

    /// No indexing is available; every call completes at once with an error.
    [[nodiscard]] static XSearchIndex& Absent();
};

// How macros name an application: by display name, bundle identifier and a reference to its
// file, of which any may be missing; and lists of such names. Values of the main thread; copies
// share their texts.
#pragma once

#include "CFMethods/PropertyList.h"

#include <vector>

/// How an application is recognised, stored by name.
enum class ApplicationIdentifierMatchType : std::uint8_t { kDefault, kPath, kBundleID };
inline constexpr TextView kApplicationIdentifierMatchTypeNames[] = { u"Default", u"Path", u"BundleID" };
static_assert(
    std::size( kApplicationIdentifierMatchTypeNames ) == std::size_t( ApplicationIdentifierMatchType::kBundleID ) + 1 );

class XApplicationIdentifier
{
public:
    XApplicationIdentifier() = default;
    XApplicationIdentifier( XText inName, XText inBundleIdentifier, __SafeCFPropertyList inFile = {},
        ApplicationIdentifierMatchType inMatch = ApplicationIdentifierMatchType::kDefault );

    /// Throws "dictionary && dictionary->IsCorrectTypeID()" if the value isn't a dictionary; every key is optional. A
    /// file reference that doesn't resolve is looked for again, and kept as it stands if that finds nothing.
    [[nodiscard]] static XApplicationIdentifier CreateFromPropertyList( const __SafeCFPropertyList& inValue );
    /// Empty texts and the default match are left out.
    [[nodiscard]] __SafeCFPropertyList CopyToPropertyList() const;

    [[nodiscard]] const XText& GetName() const { return mName; }
    [[nodiscard]] const XText& GetBundleIdentifier() const { return mBundleIdentifier; }
    [[nodiscard]] const __SafeCFPropertyList& GetFile() const { return mFile; } ///< "NewFile"; of any type
    [[nodiscard]] ApplicationIdentifierMatchType GetMatch() const { return mMatch; }

    /// What to show: the stored name, else what the platform calls it, else the bundle identifier, else "".
    [[nodiscard]] Text GetDisplayName() const;

    /// Negative, 0 or positive. By match, bundle identifier and name; null and "" are the same. The file reference
    /// counts only where it alone tells applications apart: each computer has another for the same application.
    [[nodiscard]] int CompareWithSame( const XApplicationIdentifier& inOther ) const;

private:
    [[nodiscard]] bool FileDecides() const;

    XText mName, mBundleIdentifier;
    __SafeCFPropertyList mFile;
    ApplicationIdentifierMatchType mMatch = ApplicationIdentifierMatchType::kDefault;
};

class XApplicationList
{
public:
    XApplicationList() = default;
    explicit XApplicationList( std::vector<XApplicationIdentifier> inApplications )
        : mApplications( std::move( inApplications ) )
    {}

    /// Throws "apps && apps->IsCorrectTypeID()" if the value isn't an array, and this list stays as it was. An element
    /// that can't be understood is logged and left out.
    void LoadFromPropertyList( const __SafeCFPropertyList& inValue );
    [[nodiscard]] __SafeCFPropertyList CopyToPropertyList() const;

    [[nodiscard]] const std::vector<XApplicationIdentifier>& GetApplications() const { return mApplications; }
    [[nodiscard]] bool IsEmpty() const { return mApplications.empty(); }
    void Append( XApplicationIdentifier inApplication ) { mApplications.push_back( std::move( inApplication ) ); }

    [[nodiscard]] std::vector<Text> GetDisplayNames() const;
    /// Negative, 0 or positive: by element in order, a shorter list first.
    [[nodiscard]] int CompareWithSame( const XApplicationList& inOther ) const;

private:
    std::vector<XApplicationIdentifier> mApplications;
};

// What the platform knows of installed applications. Stored references to an application file
// are opaque: a platform reads only its own kind, and everybody else keeps them as they stand.
#pragma once

#include "CFMethods/PropertyList.h"

class XApplications
{
public:
    /// One application as it is found now.
    struct Facts
    {
        Text mName; ///< as people see it
        Text mBundleIdentifier;
        Text mPath;
    };

    virtual ~XApplications() = default;

    /// The application that a stored file reference leads to, or absent.
    [[nodiscard]] virtual std::optional<Facts> ResolveApplicationAlias( const __SafeCFPropertyList& inAlias ) const = 0;
    /// Looks for an application whose reference no longer resolves, by bundle identifier first and then by name; either
    /// may be empty. The result is a new reference in its saved form, or null.
    [[nodiscard]] virtual __SafeCFPropertyList RefindApplicationAlias(
        TextView inName, TextView inBundleIdentifier ) const = 0;
    /// The installed application of a bundle identifier, or absent.
    [[nodiscard]] virtual std::optional<Facts> FindApplication( TextView inBundleIdentifier ) const = 0;

    /// Knows of no application.
    [[nodiscard]] static XApplications& Absent();
};

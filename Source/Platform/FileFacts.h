// What the desktop knows about files: kinds, names, types, and its trash. Any thread may ask.
#pragma once

#include "CFMethods/Text.h"

#include <filesystem>
#include <optional>
#include <vector>

class XDesktopFileFacts
{
public:
    virtual ~XDesktopFileFacts() = default;

    /// Moves the file to the trash, from where the user can take it back. False if that isn't possible: nothing
    /// was changed then.
    virtual bool TrashFile( const std::filesystem::path& inFile ) = 0;
    /// The kind of file in words, as "PNG image".
    [[nodiscard]] virtual std::optional<Text> GetFileKind( const std::filesystem::path& inFile ) const = 0;
    /// The name that is shown to the user.
    [[nodiscard]] virtual std::optional<Text> GetDisplayName( const std::filesystem::path& inFile ) const = 0;
    /// The name that an application or other bundle gives itself.
    [[nodiscard]] virtual std::optional<Text> GetBundleName( const std::filesystem::path& inFile ) const = 0;
    /// The type identifier, as "public.png".
    [[nodiscard]] virtual std::optional<Text> GetType( const std::filesystem::path& inFile ) const = 0;
    /// Is the type the other one, or a kind of it?
    [[nodiscard]] virtual bool TypeConformsTo( TextView inType, TextView inOther ) const = 0;

    /// The tags that the user gave the file.
    [[nodiscard]] virtual std::vector<Text> GetTags( const std::filesystem::path& ) const { return {}; }
    /// These and no others. False if that isn't possible: nothing was changed then.
    virtual bool SetTags( const std::filesystem::path&, const std::vector<Text>& ) { return false; }

    /// Knows nothing, trashes nothing, and each type is only itself.
    [[nodiscard]] static XDesktopFileFacts& Absent();
};

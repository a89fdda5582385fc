// What the desktop knows about files: MIME types and their descriptions, and the trash. Types are those of this
// system, as "image/png". Private to this folder. Any thread.
#pragma once

#include "Platform/FileFacts.h"

class LinuxFileFacts final : public XDesktopFileFacts
{
public:
    bool TrashFile( const std::filesystem::path& inFile ) override;
    [[nodiscard]] std::optional<Text> GetFileKind( const std::filesystem::path& inFile ) const override;
    [[nodiscard]] std::optional<Text> GetDisplayName( const std::filesystem::path& inFile ) const override;
    /// Absent: no file is a bundle here.
    [[nodiscard]] std::optional<Text> GetBundleName( const std::filesystem::path& ) const override { return {}; }
    [[nodiscard]] std::optional<Text> GetType( const std::filesystem::path& inFile ) const override;
    [[nodiscard]] bool TypeConformsTo( TextView inType, TextView inOther ) const override;
};

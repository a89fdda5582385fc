// What the desktop knows about files: kinds, names, types, and its trash. The answers are the
// platform's; without one everything is absent and nothing is trashed. Any thread may ask.
#pragma once

#include "CFMethods/Text.h"

#include <filesystem>
#include <optional>

class XFileFacts
{
public:
    virtual ~XFileFacts() = default;

    /// Moves the file to the trash, from where the user can take it back. False if that isn't possible: nothing
    /// was changed then.
    virtual bool TrashFile( const std::filesystem::path& inFile ) const;
    /// The kind of file in words, as "PNG image".
    [[nodiscard]] virtual std::optional<Text> GetFileKind( const std::filesystem::path& inFile ) const;
    /// The name that is shown to the user.
    [[nodiscard]] virtual std::optional<Text> GetDisplayName( const std::filesystem::path& inFile ) const;
    /// The name that an application or other bundle gives itself.
    [[nodiscard]] virtual std::optional<Text> GetBundleName( const std::filesystem::path& inFile ) const;
    /// The type identifier, as "public.png".
    [[nodiscard]] virtual std::optional<Text> GetType( const std::filesystem::path& inFile ) const;
    /// Is the type the other one, or a kind of it?
    [[nodiscard]] virtual bool TypeConformsTo( TextView inType, TextView inOther ) const;

    /// The facts in use: absent ones unless others were installed.
    [[nodiscard]] static const XFileFacts& Current();

    /// Installs facts for as long as this object lives. Main thread, while nothing else runs.
    class Substitute
    {
    public:
        explicit Substitute( const XFileFacts& inFacts );
        ~Substitute();
        Substitute( const Substitute& ) = delete;
        Substitute& operator=( const Substitute& ) = delete;

    private:
        const XFileFacts* mPrevious;
    };
};

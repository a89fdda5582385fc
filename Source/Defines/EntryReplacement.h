// Puts a file or folder that came in in place of an older one of its name, as installing a plug-in does: the older one
// stands aside under a name of its own until the new one has proved good. Main thread.
#pragma once

#include <filesystem>
#include <optional>

class EntryReplacement
{
public:
    /// Moves what has the name aside, to the same name with a UUID behind it.
    explicit EntryReplacement( std::filesystem::path inTarget );

    [[nodiscard]] bool IsTargetFree() const;
    /// Moves the new one there, from the same disk. When that fails the older one goes back to its place.
    bool Take( const std::filesystem::path& inNew );
    /// To the trash. Where there is none it stays aside, and the log says where.
    void DiscardOlder();
    /// To the trash, or removed where there is none: whoever brought it has it still.
    void DiscardNew();
    /// Where the older one stands; absent when there was none.
    [[nodiscard]] const std::optional<std::filesystem::path>& Older() const { return mOlder; }

private:
    std::filesystem::path mTarget;
    std::optional<std::filesystem::path> mOlder;
};

// Enabled states that the engine changed while the editor wasn't in charge, handed over in a small file. Taking
// them empties the file: they are used once. The file is shared with the engine under an advisory lock. Until they
// have reached the disk in the macros file, a copy of them is set aside.
#pragma once

#include "CFMethods/PropertyList.h"
#include "Macros/XTextHash.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <unordered_map>

class KVMacroEnableOverrides
{
public:
    KVMacroEnableOverrides() = default;

    /// Absent when the file holds none, can't be read, or stays locked for 100 tries, and when no copy of it could be set
    /// aside: then it is left for the next time. inWait waits for so many seconds between the tries. Main thread.
    [[nodiscard]] static std::optional<KVMacroEnableOverrides> Get(
        const std::filesystem::path& inFile, const std::function<void( double inSeconds )>& inWait );
    /// Those in "Korvalen Enable Overrides" of the data folder.
    [[nodiscard]] static std::optional<KVMacroEnableOverrides> Get();

    /// How often overrides have been taken. Ask when the bytes of a save are built, on the main thread, and give the
    /// answer to DidSave when they are on disk: that drops the copies of all that were taken before. A copy of a file that
    /// wasn't understood to its end stays. DidSave: any thread.
    [[nodiscard]] static std::uint64_t CountTaken();
    static void DidSave( std::uint64_t inCountTaken );

    void Add( const XText& inUID, bool inEnabled );
    /// Absent when the engine didn't touch this one.
    [[nodiscard]] std::optional<bool> StateFor( const XText& inUID ) const;
    [[nodiscard]] std::size_t GetCount() const { return mStates.size(); }
    /// All of them, by UID.
    [[nodiscard]] const std::unordered_map<XText, bool, XTextHash>& GetStates() const { return mStates; }

private:
    std::unordered_map<XText, bool, XTextHash> mStates; // the last of equal UIDs counts
};

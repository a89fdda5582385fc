// Enabled states that the engine changed while the editor wasn't in charge, handed over in a small file. Taking
// them empties the file: they are used once. The file is shared with the engine under an advisory lock.
#pragma once

#include "CFMethods/PropertyList.h"
#include "Macros/XTextHash.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <unordered_map>

class KVMacroEnableOverrides
{
public:
    KVMacroEnableOverrides() = default;

    /// Absent when the file holds none, can't be opened, or stays locked for 100 tries. inWait waits for so
    /// many seconds between the tries. Main thread.
    [[nodiscard]] static std::optional<KVMacroEnableOverrides> Get(
        const std::filesystem::path& inFile, const std::function<void( double inSeconds )>& inWait );

    void Add( const XText& inUID, bool inEnabled );
    /// Absent when the engine didn't touch this one.
    [[nodiscard]] std::optional<bool> StateFor( const XText& inUID ) const;
    [[nodiscard]] std::size_t GetCount() const { return mStates.size(); }

private:
    std::unordered_map<XText, bool, XTextHash> mStates; // the last of equal UIDs counts
};

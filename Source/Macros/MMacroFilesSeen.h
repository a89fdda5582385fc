// The contents of macros files that were written or taken in lately, so that a shared file which only echoes our own
// write isn't applied again. Any thread.
#pragma once

#include "Macros/MMacroFileData.h"

#include <array>
#include <cstdint>
#include <set>

/// MD5 digests in two generations: the older one goes as a whole when the newer one is full, so that what was seen last is
/// known for at least so many others. Not safe for several threads at once.
class MSeenDigests
{
public:
    static constexpr std::size_t kGeneration = 51;
    using Digest = std::array<std::uint8_t, 16>;

    [[nodiscard]] static Digest Of( std::span<const std::uint8_t> inBytes );

    void Add( const Digest& inDigest );
    [[nodiscard]] bool Contains( const Digest& inDigest ) const
    {
        return mCurrent.contains( inDigest ) or mOld.contains( inDigest );
    }

private:
    std::set<Digest> mCurrent, mOld;
};

/// What this process has seen; kept by the queue "com.tessarine.korvalen.MMacroFilesSeen".
namespace MMacroFilesSeen
{
/// Returns at once.
void AddSeen( const MMacroFileDataPtr& inData );
/// Waits for the answer. With inAdd it counts as seen from now on.
[[nodiscard]] bool ContainsSeen( const MMacroFileDataPtr& inData, bool inAdd );
} // namespace MMacroFilesSeen

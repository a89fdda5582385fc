// Which build an engine is: the time and size of its executable. A running engine leaves those that it was started
// from in a file by its number in the folder "Running Engine Details" among the data files, so that the editor sees
// when the executable has been replaced since. Main thread.
#pragma once

#include "Utility/Work/Clock.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>

class KVAppDetails
{
public:
    /// The file has exactly these bytes: the time and the size, each as this machine holds it.
    static constexpr std::size_t kBytes = 16;
    using Bytes = std::array<std::uint8_t, kBytes>;

    KVAppDetails() = default;
    KVAppDetails( XAbsoluteTime inModificationTime, std::int64_t inSize )
        : mModificationTime( inModificationTime ),
          mSize( inSize )
    {}

    /// Of an executable; null if there is none.
    [[nodiscard]] static KVAppDetails ForExecutable( const std::filesystem::path& inExecutable );
    /// Of the engine that belongs to this program.
    [[nodiscard]] static KVAppDetails GetCurrent();
    /// Those that a running engine has left. Null unless its file has just the bytes of what could be details.
    [[nodiscard]] static KVAppDetails GetAppDetailsFromEngine( std::int64_t inProcessIdentifier );

    /// Clears the folder of what belongs to no running process. At start-up.
    static void Start();

    /// The file of a process.
    [[nodiscard]] static std::filesystem::path FileFor( std::int64_t inProcessIdentifier );
    [[nodiscard]] Bytes ToBytes() const;
    [[nodiscard]] static KVAppDetails FromBytes( std::span<const std::uint8_t> inBytes );

    [[nodiscard]] bool IsNull() const { return mModificationTime == 0 and mSize == 0; }
    /// The same size, and times that differ by no more than their rounding.
    [[nodiscard]] bool Same( const KVAppDetails& inOther ) const;

private:
    XAbsoluteTime mModificationTime = 0;
    std::int64_t mSize = 0;
};

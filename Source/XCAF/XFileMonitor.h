// Watches one file by looking at it each second, on a queue of its own, "com.tessarine.korvalen.XFileMonitor". It
// never blocks, sees files on network volumes, and goes on when the file is replaced, removed and made again. Whoever
// wants to watch owns it; the last reference may go on any thread, and the block isn't called afterwards, except for a
// call that is under way.
#pragma once

#include "Utility/Work/Work.h"
#include "XCAF/XFileWriting.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

class XFileMonitor : public std::enable_shared_from_this<XFileMonitor>
{
public:
    using Block = std::function<void()>;

    /// Calls the block, on the monitor's queue, after the file's date or size has changed. What it is now is noted
    /// before this returns.
    [[nodiscard]] static std::shared_ptr<XFileMonitor> fileMonitorWithPath(
        std::filesystem::path inPath, Block inBlock );

private:
    /// What was reported last: the modification date in seconds and nanoseconds, and the size.
    struct Reported
    {
        std::int64_t mSeconds = 0, mNanoseconds = 0;
        std::uint64_t mSize = 0;
        friend bool operator==( const Reported&, const Reported& ) = default;
    };

    XFileMonitor( std::filesystem::path inPath, Block inBlock );

    void open();
    void read();
    void check( const XFileStatus& inFacts );
    [[nodiscard]] std::optional<XFileStatus> Facts() const;
    [[nodiscard]] unsigned TakeFlags( const std::optional<XFileStatus>& inFacts );
    void After1Second( void ( XFileMonitor::*inStep )() );

    const std::filesystem::path mPath;
    const Block mBlock;
    const std::shared_ptr<XQueue> mQueue;
    // From here on only the queue's.
    Reported mReported;                 ///< or noted at the start
    std::optional<XFileStatus> mOpened; ///< the file as the last event left it; absent while there is none to watch
};

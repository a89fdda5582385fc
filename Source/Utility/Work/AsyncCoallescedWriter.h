// A named background writer where only the newest pending write counts: of writes that follow
// each other without a read between, the last runs and the others are dropped unrun. Reads and
// writes keep their order, so a read sees what the newest earlier write left. Writers live as
// long as the process; any thread may call them. The spelling of the name stands.
#pragma once

#include "CFMethods/Text.h"
#include "Utility/Work/Work.h"

#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>

class AsyncCoallescedWriter
{
public:
    /// Runs on the writer's queue; true on success. One that throws has failed.
    using WriteBlock = std::function<bool()>;

    /// The writer of a code, made at first use. Null, with an assertion, once shutdown has begun.
    [[nodiscard]] static AsyncCoallescedWriter* asyncCoallescedWriter( TextView inCode );

    /// Sets the shutdown state and returns when what was queued on every writer has run. Later writes
    /// and reads are assertions, and are dropped.
    static void applicationWillTerminate();

    /// Queues a write. Not for a writer that has a notification name.
    void asyncCoallescedWrite( WriteBlock inBlock );
    /// Queues a write, after which other processes are told, once for each sender of the writes that
    /// it stands for. The first name holds for the writer's life.
    void asyncCoallescedWrite( WriteBlock inBlock, TextView inNotificationName, TextView inNotificationFrom );
    /// Queues a read and returns when it has run. From a block of this writer it is an assertion, and
    /// the read runs at once: it sees what is on disk then.
    void syncRead( const XBlock& inBlock );

    AsyncCoallescedWriter( XWork& inWork, TextView inCode );

private:
    struct QueueEntry
    {
        bool mIsWrite;
        WriteBlock mBlock;
        std::optional<Text> mNotificationFrom;
        const XBlock* mRead = nullptr; // on the stack of a caller who waits
    };

    void QueueWrite( WriteBlock inBlock, std::optional<Text> inNotificationFrom );
    void Close();
    void writeOne();
    void readOne();
    void Notify( const std::set<Text>& inSenders );

    XWork& mWork;
    const Text mCode;
    const std::shared_ptr<XQueue> mQueue;
    // Held for list work only, never while a block runs. Queueing is list work: were an entry's turn on the queue
    // taken after another's that came later into the list, a read could find a write at the
    // head, or a write be left behind for ever.
    std::mutex mMutex;
    std::optional<Text> mNotificationName;
    std::deque<QueueEntry> mEntries;
    bool mIsClosed = false;
};

#pragma once

#include "app/FileLock.h"
#include "settings/Defaults.h"

namespace tuppi {

/// Where the waiting queue is kept, and who may write it. One process at a time owns the stored queue;
/// another one keeps a queue of its own in memory, until it can take the stored one over.
struct QueueStore
{
    explicit QueueStore(Defaults &store)
        : defaults(store)
        , ownerLock(store.path() + QStringLiteral(".queue.lock"))
        , startLock(store.path() + QStringLiteral(".start.lock"))
    {
    }

    /// The lock goes when the queue is on the disk: the next owner reads it there.
    ~QueueStore()
    {
        if (stored.valid())
            stored.wait();
    }
    Q_DISABLE_COPY(QueueStore)

    /// The queue outlives this process: it is on the disk as it was last saved. Waits for the disk.
    bool isKept() const { return owned && (!stored.valid() || stored.get()); }

    Defaults &defaults;
    FileLock ownerLock;
    /// Handed to each "process" command: while somebody else holds it, a start of an earlier run is at work.
    FileLock startLock;
    bool owned = false;
    bool toldNotOwned = false;  ///< the person knows that the queue is kept in memory only
    Defaults::Stored stored;  ///< of the queue as it was last saved; not valid before
};

} // namespace tuppi

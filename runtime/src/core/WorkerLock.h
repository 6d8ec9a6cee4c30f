#pragma once

#include "core/FileDescriptor.h"
#include "core/Paths.h"

#include <optional>
#include <sys/types.h>

namespace engine {

// The right to work, held by one worker at a time over all processes of this user; the kernel gives it back
// when the worker dies.
class WorkerLock
{
public:
    explicit WorkerLock(const Paths &paths);

    // Does not wait. Throws Failure when the lock file cannot be opened.
    bool tryTake();

    // The same for a worker: somebody who only looks whether one is at work holds the lock for a moment too.
    bool takeSoon();
    void release();

    // Whether a worker holds it. Throws Failure as above.
    bool isHeld() const;

    // Writes the process id of the holder into the lock file, for whoever looks.
    void signOwner();

    // The process that has signed last, if the lock is held; else nothing.
    std::optional<pid_t> owner() const;

    // For a forked child, which must not keep the lock alive beyond its parent.
    void abandonInChild() { m_file.reset(); }

private:
    FileDescriptor locked(int how) const; // not valid where it is locked otherwise

    Paths m_paths;
    FileDescriptor m_file;
};

} // namespace engine

#pragma once

#include "core/Paths.h"

#include <sys/types.h>

namespace engine {

// Where it has to be.
QString workerProgram();

// Starts a worker in a session of its own, with nothing inherited from the caller (no pipes, no locks, no
// working directory), unless one is working already. Call it after the commit that made work.
// Throws Failure when the worker cannot be started.
void startWorker(const Paths &paths);

// For a command whose work stands already: that no worker could be started is left to the next command that tries.
void startWorkerNowOrWithResume(const Paths &paths);

// Throws Failure, with what to do, when there is no worker to start.
void requireWorker();

// As above, but the worker stays a child of the caller, who waits for it: its process id, or -1 when another
// worker is working.
pid_t startWorkerAsChild(const Paths &paths);

} // namespace engine

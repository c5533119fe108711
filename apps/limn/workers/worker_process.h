// The inside of a worker process.
#pragma once

#include "worker_pool.h"

#include <sys/types.h>

namespace limn {

// Does the jobs that arrive over the socket until its other end closes, then exits. parent: the
// process to go with. Call it right after the fork.
[[noreturn]] void ServeJobs(const WorkerPool& pool, int socket, pid_t parent);

} // namespace limn

// The state of the communication worker.
#pragma once

#include <atomic>

namespace zr {

enum WorkerState : int {
    WORKER_RUNNING = 2,   // the worker loops while this holds
    WORKER_STOPPING = 3,  // asks the worker to leave its loop
    WORKER_STOPPED = 4,   // the first state; set by the worker as it leaves
};

// One for the whole module and not one a ZRCommSystem: it is meant that a second system shares it. Written and polled
// by the worker and by whoever starts and stops it.
extern std::atomic<int> workerState;

}  // namespace zr

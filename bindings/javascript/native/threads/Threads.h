#pragma once

#include "krlimage.h"

/// Workers of the module for JavaScript, in the manner of the C interface. A worker has another instance of
/// the module on the same memory. The threads that an engine begins run on the workers that wait; where none
/// waits, none begins.
extern "C" {

/// A worker's share of the memory.
typedef struct krl_worker krl_worker;

/// NULL without memory. It is never freed, since workers end with the memory.
KRL_API krl_worker* krl_worker_new(void);
/// Where its stack begins, which its instance sets before it calls anything.
KRL_API void* krl_worker_stack(krl_worker* worker);
/// Counts it among those that wait for threads.
KRL_API void krl_worker_begin(krl_worker* worker);
/// Runs threads until the worker is ended from outside.
KRL_API void krl_worker_run(krl_worker* worker);
/// Ends the call that waits for its thread by a trap.
KRL_API void krl_worker_fail(void);

/// How many threads there can be by now, with that of the caller.
KRL_API int32_t krl_thread_count(void);
}

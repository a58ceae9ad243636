#include "Threads.h"

#include <errno.h>
#include <pthread.h>

#include <atomic>
#include <new>

namespace {

/// A thread and what it does.
struct Thread {
    pthread_t self = 0;
    void* (*entry)(void*) = nullptr;
    void* argument = nullptr;
};

}  // namespace

struct krl_worker {
    enum State : int32_t { Waiting, Taken, Running };

    /// Gives it a thread, if it waits for one.
    bool take(const Thread& begun);
    /// Runs its next thread.
    void runNext();

    std::atomic<int32_t> state = Waiting;
    Thread thread;
    krl_worker* next = nullptr;
    alignas(16) char stack[1 << 20];
};

namespace {

constexpr size_t kPageBytes = 1 << 16;

/// Those that have begun.
std::atomic<krl_worker*> workers = nullptr;

int32_t threadCount() {
    int32_t count = 1;
    for (const krl_worker* worker = workers; worker; worker = worker->next) ++count;
    return count;
}

}  // namespace

// What Emscripten's C library takes from its own JavaScript, where the page makes a worker for every thread.
extern "C" {

void _emscripten_thread_init(pthread_t self, int isMainBrowserThread, int isMainRuntimeThread, int canBlock,
                             int profiles);
void* emscripten_tls_init(void);
void _emscripten_thread_exit(void* result);
void _emscripten_thread_free_data(pthread_t thread);
void _emscripten_thread_crashed(void);

/// The caller's thread may wait: where it may not, the module without threads is loaded.
void __emscripten_init_main_thread_js(pthread_t self) {
    _emscripten_thread_init(self, 0, 1, 1, 0);
    emscripten_tls_init();
}

int __pthread_create_js(pthread_t self, const pthread_attr_t*, void* (*entry)(void*), void* argument) {
    for (krl_worker* worker = workers; worker; worker = worker->next)
        if (worker->take({self, entry, argument})) return 0;
    return EAGAIN;
}

void __emscripten_thread_cleanup(pthread_t thread) { _emscripten_thread_free_data(thread); }

/// Threads have the stacks of their workers.
int _emscripten_default_pthread_stack_size(void) { return 16; }

int emscripten_num_logical_cores(void) { return threadCount(); }

void emscripten_check_blocking_allowed(void) {}

int emscripten_resize_heap(size_t bytes) {
    const size_t pages = (bytes + kPageBytes - 1) / kPageBytes;
    return __builtin_wasm_memory_grow(0, pages - __builtin_wasm_memory_size(0)) != SIZE_MAX;
}

/// An exception of JavaScript would end in functions that let none out, and there call these again.
void abort(void) { __builtin_trap(); }
void emscripten_unwind_to_js_event_loop(void) { __builtin_trap(); }

/// An instruction, where the compiler may use it.
void* emscripten_memcpy_big(void* to, const void* from, size_t bytes) {
    return __builtin_memcpy(to, from, bytes);
}
}

bool krl_worker::take(const Thread& begun) {
    int32_t waiting = Waiting;
    if (!state.compare_exchange_strong(waiting, Taken)) return false;
    thread = begun;
    state = Running;
    __builtin_wasm_memory_atomic_notify(reinterpret_cast<int32_t*>(&state), 1);
    return true;
}

/// Without a thread, a worker has no variables of its own: until one begins it must not use any.
void krl_worker::runNext() {
    for (int32_t now; (now = state) != Running;)
        __builtin_wasm_memory_atomic_wait32(reinterpret_cast<int32_t*>(&state), now, -1);
    _emscripten_thread_init(thread.self, 0, 0, 1, 0);
    emscripten_tls_init();
    int old;  // a thread that can be cancelled wakes ten times a second to see whether it is
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &old);
    _emscripten_thread_exit(thread.entry(thread.argument));
    state = Waiting;
}

krl_worker* krl_worker_new(void) { return new (std::nothrow) krl_worker; }

void* krl_worker_stack(krl_worker* worker) { return worker->stack + sizeof worker->stack; }

void krl_worker_begin(krl_worker* worker) {
    worker->next = workers;
    while (!workers.compare_exchange_weak(worker->next, worker)) {
    }
}

void krl_worker_run(krl_worker* worker) {
    while (true) worker->runNext();
}

void krl_worker_fail(void) { _emscripten_thread_crashed(); }

int32_t krl_thread_count(void) { return threadCount(); }

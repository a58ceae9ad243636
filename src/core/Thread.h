#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#if !defined(_WIN32)
#include <mutex>
#endif

/// Threads, locks and time as the system gives them. On Windows they come from the system itself, by
/// functions that its oldest releases have, and not from a thread library.
namespace krl {

/// Processors of this machine, at least 1.
int32_t processorCount();

/// Milliseconds of a clock that only runs forward; wraps with 32 bits.
uint32_t tickCount();

/// What one thread has to do.
class ThreadTask {
public:
    virtual void run() noexcept = 0;

protected:
    ~ThreadTask() = default;
};

/// Keeps threads whose task has ended for later tasks until `letThreadsGo`. The calls are counted. On Windows no
/// thread is kept, since the plug-in may be unloaded at any time.
void keepThreads();
void letThreadsGo() noexcept;

class WaitingThread;

/// Tasks on threads of their own, which start one by one and end together; none outlives its group.
class ThreadGroup {
public:
    ThreadGroup() = default;
    ~ThreadGroup() { join(); }
    ThreadGroup(const ThreadGroup&) = delete;
    ThreadGroup& operator=(const ThreadGroup&) = delete;

    /// Makes room for `count` threads. Throws `std::bad_alloc`.
    void reserve(size_t count) { threads_.reserve(count); }
    /// Runs `task`, which must outlive the group, on a thread of its own; false when the system gives
    /// none. Throws `std::bad_alloc`.
    bool start(ThreadTask& task);
    /// Waits for the end of all that were started.
    void join();

private:
#if defined(_WIN32)
    std::vector<void*> threads_;  ///< handles
#else
    std::vector<WaitingThread*> threads_;
#endif
};

#if defined(_WIN32)
/// A lock that one thread holds at a time.
class Mutex {
public:
    Mutex();
    ~Mutex();
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    void lock();
    void unlock();

private:
    alignas(void*) unsigned char section_[5 * sizeof(void*) + 8];  ///< a `CRITICAL_SECTION`
};
#else
using Mutex = std::mutex;
#endif

}  // namespace krl

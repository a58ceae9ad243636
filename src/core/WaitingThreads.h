#pragma once

#if !defined(_WIN32)

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <thread>

/// Threads that wait for their next task, so that passes over a picture need not start their own: to wake one takes a
/// fraction of what starting it does. Windows has none, where the plug-in may be unloaded at any time.
namespace krl {

class ThreadTask;

/// A thread that runs the tasks it is given, one at a time, and waits between them.
class WaitingThread {
public:
    /// Throws `std::system_error` if the system gives no thread.
    WaitingThread();
    /// Ends the thread, which must have no task.
    ~WaitingThread();
    WaitingThread(const WaitingThread&) = delete;
    WaitingThread& operator=(const WaitingThread&) = delete;

    /// Runs `task` on the thread, which must have none.
    void give(ThreadTask& task);
    void waitForEnd();

private:
    friend class WaitingThreads;
    void runTasks();

    std::mutex mutex_;
    std::condition_variable changed_;
    ThreadTask* task_ = nullptr;
    bool isEnding_ = false;
    WaitingThread* next_ = nullptr;  ///< in the list of those without a task
    std::thread thread_;             ///< last, since it uses the others
};

/// The process's threads without a task. They are kept while somebody wants them to be.
class WaitingThreads {
public:
    /// One that waits, or else a new one, which `giveBack` gets later. Throws `std::bad_alloc`, or `std::system_error` if the system gives none.
    static WaitingThread* take();
    /// Takes back one whose task has ended; frees it if nobody wants threads to be kept.
    static void giveBack(WaitingThread* thread) noexcept;

    static void keep();
    /// Undoes one call of `keep`. With the last one, the threads end.
    static void letGo() noexcept;

private:
    WaitingThreads();
    static WaitingThreads& ofProcess();
    /// The list, whose owner is the caller now.
    WaitingThread* release() noexcept;

    std::mutex mutex_;
    WaitingThread* first_ = nullptr;
    size_t owners_ = 0;
    bool survivesFork_ = false;
};

}  // namespace krl

#endif

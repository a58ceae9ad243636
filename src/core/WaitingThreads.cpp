#include "core/WaitingThreads.h"

#if !defined(_WIN32)

#include <pthread.h>

#include <utility>

#include "core/DefinedFloats.h"
#include "core/Thread.h"

namespace krl {

WaitingThread::WaitingThread() : thread_([this] { runTasks(); }) {}

WaitingThread::~WaitingThread() {
    {
        const std::lock_guard lock(mutex_);
        isEnding_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

void WaitingThread::give(ThreadTask& task) {
    {
        const std::lock_guard lock(mutex_);
        task_ = &task;
    }
    changed_.notify_all();
}

void WaitingThread::waitForEnd() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return !task_; });
}

void WaitingThread::runTasks() {
    std::unique_lock lock(mutex_);
    while (true) {
        changed_.wait(lock, [this] { return task_ || isEnding_; });
        if (!task_) return;
        lock.unlock();
        {
            const DefinedFloats floats;
            task_->run();
        }
        lock.lock();
        task_ = nullptr;
        changed_.notify_all();
    }
}

/// A child of `fork` has none of these threads. It forgets them; to free them would wait for their end.
WaitingThreads::WaitingThreads() {
    const int failure = pthread_atfork([] { ofProcess().mutex_.lock(); }, [] { ofProcess().mutex_.unlock(); },
                                       [] {
                                           ofProcess().first_ = nullptr;
                                           ofProcess().mutex_.unlock();
                                       });
    survivesFork_ = failure == 0;
}

WaitingThreads& WaitingThreads::ofProcess() {
    static WaitingThreads threads;
    return threads;
}

WaitingThread* WaitingThreads::take() {
    WaitingThreads& threads = ofProcess();
    {
        const std::lock_guard lock(threads.mutex_);
        if (WaitingThread* const found = threads.first_) {
            threads.first_ = std::exchange(found->next_, nullptr);
            return found;
        }
    }
    return new WaitingThread;
}

void WaitingThreads::giveBack(WaitingThread* thread) noexcept {
    WaitingThreads& threads = ofProcess();
    {
        const std::lock_guard lock(threads.mutex_);
        if (threads.owners_ > 0 && threads.survivesFork_) {
            thread->next_ = std::exchange(threads.first_, thread);
            return;
        }
    }
    delete thread;
}

void WaitingThreads::keep() {
    WaitingThreads& threads = ofProcess();
    const std::lock_guard lock(threads.mutex_);
    ++threads.owners_;
}

void WaitingThreads::letGo() noexcept {
    WaitingThread* thread = ofProcess().release();
    while (thread) delete std::exchange(thread, thread->next_);
}

WaitingThread* WaitingThreads::release() noexcept {
    const std::lock_guard lock(mutex_);
    return --owners_ == 0 ? std::exchange(first_, nullptr) : nullptr;
}

}  // namespace krl

#endif

#include "core/Thread.h"

#include <algorithm>

#if defined(_WIN32)
#include <windows.h>

#include <new>

#include "core/DefinedFloats.h"
#else
#include <chrono>
#include <system_error>
#include <thread>

#include "core/WaitingThreads.h"
#endif

// A module of WebAssembly without shared memory has its caller's thread alone, and no code for others.
#if defined(__EMSCRIPTEN__) && !defined(__EMSCRIPTEN_PTHREADS__)
#define KRL_ONE_THREAD
#endif

namespace krl {

namespace {

/// Room for a thread is taken beforehand: one that runs must not be lost.
template <class Thread>
void makeRoom(std::vector<Thread>& threads) {
    if (threads.size() == threads.capacity()) threads.reserve(2 * threads.size() + 1);
}

}  // namespace

#if defined(_WIN32)

namespace {

DWORD WINAPI runTask(void* task) {
    const DefinedFloats floats;
    static_cast<ThreadTask*>(task)->run();
    return 0;
}

CRITICAL_SECTION* sectionIn(unsigned char* storage) { return reinterpret_cast<CRITICAL_SECTION*>(storage); }

}  // namespace

int32_t processorCount() {
    SYSTEM_INFO info;
    GetSystemInfo(&info);
    return std::max(1, static_cast<int32_t>(info.dwNumberOfProcessors));
}

uint32_t tickCount() { return GetTickCount(); }

bool ThreadGroup::start(ThreadTask& task) {
    makeRoom(threads_);
    DWORD identifier = 0;
    void* const thread = CreateThread(nullptr, 0, runTask, &task, 0, &identifier);
    if (!thread) return false;
    threads_.push_back(thread);
    return true;
}

/// The system waits for so many handles at once and no more, hence in turns.
void ThreadGroup::join() {
    constexpr size_t kMost = MAXIMUM_WAIT_OBJECTS;
    for (size_t first = 0; first < threads_.size(); first += kMost) {
        const size_t count = std::min(threads_.size() - first, kMost);
        WaitForMultipleObjects(static_cast<DWORD>(count), threads_.data() + first, TRUE, INFINITE);
    }
    for (void* thread : threads_) CloseHandle(thread);
    threads_.clear();
}

void keepThreads() {}
void letThreadsGo() noexcept {}

Mutex::Mutex() {
    static_assert(sizeof(section_) >= sizeof(CRITICAL_SECTION));
    InitializeCriticalSection(new (section_) CRITICAL_SECTION);
}
Mutex::~Mutex() { DeleteCriticalSection(sectionIn(section_)); }
void Mutex::lock() { EnterCriticalSection(sectionIn(section_)); }
void Mutex::unlock() { LeaveCriticalSection(sectionIn(section_)); }

#else

int32_t processorCount() { return std::max(1, static_cast<int32_t>(std::thread::hardware_concurrency())); }

uint32_t tickCount() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

#if defined(KRL_ONE_THREAD)

void keepThreads() {}
void letThreadsGo() noexcept {}
bool ThreadGroup::start(ThreadTask&) { return false; }
void ThreadGroup::join() {}

#else

void keepThreads() { WaitingThreads::keep(); }
void letThreadsGo() noexcept { WaitingThreads::letGo(); }

bool ThreadGroup::start(ThreadTask& task) {
    makeRoom(threads_);
    try {
        threads_.push_back(WaitingThreads::take());
    } catch (const std::system_error&) {
        return false;
    }
    threads_.back()->give(task);
    return true;
}

void ThreadGroup::join() {
    for (WaitingThread* thread : threads_) {
        thread->waitForEnd();
        WaitingThreads::giveBack(thread);
    }
    threads_.clear();
}

#endif

#endif

}  // namespace krl

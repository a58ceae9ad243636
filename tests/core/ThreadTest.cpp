#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cfenv>
#include <chrono>
#include <cmath>
#include <limits>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#if defined(__linux__)
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#endif

#include "core/Bands.h"
#include "core/DefinedFloats.h"
#include "core/Thread.h"

namespace krl {
namespace {

/// Puts the rounding back as programs have it.
struct RoundingReset {
    ~RoundingReset() { std::fesetround(FE_TONEAREST); }
};

/// What this thread makes of a third, and how it rounds.
struct Arithmetic {
    int rounding = -1;
    float third = 0;
    bool keepsSmallNumbers = false;
    bool keepsWidePrecision = false;

    static Arithmetic current() {
        volatile float one = 1, three = 3, least = std::numeric_limits<float>::denorm_min();
        Arithmetic found;
        found.rounding = std::fegetround();
        found.third = one / three;
        found.keepsSmallNumbers = least * 2 > 0;
        volatile long double small = std::numeric_limits<long double>::epsilon();
        found.keepsWidePrecision = 1.0L + small > 1.0L;
        return found;
    }
    bool operator==(const Arithmetic&) const = default;
};

struct ArithmeticTask final : ThreadTask {
    void run() noexcept override { found = Arithmetic::current(); }
    Arithmetic found;
};

struct LateTask final : ThreadTask {
    void run() noexcept override {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        ++*ended;
    }
    std::atomic<int>* ended = nullptr;
};

TEST(ThreadGroup, WaitsForMoreThreadsThanTheSystemWaitsForAtOnce) {
    constexpr int kThreads = 150;
    std::atomic<int> ended = 0;
    std::array<LateTask, kThreads> tasks;
    {
        ThreadGroup group;
        for (LateTask& task : tasks) {
            task.ended = &ended;
            ASSERT_TRUE(group.start(task));
        }
        group.join();
        EXPECT_EQ(ended, kThreads);
        group.join();
        for (LateTask& task : tasks) ASSERT_TRUE(group.start(task));
    }
    EXPECT_EQ(ended, 2 * kThreads) << "a group that goes waits too";
}

TEST(ThreadGroup, RunsBandsBeyondThatNumber) {
    std::vector<int> ran(131);
    ASSERT_EQ(runBands(ImageEngine(), 131, [&](int32_t band) { ++ran[size_t(band)]; }), kStatusOk);
    EXPECT_EQ(ran, std::vector<int>(131, 1));
}

#if defined(__linux__)
/// Which thread it runs on.
struct NamingTask final : ThreadTask {
    void run() noexcept override { thread = std::this_thread::get_id(); }
    std::thread::id thread;
};

std::thread::id threadOfNextGroup() {
    NamingTask task;
    ThreadGroup group;
    return group.start(task) ? (group.join(), task.thread) : std::thread::id();
}

/// How many threads this process has, once those that have ended are gone.
ptrdiff_t threadsOfProcess() {
    namespace fs = std::filesystem;
    ptrdiff_t count = -1, before = -1;
    do {
        before = std::exchange(count, std::distance(fs::directory_iterator("/proc/self/task"), {}));
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    } while (count != before);
    return count;
}

TEST(ThreadGroup, UsesAThreadAgainWhileThereIsAnEngine) {
    const ptrdiff_t before = threadsOfProcess();
    {
        const ImageEngine engine, another;
        const std::thread::id thread = threadOfNextGroup();
        EXPECT_NE(thread, std::thread::id());
        EXPECT_EQ(threadOfNextGroup(), thread);
        ASSERT_EQ(runBands(engine, 4, [](int32_t) {}), kStatusOk);
        EXPECT_EQ(threadsOfProcess(), before + 3);
        ASSERT_EQ(runBands(another, 4, [](int32_t) {}), kStatusOk);
        EXPECT_EQ(threadsOfProcess(), before + 3) << "whichever engine it is";
    }
    EXPECT_EQ(threadsOfProcess(), before);
    EXPECT_NE(threadOfNextGroup(), std::thread::id());
    EXPECT_EQ(threadsOfProcess(), before) << "no thread stays that no engine keeps";
}

// The thread sanitizer lets no child of a program with several threads start one.
#if !defined(__SANITIZE_THREAD__)
TEST(ThreadGroup, StartsThreadsOfItsOwnInAChildOfFork) {
    const ImageEngine engine;
    const std::thread::id thread = threadOfNextGroup();
    ASSERT_NE(thread, std::thread::id());
    const pid_t child = fork();
    if (child == 0) {
        alarm(20);  // ends a child that waits for a thread of its parent
        _exit(threadOfNextGroup() == std::thread::id() ? 1 : 0);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(threadOfNextGroup(), thread) << "the parent still has its own";
}
#endif
#endif

TEST(ThreadGroup, ComputesAsEffectsAreDefinedWhateverItsStarterDoes) {
    const RoundingReset reset;
    const Arithmetic usual = Arithmetic::current();
    std::fesetround(FE_UPWARD);
    EXPECT_NE(Arithmetic::current(), usual);
    ArithmeticTask task;
    ThreadGroup group;
    ASSERT_TRUE(group.start(task));
    group.join();
    EXPECT_EQ(task.found.rounding, FE_TONEAREST);
    EXPECT_EQ(task.found.third, 1.0f / 3.0f);
    EXPECT_TRUE(task.found.keepsSmallNumbers);
    EXPECT_TRUE(task.found.keepsWidePrecision);
}

TEST(DefinedFloats, ReplaceTheCallersSettingsAndGiveThemBack) {
    const RoundingReset reset;
    std::fesetround(FE_UPWARD);
    const Arithmetic before = Arithmetic::current();
    {
        const DefinedFloats floats;
        EXPECT_EQ(std::fegetround(), FE_TONEAREST);
        EXPECT_EQ(Arithmetic::current().third, 1.0f / 3.0f);
    }
    EXPECT_EQ(Arithmetic::current(), before);
}

#if defined(__i386__) || defined(__x86_64__)
TEST(DefinedFloats, WidenTheX87UnitAndKeepItsFlagsFromTheCaller) {
    const uint16_t trappingSingle = 0x0040;
    uint16_t control = 0, status = 0;
    __asm__ volatile("fninit\n\tfldcw %0" : : "m"(trappingSingle));
    {
        const DefinedFloats floats;
        __asm__ volatile("fnstcw %0" : "=m"(control));
        EXPECT_EQ(control, 0x037F);
        volatile long double three = 3;
        volatile long double third = 1 / three;  // inexact
        EXPECT_GT(third, 0);
    }
    __asm__ volatile("fnstcw %0\n\tfnstsw %1\n\tfninit" : "=m"(control), "=m"(status));
    EXPECT_EQ(control, trappingSingle);
    EXPECT_EQ(status & 0x3F, 0);
}
#endif

TEST(Mutex, LetsOneThreadInAtATime) {
    struct CountingTask final : ThreadTask {
        void run() noexcept override {
            for (int i = 0; i < 10000; ++i) {
                const std::lock_guard lock(*mutex);
                ++*count;
            }
        }
        Mutex* mutex = nullptr;
        int* count = nullptr;
    };
    Mutex mutex;
    int count = 0;
    std::array<CountingTask, 4> tasks;
    ThreadGroup group;
    for (CountingTask& task : tasks) {
        task.mutex = &mutex;
        task.count = &count;
        ASSERT_TRUE(group.start(task));
    }
    group.join();
    EXPECT_EQ(count, 40000);
}

TEST(TickCount, CountsMilliseconds) {
    const uint32_t before = tickCount();
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    const uint32_t taken = tickCount() - before;
    EXPECT_GE(taken, 30u);
    EXPECT_LT(taken, 10000u);
}

TEST(ProcessorCount, IsWhatTheSystemTells) {
    EXPECT_EQ(processorCount(), int32_t(std::max(1u, std::thread::hardware_concurrency())));
}

}  // namespace
}  // namespace krl

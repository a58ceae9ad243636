#include <gtest/gtest.h>
#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "methods/Stage.h"

/// What a call leaves behind in the host's process, counted at the allocator.
namespace {

std::atomic<int64_t> liveBytes = 0;

void* take(size_t bytes) {
    void* block = std::malloc(bytes == 0 ? 1 : bytes);
    if (block) liveBytes += static_cast<int64_t>(malloc_usable_size(block));
    return block;
}

void giveBack(void* block) {
    liveBytes -= static_cast<int64_t>(malloc_usable_size(block));
    std::free(block);
}

}  // namespace

void* operator new(size_t bytes) {
    if (void* block = take(bytes)) return block;
    throw std::bad_alloc();
}
void* operator new(size_t bytes, const std::nothrow_t&) noexcept { return take(bytes); }

void operator delete(void* block) noexcept { giveBack(block); }
void operator delete(void* block, size_t) noexcept { giveBack(block); }

namespace krl::host {
namespace {

using krl::test::Stage;

constexpr int32_t kWidth = 800, kHeight = 600;
constexpr int64_t kPictureBytes = int64_t{4} * kWidth * kHeight;

TEST(KeptMemory, IsSeenByThisTest) {
    const int64_t before = liveBytes;
    const auto block = std::make_unique<char[]>(size_t{kPictureBytes});
    EXPECT_GE(liveBytes - before, kPictureBytes);
}

TEST(KeptMemory, IsNoPartOfAPictureAfterAnyMethod) {
    Stage stage;
    stage.load(kWidth, kHeight);
    stage.setBands(2);
    int called = 0;
    for (const Method* method : methods()) {
        if (method->managesTheEngine()) continue;
        const std::vector<player::Value> arguments = stage.examples(*method);
        const int64_t before = liveBytes;
        stage.call(*method, arguments);
        EXPECT_LT(liveBytes - before, kPictureBytes / 8) << method->name();
        ++called;
    }
    EXPECT_GT(called, 100);
}

}  // namespace
}  // namespace krl::host

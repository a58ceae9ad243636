#include <malloc.h>

#include <atomic>
#include <cstdlib>

#include "c/CallingTest.h"
#include "frei0r/LoadedModule.h"

/// Memory that modules take while frames pass. Sanitizers have an allocator of their own, and the engine
/// keeps nothing under them.
#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

namespace {
constexpr size_t kLarge = size_t{1} << 20;
std::atomic<int> largeBlocks{0}, blocks{0};
}  // namespace

extern "C" void* __libc_malloc(size_t bytes);
/// Takes the place of the allocator for this program and all that it loads.
extern "C" void* malloc(size_t bytes) {
    ++blocks;
    if (bytes >= kLarge) ++largeBlocks;
    return __libc_malloc(bytes);
}

namespace krl::test {
namespace {

TEST(Frei0rMemory, CountsBlocks) {
    const int before = blocks, largeBefore = largeBlocks;
    std::vector<uint8_t>(kLarge).swap(*std::make_unique<std::vector<uint8_t>>());
    EXPECT_EQ(largeBlocks, largeBefore + 1);
    EXPECT_GT(blocks, before);
}

/// Lists that grow by doubling may do so twice more for a frame of four times the size.
constexpr int kMoreForLarge = 2;

/// What one frame takes after the first of its size.
struct Taken {
    int all, large;
};

Taken takenByAFrame(const LoadedModule& module, int32_t width, int32_t height) {
    const Frame first(size_t(width) * size_t(height), 0xFF406080u), second(first.size(), 0xFFA0C040u);
    Frame out(first.size());
    Player player(module, width, height);
    player.playInto(first, second, out);
    const int before = blocks, largeBefore = largeBlocks;
    player.playInto(first, second, out);
    return {blocks - before, largeBlocks - largeBefore};
}

TEST(Frei0rMemory, AfterTheFirstFrameOnlySmallBlocksAreTakenAndNoMoreForLargerFrames) {
    for (const krl_method_info* method : callableMethods()) {
        if (!(method->flags & KRL_REWRITES_PICTURE) || method->flags & KRL_INERT) continue;
        const LoadedModule module(method->name);
        ASSERT_TRUE(module);
        const Taken taken = takenByAFrame(module, 960, 540), byLarge = takenByAFrame(module, 1920, 1080);
        EXPECT_EQ(taken.large, 0) << method->name;
        EXPECT_EQ(byLarge.large, 0) << method->name << ", the large frame";
        EXPECT_LE(byLarge.all, taken.all + kMoreForLarge) << method->name;
    }
}

}  // namespace
}  // namespace krl::test

#endif

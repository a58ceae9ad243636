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
std::atomic<int> largeBlocks{0};
}  // namespace

extern "C" void* __libc_malloc(size_t bytes);
/// Takes the place of the allocator for this program and all that it loads.
extern "C" void* malloc(size_t bytes) {
    if (bytes >= kLarge) ++largeBlocks;
    return __libc_malloc(bytes);
}

namespace krl::test {
namespace {

TEST(Frei0rMemory, CountsBlocks) {
    const int before = largeBlocks;
    std::vector<uint8_t>(kLarge).swap(*std::make_unique<std::vector<uint8_t>>());
    EXPECT_EQ(largeBlocks, before + 1);
}

TEST(Frei0rMemory, NothingLargeIsTakenAfterTheFirstFrame) {
    constexpr int32_t kWidth = 1280, kHeight = 720;
    const Frame first(size_t{kWidth} * kHeight, 0xFF406080u), second(first.size(), 0xFFA0C040u);
    Frame out(first.size());
    for (const krl_method_info* method : callableMethods()) {
        if (!(method->flags & KRL_REWRITES_PICTURE) || method->flags & KRL_INERT) continue;
        const LoadedModule module(method->name);
        ASSERT_TRUE(module);
        Player player(module, kWidth, kHeight);
        player.playInto(first, second, out);
        const int before = largeBlocks;
        player.playInto(first, second, out);
        EXPECT_EQ(largeBlocks, before) << method->name;
    }
}

}  // namespace
}  // namespace krl::test

#endif

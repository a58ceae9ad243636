#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <thread>
#include <vector>

#include "core/Faults.h"
#include "core/Scratch.h"
#include "krlimage/engine.h"

namespace krl::test {

namespace {

constexpr size_t kLarge = size_t{8} << 20;

/// Takes and gives back a block of `bytes`.
void useScratch(size_t bytes) {
    const Scratch<uint8_t> block(bytes);
    std::memset(block.data(), 1, bytes);
}

}  // namespace

TEST(Scratch, IsAlignedToCacheLinesAndWholeInEverySize) {
    for (size_t bytes : {size_t{0}, size_t{1}, size_t{63}, size_t{4096}, kLarge, 3 * kLarge + 5}) {
        const Scratch<uint8_t> block(bytes);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(block.data()) % 64, 0u);
        std::memset(block.data(), 0xA5, bytes);
        EXPECT_EQ(block.size(), bytes);
    }
}

TEST(Scratch, NeverGivesOneBlockTwice) {
    ScratchAllowance allowance;
    allowance.set(3 * kLarge);
    { const Scratch<uint8_t> before(kLarge); }
    std::vector<Scratch<uint8_t>> blocks;
    for (int i = 0; i < 6; ++i) {
        blocks.emplace_back(kLarge);
        std::memset(blocks.back().data(), i, kLarge);
    }
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(blocks[size_t(i)][0], i);
        EXPECT_EQ(blocks[size_t(i)][kLarge - 1], i);
    }
}

TEST(Scratch, HandsOutEnoughAfterBlocksOfAnySize) {
    ScratchAllowance allowance;
    allowance.set(3 * kLarge);
    for (size_t bytes : {kLarge, 2 * kLarge, kLarge / 2, 3 * kLarge, kLarge / 3, kLarge}) {
        const Scratch<uint8_t> block(bytes);
        std::memset(block.data(), 1, bytes);
    }
    releaseIdleScratch();
    releaseIdleScratch();
    const Scratch<uint8_t> block(kLarge);
    std::memset(block.data(), 2, kLarge);
}

TEST(Scratch, LeavesNothingAtHandByItself) {
    useScratch(kLarge);
    EXPECT_EQ(idleScratchBytes(), 0u);
}

#if !defined(__SANITIZE_ADDRESS__)  // where no block is used again
TEST(ScratchAllowance, KeepsTheBlocksGivenBackLastUpToItsBytes) {
    ScratchAllowance allowance;
    allowance.set(2 * kLarge);
    useScratch(kLarge);
    EXPECT_EQ(idleScratchBytes(), kLarge);
    useScratch(3 * kLarge);
    EXPECT_EQ(idleScratchBytes(), kLarge) << "too large to be kept, and nothing goes for its sake";
    useScratch(2 * kLarge);
    EXPECT_EQ(idleScratchBytes(), 2 * kLarge) << "in the place of the first";
    allowance.set(kLarge);
    EXPECT_EQ(idleScratchBytes(), 0u);
}

TEST(ScratchAllowance, AddsUpOverItsOwners) {
    ScratchAllowance one;
    one.set(kLarge);
    {
        ScratchAllowance two;
        two.set(kLarge);
        { const Scratch<uint8_t> first(kLarge), second(kLarge), third(kLarge); }
        EXPECT_EQ(idleScratchBytes(), 2 * kLarge);
    }
    EXPECT_EQ(idleScratchBytes(), kLarge);
    releaseIdleScratch();
    EXPECT_EQ(idleScratchBytes(), 0u);
}

TEST(Engine, KeepsWorkingMemoryOfOnePictureAtMostAndOnlyWhileItIsLoaded) {
    constexpr int32_t width = 1024, height = 2048;  // of `kLarge` bytes
    std::vector<uint8_t> pixels(kLarge);
    ImageEngine engine;
    engine.keepScratch(true);
    useScratch(kLarge);
    EXPECT_EQ(idleScratchBytes(), 0u) << "no picture is loaded";
    engine.load(pixels.data(), {width, height, width * 4});
    { const Scratch<uint8_t> first(kLarge), second(kLarge); }
    EXPECT_EQ(idleScratchBytes(), kLarge);
    engine.unload();
    EXPECT_EQ(idleScratchBytes(), 0u);
}

TEST(Engine, KeepsNoWorkingMemoryWhenItIsToldNotTo) {
    std::vector<uint8_t> pixels(kLarge);
    ImageEngine engine;
    engine.load(pixels.data(), {1024, 2048, 4096});
    useScratch(kLarge);
    EXPECT_EQ(idleScratchBytes(), sizeof(void*) > 4 ? kLarge : 0) << "at the start";
    engine.keepScratch(false);
    EXPECT_EQ(idleScratchBytes(), 0u);
    useScratch(kLarge);
    EXPECT_EQ(idleScratchBytes(), 0u);
}
#endif

TEST(Scratch, IsTakenAndGivenOnAnyThread) {
    ScratchAllowance allowance;
    allowance.set(2 * kLarge);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([i] {
            for (int round = 0; round < 20; ++round) {
                const Scratch<uint8_t> block(kLarge / size_t(1 + i % 2));
                std::memset(block.data(), i, 4096);
                for (size_t at = 0; at < 4096; ++at) ASSERT_EQ(block[at], i);
            }
        });
    for (std::thread& thread : threads) thread.join();
}

TEST(Scratch, ThatCannotBeHadThrows) {
    EXPECT_THROW(takeScratch(std::numeric_limits<size_t>::max()), std::bad_alloc);
    { const Scratch<uint8_t> before(kLarge); }
    faults().scratchBlocks = 0;
    EXPECT_THROW(Scratch<uint8_t>{kLarge}, std::bad_alloc);
    faults().scratchBlocks = -1;
    const Scratch<uint8_t> after(kLarge);
    EXPECT_NE(after.data(), nullptr);
}

}  // namespace krl::test

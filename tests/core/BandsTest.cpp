#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <climits>
#include <cmath>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <vector>

#include "core/Bands.h"
#include "core/Faults.h"
#include "core/ImageCopy.h"
#include "support/Picture.h"

namespace krl {
namespace {

using test::Picture;

ImageBuffer bufferOf(int32_t width, int32_t height, uint8_t* pixels = nullptr) {
    ImageBuffer buffer{pixels, height, width, width * 4, nullptr};
    buffer.end = pixels + ptrdiff_t(buffer.rowBytes) * height;
    return buffer;
}

std::vector<int32_t> bandSizes(const ImageBuffer& image, int32_t threads) {
    std::vector<int32_t> sizes;
    for (int32_t band = 0; band < threads; ++band) {
        const IndexRange run = pixelBand(image, threads, band);
        sizes.push_back(run.last - run.first);
    }
    return sizes;
}

/// Puts the fault seam back as programs have it.
struct FaultReset {
    ~FaultReset() { faults() = Faults{}; }
};

TEST(Truncation, GoesTowardZeroAndMarksWhatDoesNotFit) {
    EXPECT_EQ(truncate(2.99), 2);
    EXPECT_EQ(truncate(-2.99), -2);
    EXPECT_EQ(truncate(2147483647.9), INT_MAX);
    EXPECT_EQ(truncate(2147483648.0), INT_MIN);
    EXPECT_EQ(truncate(-2147483648.9), INT_MIN);
    EXPECT_EQ(truncate(1e300), INT_MIN);
    EXPECT_EQ(truncate(-1e300), INT_MIN);
    EXPECT_EQ(truncate(std::nan("")), INT_MIN);
    EXPECT_EQ(truncatedByte(std::nan("")), 0);
    EXPECT_EQ(truncatedByte(-INFINITY), 0);
    EXPECT_EQ(truncatedByte(INFINITY), 255);
}

TEST(PixelBands, LeaveALateBandShortOrEmpty) {
    uint8_t block[64] = {};
    EXPECT_EQ(bandSizes(bufferOf(2, 2, block), 3), (std::vector<int32_t>{2, 2, 0}));
    EXPECT_EQ(bandSizes(bufferOf(5, 1, block), 4), (std::vector<int32_t>{2, 2, 1, 0}));
    EXPECT_EQ(bandSizes(bufferOf(4, 4, block), 1), (std::vector<int32_t>{16}));
}

TEST(PixelBands, ComeOutShortWhereSinglePrecisionRoundsTheQuotientDown) {
    constexpr int32_t beyond = (1 << 24) + 1;
    EXPECT_EQ(ceilingShare(beyond, 1), 1 << 24);
    EXPECT_EQ(ceilingShare(beyond + 2, 1), beyond + 3);  // rounded up: the block's end clips it
    EXPECT_EQ(ceilingShare(beyond, 2), 1 << 23);         // the half is lost, and the last pixel with it
}

/// One pixel more than single precision can count.
TEST(PixelBands, ReachTheLastPixelUnlessShortBandsAreKept) {
    std::vector<Pixel> pixels(97 * 257 * 673);
    ASSERT_EQ(pixels.size(), (1u << 24) + 1);
    ImageEngine engine;
    const ImageInfo info{673, 97 * 257, 673 * 4, 0, 0, 0};
    engine.load(firstByte(pixels.data()), info);
    for (const int32_t bands : {1, 2, 3})
        for (const bool isKept : {false, true}) {
            std::fill(pixels.begin(), pixels.end(), Pixel{});
            engine.setThreadCount(bands);
            engine.keepShortBands(isKept);
            EXPECT_EQ(forEachPixel(engine, [](Pixel& p) { ++p.blue; }), kStatusOk);
            const auto untouched = std::count(pixels.begin(), pixels.end(), Pixel{});
            EXPECT_EQ(untouched, isKept && bands < 3 ? 1 : 0) << bands;
            EXPECT_EQ(std::count(pixels.begin(), pixels.end(), Pixel{1, 0, 0, 0}) + untouched,
                      ptrdiff_t(pixels.size()));
        }
}

TEST(PixelBands, StopAtTheEndOfTheBlockWhenRowsArePadded) {
    uint8_t block[64] = {};
    ImageBuffer padded{block, 2, 3, 16, block + 32};
    EXPECT_EQ(pixelBand(padded, 1, 0).last, 6);  // the tail of the block is never reached
    ImageBuffer cut{block, 2, 3, 8, block + 16};
    EXPECT_EQ(pixelBand(cut, 1, 0).last, 4);
}

TEST(PixelBands, HoldNothingOfABlockThatEndsBeforeItBegins) {
    uint8_t block[64] = {};
    const ImageBuffer upward{block + 24, 2, 3, -12, block};
    for (int32_t band : {0, 1}) {
        const IndexRange run = pixelBand(upward, 2, band);
        EXPECT_GE(run.first, run.last) << band;
    }
}

TEST(LineBands, DealRowsByTheCeilingAndEndAtTheLast) {
    const auto range = [](int32_t band) {
        const IndexRange lines = lineBand(10, 4, band);
        return std::pair(lines.first, lines.last);
    };
    EXPECT_EQ(range(0), std::pair(0, 3));
    EXPECT_EQ(range(3), std::pair(9, 10));
    EXPECT_EQ(lineBand(2, 7, 5).first, lineBand(2, 7, 5).last);
}

/// What bands run on, with the threads as scripts require them.
class BandRunner : public testing::Test {
protected:
    BandRunner() { engine.requireThreads(true); }
    ~BandRunner() override { faults() = Faults{}; }

    ImageEngine engine;
};

TEST_F(BandRunner, RunsEveryBandOnceAndTheLastOnTheCaller) {
    std::vector<std::thread::id> ran(5);
    ASSERT_EQ(runBands(engine, 5, [&](int32_t band) { ran[size_t(band)] = std::this_thread::get_id(); }),
              kStatusOk);
    EXPECT_TRUE(ran[4] == std::this_thread::get_id());
    for (size_t band = 0; band < 4; ++band) {
        EXPECT_TRUE(ran[band] != std::thread::id());
        EXPECT_TRUE(ran[band] != ran[4]);
    }
}

TEST_F(BandRunner, StartsNoThreadForASingleBand) {
    faults().threads = 0;
    std::thread::id ran;
    EXPECT_EQ(runBands(engine, 1, [&](int32_t) { ran = std::this_thread::get_id(); }), kStatusOk);
    EXPECT_TRUE(ran == std::this_thread::get_id());
}

TEST_F(BandRunner, EndsTheStartedBandsBeforeItReportsAMissingTaskOrThread) {
    std::atomic<int> ran = 0;
    faults().tasks = 2;
    EXPECT_EQ(runBands(engine, 4, [&](int32_t) { ++ran; }), kStatusNoTaskMemory);
    EXPECT_EQ(ran, 2);
    faults() = Faults{};
    faults().threads = 1;
    EXPECT_EQ(runBands(engine, 4, [&](int32_t) { ++ran; }), kStatusThreadFailed);
    EXPECT_EQ(ran, 3);
    faults() = Faults{};
    faults().tasks = 0;
    EXPECT_EQ(runBands(engine, 1, [&](int32_t) { ++ran; }), kStatusNoTaskMemory);
    EXPECT_EQ(ran, 3);
}

TEST_F(BandRunner, ThrowsOnWhatABandThrewAfterAllHaveEnded) {
    std::atomic<int> ran = 0;
    const auto work = [&](int32_t band) {
        ++ran;
        if (band == 0) throw std::runtime_error("first band");
    };
    EXPECT_THROW(static_cast<void>(runBands(engine, 3, work)), std::runtime_error);
    EXPECT_EQ(ran, 3);
}

TEST_F(BandRunner, RunsEveryBandOnTheCallerWhereNothingElseCan) {
    engine.requireThreads(false);
    for (int32_t Faults::*supply : {&Faults::tasks, &Faults::threads})
        for (int32_t granted : {0, 1, 2}) {
            faults() = Faults{};
            faults().*supply = granted;
            std::vector<std::atomic<int>> runs(4);
            std::atomic<int> elsewhere = 0;
            const auto caller = std::this_thread::get_id();
            EXPECT_EQ(runBands(engine, 4,
                               [&](int32_t band) {
                                   ++runs[size_t(band)];
                                   elsewhere += std::this_thread::get_id() != caller;
                               }),
                      kStatusOk);
            for (const auto& count : runs) EXPECT_EQ(count, 1);
            EXPECT_LT(elsewhere, 3);
        }
}

TEST_F(BandRunner, RunsNothingOnACancelledEngineUntilItResumes) {
    int ran = 0;
    engine.cancel();
    EXPECT_THROW(static_cast<void>(runBands(engine, 1, [&](int32_t) { ++ran; })), Cancelled);
    EXPECT_EQ(ran, 0);
    engine.resume();
    EXPECT_EQ(runBands(engine, 1, [&](int32_t) { ++ran; }), kStatusOk);
    EXPECT_EQ(ran, 1);
}

TEST_F(BandRunner, EndsEveryBandBeforeACancelledPassEnds) {
    std::atomic<int> running = 0;
    const auto spin = [&](int32_t band) {
        ++running;
        if (band == 3) engine.cancel();
        try {
            for (;;) engine.throwIfCancelled();
        } catch (const Cancelled&) {
            --running;
            throw;
        }
    };
    EXPECT_THROW(static_cast<void>(runBands(engine, 4, spin)), Cancelled);
    EXPECT_EQ(running, 0);
}

/// Runs `pass` on an engine that is cancelled by what it does first; returns how often it did it.
template <class Pass>
int stepsUntilCancelled(const Pass& pass) {
    Picture picture(300, 700);
    int steps = 0;
    ImageEngine engine;
    engine.load(firstByte(picture.pixels().data()), picture.info());
    EXPECT_THROW(static_cast<void>(pass(engine,
                                        [&] {
                                            ++steps;
                                            engine.cancel();
                                        })),
                 Cancelled);
    return steps;
}

TEST(Passes, EndBetweenTwoPiecesOrRowsWhenTheyAreCancelled) {
    EXPECT_EQ(stepsUntilCancelled([](ImageEngine& engine, const auto& step) {
                  return forEachSpan(engine, [&](Pixel*, Pixel*) { step(); });
              }),
              1);
    EXPECT_EQ(stepsUntilCancelled([](ImageEngine& engine, const auto& step) {
                  return forEachRow(engine, [&](Pixel*, int32_t) { step(); });
              }),
              1);
}

TEST(PixelPasses, VisitEveryPixelOnceForAnyNumberOfBands) {
    for (int32_t bands : {1, 2, 3, 4, 7, 64}) {
        Picture picture(7, 5, {0, 0, 0, 0});
        const auto count = [](ImageEngine& engine) {
            return forEachPixel(engine, [](Pixel& p) { ++p.red; });
        };
        EXPECT_EQ(picture.apply(count, bands), kStatusOk);
        EXPECT_EQ(picture, Picture(7, 5, Pixel{0, 0, 1, 0})) << bands;
    }
}

/// A 3 by 3 picture whose rows have a fourth pixel of padding.
struct PaddedPicture {
    std::vector<Pixel> block = std::vector<Pixel>(12);
    ImageInfo info{3, 3, 16, 0, 0, 0};
    ImageEngine engine;

    explicit PaddedPicture(int32_t bands) {
        engine.load(firstByte(block.data()), info);
        engine.setThreadCount(bands);
    }
};

TEST(PixelPairs, EndWhereASecondImageOfTightRowsEnds) {
    // Bands of an even share reach past the 9 pixels that a 3 by 3 image has without padding.
    for (int32_t bands : {1, 2, 4, 5, 7, 8}) {
        PaddedPicture padded(bands);
        const auto tight = std::make_unique<Pixel[]>(9);
        for (uint8_t i = 0; i < 9; ++i) tight[i] = {i, 0, 0, 0};
        const SecondImage other{firstByte(tight.get()), {3, 3, 12, 0, 0, 0}};
        ASSERT_EQ(forEachPixelPair(padded.engine, other,
                                   [](Pixel& p, const Pixel& beside) {
                                       p.blue = beside.blue;
                                       ++p.red;
                                   }),
                  kStatusOk);
        for (size_t i = 0; i < 12; ++i) {
            EXPECT_EQ(padded.block[i].red, i < 9 ? 1 : 0) << i << " in " << bands << " bands";
            EXPECT_EQ(padded.block[i].blue, i < 9 ? i : 0) << i << " in " << bands << " bands";
        }
    }
}

TEST(PixelPairs, GoAsFarAsTheBandsBesideASecondImageOfPaddedRows) {
    PaddedPicture padded(2);
    const std::vector<Pixel> likewise(12, Pixel{7, 0, 0, 0});
    const SecondImage other{firstByte(likewise.data()), padded.info};
    ASSERT_EQ(
        forEachPixelPair(padded.engine, other, [](Pixel& p, const Pixel& beside) { p.blue = beside.blue; }),
        kStatusOk);
    for (size_t i = 0; i < 12; ++i) EXPECT_EQ(padded.block[i].blue, i < 10 ? 7 : 0) << i;
}

TEST(StateTests, ComeBeforeEveryKindOfPass) {
    test::expectStateTests([](ImageEngine& e) { return forEachPixel(e, [](Pixel&) {}); });
    test::expectStateTests([](ImageEngine& e) { return forEachRow(e, [](Pixel*, int32_t) {}); });
    test::expectStateTests([](ImageEngine& e) { return forEachColumnRange(e, [](IndexRange) {}); });
}

TEST(Engine, KeepsTheLastAddressAfterUnloadButHasNoImage) {
    Picture picture(2, 2);
    ImageEngine engine;
    engine.load(reinterpret_cast<uint8_t*>(picture.pixels().data()), picture.info());
    EXPECT_EQ(engine.buffer()->height, 2);
    engine.unload();
    EXPECT_EQ(engine.imageStatus(), kStatusNoImage);
    EXPECT_EQ(engine.getPixels(), reinterpret_cast<uint8_t*>(picture.pixels().data()));
    EXPECT_EQ(engine.getImageInfo().width, 2);
}

TEST(Engine, ReplacesALoadedImageByAnother) {
    Picture first(2, 2), second(3, 1);
    ImageEngine engine;
    engine.load(reinterpret_cast<uint8_t*>(first.pixels().data()), first.info());
    engine.load(reinterpret_cast<uint8_t*>(second.pixels().data()), second.info());
    EXPECT_EQ(engine.buffer()->width, 3);
    EXPECT_EQ(engine.buffer()->height, 1);
}

TEST(Engine, TakesOneBandOrOneForEachProcessor) {
    ImageEngine engine;
    EXPECT_EQ(engine.getThreadCount(), 1);
    engine.configureExecution(false);
    EXPECT_EQ(engine.getThreadCount(), std::max(1, int32_t(std::thread::hardware_concurrency())));
    engine.configureExecution(true);
    EXPECT_EQ(engine.getThreadCount(), 1);
}

TEST(Engine, TurnsTheWidePathsOnForModeTwoAlone) {
    ImageEngine engine;
    engine.selectInstructionSet(2);
    EXPECT_TRUE(engine.useWidePath());
    engine.selectInstructionSet(3);
    EXPECT_FALSE(engine.useWidePath());
    engine.configureExecution(false);
    EXPECT_FALSE(engine.useWidePath());
}

TEST(Scratch, ThrowsWhenTheSeamGrantsNoMore) {
    const FaultReset reset;
    faults().scratchBlocks = 1;
    Scratch<int32_t> granted(4);
    EXPECT_EQ(granted.size(), 4u);
    EXPECT_THROW(Scratch<int32_t>(4), std::bad_alloc);
}

}  // namespace
}  // namespace krl

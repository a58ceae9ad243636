#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <string>

#include "core/Faults.h"
#include "core/Random.h"
#include "kernels/blur/TentBlur.h"
#include "kernels/blur/TentWindow.h"
#include "reference/TentBlurReference.h"
#include "support/Picture.h"

namespace krl::test {

namespace {

using Kernel = Status (TentBlur::*)(Pixel*, int32_t, int32_t, int32_t);

/// A kernel on pixels with the channels it blurs.
struct PixelKernel {
    const char* name;
    Kernel run;
    size_t first, last;
};

constexpr PixelKernel kKernels[] = {
    {"RGBA", &TentBlur::blurRGBA, 0, 3},     {"RGB", &TentBlur::blurRGB, 0, 2},
    {"Alpha", &TentBlur::blurAlpha, 3, 3},   {"Chroma", &TentBlur::blurChroma, 0, 1},
    {"Single", &TentBlur::blurSingle, 0, 0},
};

Picture blurred(Picture picture, const PixelKernel& kernel, int32_t radius, int32_t threadCount = 1) {
    const EngineOf engine(threadCount);
    TentBlur blur(engine);
    EXPECT_EQ((blur.*kernel.run)(picture.pixels().data(), picture.height(), picture.width(), radius),
              kStatusOk);
    return picture;
}

ImageBuffer viewOf(Picture& picture) {
    auto* bytes = reinterpret_cast<uint8_t*>(picture.pixels().data());
    const int32_t rowBytes = picture.width() * 4;
    return {bytes, picture.height(), picture.width(), rowBytes,
            bytes + ptrdiff_t(rowBytes) * picture.height()};
}

Picture expected(Picture picture, const PixelKernel& kernel, int32_t radius) {
    picture.pixels() = reference::tentPixels(picture.pixels(), picture.height(), picture.width(), radius,
                                             kernel.first, kernel.last);
    return picture;
}

}  // namespace

TEST(TentWindow, ReachesSeventyTwoHundredthsOfTheRadius) {
    EXPECT_EQ(tent::halfWidth(0), 0);
    EXPECT_EQ(tent::halfWidth(1), 1);
    EXPECT_EQ(tent::halfWidth(2), 1);
    EXPECT_EQ(tent::halfWidth(3), 2);
    EXPECT_EQ(tent::halfWidth(10), 7);
    EXPECT_EQ(tent::halfWidth(5000), 3600);
    EXPECT_EQ(tent::halfWidth(-1), -1);
    EXPECT_EQ(tent::halfWidth(INT32_MAX), tent::kWidest);
    EXPECT_LT(tent::halfWidth(INT32_MIN), 0);
}

// A quotient only changes at multiples of the weight, so one sum on each side of each step is the
// whole range of sums.
template <class Arithmetic>
void expectExactUpTo(int32_t widest) {
    for (int32_t halfWidth = 1; halfWidth <= widest; ++halfWidth) {
        const Arithmetic arithmetic(halfWidth);
        const auto weight = static_cast<uint64_t>(tent::weightOf(halfWidth));
        using Sum = typename Arithmetic::Sum;
        ASSERT_LE(weight * 255, std::numeric_limits<Sum>::max());
        for (uint64_t level = 0; level <= 255; ++level) {
            const auto quotient = [&](uint64_t sum) {
                return arithmetic.quotient(arithmetic.kept(static_cast<Sum>(sum)));
            };
            ASSERT_EQ(quotient(weight * level), level) << halfWidth;
            if (level < 255) {
                ASSERT_EQ(quotient(weight * level + weight - 1), level) << halfWidth;
            }
        }
    }
}

TEST(TentWindow, DividesExactlyForEverySumOfEveryWindow) {
    expectExactUpTo<tent::ShortBytes>(tent::kWidestShort);
    expectExactUpTo<tent::MiddleBytes>(tent::kWidestMiddle);
    expectExactUpTo<tent::NarrowBytes>(tent::kWidestNarrow);
}

TEST(TentBlur, WeighsThreeSamplesOneTwoOneAtRadiusOne) {
    Picture picture(3, {{0, 0, 0, 0}, {100, 40, 7, 255}, {0, 0, 0, 0}});
    EXPECT_EQ(TentBlur(EngineOf(1)).blurRGBA(picture.pixels().data(), 1, 3, 1), kStatusOk);
    EXPECT_EQ(picture, Picture(3, {{25, 10, 1, 63}, {50, 20, 3, 127}, {25, 10, 1, 63}}));
}

TEST(TentBlur, RepeatsTheEdgeSample) {
    Picture picture = Picture::grey({{200, 0}});
    EXPECT_EQ(TentBlur(EngineOf(1)).blurRGB(picture.pixels().data(), 1, 2, 1), kStatusOk);
    EXPECT_EQ(picture, Picture::grey({{150, 50}}));
}

TEST(TentBlur, EqualsTheWeightedSumForEveryKernelAndRadius) {
    constexpr int32_t shapes[][2] = {{1, 1}, {1, 12}, {13, 1}, {2, 3}, {23, 17}, {150, 5}, {5, 90}};
    for (const auto& [width, height] : shapes) {
        for (int32_t radius = -3; radius <= 60; ++radius) {
            const Picture source = Picture::random(width, height, radius + 100 * width);
            for (const PixelKernel& kernel : kKernels) {
                ASSERT_EQ(blurred(source, kernel, radius), expected(source, kernel, radius))
                    << kernel.name << ' ' << width << 'x' << height << " radius " << radius;
            }
        }
    }
}

TEST(TentBlur, EqualsTheWeightedSumWhereWindowsOutgrowTheirSums) {
    const Picture source = Picture::random(31, 9, 5);
    for (int32_t radius : {120, 174, 175, 176, 177, 300, 4019, 4020, 4021, 4022, 5000, 5700, 9000, 40000})
        for (const PixelKernel& kernel : kKernels)
            ASSERT_EQ(blurred(source, kernel, radius), expected(source, kernel, radius))
                << kernel.name << radius;
}

// A tile is 512 pixels or 2048 bytes wide.
TEST(TentBlur, EqualsTheWeightedSumInEveryTileOfColumns) {
    const Picture source = Picture::random(4200, 5, 3);
    for (const PixelKernel& kernel : kKernels)
        EXPECT_EQ(blurred(source, kernel, 3), expected(source, kernel, 3)) << kernel.name;
}

TEST(TentBlur, WeighsBothEndsAlikeAtAnEndlessRadius) {
    Picture picture = Picture::grey({{10, 255, 255, 255, 31}});
    EXPECT_EQ(TentBlur(EngineOf(1)).blurRGBA(picture.pixels().data(), 1, 5, INT32_MAX), kStatusOk);
    for (const Pixel& p : picture.pixels()) EXPECT_EQ(p.blue, 20);
}

TEST(TentBlur, ReturnsAFlatBlockUnchanged) {
    for (int level : {0, 1, 127, 128, 254, 255}) {
        const auto v = static_cast<uint8_t>(level);
        const Picture flat(37, 11, {v, uint8_t(255 - v), v, uint8_t(255 - v)});
        for (int32_t radius : {1, 2, 7, 50, 1000, 6000, 2000000000})
            for (const PixelKernel& kernel : kKernels)
                EXPECT_EQ(blurred(flat, kernel, radius), flat) << kernel.name;
    }
}

TEST(TentBlur, GivesTheSameBytesForAnyNumberOfThreads) {
    constexpr int32_t shapes[][2] = {{1, 1}, {1, 9}, {300, 2}, {61, 40}};
    for (const auto& [width, height] : shapes) {
        const Picture source = Picture::random(width, height, 8);
        for (const PixelKernel& kernel : kKernels)
            for (int32_t threads : {2, 3, 5, 16})
                EXPECT_EQ(blurred(source, kernel, 9, threads), blurred(source, kernel, 9)) << kernel.name;
    }
}

// Rows are blurred 16 or 64 at a time, and as many are kept as the windows reach and a few strips more.
TEST(TentBlur, EqualsTheWeightedSumWhereRowsTakeThePlaceOfOthers) {
    const Picture source = Picture::random(7, 530, 4);
    for (int32_t radius : {1, 5, 22, 90, 300})
        for (const PixelKernel& kernel : kKernels)
            EXPECT_EQ(blurred(source, kernel, radius), expected(source, kernel, radius))
                << kernel.name << radius;
}

TEST(TentBlur, BlursIntoACopyInAnyNumberOfBands) {
    Picture source = Picture::random(21, 260, 9);
    for (const auto& [target, kernel] : {std::pair{ChannelTarget::RGBA, kKernels[0]},
                                         {ChannelTarget::RGB, kKernels[1]},
                                         {ChannelTarget::Alpha, kKernels[2]}})
        for (int32_t threads : {1, 2, 3, 5, 16, 300})
            for (int32_t radius : {-1, 0, 1, 6, 20, 70, 500}) {
                const EngineOf engine(threads);
                const ImageBuffer image = viewOf(source);
                const ScratchImage copy(image);
                ASSERT_EQ(TentBlur(engine).blurInto(copy, image, radius, target), kStatusOk);
                const Picture wanted = expected(source, kernel, radius);
                ASSERT_TRUE(std::equal(wanted.pixels().begin(), wanted.pixels().end(), copy.row(0)))
                    << kernel.name << ' ' << threads << " threads, radius " << radius;
            }
}

TEST(TentBlur, CopiesWhereARequiredThreadCannotStart) {
    Picture source = Picture::random(21, 260, 9);
    EngineOf engine(4);
    engine.requireThreads(true);
    const ImageBuffer image = viewOf(source);
    for (int32_t started : {0, 2}) {
        const ScratchImage copy(image);
        faults().threads = started;
        EXPECT_EQ(TentBlur(engine).blurInto(copy, image, 5, ChannelTarget::RGB), kStatusThreadFailed);
        faults().threads = -1;
        EXPECT_TRUE(std::equal(source.pixels().begin(), source.pixels().end(), copy.row(0)));
    }
}

TEST(TentBlur, BlursAnyChannelAlone) {
    const Picture source = Picture::random(19, 14);
    for (int32_t channel = 0; channel < 4; ++channel) {
        Picture picture = source;
        EXPECT_EQ(TentBlur(EngineOf(2)).blurChannel(picture.pixels().data(), 14, 19, 6, channel), kStatusOk);
        EXPECT_EQ(picture.pixels(),
                  reference::tentPixels(source.pixels(), 14, 19, 6, size_t(channel), size_t(channel)));
    }
}

TEST(TentBlur, BlursAPlaneOfBytesAsItBlursAChannel) {
    Picture picture = Picture::random(40, 23);
    std::vector<uint8_t> plane;
    for (const Pixel& p : picture.pixels()) plane.push_back(p.alpha);
    const EngineOf engine(3);
    TentBlur blur(engine);
    EXPECT_EQ(blur.blurBytes(plane.data(), 23, 40, 11), kStatusOk);
    EXPECT_EQ(blur.blurAlpha(picture.pixels().data(), 23, 40, 11), kStatusOk);
    for (size_t i = 0; i < plane.size(); ++i) ASSERT_EQ(plane[i], picture.pixels()[i].alpha);
}

TEST(TentBlur, LeavesEmptyBlocksAlone) {
    Pixel pixel{1, 2, 3, 4};
    EXPECT_EQ(TentBlur(EngineOf(2)).blurRGBA(&pixel, 0, 5, 3), kStatusOk);
    EXPECT_EQ(TentBlur(EngineOf(2)).blurRGBA(&pixel, 5, 0, 3), kStatusOk);
    EXPECT_EQ(pixel, (Pixel{1, 2, 3, 4}));
}

TEST(TentBlur, RequiresThreadsAsItsEngineDoesUnlessItIsToldOtherwise) {
    const Picture source = Picture::random(40, 20);
    EngineOf engine(3);
    engine.requireThreads(true);
    faults().threads = 0;
    Picture picture = source;
    EXPECT_EQ(TentBlur(engine).blurRGBA(picture.pixels().data(), 20, 40, 4), kStatusThreadFailed);
    EXPECT_EQ(picture, source);
    EXPECT_EQ(TentBlur(engine, false).blurRGBA(picture.pixels().data(), 20, 40, 4), kStatusOk);
    faults().threads = -1;
    EXPECT_EQ(picture, expected(source, kKernels[0], 4));
}

TEST(TentBlur, TakesItsScratchBeforeItWrites) {
    Picture picture = Picture::random(8, 8);
    const Picture before = picture;
    faults().scratchBlocks = 0;
    EXPECT_THROW(static_cast<void>(TentBlur(EngineOf(1)).blurRGBA(picture.pixels().data(), 8, 8, 3)),
                 std::bad_alloc);
    faults().scratchBlocks = -1;
    EXPECT_EQ(picture, before);
}

}  // namespace krl::test

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include "core/Random.h"
#include "kernels/sample/Sampler.h"
#include "kernels/sample/Trigonometry.h"
#include "reference/WarpReference.h"

namespace krl::test {
namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

/// What bilinear sampling of `picture` at (x, y) writes over a mark.
Pixel sampled(const Picture& picture, float x, float y, ChannelTarget target = ChannelTarget::RGBA,
              SampleEdge edge = SampleEdge::Repeat) {
    SlowWarp warp(picture, SampleQuality::Bilinear, target);
    Pixel mark{1, 2, 3, 4};
    sampleBilinear(makeSamplePoint(y, x, picture.width(), picture.height()), mark, warp.view(), target, edge);
    return mark;
}

Picture fourLevels() { return Picture::grey({{0, 100}, {200, 50}}); }
Pixel grey(int level, int alpha = 255) {
    return {uint8_t(level), uint8_t(level), uint8_t(level), uint8_t(alpha)};
}
constexpr Pixel kMark{1, 2, 3, 4};

TEST(SamplePoint, WeighsTheUpperRowAndTheLowerColumn) {
    const SamplePoint p = makeSamplePoint(2.25f, 1.75f, 8, 8);
    EXPECT_EQ(p.xFloor, 1);
    EXPECT_EQ(p.xCeil, 2);
    EXPECT_EQ(p.yFloor, 2);
    EXPECT_EQ(p.yCeil, 3);
    EXPECT_EQ(p.yWeight, 0.25f);
    EXPECT_EQ(p.xWeight, 0.25f);
    EXPECT_TRUE(p.inside);
    EXPECT_FALSE(p.leftStrip || p.rightStrip || p.topStrip || p.bottomStrip);
}

TEST(SamplePoint, OnAWholePlaceHasOneIndexAndWeightOne) {
    const SamplePoint p = makeSamplePoint(3, 5, 8, 8);
    EXPECT_EQ(p.xFloor, 5);
    EXPECT_EQ(p.xCeil, 5);
    EXPECT_EQ(p.xWeight, 1);
    EXPECT_EQ(p.yFloor, 3);
    EXPECT_EQ(p.yCeil, 3);
    EXPECT_EQ(p.yWeight, 1);
}

TEST(SamplePoint, ReachesTwoPixelsBeyondTheLeftAndTopOnly) {
    for (float x : {-0.5f, -1.5f}) {
        const SamplePoint left = makeSamplePoint(2, x, 4, 4);
        EXPECT_TRUE(left.leftStrip) << x;
        EXPECT_EQ(left.xCeil, 0);
        EXPECT_EQ(left.xFloor, x > -1 ? -1 : -2);
        EXPECT_TRUE(makeSamplePoint(x, 2, 4, 4).topStrip) << x;
    }
    EXPECT_EQ(makeSamplePoint(2, -1, 4, 4).xCeil, -1);
    EXPECT_FALSE(makeSamplePoint(2, -1, 4, 4).leftStrip);
    EXPECT_EQ(makeSamplePoint(2, -2.5f, 4, 4).xCeil, -2);
    EXPECT_FALSE(makeSamplePoint(2, -2.5f, 4, 4).leftStrip);
    EXPECT_TRUE(makeSamplePoint(2, 3.5f, 4, 4).rightStrip);
    EXPECT_TRUE(makeSamplePoint(3.5f, 2, 4, 4).bottomStrip);
}

TEST(SamplePoint, NamesTheCorners) {
    EXPECT_TRUE(makeSamplePoint(-0.5f, -0.5f, 4, 4).cornerTopLeft);
    EXPECT_TRUE(makeSamplePoint(3.5f, -0.5f, 4, 4).cornerBottomLeft);
    EXPECT_TRUE(makeSamplePoint(-0.5f, 3.5f, 4, 4).cornerTopRight);
    EXPECT_TRUE(makeSamplePoint(3.5f, 3.5f, 4, 4).cornerBottomRight);
}

TEST(Bilinear, TruncatesTheColumnsAndThenTheRow) {
    EXPECT_EQ(sampled(fourLevels(), 0.5f, 0.5f), grey(87));  // 100, 75, and then 87.5
    EXPECT_EQ(sampled(fourLevels(), 0.25f, 0.0f), grey(25));
    EXPECT_EQ(sampled(fourLevels(), 0.0f, 0.75f), grey(150));
}

TEST(Bilinear, WritesNothingOffACornerOrFartherOutside) {
    for (auto [x, y] : {std::pair{-0.5f, -0.5f},
                        {1.5f, 1.5f},
                        {-0.5f, 1.5f},
                        {1.5f, -0.5f},
                        {2.0f, 0.0f},
                        {0.0f, 2.0f},
                        {-1.0f, 0.0f},
                        {kNaN, 0.0f},
                        {0.0f, kNaN},
                        {kInfinity, 0.0f},
                        {-3e9f, 0.0f},
                        {3e9f, 3e9f}})
        EXPECT_EQ(sampled(fourLevels(), x, y), kMark) << x << ' ' << y;
}

TEST(Bilinear, RepeatsTheEdgeInTheStrips) {
    EXPECT_EQ(sampled(fourLevels(), 0.5f, -0.5f), grey(50));
    EXPECT_EQ(sampled(fourLevels(), 0.5f, 1.5f), grey(125));
    EXPECT_EQ(sampled(fourLevels(), -0.5f, 0.5f), grey(100));
    EXPECT_EQ(sampled(fourLevels(), -1.5f, 0.5f), grey(100));
    EXPECT_EQ(sampled(fourLevels(), 1.5f, 0.5f), grey(75));
}

TEST(Bilinear, FadesAlphaOutsideWhereItIsAskedTo) {
    const auto faded = [](float x, float y, ChannelTarget target = ChannelTarget::RGBA) {
        return sampled(fourLevels(), x, y, target, SampleEdge::FadeAlpha).alpha;
    };
    EXPECT_EQ(faded(0.5f, -0.25f), 191);  // 0.75 of 255
    EXPECT_EQ(faded(0.5f, 1.25f), 191);
    EXPECT_EQ(faded(-0.25f, 0.5f), 191);
    EXPECT_EQ(faded(1.25f, 0.5f), 191);
    EXPECT_EQ(faded(0.5f, 0.5f), 255);
    EXPECT_EQ(faded(0.5f, -0.25f, ChannelTarget::Alpha), 255);
    EXPECT_EQ(sampled(fourLevels(), 0.5f, -0.25f, ChannelTarget::RGBA, SampleEdge::FadeAlpha).blue, 50);
}

TEST(Bilinear, WritesTheBytesOfItsTargetAlone) {
    EXPECT_EQ(sampled(fourLevels(), 0.5f, 0.5f, ChannelTarget::RGB), grey(87, 4));
    EXPECT_EQ(sampled(fourLevels(), 0.5f, 0.5f, ChannelTarget::Alpha), (Pixel{1, 2, 3, 255}));
}

/// Coordinates in and around a line of `length`: whole ones, their neighbours, and any.
float anyCoordinate(Random& random, int32_t length) {
    const float whole = float(random.next() % (length + 6) - 3);
    const int32_t kind = random.next() % 4;
    const float fraction = float(random.next() << 8 | (random.next() & 255)) / 8388608.0f;
    return kind == 0 ? whole : kind == 1 ? std::nextafter(whole, 1000.0f) : whole + fraction;
}

template <ChannelTarget target>
void expectRunsEqualGeneral(int32_t width, int32_t height) {
    const Picture picture = Picture::random(width, height, 3);
    SlowWarp warp(picture, SampleQuality::Bilinear, target);
    const ImageBuffer source = warp.view();
    const BilinearSampler<target> sampler(source);
    Random random(7);
    for (int repeat = 0; repeat < 60; ++repeat) {
        const auto count = size_t(1 + random.next() % width);
        float x[kBatchPixels], y[kBatchPixels];
        Pixel run[kBatchPixels], row[kBatchPixels], columns[kBatchPixels];
        for (size_t i = 0; i < count; ++i) {
            x[i] = anyCoordinate(random, width);
            y[i] = anyCoordinate(random, height);
            run[i] = row[i] = columns[i] = kMark;
        }
        const int32_t line = repeat % height, first = width - int32_t(count);
        sampler.sample(run, y, x, count);
        sampler.alongRow(row, line, x, count);
        sampler.downColumns(columns, y, first, count);
        for (size_t i = 0; i < count; ++i) {
            ASSERT_EQ(run[i], sampled(picture, x[i], y[i], target)) << x[i] << ' ' << y[i];
            ASSERT_EQ(row[i], sampled(picture, x[i], float(line), target)) << x[i] << ' ' << line;
            ASSERT_EQ(columns[i], sampled(picture, float(first + int32_t(i)), y[i], target)) << y[i];
        }
    }
}

TEST(Bilinear, RunsInWholeNumbersEqualTheFloatingPoint) {
    for (auto [width, height] : {std::pair{223, 19}, {256, 4}, {3, 3}, {2, 9}, {9, 2}, {1, 1}, {40, 3}}) {
        expectRunsEqualGeneral<ChannelTarget::RGBA>(width, height);
        expectRunsEqualGeneral<ChannelTarget::RGB>(width, height);
        expectRunsEqualGeneral<ChannelTarget::Alpha>(width, height);
    }
}

TEST(Trigonometry, StaysWithinAUnitOrTwoInTheLastPlace) {
    Random random(11);
    for (int i = 0; i < 100000; ++i) {
        const double scale = i % 3 == 0 ? 6.0 : i % 3 == 1 ? 1e-4 : 1.5e-9 * random.next();
        const double angle = (random.next() * 32768.0 + random.next() - 536870912.0) / 32768.0 * scale;
        ASSERT_NEAR(sine(angle), std::sin(angle), 3e-16) << angle;
        ASSERT_NEAR(cosine(angle), std::cos(angle), 3e-16) << angle;
        double x = random.next() - 16384, y = random.next() - 16384, size;
        angleSizes(&x, y, &size, 1);
        ASSERT_NEAR(size, std::fabs(std::atan2(y, x)), 2e-15);
    }
    EXPECT_EQ(sine(0), 0);
    EXPECT_EQ(cosine(0), 1);
    EXPECT_EQ(sine(1e9), std::sin(1e9));
    EXPECT_TRUE(std::isnan(sine(double(kInfinity))));
}

TEST(Trigonometry, RunsEqualSingleAngles) {
    const double angles[5] = {-3, 0.5, 100, 1e4, 7}, large[3] = {1, 2e5, double(kNaN)};
    double s[5], c[5];
    sinesAndCosines(angles, s, c, 5);
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(s[i], sine(angles[i]));
        EXPECT_EQ(c[i], cosine(angles[i]));
    }
    sinesAndCosines(large, s, c, 3);
    EXPECT_EQ(s[0], sine(1));
    EXPECT_EQ(c[1], std::cos(2e5));
    EXPECT_TRUE(std::isnan(s[2]));
    const double x[3] = {0, -1, 5};
    double sizes[3];
    angleSizes(x, 0, sizes, 3);
    EXPECT_EQ(sizes[0], 0);
    EXPECT_EQ(sizes[1], std::numbers::pi);
    EXPECT_EQ(sizes[2], 0);
}

}  // namespace
}  // namespace krl::test

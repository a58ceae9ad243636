#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "core/LookupTables.h"
#include "core/Numbers.h"
#include "effects/film/Noise.h"
#include "effects/film/SmoothNoise.h"
#include "reference/FilmReference.h"
#include "support/Picture.h"

namespace krl::test {

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr auto kRgba = ChannelTarget::RGBA, kRgb = ChannelTarget::RGB, kAlpha = ChannelTarget::Alpha;

Picture noised(const Picture& picture, float varience, int32_t seed, ChannelTarget target,
               int32_t bands = 1) {
    return picture.after([=](ImageEngine& e) { return noise(e, varience, seed, target); }, bands);
}

Status run(ImageEngine& e, const reference::Grain& g) {
    return grain(e, g.frequency[0], g.frequency[1], g.frequency[2], g.strength[0], g.strength[1],
                 g.strength[2], g.lowerBand, g.upperBand, g.seed,
                 g.grey ? GrainColour::GREYSCALE : GrainColour::RGB);
}

Picture grained(const Picture& picture, const reference::Grain& g, int32_t bands = 2) {
    return picture.after([&](ImageEngine& e) { return run(e, g); }, bands);
}

constexpr reference::Grain kCoarse{{3.5f, 1.0f, 20.0f}, {1.0f, 0.6f, 0.3f}, 60, 200, 7, false};

}  // namespace

TEST(Noise, ReadsOneDrawForEachPixelOfASequenceWithOneForEachByte) {
    for (const auto& [width, height] : {std::pair{1, 1}, {31, 12}, {5, 7}}) {
        const Picture source = Picture::random(width, height);
        for (int32_t bands : {1, 2, 3, 4}) {
            const int32_t bandPixels = ceilingShare(width * height, bands);
            for (float varience : {0.0004f, 0.001f, 0.15f, 2.0f, 40.0f}) {
                for (ChannelTarget target : {kRgba, kRgb, kAlpha}) {
                    Picture expected = source;
                    expected.pixels() = reference::noised(source.pixels(), bandPixels, varience, 42,
                                                          target != kAlpha, target != kRgb);
                    ASSERT_EQ(noised(source, varience, 42, target, bands), expected)
                        << varience << " in " << bands;
                }
            }
        }
    }
}

TEST(Noise, DependsOnTheBandsAndTheSeed) {
    const Picture grey(64, 64, {128, 128, 128, 128});
    EXPECT_EQ(noised(grey, 0.3f, 5, kRgba), noised(grey, 0.3f, 5, kRgba));
    EXPECT_NE(noised(grey, 0.3f, 5, kRgba), noised(grey, 0.3f, 6, kRgba));
    EXPECT_NE(noised(grey, 0.3f, 5, kRgba, 1), noised(grey, 0.3f, 5, kRgba, 2));
}

TEST(Noise, IsMonochromeOnColourAndLeavesBlackAlone) {
    const Picture noisy = noised(Picture(40, 40, {100, 100, 100, 255}), 0.5f, 1, kRgb);
    for (const Pixel& p : noisy.pixels())
        EXPECT_TRUE(p.blue == p.green && p.green == p.red && p.alpha == 255);
    EXPECT_EQ(noised(Picture(9, 9), 0.9f, 1, kRgb), Picture(9, 9));
}

TEST(Noise, WithoutVarienceChangesNothingButTestsTheState) {
    const Picture source = Picture::random(9, 9);
    for (float varience : {0.0f, -0.0f, -2.0f, -kInfinity})
        EXPECT_EQ(noised(source, varience, 3, kRgba), source);
    expectStateTests([](ImageEngine& e) { return noise(e, 0, 1, kRgb); });
}

TEST(Noise, TakesAnyVarience) {
    for (float varience : {1e6f, 2.2e6f, 1e9f, kInfinity, kNaN})
        for (int32_t seed : {0, -1, INT32_MIN, INT32_MAX})
            noised(Picture::random(7, 7), varience, seed, kRgba, 3);
}

TEST(LatticeNoise, IsAHashOfItsPlace) {
    // n = 1: m = (1 * (15731 + 789221) + 1376312589) with n = 1 ^ (1 << 13) = 8193.
    EXPECT_EQ(latticeNoise(0, 0), static_cast<float>(1.0 - 1376312589 * 9.313225746154785e-10));
    for (int32_t x : {-5, 0, 1, 77, 5000, INT32_MAX})
        for (int32_t y : {-9, 0, 3, 40000, INT32_MIN}) {
            const float value = latticeNoise(x, y);
            EXPECT_EQ(value, reference::noiseHash(x, y));
            EXPECT_LE(std::fabs(value), 1.0f);
        }
}

TEST(Grain, EqualsItsStepsForAnySettings) {
    const Picture source = Picture::random(53, 37);
    std::vector<reference::Grain> grains{kCoarse};
    for (float frequency : {0.0f, 1.0f, 1.5f, 7.0f, 1e9f}) {
        reference::Grain g = kCoarse;
        g.frequency[0] = frequency;
        grains.push_back(g);
        g.grey = true;
        grains.push_back(g);
        g.strength[0] = 0.5f;
        g.lowerBand = 0;
        grains.push_back(g);
        g.grey = false;
        g.upperBand = 255;
        g.seed = -12345;
        grains.push_back(g);
        g.lowerBand = 400;
        g.strength[2] = -3.0f;
        grains.push_back(g);
        g.upperBand = -20;
        g.lowerBand = -20;
        grains.push_back(g);
    }
    for (size_t i = 0; i < grains.size(); ++i) {
        Picture expected = source;
        expected.pixels() = reference::grained(source.pixels(), source.width(), grains[i], sharedTables());
        for (int32_t bands : {1, 5}) ASSERT_EQ(grained(source, grains[i], bands), expected) << i;
    }
}

TEST(Grain, WithoutStrengthTouchesNothing) {
    const Picture source = Picture::random(30, 30);
    reference::Grain g = kCoarse;
    g.strength[0] = 0;
    g.grey = true;
    EXPECT_EQ(grained(source, g), source) << "red alone decides for all";
    g.grey = false;
    EXPECT_NE(grained(source, g), source);
    g.strength[1] = g.strength[2] = 0;
    EXPECT_EQ(grained(source, g), source);
}

TEST(Grain, LeavesAlphaAndTransparentPixels) {
    Picture source = Picture::random(30, 30);
    for (size_t i = 0; i < source.pixels().size(); i += 2) source.pixels()[i].alpha = 0;
    const Picture result = grained(source, kCoarse);
    EXPECT_TRUE(sameAlpha(result, source));
    for (size_t i = 0; i < source.pixels().size(); i += 2) EXPECT_EQ(result.pixels()[i], source.pixels()[i]);
}

TEST(Grain, FadesTowardBlackAndWhite) {
    reference::Grain g{{2, 2, 2}, {1, 1, 1}, 100, 150, 1, false};
    EXPECT_EQ(grained(Picture(20, 20, {0, 0, 0, 255}), g), Picture(20, 20, {0, 0, 0, 255}));
    EXPECT_EQ(grained(Picture(20, 20, {255, 255, 255, 255}), g), Picture(20, 20, {255, 255, 255, 255}));
    EXPECT_NE(grained(Picture(20, 20, {120, 120, 120, 255}), g), Picture(20, 20, {120, 120, 120, 255}));
}

TEST(Grain, TakesAnyNumbers) {
    for (float odd : {kNaN, kInfinity, -kInfinity, 1e30f})
        for (int32_t band : {INT32_MIN, INT32_MAX}) {
            grained(Picture::random(9, 9), {{odd, odd, 2}, {1, odd, 1}, band, band, band, false});
            grained(Picture::random(9, 9), {{odd, odd, 2}, {odd, 1, 1}, ~band, 255, band, true});
        }
}

TEST(Grain, TestsTheStateAndIsTheSameForAnyBands) {
    expectStateTests([](ImageEngine& e) { return grain(e, 1, 1, 1, 0, 0, 0, 0, 255, 1, GrainColour::RGB); });
    for (bool grey : {false, true}) {
        reference::Grain g = kCoarse;
        g.grey = grey;
        expectSameForAnyBands([&](ImageEngine& e) { return run(e, g); });
    }
}

}  // namespace krl::test

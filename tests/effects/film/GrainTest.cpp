#include <gtest/gtest.h>

#include <vector>

#include "krlimage/film.h"
#include "reference/FilmReference.h"
#include "support/Effects.h"

namespace krl::test {
namespace {

Status run(ImageEngine& e, const reference::Grain& g) {
    return grain(e, {.red = {g.frequency[0], g.strength[0]},
                     .green = {g.frequency[1], g.strength[1]},
                     .blue = {g.frequency[2], g.strength[2]},
                     .lowerBand = g.lowerBand,
                     .upperBand = g.upperBand,
                     .seed = g.seed,
                     .colourMethod = g.grey ? GrainColour::GREYSCALE : GrainColour::RGB});
}

Picture grained(const Picture& picture, const reference::Grain& g, int32_t bands = 2) {
    return picture.after([&](ImageEngine& e) { return run(e, g); }, bands);
}

constexpr reference::Grain kCoarse{{3.5f, 1.0f, 20.0f}, {1.0f, 0.6f, 0.3f}, 60, 200, 7, false};

TEST(Grain, EqualsItsStepsForAnySettings) {
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
    for (const Picture& source : {Picture::random(53, 37), Picture::random(530, 5)})
        for (size_t i = 0; i < grains.size(); ++i) {
            Picture expected = source;
            expected.pixels() =
                reference::grained(source.pixels(), source.width(), grains[i], sharedTables());
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
    for (float odd : {kNotANumber, kInfinity, -kInfinity, 1e30f})
        for (int32_t band : {INT32_MIN, INT32_MAX}) {
            grained(Picture::random(9, 9), {{odd, odd, 2}, {1, odd, 1}, band, band, band, false});
            grained(Picture::random(9, 9), {{odd, odd, 2}, {odd, 1, 1}, ~band, 255, band, true});
        }
}

TEST(Grain, TestsTheStateAndIsTheSameForAnyBands) {
    expectStateTests([](ImageEngine& e) { return grain(e, {}); });
    for (bool grey : {false, true}) {
        reference::Grain g = kCoarse;
        g.grey = grey;
        expectSameForAnyBands([&](ImageEngine& e) { return run(e, g); });
    }
}

}  // namespace
}  // namespace krl::test

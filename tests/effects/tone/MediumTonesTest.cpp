#include <gtest/gtest.h>

#include <vector>

#include "effects/tone/ToneCurves.h"

namespace krl::test {
namespace {

TEST(MediumTones, BringsTheMeanNearTheLevel) {
    // Means 150, 15 and 0; each is counted one higher.
    EXPECT_EQ(Picture(1, {{100, 10, 0, 3}, {200, 20, 0, 4}}).after([](ImageEngine& e) {
        return mediumTones(e, 75);
    }),
              Picture(1, {{49, 46, 0, 3}, {99, 93, 0, 4}}));
}

TEST(MediumTones, TakesAnyLevel) {
    const Picture source = Picture::random(5, 5);
    const Picture black(5, 5, {0, 0, 0, 0});
    EXPECT_TRUE(sameColour(source.after([](ImageEngine& e) { return mediumTones(e, -10); }), black));
    EXPECT_TRUE(sameColour(source.after([](ImageEngine& e) { return mediumTones(e, 0); }), black));
    const Picture extreme = source.after([](ImageEngine& e) { return mediumTones(e, 2147483647); });
    EXPECT_TRUE(sameAlpha(extreme, source));
}

TEST(MediumTones, CountsInIntegersThatWrap) {
    // 3000 * 2810 whites sum to more than the largest integer: a negative mean, and black.
    Picture white(3000, 2810, {255, 1, 255, 9});
    EXPECT_EQ(white.apply([](ImageEngine& e) { return mediumTones(e, 128); }), kStatusOk);
    EXPECT_EQ(white.at(17, 2000), (Pixel{0, 64, 0, 9}));
}

TEST(MediumTones, RefusesWithoutPicture) {
    ImageEngine engine;
    EXPECT_EQ(mediumTones(engine, 100), kStatusRefused);
    std::vector<uint32_t> pixels(4, 0x10203040);
    engine.load(reinterpret_cast<uint8_t*>(pixels.data()), {2, 2, 8, 0, 0, 0});
    engine.unload();
    EXPECT_EQ(mediumTones(engine, 100), kStatusRefused);
    EXPECT_EQ(pixels, std::vector<uint32_t>(4, 0x10203040));
}

}  // namespace
}  // namespace krl::test

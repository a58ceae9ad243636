#include <gtest/gtest.h>

#include "krlimage/colour.h"
#include "support/Effects.h"

namespace krl::test {
namespace {

TEST(BlurColourReplace, MultipliesByTheColourAndKeepsAlpha) {
    const Picture tinted(Picture(2, {{200, 100, 255, 9}, {1, 255, 50, 0}}).after([](ImageEngine& e) {
        return blurColourReplace(e, Colour(255, 0, 51));
    }));
    EXPECT_EQ(tinted, Picture(2, {{40, 0, 255, 9}, {0, 0, 50, 0}}));
}

TEST(BlurColourReplace, TouchesNoPixelsThatAreNotLoaded) {
    Pixel pixel{100, 100, 100, 100};
    ImageEngine engine;
    EXPECT_EQ(blurColourReplace(engine, Colour(0, 0, 0)), kStatusRefused);
    engine.load(reinterpret_cast<uint8_t*>(&pixel), {1, 1, 4, 0, 0, 0});
    EXPECT_EQ(blurColourReplace(engine, Colour(0, 0, 0)), kStatusOk);
    EXPECT_EQ(pixel, (Pixel{0, 0, 0, 100}));
    pixel = {100, 100, 100, 100};
    engine.unload();
    EXPECT_EQ(blurColourReplace(engine, Colour(0, 0, 0)), kStatusRefused);
    EXPECT_EQ(pixel, (Pixel{100, 100, 100, 100}));
    engine.load(nullptr, {1, 1, 4, 0, 0, 0});
    EXPECT_EQ(blurColourReplace(engine, Colour(0, 0, 0)), kStatusRefused);
}

}  // namespace
}  // namespace krl::test

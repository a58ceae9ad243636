#include <gtest/gtest.h>

#include "krlimage/hue.h"
#include "reference/PointReference.h"
#include "support/Colours.h"
#include "support/Effects.h"

namespace krl::test {
namespace {

TEST(LightnessHSV, WhitensWhollyAtTwoAndKeepsAtOne) {
    const Picture source = Picture::random(40, 25, 6);
    EXPECT_EQ(source.after([](ImageEngine& e) { return lightnessHSV(e, 1.0f); }), source);
    const Picture white = source.after([](ImageEngine& e) { return lightnessHSV(e, 2.0f); });
    EXPECT_TRUE(sameColour(white, Picture(40, 25, {255, 255, 255, 0})));
    EXPECT_TRUE(sameAlpha(white, source));
}

TEST(LightnessHSV, DarkensWithoutLosingSaturation) {
    // Value 200 / 255 less one half leaves 72.5 / 255; saturation 0.5 gives half of it.
    EXPECT_EQ(onePixel(100, 100, 200).after([](ImageEngine& e) { return lightnessHSV(e, 0.5f); }),
              onePixel(36, 36, 73));
}

TEST(LightnessHSV, FollowsItsStepsForEveryColour) {
    for (float lightness :
         {0.0f, 0.4f, 0.999f, 1.0f, 1.1f, 1.5f, 2.0f, 3.0f, -5.0f, 1e30f, kInfinity, -kInfinity, kNotANumber})
        expectEach(
            colourNet(), [=](ImageEngine& e) { return lightnessHSV(e, lightness); },
            [=](Pixel p) { return reference::lightnessHSV(p, lightness); });
}

}  // namespace
}  // namespace krl::test

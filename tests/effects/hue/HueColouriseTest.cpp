#include <gtest/gtest.h>

#include <utility>

#include "krlimage/hue.h"
#include "reference/PointReference.h"
#include "support/Colours.h"
#include "support/Effects.h"

namespace krl::test {
namespace {

TEST(HueColourise, TurnsSaturatedColourToItsHueAndKeepsGreys) {
    const auto red = [](ImageEngine& e) { return hueColourise(e, 0, 100); };
    EXPECT_EQ(onePixel(255, 0, 0).after(red), onePixel(0, 0, 255));
    EXPECT_EQ(onePixel(0, 200, 0).after(red), onePixel(0, 0, 200));
    EXPECT_EQ(onePixel(128, 128, 128).after(red), onePixel(128, 128, 128));
}

TEST(HueColourise, LeavesEverythingAtNoDensity) {
    const Picture source = Picture::random(31, 17);
    EXPECT_EQ(source.after([](ImageEngine& e) { return hueColourise(e, 200, 0); }), source);
}

TEST(HueColourise, WritesGreysByLightnessWhereTheHueIsUndefinedToo) {
    // Level 128 has lightness 181, and 181 * 255 / 360 is 128; level 2 has 3, and 3 * 255 / 360 is 2.
    const auto undefined = [](ImageEngine& e) { return hueColourise(e, -1, 100); };
    EXPECT_EQ(onePixel(128, 128, 128).after(undefined), onePixel(128, 128, 128));
    EXPECT_EQ(onePixel(1, 1, 1).after(undefined), onePixel(0, 0, 0));  // lightness 1, and 255 / 360 is 0
}

TEST(HueColourise, FollowsItsStepsForEveryColour) {
    for (auto [hue, density] : {std::pair{0, 100},
                                {360, 100},
                                {210, 60},
                                {-30, 100},
                                {-359, 130},
                                {-1, 100},
                                {400, 250},
                                {77, -40},
                                {1000000007, 100},
                                {-2147483647 - 1, 2147483647}})
        expectEach(
            colourNet(), [=](ImageEngine& e) { return hueColourise(e, hue, density); },
            [=](Pixel p) { return reference::newHue(p, hue, density, false); });
}

}  // namespace
}  // namespace krl::test

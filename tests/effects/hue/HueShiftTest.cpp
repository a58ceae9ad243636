#include <gtest/gtest.h>

#include <utility>

#include "krlimage/hue.h"
#include "reference/PointReference.h"
#include "support/Colours.h"
#include "support/Effects.h"

namespace krl::test {
namespace {

TEST(HueShift, ReturnsAfterAFullTurn) {
    const Picture source = onePixel(10, 90, 250);
    EXPECT_EQ(source.after([](ImageEngine& e) { return hueShift(e, 360, 100); }),
              source.after([](ImageEngine& e) { return hueShift(e, 0, 100); }));
}

TEST(HueShift, TurnsPrimariesIntoOneAnother) {
    const auto third = [](ImageEngine& e) { return hueShift(e, 120, 100); };
    EXPECT_EQ(onePixel(0, 0, 255).after(third), onePixel(0, 255, 0));
    EXPECT_EQ(onePixel(0, 255, 0).after(third), onePixel(255, 0, 0));
    EXPECT_EQ(onePixel(255, 0, 0).after(third), onePixel(0, 0, 255));
    EXPECT_EQ(onePixel(9, 9, 9).after(third), onePixel(9, 9, 9));
}

TEST(HueShift, MixesByDensity) {
    EXPECT_EQ(onePixel(0, 0, 255).after([](ImageEngine& e) { return hueShift(e, 120, 50); }),
              onePixel(0, 127, 127));
}

TEST(HueShift, FollowsItsStepsForEveryColour) {
    for (auto [hue, density] :
         {std::pair{90, 100}, {360, 100}, {359, 33}, {-30, 100}, {-720, 100}, {725, 175}})
        expectEach(
            colourNet(), [=](ImageEngine& e) { return hueShift(e, hue, density); },
            [=](Pixel p) { return reference::newHue(p, hue, density, true); });
}

}  // namespace
}  // namespace krl::test

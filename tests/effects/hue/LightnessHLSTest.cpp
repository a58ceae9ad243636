#include <gtest/gtest.h>

#include "krlimage/hue.h"
#include "reference/PointReference.h"
#include "support/Colours.h"
#include "support/Effects.h"

namespace krl::test {
namespace {

TEST(LightnessHLS, StaysNearAtOneAndReachesBothEnds) {
    const Picture source = Picture::random(40, 25, 5);
    const Picture same = source.after([](ImageEngine& e) { return lightnessHLS(e, 1.0f); });
    for (size_t i = 0; i < source.pixels().size(); ++i)
        for (size_t channel = 0; channel < 3; ++channel)
            EXPECT_NEAR(same.pixels()[i][channel], source.pixels()[i][channel], 3);
    EXPECT_EQ(onePixel(10, 80, 200).after([](ImageEngine& e) { return lightnessHLS(e, 0.0f); }),
              onePixel(0, 0, 0));
    EXPECT_EQ(onePixel(10, 80, 200).after([](ImageEngine& e) { return lightnessHLS(e, 9.0f); }),
              onePixel(255, 255, 255));
}

TEST(LightnessHLS, FollowsItsStepsForEveryColour) {
    for (float lightness : {0.0f, 0.3f, 1.0f, 1.25f, 7.0f, -1.0f, 1e9f, kInfinity, -kInfinity, kNotANumber})
        expectEach(
            colourNet(), [=](ImageEngine& e) { return lightnessHLS(e, lightness); },
            [=](Pixel p) { return reference::lightnessHLS(p, lightness); });
}

}  // namespace
}  // namespace krl::test

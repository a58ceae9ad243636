#include <gtest/gtest.h>

#include "krlimage/colour.h"
#include "reference/PointReference.h"
#include "support/Colours.h"
#include "support/Effects.h"

namespace krl::test {
namespace {

TEST(Saturation, KeepsAtOneAndGreysByTheBrightestAtNone) {
    const Picture source = Picture::random(50, 40, 14);
    const Picture same = source.after([](ImageEngine& e) { return saturation(e, 1.0f); });
    for (size_t i = 0; i < source.pixels().size(); ++i)
        for (size_t channel = 0; channel < 4; ++channel)
            EXPECT_NEAR(same.pixels()[i][channel], source.pixels()[i][channel], 1);
    EXPECT_EQ(onePixel(10, 80, 200).after([](ImageEngine& e) { return saturation(e, 0.0f); }),
              onePixel(200, 200, 200));
    EXPECT_EQ(onePixel(100, 150, 200).after([](ImageEngine& e) { return saturation(e, 100.0f); }),
              onePixel(0, 100, 200));
}

TEST(Saturation, FollowsItsStepsForEveryColour) {
    for (float factor :
         {0.0f, 0.1f, 0.75f, 1.0f, 1.5f, 3.0f, 1e30f, 1e-40f, -1.0f, kInfinity, -kInfinity, kNotANumber})
        expectEach(
            colourNet(), [=](ImageEngine& e) { return saturation(e, factor); },
            [=](Pixel p) { return reference::saturation(p, factor); });
}

}  // namespace
}  // namespace krl::test

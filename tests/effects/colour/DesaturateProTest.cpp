#include <gtest/gtest.h>

#include "krlimage/colour.h"
#include "reference/PointReference.h"
#include "support/Colours.h"
#include "support/Effects.h"

namespace krl::test {
namespace {

TEST(DesaturatePro, MixesByOpacityOf256) {
    const auto grey = [](int32_t opacity) {
        return [=](ImageEngine& e) { return desaturatePro(e, 0.5f, 0.25f, 0.25f, opacity, false); };
    };
    expectIdentity(grey(0));
    EXPECT_EQ(onePixel(100, 100, 200).after(grey(256)), onePixel(150, 150, 150));
    // Just short of it: 50 * 255 / 256 is 49, and -50 * 255 / 256 rounds down to -50.
    EXPECT_EQ(onePixel(100, 100, 200).after(grey(255)), onePixel(149, 149, 150));
}

TEST(DesaturatePro, DividesByTheWeightsWhereAsked) {
    EXPECT_EQ(onePixel(60, 60, 60).after([](ImageEngine& e) { return desaturatePro(e, 1, 1, 1, 256, true); }),
              onePixel(60, 60, 60));
    EXPECT_EQ(
        onePixel(60, 60, 60).after([](ImageEngine& e) { return desaturatePro(e, 1, 1, 1, 256, false); }),
        onePixel(180, 180, 180));
    EXPECT_EQ(onePixel(60, 60, 60).after([](ImageEngine& e) { return desaturatePro(e, 0, 0, 0, 128, true); }),
              onePixel(30, 30, 30));
}

TEST(DesaturatePro, FollowsItsStepsForEveryColour) {
    struct Case {
        float red, green, blue;
        int32_t opacity;
    };
    for (const Case& c :
         {Case{0.3f, 0.59f, 0.11f, 256}, Case{0.333f, 0.333f, 0.334f, 200}, Case{2, -1, 0.7f, -90},
          Case{1e8f, 1e8f, 3, 256}, Case{kInfinity, 1, 1, 255}, Case{kInfinity, -kInfinity, 0, 77},
          Case{kNotANumber, 1, 1, 256}, Case{0.1f, 0.1f, 0.1f, 2147483647}})
        for (bool equalise : {false, true})
            expectEach(
                colourNet(),
                [=](ImageEngine& e) { return desaturatePro(e, c.red, c.green, c.blue, c.opacity, equalise); },
                [=](Pixel p) {
                    return reference::desaturatePro(p, c.red, c.green, c.blue, c.opacity, equalise);
                });
}

}  // namespace
}  // namespace krl::test

#include <gtest/gtest.h>

#include <new>

#include "krlimage/hue.h"
#include "reference/PointReference.h"
#include "support/Colours.h"
#include "support/Effects.h"

namespace krl::test {
namespace {

TEST(PosteriseHue, BringsHuesToTheLowerBoundAndTheLastBandAround) {
    const auto quarters = [](ImageEngine& e) { return posteriseHue(e, 4, 0); };
    // Hue 300 lies in the last quarter, which goes to 360, and that is red; hue 120 goes to 90.
    EXPECT_EQ(onePixel(255, 0, 255).after(quarters), onePixel(0, 0, 255));
    EXPECT_EQ(onePixel(0, 255, 0).after(quarters), onePixel(0, 255, 128));
    EXPECT_EQ(onePixel(50, 50, 50).after(quarters), onePixel(50, 50, 50));
}

TEST(PosteriseHue, OnlyTurnsWithoutBands) {
    EXPECT_EQ(onePixel(0, 0, 255).after([](ImageEngine& e) { return posteriseHue(e, 0, 120); }),
              onePixel(0, 255, 0));
    EXPECT_EQ(onePixel(50, 50, 50).after([](ImageEngine& e) { return posteriseHue(e, 0, 120); }),
              onePixel(50, 50, 50));
}

TEST(PosteriseHue, HasNoMemoryForANegativeNumberOfBands) {
    const Picture source = Picture::random(20, 20, 8);
    for (int32_t level : {-1, -2147483647 - 1}) {
        const auto effect = [=](ImageEngine& e) { return posteriseHue(e, level, 90); };
        Picture picture = source;
        EXPECT_THROW(static_cast<void>(picture.apply(effect)), std::bad_alloc) << level;
        EXPECT_EQ(picture, source) << level;
        expectStateTests(effect);
    }
}

TEST(PosteriseHue, FollowsItsStepsForEveryColour) {
    const Picture source = Picture::random(61, 43, 9);
    for (int32_t level : {0, 1, 2, 3, 7, 24, 359, 360, 361, 1000})
        for (int32_t rotation : {0, 30, -30, 360, -360, -361, 719, 100000, -2147483647 - 1, 2147483647})
            expectEach(
                source, [=](ImageEngine& e) { return posteriseHue(e, level, rotation); },
                [=](Pixel p) { return reference::posteriseHue(p, level, rotation); });
}

TEST(PosteriseHue, WritesGreysWhereTheRotationMakesTheirHueUndefinedAgain) {
    EXPECT_EQ(onePixel(1, 1, 1).after([](ImageEngine& e) { return posteriseHue(e, 6, -360); }),
              onePixel(0, 0, 0));
}

}  // namespace
}  // namespace krl::test

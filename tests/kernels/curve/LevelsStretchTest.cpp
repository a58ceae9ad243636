#include <gtest/gtest.h>

#include <limits>

#include "kernels/curve/LevelsStretch.h"

namespace krl {
namespace {

TEST(LevelsStretch, StretchesBetweenBlackAndWhite) {
    const LevelsStretch stretch(100, 199);
    EXPECT_EQ(stretch(99), 0);
    EXPECT_EQ(stretch(100), 0);
    EXPECT_EQ(stretch(150), 127);  // 50 times a single-precision 2.56, which is just below it
    EXPECT_EQ(stretch(199), 253);
    EXPECT_EQ(stretch(200), 255);
}

TEST(LevelsStretch, OfTheWholeScaleChangesNothing) {
    const LevelsStretch whole(0, 255);
    for (int32_t level = 0; level < 256; ++level) EXPECT_EQ(whole(level), level);
}

TEST(LevelsStretch, OfCrossedLimitsIsAStep) {
    const LevelsStretch touching(200, 199), crossed(200, 100);
    for (int32_t level = 0; level < 256; ++level) {
        EXPECT_EQ(touching(level), level > 199 ? 255 : 0);
        EXPECT_EQ(crossed(level), level > 100 ? 255 : 0);
    }
}

TEST(LevelsStretch, TakesTheLargestIntegers) {
    constexpr int32_t least = std::numeric_limits<int32_t>::min(), most = std::numeric_limits<int32_t>::max();
    for (const int32_t level : {-255, 0, 255}) {
        EXPECT_EQ(LevelsStretch(most, most)(level), 0);
        EXPECT_EQ(LevelsStretch(least, least)(level), 255);
        EXPECT_EQ(LevelsStretch(most, least)(level), 255) << "above white comes first";
    }
}

}  // namespace
}  // namespace krl

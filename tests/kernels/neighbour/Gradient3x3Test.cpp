#include <gtest/gtest.h>

#include "kernels/neighbour/Gradient3x3.h"
#include "support/Picture.h"

namespace krl::test {

TEST(Gradient, StrengthIsTheTruncatedRootForAllSums) {
    for (int vertical = 0; vertical <= 1020; ++vertical)
        for (int horizontal = 0; horizontal <= 1020; horizontal += 3) {
            const int square = vertical * vertical + horizontal * horizontal;
            const int strength = sobelStrength({vertical, -horizontal});
            ASSERT_LE(strength * strength, square);
            ASSERT_TRUE(strength == 255 || (strength + 1) * (strength + 1) > square);
        }
}

TEST(Gradient, SinglePrecisionRootsTruncateAsExactOnes) {
    for (int32_t square = 0; square <= 2 * 1020 * 1020; ++square)
        ASSERT_EQ(truncate(std::sqrt(float(square))), truncate(std::sqrt(double(square))));
}

TEST(Gradient, StrengthsOfARunEqualThoseOfItsBytes) {
    const Picture picture = Picture::random(40, 3);
    Pixel strengths[38];
    sobelStrengths(&picture.at(1, 0), &picture.at(1, 1), &picture.at(1, 2), 38, strengths);
    for (int x = 1; x < 39; ++x)
        for (size_t channel = 0; channel < 4; ++channel) {
            const auto row = [&](int y) { return &picture.at(x, y).blue + channel; };
            EXPECT_EQ(strengths[x - 1][channel], sobelStrength(sobelSums(row(0), row(1), row(2))));
        }
}

}  // namespace krl::test

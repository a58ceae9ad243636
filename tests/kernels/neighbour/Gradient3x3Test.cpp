#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <vector>

#include "core/Batch.h"
#include "core/Numbers.h"
#include "kernels/neighbour/Gradient3x3.h"
#include "support/Picture.h"

namespace krl::test {

namespace {

/// Sobel's gradient at one byte, summed neighbour by neighbour.
uint8_t referenceStrength(const Picture& picture, int x, int y, size_t channel) {
    constexpr int kWeights[] = {1, 2, 1};
    int across = 0, upright = 0;
    for (int side = -1; side <= 1; ++side) {
        across += kWeights[side + 1] *
                  (picture.at(x - 1, y + side)[channel] - picture.at(x + 1, y + side)[channel]);
        upright += kWeights[side + 1] *
                   (picture.at(x + side, y + 1)[channel] - picture.at(x + side, y - 1)[channel]);
    }
    return truncatedByte(std::sqrt(double(upright * upright + across * across)));
}

/// The strengths of the inner pixels of the middle row of a picture that is three pixels high.
std::vector<Pixel> strengthsOf(const Picture& picture) {
    std::vector<Pixel> strengths(size_t(picture.width()) - 2);
    sobelStrengths(&picture.at(1, 0), &picture.at(1, 1), &picture.at(1, 2), int32_t(strengths.size()),
                   strengths.data());
    return strengths;
}

void expectDefinition(const Picture& picture) {
    const std::vector<Pixel> strengths = strengthsOf(picture);
    for (int x = 1; x < picture.width() - 1; ++x)
        for (size_t channel = 0; channel < 4; ++channel)
            ASSERT_EQ(strengths[size_t(x) - 1][channel], referenceStrength(picture, x, 1, channel))
                << "at " << x << ", channel " << channel;
}

}  // namespace

TEST(Gradient, SinglePrecisionRootsTruncateAsExactOnes) {
    for (int32_t square = 0; square <= 2 * 1020 * 1020; ++square)
        ASSERT_EQ(truncate(std::sqrt(float(square))), truncate(std::sqrt(double(square))));
}

TEST(Gradient, StrengthsEqualTheirDefinition) {
    for (int width : {3, 4, 6, 17, 40}) expectDefinition(Picture::random(width, 3));
}

TEST(Gradient, StrengthsGoOnFromBatchToBatch) {
    expectDefinition(Picture::random(int(2 * kBatchPixels) + 5, 3));
}

TEST(Gradient, StrengthsOfTheSteepestEdgesAreLimited) {
    Picture picture(12, 3, {0, 0, 0, 0});
    for (int y = 0; y < 3; ++y)
        for (int x = 6; x < 12; ++x) picture.at(x, y) = {255, 255, 255, 255};
    expectDefinition(picture);
    EXPECT_EQ(strengthsOf(picture)[5].green, 255);
}

}  // namespace krl::test

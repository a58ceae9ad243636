#include <gtest/gtest.h>

#include <vector>

#include "core/Random.h"
#include "kernels/path/GaussianLine.h"
#include "reference/FlareReference.h"

namespace krl {
namespace {

constexpr int32_t kWidth = 31, kHeight = 23;
constexpr GridBox kWhole{0, 0, kWidth, kHeight};

std::vector<uint8_t> lit(Point from, Point to, int32_t intensity, int32_t times = 1, GridBox box = kWhole) {
    std::vector<uint8_t> cells(kWidth * kHeight, 0);
    gaussianLine({cells.data(), kWidth}, box, from, to, intensity, times);
    return cells;
}

uint8_t at(const std::vector<uint8_t>& cells, int32_t x, int32_t y) { return cells[size_t(y * kWidth + x)]; }

TEST(GaussianLine, LightsALevelLineAndItsNeighbours) {
    const auto cells = lit({10, 5}, {10, 8}, 100);
    for (int32_t x = 5; x <= 8; ++x) {
        EXPECT_EQ(at(cells, x, 10), 200);
        EXPECT_EQ(at(cells, x, 9), 73);  // 200 / e
        EXPECT_EQ(at(cells, x, 11), 73);
        EXPECT_EQ(at(cells, x, 12), 0);
    }
    EXPECT_EQ(at(cells, 4, 10), 0);
    EXPECT_EQ(at(cells, 9, 10), 0);
}

TEST(GaussianLine, IsOneCellWithoutLength) {
    const auto cells = lit({10, 5}, {10, 5}, 50);
    EXPECT_EQ(at(cells, 5, 10), 100);
    EXPECT_EQ(std::count_if(cells.begin(), cells.end(), [](uint8_t c) { return c > 0; }), 1);
}

TEST(GaussianLine, SaturatesAndNeverFallsBelowBlack) {
    EXPECT_EQ(at(lit({3, 3}, {3, 9}, 200), 5, 3), 255);
    for (uint8_t cell : lit({3, 3}, {3, 9}, -40)) EXPECT_EQ(cell, 0);
}

TEST(GaussianLine, IsTheSlowLineForEverySlope) {
    Random random(5);
    for (int round = 0; round < 3000; ++round) {
        const auto draw = [&](int32_t limit) { return random.next() % (limit + 16) - 8; };
        const Point from{draw(kHeight), draw(kWidth)}, to{draw(kHeight), draw(kWidth)};
        const int32_t intensity = random.next() % 300 - 20;
        std::vector<uint8_t> expected(kWidth * kHeight, 0);
        reference::gaussianLine(expected, kWidth, kHeight, from, to, intensity);
        ASSERT_EQ(lit(from, to, intensity), expected)
            << from.x << ',' << from.y << " to " << to.x << ',' << to.y << " at " << intensity;
    }
}

TEST(GaussianLine, DrawnOftenIsDrawnAgainAndAgain) {
    std::vector<uint8_t> again(kWidth * kHeight, 0);
    for (int i = 0; i < 7; ++i) gaussianLine({again.data(), kWidth}, kWhole, {2, 1}, {17, 25}, 11, 1);
    EXPECT_EQ(lit({2, 1}, {17, 25}, 11, 7), again);
}

TEST(GaussianLine, PartsOfTheBoxMakeTheWhole) {
    std::vector<uint8_t> cells(kWidth * kHeight, 0);
    for (GridBox part : {GridBox{0, 0, kWidth, 9}, {0, 9, 11, kHeight}, {11, 9, kWidth, kHeight}})
        gaussianLine({cells.data(), kWidth}, part, {22, 2}, {3, 28}, 60, 1);
    EXPECT_EQ(cells, lit({22, 2}, {3, 28}, 60));
}

}  // namespace
}  // namespace krl

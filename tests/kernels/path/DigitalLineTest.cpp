#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "core/Random.h"
#include "kernels/path/DigitalLine.h"
#include "reference/FlareReference.h"

namespace krl {
namespace {

using Cell = std::tuple<int32_t, int32_t, int64_t>;

std::vector<Cell> cellsOf(Point from, Point to, HalfwayMove halfway, const GridBox& box) {
    std::vector<Cell> cells;
    DigitalLine(from, to, halfway).walk(box, [&](int32_t x, int32_t y, int64_t v) {
        cells.emplace_back(x, y, v);
    });
    return cells;
}

std::vector<Cell> expectedCells(Point from, Point to, HalfwayMove halfway, const GridBox& box) {
    std::vector<Cell> cells;
    reference::walkLine(from, to, halfway == HalfwayMove::Straight, [&](int32_t x, int32_t y, int64_t v) {
        if (box.holds(x, y)) cells.emplace_back(x, y, v);
    });
    return cells;
}

constexpr GridBox kEverything{-1000, -1000, 1000, 1000};

TEST(DigitalLine, MovesDiagonallyOrStraightAtHalfway) {
    const auto down = cellsOf({0, 0}, {1, 2}, HalfwayMove::Diagonal, kEverything);
    EXPECT_EQ(down, (std::vector<Cell>{{0, 0, 0}, {1, 1, -2}, {2, 1, 0}}));
    const auto straight = cellsOf({0, 0}, {1, 2}, HalfwayMove::Straight, kEverything);
    EXPECT_EQ(straight, (std::vector<Cell>{{0, 0, 0}, {1, 0, 2}, {2, 1, 0}}));
}

TEST(DigitalLine, StartsAtTheSmallerCoordinateOfTheLongerSpan) {
    EXPECT_EQ(std::get<0>(cellsOf({3, 9}, {1, 2}, HalfwayMove::Diagonal, kEverything).front()), 2);
    EXPECT_EQ(std::get<1>(cellsOf({9, 3}, {2, 5}, HalfwayMove::Diagonal, kEverything).front()), 2);
}

TEST(DigitalLine, IsOneCellWithoutLength) {
    EXPECT_EQ(cellsOf({4, 5}, {4, 5}, HalfwayMove::Diagonal, kEverything), (std::vector<Cell>{{5, 4, 0}}));
}

TEST(DigitalLine, IsTheRunningDecisionWalkWithinAnyBox) {
    Random random(11);
    const auto draw = [&](int32_t span) { return random.next() % (2 * span + 1) - span; };
    for (int round = 0; round < 4000; ++round) {
        const int32_t span = round % 3 == 0 ? 4 : round % 3 == 1 ? 40 : 900;
        const Point from{draw(span), draw(span)}, to{draw(span), draw(span)};
        const GridBox box{draw(span), draw(span), draw(span), draw(span)};
        for (HalfwayMove halfway : {HalfwayMove::Diagonal, HalfwayMove::Straight})
            for (const GridBox& clip : {kEverything, box})
                ASSERT_EQ(cellsOf(from, to, halfway, clip), expectedCells(from, to, halfway, clip))
                    << from.x << ',' << from.y << " to " << to.x << ',' << to.y;
    }
}

TEST(DigitalLine, CostsNothingOutsideTheBox) {
    constexpr int32_t far = DigitalLine::kFarthest;
    const auto cells = cellsOf({-far, -far}, {far, far}, HalfwayMove::Diagonal, {0, 0, 3, 3});
    EXPECT_EQ(cells, (std::vector<Cell>{{0, 0, 0}, {1, 1, 0}, {2, 2, 0}}));
    EXPECT_TRUE(cellsOf({0, 0}, {far + 1, 5}, HalfwayMove::Diagonal, {0, 0, 3, 3}).empty());
    EXPECT_TRUE(
        cellsOf({INT32_MIN, INT32_MIN}, {INT32_MAX, INT32_MAX}, HalfwayMove::Straight, {0, 0, 3, 3}).empty());
}

}  // namespace
}  // namespace krl

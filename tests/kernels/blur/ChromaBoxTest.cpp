#include <gtest/gtest.h>

#include "kernels/blur/ChromaBox.h"
#include "reference/ChromaReference.h"
#include "support/Picture.h"

namespace krl::test {

namespace {

Picture boxed(Picture picture, int32_t halfWidth, int32_t threads) {
    EXPECT_EQ(boxChromaColumns(EngineOf(threads), picture.pixels().data(), picture.height(), picture.width(),
                               halfWidth),
              kStatusOk);
    return picture;
}

}  // namespace

// Three rows of one column, on one thread: the first walk sees rows 0 and 1, the second, from the
// address past the edge, rows 1 and 2.
TEST(ChromaBox, LeavesTheLastRowToTheSecondWalkOfColumnZero) {
    const Picture source(
        2, {{0, 0, 0, 0}, {0, 0, 0, 0}, {100, 0, 0, 0}, {100, 0, 0, 0}, {30, 0, 0, 0}, {30, 0, 0, 0}});
    EXPECT_EQ(
        boxed(source, 1, 1),
        Picture(2,
                {{50, 0, 0, 0}, {50, 0, 0, 0}, {40, 0, 0, 0}, {50, 0, 0, 0}, {40, 0, 0, 0}, {30, 0, 0, 0}}));
}

TEST(ChromaBox, FiltersTheColumnWhereBandsMeetTwice) {
    const Picture source = Picture::random(8, 6);
    const Picture one = boxed(source, 2, 1), two = boxed(source, 2, 2);
    for (int32_t y = 0; y < 5; ++y)
        for (int32_t x : {5, 6, 7}) EXPECT_EQ(two.at(x, y), one.at(x, y)) << "last band";
    EXPECT_NE(two.at(4, 2), one.at(4, 2));
    EXPECT_EQ(two.at(5, 5), source.at(5, 5)) << "last row of the last band";
    EXPECT_NE(two.at(2, 5), source.at(2, 5)) << "last row of the first band";
}

TEST(ChromaBox, IsAsIfBandsRanInOrder) {
    for (int32_t width : {1, 2, 3, 5, 16, 70, 200})
        for (int32_t height : {1, 2, 3, 11})
            for (int32_t threads : {1, 2, 3, 4, 7, 16})
                for (int32_t halfWidth : {1, 3, 50}) {
                    const Picture source = Picture::random(width, height, width + height);
                    Picture expected = source;
                    reference::boxColumns(expected.pixels(), height, width, halfWidth, threads);
                    ASSERT_EQ(boxed(source, halfWidth, threads), expected)
                        << width << 'x' << height << " in " << threads << " by " << halfWidth;
                }
}

}  // namespace krl::test

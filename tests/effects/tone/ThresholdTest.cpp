#include <gtest/gtest.h>

#include <vector>

#include "effects/tone/ToneCurves.h"

namespace krl::test {
namespace {

TEST(Threshold, CutsByTheMeanOfColourOrByAlpha) {
    const Picture source(1, {{10, 20, 33, 50}, {10, 20, 36, 51}});  // means 21 and 22
    EXPECT_EQ(source.after([](ImageEngine& e) { return threshold(e, 21, kRGB); }),
              Picture(1, {{0, 0, 0, 50}, {255, 255, 255, 51}}));
    EXPECT_EQ(source.after([](ImageEngine& e) { return threshold(e, 50, kAlpha); }),
              Picture(1, {{10, 20, 33, 0}, {10, 20, 36, 255}}));
}

TEST(Threshold, IsLimitedToBytes) {
    EXPECT_EQ(curveOf([](ImageEngine& e) { return threshold(e, 255, kRGB); }), std::vector<int>(256, 0));
    EXPECT_EQ(curveOf([](ImageEngine& e) { return threshold(e, 9999, kRGB); }), std::vector<int>(256, 0));
    const auto lowest = curveOf([](ImageEngine& e) { return threshold(e, -5, kRGB); });
    EXPECT_EQ(lowest[0], 0);
    EXPECT_EQ(lowest[1], 255);
}

}  // namespace
}  // namespace krl::test

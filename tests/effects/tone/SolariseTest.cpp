#include <gtest/gtest.h>

#include "effects/tone/ToneCurves.h"

namespace krl::test {
namespace {

TEST(Solarise, ReversesAbove128) {
    const auto curve = curveOf([](ImageEngine& e) { return solarise(e, kRGB); });
    EXPECT_EQ(curve[128], 128);
    EXPECT_EQ(curve[129], 126);
    EXPECT_EQ(curve[255], 0);
    expectTargetsKeptApart([](ImageEngine& e, ChannelTarget t) { return solarise(e, t); });
}

}  // namespace
}  // namespace krl::test

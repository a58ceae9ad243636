#include <gtest/gtest.h>

#include "core/LookupTables.h"
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

TEST(Solarise, IsTheCurveOfTheSharedTables) {
    const auto curve = curveOf([](ImageEngine& e) { return solarise(e, kRGB); });
    for (int i = 0; i < 256; ++i) EXPECT_EQ(curve[size_t(i)], sharedTables().solariseCurve[i]) << i;
}

}  // namespace
}  // namespace krl::test

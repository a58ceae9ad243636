#include <gtest/gtest.h>

#include "krlimage/colour.h"
#include "support/Effects.h"

namespace krl::test {
namespace {

TEST(RgbChannelSwap, PutsEveryOrderInPlace) {
    const auto swapped = [](ChannelOrder order) {
        return onePixel(10, 20, 30).after([=](ImageEngine& e) { return rgbChannelSwap(e, order, 256); });
    };
    EXPECT_EQ(swapped(ChannelOrder::RGB), onePixel(10, 20, 30));
    EXPECT_EQ(swapped(ChannelOrder::RBG), onePixel(20, 10, 30));
    EXPECT_EQ(swapped(ChannelOrder::GBR), onePixel(30, 10, 20));
    EXPECT_EQ(swapped(ChannelOrder::GRB), onePixel(10, 30, 20));
    EXPECT_EQ(swapped(ChannelOrder::BRG), onePixel(20, 30, 10));
    EXPECT_EQ(swapped(ChannelOrder::BGR), onePixel(30, 20, 10));
}

TEST(RgbChannelSwap, MixesByOpacityAndWraps) {
    const auto mixed = [](int32_t opacity) {
        return onePixel(0, 7, 255).after(
            [=](ImageEngine& e) { return rgbChannelSwap(e, ChannelOrder::BGR, opacity); });
    };
    EXPECT_EQ(mixed(0), onePixel(0, 7, 255));
    EXPECT_EQ(mixed(128), onePixel(127, 7, 127));
    EXPECT_EQ(mixed(512), onePixel(254, 7, 1));  // 510 and -255, as bytes
}

}  // namespace
}  // namespace krl::test

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

#include "kernels/colour/HlsLanes.h"

namespace krl::test {
namespace {

TEST(HlsLanes, GivesBytesForEveryHueOfOneTurn) {
    HlsLanes hls = {};
    ColourLanes colours = {};
    const auto isByte = [](int32_t lane) { return lane >= 0 && lane <= 255; };
    for (int32_t lightness = 0; lightness <= 360; ++lightness)
        for (int32_t saturation = 0; saturation <= 360; ++saturation)
            for (int32_t first = -1; first <= 360; first += int32_t(kBatchPixels)) {
                for (int32_t i = 0; i < int32_t(kBatchPixels); ++i) {
                    hls.hue[i] = std::min(first + i, 360);
                    hls.lightness[i] = lightness;
                    hls.saturation[i] = saturation;
                }
                fromHls(hls, colours);
                for (const auto* lanes : {&colours.red, &colours.green, &colours.blue})
                    ASSERT_TRUE(std::all_of(std::begin(*lanes), std::end(*lanes), isByte))
                        << first << ' ' << lightness << ' ' << saturation;
            }
}

}  // namespace
}  // namespace krl::test

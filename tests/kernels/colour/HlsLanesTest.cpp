#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

#include "kernels/colour/ColourSpace.h"
#include "kernels/colour/HlsLanes.h"
#include "kernels/colour/LaneColours.h"
#include "support/Colours.h"

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

TEST(HlsLanes, HoldTheEquationForEveryColour) {
    HlsLanes hls;
    for (int red : allReds())
        for (int green = 0; green < 256; ++green) {
            toHls(everyBlue(red, green), hls);
            for (size_t i = 0; i < kBatchPixels; ++i)
                ASSERT_EQ((Hls{hls.hue[i], hls.lightness[i], hls.saturation[i]}),
                          rgbToHls(red, green, int32_t(i % 256)));
        }
}

TEST(HlsLanes, ComeBackAsTheEquationSaysForEveryHueTheyTake) {
    HlsLanes hls;
    for (int32_t hue = -kWidestHue; hue <= kWidestHue; hue += hue >= -2 && hue < 361 ? 1 : 7)
        for (int32_t lightness = 0; lightness <= 360; lightness += 3) {
            ColourLanes colours;
            for (size_t i = 0; i < kBatchPixels; ++i) {
                hls.hue[i] = hue;
                hls.lightness[i] = lightness;
                hls.saturation[i] = int32_t(i * 360 / (kBatchPixels - 1));
                colours.red[i] = 7, colours.green[i] = 8, colours.blue[i] = 9;
            }
            fromHls(hls, colours);
            for (size_t i = 0; i < kBatchPixels; ++i) {
                Rgb expected{7, 8, 9};
                hlsToRgb({hue, lightness, hls.saturation[i]}, expected);
                ASSERT_EQ((Rgb{colours.red[i], colours.green[i], colours.blue[i]}), expected)
                    << hue << ' ' << lightness << ' ' << hls.saturation[i];
            }
        }
}

}  // namespace
}  // namespace krl::test
